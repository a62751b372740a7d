#include "mailbox/FolderFamily.h"

QString GetFamilyImageKey(FolderFamily family)
{
    switch (family) {
    case FolderFamily::Root:
        return "imgFolderRoot";
    case FolderFamily::Received:
        return "imgReceived";
    case FolderFamily::Draft:
        return "imgSketchup";
    case FolderFamily::WaitSend:
        return "imgWaitSend";
    case FolderFamily::Sended:
        return "imgSended";
    case FolderFamily::Recyle:
        return "imgRecyle";
    }
    return {};
}

FolderFamily GetFamilyOfType(long type, FolderFamily previous)
{
    switch (type) {
    case 0:
        return FolderFamily::Root;
    case 1:
        return FolderFamily::Received;
    case 2:
        return FolderFamily::Draft;
    case 4:
    case 5:
    case 6:
        return FolderFamily::Sended;
    case 7:
        return FolderFamily::Recyle;
    default:
        return previous;
    }
}

int GetListMode(FolderFamily family, const QString &branch)
{
    switch (family) {
    case FolderFamily::Root:
        return 0;
    case FolderFamily::Draft:
        return 1;
    case FolderFamily::Received:
        return 2;
    case FolderFamily::Recyle:
        return 3;
    case FolderFamily::WaitSend:
        return 4;
    case FolderFamily::Sended:
        if (branch == "1005")
            return 5;
        if (branch == "1006")
            return 6;
        return branch == "1007" ? 7 : -1;
    }
    return -1;
}
