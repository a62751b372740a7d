#include "FileType.h"

#include "ConversionError.h"
#include "OfficeContents.h"
#include "core/FaxImage.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

constexpr qint64 headSize = 64 * 1024;

[[noreturn]] void Refuse(const char *reason)
{
    throw ConversionError(QCoreApplication::translate("printtool", reason));
}

QByteArray ReadHead(const QString &path)
{
    const QFileInfo info(path);
    if (info.isDir())
        Refuse(QT_TRANSLATE_NOOP("printtool", "It is a folder, not a file."));
    if (!info.exists())
        Refuse(QT_TRANSLATE_NOOP("printtool", "The file does not exist."));
    // A pipe or device would keep its reader waiting.
    if (!info.isFile())
        Refuse(QT_TRANSLATE_NOOP("printtool", "It is no ordinary file."));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw ConversionError(QCoreApplication::translate("printtool", "The file cannot be opened: %1.")
                                  .arg(file.errorString()));
    const QByteArray head = file.read(headSize);
    if (file.error() != QFile::NoError)
        throw ConversionError(
            QCoreApplication::translate("printtool", "The file cannot be read: %1.").arg(file.errorString()));
    if (head.isEmpty())
        Refuse(QT_TRANSLATE_NOOP("printtool", "The file is empty."));
    return head;
}

bool IsTiff(const QByteArray &head, const QString &path)
{
    return head.startsWith(QByteArrayView("II*\0", 4)) || head.startsWith(QByteArrayView("MM\0*", 4)) ||
           head.startsWith(QByteArrayView("II+\0", 4)) || head.startsWith(QByteArrayView("MM\0+", 4)) ||
           FaxImage::HasSizePrefix(path);
}

bool IsPicture(const QByteArray &head)
{
    static constexpr QByteArrayView signatures[] = {"BM",     "\xff\xd8\xff", "\x89PNG\r\n\x1a\n",
                                                    "GIF87a", "GIF89a",       "8BPS"};
    return std::any_of(std::begin(signatures), std::end(signatures),
                       [&](QByteArrayView signature) { return head.startsWith(signature); });
}

/// Readers put up with rubbish in front of the first line.
bool IsPdf(const QByteArray &head)
{
    constexpr qsizetype mostRubbish = 1024;
    return head.left(mostRubbish).contains("%PDF-");
}

FileType DetectFax(const QByteArray &head, const QString &path)
{
    if (!IsTiff(head, path))
        Refuse(QT_TRANSLATE_NOOP("printtool", "It is no fax file."));
    if (FaxImage::GetPageCount(path) == 0)
        Refuse(QT_TRANSLATE_NOOP("printtool", "The fax file is damaged."));
    return {Document::FaxFile, {}};
}

} // namespace

FileType DetectFileType(const QString &path, bool ready)
{
    const QByteArray head = ReadHead(path);
    if (ready)
        return DetectFax(head, path);
    if (IsTiff(head, path) || IsPicture(head))
        return {Document::Picture, {}};
    const QString ending = OfficeEnding(path, head);
    if (!ending.isEmpty())
        return {Document::Office, ending};
    if (IsPdf(head))
        return {Document::Pdf, {}};
    Refuse(QT_TRANSLATE_NOOP("printtool", "Files of this kind cannot be faxed."));
}
