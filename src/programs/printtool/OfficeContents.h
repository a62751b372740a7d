#pragma once

#include <QByteArray>
#include <QString>

/// The ending under which the office program reads the file right, such as "docx", by its contents first and
/// by its name where they do not tell; empty when it is no office document. `head` is the file's beginning.
/// Raises `ConversionError` for one that is damaged or protected by a password.
QString OfficeEnding(const QString &path, const QByteArray &head);
