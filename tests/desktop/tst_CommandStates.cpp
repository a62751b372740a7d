#include "desktop/CommandStates.h"

#include <QTest>

using CommandStates::GridInput;
using CommandStates::States;

class tst_CommandStates : public QObject
{
    Q_OBJECT

private slots:
    void serverCommandsFollowTheConnection();
    void cancelSendNeedsTheSendingFolder();
    void gridCommandsFollowFolderAndSelection_data();
    void gridCommandsFollowFolderAndSelection();
    void toolsRunMenuItems();
};

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

GridInput Input(const QString &key, FolderFamily family, int rows)
{
    GridInput input;
    input.strKey = key;
    input.Family = family;
    input.lRows = rows;
    return input;
}

GridInput Viewing(GridInput input)
{
    input.bHasImage = input.bHasFileName = true;
    return input;
}

GridInput Online(GridInput input)
{
    input.bOnline = true;
    return input;
}

GridInput Busy(GridInput input)
{
    input.bIsSocketBusy = true;
    return input;
}

GridInput InBranch(GridInput input, const QString &branch)
{
    input.strBranch = branch;
    return input;
}

} // namespace

void tst_CommandStates::serverCommandsFollowTheConnection()
{
    const States online = CommandStates::SetCommMenu(true, "1001");
    const States offline = CommandStates::SetCommMenu(false, "1001");
    for (auto it = online.begin(); it != online.end(); ++it) {
        if (it.key() != "mnuCancelSend")
            QVERIFY2(it.value() != offline.value(it.key()), qPrintable(it.key()));
    }
    QVERIFY(offline.value("mnuLoginServer"));
    QCOMPARE(Enabled(offline), QStringList("LoginServer"));
}

void tst_CommandStates::cancelSendNeedsTheSendingFolder()
{
    QVERIFY(CommandStates::SetCommMenu(true, "1005").value("mnuCancelSend"));
    QVERIFY(!CommandStates::SetCommMenu(true, "1006").value("mnuCancelSend"));
    QVERIFY(!CommandStates::SetCommMenu(false, "1005").value("mnuCancelSend"));
}

void tst_CommandStates::gridCommandsFollowFolderAndSelection_data()
{
    QTest::addColumn<GridInput>("input");
    QTest::addColumn<QString>("enabled"); // names in their order, without "mnu"
    const GridInput incoming = Input("1001", FolderFamily::Received, 2);
    QTest::newRow("nothing selected") << Input("", FolderFamily::Root, 0) << "";
    QTest::newRow("summary") << Viewing(Input("1000", FolderFamily::Root, 5)) << "";
    QTest::newRow("empty folder") << Viewing(Input("1001", FolderFamily::Received, 0)) << "";
    QTest::newRow("fax without a file")
        << incoming << "EditDelete FaxProperty FindFax HadRead MoveFax ReverseSel SelectAll UnRead";
    QTest::newRow("fax on show")
        << Viewing(incoming)
        << "EditDelete FaxProperty FindFax HadRead InterResend MoveFax Print ResendToMail "
           "ReverseSel SaveAs SelectAll UnRead ViewFax";
    QTest::newRow("busy")
        << Busy(Viewing(incoming))
        << "FaxProperty FindFax HadRead Print ResendToMail ReverseSel SelectAll UnRead ViewFax";
    QTest::newRow("outgoing")
        << Viewing(Input("1003", FolderFamily::WaitSend, 1))
        << "EditDelete FaxProperty FindFax HadRead MoveFax Print ResendToMail ReverseSel SaveAs "
           "SelectAll UnRead ViewFax";
    QTest::newRow("sending online")
        << Online(Input("1005", FolderFamily::Sended, 1))
        << "CancelSend EditDelete FaxProperty FindFax HadRead MoveFax ReverseSel SelectAll UnRead";
    QTest::newRow("sending offline")
        << Input("1005", FolderFamily::Sended, 1)
        << "EditDelete FaxProperty FindFax HadRead MoveFax ReverseSel SelectAll UnRead";
    QTest::newRow("below undelivered")
        << Online(InBranch(Input("USER", FolderFamily::Sended, 1), "1007"))
        << "EditDelete FaxProperty FindFax HadRead MoveFax ResendError ReverseSel SelectAll UnRead";
    QTest::newRow("recycle bin")
        << Viewing(Input("1008", FolderFamily::Recyle, 1))
        << "EditDelete FaxProperty HadRead MoveFax Print ResendToMail Resume ReverseSel "
           "SaveAs SelectAll UnRead ViewFax";
}

void tst_CommandStates::gridCommandsFollowFolderAndSelection()
{
    QFETCH(GridInput, input);
    const States states = CommandStates::SetGridCommands(input);
    QTEST(Enabled(states).join(' '), "enabled");
    for (auto it = states.begin(); it != states.end(); ++it) {
        if (it.key().startsWith("tb"))
            QCOMPARE(it.value(), states.value(CommandStates::GetMenuOfTool(it.key())));
    }
}

void tst_CommandStates::toolsRunMenuItems()
{
    QCOMPARE(CommandStates::GetMenuOfTool("tbResend"), "mnuInterResend");
    QCOMPARE(CommandStates::GetMenuOfTool("tbDeleteFax"), "mnuEditDelete");
    QCOMPARE(CommandStates::GetMenuOfTool("mnuSend"), "");
    const QStringList items = CommandStates::GetRightMenu();
    QCOMPARE(items.size() - items.count(QString()), 14);
    for (const QString &item : items)
        QCOMPARE(CommandStates::GetMenuOfTool(item).isEmpty(), item.isEmpty());
}

QTEST_GUILESS_MAIN(tst_CommandStates)
#include "tst_CommandStates.moc"
