#pragma once

#include <QString>
#include <QStringList>

/// Hands a PDF file over to the print service, CUPS. `options`: names and values in turn. Waits for the
/// service; an empty text, or why it did not take the file.
QString SendToPrinter(const QString &printer, const QString &pdf, const QString &title,
                      const QStringList &options);
