#include "controls/PageCanvas.h"
#include "core/RaisedError.h"
#include "desktop/MainWindowTest.h"
#include "mailbox/forms/frmAddFolder.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QScrollBar>
#include <QToolButton>

/// What the window's panes and commands do.
class tst_frmMain : public MainWindowTest
{
    Q_OBJECT

private slots:
    void firstActivationComesOnce()
    {
        int activations = 0;
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

    void folderShowsItsFaxesAndTheFirstPage()
    {
        auto &grid = Get<QTreeView>("grdFaxList");
        auto &title = Get<QLineEdit>("txtTitle"), &page = Get<QLineEdit>("txtPage");
        auto &canvas = Get<PageCanvas>("picPreviewImage");
        QCOMPARE(window->windowTitle(), "Velmar Client");
        SelectInTree("Draft");
        QCOMPARE(grid.model()->rowCount(), 0);
        QCOMPARE(grid.accessibleDescription(), "No faxes in this folder.");
        mailbox->SelectYear(1);
        QVERIFY(grid.accessibleDescription().contains(" from "));
        mailbox->NotifySaveFax(3, false, " and title='Offer'");
        QVERIFY(grid.accessibleDescription().contains("matches the search"));
        mailbox->SelectYear(0);
        QVERIFY(!canvas.HasPage());
        SelectInTree("Incoming");
        QCOMPARE(grid.model()->rowCount(), 2);
        QCOMPARE(grid.currentIndex().row(), 0);
        QVERIFY(grid.isColumnHidden(0) && canvas.HasPage());
        QCOMPARE(title.text() + ", " + page.text(), "Subject B, 1 / 2");
        QCOMPARE(Get<QLabel>("labFolderTip").text().trimmed(), "Incoming");
        QCOMPARE(Get<QLabel>("labTotals").text(), "Total Faxes: 2  Unread: 2");
        QTest::keyClick(&grid, Qt::Key_Down);
        QCOMPARE(title.text(), "Subject A");
        Profile::Execute("UPDATE ReceiveFax SET title='Tab\tand\nline', sender='A\x1b'");
        mailbox->SelectCurrentRow();
        QCOMPARE(title.text(), "Tab and line");
        QCOMPARE(Get<QLineEdit>("txtSender").text(), "A ");
        QVERIFY(!Get<QToolButton>("btnPreviousPage").isEnabled());
        Get<QToolButton>("btnNextPage").click();
        QCOMPARE(page.text(), "2 / 2");
        QVERIFY(!Get<QToolButton>("btnNextPage").isEnabled());
        Get<QToolButton>("btnZoom100").click();
        QVERIFY(!Get<QToolButton>("btnFixWidth").isChecked());
        QCOMPARE(canvas.ZValue(), 1.0);
    }

    /// So many rows go that the view has to begin anew.
    void selectionOutlivesFaxesThatLeave()
    {
        QStringList leaving;
        for (int i = 0; i < 150; ++i) {
            const QString id = QString("S%1").arg(i, 3, 10, QChar('0'));
            profile->InsertSentFax(id, {{"folderID", "1006"}, {"SendTime", id}});
            if (i % 2)
                leaving.append(id);
        }
        SelectInTree("Sent");
        mailbox->SelectFolder("1006");
        auto &grid = Get<QTreeView>("grdFaxList");
        const auto select = [&](int row, QItemSelectionModel::SelectionFlag flag) {
            grid.selectionModel()->setCurrentIndex(grid.model()->index(row, 3),
                                                   flag | QItemSelectionModel::Rows);
        };
        select(149, QItemSelectionModel::ClearAndSelect); // "S000"
        select(147, QItemSelectionModel::Select);
        select(146, QItemSelectionModel::Select); // "S003", which leaves
        Profile::Execute("Update SendFax Set FolderID='1007' Where Fax_ID in('" + leaving.join("','") + "')");
        mailbox->FollowFaxes(leaving, {});
        QCOMPARE(grid.model()->rowCount(), 75);
        QCOMPARE(mailbox->SelectedFaxes(), QStringList({"S002", "S000"}));
        QCOMPARE(grid.selectionModel()->selectedRows().size(), 2);
        QCOMPARE(grid.currentIndex().row(), mailbox->SelectedRow() - 1);
    }

    void turnedPageShowsThePartThatWasLookedAt()
    {
        auto &canvas = Get<PageCanvas>("picPreviewImage");
        Get<QToolButton>("btnZoom100").click();
        canvas.verticalScrollBar()->setValue(20);
        const auto look = [&canvas] {
            const QRect frame = canvas.viewport()->rect().adjusted(4, 4, -4, -4); // less the focus
            return canvas.viewport()->grab(frame).toImage();
        };
        const QImage before = look();
        Command("mnuFaxview_Rotate180").trigger();
        QCOMPARE(look(), before.mirrored(true, true));
        Command("mnuFaxview_RotateLeft90").trigger();
        Command("mnuFaxview_RotateLeft90").trigger();
        QCOMPARE(look(), before);
    }

    void pageMenuFollowsItsCommands()
    {
        QStringList run;
        window->SetCommand("mnuViewFax", [&] { run.append("view"); });
        window->SetCommand("mnuFaxProperty", [&] { run.append("properties"); });
        auto &canvas = Get<PageCanvas>("picPreviewImage");
        auto &menu = Get<QMenu>("mnuFaxview_RightMenu");
        QTest::mousePress(canvas.viewport(), Qt::RightButton);
        QVERIFY(!menu.isVisible());
        QTest::mouseRelease(canvas.viewport(), Qt::RightButton);
        QVERIFY(menu.isVisible());
        menu.close();
        QContextMenuEvent key(QContextMenuEvent::Keyboard, {}, {});
        QCoreApplication::sendEvent(&canvas, &key);
        QVERIFY(menu.isVisible());
        menu.close();
        for (const char *name : {"mnuFaxview_ViewFax", "mnuFaxview_Property", "mnuFaxview_FaxSaveAs"})
            Command(name).trigger(); // of saving there is no routine
        QCOMPARE(run, QStringList({"view", "properties"}));
        QVERIFY(Command("mnuFaxview_FixWidth").isChecked() && !Command("mnuFaxview_ActualSize").isChecked());
        QVERIFY(Command("mnuFaxview_LastPage").isEnabled() && !Command("mnuFaxview_FirstPage").isEnabled());
        SelectInTree("Draft");
        QVERIFY(!Command("mnuFaxview_ViewFax").isEnabled() && !Command("mnuFaxview_ActualSize").isEnabled());
    }

    void keysOfThePageHoldOnPageAndListOnly()
    {
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
        const auto &canvas = Get<PageCanvas>("picPreviewImage");
        for (const char *name : {"cmbYear", "tvFolder", "grdFaxList", "picPreviewImage"}) {
            Command("mnuFaxview_FixWidth").trigger();
            auto &pane = Get<QWidget>(name);
            pane.setFocus();
            QTest::keyClick(&pane, Qt::Key_0);
            const bool isOfPage = &pane == &canvas || pane.objectName() == "grdFaxList";
            QCOMPARE(Command("mnuFaxview_ActualSize").isChecked(), isOfPage);
        }
        QTest::keyClick(&Get<QWidget>("cmbYear"), Qt::Key_Down, Qt::AltModifier); // holds everywhere
        QCOMPARE(Get<QLineEdit>("txtPage").text(), "2 / 2");
        Get<PageCanvas>("picPreviewImage").setFocus();
        QTest::keyClick(&Get<PageCanvas>("picPreviewImage"), Qt::Key_Home);
        QTest::keyClick(&Get<PageCanvas>("picPreviewImage"), Qt::Key_PageUp);
        QCOMPARE(Get<QLineEdit>("txtPage").text(), "1 / 2");
        QVERIFY(canvas.OffsetY() > 0); // the end of the page before
    }

    void clickOnSentSelectsSending()
    {
        SelectInTree("Sent");
        QTRY_COMPARE(Get<QTreeView>("tvFolder").currentIndex().data(), "Sending");
        QCOMPARE(mailbox->SelectedFolder(), "1005");
    }

    void keysOfTheTreeAreItsOwn()
    {
        AddFolder("A", "Letters");
        AddFolder("B", "Minutes");
        window->SetCommand("mnuEditDelete", [] { QFAIL("the list has no say in the tree"); });
        int renamings = 0;
        window->SetCommand("mnuEditFolder", [&] { ++renamings; });
        auto &tree = Get<QTreeView>("tvFolder");
        tree.setFocus();
        SelectInTree("Incoming");
        for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_F2}) // a folder of the system
            QTest::keyClick(&tree, key);
        QCOMPARE(fakes->prompts.Texts(), QStringList());
        QTest::keyClick(&tree, Qt::Key_M, Qt::ShiftModifier); // looks for a name, marks no fax
        QTest::keyClick(&tree, Qt::Key_I);
        QCOMPARE(tree.currentIndex().data(), "Minutes");
        QTest::keyClick(&tree, Qt::Key_F2);
        QCOMPARE(renamings, 1);
        fakes->prompts.aAnswers = {mbAnswerYes};
        QTest::keyClick(&tree, Qt::Key_Delete);
        QCOMPARE(fakes->prompts.Texts(), QStringList("Are you sure you want to remove this folder?"));
        QCOMPARE(tree.currentIndex().data(), "Incoming");
        QCOMPARE(mailbox->SelectedFolder(), "1001");
    }

    void menuOfTheTreeIsForTheFolderUnderTheMouse()
    {
        auto &tree = Get<QTreeView>("tvFolder");
        window->SetCommand("mnuClearRecyle", [] {});
        profile->InsertReceivedFax("R", {{"RecyleID", "1008"}});
        const QModelIndex drafts = Index("Draft");
        QContextMenuEvent mouse(QContextMenuEvent::Mouse, tree.visualRect(drafts).center(), QPoint(40, 40));
        QCoreApplication::sendEvent(tree.viewport(), &mouse);
        auto &menu = Get<QMenu>("mnuFolder");
        QVERIFY(menu.isVisible());
        QCOMPARE(mailbox->SelectedFolder(), "1002");
        QVERIFY(Command("mnuClearRecyle").isEnabled());
        menu.close();
        profile->Execute("DELETE FROM ReceiveFax");
        QTest::keyClick(&tree, Qt::Key_F10, Qt::ShiftModifier);
        QVERIFY(menu.isVisible());
        QVERIFY(!Command("mnuClearRecyle").isEnabled());
        menu.close();
    }

    void folderWindowKeepsOpenUntilTheNameIsGood()
    {
        AddFolder("A", "Letters");
        SelectInTree("Letters");
        frmAddFolder form(mailbox->Changes());
        form.Init(*mailbox->Changes().mnuEditFolder());
        form.show();
        auto *name = form.findChild<QLineEdit *>("txtFolderName");
        QCOMPARE(form.windowTitle(), "Rename folder");
        QCOMPARE(name->selectedText(), "Letters");
        AddFolder("B", "Minutes");
        for (const char *typed : {"", "Minutes"}) {
            name->setText(typed);
            QTest::keyClick(name, Qt::Key_Return);
            QVERIFY(form.isVisible());
        }
        QCOMPARE(name->selectedText(), "Minutes");
        name->setText("Post");
        QTest::keyClick(name, Qt::Key_Return);
        QVERIFY(!form.isVisible());
        QCOMPARE(Get<QTreeView>("tvFolder").currentIndex().data(), "Post");
        QCOMPARE(Get<QLabel>("labFolderTip").text().trimmed(), "Post");
    }

    void selectionOfManyReachesTheMailbox()
    {
        Command("mnuSelectAll").trigger();
        QCOMPARE(mailbox->SelectedFaxes(), QStringList({"B", "A"}));
        const auto &grid = Get<QTreeView>("grdFaxList");
        profile->InsertReceivedFax("C", {{"receiveTime", "2026-01-03 00:00:00"}});
        mailbox->LoadGridItem("1001", 2, {}, false, false); // a fetch leaves them
        QCOMPARE(grid.selectionModel()->selectedRows().size(), 2);
        QCOMPARE(grid.selectionModel()->selectedRows().last().row(), 2);
        QCOMPARE(mailbox->SelectedFaxes(), QStringList({"B", "A"}));
        mailbox->SelectCurrentRow();
        QCOMPARE(grid.selectionModel()->selectedRows().size(), 1);
        Command("mnuSelectAll").trigger();
        Command("mnuReverseSel").trigger();
        QCOMPARE(mailbox->SelectedFaxes(), QStringList());
        QVERIFY(!mailbox->Preview().HasImage());
    }

    void commandsFollowTheirRoutineAndTheConnection()
    {
        window->SetCommMenu(true);
        QVERIFY(!Command("mnuReceive").isEnabled());
        QVERIFY(!Command("mnuNewFax").isEnabled());
        QVERIFY(!Command("mnuPrint").isEnabled());
        QVERIFY(Command("mnuRefresh").isEnabled());
        int runs = 0;
        window->SetCommand("mnuReceive", [&] { ++runs; });
        QVERIFY(Command("mnuReceive").isEnabled());
        Command("tbReceiveFax").trigger();
        QCOMPARE(runs, 1);
        window->SetCommMenu(false);
        QVERIFY(!Command("mnuReceive").isEnabled() && !Command("tbReceiveFax").isEnabled());
        frmMain::SessionState state;
        window->SetSessionState([&] { return state; });
        window->SetCommand("mnuEditDelete", [] {});
        for (const bool isBusy : {false, true}) {
            state.bIsSocketBusy = isBusy;
            window->SetGridCommands();
            QCOMPARE(Command("tbDeleteFax").isEnabled(), !isBusy);
        }
        window->SetCommand("mnuOption", [] { throw RaisedError(5, "here", "no such thing"); });
        Command("mnuOption").trigger();
        QVERIFY(fakes->prompts.Texts().join(' ').contains("no such thing"));
    }

    void clickOnTheUnreadIconAsks()
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

    void clickOnAHeadSorts()
    {
        const auto &header = *Get<QTreeView>("grdFaxList").header();
        const QPoint subject(header.sectionViewportPosition(5) + 20, header.height() / 2);
        for (const char *first : {"A", "B"}) {
            QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, subject);
            QCOMPARE(mailbox->List().Row(1).ID(), first);
        }
    }

    void listIsWorkedByKeys()
    {
        QApplication::setKeyboardInputInterval(60000);
        auto &grid = Get<QTreeView>("grdFaxList");
        grid.setFocus();
        int opened = 0;
        window->SetCommand("mnuViewFax", [&] { ++opened; });
        QTest::keyClick(&grid, Qt::Key_Return);
        QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {},
                           grid.visualRect(grid.currentIndex()).center());
        QCOMPARE(opened, 2);
        QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, {}, {});
        QApplication::sendEvent(&grid, &menuKey);
        QVERIFY(Get<QMenu>("GridRightMenu").isVisible());
        Get<QMenu>("GridRightMenu").hide();
        // A letter that is a command runs it, unless it belongs to a name that is being typed.
        fakes->prompts.aAnswers = {mbAnswerYes};
        QTest::keyClick(&grid, Qt::Key_M);
        QCOMPARE(mailbox->List().UnreadCount(), 1);
        Profile::Execute("UPDATE ReceiveFax SET sender='Tom' WHERE Fax_ID='A'");
        mailbox->ReloadCurrentFolder(true);
        QCOMPARE(mailbox->SelectedFaxes(), QStringList("B"));
        QTest::keyClicks(&grid, "tom");
        QCOMPARE(mailbox->SelectedFaxes(), QStringList("A"));
        QCOMPARE(fakes->prompts.aBoxes.size(), 1);
        int deletions = 0;
        window->SetCommand("mnuEditDelete", [&] { ++deletions; });
        QTest::keyClick(&grid, Qt::Key_Delete);
        QCOMPARE(deletions, 1);
        QTest::keyClick(&grid, Qt::Key_Home, Qt::ShiftModifier);
        QCOMPARE(mailbox->SelectedFaxes(), QStringList({"B", "A"}));
    }

private:
    void AddFolder(const QString &id, const QString &name)
    {
        profile->InsertFolder(id, "1001", "1", name);
        mailbox->Folders().Add(mailbox->Folders().Find("1001"), id, name);
    }
};

QTEST_MAIN(tst_frmMain)
#include "tst_frmMain.moc"
