#include "controls/PaneSplitter.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int lFarTwips = 2000;
constexpr int lNearTwips = 500;
constexpr int lTwipsPerInch = 1440;
constexpr int lKeyStep = 16;

class PaneHandle final : public QSplitterHandle
{
public:
    explicit PaneHandle(PaneSplitter &paneSplitter)
        : QSplitterHandle(paneSplitter.orientation(), &paneSplitter)
        , panes(paneSplitter)
    {
        setAccessibleName(PaneSplitter::tr("Border between panes"));
    }

    void TakeKeyboard()
    {
        const auto *other = dynamic_cast<PaneHandle *>(QApplication::focusWidget());
        focusBefore = other ? other->focusBefore.data() : QApplication::focusWidget();
        setFocus(Qt::ShortcutFocusReason);
    }

protected:
    void mousePressEvent(QMouseEvent *event) override
    {
        grip = event->position().toPoint();
        QSplitterHandle::mousePressEvent(event);
    }
    void mouseMoveEvent(QMouseEvent *event) override
    {
        QMouseEvent clear = KeptClear(*event);
        QSplitterHandle::mouseMoveEvent(&clear);
    }
    void mouseReleaseEvent(QMouseEvent *event) override
    {
        QMouseEvent clear = KeptClear(*event);
        QSplitterHandle::mouseReleaseEvent(&clear);
    }

    void keyPressEvent(QKeyEvent *event) override
    {
        const bool isBack = event->key() == Qt::Key_Left || event->key() == Qt::Key_Up;
        const bool isForward = event->key() == Qt::Key_Right || event->key() == Qt::Key_Down;
        const bool isEnd = event->key() == Qt::Key_Return || event->key() == Qt::Key_Escape;
        if (isBack || isForward)
            moveSplitter(panes.KeepClear(Along(pos()) + (isBack ? -lKeyStep : lKeyStep)));
        else if (isEnd && focusBefore)
            focusBefore->setFocus(Qt::OtherFocusReason);
        else
            QSplitterHandle::keyPressEvent(event);
    }
    void focusInEvent(QFocusEvent *event) override
    {
        QSplitterHandle::focusInEvent(event);
        update();
    }
    void focusOutEvent(QFocusEvent *event) override
    {
        QSplitterHandle::focusOutEvent(event);
        update();
    }
    void paintEvent(QPaintEvent *event) override
    {
        QSplitterHandle::paintEvent(event);
        if (hasFocus())
            QPainter(this).fillRect(rect(), palette().highlight());
    }

private:
    int Along(const QPoint &point) const { return orientation() == Qt::Horizontal ? point.x() : point.y(); }

    /// The same event at the place nearest to it that keeps the panes clear of the edges.
    QMouseEvent KeptClear(const QMouseEvent &event) const
    {
        const int wanted = Along(mapToParent(event.position().toPoint()) - grip);
        const int change = panes.KeepClear(wanted) - wanted;
        const QPointF shift = orientation() == Qt::Horizontal ? QPointF(change, 0) : QPointF(0, change);
        return QMouseEvent(event.type(), event.position() + shift, event.scenePosition() + shift,
                           event.globalPosition() + shift, event.button(), event.buttons(),
                           event.modifiers());
    }

    PaneSplitter &panes;
    QPoint grip; ///< where the handle was grasped
    QPointer<QWidget> focusBefore;
};

} // namespace

PaneSplitter::PaneSplitter(QWidget *parent)
    : QSplitter(parent)
{
    setOpaqueResize(false);
    setChildrenCollapsible(false);
}

QSplitterHandle *PaneSplitter::createHandle()
{
    return new PaneHandle(*this);
}

int PaneSplitter::Room() const
{
    return (orientation() == Qt::Horizontal ? width() : height()) - handleWidth();
}

int PaneSplitter::Clearance() const
{
    const bool isHorizontal = orientation() == Qt::Horizontal;
    const int dotsPerInch = isHorizontal ? logicalDpiX() : logicalDpiY();
    const int farEnough = lFarTwips * dotsPerInch / lTwipsPerInch;
    return isHorizontal || Room() >= 2 * farEnough ? farEnough : lNearTwips * dotsPerInch / lTwipsPerInch;
}

int PaneSplitter::KeepClear(int position) const
{
    const int clear = Clearance();
    return std::max(clear, std::min(position, Room() - clear));
}

bool PaneSplitter::TakeKeyboard()
{
    if (count() < 2 || !handle(1)->isVisible())
        return false;
    static_cast<PaneHandle *>(handle(1))->TakeKeyboard();
    return true;
}

/// Also holds for sizes that come out of the settings, and for a window that grows again.
void PaneSplitter::resizeEvent(QResizeEvent *event)
{
    QSplitter::resizeEvent(event);
    if (count() < 2 || widget(0)->isHidden() || widget(1)->isHidden())
        return;
    const int first = sizes().at(0);
    if (const int clear = KeepClear(first); clear != first)
        setSizes({clear, Room() - clear});
}
