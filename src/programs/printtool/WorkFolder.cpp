#include "WorkFolder.h"

#include "ConversionError.h"
#include "OfficeProgram.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStorageInfo>

#include <cstdlib>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace {

constexpr QLatin1StringView namePrefix("velmar-print-");

/// -1 when the path is no folder of this user, or lives in other hands.
FileDescriptor Lock(const QString &path)
{
    FileDescriptor folder(
        open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status = {};
    if (!folder.IsOpen() || fstat(folder.Number(), &status) != 0 || status.st_uid != geteuid() ||
        flock(folder.Number(), LOCK_EX | LOCK_NB) != 0)
        return {};
    return folder;
}

/// False when the folder was swept away before it was locked.
bool StandsAt(const FileDescriptor &folder, const QString &path)
{
    struct stat opened = {}, named = {};
    return fstat(folder.Number(), &opened) == 0 && lstat(QFile::encodeName(path).constData(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

void Remove(const QString &path)
{
    OfficeProgram::RemoveSocket(path);
    QDir(path).removeRecursively();
}

void SweepLeftovers(const QDir &parent)
{
    const QStringList names =
        parent.entryList({namePrefix + QLatin1Char('*')}, QDir::Dirs | QDir::NoSymLinks);
    for (const QString &name : names) {
        const QString path = parent.filePath(name);
        const FileDescriptor folder = Lock(path);
        if (folder.IsOpen() && StandsAt(folder, path))
            Remove(path);
    }
}

} // namespace

WorkFolder::WorkFolder()
{
    constexpr int mostTries = 10;
    const QString parent = QDir::tempPath();
    SweepLeftovers(QDir(parent));
    for (int tries = 0; tries < mostTries; ++tries) {
        if (Make(parent))
            return;
    }
    throw ConversionError(
        QCoreApplication::translate("printtool", "The folder \"%1\" takes no temporary files.").arg(parent));
}

WorkFolder::~WorkFolder()
{
    Remove(strPath);
}

bool WorkFolder::IsFull(const QString &path)
{
    constexpr qint64 least = 4 * 1024 * 1024;
    const QStorageInfo disk(path);
    return disk.isValid() && disk.bytesAvailable() < least;
}

/// Another run may take the new folder for a left-over until it is locked.
bool WorkFolder::Make(const QString &parent)
{
    QByteArray name = QFile::encodeName(parent + QLatin1Char('/') + namePrefix + QStringLiteral("XXXXXX"));
    if (mkdtemp(name.data()) == nullptr)
        return false;
    strPath = QFile::decodeName(name);
    lock = Lock(strPath);
    return lock.IsOpen() && StandsAt(lock, strPath);
}
