#pragma once

#include "addressbook/AddressTree.h"
#include "desktop/Forms.h"
#include "desktop/MainWindow.h"
#include "desktop/Notifier.h"
#include "mailbox/FaxPrinting.h"
#include "mailbox/Mailbox.h"

#include <QList>
#include <QStringList>

#include <functional>

/// A main window that remembers what was asked of it.
class FakeMainWindow final : public MainWindow
{
public:
    bool IsVisible() const override { return bVisible; }
    bool IsActive() const override { return true; }
    void SetEnabled(bool enabled) override { bEnabled = enabled; }
    void Raise() override { ++lRaised; }
    void Unload() override { ++lUnloaded; }
    void SetCommMenu(bool enabled) override { bCommMenu = enabled; }
    void SetGridCommands() override { ++lGridCommands; }
    void SetServerPanel(const QString &text) override { strServerPanel = text; }
    void SetTotalPercent(int percent) override { aTotalPercents.append(percent); }
    void SetBusyPointer(bool busy) override { bBusyPointer = busy; }

    bool bVisible = true;
    bool bEnabled = true;
    bool bCommMenu = false;
    bool bBusyPointer = false;
    int lRaised = 0;
    int lUnloaded = 0;
    int lGridCommands = 0;
    QString strServerPanel;
    QList<int> aTotalPercents;
};

/// A mailbox that shows nothing and writes its calls down, such as "load 1001 2" or "row 1".
class FakeMailbox final : public Mailbox
{
public:
    QString SelectedFolder() const override { return strFolder; }
    void LoadGridItem(const QString &key, int mode, const QString &extraFilter, bool allFolders,
                      bool clearFirst) override;
    int RowCount() const override { return lRows; }
    void SelectRow(int row) override;
    void SelectCurrentRow() override { aCalls.append(QStringLiteral("current row")); }
    void ReloadSelectedFolder() override { aCalls.append(QStringLiteral("folder again")); }
    void NotifySaveFax(int kind, bool isNew, const QString &id) override;
    bool DropFirstWaiting() override;
    void ChangeFaxID(const QString &oldID, const QString &newID) override
    {
        aCalls.append(oldID + QStringLiteral(" became ") + newID);
    }
    void FollowFaxes(const QStringList &ids, const QStringList &hidden) override;
    void RefreshFolderUnreadCounts() override { aCalls.append(QStringLiteral("recount")); }

    QString strFolder;
    int lRows = 0;
    QStringList aCalls;
};

class FakeNotifier final : public Notifier
{
public:
    void SetTrayTip(const QString &text) override { aTips.append(text); }
    void ShowMonitor(const QString &faxList) override { aMonitors.append(faxList); }

    QStringList aTips;
    QStringList aMonitors;
};

/// Opens nothing; a login does what the test says.
class FakeForms final : public Forms
{
public:
    int Count() const override { return lCount; }
    bool LoginFromMainWindow() override
    {
        ++lLogins;
        return !login || login();
    }
    void OpenComposer(const QString &faxFile) override { aComposers.append(faxFile); }
    void EditDraft(const QString &) override {}

    int lCount = 1;
    int lLogins = 0;
    std::function<bool()> login;
    QStringList aComposers;
};

class FakePrinting final : public FaxPrinting
{
public:
    bool HasPrinter() const override { return bHasPrinter; }
    void PrintFile(const QString &path, int first, int last, int copies, const QString &printerName) override;

    bool bHasPrinter = false;
    QStringList aPrinted; ///< "path 1-2 x3 printer"
};

/// Counts how often it was built anew.
class FakeAddressTree final : public AddressTree
{
public:
    void LoadAddressBook() override { ++lLoads; }

    int lLoads = 0;
};

/// The desktop around the logic.
struct FakeDesktop
{
    FakeMainWindow mainWindow;
    FakeMailbox mailbox;
    FakeNotifier notifier;
    FakeAddressTree addressTree;
    FakeForms forms;
    FakePrinting printing;
};
