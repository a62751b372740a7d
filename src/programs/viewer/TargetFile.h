#pragma once

#include <QCoreApplication>
#include <QFile>
#include <QString>

/// A file on its way: it is written under another name in the folder where it shall stand, so that a failure
/// leaves neither half a file nor a stray one, and what stood there before stays.
class TargetFile final
{
    Q_DECLARE_TR_FUNCTIONS(TargetFile)

public:
    /// Raises `SaveError` when nothing can be written there.
    explicit TargetFile(const QString &path);
    ~TargetFile();
    TargetFile(const TargetFile &) = delete;
    TargetFile &operator=(const TargetFile &) = delete;

    /// Open for reading and writing. A write that failed is remembered.
    QFile &File() { return file; }
    bool HasFailed() const { return file.bFailed; }
    /// Raises `SaveError` with what went wrong in writing.
    [[noreturn]] void RaiseFailure() const;

    /// Writes all through to the disk; then the file can be read back. Raises `SaveError`.
    void Finish();
    /// Gives the finished file its name; one that stood there is replaced. Raises `SaveError`.
    void Commit();

private:
    struct PartFile final : QFile
    {
        using QFile::QFile;
        qint64 writeData(const char *data, qint64 size) override;

        bool bFailed = false;
        QString strReason;
    };

    [[noreturn]] void Raise(const QString &reason) const;

    QString strPath;
    PartFile file;
};
