#include "desktop/CommandStates.h"
#include "desktop/HelpCommands.h"
#include "fakes/FakePorts.h"
#include "fixtures/Profile.h"
#include "fixtures/TestTable.h"

using CommandStates::GridInput;
using CommandStates::States;

namespace {

QStringList Enabled(const States &states)
{
    QStringList names;
    for (auto it = states.begin(); it != states.end(); ++it) {
        if (it.value() && !it.key().startsWith("tb"))
            names.append(it.key().mid(3));
    }
    return names;
}

GridInput Input(const QString &key, FolderFamily family, const QString &flags = {})
{
    GridInput input;
    input.strKey = key;
    input.Family = family;
    input.lRows = flags.contains("empty") ? 0 : 1;
    input.bHasImage = input.bHasFileName = flags.contains("viewing");
    input.bOnline = flags.contains("online");
    input.bIsSocketBusy = flags.contains("busy");
    input.strBranch = flags.contains("below") ? "1007" : "";
    return input;
}

} // namespace

class tst_CommandStates : public QObject
{
    Q_OBJECT

private slots:
    void serverCommandsFollowTheConnection()
    {
        const States online = CommandStates::SetCommMenu(true, "1001");
        const States offline = CommandStates::SetCommMenu(false, "1001");
        for (auto it = online.begin(); it != online.end(); ++it) {
            if (it.key() != "mnuCancelSend")
                QVERIFY2(it.value() != offline.value(it.key()), qPrintable(it.key()));
        }
        QVERIFY(offline.value("mnuLoginServer"));
        QCOMPARE(Enabled(offline), QStringList("LoginServer"));
        QVERIFY(CommandStates::SetCommMenu(true, "1005").value("mnuCancelSend"));
        QVERIFY(!online.value("mnuCancelSend"));
    }

    void gridCommandsFollowFolderAndSelection_data()
    {
        const TestTable<GridInput, QString> row{"input", "enabled"}; // names in their order, without "mnu"
        row("empty folder", Input("1001", FolderFamily::Received, "empty viewing"), "Refresh");
        row("fax without a file", Input("1001", FolderFamily::Received),
            "EditDelete FaxProperty FindFax HadRead MoveFax Refresh ReverseSel SelectAll UnRead");
        row("fax on show", Input("1001", FolderFamily::Received, "viewing"),
            "EditDelete FaxProperty FindFax HadRead InterResend MoveFax Print Refresh ResendToMail "
            "ReverseSel SaveAs "
            "SelectAll UnRead ViewFax");
        row("busy", Input("1001", FolderFamily::Received, "viewing busy"),
            "FaxProperty FindFax HadRead Print ResendToMail ReverseSel SelectAll UnRead ViewFax");
        row("outgoing", Input("1003", FolderFamily::WaitSend, "viewing"),
            "EditDelete FaxProperty FindFax HadRead MoveFax Print Refresh ResendToMail ReverseSel SaveAs "
            "SelectAll "
            "UnRead ViewFax");
        row("sending online", Input("1005", FolderFamily::Sended, "online"),
            "CancelSend EditDelete FaxProperty FindFax HadRead MoveFax Refresh ReverseSel SelectAll UnRead");
        row("sending offline", Input("1005", FolderFamily::Sended),
            "EditDelete FaxProperty FindFax HadRead MoveFax Refresh ReverseSel SelectAll UnRead");
        row("below undelivered", Input("USER", FolderFamily::Sended, "online below"),
            "EditDelete FaxProperty FindFax HadRead MoveFax Refresh ResendError ReverseSel SelectAll UnRead");
        row("recycle bin", Input("1008", FolderFamily::Recyle, "viewing"),
            "EditDelete FaxProperty HadRead MoveFax Print Refresh ResendToMail Resume ReverseSel SaveAs "
            "SelectAll "
            "UnRead ViewFax");
    }

    void gridCommandsFollowFolderAndSelection()
    {
        QFETCH(GridInput, input);
        const States states = CommandStates::SetGridCommands(input);
        QTEST(Enabled(states).join(' '), "enabled");
        for (auto it = states.begin(); it != states.end(); ++it) {
            if (it.key().startsWith("tb"))
                QCOMPARE(it.value(), states.value(CommandStates::GetMenuOfTool(it.key())));
        }
    }

    void toolsRunMenuItems()
    {
        QCOMPARE(CommandStates::GetMenuOfTool("tbResend"), "mnuInterResend");
        QCOMPARE(CommandStates::GetMenuOfTool("tbDeleteFax"), "mnuEditDelete");
        QCOMPARE(CommandStates::GetMenuOfTool("mnuSend"), "");
        const QStringList items = CommandStates::GetRightMenu();
        QCOMPARE(items.size() - items.count(QString()), 14);
        for (const QString &item : items)
            QCOMPARE(CommandStates::GetMenuOfTool(item).isEmpty(), item.isEmpty());
    }

    void helpIsOpenedOrItsAbsenceSaid()
    {
        FakePorts fakes;
        QTemporaryDir folder;
        fakes.folders.strRoot = folder.path();
        HelpCommands help(fakes.ports, "1.0 & more");
        help.mnuShowHelp();
        QVERIFY(fakes.shell.aCalls.isEmpty());
        QVERIFY(fakes.prompts.Texts().value(0).contains("/program/VelmarServer.CHM"));
        QVERIFY(QDir(folder.path()).mkdir("program"));
        QVERIFY(WriteTestFile(folder.filePath("program/VelmarServer.CHM"), "help"));
        help.mnuShowHelp();
        help.mnuHelp_Website();
        help.mnuSupport();
        QCOMPARE(fakes.prompts.aBoxes.size(), 1);
        QCOMPARE(fakes.shell.aCalls.size(), 3);
        QCOMPARE(fakes.shell.aCalls.at(0).strFile, folder.filePath("program/VelmarServer.CHM"));
        QCOMPARE(fakes.shell.aCalls.at(0).strVerb, "Open");
        QVERIFY(fakes.shell.aCalls.at(2).strFile.endsWith(
            "&body=Velmar%20Client%201.0%20%26%20more%0D%0A%0D%0A"));
        fakes.shell.lResult = 31;
        help.mnuHelp_Website();
        QVERIFY(fakes.prompts.Texts().last().contains("https://"));
    }
};

QTEST_GUILESS_MAIN(tst_CommandStates)
#include "tst_CommandStates.moc"
