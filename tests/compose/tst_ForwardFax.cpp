#include "compose/ForwardFax.h"
#include "core/Globals.h"
#include "core/Utilities.h"
#include "fakes/FakeDesktop.h"
#include "fakes/FakePorts.h"
#include "fixtures/AddressRows.h"
#include "fixtures/FaxFile.h"
#include "server/FaxSender.h"

#include <QDir>
#include <QTest>

#include <memory>

using namespace AddressRows;

namespace {

class RecordingUpload final : public FaxSender
{
public:
    bool GetSendFaxID(bool useList, const QString &idList, bool clearRows, bool checkStateAfter) override
    {
        aCalls.append(QString("%1 %2 %3 %4").arg(useList).arg(idList).arg(clearRows).arg(checkStateAfter));
        return true;
    }
    QStringList aCalls;
};

} // namespace

class tst_ForwardFax : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        profile = std::make_unique<Profile>();
        fakes = std::make_unique<FakePorts>();
        desktop = std::make_unique<FakeDesktop>();
        upload = std::make_unique<RecordingUpload>();
        AddContact(*profile, "C1", "Anna", "555", "1");
        AddContact(*profile, "C2", "O~$@~Hara", "<030> 1", "0");
        AddContact(*profile, "C3", "", "777", "1");
        AddUser(*profile, "7", "carl", "Carl [O~$@~Neil]");
        profile->InsertReceivedFax("R1", {{"title", "Offer ~$@~A~$@~"}, {"faxLevel", "2"}});
        QVERIFY(file.Write(Global().strInputBoxPath + "R1.tif"));
        profile->InsertReceivedFax("R2");
        FaxFile prefixed;
        prefixed.bSizePrefix = true;
        QVERIFY(prefixed.Write(Global().strInputBoxPath + "R2.tif"));
        profile->InsertSentFax("S1", {{"folderID", "1006"}, {"originalSender", "9"}, {"fileName", "S1.Tif"}});
        QVERIFY(WriteTestFile(Global().strOutputBoxPath + "S1.tif", file.Bytes()));
        profile->InsertReceivedFax("lost");
        forward = std::make_unique<ForwardFax>(
            fakes->ports, ForwardFax::Rooms{desktop->mainWindow, desktop->mailbox, *upload});
    }

    void cleanup()
    {
        forward.reset();
        QVERIFY(desktop->mainWindow.bEnabled);
        upload.reset();
        desktop.reset();
        fakes.reset();
        profile.reset();
    }

    void receivedFaxGoesIntoOutgoing()
    {
        QVERIFY(forward->Begin({"R1"}, false));
        QVERIFY(!desktop->mainWindow.bEnabled);
        const ForwardFax::Input defaults = forward->ReadDefaults();
        QCOMPARE(defaults.strSubject, "Forward to : Offer 'A'");
        QCOMPARE(defaults.lImportance, 2);
        const QList<SelectedReceiver> chosen{
            {"Anna", "555", SelectedReceiver::rcvPublicContact, "C1"},
            {"O'Hara", "(030) 1", SelectedReceiver::rcvContact, "C2"}, // other brackets than in the table
            {"any", "777", SelectedReceiver::rcvContact, {}},          // by the number alone
            {"gone", "1", SelectedReceiver::rcvContact, "C9"},
            {"Carl", "carl", SelectedReceiver::rcvUser, "7"},
            {"gone", "nobody", SelectedReceiver::rcvUser, "70"},
        };
        QVERIFY(forward->ClickOK(chosen, {"It's %1 ;", 0, "12; <34> ,,"}));
        QCOMPARE(Row(NewID(1)), NewID(1) + ".tif|1003|0||1|2024-01-31 09:00:00|555-0100|0|It~$@~s %1 ;");
        const QString temp = "\"O~$@~Hara\"<(030) 1>;\"12\"<12>;\"(34)\"<(34)>;";
        QCOMPARE(Columns(NewID(1)), "C1;C3;|Carl (O~$@~Neil)[7];|" + temp);
        QCOMPARE(Joined("ReceiverName", NewID(1)),
                 "\"Anna\"<555>;\"O~$@~Hara\"<(030) 1>;\"777\"<777>;Carl (O~$@~Neil)[carl];" + temp);
        QCOMPARE(ReadTestFile(Global().strOutputBoxPath + NewID(1) + ".tif"), file.Bytes());
        QCOMPARE(desktop->mailbox.aCalls, QStringList("saved 1 new "));
        QVERIFY(upload->aCalls.isEmpty());
        forward->Send();
        QCOMPARE(upload->aCalls, QStringList("1 " + NewID(1) + "; 1 1"));
    }

    void severalFaxesKeepTheirFiles()
    {
        QVERIFY(forward->Begin({"R2", "lost", "R1"}, false));
        QCOMPARE(forward->ReadDefaults().strSubject, "");
        QCOMPARE(forward->ReadDefaults().lImportance, 1);
        QVERIFY(forward->ClickOK({}, {"S", 1, "12"}));
        QCOMPARE(ReadTestFile(Global().strOutputBoxPath + NewID(1) + ".tif"), file.Bytes()); // no size bytes
        QCOMPARE(Columns(NewID(2)), "||\"12\"<12>;");
        QCOMPARE(Outgoing(), 2);
        forward->Send();
        QCOMPARE(upload->aCalls, QStringList("1 " + NewID(1) + ";" + NewID(2) + "; 1 1"));
    }

    void sentFaxIsFoundWhateverTheCaseOfItsFile()
    {
        QVERIFY(forward->Begin({"S1"}, true));
        QVERIFY(forward->ClickOK({}, {"S", 1, "12"}));
        QCOMPARE(Row(NewID(1)), NewID(1) + ".Tif|1003|1||1|2024-01-31 09:00:00|9|0|S");
        QCOMPARE(ReadTestFile(Global().strOutputBoxPath + NewID(1) + ".tif"), file.Bytes());
        QVERIFY(ForwardAgain(NewID(1)));
    }

    void manyFaxesAreFoundAsFewAre()
    {
        QStringList ids{"S1"};
        for (int fax = 0; fax < 60; ++fax) {
            ids.append("M" + QString::number(fax));
            profile->InsertSentFax(ids.last());
            if (fax % 2)
                QVERIFY(WriteTestFile(Global().strOutputBoxPath + ids.last() + ".TIF", "fax"));
        }
        QVERIFY(forward->Begin(ids, true));
        QVERIFY(forward->ClickOK({}, {"S", 1, "12"}));
        QCOMPARE(Profile::Value("Select count(*) From SendFax Where TempReceiver='\"12\"<12>;'"), "31");
    }

    void withoutFilesThereIsNothingToForward()
    {
        QVERIFY(!forward->Begin({"lost", "unknown"}, false));
        QVERIFY(!forward->Begin({}, true));
        QVERIFY(desktop->mainWindow.bEnabled);
    }

    void nobodyToSendToIsRefused()
    {
        QVERIFY(forward->Begin({"R1"}, false));
        const QList<SelectedReceiver> gone{{"gone", "1", SelectedReceiver::rcvContact, "C9"}};
        QVERIFY(!forward->ClickOK({}, {"S", 1, ""}));
        QVERIFY(!forward->ClickOK({}, {"S", 1, " ;, "}));
        QVERIFY(!forward->ClickOK(gone, {"S", 1, ""}));
        QCOMPARE(fakes->prompts.Texts(), QStringList(3, "You must specify a recipient at least."));
        QCOMPARE(Outgoing(), 0);
        QVERIFY(desktop->mailbox.aCalls.isEmpty());
    }

    void leftoversOfAnAbortedCopyAreNoFaxes()
    {
        Profile::Execute("Insert Into SendFax(Title,FolderID) Values('half','1002')");
        QVERIFY(forward->Begin({"R1"}, false));
        QVERIFY(forward->ClickOK({}, {"S", 1, "12"}));
        QCOMPARE(Profile::Value("Select count(*) From SendFax Where Title in('half','S')"), "1");
    }

    void failureLeavesNoRowAndNoFile_data()
    {
        QTest::addColumn<QString>("cause");
        for (const char *cause : {"file gone", "copy refused", "table refuses", "no id"})
            QTest::newRow(cause) << cause;
    }
    void failureLeavesNoRowAndNoFile()
    {
        QFETCH(QString, cause);
        Profile::Execute("Insert Into SendFax(Title) Values('half')");
        QVERIFY(forward->Begin({"R1", "R2"}, false));
        if (cause == "file gone")
            QVERIFY(QFile::remove(Global().strInputBoxPath + "R2.tif"));
        else if (cause == "copy refused")
            QVERIFY(QDir().mkpath(Global().strOutputBoxPath + NewID(2) + ".tif/x"));
        else if (cause == "table refuses")
            Profile::Execute("Create Unique Index once On SendFax(Title)");
        else
            fakes->ids.bFails = true;
        QVERIFY(!forward->ClickOK({}, {"S", 1, "12"}));
        QCOMPARE(fakes->prompts.aBoxes.size(), 1);
        QCOMPARE(Profile::Value("Select count(*) From SendFax"), "2"); // S1 and what was there before
        QCOMPARE(QDir(Global().strOutputBoxPath).entryList(QDir::Files), QStringList("S1.tif"));
        // The user can try again.
        Profile::Execute("Drop Index If Exists once");
        fakes->ids.bFails = false;
        QVERIFY(file.Write(Global().strInputBoxPath + "R2.tif"));
        QVERIFY(forward->ClickOK({}, {"S", 1, "12"}));
        QCOMPARE(Outgoing(), 2);
    }

