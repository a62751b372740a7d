#include "desktop/Leftovers.h"
#include "desktop/MainLayout.h"
#include "fixtures/Profile.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class tst_MainLayout : public QObject
{
    Q_OBJECT

private slots:
    void layoutComesBack()
    {
        MainLayout layout;
        layout.Main = {-20, 30, 1024, 700};
        layout.lState = MainLayout::Normal;
        layout.tvFolder = {0, 70, 220, 500};
        layout.bPreviewVisible = false;
        layout.bHistoryVisible = true;
        QVERIFY(WriteMainLayout(layout, "anna", File()));
        const MainLayout read = ReadMainLayout("anna", File());
        QCOMPARE(read.Main.lLeft, -20);
        QCOMPARE(read.Main.lHeight, 700);
        QCOMPARE(read.tvFolder.lWidth, 220);
        QCOMPARE(read.bPreviewVisible, false);
        QCOMPARE(read.bHistoryVisible, true);
        QVERIFY(!read.bAddressbookVisible);
        QVERIFY(!read.picPreview.lHeight);
        QVERIFY(!ReadMainLayout("bob", File()).lState);
        MainLayout maximised; // leaves the place that was stored before
        maximised.lState = MainLayout::Maximised;
        QVERIFY(WriteMainLayout(maximised, "anna", File()));
        QCOMPARE(ReadMainLayout("anna", File()).lState, int(MainLayout::Maximised));
        QCOMPARE(ReadMainLayout("anna", File()).Main.lHeight, 700);
    }

    void oddValuesStayOpen()
    {
        QVERIFY(WriteTestFile(
            File(), "[dora]\nMain_Left=abc\nMain_Top=99999999999\nMain_Width=\nMain_Height=100000\n"
                    "picPreview_IsVisible=-1\ntvAddressbook_IsVisible=0\nhistoryPlane_IsVisible=no\n"));
        const MainLayout layout = ReadMainLayout("dora", File());
        QVERIFY(!layout.Main.lLeft && !layout.Main.lTop && !layout.Main.lWidth && !layout.Main.lHeight);
        QCOMPARE(layout.bPreviewVisible, true);
        QCOMPARE(layout.bAddressbookVisible, false);
        QCOMPARE(layout.bHistoryVisible, false);
    }

    void keysStandInTheirOrder()
    {
        const PaneRect pane{1, 2, 3, 4};
        QVERIFY(WriteMainLayout({pane, 0, pane, pane, pane, pane, true, true, true, 3}, "emma",
                                folder.filePath("new.ini")));
        const QString text = QString::fromUtf8(ReadTestFile(folder.filePath("new.ini")));
        QCOMPARE(text.count('='), 25);
        qsizetype at = 0;
        for (const char *key : {"Main_Left", "Main_State", "tvAddressbook_IsVisible", "picPreview_IsVisible",
                                "historyPlane_IsVisible", "tbClient_Style"}) {
            QVERIFY2(text.indexOf(key, at) >= 0, key);
            at = text.indexOf(key, at);
        }
    }

    void leftoversOfThePrintToolGo()
    {
        const QString box = folder.path() + "/";
        for (const char *name : {"tmp~1.tif", "fax.tif", "tmp~2.txt"})
            QVERIFY(WriteTestFile(box + name, "x"));
        DeleteLeftovers(box);
        QVERIFY(!QFile::exists(box + "tmp~1.tif"));
        QVERIFY(QFile::exists(box + "fax.tif") && QFile::exists(box + "tmp~2.txt"));
    }

private:
    QTemporaryDir folder;
    QString File() const { return folder.filePath("FaxSetup.ini"); }
};

QTEST_GUILESS_MAIN(tst_MainLayout)
#include "tst_MainLayout.moc"
