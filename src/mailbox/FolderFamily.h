#pragma once

#include <QString>

/// What a folder holds. The tree shows it as the folder's icon.
enum class FolderFamily { Root, Received, Draft, WaitSend, Sended, Recyle };

/// The icon of a family, such as "imgReceived".
QString GetFamilyImageKey(FolderFamily family);

/// The family of a `Folder_Type`. Type 3 and unknown types have none of their own: they keep `previous`.
FolderFamily GetFamilyOfType(long type, FolderFamily previous);

/// The list mode that shows a folder: 0 summary to 7 undelivered. `branch` is the key of the branch of "Sent"
/// in which the folder stands; -1 when no mode shows it.
int GetListMode(FolderFamily family, const QString &branch);
