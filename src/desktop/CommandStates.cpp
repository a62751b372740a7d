#include "desktop/CommandStates.h"

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
        {"mnuCancelSend", key == "1005" && hasRows && input.bOnline},
        {"mnuResendError", input.bOnline && hasRows && isFailed},
        {"mnuInterResend", canResend},
        {"tbResend", canResend},
        {"mnuResume", input.Family == FolderFamily::Recyle && hasRows},
    };
}

QString CommandStates::GetMenuOfTool(const QString &tool)
{
    static const QMap<QString, QString> menus{
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
    };
    return menus.value(tool);
}
