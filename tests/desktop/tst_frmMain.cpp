#include "controls/Icons.h"
#include "controls/PageCanvas.h"
#include "core/Globals.h"
#include "core/RaisedError.h"
#include "core/SettingsFile.h"
#include "desktop/forms/frmMain.h"
#include "fakes/FakePorts.h"
#include "fixtures/FaxFile.h"
#include "fixtures/Profile.h"
#include "mailbox/ShownMailbox.h"
#include "mailbox/forms/frmAddFolder.h"

#include <QAccessible>
#include <QAction>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QSplitter>
#include <QTest>
#include <QToolBar>
#include <QToolButton>
#include <QTreeView>

#include <memory>

class tst_frmMain : public QObject
{
    Q_OBJECT

private slots:
    void init()
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

    void cleanup()
    {
        window.reset();
        mailbox.reset();
        fakes.reset();
        profile.reset();
    }

    void gridCommandsFollowTheSession()
    {
        frmMain::SessionState state;
        window->SetSessionState([&] { return state; });
        window->SetCommand("mnuEditDelete", [] {});
        window->SetGridCommands();
        auto &deleteFax = Get<QAction>("tbDeleteFax");
        QVERIFY(deleteFax.isEnabled());
        state.bIsSocketBusy = true;
        window->SetGridCommands();
        QVERIFY(!deleteFax.isEnabled());
    }

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
        QCOMPARE(window->windowTitle(), "Velmar Client");
        SelectInTree("Draft");
        QCOMPARE(Get<QTreeView>("grdFaxList").model()->rowCount(), 0);
        QCOMPARE(Get<QTreeView>("grdFaxList").accessibleDescription(), "No faxes in this folder.");
        mailbox->SelectYear(1);
        QVERIFY(Get<QTreeView>("grdFaxList").accessibleDescription().contains(" from "));
        mailbox->NotifySaveFax(3, false, " and title='Offer'");
        QVERIFY(Get<QTreeView>("grdFaxList").accessibleDescription().contains("matches the search"));
        mailbox->SelectYear(0);
        QVERIFY(!Get<PageCanvas>("picPreviewImage").HasPage());
        SelectInTree("Incoming");
        auto &grid = Get<QTreeView>("grdFaxList");
        QCOMPARE(grid.model()->rowCount(), 2);
        QCOMPARE(grid.currentIndex().row(), 0);
        QVERIFY(grid.isColumnHidden(0));
        QCOMPARE(Get<QLineEdit>("txtTitle").text(), "Subject B");
        QCOMPARE(Get<QLineEdit>("txtPage").text(), "1 / 2");
        QVERIFY(Get<PageCanvas>("picPreviewImage").HasPage());
        QCOMPARE(Get<QLabel>("labFolderTip").text().trimmed(), "Incoming");
        QCOMPARE(Get<QLabel>("labTotals").text(), "Total Faxes: 2  Unread: 2");
        QTest::keyClick(&grid, Qt::Key_Down);
        QCOMPARE(Get<QLineEdit>("txtTitle").text(), "Subject A");
        Profile::Execute("UPDATE ReceiveFax SET title='Tab\tand\nline', sender='A\x1b'");
        mailbox->SelectCurrentRow();
        QCOMPARE(Get<QLineEdit>("txtTitle").text(), "Tab and line");
        QCOMPARE(Get<QLineEdit>("txtSender").text(), "A ");
        QVERIFY(!Get<QToolButton>("btnPreviousPage").isEnabled());
        Get<QToolButton>("btnNextPage").click();
        QCOMPARE(Get<QLineEdit>("txtPage").text(), "2 / 2");
        QVERIFY(!Get<QToolButton>("btnNextPage").isEnabled());
        Get<QToolButton>("btnZoom100").click();
        QVERIFY(!Get<QToolButton>("btnFixWidth").isChecked());
        QCOMPARE(Get<PageCanvas>("picPreviewImage").ZValue(), 1.0);
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
        mailbox->LoadGridItem("1001", 2, {}, false, false);
        QCOMPARE(grid.selectionModel()->selectedRows().size(), 2); // a fetch leaves them
        mailbox->SelectCurrentRow();
        QCOMPARE(grid.selectionModel()->selectedRows().size(), 1);
        Command("mnuSelectAll").trigger();
        Command("mnuReverseSel").trigger();
        QCOMPARE(mailbox->SelectedFaxes(), QStringList());
        QVERIFY(!mailbox->Preview().HasImage());
    }

    void newFaxKeepsTheSelectedRow()
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
        QTest::keyClick(&grid, Qt::Key_Home, Qt::ShiftModifier);
        QCOMPARE(mailbox->SelectedFaxes(), QStringList({"B", "A"}));
    }

    void columnsKeepTheirWidths()
    {
        QVERIFY(WriteIniValue("anna", "grdFaxList_Columns4", "30,30,-5,180,70,150", Global().strIniFile));
        QVERIFY(WriteIniValue("anna", "grdFaxList_Columns0", "99", Global().strIniFile));
        Get<QTreeView>("grdFaxList").setColumnWidth(3, 123);
        SelectInTree("Outgoing");
        Get<QTreeView>("grdFaxList").setColumnWidth(4, 77);
        window->close();
        QCOMPARE(Setting("grdFaxList_Columns1"), "30,30,123,100,180,70,250,150");
        OpenWindow();
        auto &grid = Get<QTreeView>("grdFaxList");
        const auto width = [&](const char *folder, int column) {
            SelectInTree(folder);
            return grid.columnWidth(column);
        };
        QCOMPARE(width("Outgoing", 4), 77);
        QCOMPARE(width("Incoming", 3), 123);
        QCOMPARE(width("Draft", 3), 200); // no widths at all rather than a wrong one
        QCOMPARE(width("My Faxes", 1), 250);
    }

    void paneKeyGoesRound()
    {
        Get<QTreeView>("tvFolder").setFocus();
        const QStringList expected{"grdFaxList", "picPreviewImage", "tvFolder"};
        for (const QString &name : expected) {
            Command("mnuNextPane").trigger();
            QCOMPARE(window->focusWidget()->objectName(), name);
        }
    }

    void layoutComesBack()
    {
        Get<QSplitter>("picVSource").setSizes({333, 400});
        const int width = Get<QWidget>("tvFolder").width();
        Command("mnuPreview").trigger();
        QVERIFY(Get<QWidget>("picPreview").isHidden());
        window->close();
        QCOMPARE(Setting("picPreview_IsVisible"), "False");
        QVERIFY(Setting("picPreview_Height").toInt() > 50); // as it was before
        OpenWindow();
        QVERIFY(Get<QWidget>("picPreview").isHidden());
        QVERIFY(!Command("mnuPreview").isChecked());
        QCOMPARE(Get<QWidget>("tvFolder").width(), width);
        Command("mnuPreview").trigger();
        QTRY_VERIFY(Get<QWidget>("picPreview").height() > 50);
    }

    void maximisedWindowComesBack()
    {
        window->showMaximized();
        QTRY_VERIFY(window->isMaximized() && window->height() > 700);
        Get<QSplitter>("picHSource_2").setSizes({500, 150});
        const int height = Get<QWidget>("picPreview").height();
        window->close();
        QCOMPARE(Setting("Main_Width"), QString());
        OpenWindow();
        QVERIFY(window->isMaximized());
        QTRY_COMPARE(Get<QWidget>("picPreview").height(), height);
    }

    void closeDuringTheLogOffIsPassedOver()
    {
        int closings = 0;
        window->SetClosing([&] {
            ++closings;
            QCOMPARE(Setting("Main_State"), "0"); // stored before the log off
            window->close();                      // an impatient user, while the log off waits
        });
        window->close();
        QCOMPARE(closings, 1);
        QVERIFY(!window->isVisible());
    }

    void everythingHasANameForAScreenReader()
    {
        Command("mnuViewAddressBook").trigger();
        for (const QWidget *widget : window->findChildren<QWidget *>()) {
            const bool isControl =
                widget->focusPolicy() != Qt::NoFocus || qobject_cast<const QToolButton *>(widget);
            const QAccessibleInterface *face =
                QAccessible::queryAccessibleInterface(const_cast<QWidget *>(widget));
            if (isControl && widget->isVisible() && face)
                QVERIFY2(!face->text(QAccessible::Name).isEmpty(), qPrintable(NameOf(widget)));
        }
        for (const QAction *action : window->findChildren<QAction *>()) {
            if (!action->objectName().startsWith("mnu") && !action->objectName().startsWith("tb"))
                continue;
            QVERIFY2(!action->text().isEmpty() && !action->toolTip().isEmpty(),
                     qPrintable(action->objectName()));
        }
    }

    void mnemonicsAndShortcutsDoNotClash()
    {
        const auto check = [](const QList<QAction *> &actions, const QString &menu) {
            QStringList seen;
            for (const QAction *action : actions) {
                const qsizetype at = action->text().indexOf('&');
                const QString letter = at < 0 ? QString() : action->text().mid(at + 1, 1).toLower();
                QVERIFY2(letter.isEmpty() || !seen.contains(letter),
                         qPrintable(menu + ": " + action->text()));
                seen.append(letter);
            }
        };
        check(window->menuBar()->actions(), "menu bar");
        for (const QMenu *menu : window->findChildren<QMenu *>())
            check(menu->actions(), menu->objectName());
        QMap<QKeySequence, QString> owners;
        for (const QAction *action : window->findChildren<QAction *>()) {
            if (action->shortcutContext() == Qt::WidgetShortcut) // keys of the tree alone
                continue;
            for (const QKeySequence &keys : action->shortcuts()) {
                QVERIFY2(!owners.contains(keys), qPrintable(action->objectName() + " and " +
                                                            owners.value(keys) + ": " + keys.toString()));
                owners.insert(keys, action->objectName());
            }
        }
    }

    void everyImageKeyHasAPicture()
    {
        const QString keys =
            "imgContact imgReceived imgSketchup imgWaitSend imgSended imgRecyle imgGroup imgContactMain "
            "imgPublicContact imgFolderRoot imgIsRead imgNotRead imgReaded imgWait imgLevel imgOK imgWarning "
            "imgError imgLowLevel imgSortDown imgSortUp imgPublicGroup imgPersonGroup imgNewFaxItem "
            "imgEditContact imgNormalLevel imgFaxMouseOn imgProgram";
        for (const QString &key : keys.split(' '))
            QVERIFY2(!Icons::Get(key).isNull(), qPrintable(key));
        for (const QAction *action : Get<QToolBar>("tbClient").actions())
            QVERIFY2(action->isSeparator() || !action->icon().isNull(), qPrintable(action->objectName()));
    }

    void faxKeysKeepOutOfTheTrees()
    {
        int deletions = 0;
        window->SetCommand("mnuEditDelete", [&] { ++deletions; });
        QTest::keyClick(&Get<QTreeView>("tvFolder"), Qt::Key_Delete);
        QCOMPARE(deletions, 0);
        Get<QTreeView>("grdFaxList").setFocus();
        QTest::keyClick(&Get<QTreeView>("grdFaxList"), Qt::Key_Delete);
        QCOMPARE(deletions, 1);
    }

    void popupShowsTheKeysOfItsCommands()
    {
        for (const QAction *action : Get<QMenu>("GridRightMenu").actions()) {
            const QAction *item = action->isSeparator()
                                      ? nullptr
                                      : &Command(CommandStates::GetMenuOfTool(action->objectName()));
            if (item)
                QCOMPARE(action->text().section('\t', 1),
                         item->shortcut().toString(QKeySequence::NativeText));
        }
    }

    void tabKeyReachesEveryPane()
    {
        QStringList order;
        for (const QWidget *widget = &Get<QWidget>("tvFolder"); !order.contains(widget->objectName());
             widget = widget->nextInFocusChain()) {
            if (widget->focusPolicy() & Qt::TabFocus && widget->isVisible() && widget->isEnabled())
                order.append(widget->objectName());
            else
                continue;
        }
        QCOMPARE(order.first(), "tvFolder");
        const QStringList panes{"tvFolder", "cmbYear", "grdFaxList", "txtSender", "picPreviewImage"};
        order.removeIf([&](const QString &name) { return !panes.contains(name); });
        QCOMPARE(order, panes);
    }

    void oddSettingsGiveAWindowThatCanBeUsed_data()
    {
        QTest::addColumn<QString>("value");
        for (const char *value : {"9000", "-9000", "1", "0", "many"})
            QTest::newRow(value) << value;
    }

    void oddSettingsGiveAWindowThatCanBeUsed()
    {
        QFETCH(QString, value);
        window->close();
        QList<std::pair<QString, QString>> values{{"tvAddressbook_IsVisible", "True"},
                                                  {"tbClient_Style", value}};
        for (const char *pane : {"Main", "tvFolder", "tvAddressbook", "grdFaxList", "picPreview"}) {
            for (const char *side : {"_Left", "_Top", "_Width", "_Height"})
                values.append({QString(pane) + side, value});
        }
        QVERIFY(WriteIniValues("anna", values, Global().strIniFile));
        OpenWindow();
        const QRect room = window->screen()->availableGeometry();
        QVERIFY(window->width() <= room.width() && window->height() <= room.height());
        QVERIFY(room.intersects(window->geometry()));
        for (const char *pane : {"tvFolder", "tvAddressbook", "grdFaxList", "picPreview"}) {
            const QWidget &shown = Get<QWidget>(pane);
            QVERIFY2(shown.width() >= 133 && shown.height() >= 33, pane);
            const int bottom = shown.mapTo(window.get(), QPoint(0, shown.height())).y();
            QVERIFY2(bottom <= Get<QWidget>("stbInfo").y(), pane);
        }
    }

    void draggedBorderKeepsClearOfTheEdges()
    {
        auto &splitter = Get<QSplitter>("picHSource_2");
        const int before = Get<QWidget>("picPreview").height();
        const QPoint grip = splitter.handle(1)->rect().center();
        QTest::mousePress(splitter.handle(1), Qt::LeftButton, {}, grip);
        QTest::mouseMove(splitter.handle(1), grip + QPoint(0, 2000));
        QCOMPARE(Get<QWidget>("picPreview").height(), before); // only a strip moves
        QTest::mouseRelease(splitter.handle(1), Qt::LeftButton, {}, grip + QPoint(0, 2000));
        QVERIFY(Get<QWidget>("picPreview").height() < before);
        const int clear = Get<QWidget>("picPreview").height();
        QVERIFY(clear >= 2000 * window->logicalDpiY() / 1440);
        Command("mnuMoveBorder").trigger();
        Command("mnuMoveBorder").trigger();
        QVERIFY(splitter.handle(1)->hasFocus());
        QTest::keyClick(splitter.handle(1), Qt::Key_Up);
        QVERIFY(Get<QWidget>("picPreview").height() > clear);
        QTest::keyClick(splitter.handle(1), Qt::Key_Escape);
        QVERIFY(Get<QTreeView>("tvFolder").hasFocus());
    }

    void hidesOnlyWhereATrayIconBringsItBack()
    {
        Global().CloseToTray = true;
        bool hasIcon = false;
        int closings = 0;
        window->SetTrayState([&] { return hasIcon; });
        window->SetClosing([&] { ++closings; });
        window->showMinimized();
        QTest::qWait(0);
        QVERIFY(window->isVisible());
        window->showNormal();
        hasIcon = true;
        window->showMinimized();
        QTRY_VERIFY(!window->isVisible());
        window->Raise();
        QVERIFY(window->isVisible() && !window->isMinimized());
        window->close();
        QVERIFY(!window->isVisible());
        QCOMPARE(closings, 0);
        Command("mnuExit").trigger();
        QCOMPARE(closings, 1);
    }

    void toolBarStyleComesBack()
    {
        Command("mnuToolBarTextBeside").trigger();
        window->close();
        OpenWindow();
        QCOMPARE(Get<QToolBar>("tbClient").toolButtonStyle(), Qt::ToolButtonTextBesideIcon);
        QVERIFY(Command("mnuToolBarTextBeside").isChecked());
    }

