#include "FileType.h"

#include "ConversionError.h"
#include "OfficeContents.h"
#include "SheetFormat.h"
#include "core/FaxImage.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>

namespace {

constexpr qint64 headSize = 64 * 1024;

[[noreturn]] void Refuse(const char *reason)
{
    throw ConversionError(QCoreApplication::translate("FileType", reason));
}

QByteArray ReadHead(const QString &path)
{
    const QFileInfo info(path);
    if (info.isDir())
        Refuse(QT_TRANSLATE_NOOP("FileType", "It is a folder, not a file."));
    if (!info.exists())
        Refuse(QT_TRANSLATE_NOOP("FileType", "The file does not exist."));
    // A pipe or device would keep its reader waiting.
    if (!info.isFile())
        Refuse(QT_TRANSLATE_NOOP("FileType", "It is no ordinary file."));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw ConversionError(QCoreApplication::translate("FileType", "The file cannot be opened: %1.")
                                  .arg(file.errorString()));
    const QByteArray head = file.read(headSize);
    if (file.error() != QFile::NoError)
        throw ConversionError(
            QCoreApplication::translate("FileType", "The file cannot be read: %1.").arg(file.errorString()));
    if (head.isEmpty())
        Refuse(QT_TRANSLATE_NOOP("FileType", "The file is empty."));
    return head;
}

bool IsTiff(const QByteArray &head, const QString &path)
{
    return head.startsWith(QByteArrayView("II*\0", 4)) || head.startsWith(QByteArrayView("MM\0*", 4)) ||
           head.startsWith(QByteArrayView("II+\0", 4)) || head.startsWith(QByteArrayView("MM\0+", 4)) ||
           FaxImage::HasSizePrefix(path);
}

/// Two letters alone may begin a text.
bool IsBitmap(const QByteArray &head)
{
    constexpr qsizetype reservedAt = 6, reservedSize = 4;
    return head.startsWith("BM") && head.mid(reservedAt, reservedSize) == QByteArray(reservedSize, '\0');
}

bool IsPicture(const QByteArray &head)
{
    static constexpr QByteArrayView signatures[] = {"\xff\xd8\xff", "\x89PNG\r\n\x1a\n", "GIF87a", "GIF89a",
                                                    "8BPS"};
    return IsBitmap(head) ||
           std::any_of(std::begin(signatures), std::end(signatures),
                       [&](QByteArrayView signature) { return head.startsWith(signature); });
}

/// Endings of files that are no text: a text of such a name is what an error has left.
bool IsNamedOtherwise(const QString &path)
{
    static constexpr std::array endings{"pdf",  "bmp", "jpg", "jpeg", "png",  "gif",  "tif",
                                        "tiff", "3g",  "psd", "docx", "xlsx", "pptx", "odt",
                                        "ods",  "odp", "ppt", "fodt", "fods", "fodp"};
    const QString named = QFileInfo(path).suffix().toLower();
    return std::any_of(endings.begin(), endings.end(),
                       [&](const char *ending) { return named == QLatin1String(ending); });
}

/// Readers put up with rubbish in front of the first line.
bool IsPdf(const QByteArray &head)
{
    constexpr qsizetype mostRubbish = 1024;
    return head.left(mostRubbish).contains("%PDF-");
}

/// All of its pages could have come from a fax machine: they keep their size, and need no fitting.
bool IsFax(const QString &path)
{
    const FaxPages pages(path);
    for (int page = 0; page < pages.Count(); ++page) {
        const TiffPage &entry = pages.Page(page);
        if (entry.lDecodedBits != 1 || entry.lWidth != SheetFormat::Width ||
            entry.lDotsPerInchX != SheetFormat::DotsPerInchX)
            return false;
    }
    return pages.Count() > 0;
}

FileType DetectFax(const QByteArray &head, const QString &path)
{
    if (!IsTiff(head, path))
        Refuse(QT_TRANSLATE_NOOP("FileType", "It is no fax file."));
    if (FaxImage::GetPageCount(path) == 0)
        Refuse(QT_TRANSLATE_NOOP("FileType", "The fax file is damaged."));
    return {Document::FaxFile, {}};
}

} // namespace

FileType DetectFileType(const QString &path, bool ready)
{
    const QByteArray head = ReadHead(path);
    if (ready)
        return DetectFax(head, path);
    if (IsTiff(head, path))
        return {IsFax(path) ? Document::FaxFile : Document::Picture, {}};
    if (IsPicture(head))
        return {Document::Picture, {}};
    if (head.startsWith("%PDF-"))
        return {Document::Pdf, {}};
    const QString ending = OfficeContents::Ending(path, head);
    if (!ending.isEmpty() && !(ending == QLatin1String("txt") && IsNamedOtherwise(path)))
        return {Document::Office, ending};
    if (IsPdf(head))
        return {Document::Pdf, {}};
    if (IsNamedOtherwise(path))
        Refuse(QT_TRANSLATE_NOOP("FileType", "The file is damaged, or not what its name says."));
    Refuse(QT_TRANSLATE_NOOP("FileType", "Files of this kind cannot be faxed."));
}
