#pragma once

#include "FaxDocument.h"
#include "PageRenderer.h"

#include <QCache>
#include <QListView>
#include <QSet>

/// The pages of the fax as small pictures below each other, the current one marked. Pictures are made when
/// they come into sight, and the oldest are forgotten.
class ThumbnailPane final : public QListView
{
    Q_OBJECT

public:
    /// Both live longer than the pane.
    ThumbnailPane(FaxDocument &document, PageRenderer &renderer, QWidget *parent = nullptr);

    /// Marks a page; -1 for none.
    void SetCurrentPage(int page);

    QSize sizeHint() const override;

signals:
    /// The user wants to see that page.
    void PageChosen(int page);

protected:
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void doItemsLayout() override;

private:
    friend class ThumbnailDelegate;

    struct Thumbnail
    {
        PagePart part;
        QImage picture;
    };

    QSize CellSize() const;
    QSize PictureRoom() const;
    /// The picture that the page should have now.
    PagePart Wanted(int page) const;
    /// The one that it has, perhaps of another size or turn; null without one.
    const Thumbnail *Find(int page) const { return pictures.object(page); }
    bool IsUnreadable(int page) const { return unreadable.contains(page); }
    QList<int> VisiblePages() const;
    void ShowDocument();
    void Forget();
    void AskForPictures();
    void TakePicture(const PagePart &part, const QImage &picture);

    FaxDocument &document;
    PageRenderer &renderer;
    QCache<int, Thumbnail> pictures;
    QSet<int> unreadable;
    bool bMarking = false;
};
