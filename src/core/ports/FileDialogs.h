#pragma once

#include <QString>
#include <QStringList>

/// What a file dialog offers.
struct FileDialogSetup
{
    QString strFilter;           ///< "Name|*.ext;*.other|Name|*.*"; the first one is on at the start
    QString strFolder;           ///< where it starts; empty for the folder that was used last
    QString strDefaultExtension; ///< without a dot, for a name that is typed without one
    QString strTitle;            ///< empty for the desktop's own
};

/// Modal choices of files. Paths are absolute, with "/"; an empty result means that the user has cancelled.
class FileDialogs
{
public:
    virtual ~FileDialogs() = default;

    /// A file that exists.
    virtual QString ChooseFile(const FileDialogSetup &setup) = 0;
    /// One or more files that exist.
    virtual QStringList ChooseFiles(const FileDialogSetup &setup) = 0;
    /// A file to write. It may exist: whether it is replaced is asked by the caller.
    virtual QString ChooseTarget(const FileDialogSetup &setup) = 0;
};
