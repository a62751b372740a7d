#include "desktop/CommandStates.h"

#include "mailbox/FolderRules.h"

#include <QHash>

namespace {

bool CanView(const CommandStates::GridInput &input)
{
    return input.bHasImage && input.bHasFileName && input.strKey != "1000" && input.lRows > 0;
}

} // namespace

CommandStates::States CommandStates::SetCommMenu(bool enabled, const QString &key)
{
    return {
        {"mnuSend", enabled},
        {"tbSendFax", enabled},
        {"mnuReceive", enabled},
        {"tbReceiveFax", enabled},
        {"mnuSendReceive", enabled},
        {"tbSendReceive", enabled},
        {"mnuSyncAddressBook", enabled},
        {"mnuCancelSend", enabled && key == "1005"},
        {"mnuGetHistory", enabled},
        {"mnuSetPwd", enabled},
        {"mnuLoginServer", !enabled},
        {"mnuLogoutServer", enabled},
    };
}

CommandStates::States CommandStates::SetGridCommands(const GridInput &input)
{
    const QString &key = input.strKey;
    const bool canView = CanView(input);
    const bool hasRows = input.lRows > 0;
    const bool hasFaxes = hasRows && key != "1000";
    const bool mayChange = !input.bIsSocketBusy;
    const bool canFind = hasFaxes && key != "1004" && key != "1008";
    const bool isFailed = key == "1007" || input.strBranch == "1007";
    const bool canResend = canView && mayChange && input.Family != FolderFamily::WaitSend &&
                           input.Family != FolderFamily::Recyle;
    return {
        {"mnuViewFax", canView},
        {"mnuPrint", canView},
        {"tbPrintFax", canView},
        {"mnuResendToMail", canView},
        {"mnuSaveAs", canView && mayChange},
        {"mnuFindFax", canFind},
        {"tbFindFax", canFind},
        {"mnuFaxProperty", hasFaxes},
        {"tbFaxProperty", hasFaxes},
        {"mnuEditDelete", hasFaxes && mayChange},
        {"tbDeleteFax", hasFaxes && mayChange},
        {"mnuMoveFax", hasFaxes && mayChange},
        {"mnuHadRead", hasFaxes},
        {"mnuUnRead", hasFaxes},
        {"mnuSelectAll", hasFaxes},
        {"mnuReverseSel", hasFaxes},
        {"mnuRefresh", mayChange},
        {"mnuCancelSend", key == "1005" && hasRows && input.bOnline},
        {"mnuResendError", input.bOnline && hasRows && isFailed},
        {"mnuInterResend", canResend},
        {"tbResend", canResend},
        {"mnuResume", input.Family == FolderFamily::Recyle && hasRows},
    };
}

CommandStates::States CommandStates::SetFolderCommands(const FolderNode *node)
{
    return {
        {"mnuAddFolder", CanAddFolder(node)},
        {"mnuEditFolder", CanChangeFolder(node)},
        {"mnuDeleteFolder", CanChangeFolder(node)},
    };
}

CommandStates::States CommandStates::SetRecycleBinCommands(bool isEmpty)
{
    return {{"mnuClearRecyle", !isEmpty}};
}

QString CommandStates::GetMenuOfTool(const QString &tool)
{
    static const QHash<QString, QString> menus{
        {"tbNewFax", "mnuNewFax"},
        {"tbResend", "mnuInterResend"},
        {"tbFaxProperty", "mnuFaxProperty"},
        {"tbDeleteFax", "mnuEditDelete"},
        {"tbPrintFax", "mnuPrint"},
        {"tbReceiveFax", "mnuReceive"},
        {"tbSendFax", "mnuSend"},
        {"tbFindFax", "mnuFindFax"},
        {"tbNewContact", "mnuNewContact"},
        {"tbFindContact", "mnuFindContact"},
        {"tbSendReceive", "mnuSendReceive"},
        {"RightMenu_ReSend", "mnuInterResend"},
        {"RightMenu_FaxProperty", "mnuFaxProperty"},
        {"RightMenu_ViewFax", "mnuViewFax"},
        {"RightMenu_MarkReaded", "mnuHadRead"},
        {"RightMenu_MarkNotRead", "mnuUnRead"},
        {"RightMenu_FindFax", "mnuFindFax"},
        {"RightMenu_PrintFax", "mnuPrint"},
        {"RightMenu_MoveFax", "mnuMoveFax"},
        {"RightMenu_ResendToMail", "mnuResendToMail"},
        {"RightMenu_DeleteFax", "mnuEditDelete"},
        {"RightMenu_CancelSend", "mnuCancelSend"},
        {"RightMenu_ReSendError", "mnuResendError"},
        {"RightMenu_Resume", "mnuResume"},
        {"RightMenu_NewFax", "mnuNewFax"},
        {"mnuFaxview_Property", "mnuFaxProperty"},
        {"mnuFaxview_ViewFax", "mnuViewFax"},
        {"mnuFaxview_FaxSaveAs", "mnuSaveAs"},
    };
    return menus.value(tool);
}

QStringList CommandStates::GetRightMenu()
{
    return {"RightMenu_NewFax",
            "RightMenu_ViewFax",
            "",
            "RightMenu_MarkReaded",
            "RightMenu_MarkNotRead",
            "",
            "RightMenu_ReSend",
            "RightMenu_ResendToMail",
            "RightMenu_ReSendError",
            "RightMenu_CancelSend",
            "",
            "RightMenu_MoveFax",
            "RightMenu_Resume",
            "RightMenu_DeleteFax",
            "",
            "RightMenu_FindFax",
            "RightMenu_PrintFax",
            "RightMenu_FaxProperty"};
}
