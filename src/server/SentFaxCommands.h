#pragma once

#include "server/FaxStatus.h"

#include <QStringList>

#include <functional>

/// What the user does with faxes that the server has got: stops sending them, or has failed ones sent again.
///
/// Each command is a run of its own, for which the main window is disabled; while another run owns the
/// connection it does nothing but say so. Ids are those of the selected faxes. What goes wrong is said when
/// the window is free again.
class SentFaxCommands
{
public:
    SentFaxCommands(const Ports &ports, const StatusRooms &rooms);

    /// The faxes go into the Recycle bin at once, before the server has heard of it. Raises the database
    /// layer's errors.
    void mnuCancelSend(const QStringList &selected);
    /// The faxes that the server takes go into "Sending"; the others stay where they are.
    void mnuResendError(const QStringList &selected);

private:
    bool RunAlone(const QString &text, const std::function<void()> &run);
    bool Cancel(const QStringList &ids);
    void Resend(const QStringList &ids);
    void HandleResendReply(const ClientReply &reply);
    void ShowFaxes(const QStringList &ids);
    void Say(const QString &text);

    const Ports &ports;
    StatusRooms rooms;
    QString ResendIDs;   ///< each with ";" behind it, until they have been answered
    QStringList aResent; ///< those that the server has taken
};
