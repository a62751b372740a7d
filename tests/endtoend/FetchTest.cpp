#include "endtoend/FetchTest.h"

#include "core/Globals.h"
#include "server/wire/clsClient.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr int lLongestRun = 30000; // milliseconds

QByteArray ReadFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

bool FetchTest::Begin(const QStringList &files, const QByteArray &script, int timerFactor)
{
    return server.AddUser("anna", "anna") && (files.isEmpty() || server.Deliver("anna", files)) &&
           server.Start(script) && Restart(timerFactor, true);
}

bool FetchTest::Restart(int timerFactor, bool isNewMachine)
{
    client.reset();
    if (isNewMachine)
        home = std::make_unique<QTemporaryDir>();
    client = std::make_unique<ClientUnderTest>(home->path(), timerFactor);
    LoginChoice choice;
    choice.strServer = server.Address();
    return client->LogIn(choice);
}

QStringList FetchTest::ThreeFaxes()
{
    return {MakeFax("first.tif", 1, 30000), MakeFax("second.tif", 2, 30000), MakeFax("third.tif", 1, 30000)};
}

QString FetchTest::MakeFax(const QString &name, int pages, int bytes)
{
    const QString path = server.MakeFax(name, pages, bytes);
    delivered[QFileInfo(name).completeBaseName()] = ReadFile(path);
    return path;
}

bool FetchTest::Fetch()
{
    return RunIsOver([this] { client->download.mnuReceive(); });
}

bool FetchTest::FetchHistory()
{
    return RunIsOver([this] {
        if (!client->session.ConnectToServer())
            return;
        const QString range = QStringLiteral("1900-01-01;2100-01-01") + QChar(0) + QStringLiteral("1;1;1;1");
        client->session.BeginCommand(pndFaxList).GetHistoryList(range);
        client->download.ReceiveFaxes(false, true, true, true);
    });
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
        const QByteArray file = ReadFile(Global().strInputBoxPath + rows->Text(1));
        const bool isWhole = !file.isEmpty() && file == delivered.value(rows->Text(0));
        titles.append(isWhole ? rows->Text(0) : QString("broken"));
    }
    return titles;
}
