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
    void layoutComesBack();
    void maximisedWindowLeavesItsPlace();
    void oddValuesStayOpen();
    void keysStandInTheirOrder();
    void leftoversOfThePrintToolGo();

private:
    QTemporaryDir folder;
    QString File() const { return folder.filePath("FaxSetup.ini"); }
};

void tst_MainLayout::layoutComesBack()
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
}

void tst_MainLayout::maximisedWindowLeavesItsPlace()
{
    MainLayout normal;
    normal.Main = {1, 2, 300, 400};
    normal.lState = MainLayout::Normal;
    QVERIFY(WriteMainLayout(normal, "carl", File()));
    MainLayout maximised;
    maximised.lState = MainLayout::Maximised;
    QVERIFY(WriteMainLayout(maximised, "carl", File()));
    QCOMPARE(ReadMainLayout("carl", File()).lState, int(MainLayout::Maximised));
    QCOMPARE(ReadMainLayout("carl", File()).Main.lWidth, 300);
}

void tst_MainLayout::oddValuesStayOpen()
{
    QVERIFY(WriteTestFile(File(),
                          "[dora]\nMain_Left=abc\nMain_Top=99999999999\nMain_Width=\nMain_Height=100000\n"
                          "picPreview_IsVisible=-1\ntvAddressbook_IsVisible=0\nhistoryPlane_IsVisible=no\n"));
    const MainLayout layout = ReadMainLayout("dora", File());
    QVERIFY(!layout.Main.lLeft && !layout.Main.lTop && !layout.Main.lWidth && !layout.Main.lHeight);
    QCOMPARE(layout.bPreviewVisible, true);
    QCOMPARE(layout.bAddressbookVisible, false);
    QCOMPARE(layout.bHistoryVisible, false);
}

void tst_MainLayout::keysStandInTheirOrder()
{
    const PaneRect pane{1, 2, 3, 4};
    QVERIFY(WriteMainLayout({pane, 0, pane, pane, pane, pane, true, true, true}, "emma",
                            folder.filePath("new.ini")));
    QStringList keys;
    for (const QByteArray &line : ReadTestFile(folder.filePath("new.ini")).split('\n')) {
        if (line.contains('='))
            keys.append(QString::fromUtf8(line.left(line.indexOf('='))).trimmed());
    }
    QCOMPARE(keys.size(), 24);
    QCOMPARE(keys.first(), "Main_Left");
    QCOMPARE(keys.indexOf("Main_State"), 4);
    QCOMPARE(keys.indexOf("tvAddressbook_IsVisible"), 13);
    QCOMPARE(keys.indexOf("picPreview_IsVisible"), 22);
    QCOMPARE(keys.last(), "historyPlane_IsVisible");
}

void tst_MainLayout::leftoversOfThePrintToolGo()
{
    const QString box = folder.path() + "/";
    for (const char *name : {"tmp~1.tif", "fax.tif", "tmp~2.txt"})
        QVERIFY(WriteTestFile(box + name, "x"));
    DeleteLeftovers(box);
    QVERIFY(!QFile::exists(box + "tmp~1.tif"));
    QVERIFY(QFile::exists(box + "fax.tif") && QFile::exists(box + "tmp~2.txt"));
}

QTEST_GUILESS_MAIN(tst_MainLayout)
#include "tst_MainLayout.moc"
