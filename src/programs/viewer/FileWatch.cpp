#include "FileWatch.h"

#include <QFileInfo>

namespace {
constexpr int lSettled = 250; // ms
} // namespace

FileWatch::FileWatch()
{
    tmrSettled.setSingleShot(true);
    tmrSettled.setInterval(lSettled);
    connect(&tmrSettled, &QTimer::timeout, this, &FileWatch::Look);
    connect(&watcher, &QFileSystemWatcher::fileChanged, this, [this] {
        bTold = true;
        tmrSettled.start();
    });
    connect(&watcher, &QFileSystemWatcher::directoryChanged, this, [this] {
        if (ReadState() != known) // else it was a neighbour
            tmrSettled.start();
    });
}

void FileWatch::Watch(const QString &path)
{
    if (!watcher.files().isEmpty())
        watcher.removePaths(watcher.files());
    if (!watcher.directories().isEmpty())
        watcher.removePaths(watcher.directories());
    tmrSettled.stop();
    strPath = path;
    bTold = false;
    known = ReadState();
    if (!path.isEmpty()) {
        watcher.addPath(QFileInfo(path).absolutePath());
        WatchAgain();
    }
}

/// A file that was replaced is no longer the one that is watched.
void FileWatch::WatchAgain()
{
    if (known.bExists && !watcher.files().contains(strPath))
        watcher.addPath(strPath);
}

FileWatch::State FileWatch::ReadState() const
{
    const QFileInfo file(strPath);
    return file.exists() ? State{true, file.size(), file.lastModified()} : State();
}

void FileWatch::Look()
{
    const State now = ReadState();
    const bool isOther = now != known || (bTold && now.bExists);
    known = now;
    bTold = false;
    WatchAgain();
    if (isOther && now.bExists)
        emit Changed();
    else if (isOther)
        emit Vanished();
}
