#include "endtoend/FetchTest.h"

#include "core/Globals.h"
#include "core/Utilities.h"
#include "fixtures/Profile.h"
#include "server/wire/clsClient.h"

#include <QElapsedTimer>
#include <QFileInfo>

namespace {
constexpr int lLongestRun = 30000; // milliseconds
}

bool FetchTest::Begin(const QStringList &files, const QByteArray &script, int timerFactor)
{
    return server.AddUser("anna", "anna") && (files.isEmpty() || server.Deliver("anna", files)) &&
           server.Start(script, {}, {"--lines", "0"}) && Restart(timerFactor);
}

bool FetchTest::Restart(int timerFactor)
{
    client.reset();
    client = std::make_unique<ClientUnderTest>(home.path(), timerFactor);
    return client->LogIn({server.Address()});
}

QStringList FetchTest::ThreeFaxes()
{
    return {MakeFax("first.tif", 1, 30000), MakeFax("second.tif", 2, 30000), MakeFax("third.tif", 1, 30000)};
}

QString FetchTest::MakeFax(const QString &name, int pages, int bytes)
{
    const QString path = server.MakeFax(name, pages, bytes);
    delivered[QFileInfo(name).completeBaseName()] = ReadTestFile(path);
    return path;
}

QString FetchTest::Queue(const QString &number, const QByteArray &bytes, const QString &timing,
                         const QString &users, const QString &contacts)
{
    const QString id = NewFaxID(client->ids);
    if (bytes.isEmpty())
        MakeFax(number + ".tif", 1, 30000);
    else
        delivered[number] = bytes;
    if (!WriteTestFile(Global().strOutputBoxPath + id + ".tif", delivered[number]))
        qFatal("The test cannot write its file.");
    Profile::Execute(QString("Insert Into SendFax(Fax_ID,FileName,Title,FaxLevel,TimingSend,InnerReceiver,"
                             "OuterReceiver,TempReceiver,Pages,ModifyTime,FolderID,RecyleID) "
                             "Values('%1','%1.tif','%2','1','%3','%4','%5','\"Ann\"<%2>;','1',"
                             "'2024-01-31 09:00:00','1003','')")
                         .arg(id, number, timing, users, contacts));
    return id;
}

bool FetchTest::Fetch()
{
    return RunIsOver([this] { client->download.mnuReceive(); });
}

bool FetchTest::Synchronise()
{
    return RunIsOver([this] { client->runs.mnuSyncAddressBook(); });
}

bool FetchTest::Upload()
{
    return RunIsOver([this] { client->runs.mnuSend(); });
}

bool FetchTest::RunIsOver(const std::function<void()> &run)
{
    QElapsedTimer elapsed;
    elapsed.start();
    run();
    const Session &session = client->session;
    const Progress &progress = client->progress;
    client->WaitUntil([&] { return !progress.IsAnimated(); }, 1000); // the picture stops at its next tick
    const QMap<QString, bool> leftovers{
        {"the run took too long", elapsed.elapsed() > lLongestRun},
        {"a wait", session.IsWaiting()},
        {"a busy socket", session.bIsSocketBusy || !session.IsIdleState()},
        {"a pending command", session.lPendingCommand != pndNone},
        {"a disabled window", !client->desktop.mainWindow.bEnabled},
        {"a cancel button", progress.ButtonTag() != "Close" || !progress.IsButtonEnabled()},
        {"a moving picture", progress.IsAnimated()},
    };
    for (const QString &leftover : leftovers.keys(true))
        qWarning("The run left behind: %s", qUtf8Printable(leftover));
    return leftovers.keys(true).isEmpty();
}

QStringList FetchTest::States() const
{
    QStringList states;
    for (const ProgressRow &row : client->progress.Rows())
        states.append(row.strState);
    return states;
}

QStringList FetchTest::WholeFaxes() const
{
    QStringList titles;
    const auto rows = Global().objDB->SelectEx("Select Title,FileName From ReceiveFax Order By Title");
    while (rows->Next()) {
        const QByteArray file = ReadTestFile(Global().strInputBoxPath + rows->Text(1));
        const bool isWhole = !file.isEmpty() && file == delivered.value(rows->Text(0));
        titles.append(isWhole ? rows->Text(0) : QString("broken"));
    }
    return titles;
}
