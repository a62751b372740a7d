#pragma once

#include <QStringList>

class WatchedRun;

/// What a user can ask for in a shell. The result is the program's exit code: 0 for a fax, or for the help, 1
/// for none, 2 for a command line that makes no sense.
int RunCommandLine(const QStringList &arguments, WatchedRun &run);
