#pragma once

#include <QString>
#include <QStringList>

/// The keys of the folders whose branches the user has opened in the tree.
QStringList ReadOpenFolders(const QString &section, const QString &file);

/// False when the file could not be written.
bool WriteOpenFolders(const QStringList &keys, const QString &section, const QString &file);
