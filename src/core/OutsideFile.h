#pragma once

#include "core/CSharedString.h"

class Instance;
class SharedBlocks;

/// The main window's end of the hand-over: tells later copies how to raise the window, and takes the fax file
/// that one of them leaves. Lives as long as the main window.
class OutsideFile
{
public:
    static constexpr QLatin1StringView processHandleName{"strProcessHandle"};
    static constexpr QLatin1StringView outsideFileName{"strOutsideFileName"};

    /// Publishes the window's number. Raises the system's error when the shared strings cannot be had.
    OutsideFile(SharedBlocks &blocks, Instance &instance);

    /// The full path that another copy has left; empty when there is none. With `openForms` other than 1, the
    /// main window alone, the path waits where it is; a later one overwrites it.
    QString Take(int openForms);

private:
    CSharedString processHandle;
    CSharedString outsideFile;
};
