#include "compose/forms/SourceFileView.h"

#include "compose/SourceFiles.h"
#include "core/FaxImage.h"
#include "core/Utilities.h"
#include "mailbox/ShownText.h"

#include <QClipboard>
#include <QDropEvent>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMimeData>
#include <QMimeDatabase>
#include <QPainter>
#include <QSignalBlocker>
#include <QUrl>

#include <algorithm>

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

bool IsPicture(const QString &path)
{
    static constexpr QByteArrayView signatures[] = {"\xff\xd8\xff", "\x89PNG\r\n\x1a\n", "GIF8", "BM",
                                                    "8BPS"};
    QFile file(path);
    const QByteArray head = file.open(QIODevice::ReadOnly) ? file.read(8) : QByteArray();
    return std::any_of(std::begin(signatures), std::end(signatures),
                       [&head](QByteArrayView signature) { return head.startsWith(signature); });
}

/// 0 when only a conversion can tell.
int CountPages(const QFileInfo &file)
{
    if (!file.isFile()) // a pipe would keep its reader waiting
        return 0;
    const int pages = FaxImage::GetPageCount(file.filePath());
    return pages == 0 && IsPicture(file.filePath()) ? 1 : pages;
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
    lPages = 0;
    bool isKnown = true;
    for (const QString &entry : entries) {
        const QString path = SourceFiles::PathOf(entry);
        const int pages = PagesOf(path);
        lPages += pages;
        isKnown = isKnown && pages > 0;
        auto *item = new QTreeWidgetItem(this, {ToListText(GetBareName(path)), KindOf(entry),
                                                pages > 0 ? QString::number(pages) : QString()});
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled);
        item->setToolTip(colName, "<qt>" + ToListText(path).toHtmlEscaped() + "</qt>");
        item->setTextAlignment(colPages, Qt::AlignRight | Qt::AlignVCenter);
    }
    if (!isKnown)
        lPages = 0;
    for (const int row : selected)
        topLevelItem(row)->setSelected(true);
    if (!selected.isEmpty()) {
        setCurrentItem(topLevelItem(selected.last()), colName, QItemSelectionModel::NoUpdate);
        scrollToItem(topLevelItem(selected.last()));
    }
    viewport()->update();
}

/// Each file is looked into once, and again when it has changed.
int SourceFileView::PagesOf(const QString &path)
{
    const QFileInfo file(path);
    KnownFile &known = knownFiles[path];
    const QDateTime changed = file.lastModified();
    if (known.lPages < 0 || known.changed != changed)
        known = {changed, CountPages(file)};
    return known.lPages;
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
    if (const QStringList paths = LocalFiles(*event->mimeData()); !paths.isEmpty())
        emit FilesOffered(paths);
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
