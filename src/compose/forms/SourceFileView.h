#pragma once

#include <QDateTime>
#include <QHash>
#include <QImage>
#include <QList>
#include <QStringList>
#include <QTreeWidget>

/// The file list `lstFile` of a composer: name, kind and pages of each file. Entries are dragged to their
/// place; files are dropped on the list or pasted into it, pictures pasted.
class SourceFileView final : public QTreeWidget
{
    Q_OBJECT

public:
    explicit SourceFileView(QWidget *parent = nullptr);

    /// Shows the entries, a leading "*" for a ready fax, and selects some.
    void ShowEntries(const QStringList &entries, const QList<int> &selected);
    /// Rows, ascending.
    QList<int> SelectedRows() const;
    /// Pages of all files; 0 when those of one are not known.
    int Pages() const { return lPages; }

signals:
    void FilesOffered(const QStringList &paths);
    void PictureOffered(const QImage &picture);
    /// Rows that were dragged before another one; `target` is the number of rows for the end.
    void RowsMoved(const QList<int> &rows, int target);

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    struct KnownFile
    {
        QDateTime changed;
        int lPages = -1;
    };

    int PagesOf(const QString &path);
    void Paste();
    int TargetRow(const QPoint &place) const;

    QHash<QString, KnownFile> knownFiles;
    int lPages = 0;
};
