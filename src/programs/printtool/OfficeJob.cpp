#include "OfficeJob.h"

#include "ConversionError.h"
#include "TextFiles.h"
#include "WorkFolder.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

namespace {

QString Translate(const char *text)
{
    return QCoreApplication::translate("OfficeConverter", text);
}

void OpenToRead(QFile &file)
{
    if (!file.open(QIODevice::ReadOnly))
        throw ConversionError(Translate("The file cannot be opened: %1.").arg(file.errorString()));
}

} // namespace

void RaiseNotWritten(const QString &folder)
{
    throw ConversionError(WorkFolder::IsFull(folder) ? Translate("The disk with the temporary files is full.")
                                                     : Translate("The temporary files cannot be written."));
}

/// Nothing of the document's own name is left: it could be an option, a filter, or the name of another.
void OfficeJob::HandOver(const QString &folder, int number, const std::stop_token &stop)
{
    const bool isText = strEnding == QLatin1String("txt");
    strFile = QStringLiteral("%1/doc%2.%3")
                  .arg(folder, QString::number(number).rightJustified(4, u'0'),
                       isText ? QStringLiteral("fodt") : strEnding);
    isText || strEnding == QLatin1String("html") ? WriteText(stop) : Copy(stop);
}

void OfficeJob::Copy(const std::stop_token &stop) const
{
    constexpr qint64 blockSize = 1 << 20;
    QFile from(strPath), to(strFile);
    OpenToRead(from);
    bool written = to.open(QIODevice::WriteOnly);
    while (written && !from.atEnd() && !stop.stop_requested()) {
        const QByteArray block = from.read(blockSize);
        if (block.isEmpty())
            throw ConversionError(Translate("The file cannot be read: %1.").arg(from.errorString()));
        written = to.write(block) == block.size();
    }
    if (!written || !to.flush())
        RaiseNotWritten(QFileInfo(strFile).path());
}

void OfficeJob::WriteText(const std::stop_token &stop) const
{
    constexpr qint64 most = 8 * 1024 * 1024; // some 2,500 pages
    QFile file(strPath);
    OpenToRead(file);
    const QByteArray bytes = file.read(most + 1);
    if (bytes.size() > most)
        throw ConversionError(Translate("The text is too long."));
    const bool written = strEnding == QLatin1String("txt")
                             ? TextFiles::WriteTextDocument(TextFiles::Decode(bytes), strFile, stop)
                             : TextFiles::WriteHtml(TextFiles::DecodeHtml(bytes), strFile);
    if (!written)
        RaiseNotWritten(QFileInfo(strFile).path());
}
