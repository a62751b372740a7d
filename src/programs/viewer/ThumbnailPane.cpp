#include "ThumbnailPane.h"

#include <QAbstractListModel>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyle>
#include <QStyledItemDelegate>

#include <algorithm>
#include <memory>

namespace {

constexpr int lMargin = 8;
constexpr int lFrame = 4;                 ///< around the marked page
constexpr int lNarrowest = 48;            ///< of a picture
constexpr double dPaperShape = 1.4142;    ///< height to width of A4
constexpr int lMostKilobytes = 48 * 1024; ///< of all pictures

/// The pages of a document as rows.
class PageRows final : public QAbstractListModel
{
public:
    PageRows(const FaxDocument &faxDocument, QObject *parent)
        : QAbstractListModel(parent)
        , document(faxDocument)
    {
    }

    int rowCount(const QModelIndex &parent) const override { return parent.isValid() ? 0 : lPages; }

    QVariant data(const QModelIndex &index, int role) const override
    {
        if (role == Qt::DisplayRole)
            return QString::number(index.row() + 1);
        if (role == Qt::AccessibleTextRole || role == Qt::ToolTipRole)
            return ThumbnailPane::tr("Page %1").arg(index.row() + 1);
        return {};
    }

    void Reset()
    {
        beginResetModel();
        lPages = document.PageCount();
        endResetModel();
    }

private:
    const FaxDocument &document;
    int lPages = 0;
};

} // namespace

/// Draws a page's picture, with its number below.
class ThumbnailDelegate final : public QStyledItemDelegate
{
public:
    explicit ThumbnailDelegate(const ThumbnailPane &thumbnails)
        : pane(thumbnails)
    {
    }

    QSize sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const override
    {
        return pane.CellSize();
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const bool isMarked = option.state.testFlag(QStyle::State_Selected);
        PaintPicture(*painter, option, index.row(), isMarked);
        QFont font = option.font;
        font.setBold(isMarked);
        painter->setFont(font);
        painter->setPen(option.palette.color(QPalette::Text));
        painter->drawText(option.rect.adjusted(0, 0, 0, -lMargin / 2), Qt::AlignHCenter | Qt::AlignBottom,
                          index.data().toString());
    }

private:
    void PaintPicture(QPainter &painter, const QStyleOptionViewItem &option, int page, bool isMarked) const
    {
        const double ratio = painter.device()->devicePixelRatioF();
        const QSize size = (QSizeF(pane.Wanted(page).size) / ratio).toSize();
        const QRect room(option.rect.topLeft() + QPoint(lMargin, lMargin),
                         QSize(option.rect.width() - 2 * lMargin, pane.PictureRoom().height()));
        const QRect place = QStyle::alignedRect(Qt::LeftToRight, Qt::AlignCenter, size, room);
        const bool hasKeyboard = option.widget->hasFocus();
        if (isMarked)
            painter.fillRect(place.adjusted(-lFrame, -lFrame, lFrame, lFrame),
                             option.palette.color(hasKeyboard ? QPalette::Active : QPalette::Inactive,
                                                  QPalette::Highlight));
        painter.fillRect(place, Qt::white);
        const auto *thumbnail = pane.Find(page);
        if (thumbnail && thumbnail->part == pane.Wanted(page))
            painter.drawImage(place.topLeft(), thumbnail->picture);
        else if (thumbnail)
            painter.drawImage(place, thumbnail->picture); // until the new one comes
        else if (pane.IsUnreadable(page))
            PaintCross(painter, place);
        painter.setPen(option.palette.color(QPalette::Dark));
        painter.drawRect(place.adjusted(-1, -1, 0, 0));
    }

    static void PaintCross(QPainter &painter, const QRect &place)
    {
        painter.setPen(Qt::lightGray);
        painter.drawLine(place.topLeft(), place.bottomRight());
        painter.drawLine(place.topRight(), place.bottomLeft());
    }

    const ThumbnailPane &pane;
};

