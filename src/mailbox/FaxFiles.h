#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

// Where the files of the faxes stand.

/// The path of a fax file in `folder`, which ends in a slash. `fileName` counts as a bare name, and its case
/// does not matter when no file bears it exactly. The file need not exist. Empty for an empty name.
QString FindFaxFile(const QString &folder, const QString &fileName);

/// The same for a fax of `SendFax` or `ReceiveFax`. Empty when it has no row or its row names no file. Raises
/// the errors of the database.
QString FindFileOfFax(const QString &id, bool isSent);

/// True when the fax has a row in its table and its file exists; then the full path and a "," are appended to
/// `fileList`, when there is one. Raises the errors of the database.
bool FaxFileExists(const QString &id, QString *fileList, bool isSent);

/// `FaxFileExists` for many faxes of one table at once: true when it holds for all. One pass over the table
/// and at most one over the folder.
bool DoFaxFilesExist(const QStringList &ids, bool isSent);

/// The paths of the faxes of one table that have a row and a file, by id. One pass over the table and at most
/// one over the folder. Raises the errors of the database.
QHash<QString, QString> FindFilesOfFaxes(const QStringList &ids, bool isSent);
