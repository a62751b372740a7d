#pragma once

#include "platform/FileDescriptor.h"

#include <QByteArray>
#include <QString>

#include <sys/types.h>

/// Walls around a program that reads documents of unknown origin: it can reach no network, no file of the
/// user but its work folder and fonts, and does not outlive the thread that started it. Each wall stands as
/// far as the system allows; without them the program still works.
class Confinement final
{
public:
    /// Prepares the walls. `workFolder` is where the program may read and write, with a folder "tmp" inside
    /// that is shown to it as the system's temporary one; `program` is its file.
    Confinement(const QString &workFolder, const QString &program);

    /// Puts the calling process behind the walls, for what it becomes by `exec`. To be called between `fork`
    /// and that: calls nothing but the system.
    void Enter() const;

private:
    bool LeaveNamespaces() const;
    void HideTemporaryFiles() const;
    void AllowPath(const QString &path, quint64 rights);
    void AllowProgram(const QString &program);
    void AllowFonts();
    void AllowWork(const QString &workFolder);

    pid_t lParent;
    QByteArray abWorkFolder, abTemporary, abUserMap, abGroupMap;
    FileDescriptor rules; ///< of Landlock; none where the system has no such
    quint64 lRuled = 0;   ///< what the rules decide upon
};
