#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// A file in a ZIP archive, as the archive's directory tells of it.
struct ZipEntry
{
    QByteArray abName;
    bool bStored = false; ///< as it is, not compressed
    qint64 lOffset = 0;   ///< of its header in the archive
};

/// The files of a ZIP archive, a few thousand at most; empty when its directory is missing or damaged.
QList<ZipEntry> ListZip(const QString &path);

/// The first bytes of a stored entry, `size` at most.
QByteArray ReadStored(const QString &path, const ZipEntry &entry, qint64 size);