private:
    static QString NewID(int number) { return QString::number(number, 16).rightJustified(32, '0').toUpper(); }
    static int Outgoing()
    {
        return Profile::Value("Select count(*) From SendFax Where FolderID='1003'").toInt();
    }
    bool ForwardAgain(const QString &id)
    {
        ForwardFax again(fakes->ports, {desktop->mainWindow, desktop->mailbox, *upload});
        return again.Begin({id}, true) && again.ClickOK({}, {"S", 1, "34"});
    }
    static QString Joined(const QString &columns, const QString &id)
    {
        return Profile::Value("Select " + QString(columns).replace(' ', "||'|'||") +
                              " From SendFax Where Fax_ID='" + id + "'");
    }
    static QString Row(const QString &id)
    {
        return Joined("FileName FolderID FaxLevel RecyleID Pages ModifyTime originalSender isReaded Title",
                      id);
    }
    static QString Columns(const QString &id)
    {
        return Joined("OuterReceiver InnerReceiver TempReceiver", id);
    }

    const FaxFile file;
    std::unique_ptr<Profile> profile;
    std::unique_ptr<FakePorts> fakes;
    std::unique_ptr<FakeDesktop> desktop;
    std::unique_ptr<RecordingUpload> upload;
    std::unique_ptr<ForwardFax> forward;
};

QTEST_GUILESS_MAIN(tst_ForwardFax)
#include "tst_ForwardFax.moc"
