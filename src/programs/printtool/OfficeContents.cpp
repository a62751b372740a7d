#include "OfficeContents.h"

#include "ConversionError.h"
#include "OleStorage.h"
#include "ZipNames.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

#include <algorithm>

namespace {

constexpr QByteArrayView zipSignature("PK\3\4");

struct KnownForm
{
    const char *strSign;
    const char *strEnding;
};

/// Media types of the OpenDocument forms; templates begin like what they are for.
constexpr KnownForm openDocuments[] = {
    {"application/vnd.oasis.opendocument.text", "odt"},
    {"application/vnd.oasis.opendocument.spreadsheet", "ods"},
    {"application/vnd.oasis.opendocument.presentation", "odp"},
    {"application/vnd.oasis.opendocument.graphics", "odg"},
};

/// The folders in which Office Open XML forms keep their main part.
constexpr KnownForm openXmlFolders[] = {{"word/", "docx"}, {"xl/", "xlsx"}, {"ppt/", "pptx"}};

constexpr KnownForm oleStreams[] = {
    {"WordDocument", "doc"}, {"PowerPoint Document", "ppt"}, {"Workbook", "xls"}, {"Book", "xls"}};

/// Encrypted Office Open XML is put into an OLE file as a whole.
constexpr QStringView encryptedPackage(u"EncryptedPackage");

[[noreturn]] void RefuseDamaged()
{
    throw ConversionError(QCoreApplication::translate("OfficeContents", "The document is damaged."));
}

QString OpenDocumentEnding(const QByteArray &mediaType)
{
    for (const KnownForm &form : openDocuments) {
        if (mediaType.startsWith(form.strSign))
            return QLatin1String(form.strEnding);
    }
    return {};
}

const ZipEntry *FindEntry(const QList<ZipEntry> &entries, const char *name)
{
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [&](const ZipEntry &entry) { return entry.abName == name; });
    return found == entries.end() ? nullptr : &*found;
}

QString ZipEnding(const QString &path)
{
    constexpr qint64 longestMediaType = 100;
    const QList<ZipEntry> entries = ListZip(path);
    if (entries.isEmpty())
        RefuseDamaged();
    if (const ZipEntry *mediaType = FindEntry(entries, "mimetype"))
        return OpenDocumentEnding(ReadStored(path, *mediaType, longestMediaType));
    for (const KnownForm &form : openXmlFolders) {
        if (std::any_of(entries.begin(), entries.end(),
                        [&](const ZipEntry &entry) { return entry.abName.startsWith(form.strSign); }))
            return QLatin1String(form.strEnding);
    }
    return {};
}

/// A document within the document has its streams in the same directory: then the name decides, and the
/// office program finds out by itself when that is wrong.
QString OleEnding(const QString &path)
{
    const OleStorage storage(path);
    if (!storage.IsWhole())
        RefuseDamaged();
    const QString named = QFileInfo(path).suffix().toLower();
    QString first;
    for (const KnownForm &form : oleStreams) {
        if (!storage.Has(QString::fromLatin1(form.strSign)))
            continue;
        if (named == QLatin1String(form.strEnding))
            return named;
        if (first.isEmpty())
            first = QLatin1String(form.strEnding);
    }
    return first.isEmpty() && storage.Has(encryptedPackage) ? QStringLiteral("docx") : first;
}

/// Reads a document of one XML file to its end: the office program would take half of one for the whole.
bool IsWholeXml(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QXmlStreamReader xml(&file);
    while (!xml.atEnd())
        xml.readNext();
    return !xml.hasError();
}

QString XmlEnding(const QString &path, const QByteArray &head)
{
    QString ending;
    for (const KnownForm &form : openDocuments) {
        if (head.contains("office:document") && head.contains(form.strSign))
            ending = QStringLiteral("f") + QLatin1String(form.strEnding);
    }
    if (head.contains("progid=\"Word.Document\"") || head.contains("progid=\"Excel.Sheet\""))
        ending = QStringLiteral("xml");
    if (!ending.isEmpty() && !IsWholeXml(path))
        RefuseDamaged();
    return ending;
}

