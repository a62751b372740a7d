#include "FaxFile.h"

#include <QFile>

#include <memory>

#include <tiffio.h>

namespace {

constexpr int lMostPages = 5000;

} // namespace

int FaxFile::CountPages(const QString &path)
{
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
    const std::unique_ptr<TIFF, void (*)(TIFF *)> file(TIFFOpen(QFile::encodeName(path).constData(), "r"),
                                                       &TIFFClose);
    if (!file)
        return 0;
    int pages = 0;
    do {
        ++pages;
    } while (pages <= lMostPages && TIFFReadDirectory(file.get()) != 0);
    return pages > lMostPages ? 0 : pages;
}
