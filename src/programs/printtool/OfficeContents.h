#pragma once

#include <QByteArray>
#include <QString>

/// What the office program is told of its documents, and what their files tell of themselves.
namespace OfficeContents {

/// The ending under which the office program reads the file right, such as "docx" ("txt" for plain text), by
/// its contents first and by its name where they do not tell; empty when it is no office document. `head` is
/// the file's beginning. Raises `ConversionError` for a damaged one.
QString Ending(const QString &path, const QByteArray &head);

/// True when the office program could not have read the file without a password.
bool AsksForPassword(const QString &path);

} // namespace OfficeContents
