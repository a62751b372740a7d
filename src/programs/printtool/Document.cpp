#include "Document.h"

#include "FaxFileSource.h"
#include "PdfSource.h"
#include "PictureSource.h"
#include "core/Utilities.h"

QString Document::Name() const
{
    return GetBareName(strPath);
}

std::unique_ptr<PageSource> OpenDocument(const Document &document)
{
    switch (document.kind) {
    case Document::FaxFile:
        return std::make_unique<FaxFileSource>(document.strReadable);
    case Document::Picture:
        return std::make_unique<PictureSource>(document.strReadable);
    case Document::Pdf:
    case Document::Office: // by now a PDF file, too
        break;
    }
    return std::make_unique<PdfSource>(document.strReadable);
}
