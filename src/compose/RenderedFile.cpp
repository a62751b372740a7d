#include "compose/RenderedFile.h"

#include "core/Utilities.h"

#include <QFile>

#include <filesystem>

namespace {

std::filesystem::path Native(const QString &path)
{
    return QFile::encodeName(path).constData();
}

bool Link(const QString &path, const QString &newPath)
{
    std::error_code error;
    std::filesystem::create_hard_link(Native(path), Native(newPath), error);
    return !error;
}

/// What bears the new name is replaced in one step.
bool Rename(const QString &path, const QString &newPath)
{
    std::error_code error;
    std::filesystem::rename(Native(path), Native(newPath), error);
    return !error;
}

} // namespace

RenderedFile::RenderedFile(const QString &path, const QString &newPath)
{
    if (path.isEmpty() || !FileExists(path))
        return;
    strPath = newPath;
    if (path == newPath)
        return;
    strOldPath = path;
    bHasBothNames = Link(path, newPath);
    if (!bHasBothNames) // the name is taken, or the file system has no second names
        Replace();
}

void RenderedFile::Replace()
{
    const QString aside = GetFolderOfPath(strPath) + "tmp~old " + GetBareName(strPath); // swept if it stays
    QFile::remove(aside);
    if (Link(strPath, aside))
        strReplaced = aside;
    if (Rename(strOldPath, strPath))
        return;
    DropReplaced();
    strOldPath.clear();
    strPath.clear();
}

void RenderedFile::DropReplaced()
{
    if (!strReplaced.isEmpty())
        QFile::remove(strReplaced);
    strReplaced.clear();
}

RenderedFile::~RenderedFile()
{
    if (strOldPath.isEmpty())
        return;
    if (bHasBothNames)
        QFile::remove(strPath);
    else
        Rename(strPath, strOldPath);
    if (!strReplaced.isEmpty())
        Rename(strReplaced, strPath);
}

void RenderedFile::Keep()
{
    if (bHasBothNames)
        QFile::remove(strOldPath);
    DropReplaced();
    strOldPath.clear();
}
