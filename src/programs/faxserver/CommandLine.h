#pragma once

#include "AddressBook.h"
#include "FaxServer.h"

#include <QString>
#include <QStringList>

/// What the command line asks for.
struct CommandLine
{
    enum Task { taskServe, taskDeliver, taskAddUser, taskPublish };

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
    QString strFullName;                             ///< of the account to add; empty keeps what it has
    QString strDepartment;                           ///< the same
    AddressBook::List list = AddressBook::lstGroups; ///< to publish from the first of the files
    QStringList aFiles;                              ///< to deliver or to publish
    int lCopies = 1;
};
