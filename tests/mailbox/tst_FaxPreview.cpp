#include "core/Globals.h"
#include "fixtures/FaxFile.h"
#include "fixtures/Profile.h"
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

    void receivedFaxShowsItsHeader();
    void sentFaxComesFromTheUser();
    void pagesTurnWithinTheFax();
    void rotationRunsOnUntilTheNextFax();
    void standardPageIsStretched_data();
    void standardPageIsStretched();
    void zoomOutlivesTheFax();
    void faxWithoutFileSaysWhy();
    void fileNameStaysInTheFolder();
    void caseOfTheFileNameDoesNotMatter();

private:
    void Receive(const QString &id, const FaxFile &file, const Profile::Columns &columns = {});

    std::unique_ptr<Profile> profile;
    std::unique_ptr<FaxPreview> preview;
};

void tst_FaxPreview::Receive(const QString &id, const FaxFile &file, const Profile::Columns &columns)
{
    Profile::Columns all{{"fileName", id + ".tif"}};
    all.insert(columns);
    profile->InsertReceivedFax(id, all);
    QVERIFY(file.Write(Global().strInputBoxPath + id + ".tif"));
}

void tst_FaxPreview::receivedFaxShowsItsHeader()
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

void tst_FaxPreview::sentFaxComesFromTheUser()
{
    profile->InsertSentFax("S", {{"ReceiverName", "Ann;Bob;"}, {"title", "Offer"}, {"fileName", "S.tif"}});
    QVERIFY(FaxFile().Write(Global().strOutputBoxPath + "S.tif"));
    preview->LoadFaxPreview("S", 1);
    QCOMPARE(preview->Texts().strSender, Global().strUserName);
    QCOMPARE(preview->Texts().strReceiver, "Ann;Bob");
    QCOMPARE(preview->PreviewFile(), Global().strOutputBoxPath + "S.tif");
    QVERIFY(preview->HasImage());
}

void tst_FaxPreview::pagesTurnWithinTheFax()
{
    FaxFile file;
    file.lPages = 3;
    Receive("A", file);
    preview->LoadFaxPreview("A", 0);
    const QByteArray first = preview->Page().abBits;
    const QSignalSpy turned(preview.get(), &FaxPreview::PageChanged);
    preview->PreviousPage();
    QCOMPARE(turned.size(), 0);
    preview->NextPage();
    QCOMPARE(preview->PageText(), "2 / 3");
    QVERIFY(preview->Page().abBits != first);
    QVERIFY(preview->CanGoBack() && preview->CanGoForward());
    preview->LastPage();
    QCOMPARE(preview->PageText(), "3 / 3");
    QVERIFY(!preview->CanGoForward());
    preview->NextPage();
    QCOMPARE(preview->PreviewPage(), 2);
    preview->FirstPage();
    QCOMPARE(preview->Page().abBits, first);
}

void tst_FaxPreview::rotationRunsOnUntilTheNextFax()
{
    FaxFile file;
    file.lPages = 2;
    Receive("A", file);
    preview->LoadFaxPreview("A", 0);
    for (int i = 0; i < 3; ++i)
        preview->Rotate(90);
    preview->Rotate(-90);
    QCOMPARE(preview->PreviewRotation(), 180);
    preview->Rotate(270);
    QCOMPARE(preview->PreviewRotation(), 450);
    QCOMPARE(preview->Page().lWidth, file.lHeight);
    preview->NextPage();
    QCOMPARE(preview->Page().lWidth, file.lHeight); // the next page is turned as well
    preview->LoadFaxPreview("A", 0);
    QCOMPARE(preview->PreviewRotation(), 0);
    QCOMPARE(preview->PreviewPage(), 0);
}

void tst_FaxPreview::standardPageIsStretched_data()
{
    QTest::addColumn<int>("dpi");
    QTest::addColumn<bool>("stretched");
    QTest::newRow("98") << 98 << true;
    QTest::newRow("72") << 72 << true;
    QTest::newRow("196") << 196 << false;
    QTest::newRow("100") << 100 << false;
    QTest::newRow("none") << 0 << false;
}

void tst_FaxPreview::standardPageIsStretched()
{
    QFETCH(int, dpi);
    QFETCH(bool, stretched);
    FaxFile file;
    file.lDotsPerInchY = dpi;
    Receive("A", file);
    preview->LoadFaxPreview("A", 0);
    QCOMPARE(preview->IsStretchedY(), stretched);
    QVERIFY(!preview->IsStretchedX());
    preview->Rotate(90);
    QCOMPARE(preview->IsStretchedX(), stretched);
    QVERIFY(!preview->IsStretchedY());
}

void tst_FaxPreview::zoomOutlivesTheFax()
{
    Receive("A", {});
    Receive("B", {});
    preview->LoadFaxPreview("A", 0);
    QVERIFY(preview->IsFitWidth());
    preview->SetZoom100();
    preview->LoadFaxPreview("B", 0);
    QVERIFY(preview->IsZoom100() && !preview->IsFitWidth());
    preview->SetFreeZoom();
    preview->LoadFaxPreview("A", 0);
    QVERIFY(preview->IsFitWidth());
    preview->ResetPreview(true);
    QVERIFY(!preview->IsFitWidth() && !preview->IsZoom100());
}

void tst_FaxPreview::faxWithoutFileSaysWhy()
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
}

void tst_FaxPreview::fileNameStaysInTheFolder()
{
    QVERIFY(FaxFile().Write(Global().strUserFolder + "secret.tif"));
    profile->InsertReceivedFax("A", {{"fileName", "../secret.tif"}});
    preview->LoadFaxPreview("A", 0);
    QVERIFY(!preview->HasImage());
    QVERIFY(!preview->PreviewFile().contains(".."));
}

void tst_FaxPreview::caseOfTheFileNameDoesNotMatter()
{
    Receive("A", {}, {{"fileName", "a.TIF"}});
    preview->LoadFaxPreview("A", 0);
    QVERIFY(preview->HasImage());
    QCOMPARE(preview->PreviewFile(), Global().strInputBoxPath + "A.tif");
}

QTEST_GUILESS_MAIN(tst_FaxPreview)
#include "tst_FaxPreview.moc"
