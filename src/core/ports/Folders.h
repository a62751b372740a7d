#pragma once

#include <QString>

/// The folders that the system gives to a program. No path ends in a slash; empty when there is none.
class Folders
{
public:
    virtual ~Folders() = default;

    /// Data of this program for the whole machine account: `$VELMAR_DATA_HOME`, or else the XDG data home.
    virtual QString CommonAppData() const = 0;

    /// Settings of this user: the XDG config home.
    virtual QString UserAppData() const = 0;

    /// Where the running program's file stands.
    virtual QString Program() const = 0;
};
