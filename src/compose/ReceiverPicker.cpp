#include "compose/ReceiverPicker.h"

#include "compose/ReceiverCompletion.h"
#include "compose/Recipients.h"
#include "core/Message.h"

#include <numeric>

ReceiverPicker::ReceiverPicker(Message &messageBox)
    : message(messageBox)
{
}

void ReceiverPicker::Load()
{
    aGroups = PickerGroup::ReadAll();
}

void ReceiverPicker::ShowGroup(int index)
{
    contacts.Load(aGroups.at(index));
}

int ReceiverPicker::AddRows(const QList<int> &rows)
{
    QList<SelectedReceiver> receivers;
    receivers.reserve(rows.size());
    for (const int row : rows)
        receivers.append(contacts.Table().Receiver(row));
    return selected.Add(receivers);
}

int ReceiverPicker::AddAllRows()
{
    const QString question = tr("All contacts will be added to the recipient list, do you want to continue?");
    if (message.ShowMessage(question, mbOKCancel + mbQuestion) != mbAnswerOK)
        return -1;
    QList<int> rows(contacts.rowCount());
    std::iota(rows.begin(), rows.end(), 0);
    return AddRows(rows);
}

ReceiverPicker::Buttons ReceiverPicker::EnabledButtons(bool isRowSelected, bool isReceiverSelected) const
{
    return {isRowSelected, contacts.rowCount() > 0, isReceiverSelected, selected.rowCount() > 0};
}

QString ReceiverPicker::SelectReceivers(const QString &text, const ReceiverKeys &keys, const Show &show)
{
    QString box = text;
    if (!box.trimmed().endsWith(';'))
        box = keys.txtReceive_KeyPress(';', box).value_or(box);
    box = Recipients::FormatReceiverText(box);
    const auto chosen = show(ToSelectedReceivers(box));
    return chosen && !chosen->isEmpty() ? ToReceiverText(*chosen) : box;
}
