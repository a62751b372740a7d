#pragma once

#include "compose/ReceiverPicker.h"

#include <QDialog>

#include <functional>
#include <memory>

class ForwardFax;
class Message;
class QKeyEvent;

namespace Ui {
class frmSelReceiver;
}

/// The window in which recipients are chosen; with a forwarding it is the whole of "Forward fax".
class frmSelReceiver final : public QDialog
{
    Q_OBJECT

public:
    /// Begins with these recipients.
    frmSelReceiver(Message &message, const QList<SelectedReceiver> &receivers, QWidget *parent = nullptr);
    /// Forwards faxes; it closes when the copies are in "Outgoing". `maySend`: the user is logged in.
    frmSelReceiver(Message &message, ForwardFax &forwarding, bool maySend, QWidget *parent = nullptr);
    ~frmSelReceiver() override;

    /// The recipients, unless the window was cancelled, which its result tells.
    const QList<SelectedReceiver> &Receivers() const;
    /// Forwarding: send the copies at once.
    bool IsSendWanted() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    explicit frmSelReceiver(Message &message, QWidget *parent);
    void SetUpGrid();
    void SetUpList();
    void ConnectButtons();
    void ShowGroup(int index);
    void ShowCount();
    void ShowButtons();
    void ShowMenu(const QPoint &place);
    void SortBy(int column);
    void Find(const QString &text);
    bool PressKey(const QObject *widget, const QKeyEvent &key);
    bool PressKeyInFind(const QKeyEvent &key);
    bool TypeIntoFind(const QKeyEvent &key);
    void Add(const std::function<int()> &add);
    void AddSelected();
    void RemoveSelected();
    void RemoveAll();
    void ClickOK();

    Message &message;
    std::unique_ptr<Ui::frmSelReceiver> ui;
    ReceiverPicker picker;
    ForwardFax *forward = nullptr;
};
