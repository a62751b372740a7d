#include "compose/RenderedFile.h"

#include "core/Utilities.h"

#include <QFile>

#include <filesystem>

RenderedFile::RenderedFile(const QString &path, const QString &newPath)
{
    if (path.isEmpty() || !FileExists(path))
        return;
    if (path == newPath) {
        strPath = path;
        return;
    }
    const std::filesystem::path from(QFile::encodeName(path).constData());
    const std::filesystem::path to(QFile::encodeName(newPath).constData());
    std::error_code error;
    std::filesystem::create_hard_link(from, to, error);
    if (!error)
        strOldPath = path;
    else // the name is taken, or the file system has no second names
        std::filesystem::rename(from, to, error);
    if (!error)
        strPath = newPath;
}

RenderedFile::~RenderedFile()
{
    if (!strOldPath.isEmpty())
        QFile::remove(strPath);
}

void RenderedFile::Keep()
{
    if (!strOldPath.isEmpty())
        QFile::remove(strOldPath);
    strOldPath.clear();
}
