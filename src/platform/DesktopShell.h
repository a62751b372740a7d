#pragma once

#include "core/ports/Shell.h"

class Folders;

/// Starts programs, and opens documents and addresses with the desktop's opener. Everything goes out as a
/// list of arguments; no command line is ever put together.
class DesktopShell final : public Shell
{
public:
    /// Codes of a start that failed; a good one gives 33.
    enum Result { FileNotFound = 2, AccessDenied = 5, NoAssociation = 31, Started = 33 };

    explicit DesktopShell(const Folders &folders)
        : folders(folders)
    {
    }

    /// Runs a file as a program only when it stands in this program's own folder or is a bare name of the
    /// search path: a document is never run, whatever its permissions say. Windows open as the desktop
    /// pleases: `verb` and `show` change nothing.
    int Open(const QString &file, const QString &verb, const QStringList &parameters, const QString &folder,
             int show) override;

    std::unique_ptr<RunningProgram> Start(const QString &file, const QStringList &parameters) override;

private:
    QString FindProgram(const QString &file) const;

    const Folders &folders;
};