ThumbnailPane::ThumbnailPane(FaxDocument &faxDocument, PageRenderer &pageRenderer, QWidget *parent)
    : QListView(parent)
    , document(faxDocument)
    , renderer(pageRenderer)
    , pictures(lMostKilobytes)
{
    setAccessibleName(tr("Small pages"));
    setUniformItemSizes(true);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // else it could come and go as the cells grow
    auto *delegate = new ThumbnailDelegate(*this);
    delegate->setParent(this);
    setItemDelegate(delegate);
    setModel(new PageRows(document, this));
    connect(&document, &FaxDocument::Opened, this, &ThumbnailPane::ShowDocument);
    connect(&document, &FaxDocument::Reopened, this, &ThumbnailPane::ShowDocument);
    connect(&document, &FaxDocument::Turned, viewport(), QOverload<>::of(&QWidget::update));
    connect(&renderer, &PageRenderer::Rendered, this, &ThumbnailPane::TakePicture);
}

QSize ThumbnailPane::sizeHint() const
{
    constexpr int usualWidth = 150;
    return {usualWidth, usualWidth};
}

void ThumbnailPane::ShowDocument()
{
    pictures.clear();
    unreadable.clear();
    const int page = currentIndex().row();
    const QScopedValueRollback<bool> marking(bMarking, true);
    static_cast<PageRows *>(model())->Reset();
    SetCurrentPage(page);
}

void ThumbnailPane::SetCurrentPage(int page)
{
    const QScopedValueRollback<bool> marking(bMarking, true);
    const QModelIndex index = model()->index(page, 0);
    setCurrentIndex(index);
    scrollTo(index);
}

void ThumbnailPane::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QListView::currentChanged(current, previous);
    if (!bMarking && current.isValid())
        emit PageChosen(current.row());
}

// Sizes

QSize ThumbnailPane::PictureRoom() const
{
    const int width = std::max(lNarrowest, viewport()->width() - 2 * lMargin);
    return {width, static_cast<int>(width * dPaperShape)};
}

QSize ThumbnailPane::CellSize() const
{
    return {viewport()->width(), PictureRoom().height() + 2 * lMargin + fontMetrics().height()};
}

PagePart ThumbnailPane::Wanted(int page) const
{
    const QSizeF room = QSizeF(PictureRoom()) * devicePixelRatioF();
    const QSize size = document.PageSize(page).scaled(room, Qt::KeepAspectRatio).toSize().expandedTo({1, 1});
    return {page, document.Rotation(page), size, QRect(QPoint(), size)};
}

void ThumbnailPane::resizeEvent(QResizeEvent *event)
{
    QListView::resizeEvent(event);
    scheduleDelayedItemsLayout();
}

/// The cells may have another height, and the marked one is elsewhere.
void ThumbnailPane::doItemsLayout()
{
    QListView::doItemsLayout();
    scrollTo(currentIndex());
}

// Pictures

QList<int> ThumbnailPane::VisiblePages() const
{
    QList<int> pages;
    const int height = CellSize().height();
    const int first = verticalScrollBar()->value() / height;
    const int last = (verticalScrollBar()->value() + viewport()->height()) / height;
    for (int page = first; page <= std::min(last, document.PageCount() - 1); ++page)
        pages.append(page);
    return pages;
}

void ThumbnailPane::paintEvent(QPaintEvent *event)
{
    QListView::paintEvent(event);
    AskForPictures();
}

void ThumbnailPane::AskForPictures()
{
    QList<PagePart> missing;
    for (const int page : VisiblePages()) {
        const Thumbnail *thumbnail = Find(page);
        if (!IsUnreadable(page) && (!thumbnail || thumbnail->part != Wanted(page)))
            missing.append(Wanted(page));
    }
    renderer.Want(PageRenderer::Thumbnail, missing);
}

void ThumbnailPane::TakePicture(const PagePart &part, const QImage &picture)
{
    if (part.lPage >= document.PageCount() || part != Wanted(part.lPage))
        return;
    auto thumbnail = std::make_unique<Thumbnail>(Thumbnail{part, picture});
    thumbnail->picture.setDevicePixelRatio(devicePixelRatioF());
    if (picture.isNull())
        unreadable.insert(part.lPage);
    else
        pictures.insert(part.lPage, thumbnail.release(),
                        std::max(1, static_cast<int>(picture.sizeInBytes() / 1024)));
    update(model()->index(part.lPage, 0));
}
