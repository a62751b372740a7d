#pragma once

#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <stop_token>

/// How a run of the office program ended.
enum class OfficeEnd { Finished, Died, TimedOut, Stopped, NotStarted };

/// The office program that turns documents into PDF files.
struct OfficeProgram
{
    QString strPath;                          ///< empty when there is none
    std::chrono::milliseconds limit{120'000}; ///< of one run

    /// The one that the environment variable VELMAR_OFFICE names, or else "soffice" or "libreoffice" of the
    /// search path.
    static OfficeProgram Find();

    /// Converts the files, named by full paths within the work folder, into its folder "pdf"; what it says
    /// goes nowhere, since it says nothing that could be relied upon. Calls `look` several times a second.
    /// However it ends, nothing of the program goes on running.
    OfficeEnd Convert(const QString &workFolder, const QStringList &files, const std::stop_token &stop,
                      const std::function<void()> &look) const;

    /// Removes the socket that a program leaves in the system's temporary folder when it is ended, where it
    /// could not be given one of its own.
    static void RemoveSocket(const QString &workFolder);
};
