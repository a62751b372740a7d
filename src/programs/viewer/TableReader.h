#pragma once

#include "core/FaxImage.h"

#include <QObject>
#include <QThreadPool>

/// Reads page tables beside the event loop: those of long faxes, or of files on slow disks, take their time.
class TableReader final : public QObject
{
    Q_OBJECT

public:
    TableReader();
    ~TableReader() override;

    /// The answer to an earlier call is not given any more.
    void Read(const QString &path);

signals:
    void TableRead(const QString &path, const FaxPages &pages);

private:
    QThreadPool pool;
    int lCalls = 0;
};
