#include "platform/MessagePrompts.h"

#include "core/ProgramTitle.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QWindow>

namespace {
constexpr long buttonsMask = 0x0F;
constexpr long iconMask = 0xF0;

QMessageBox::Icon IconOf(long flags)
{
    switch (flags & iconMask) {
    case mbCritical:
        return QMessageBox::Critical;
    case mbQuestion:
        return QMessageBox::Question;
    case mbExclamation:
        return QMessageBox::Warning;
    case mbInformation:
        return QMessageBox::Information;
    default:
        return QMessageBox::NoIcon;
    }
}

/// First and second button; the second also stands for a box that is closed without an answer.
QList<QMessageBox::StandardButton> ButtonsOf(long flags)
{
    switch (flags & buttonsMask) {
    case mbOKCancel:
        return {QMessageBox::Ok, QMessageBox::Cancel};
    case mbYesNo:
        return {QMessageBox::Yes, QMessageBox::No};
    default:
        return {QMessageBox::Ok};
    }
}

long AnswerOf(int button)
{
    switch (button) {
    case QMessageBox::Cancel:
        return mbAnswerCancel;
    case QMessageBox::Yes:
        return mbAnswerYes;
    case QMessageBox::No:
        return mbAnswerNo;
    default:
        return mbAnswerOK;
    }
}

/// The window is no QObject parent: a run disables it with all its children, and the box must stay alive.
void PlaceOver(QMessageBox &box, const QWidget *owner)
{
    if (!owner)
        return;
    box.winId(); // makes the native window
    box.windowHandle()->setTransientParent(owner->window()->windowHandle());
    box.adjustSize();
    QRect place = box.frameGeometry();
    place.moveCenter(owner->window()->frameGeometry().center());
    box.move(place.topLeft());
}
} // namespace

long MessagePrompts::Show(const QString &text, long flags, const QString &title)
{
    QMessageBox box;
    box.setWindowTitle(title.isEmpty() ? QLatin1String(programTitle) : title);
    box.setTextFormat(Qt::PlainText);
    box.setText(text);
    box.setIcon(IconOf(flags));
    const QList<QMessageBox::StandardButton> buttons = ButtonsOf(flags);
    for (const QMessageBox::StandardButton button : buttons)
        box.addButton(button);
    box.setDefaultButton(flags & mbDefaultButton2 ? buttons.last() : buttons.first());
    box.setEscapeButton(buttons.last());
    PlaceOver(box, QApplication::activeWindow());
    const int answer = box.exec();
    // The program's end closes a box without an answer.
    return AnswerOf(box.clickedButton() ? answer : buttons.last());
}
