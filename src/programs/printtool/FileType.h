#pragma once

#include "Document.h"

#include <QString>

/// What a file is.
struct FileType
{
    Document::Kind kind = Document::Office;
    QString strEnding; ///< of an office document: the ending that tells its form, such as "docx" or "txt"
};

/// Looks at the file's contents first, at the ending of its name where they do not tell. `ready` asks for a
/// fax file. Raises `ConversionError` when there is no such file, it cannot be read, or nothing here can make
/// pages of it.
FileType DetectFileType(const QString &path, bool ready);
