#pragma once

#include <QString>
#include <QStringList>

#include <memory>

/// A program that this one has started and watches. It runs on when the object goes away.
class RunningProgram
{
public:
    virtual ~RunningProgram() = default;

    virtual bool IsRunning() = 0;
    /// Ends it at once.
    virtual void Kill() = 0;
};

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

    /// Starts a program of this program's own folder and keeps an eye on it; null when it could not be
    /// started.
    virtual std::unique_ptr<RunningProgram> Start(const QString &file, const QStringList &parameters) = 0;
};
