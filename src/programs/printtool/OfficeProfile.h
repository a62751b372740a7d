#pragma once

#include <QString>

/// Writes the settings of a new user profile of the office program: nothing of a document is run, nothing
/// that it points to outside of itself is read, and nothing is kept for a later start. `program` is the
/// office program's file. False when that failed.
bool WriteOfficeProfile(const QString &folder, const QString &program);
