#include "platform/MessagePrompts.h"

#include "core/ProgramTitle.h"
#include "platform/DialogPlace.h"

#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>

namespace {
constexpr int narrowestInput = 340;
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

/// The buttons in their order; the last also stands for a box that is closed without an answer.
QList<QMessageBox::StandardButton> ButtonsOf(long flags)
{
    switch (flags & buttonsMask) {
    case mbOKCancel:
        return {QMessageBox::Ok, QMessageBox::Cancel};
    case mbYesNoCancel:
        return {QMessageBox::Yes, QMessageBox::No, QMessageBox::Cancel};
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
    box.setDefaultButton(buttons.value(flags & mbDefaultButton2 ? 1 : 0, buttons.first()));
    box.setEscapeButton(buttons.last());
    PlaceOverActiveWindow(box);
    const int answer = box.exec();
    // The program's end closes a box without an answer.
    return AnswerOf(box.clickedButton() ? answer : buttons.last());
}

QString MessagePrompts::AskText(const QString &prompt, const QString &title)
{
    QInputDialog box;
    box.setWindowTitle(title);
    box.setLabelText(prompt);
    box.resize(box.sizeHint().expandedTo({narrowestInput, 0})); // its layout overrules a minimum width
    PlaceOverActiveWindow(box);
    return box.exec() == QDialog::Accepted ? box.textValue() : QString();
}
