#include "core/Globals.h"
#include "core/RaisedError.h"
#include "fixtures/FaxFile.h"
#include "fixtures/Profile.h"
#include "mailbox/FaxFiles.h"
#include "mailbox/FaxPreview.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

class tst_FaxPreview : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        profile = std::make_unique<Profile>();
        preview = std::make_unique<FaxPreview>();
    }
    void cleanup()
    {
        preview.reset();
        profile.reset();
    }

    void receivedFaxShowsItsHeader()
    {
        Receive("A", {}, {{"sender", "O~$@~Neil"}, {"receiveUser", "anna"}, {"title", "Bill"}});
        preview->LoadFaxPreview("A", 0);
        QCOMPARE(preview->Texts().strSender, "O'Neil");
        QCOMPARE(preview->Texts().strReceiver, "anna");
        QCOMPARE(preview->Texts().strTitle, "Bill");
        QCOMPARE(preview->Texts().strFileName, "A.tif");
        QVERIFY(preview->HasImage());
        QCOMPARE(preview->PageText(), "1 / 1");
        QVERIFY(!preview->CanGoBack() && !preview->CanGoForward());
        Receive("B", {}, {{"sender", ""}});
        preview->LoadFaxPreview("B", 0);
        QCOMPARE(preview->Texts().strSender, Global().strUserName);
    }

    void sentFaxComesFromTheUser()
    {
        profile->InsertSentFax("S", {{"ReceiverName", "Ann;Bob;"}, {"fileName", "s.TIF"}}); // in another case
        QVERIFY(FaxFile().Write(Global().strOutputBoxPath + "S.tif"));
        preview->LoadFaxPreview("S", 1);
        QCOMPARE(preview->Texts().strSender, Global().strUserName);
        QCOMPARE(preview->Texts().strReceiver, "Ann;Bob");
        QCOMPARE(preview->PreviewFile(), Global().strOutputBoxPath + "S.tif");
        QVERIFY(preview->HasImage());
    }

    void standardPageIsStretched()
    {
        for (const int dpi : {98, 196, 0}) {
            Receive(QString::number(dpi), {.lDotsPerInchY = dpi});
            preview->LoadFaxPreview(QString::number(dpi), 0);
            QCOMPARE(preview->IsStretchedY(), dpi == 98);
            preview->Rotate(90);
            QCOMPARE(preview->IsStretchedX(), dpi == 98);
            QVERIFY(!preview->IsStretchedY());
        }
    }

    void pagesTurnWithinTheFax()
    {
        Receive("A", {.lPages = 3});
        preview->LoadFaxPreview("A", 0);
        const QByteArray first = preview->Page().abBits;
        const QSignalSpy turned(preview.get(), &FaxPreview::PageChanged);
        preview->PreviousPage();
        QCOMPARE(turned.size(), 0);
        preview->NextPage();
        QCOMPARE(preview->PageText(), "2 / 3");
        QVERIFY(preview->Page().abBits != first);
        preview->LastPage();
        QVERIFY(preview->CanGoBack() && !preview->CanGoForward());
        preview->NextPage();
        QCOMPARE(preview->PreviewPage(), 2);
        preview->FirstPage();
        QCOMPARE(preview->Page().abBits, first);
    }

    void rotationRunsOnUntilTheNextFax()
    {
        Receive("A", {.lPages = 2});
        preview->LoadFaxPreview("A", 0);
        for (int i = 0; i < 3; ++i)
            preview->Rotate(90);
        preview->Rotate(-90);
        QCOMPARE(preview->PreviewRotation(), 180);
        preview->Rotate(270);
        QCOMPARE(preview->PreviewRotation(), 450);
        QCOMPARE(preview->Page().lWidth, FaxFile().lHeight);
        preview->NextPage();
        QCOMPARE(preview->Page().lWidth, FaxFile().lHeight); // the next page is turned as well
        preview->LoadFaxPreview("A", 0);
        QCOMPARE(preview->PreviewRotation(), 0);
        QCOMPARE(preview->PreviewPage(), 0);
    }

    void faxWithoutFileSaysWhy()
    {
        profile->InsertReceivedFax("GONE", {{"fileName", "gone.tif"}, {"title", "Bill"}});
        preview->LoadFaxPreview("GONE", 0);
        QVERIFY(!preview->HasImage());
        QCOMPARE(preview->PageText(), "");
        QCOMPARE(preview->Texts().strTitle, "");
        QVERIFY(preview->Complaint().contains("gone.tif"));
        profile->InsertSentFax("DRAFT", {{"fileName", ""}});
        preview->LoadFaxPreview("DRAFT", 1);
        QCOMPARE(preview->Complaint(), "This fax has no pages yet.");
        QVERIFY(WriteTestFile(Global().strInputBoxPath + "junk.tif", "this is no picture"));
        profile->InsertReceivedFax("JUNK", {{"fileName", "junk.tif"}});
        preview->LoadFaxPreview("JUNK", 0);
        QVERIFY(!preview->HasImage() && !preview->Complaint().isEmpty());
        profile->InsertReceivedFax("LONG", {{"fileName", QString(1 << 20, 'x')}});
        preview->LoadFaxPreview("LONG", 0);
        QVERIFY(preview->Complaint().size() < 1000);
    }

    void errorLeavesNoOtherFaxOnShow()
    {
        Receive("A", {});
        preview->LoadFaxPreview("A", 0);
        Profile::Execute("DROP TABLE SendFax");
        QVERIFY_THROWS_EXCEPTION(RaisedError, preview->LoadFaxPreview("B", 1));
        QVERIFY(!preview->HasImage() && preview->PageText().isEmpty());
    }

    void fileNameStaysInTheFolder()
    {
        QVERIFY(FaxFile().Write(Global().strUserFolder + "secret.tif"));
        profile->InsertReceivedFax("A", {{"fileName", "../secret.tif"}});
        preview->LoadFaxPreview("A", 0);
        QVERIFY(!preview->HasImage());
        QVERIFY(!preview->PreviewFile().contains(".."));
        QVERIFY(!FaxFileExists("A", nullptr, false));
    }

    void filesAreListedWhereTheyExist()
    {
        Receive("A", {});
        profile->InsertReceivedFax("GONE", {{"fileName", "gone.tif"}});
        profile->InsertReceivedFax("NONE", {{"fileName", ""}});
        profile->InsertSentFax("S", {{"fileName", "s.TIF"}}); // in another case
        QVERIFY(FaxFile().Write(Global().strOutputBoxPath + "S.tif"));
        QString files;
        QVERIFY(FaxFileExists("A", &files, false) && FaxFileExists("S", &files, true));
        QVERIFY(FaxFileExists("A", nullptr, false));
        for (const char *id : {"GONE", "NONE", "NOBODY", "S"})
            QVERIFY(!FaxFileExists(id, &files, false));
        QCOMPARE(files, Global().strInputBoxPath + "A.tif," + Global().strOutputBoxPath + "S.tif,");
    }

private:
    void Receive(const QString &id, const FaxFile &file, const Profile::Columns &columns = {})
    {
        Profile::Columns all{{"fileName", id + ".tif"}};
        all.insert(columns);
        profile->InsertReceivedFax(id, all);
        QVERIFY(file.Write(Global().strInputBoxPath + id + ".tif"));
    }

    std::unique_ptr<Profile> profile;
    std::unique_ptr<FaxPreview> preview;
};

QTEST_GUILESS_MAIN(tst_FaxPreview)
#include "tst_FaxPreview.moc"
