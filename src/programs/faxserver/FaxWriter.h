#pragma once

#include <QImage>
#include <QList>
#include <QString>

/// Writes fax files: TIFFs with Group 3 or Group 4 pages at 204 dots per inch across.
namespace FaxWriter {

enum Coding { codGroup3, codGroup4 };

/// The pages are of one bit, set for black. Raises `ServerError`.
void Write(const QString &path, const QList<QImage> &pages, int verticalDpi, Coding coding);

} // namespace FaxWriter
