#pragma once

#include "core/Globals.h"
#include "core/SettingsFile.h"
#include "desktop/forms/frmMain.h"
#include "fakes/FakePorts.h"
#include "fixtures/FaxFile.h"
#include "fixtures/Profile.h"
#include "mailbox/ShownMailbox.h"

#include <QAction>
#include <QTest>
#include <QTreeView>

#include <memory>

/// The main window over a profile of two received faxes of two pages each, "A" and the newer "B".
class MainWindowTest : public QObject
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

protected:
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
        mailbox = std::make_unique<ShownMailbox>(fakes->message, fakes->clock, fakes->ids);
        window = std::make_unique<frmMain>(*mailbox, fakes->message);
        window->Load();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    }
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

    std::unique_ptr<Profile> profile;
    std::unique_ptr<FakePorts> fakes;
    std::unique_ptr<ShownMailbox> mailbox;
    std::unique_ptr<frmMain> window;
};
