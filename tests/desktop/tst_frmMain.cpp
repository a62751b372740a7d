#include "controls/PageCanvas.h"
#include "core/Globals.h"
#include "core/RaisedError.h"
#include "core/SettingsFile.h"
#include "desktop/forms/frmMain.h"
#include "fakes/FakePorts.h"
#include "fixtures/FaxFile.h"
#include "fixtures/Profile.h"
#include "mailbox/ShownMailbox.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QSignalSpy>
#include <QSplitter>
#include <QTest>
#include <QToolButton>
#include <QTreeView>

#include <memory>

class tst_frmMain : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void folderShowsItsFaxesAndTheFirstPage();
    void clickOnSentSelectsSending();
    void arrowKeysPassSent();
    void selectionOfManyReachesTheMailbox();
    void newFaxKeepsTheSelectedRow();
    void pageButtonsTurnPages();
    void zoomButtonsExcludeEachOther();
    void commandsWithoutRoutineStayDisabled();
    void commandsRunFromMenuAndToolBar();
    void errorOfACommandEndsInABox();
    void gridCommandsFollowTheSession();
    void gridMenuFollowsTheCommands();
    void clickOnTheUnreadIconAsks();
    void paneKeyGoesRound();
    void hiddenPreviewComesBackHidden();
    void columnsOfTheTreesComeBack();
    void layoutIsStoredBeforeTheLogOff();
    void closeDuringTheLogOffIsPassedOver();
    void firstActivationComesOnce();
    void everythingHasAName();
    void mnemonicsDoNotClash();

private:
    template <typename Widget>
    Widget &Get(const QString &name) const
    {
        auto *found = window->findChild<Widget *>(name);
        if (!found)
            qFatal("no %s", qPrintable(name));
        return *found;
    }
    QAction &Command(const QString &name) const { return Get<QAction>(name); }
    void OpenWindow();
    QString Setting(const QString &key) const { return ReadIniValue("anna", key, Global().strIniFile); }
    void SelectInTree(const QString &text);

    std::unique_ptr<Profile> profile;
    std::unique_ptr<FakePorts> fakes;
    std::unique_ptr<ShownMailbox> mailbox;
    std::unique_ptr<frmMain> window;
};

void tst_frmMain::init()
{
    profile = std::make_unique<Profile>();
    fakes = std::make_unique<FakePorts>();
    Global().SwitchTo = true;
    FaxFile file;
    file.lPages = 2;
    for (const char *id : {"A", "B"}) {
        QVERIFY(file.Write(Global().strInputBoxPath + id + ".tif"));
        profile->InsertReceivedFax(
            id, {{"fileName", QString(id) + ".tif"},
                 {"title", QString("Subject ") + id},
                 {"receiveTime", QString("2026-01-0%1 00:00:00").arg(*id == 'A' ? 1 : 2)}});
    }
    OpenWindow();
}

void tst_frmMain::OpenWindow()
{
    window.reset();
    mailbox = std::make_unique<ShownMailbox>(fakes->message, fakes->clock);
    window = std::make_unique<frmMain>(*mailbox, fakes->message);
    window->Load();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void tst_frmMain::cleanup()
{
    window.reset();
    mailbox.reset();
    fakes.reset();
    profile.reset();
}

void tst_frmMain::SelectInTree(const QString &text)
{
    auto &tree = Get<QTreeView>("tvFolder");
    const QModelIndexList found =
        tree.model()->match(tree.model()->index(0, 0), Qt::DisplayRole, text, 1, Qt::MatchRecursive);
    QCOMPARE(found.size(), 1);
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, tree.visualRect(found.first()).center());
}

void tst_frmMain::folderShowsItsFaxesAndTheFirstPage()
{
    QCOMPARE(window->windowTitle(), "Velmar Client");
    SelectInTree("Draft");
    QCOMPARE(Get<QTreeView>("grdFaxList").model()->rowCount(), 0);
    QVERIFY(!Get<PageCanvas>("picPreviewImage").HasPage());
    SelectInTree("Incoming");
    auto &grid = Get<QTreeView>("grdFaxList");
    QCOMPARE(grid.model()->rowCount(), 2);
    QCOMPARE(grid.currentIndex().row(), 0);
    QVERIFY(grid.isColumnHidden(0));
    QCOMPARE(Get<QLineEdit>("txtTitle").text(), "Subject B");
    QCOMPARE(Get<QLineEdit>("txtPage").text(), "1 / 2");
    QVERIFY(Get<PageCanvas>("picPreviewImage").HasPage());
    QCOMPARE(Get<QLabel>("labFolderTip").text(), "Incoming");
    QCOMPARE(Get<QLabel>("labTotals").text(), "Total Faxes: 2  Unread: 2");
    QTest::keyClick(&grid, Qt::Key_Down);
    QCOMPARE(Get<QLineEdit>("txtTitle").text(), "Subject A");
}

void tst_frmMain::clickOnSentSelectsSending()
{
    SelectInTree("Sent");
    QTRY_COMPARE(Get<QTreeView>("tvFolder").currentIndex().data(), "Sending");
    QCOMPARE(mailbox->SelectedFolder(), "1005");
}

