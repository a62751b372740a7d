#pragma once

#include <QString>

/// A fine fax whose pages are full of text, as a letter's are.
namespace LetterFax {

/// Needs a GUI application. False when the file could not be written.
bool Write(const QString &path, int pages);

} // namespace LetterFax
