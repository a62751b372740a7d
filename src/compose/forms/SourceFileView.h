#pragma once

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
    /// Pages of all files whose number is known.
    int KnownPages() const { return lKnownPages; }

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
    void Paste();
    int TargetRow(const QPoint &place) const;

    int lKnownPages = 0;
};
