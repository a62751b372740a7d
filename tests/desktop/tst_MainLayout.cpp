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
        const PaneRect pane{1, 2, 3, 4}, main{-20, 30, 1024, 700};
        QVERIFY(WriteMainLayout({main, MainLayout::Normal, pane, pane, pane, pane, false, false, true, 3},
                                "anna", File()));
        const QString text = QString::fromUtf8(ReadTestFile(File()));
        QCOMPARE(text.count('='), 25);
        qsizetype at = 0;
        for (const char *key : {"Main_Left", "Main_State", "tvAddressbook_IsVisible", "picPreview_IsVisible",
                                "historyPlane_IsVisible", "tbClient_Style"}) {
            at = text.indexOf(key, at);
            QVERIFY2(at >= 0, key);
        }
        const MainLayout read = ReadMainLayout("anna", File());
        QVERIFY(read.Main.lLeft == -20 && read.Main.lHeight == 700 && read.tvFolder.lWidth == 3);
        QVERIFY(read.bAddressbookVisible == false && read.bPreviewVisible == false);
        QVERIFY(read.bHistoryVisible == true && read.lToolBarStyle == 3);
        QVERIFY(!ReadMainLayout("bob", File()).lState);
        MainLayout maximised; // leaves the places that were stored before
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
