#pragma once

#include <QString>

/// The folder of this user's running programs, private to the user, without a slash at its end: the XDG
/// runtime folder, or one in shared memory that carries the user's number. Empty when neither can
/// be had; then `errorCode` holds the system's code.
QString RuntimeFolder(int &errorCode);
