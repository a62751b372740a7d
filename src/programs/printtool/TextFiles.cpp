#include "TextFiles.h"

#include "core/AnsiText.h"

#include <QFile>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QStringList>
#include <QXmlStreamWriter>

#include <algorithm>
#include <optional>

namespace {

constexpr auto wholeText = QStringConverter::Flag::Stateless;

struct Namespace
{
    const char *strPrefix;
    const char *strName;
};

constexpr Namespace namespaces[] = {{"office", "urn:oasis:names:tc:opendocument:xmlns:office:1.0"},
                                    {"style", "urn:oasis:names:tc:opendocument:xmlns:style:1.0"},
                                    {"text", "urn:oasis:names:tc:opendocument:xmlns:text:1.0"},
                                    {"fo", "urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0"}};

/// 17 cm hold 80 letters of 10 points.
constexpr char styles[] = R"(<office:styles><style:style style:name="Line" style:family="paragraph">
<style:paragraph-properties fo:margin-top="0cm" fo:margin-bottom="0cm" fo:orphans="0" fo:widows="0"/>
<style:text-properties fo:font-family="'Liberation Mono'" style:font-family-generic="modern"
 style:font-pitch="fixed" fo:font-size="10pt" style:font-size-asian="10pt" style:font-size-complex="10pt"
 fo:language="zxx" fo:country="none"/></style:style>
<style:style style:name="First" style:family="paragraph" style:parent-style-name="Line">
<style:paragraph-properties fo:break-before="page"/></style:style></office:styles>
<office:automatic-styles><style:page-layout style:name="A4"><style:page-layout-properties
 fo:page-width="21cm" fo:page-height="29.7cm" fo:margin-top="2cm" fo:margin-bottom="2cm"
 fo:margin-left="2cm" fo:margin-right="1.9cm"/></style:page-layout></office:automatic-styles>
<office:master-styles><style:master-page style:name="Standard" style:page-layout-name="A4"/></office:master-styles>
)";

/// By the mark, or else as UTF-8; none when it is neither.
std::optional<QString> DecodeUnicode(const QByteArray &bytes)
{
    if (const auto marked = QStringConverter::encodingForData(bytes))
        return QString(QStringDecoder(*marked, wholeText).decode(bytes));
    QStringDecoder decoder(QStringConverter::Utf8, wholeText);
    const QString text = decoder.decode(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(text);
}

/// What XML can hold, with line feeds alone between lines.
QString Clean(QString text)
{
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    for (QChar &character : text) {
        if (character == u'\r' || character == u'\x85' || character == u'\x2028' || character == u'\x2029' ||
            character == u'\v')
            character = u'\n';
    }
    static const QRegularExpression escapes(QStringLiteral("\x1b\\[[0-9;?]*[A-Za-z]"));
    text.remove(escapes);
    text.removeIf([](QChar character) {
        return (character < u' ' && character != u'\t' && character != u'\n' && character != u'\f') ||
               character == u'\x7f' || character.isNonCharacter();
    });
    return text;
}

/// Blanks in place of tabs, as far as the eighth column after each.
QString WithoutTabs(const QString &line)
{
    constexpr qsizetype columns = 8;
    if (!line.contains(u'\t'))
        return line;
    QString spread;
    for (const QChar character : line) {
        if (character == u'\t')
            spread += QString(columns - spread.size() % columns, u' ');
        else
            spread += character;
    }
    return spread;
}

/// Several blanks count as one in XML, unless an element tells their number.
void WriteLine(QXmlStreamWriter &xml, const QString &line, bool beginsPage)
{
    static const QRegularExpression blanks(QStringLiteral("^ +|  +"));
    xml.writeStartElement(QStringLiteral("text:p"));
    xml.writeAttribute(QStringLiteral("text:style-name"),
                       beginsPage ? QStringLiteral("First") : QStringLiteral("Line"));
    qsizetype written = 0;
    for (const QRegularExpressionMatch &run : blanks.globalMatch(line)) {
        xml.writeCharacters(line.mid(written, run.capturedStart() - written));
        xml.writeEmptyElement(QStringLiteral("text:s"));
        xml.writeAttribute(QStringLiteral("text:c"), QString::number(run.capturedLength()));
        written = run.capturedEnd();
    }
    xml.writeCharacters(line.mid(written));
    xml.writeEndElement();
}

/// The office program takes the square of its length in time for a line.
QStringList SplitLine(const QString &line)
{
    constexpr qsizetype longest = 80 * 50;
    QStringList parts;
    qsizetype from = 0;
    do {
        qsizetype end = std::min(from + longest, line.size());
        if (end < line.size() && line[end].isLowSurrogate())
            ++end;
        parts.append(line.mid(from, end - from));
        from = end;
    } while (from < line.size());
    return parts;
}

void WriteLines(QXmlStreamWriter &xml, const QString &text, const std::stop_token &stop)
{
    QStringList pages = text.split(u'\f');
    while (pages.size() > 1 && pages.last().trimmed().isEmpty()) // the feed that ejects the last page
        pages.removeLast();
    bool beginsPage = false; // the first one begins by itself
    for (const QString &page : std::as_const(pages)) {
        QStringList lines = page.split(u'\n');
        if (lines.size() > 1 && lines.last().isEmpty())
            lines.removeLast();
        for (const QString &line : std::as_const(lines)) {
            for (const QString &part : SplitLine(line)) {
                if (stop.stop_requested())
                    return;
                WriteLine(xml, WithoutTabs(part), beginsPage);
                beginsPage = false;
            }
        }
        beginsPage = true;
    }
}

} // namespace