void tst_frmMain::arrowKeysPassSent()
{
    SelectInTree("Outgoing");
    auto &tree = Get<QTreeView>("tvFolder");
    QTest::keyClick(&tree, Qt::Key_Down);
    QTRY_COMPARE(tree.currentIndex().data(), "Sending");
    QTest::keyClick(&tree, Qt::Key_Up);
    QTRY_COMPARE(tree.currentIndex().data(), "Outgoing");
}

void tst_frmMain::selectionOfManyReachesTheMailbox()
{
    Command("mnuSelectAll").trigger();
    QCOMPARE(mailbox->SelectedFaxes(), QStringList({"B", "A"}));
    Command("mnuReverseSel").trigger();
    QCOMPARE(mailbox->SelectedFaxes(), QStringList());
    QVERIFY(!mailbox->Preview().HasImage());
}

void tst_frmMain::newFaxKeepsTheSelectedRow()
{
    mailbox->SelectRow(2);
    profile->InsertReceivedFax("C", {{"receiveTime", "2026-01-03 00:00:00"}});
    mailbox->LoadGridItem("1001", 2, {}, false, false);
    const auto &grid = Get<QTreeView>("grdFaxList");
    QCOMPARE(grid.model()->rowCount(), 3);
    QCOMPARE(grid.selectionModel()->selectedRows().size(), 1);
    QCOMPARE(grid.selectionModel()->selectedRows().first().row(), 2);
    QCOMPARE(mailbox->SelectedFaxes(), QStringList("A"));
}

void tst_frmMain::pageButtonsTurnPages()
{
    auto &next = Get<QToolButton>("btnNextPage");
    auto &previous = Get<QToolButton>("btnPreviousPage");
    QVERIFY(next.isEnabled() && !previous.isEnabled());
    next.click();
    QCOMPARE(Get<QLineEdit>("txtPage").text(), "2 / 2");
    QVERIFY(!next.isEnabled() && previous.isEnabled());
    SelectInTree("Draft");
    for (const char *name : {"btnNextPage", "btnPreviousPage", "btnFixWidth", "btnZoom100", "btnRotateLeft",
                             "btnRotateRight", "btnRotatePlane"})
        QVERIFY2(!Get<QToolButton>(name).isEnabled(), name);
}

void tst_frmMain::zoomButtonsExcludeEachOther()
{
    auto &fit = Get<QToolButton>("btnFixWidth");
    auto &actual = Get<QToolButton>("btnZoom100");
    auto &canvas = Get<PageCanvas>("picPreviewImage");
    QVERIFY(fit.isChecked() && canvas.ZAutoFit());
    actual.click();
    QVERIFY(!fit.isChecked() && actual.isChecked());
    QCOMPARE(canvas.ZValue(), 1.0);
    QTest::keyClick(&canvas, Qt::Key_Minus);
    QVERIFY(!actual.isChecked());
    QVERIFY(canvas.ZValue() < 1.0);
    fit.click();
    QVERIFY(fit.isChecked() && canvas.ZAutoFit());
}

void tst_frmMain::commandsWithoutRoutineStayDisabled()
{
    window->SetCommMenu(true);
    QVERIFY(!Command("mnuReceive").isEnabled());
    QVERIFY(!Command("mnuNewFax").isEnabled());
    QVERIFY(!Command("mnuPrint").isEnabled());
    QVERIFY(Command("mnuRefresh").isEnabled());
    window->SetCommand("mnuReceive", [] {});
    QVERIFY(Command("mnuReceive").isEnabled() && Command("tbReceiveFax").isEnabled());
    window->SetCommMenu(false);
    QVERIFY(!Command("mnuReceive").isEnabled() && !Command("tbReceiveFax").isEnabled());
}

void tst_frmMain::commandsRunFromMenuAndToolBar()
{
    int runs = 0;
    window->SetCommand("mnuSendReceive", [&] { ++runs; });
    window->SetCommMenu(true);
    Command("tbSendReceive").trigger();
    QTest::keyClick(window.get(), Qt::Key_F9);
    QCOMPARE(runs, 2);
}

void tst_frmMain::errorOfACommandEndsInABox()
{
    window->SetCommand("mnuOption", [] { throw RaisedError(5, "here", "no such thing"); });
    Command("mnuOption").trigger();
    QCOMPARE(fakes->prompts.aBoxes.size(), 1);
    QVERIFY(fakes->prompts.aBoxes.first().strText.contains("no such thing"));
}

void tst_frmMain::gridCommandsFollowTheSession()
{
    frmMain::SessionState state;
    window->SetSessionState([&] { return state; });
    window->SetCommand("mnuEditDelete", [] {});
    window->SetGridCommands();
    QVERIFY(Command("tbDeleteFax").isEnabled());
    state.bIsSocketBusy = true;
    window->SetGridCommands();
    QVERIFY(!Command("tbDeleteFax").isEnabled());
}

