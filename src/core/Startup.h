#pragma once

#include <QString>
#include <QStringList>

class Instance;
struct Ports;

/// What the program does as it starts, before any window of its own.
namespace Startup {

enum class Result {
    EndWithMessage, ///< the named file is missing, and the user has been told
    HandedOver,     ///< another copy runs: it was raised, and finds the file
    ShowLogin       ///< this is the one copy
};

/// The arguments as the one text that they were before a shell cut them and took their quotes: a single
/// argument that names an existing file gets its double quotes back, everything else stands as given.
QString CommandLine(const QStringList &arguments);

/// True when another copy of the program is running. Otherwise this is the one until its process ends.
bool CheckPreviousInstance(Instance &instance);

/// Takes the command line, hands its file to a copy that runs already, or makes this the one copy and sets
/// the paths of the globals. Raises the system's error when the shared strings cannot be had.
Result Run(Ports &ports, const QString &commandLine);

} // namespace Startup
