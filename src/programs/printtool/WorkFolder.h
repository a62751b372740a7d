#pragma once

#include "platform/FileDescriptor.h"

#include <QString>

/// A folder for the files of one conversion that nobody else may enter. It goes with this object; what a
/// killed run left behind goes when the next one is made.
class WorkFolder final
{
public:
    /// Raises `ConversionError` when the system's temporary folder takes none.
    WorkFolder();
    WorkFolder(const WorkFolder &) = delete;
    WorkFolder &operator=(const WorkFolder &) = delete;
    ~WorkFolder();

    /// Full path, without a slash at its end.
    const QString &Path() const { return strPath; }

    /// True when hardly anything can be written into that folder any more.
    static bool IsFull(const QString &path);

private:
    bool Make(const QString &parent);

    QString strPath;
    FileDescriptor lock; ///< held on the folder itself: its owner lives
};
