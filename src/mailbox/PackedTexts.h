#pragma once

#include <QByteArray>
#include <QString>

#include <span>
#include <string_view>

/// A few texts as UTF-8 in one block of memory: a long list keeps a hundred thousand of these.
class PackedTexts
{
public:
    PackedTexts() = default;
    explicit PackedTexts(std::span<const std::string_view> texts);

    /// A text by its zero-based place; empty behind the last one. Valid as long as this object.
    std::string_view At(int place) const;
    QString Text(int place) const;

private:
    QByteArray abBlock; ///< each text behind its length
};
