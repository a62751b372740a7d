#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

/// Links that stand for files whose paths the print request cannot carry, since they hold one of its
/// separators or are too long. They live as long as the object.
class SafeNames final
{
public:
    /// The entries of a file list, with links where they are needed. Raises an error when one cannot be made.
    QStringList Replace(const QStringList &entries);

private:
    QString LinkTo(const QString &path);

    std::unique_ptr<QTemporaryDir> folder;
    int lLinks = 0;
};
