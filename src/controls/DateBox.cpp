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
    else if (const QString typed = event->text(); typed == "-" || typed == "." || typed == "/")
        GoOnBehindSeparator();
    else {
        const int before = currentSectionIndex();
        QDateEdit::keyPressEvent(event);
        bWentOnByItself = !typed.isEmpty() && typed.at(0).isDigit() && currentSectionIndex() != before;
    }
}

/// A full part goes on to the next by itself, and the base class then skips that one for the separator.
void DateBox::GoOnBehindSeparator()
{
    if (!bWentOnByItself && currentSectionIndex() + 1 < sectionCount())
        setSelectedSection(sectionAt(currentSectionIndex() + 1));
    bWentOnByItself = false;
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
