#include "compose/forms/SourceFileView.h"

#include "compose/SourceFiles.h"
#include "core/FaxImage.h"
#include "core/Utilities.h"

#include <QClipboard>
#include <QDropEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMimeData>
#include <QMimeDatabase>
#include <QPainter>
#include <QSignalBlocker>
#include <QUrl>

namespace {

enum Column { colName, colKind, colPages };

QStringList LocalFiles(const QMimeData &data)
{
    QStringList paths;
    for (const QUrl &url : data.urls()) {
        if (url.isLocalFile() && FileExists(url.toLocalFile()))
            paths.append(url.toLocalFile());
    }
    return paths;
}

QString KindOf(const QString &entry)
{
    if (entry.startsWith('*'))
        return SourceFileView::tr("Ready fax");
    return QMimeDatabase().mimeTypeForFile(entry, QMimeDatabase::MatchExtension).comment();
}

/// 0 when only a conversion can tell.
int PagesOf(const QString &entry)
{
    return FaxImage::GetPageCount(SourceFiles::PathOf(entry));
}

} // namespace

SourceFileView::SourceFileView(QWidget *parent)
    : QTreeWidget(parent)
{
    setColumnCount(3);
    setHeaderLabels({tr("File"), tr("Kind"), tr("Pages")});
    headerItem()->setTextAlignment(colPages, Qt::AlignRight);
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(colName, QHeaderView::Stretch);
    header()->setSectionResizeMode(colKind, QHeaderView::ResizeToContents);
    header()->setSectionResizeMode(colPages, QHeaderView::ResizeToContents);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setTextElideMode(Qt::ElideMiddle);
    setDragEnabled(true);
    setAcceptDrops(true);
    setDropIndicatorShown(true);
    setDragDropMode(QAbstractItemView::DragDrop);
    setDefaultDropAction(Qt::MoveAction);
}

void SourceFileView::ShowEntries(const QStringList &entries, const QList<int> &selected)
{
    const QSignalBlocker blocker(this);
    clear();
    lKnownPages = 0;
    for (const QString &entry : entries) {
        const QString path = SourceFiles::PathOf(entry);
        const int pages = PagesOf(entry);
        lKnownPages += pages;
        auto *item = new QTreeWidgetItem(
            this, {GetBareName(path), KindOf(entry), pages > 0 ? QString::number(pages) : QString()});
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled);
        item->setToolTip(colName, path.toHtmlEscaped());
        item->setTextAlignment(colPages, Qt::AlignRight | Qt::AlignVCenter);
    }
    for (const int row : selected)
        topLevelItem(row)->setSelected(true);
    if (!selected.isEmpty()) {
        setCurrentItem(topLevelItem(selected.last()), colName, QItemSelectionModel::NoUpdate);
        scrollToItem(topLevelItem(selected.last()));
    }
    viewport()->update();
}

QList<int> SourceFileView::SelectedRows() const
{
    QList<int> rows;
    for (int row = 0; row < topLevelItemCount(); ++row) {
        if (topLevelItem(row)->isSelected())
            rows.append(row);
    }
    return rows;
}

void SourceFileView::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->source() == this || !LocalFiles(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void SourceFileView::dragMoveEvent(QDragMoveEvent *event)
{
    QTreeWidget::dragMoveEvent(event); // scrolls, and shows the place
    event->acceptProposedAction();
}

int SourceFileView::TargetRow(const QPoint &place) const
{
    QTreeWidgetItem *item = itemAt(place);
    if (!item)
        return topLevelItemCount();
    const bool isLowerHalf = place.y() > visualItemRect(item).center().y();
    return indexOfTopLevelItem(item) + (isLowerHalf ? 1 : 0);
}

void SourceFileView::dropEvent(QDropEvent *event)
{
    if (event->source() == this) {
        // The rows are shown anew by whoever takes the signal: the view must not move them itself.
        event->setDropAction(Qt::CopyAction);
        event->accept();
        emit RowsMoved(SelectedRows(), TargetRow(event->position().toPoint()));
        return;
    }
    event->acceptProposedAction();
    emit FilesOffered(LocalFiles(*event->mimeData()));
}

void SourceFileView::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Paste))
        Paste();
    else
        QTreeWidget::keyPressEvent(event);
}

void SourceFileView::Paste()
{
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    if (!data)
        return;
    const QStringList paths = LocalFiles(*data);
    if (!paths.isEmpty())
        emit FilesOffered(paths);
    else if (data->hasImage())
        emit PictureOffered(qvariant_cast<QImage>(data->imageData()));
}

void SourceFileView::paintEvent(QPaintEvent *event)
{
    QTreeWidget::paintEvent(event);
    if (topLevelItemCount() > 0)
        return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect().adjusted(8, 8, -8, -8), Qt::AlignCenter | Qt::TextWordWrap,
                     tr("Add the files that make up the fax, or drop them here."));
}
