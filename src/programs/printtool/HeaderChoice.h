#pragma once

#include "SheetFormat.h"

#include <QString>

#include <memory>

class HeaderPainter;

/// From the name of a header profile to what draws it.
namespace HeaderChoice {

/// The full path of the profile that a list shows under that name, "*" included: in the user's "Header"
/// folder or, for the standard ones, in the program's. Empty for no header. Raises `ConversionError` when
/// there is no such profile: a fax without its header is not what the user wants.
QString FindForUser(const QString &shownName, const QString &userFolder, const QString &programFolder);

/// The same for a shell: a path, or the name of a profile in the program's "Header" folder.
QString FindForShell(const QString &pathOrName, const QString &programFolder);

/// Null for an empty path. Raises `ConversionError` when the file cannot be read.
std::shared_ptr<const HeaderPainter> Load(const QString &path, const SheetFormat &format);

} // namespace HeaderChoice
