#include "controls/Icons.h"
#include "desktop/MainWindowTest.h"

#include <QAccessible>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QSplitter>
#include <QToolBar>
#include <QToolButton>

/// How the window looks, comes back, and can be worked without a mouse or a screen.
class tst_frmMainLayout : public MainWindowTest
{
    Q_OBJECT

private slots:
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

    void layoutComesBack()
    {
        Get<QSplitter>("picVSource").setSizes({333, 400});
        const int width = Get<QWidget>("tvFolder").width();
        Command("mnuPreview").trigger();
        Command("mnuToolBarTextBeside").trigger();
        QVERIFY(Get<QWidget>("picPreview").isHidden());
        window->close();
        QCOMPARE(Setting("picPreview_IsVisible"), "False");
        QVERIFY(Setting("picPreview_Height").toInt() > 50); // as it was before
        OpenWindow();
        QVERIFY(Get<QWidget>("picPreview").isHidden());
        QVERIFY(!Command("mnuPreview").isChecked() && Command("mnuToolBarTextBeside").isChecked());
        QCOMPARE(Get<QToolBar>("tbClient").toolButtonStyle(), Qt::ToolButtonTextBesideIcon);
        QCOMPARE(Get<QWidget>("tvFolder").width(), width);
        Command("mnuPreview").trigger();
        QTRY_VERIFY(Get<QWidget>("picPreview").height() > 50);
    }

    void openFoldersComeBack()
    {
        QString parent = "1001";
        for (int level = 0; level < 20; ++level) { // more than one value of the settings holds
            const QString key = QString("%1").arg(level, 32, 16, QChar('0'));
            profile->InsertFolder(key, parent, "1", "Level " + QString::number(level));
            parent = key;
        }
        OpenWindow();
        const auto tree = [this]() -> QTreeView & { return Get<QTreeView>("tvFolder"); };
        const auto isOpen = [&](const char *folder) { return tree().isExpanded(Index(folder)); };
        QVERIFY(isOpen("Sent") && !isOpen("Incoming"));
        tree().expandAll();
        tree().collapse(Index("Level 5"));
        window->close();
        OpenWindow();
        QVERIFY(isOpen("Incoming") && isOpen("Level 4") && !isOpen("Level 5") && isOpen("Level 18"));
        for (const char *folder : {"Incoming", "Level 0", "Level 1", "Level 2", "Sent"})
            tree().collapse(Index(folder));
        for (int level = 8; level < 20; ++level)
            tree().collapse(Index(qPrintable(QString("Level %1").arg(level))));
        Profile::Execute("DELETE FROM FaxFolder WHERE folder_name='Level 6'");
        window->close();
        OpenWindow();
        QVERIFY(!isOpen("Incoming") && !isOpen("Level 1") && isOpen("Level 3") && isOpen("Sent"));
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
        for (const QString &key : keys.split(' ')) {
            QVERIFY2(!Icons::Get(key).isNull(), qPrintable(key));
            QCOMPARE(Icons::Get(key).pixmap(22, 22).size(), QSize(22, 22));
        }
        QVERIFY(Icons::Get("imgNobody").isNull());
        for (const QAction *action : Get<QToolBar>("tbClient").actions())
            QVERIFY2(action->isSeparator() || !action->icon().isNull(), qPrintable(action->objectName()));
    }

    void keysReachEveryPane()
    {
        Get<QTreeView>("tvFolder").setFocus();
        for (const char *name : {"grdFaxList", "picPreviewImage", "tvFolder"}) {
            Command("mnuNextPane").trigger();
            QCOMPARE(window->focusWidget()->objectName(), name);
        }
        QStringList order;
        const QStringList panes{"tvFolder", "cmbYear", "grdFaxList", "txtSender", "picPreviewImage"};
        const QWidget *widget = &Get<QWidget>("tvFolder");
        do {
            if (widget->focusPolicy() & Qt::TabFocus && widget->isVisible() && widget->isEnabled() &&
                panes.contains(widget->objectName()))
                order.append(widget->objectName());
            widget = widget->nextInFocusChain();
        } while (widget->objectName() != "tvFolder");
        QCOMPARE(order, panes);
    }

    void oddSettingsGiveAWindowThatCanBeUsed()
    {
        const char *const panes[] = {"tvFolder", "tvAddressbook", "grdFaxList", "picPreview"};
        for (const char *value : {"9000", "-9000", "1", "0", "many"}) {
            window->close();
            QList<std::pair<QString, QString>> values{{"tvAddressbook_IsVisible", "True"},
                                                      {"tbClient_Style", value}};
            for (const char *side : {"_Left", "_Top", "_Width", "_Height"}) {
                values.append({QString("Main") + side, value});
                for (const char *pane : panes)
                    values.append({QString(pane) + side, value});
            }
            QVERIFY(WriteIniValues("anna", values, Global().strIniFile));
            OpenWindow();
            const QRect room = window->screen()->availableGeometry();
            QVERIFY(window->width() <= room.width() && window->height() <= room.height());
            QVERIFY(room.intersects(window->geometry()));
            for (const char *pane : panes) {
                const QWidget &shown = Get<QWidget>(pane);
                const int bottom = shown.mapTo(window.get(), QPoint(0, shown.height())).y();
                QVERIFY2(shown.width() >= 133 && shown.height() >= 33 &&
                             bottom <= Get<QWidget>("stbInfo").y(),
                         qPrintable(QString("%1 of %2").arg(pane, value)));
            }
        }
    }

    void draggedBorderKeepsClearOfTheEdges()
    {
        QWidget *handle = Get<QSplitter>("picHSource_2").handle(1);
        const auto &preview = Get<QWidget>("picPreview");
        const int before = preview.height();
        const QPoint grip = handle->rect().center();
        QTest::mousePress(handle, Qt::LeftButton, {}, grip);
        QTest::mouseMove(handle, grip + QPoint(0, 2000));
        QCOMPARE(preview.height(), before); // only a strip moves
        QTest::mouseRelease(handle, Qt::LeftButton, {}, grip + QPoint(0, 2000));
        QVERIFY(preview.height() < before);
        const int clear = preview.height();
        QVERIFY(clear >= 2000 * window->logicalDpiY() / 1440);
        Command("mnuMoveBorder").trigger();
        Command("mnuMoveBorder").trigger();
        QVERIFY(handle->hasFocus());
        QTest::keyClick(handle, Qt::Key_Up);
        QVERIFY(preview.height() > clear);
        QTest::keyClick(handle, Qt::Key_Escape);
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
        bool mayClose = false;
        window->SetMayClose([&] {
            window->Unload(); // while it is still asked
            return mayClose;
        });
        window->Raise();
        Command("mnuExit").trigger();
        QVERIFY(window->isVisible());
        QCOMPARE(closings, 0);
        mayClose = true;
        Command("mnuExit").trigger();
        QCOMPARE(closings, 1);
    }

private:
    static QString NameOf(const QObject *object)
    {
        QString name =
            object->objectName().isEmpty() ? object->metaObject()->className() : object->objectName();
        return object->parent() ? NameOf(object->parent()) + "/" + name : name;
    }
    QString Setting(const QString &key) const { return ReadIniValue("anna", key, Global().strIniFile); }
};

QTEST_MAIN(tst_frmMainLayout)
#include "tst_frmMainLayout.moc"
