#pragma once

#include <QString>

class Clock;
class Message;

/// The client database: its statements, the test of an opened file and its upgrades. All work on
/// `Global().objDB`, trap the database layer's errors and return false.

/// Creates a new connection in `objDB`, opens the file and looks for one of its tables. An empty path means
/// the file in `programFolder`. A missing file is not made.
bool OpenClientDatabase(const QString &path, const QString &programFolder = {});
/// Makes a new file with all tables and default rows.
bool CreateClientDatabase(const QString &path);
bool GetDatabaseVersion(QString &version);
bool CheckDatabaseV10();
bool CheckDatabaseV25();
bool CheckDatabaseV28();
/// Backs the file up beside itself and brings it to version 2.8.
bool UpgradeDatabase(const QString &fromVersion, Message &message, const Clock &clock);
/// The whole decision about an opened file, with its questions and messages.
bool CheckDatabaseVersion(Message &message, const Clock &clock);
