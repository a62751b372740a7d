#include "core/Utilities.h"
#include "core/ports/Folders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int commonAppDataCode = 35;
constexpr int userAppDataCode = 26;

/// Longest compacted path: the buffer of 255 characters holds a NUL as well.
constexpr int compactPathLimit = 254;

bool IsSeparator(QChar character)
{
    return character == '/' || character == '\\';
}

qsizetype LastSeparator(const QString &path)
{
    return std::max(path.lastIndexOf('/'), path.lastIndexOf('\\'));
}

QString WithoutTrailingSeparators(QString path)
{
    while (!path.isEmpty() && IsSeparator(path.back()))
        path.chop(1);
    return path;
}

/// The text cut at its end to `width` characters, dots for what is missing.
QString CutAtEnd(const QString &text, qsizetype width)
{
    const QString dots = QStringLiteral("...");
    if (text.size() <= width)
        return text;
    return width <= dots.size() ? dots.left(width) : text.left(width - dots.size()) + dots;
}

} // namespace

QString AppPath(const Folders &folders)
{
    return WithoutTrailingSeparators(folders.Program()) + '/';
}

bool CreateFolder(const QString &path)
{
    return !path.isEmpty() && QDir().mkpath(path);
}

bool CreatePrivateFolder(const QString &path)
{
    const QString folder = WithoutTrailingSeparators(path);
    if (FolderExists(folder))
        return true;
    const auto rights = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    return CreateFolder(GetFolderOfPath(folder)) && QDir().mkdir(folder, rights);
}

bool FileExists(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() && !info.isDir();
}

bool FolderExists(const QString &path)
{
    return !path.isEmpty() && QFileInfo(path).isDir();
}

bool FlushToDisk(const QString &path)
{
    // No QFile: it opens no folders.
    const int descriptor = open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool isFlushed = fsync(descriptor) == 0 || errno == EINVAL;
    close(descriptor);
    return isFlushed;
}

bool DeleteFolder(const QString &path)
{
    const QString folder = WithoutTrailingSeparators(path);
    if (!FolderExists(folder))
        return true;
    // A link goes by itself: what it points to is not the caller's.
    const bool deleted =
        QFileInfo(folder).isSymLink() ? QFile::remove(folder) : QDir(folder).removeRecursively();
    return !deleted;
}

bool IsFolderReadOnly(const QString &path, Ids &ids, Message &message)
{
    const QString id = NewFaxID(ids, message);
    if (id.isEmpty() || !FolderExists(path))
        return true;
    const QDir folder(path);
    if (!folder.mkdir(id))
        return true;
    folder.rmdir(id);
    return false;
}

QString GetFolderOfPath(const QString &path)
{
    return path.left(LastSeparator(path) + 1);
}

QString GetBareName(const QString &path)
{
    return path.mid(LastSeparator(path) + 1);
}

QString GetSpecialFolder(const Folders &folders, int code, long /*owner*/)
{
    QString path;
    if (code == commonAppDataCode)
        path = TrimNull(folders.CommonAppData());
    else if (code == userAppDataCode)
        path = TrimNull(folders.UserAppData());
    if (path.isEmpty())
        return {};
    path += '/';
    return path.replace(QStringLiteral("//"), QStringLiteral("/"));
}

QString CompactPath(const QString &path, int width)
{
    const int limit = std::clamp(width, 0, compactPathLimit);
    if (path.size() <= limit)
        return path;
    const qsizetype separator = LastSeparator(path);
    if (separator < 0)
        return CutAtEnd(path, limit);
    const QString tail = QStringLiteral("...") + path.mid(separator);
    if (tail.size() <= limit)
        return path.left(limit - tail.size()) + tail;
    return CutAtEnd(tail, limit);
}
