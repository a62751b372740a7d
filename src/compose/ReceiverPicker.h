#pragma once

#include "compose/ReceiverModels.h"

#include <QCoreApplication>

#include <functional>
#include <optional>

class Message;
class ReceiverKeys;

/// The window in which recipients are chosen: contacts and users by their group on one side, the recipients
/// on the other. Rows and places count from 0.
class ReceiverPicker final
{
    Q_DECLARE_TR_FUNCTIONS(ReceiverPicker)

public:
    explicit ReceiverPicker(Message &message);

    /// Reads the groups. This and the next raise the errors of the database.
    void Load();
    const QList<PickerGroup> &Groups() const { return aGroups; }
    /// Shows one of the groups.
    void ShowGroup(int index);
    ContactTableModel &Contacts() { return contacts; }
    SelectedReceiversModel &Selected() { return selected; }
    const SelectedReceiversModel &Selected() const { return selected; }

    /// Makes rows recipients, but for those that are there already. The place of the last one that was; -1
    /// for none.
    int AddRows(const QList<int> &rows);
    /// The same for all rows, after a question.
    int AddAllRows();

    /// Which buttons are enabled: adding needs rows, removing recipients, and each of the two for one a
    /// selection.
    struct Buttons
    {
        bool bAddOne, bAddAll, bRemoveOne, bRemoveAll;
    };
    Buttons EnabledButtons(bool isRowSelected, bool isReceiverSelected) const;

    /// Shows the picker with those recipients, modal; nothing when it was cancelled.
    using Show = std::function<std::optional<QList<SelectedReceiver>>(const QList<SelectedReceiver> &)>;
    /// What `btnSelReceive` of the composer makes of the text of its box: brings it into its normal form,
    /// shows the picker on it, and takes the recipients over. Raises the errors of the database.
    static QString SelectReceivers(const QString &text, const ReceiverKeys &keys, const Show &show);

private:
    Message &message;
    QList<PickerGroup> aGroups;
    ContactTableModel contacts;
    SelectedReceiversModel selected;
};
