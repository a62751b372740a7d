#include "Document.h"

#include "ConversionError.h"
#include "PictureSource.h"
#include "core/Utilities.h"

QString Document::Name() const
{
    return GetBareName(strPath);
}

std::unique_ptr<PageSource> OpenDocument(const Document &document)
{
    if (document.kind == Document::Picture)
        return std::make_unique<PictureSource>(document.strReadable);
    throw ConversionError(QStringLiteral("There is no reader yet."));
}
