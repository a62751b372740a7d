#include "core/AnsiText.h"

#include <QList>
#include <QStringDecoder>
#include <QStringEncoder>

namespace {

constexpr auto wholeTexts = QStringConverter::Flag::Stateless;
constexpr char defaultPage[] = "windows-1252";

QByteArray PageName()
{
    const QByteArray name = qgetenv("VELMAR_ANSI_CODEPAGE");
    const bool known = !name.isEmpty() && QStringEncoder(name.constData()).isValid();
    return known ? name : QByteArray(defaultPage);
}

/// Each character by itself, so that one the page lacks spoils no other. Qt would write 0x1A for it.
QByteArray EncodeSingly(const QString &text, const QByteArray &page)
{
    QByteArray bytes;
    const QList<uint> characters = text.toUcs4();
    for (const uint character : characters) {
        const char32_t single = character;
        QStringEncoder encoder(page.constData(), wholeTexts);
        const QByteArray encoded = encoder.encode(QString::fromUcs4(&single, 1));
        bytes += encoder.hasError() ? QByteArray("?") : encoded;
    }
    return bytes;
}

} // namespace

QByteArray AnsiText::ToAnsi(const QString &text)
{
    const QByteArray page = PageName();
    QStringEncoder encoder(page.constData(), wholeTexts);
    const QByteArray bytes = encoder.encode(text);
    return encoder.hasError() ? EncodeSingly(text, page) : bytes;
}

QString AnsiText::FromAnsi(const QByteArray &bytes)
{
    QStringDecoder decoder(PageName().constData(), wholeTexts);
    return decoder.decode(bytes);
}
