#pragma once

#include "FaxDocument.h"
#include "PageRenderer.h"
#include "PageStack.h"
#include "PageTiles.h"
#include "controls/SheetView.h"

#include <QTimer>

class QGestureEvent;
class QNativeGestureEvent;
class QTouchEvent;

/// All pages of a fax, below each other. Zoom 1 is their size on paper. What is visible, and a view further
/// on each side, is drawn beside the event loop; until a page is there, its paper is shown.
class PagesView final : public SheetView
{
    Q_OBJECT

public:
    enum class ZoomMode { Free, Width, Page };

    /// Both live longer than the view.
    PagesView(FaxDocument &document, PageRenderer &renderer, QWidget *parent = nullptr);

    /// What stands in the view of a document without pages.
    void SetNotice(const QString &notice);
    /// What stands in the place of a page that cannot be read.
    void SetPageNotice(const QString &notice);

    ZoomMode Mode() const { return mode; }
    /// Fits the pages whenever the size of the view changes, or ends that.
    void SetMode(ZoomMode newMode);
    double Zoom() const { return geometry.Zoom(); }
    /// Zooms around the middle of the view and ends the fitting.
    void SetZoom(double zoom);
    /// By round steps.
    void ZoomIn() override;
    void ZoomOut() override;

    /// Zero-based: the one that most of the view shows, or that was gone to last.
    int CurrentPage() const { return lCurrent; }
    /// Puts the top of the page to the top of the view, as far as the last page allows. The page is held
    /// within the fax.
    void GoToPage(int page);
    /// True when nothing of what the view shows is still being drawn.
    bool IsComplete() const { return bComplete; }

    QSize sizeHint() const override { return {800, 600}; }

signals:
    void CurrentPageChanged(int page);
    /// Zoom or mode.
    void ZoomChanged();

protected:
    bool HasSheet() const override { return stack.Count() > 0; }
    void Fit() override;
    void EndFit() override { mode = ZoomMode::Free; }
    void OnMoved() override;
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool viewportEvent(QEvent *event) override;

private:
    void ShowDocument();
    void ShowPagesAgain();
    void StackPages();
    double TopOf(int page) const;
    void SetCurrent(int page);
    int FindCurrent() const;
    void ScrollViews(int views);
    bool HandleGesture(QEvent *event);
    bool DragByFinger(const QTouchEvent &event);
    bool ZoomByPad(const QNativeGestureEvent &event);
    bool ZoomByFingers(const QGestureEvent &event);

    QList<PlacedPage> PlacePages(const QRect &area) const;
    QRect DeviceView() const;
    void PaintDesk(QPainter &painter, const QList<PlacedPage> &placed);
    void PaintPage(QPainter &painter, const PlacedPage &page);
    void PaintOnPage(QPainter &painter, const QRect &place, const QString &text) const;
    void AskForTiles(const QList<PlacedPage> &placed, const QRect &area);
    void NoteMissing(bool isMissing);
    void TakePicture(const PagePart &part, const QImage &picture);

    FaxDocument &document;
    PageRenderer &renderer;
    PageStack stack;
    PageTiles tiles;
    QTimer tmrLate; ///< fires when a page is being waited for longer than usual
    QString strNotice, strPageNotice;
    ZoomMode mode = ZoomMode::Width;
    int lCurrent = 0;
    bool bGoing = false; ///< scrolls to a page that becomes the current one whatever the view shows
    bool bComplete = false;
    bool bLate = false;
};