void tst_frmMain::gridMenuFollowsTheCommands()
{
    QVERIFY(Command("RightMenu_MarkReaded").isEnabled());
    QVERIFY(!Command("RightMenu_PrintFax").isEnabled());
    fakes->prompts.aAnswers = {mbAnswerYes};
    Command("RightMenu_MarkReaded").trigger();
    QVERIFY(mailbox->List().Row(1).bRead);
    Command("RightMenu_MarkNotRead").trigger();
    QVERIFY(!mailbox->List().Row(1).bRead);
    SelectInTree("Draft");
    QVERIFY(!Command("RightMenu_MarkReaded").isEnabled());
}

void tst_frmMain::clickOnTheUnreadIconAsks()
{
    auto &grid = Get<QTreeView>("grdFaxList");
    const QPoint icon = grid.visualRect(grid.model()->index(1, 1)).center();
    QTest::mouseMove(grid.viewport(), icon);
    QTRY_COMPARE(mailbox->List().Row(2).ReadImageKey(), "imgFaxMouseOn");
    fakes->prompts.aAnswers = {mbAnswerYes};
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, icon);
    QCOMPARE(fakes->prompts.Texts(), QStringList("Are you sure want to mark this fax as read?"));
    QCOMPARE(mailbox->List().Row(2).ReadImageKey(), "imgReaded");
}

void tst_frmMain::paneKeyGoesRound()
{
    Get<QTreeView>("tvFolder").setFocus();
    const QStringList expected{"grdFaxList", "picPreviewImage", "tvFolder"};
    for (const QString &name : expected) {
        Command("mnuNextPane").trigger();
        QCOMPARE(window->focusWidget()->objectName(), name);
    }
}

void tst_frmMain::hiddenPreviewComesBackHidden()
{
    Command("mnuPreview").trigger();
    QVERIFY(Get<QWidget>("picPreview").isHidden());
    window->close();
    QCOMPARE(Setting("picPreview_IsVisible"), "False");
    QVERIFY(Setting("picPreview_Height").toInt() > 50); // as it was before
    OpenWindow();
    QVERIFY(Get<QWidget>("picPreview").isHidden());
    QVERIFY(!Command("mnuPreview").isChecked());
    Command("mnuPreview").trigger();
    QTRY_VERIFY(Get<QWidget>("picPreview").height() > 50);
}

void tst_frmMain::columnsOfTheTreesComeBack()
{
    Get<QSplitter>("picVSource").setSizes({333, 400});
    const int width = Get<QWidget>("tvFolder").width();
    window->close();
    QCOMPARE(Setting("tvFolder_Width").toInt(), width);
    QCOMPARE(Setting("Main_State"), "0");
    OpenWindow();
    QCOMPARE(Get<QWidget>("tvFolder").width(), width);
}

void tst_frmMain::layoutIsStoredBeforeTheLogOff()
{
    QString stored;
    window->SetClosing([&] { stored = Setting("Main_State"); });
    window->Unload();
    QCOMPARE(stored, "0");
    QVERIFY(!window->isVisible());
}

void tst_frmMain::closeDuringTheLogOffIsPassedOver()
{
    int closings = 0;
    window->SetClosing([&] {
        ++closings;
        window->close(); // an impatient user, while the log off waits
    });
    window->close();
    QCOMPARE(closings, 1);
    QVERIFY(!window->isVisible());
}

void tst_frmMain::firstActivationComesOnce()
{
    int activations = 0;
    window.reset();
    mailbox = std::make_unique<ShownMailbox>(fakes->message, fakes->clock);
    window = std::make_unique<frmMain>(*mailbox, fakes->message);
    window->SetFirstActivation([&] { ++activations; });
    window->Load();
    QCOMPARE(activations, 0);
    QTRY_COMPARE(activations, 1);
    window->hide();
    window->Raise();
    QTest::qWait(0);
    QCOMPARE(activations, 1);
}

void tst_frmMain::everythingHasAName()
{
    for (const QToolButton *button : Get<QWidget>("picPreview").findChildren<QToolButton *>()) {
        QVERIFY2(!button->accessibleName().isEmpty(), qPrintable(button->objectName()));
        QVERIFY2(!button->toolTip().isEmpty(), qPrintable(button->objectName()));
    }
    for (const char *name : {"tvFolder", "tvAddressbook", "grdFaxList", "picPreviewImage", "cmbYear"})
        QVERIFY2(!Get<QWidget>(name).accessibleName().isEmpty(), name);
}

void tst_frmMain::mnemonicsDoNotClash()
{
    const auto check = [](const QList<QAction *> &actions, const QString &menu) {
        QStringList seen;
        for (const QAction *action : actions) {
            const qsizetype at = action->text().indexOf('&');
            const QString letter = at < 0 ? QString() : action->text().mid(at + 1, 1).toLower();
            QVERIFY2(letter.isEmpty() || !seen.contains(letter), qPrintable(menu + ": " + action->text()));
            seen.append(letter);
        }
    };
    check(window->menuBar()->actions(), "menu bar");
    for (const QMenu *menu : window->findChildren<QMenu *>())
        check(menu->actions(), menu->objectName());
}

QTEST_MAIN(tst_frmMain)
#include "tst_frmMain.moc"
