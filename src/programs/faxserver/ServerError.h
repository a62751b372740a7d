#pragma once

#include <QString>

#include <stdexcept>

/// What the server cannot do, in words for the person who started it.
class ServerError : public std::runtime_error
{
public:
    explicit ServerError(const QString &description)
        : std::runtime_error(description.toStdString())
    {
    }

    QString Description() const { return QString::fromUtf8(what()); }
};
