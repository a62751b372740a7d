#pragma once

#include <QByteArray>
#include <QString>

/// The ANSI code page of the wire and of exchanged files: windows-1252, unless the environment variable
/// VELMAR_ANSI_CODEPAGE names another.
namespace AnsiText {

/// What the page lacks becomes "?".
QByteArray ToAnsi(const QString &text);
QString FromAnsi(const QByteArray &bytes);

} // namespace AnsiText
