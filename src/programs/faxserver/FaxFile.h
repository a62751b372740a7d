#pragma once

#include <QString>

/// Fax files: TIFFs of one or more pages.
namespace FaxFile {

/// Pages of a TIFF; 0 for a file that is none, cannot be read, or has more than 5,000.
int CountPages(const QString &path);

} // namespace FaxFile