private:
    template <typename Widget>
    Widget &Get(const QString &name) const
    {
        auto *found = window->findChild<Widget *>(name);
        if (!found)
            qFatal("no %s", qPrintable(name));
        return *found;
    }
    static QString NameOf(const QObject *object)
    {
        QString name =
            object->objectName().isEmpty() ? object->metaObject()->className() : object->objectName();
        return object->parent() ? NameOf(object->parent()) + "/" + name : name;
    }
    QAction &Command(const QString &name) const { return Get<QAction>(name); }
    void OpenWindow()
    {
        window.reset();
        mailbox = std::make_unique<ShownMailbox>(fakes->message, fakes->clock, fakes->ids);
        window = std::make_unique<frmMain>(*mailbox, fakes->message);
        window->Load();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    }
    QString Setting(const QString &key) const { return ReadIniValue("anna", key, Global().strIniFile); }

    QModelIndex Index(const QString &text) const
    {
        const auto &model = *Get<QTreeView>("tvFolder").model();
        return model.match(model.index(0, 0), Qt::DisplayRole, text, 1, Qt::MatchRecursive).value(0);
    }
    void SelectInTree(const QString &text)
    {
        auto &tree = Get<QTreeView>("tvFolder");
        QVERIFY(Index(text).isValid());
        QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, tree.visualRect(Index(text)).center());
    }
    void AddFolder(const QString &id, const QString &name)
    {
        profile->InsertRow("FaxFolder", {{"Folder_ID", id},
                                         {"Folder_Name", name},
                                         {"Folder_Type", "1"},
                                         {"parentID", "1001"},
                                         {"isSystem", "0"}});
        mailbox->Folders().Add(mailbox->Folders().Find("1001"), id, name);
    }

    std::unique_ptr<Profile> profile;
    std::unique_ptr<FakePorts> fakes;
    std::unique_ptr<ShownMailbox> mailbox;
    std::unique_ptr<frmMain> window;
};

QTEST_MAIN(tst_frmMain)
#include "tst_frmMain.moc"
