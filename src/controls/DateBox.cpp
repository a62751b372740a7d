#include "controls/DateBox.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyle>
#include <QStyleOptionComboBox>

DateBox::DateBox(QWidget *parent)
    : QDateEdit(parent)
{
    setCalendarPopup(true);
}

void DateBox::keyPressEvent(QKeyEvent *event)
{
    if (event->keyCombination() == (Qt::ALT | Qt::Key_Down) || event->keyCombination() == Qt::Key_F4)
        ShowCalendar();
    else
        QDateEdit::keyPressEvent(event);
}

/// Nothing but a press on the arrow opens it.
void DateBox::ShowCalendar()
{
    QStyleOptionComboBox option;
    option.initFrom(this);
    option.editable = true;
    option.subControls = QStyle::SC_All;
    const QRect arrow = style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxArrow, this);
    const QPoint place = arrow.center();
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent click(type, place, mapToGlobal(place), Qt::LeftButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(this, &click);
    }
}