QString TextFiles::Decode(const QByteArray &bytes)
{
    const std::optional<QString> unicode = DecodeUnicode(bytes);
    return unicode ? *unicode : AnsiText::FromAnsi(bytes);
}

QString TextFiles::DecodeHtml(const QByteArray &bytes)
{
    const std::optional<QString> unicode = DecodeUnicode(bytes);
    if (unicode && !unicode->contains(u'\x1b')) // ISO 2022 looks like UTF-8
        return *unicode;
    QStringDecoder named = QStringDecoder::decoderForHtml(bytes);
    // It takes UTF-8 for granted; and who writes Latin 1 means what Windows makes of it.
    const bool isTelling =
        named.isValid() && qstrcmp(named.name(), "UTF-8") != 0 && qstrcmp(named.name(), "ISO-8859-1") != 0;
    return isTelling ? QString(named.decode(bytes)) : AnsiText::FromAnsi(bytes);
}

bool TextFiles::WriteTextDocument(const QString &text, const QString &path, const std::stop_token &stop)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    QXmlStreamWriter xml(&file);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("office:document"));
    for (const Namespace &space : namespaces)
        xml.writeAttribute(QLatin1String("xmlns:") + QLatin1String(space.strPrefix),
                           QLatin1String(space.strName));
    xml.writeAttribute(QStringLiteral("office:version"), QStringLiteral("1.2"));
    xml.writeAttribute(QStringLiteral("office:mimetype"),
                       QStringLiteral("application/vnd.oasis.opendocument.text"));
    xml.writeCharacters(QString()); // ends the element's beginning
    file.write(styles);
    xml.writeStartElement(QStringLiteral("office:body"));
    xml.writeStartElement(QStringLiteral("office:text"));
    WriteLines(xml, Clean(text), stop);
    xml.writeEndDocument();
    return !xml.hasError() && file.flush();
}

bool TextFiles::WriteHtml(const QString &html, const QString &path)
{
    static const QRegularExpression charset(QStringLiteral("(<meta[^<>]*charset\\s*=\\s*[\"']?)[\\w.:-]+"),
                                            QRegularExpression::CaseInsensitiveOption);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    const QByteArray bytes =
        "\xef\xbb\xbf" + QString(html).replace(charset, QStringLiteral("\\1utf-8")).toUtf8();
    return file.write(bytes) == bytes.size() && file.flush();
}
