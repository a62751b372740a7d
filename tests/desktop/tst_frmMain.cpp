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
#include <QScreen>
#include <QSplitter>
#include <QTest>
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
        QVERIFY(!Get<QToolButton>("btnPreviousPage").isEnabled());
        Get<QToolButton>("btnNextPage").click();
        QCOMPARE(Get<QLineEdit>("txtPage").text(), "2 / 2");
        QVERIFY(!Get<QToolButton>("btnNextPage").isEnabled());
        Get<QToolButton>("btnZoom100").click();
        QVERIFY(!Get<QToolButton>("btnFixWidth").isChecked());
        QCOMPARE(Get<PageCanvas>("picPreviewImage").ZValue(), 1.0);
    }

    void clickOnSentSelectsSending()
    {
        SelectInTree("Sent");
        QTRY_COMPARE(Get<QTreeView>("tvFolder").currentIndex().data(), "Sending");
        QCOMPARE(mailbox->SelectedFolder(), "1005");
    }

    void selectionOfManyReachesTheMailbox()
    {
        Command("mnuSelectAll").trigger();
        QCOMPARE(mailbox->SelectedFaxes(), QStringList({"B", "A"}));
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

    void everythingHasAName()
    {
        for (const QToolButton *button : Get<QWidget>("picPreview").findChildren<QToolButton *>()) {
            QVERIFY2(!button->accessibleName().isEmpty(), qPrintable(button->objectName()));
            QVERIFY2(!button->toolTip().isEmpty(), qPrintable(button->objectName()));
        }
        for (const char *name : {"tvFolder", "tvAddressbook", "grdFaxList", "picPreviewImage", "cmbYear"})
            QVERIFY2(!Get<QWidget>(name).accessibleName().isEmpty(), name);
    }

    void mnemonicsDoNotClash()
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
    }

    void windowOfALargerScreenFits()
    {
        window->close();
        for (const char *key : {"Main_Width", "Main_Height"})
            QVERIFY(WriteIniValue("anna", key, "9000", Global().strIniFile));
        OpenWindow();
        const QSize room = window->screen()->availableSize();
        QVERIFY(window->width() <= room.width() && window->height() <= room.height());
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
    QAction &Command(const QString &name) const { return Get<QAction>(name); }
    void OpenWindow()
    {
        window.reset();
        mailbox = std::make_unique<ShownMailbox>(fakes->message, fakes->clock);
        window = std::make_unique<frmMain>(*mailbox, fakes->message);
        window->Load();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    }
    QString Setting(const QString &key) const { return ReadIniValue("anna", key, Global().strIniFile); }

    void SelectInTree(const QString &text)
    {
        auto &tree = Get<QTreeView>("tvFolder");
        const QModelIndexList found =
            tree.model()->match(tree.model()->index(0, 0), Qt::DisplayRole, text, 1, Qt::MatchRecursive);
        QCOMPARE(found.size(), 1);
        QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, tree.visualRect(found.first()).center());
    }

    std::unique_ptr<Profile> profile;
    std::unique_ptr<FakePorts> fakes;
    std::unique_ptr<ShownMailbox> mailbox;
    std::unique_ptr<frmMain> window;
};

QTEST_MAIN(tst_frmMain)
#include "tst_frmMain.moc"
