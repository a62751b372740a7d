#pragma once

#include <QByteArray>
#include <QString>

#include <stop_token>

/// Plain text and HTML, whose encoding nobody names, made into what the office program reads right.
namespace TextFiles {

/// By its byte order mark; else UTF-8 when all of it is that; else the ANSI code page.
QString Decode(const QByteArray &bytes);

/// The charset that an HTML file names in its head, unless there is a mark or all of it is UTF-8.
QString DecodeHtml(const QByteArray &bytes);

/// A text as an OpenDocument file of A4 pages in a typewriter's letters, 80 to a line: tabs every eight
/// columns, form feeds begin a page, what steers a terminal is left out. Half of it when it is asked to stop.
/// False when it cannot be written.
bool WriteTextDocument(const QString &text, const QString &path, const std::stop_token &stop);

/// The HTML in UTF-8, and saying so. False when it cannot be written.
bool WriteHtml(const QString &html, const QString &path);

} // namespace TextFiles
