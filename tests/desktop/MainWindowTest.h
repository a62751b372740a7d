#pragma once

#include "core/SettingsFile.h"
#include "desktop/forms/frmMain.h"
#include "fixtures/FaxFile.h"
#include "fixtures/MailboxTest.h"

#include <QAction>
#include <QTreeView>

#include <memory>

/// The main window over a profile of two received faxes of two pages each, "A" and the newer "B".
class MainWindowTest : public QObject, protected MailboxTest
{
    Q_OBJECT

private slots:
    void init()
    {
        SetUp();
        Global().SwitchTo = true;
        for (const char *id : {"A", "B"}) {
            QVERIFY(FaxFile{.lPages = 2}.Write(Global().strInputBoxPath + id + ".tif"));
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
        TearDown();
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

    std::unique_ptr<frmMain> window;
};
