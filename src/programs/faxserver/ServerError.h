#pragma once

#include <QString>

#include <cstdio>
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

/// Tells the person who started the server, on its error output.
inline void Complain(const ServerError &error)
{
    std::fprintf(stderr, "%s\n", error.what());
}
