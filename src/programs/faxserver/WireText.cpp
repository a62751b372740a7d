#include "WireText.h"

#include <QStringDecoder>
#include <QStringEncoder>
#include <QtEndian>

namespace {

QByteArray CodePage()
{
    const QByteArray named = qgetenv("VELMAR_ANSI_CODEPAGE");
    return named.isEmpty() ? QByteArray("windows-1252") : named;
}

} // namespace

QByteArray WireText::ToAnsi(const QString &text)
{
    QStringEncoder encoder(CodePage().constData(), QStringConverter::Flag::Stateless);
    if (!encoder.isValid())
        return text.toLatin1();
    QByteArray bytes = encoder.encode(text);
    return bytes.replace('\x1a', '?'); // the converter's sign for a character that the page lacks
}

QString WireText::FromAnsi(const QByteArray &bytes)
{
    QStringDecoder decoder(CodePage().constData(), QStringConverter::Flag::Stateless);
    return decoder.isValid() ? QString(decoder.decode(bytes)) : QString::fromLatin1(bytes);
}

QByteArray WireText::Field(const QString &text)
{
    QString line = text;
    line.replace("\r\n", " ").replace('\n', ' ').replace('\r', ' ').remove(QChar(0));
    return ToAnsi(line.replace('\'', "~$@~"));
}

QByteArray WireText::Number(qint32 value)
{
    QByteArray bytes(4, Qt::Uninitialized);
    qToLittleEndian(value, bytes.data());
    return bytes;
}

qint32 WireText::ReadNumber(const QByteArray &bytes, qsizetype offset)
{
    return bytes.size() < offset + 4 ? 0 : qFromLittleEndian<qint32>(bytes.constData() + offset);
}

QByteArray WireText::Ok(const QByteArrayList &lines)
{
    QByteArray text = "OK\r\n";
    for (const QByteArray &line : lines)
        text += line + "\r\n";
    return text;
}

QByteArray WireText::Refused(int reason)
{
    return "ERR\r\n" + QByteArray::number(reason) + "\r\n";
}

QByteArray WireText::Record(const QByteArrayList &fields)
{
    return fields.join('\0');
}