/// Worksheets from before OLE files: BIFF 2 to 4.
bool IsBareWorksheet(const QByteArray &head)
{
    return head.startsWith(QByteArrayView("\x09\0\x04\0", 4)) ||
           head.startsWith(QByteArrayView("\x09\x02\x06\0", 4)) ||
           head.startsWith(QByteArrayView("\x09\x04\x06\0", 4));
}

bool HasUnicodeMark(const QByteArray &head)
{
    return head.startsWith("\xff\xfe") || head.startsWith("\xfe\xff") || head.startsWith("\xef\xbb\xbf");
}

bool LooksLikeHtml(const QByteArray &head)
{
    const QByteArray start = head.trimmed().left(1024).toLower();
    return start.startsWith("<!doctype html") || start.startsWith("<html") || start.contains("<html>") ||
           start.contains("<html ");
}

/// Text is what holds no byte that steers nothing a printer would know.
bool IsText(const QByteArray &head)
{
    constexpr QByteArrayView known("\a\b\t\n\v\f\r\x1a\x1b");
    return HasUnicodeMark(head) || std::none_of(head.begin(), head.end(), [&](char byte) {
               return static_cast<uchar>(byte) < 0x20 && !known.contains(byte);
           });
}

QString TextEnding(const QString &path, const QByteArray &head)
{
    if (!IsText(head))
        return {};
    const QString named = QFileInfo(path).suffix().toLower();
    const bool isHtml =
        named.startsWith(QLatin1String("htm")) || (named != QLatin1String("txt") && LooksLikeHtml(head));
    return isHtml ? QStringLiteral("html") : QStringLiteral("txt");
}

/// ODF compresses its contents, and stores them as they are only when they are encrypted.
bool IsEncryptedZip(const QString &path)
{
    const QList<ZipEntry> entries = ListZip(path);
    if (FindEntry(entries, "encrypted-package") != nullptr)
        return true;
    const ZipEntry *content = FindEntry(entries, "content.xml");
    const QByteArray start = content != nullptr ? ReadStored(path, *content, 4) : QByteArray();
    return !start.isEmpty() && !start.startsWith('<') && !HasUnicodeMark(start);
}

/// [MS-DOC] 2.5.2: the bit fEncrypted.
bool IsEncryptedWord(const QByteArray &stream)
{
    constexpr qsizetype flagsAt = 11;
    return stream.size() > flagsAt && (stream[flagsAt] & 1) != 0;
}

/// [MS-XLS] 2.4.117: a record FilePass behind the first one.
bool IsEncryptedWorkbook(const QByteArray &stream)
{
    constexpr qsizetype sizeAt = 2, contents = 4;
    constexpr QByteArrayView filePass("\x2f\0", 2), writeProtection("\x86\0", 2);
    qsizetype at = stream.size() < contents ? 0 : contents + uchar(stream[sizeAt]);
    if (stream.mid(at).startsWith(writeProtection))
        at += contents;
    return stream.mid(at).startsWith(filePass);
}

} // namespace

QString OfficeContents::Ending(const QString &path, const QByteArray &head)
{
    if (head.startsWith(zipSignature))
        return ZipEnding(path);
    if (head.startsWith(OleStorage::Signature))
        return OleEnding(path);
    if (head.startsWith("{\\rtf"))
        return QStringLiteral("rtf");
    if (IsBareWorksheet(head))
        return QStringLiteral("xls");
    const QString ending = head.contains("<?xml") ? XmlEnding(path, head) : QString();
    return ending.isEmpty() ? TextEnding(path, head) : ending;
}

bool OfficeContents::AsksForPassword(const QString &path)
{
    OleStorage storage(path);
    if (!storage.IsWhole())
        return IsEncryptedZip(path);
    return storage.Has(encryptedPackage) || storage.Has(u"EncryptedSummary") ||
           IsEncryptedWord(storage.Begin(u"WordDocument")) || IsEncryptedWorkbook(storage.Begin(u"Workbook"));
}
