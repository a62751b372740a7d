#pragma once

#include <QDateTime>
#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

/// Tells when a file is written again, replaced, or gone. Waits until a writer seems to have done.
class FileWatch final : public QObject
{
    Q_OBJECT

public:
    FileWatch();

    /// Watches this file, as it is now, and no other; none for an empty path.
    void Watch(const QString &path);
    /// Looks at once: some file systems do not tell of changes.
    void Look();

signals:
    void Changed();
    void Vanished();

private:
    struct State
    {
        bool bExists = false;
        qint64 lSize = 0;
        QDateTime written;

        bool operator==(const State &) const = default;
    };

    State ReadState() const;
    void WatchAgain();

    QFileSystemWatcher watcher;
    QTimer tmrSettled;
    QString strPath;
    State known;
    bool bTold = false; ///< the system has told of a change of the file itself
};
