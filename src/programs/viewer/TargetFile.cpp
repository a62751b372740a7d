#include "TargetFile.h"

#include "SaveError.h"

#include <QDir>
#include <QFileInfo>
#include <QUuid>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <unistd.h>

namespace {

/// Where the name leads: a link stays one, and what it leads to is replaced.
QString RealPath(const QString &path)
{
    const QFileInfo file(path);
    return file.isSymLink() ? file.symLinkTarget() : file.absoluteFilePath();
}

QString PartPath(const QString &path)
{
    return QStringLiteral("%1/.%2.part")
        .arg(QFileInfo(path).path(), QUuid::createUuid().toString(QUuid::WithoutBraces));
}

QString ReasonOf(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

} // namespace

TargetFile::TargetFile(const QString &path)
    : strPath(RealPath(path))
    , file(PartPath(strPath))
{
    const QFileInfo old(strPath);
    if (old.exists() && !old.isFile())
        Raise(ReasonOf(old.isDir() ? EISDIR : EEXIST));
    if (old.exists() && !old.isWritable())
        Raise(ReasonOf(EACCES));
    if (!file.open(QIODevice::ReadWrite | QIODevice::NewOnly))
        Raise(file.errorString());
}

TargetFile::~TargetFile()
{
    if (file.isOpen())
        file.remove();
}

void TargetFile::RaiseFailure() const
{
    Raise(HasFailed() ? file.strReason : tr("its pages do not fit into a file of this kind"));
}

void TargetFile::Finish()
{
    if (HasFailed())
        RaiseFailure();
    if (!file.flush())
        Raise(file.errorString());
    if (::fsync(file.handle()) != 0)
        Raise(ReasonOf(errno));
}

void TargetFile::Commit()
{
    if (const QFileInfo old(strPath); old.exists())
        file.setPermissions(old.permissions());
    const QByteArray part = QFile::encodeName(file.fileName());
    if (std::rename(part.constData(), QFile::encodeName(strPath).constData()) != 0)
        Raise(ReasonOf(errno));
    file.close();
}

void TargetFile::Raise(const QString &reason) const
{
    throw SaveError{
        tr("The file \"%1\" cannot be written: %2.").arg(QDir::toNativeSeparators(strPath), reason)};
}

/// A disk that gets full takes a part first, and says why it takes no more when it is asked again.
qint64 TargetFile::PartFile::writeData(const char *data, qint64 size)
{
    qint64 done = 0;
    while (done < size && !bFailed) {
        const qint64 written = QFile::writeData(data + done, size - done);
        bFailed = written <= 0;
        done += std::max<qint64>(written, 0);
    }
    if (bFailed && strReason.isEmpty())
        strReason = errorString();
    return bFailed ? -1 : size;
}
