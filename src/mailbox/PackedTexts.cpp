#include "mailbox/PackedTexts.h"

#include <cstring>

namespace {

/// Stands in the one byte of a length when four bytes with the length follow.
constexpr unsigned char lLongText = 255;

qsizetype PackedSize(std::string_view text)
{
    return 1 + static_cast<qsizetype>((text.size() < lLongText ? 0 : sizeof(quint32)) + text.size());
}

void Pack(char *&target, std::string_view text)
{
    const auto size = static_cast<quint32>(text.size());
    *target++ = static_cast<char>(size < lLongText ? size : lLongText);
    if (size >= lLongText) {
        std::memcpy(target, &size, sizeof size);
        target += sizeof size;
    }
    if (size > 0)
        std::memcpy(target, text.data(), size);
    target += size;
}

std::string_view Unpack(const char *&source)
{
    quint32 size = static_cast<unsigned char>(*source++);
    if (size == lLongText) {
        std::memcpy(&size, source, sizeof size);
        source += sizeof size;
    }
    const std::string_view text(source, size);
    source += size;
    return text;
}

} // namespace

PackedTexts::PackedTexts(std::span<const std::string_view> texts)
{
    qsizetype size = 0;
    for (const std::string_view text : texts)
        size += PackedSize(text);
    abBlock = QByteArray(size, Qt::Uninitialized);
    char *target = abBlock.data();
    for (const std::string_view text : texts)
        Pack(target, text);
}

std::string_view PackedTexts::At(int place) const
{
    const char *source = abBlock.constData();
    const char *const end = source + abBlock.size();
    for (int i = 0; source < end; ++i) {
        const std::string_view text = Unpack(source);
        if (i == place)
            return text;
    }
    return {};
}

QString PackedTexts::Text(int place) const
{
    const std::string_view text = At(place);
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}
