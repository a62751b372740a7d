#pragma once

#include <QString>

#include <stdexcept>

/// Why a document, or the whole request, cannot become a fax. The text is a sentence for the user, without
/// the document's name.
class ConversionError : public std::runtime_error
{
public:
    explicit ConversionError(const QString &text)
        : std::runtime_error(text.toStdString())
        , strText(text)
    {
    }

    const QString &Text() const { return strText; }

private:
    QString strText;
};
