#pragma once

#include <QString>

/// Gives the rendered fax the name under which its row knows it, so that at every moment the row names a
/// complete file: the file has both names until the row is written. Without `Keep` all is put back.
class RenderedFile final
{
public:
    /// Full paths; an empty or missing file is none. What bears the new name already, an older rendering of
    /// the same fax, is replaced.
    RenderedFile(const QString &path, const QString &newPath);
    ~RenderedFile();
    RenderedFile(const RenderedFile &) = delete;
    RenderedFile &operator=(const RenderedFile &) = delete;

    /// The file under its new name; empty when there is none.
    const QString &Path() const { return strPath; }
    /// The row is written: the old name goes, and what was replaced.
    void Keep();

private:
    void Replace();
    void DropReplaced();

    QString strOldPath; ///< until the row is written
    QString strPath;
    QString strReplaced; ///< second name of the older rendering
    bool bHasBothNames = false;
};
