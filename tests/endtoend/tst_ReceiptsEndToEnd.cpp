#include "core/Globals.h"
#include "core/ports/Timer.h"
#include "endtoend/ClientUnderTest.h"
#include "fixtures/Profile.h"
#include "fixtures/TrialServer.h"
#include "mailbox/ShownMailbox.h"

#include <QTemporaryDir>
#include <QTest>

namespace {

constexpr int lFirstReader = 5; ///< column of "First Read By"

/// One user at his client, with the mailbox that he has before his eyes. Only one lives at a time.
struct Reader
{
    Reader(const TrialServer &server, const QString &home, const QString &account)
        : client(home, 10)
    {
        // As the program connects them.
        QObject::connect(&mailbox.Marks(), &ReadMarks::ReceiptsQueued, &receipts,
                         &ReturnReceipts::NotifyReceiptRead, Qt::QueuedConnection);
        isIn = client.LogIn({server.Address(), account, account});
        if (!isIn)
            return;
        client.runs.SyncWithServer(true);
        client.session.CheckFaxTimer().SetEnabled(true);
        mailbox.LoadFaxFolderTree();
        mailbox.SelectFolder("1001");
    }

    void Fetch()
    {
        client.download.mnuReceive();
        mailbox.SelectFolder("1001");
    }
    /// A click on the icon of the unread fax, and a yes.
    void Read(const QString &title)
    {
        client.prompts.aAnswers = {mbAnswerYes};
        mailbox.Marks().ClickReadIcon(RowOf(title));
    }
    bool Sends(int milliseconds = 10000)
    {
        return client.WaitUntil([] { return Queued() == 0; }, milliseconds);
    }
    static int Queued() { return Profile::Value("SELECT count(*) FROM ReceiptQueue").toInt(); }
    int RowOf(const QString &title) const
    {
        for (int row = 1; row <= mailbox.RowCount(); ++row) {
            if (mailbox.List().Row(row).Cell(lFirstReader + 1) == title)
                return row;
        }
        return 0;
    }
    QString FirstReader(const QString &title) const
    {
        return mailbox.List().Row(RowOf(title)).Cell(lFirstReader);
    }

    ClientUnderTest client;
    ShownMailbox mailbox{client.message, client.clock, client.ids};
    ReturnReceipts receipts{client.ports, client.session, mailbox, client.desktop.mainWindow};
    bool isIn = false;
};

} // namespace

/// What one user reads shows at the other, through the real server.
class tst_ReceiptsEndToEnd : public QObject
{
    Q_OBJECT

private slots:
    void readingShowsAtTheOtherReceiver()
    {
        TrialServer server;
        const QTemporaryDir folder;
        const QString home = folder.path();
        QStringList files;
        for (const char *name : {"online.tif", "offline.tif", "unread.tif"})
            files.append(server.MakeFax(name));
        QVERIFY(server.AddUser("anna", "anna") && server.AddUser("ben", "ben") &&
                server.Deliver("anna,ben", files) && server.Start());
        {
            Reader ben(server, home, "ben");
            ben.Fetch();
            QCOMPARE(ben.mailbox.RowCount(), 3);
        }
        {
            Reader anna(server, home, "anna");
            anna.Fetch();
            anna.Read("online");
            QVERIFY(anna.Sends());
            anna.client.runs.mnuLogoutServer();
            anna.Read("offline");
            QVERIFY(!anna.Sends(300));
        }
        {
            Reader ben(server, home, "ben"); // synchronises
            QCOMPARE(ben.FirstReader("online"), "anna[anna]");
            QCOMPARE(ben.FirstReader("offline"), "");
        }
        {
            const Reader anna(server, home, "anna");
            QVERIFY(anna.isIn);
            QCOMPARE(Reader::Queued(), 0); // left with the login
        }
        Reader ben(server, home, "ben");
        QCOMPARE(ben.FirstReader("offline"), "anna[anna]");
        ben.Read("online");
        ben.Read("unread");
        QVERIFY(ben.Sends());
        QCOMPARE(ben.FirstReader("unread"), "");
        ben.mailbox.SelectRow(ben.RowOf("offline"));
        ben.client.runs.SyncWithServer(true); // shows what came, and leaves the reader where he was
        QCOMPARE(ben.FirstReader("unread"), "ben[ben]");
        QCOMPARE(ben.FirstReader("online"), "anna[anna]");
        QCOMPARE(ben.mailbox.SelectedRow(), ben.RowOf("offline"));
    }
};

QTEST_GUILESS_MAIN(tst_ReceiptsEndToEnd)
#include "tst_ReceiptsEndToEnd.moc"
