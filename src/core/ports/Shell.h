#pragma once

#include <QString>
#include <QStringList>

class Shell
{
public:
    virtual ~Shell() = default;

    /// Starts a program, or opens a file or address with the program that the desktop has for it, without
    /// waiting for its end. Each of the `parameters` reaches the program as one argument, blanks and quotes
    /// included; a file or address takes none. `folder` is the working folder, `show` a window state as the
    /// desktop numbers them. The result is 33 or more when it started, otherwise a failure code.
    virtual int Open(const QString &file, const QString &verb, const QStringList &parameters,
                     const QString &folder, int show) = 0;
};
