#include "platform/RuntimeFolder.h"

#include <QDir>
#include <QFile>

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

namespace {
/// A folder of this user that nobody else may enter: what lies in it can be trusted.
bool IsPrivate(const QString &path)
{
    struct stat status = {};
    return lstat(QFile::encodeName(path).constData(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == geteuid() && (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}
} // namespace

QString RuntimeFolder(int &errorCode)
{
    // A program that another service starts for the user may lack the variable; it has to find the same
    // folder.
    const QString candidates[] = {qEnvironmentVariable("XDG_RUNTIME_DIR"),
                                  QStringLiteral("/run/user/%1").arg(geteuid())};
    for (const QString &candidate : candidates) {
        if (QDir::isAbsolutePath(candidate) && IsPrivate(candidate))
            return QDir::cleanPath(candidate);
    }
    // Shared memory is never swept for old files, and has no variable that moves it.
    const QString own = QStringLiteral("/dev/shm/velmar-%1").arg(geteuid());
    errorCode = mkdir(QFile::encodeName(own).constData(), S_IRWXU) == 0 ? 0 : errno;
    if (IsPrivate(own))
        return own;
    errorCode = errorCode == 0 || errorCode == EEXIST ? EACCES : errorCode;
    return {};
}
