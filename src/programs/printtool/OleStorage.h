#pragma once

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QString>

/// The directory of an OLE 2 compound file ([MS-CFB]), in which the older office formats are kept.
class OleStorage final
{
public:
    /// What begins such a file.
    static constexpr QByteArrayView Signature{"\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1", 8};

    explicit OleStorage(const QString &path);

    /// False when the file's end or part of its directory is missing.
    bool IsWhole() const { return bWhole; }
    /// True for a stream or folder of that name at any depth.
    bool Has(QStringView name) const;
    /// The first bytes of the stream, 64 at least when it has as many; empty when there is none.
    QByteArray Begin(QStringView name);

private:
    struct Entry
    {
        QString strName;
        quint32 lStart = 0; ///< its first sector
        quint32 lSize = 0;  ///< bytes
    };

    bool ReadHeader();
    QList<quint32> ListTables();
    bool ReadChains();
    bool ReadEntries();
    QByteArray Sector(quint32 number);
    QByteArray BeginSmall(const Entry &entry);

    QFile file;
    QByteArray abHeader;
    qint64 lSectorSize = 0;
    QList<quint32> aNext; ///< behind each sector its follower
    QList<Entry> aEntries;
    bool bWhole = false;
};
