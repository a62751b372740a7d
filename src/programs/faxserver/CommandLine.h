#pragma once

#include "FaxServer.h"

#include <QString>
#include <QStringList>

/// What the command line asks for.
struct CommandLine
{
    enum Task { taskServe, taskDeliver, taskAddUser };

    /// Prints the help and ends the program where that is asked for. Raises `ServerError` for what makes
    /// no sense.
    static CommandLine Read(const QStringList &arguments);

    Task task = taskServe;
    ServerSettings settings;
    QString strDataFolder;
    bool bSeedDemo = false;
    QString strLogin;    ///< of the account to add, or of those to deliver to, with "," between
    QString strPassword; ///< of the account to add
    bool bLock = false;
    QStringList aFiles; ///< to deliver
    int lCopies = 1;
};
