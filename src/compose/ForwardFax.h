#pragma once

#include "compose/SelectedReceivers.h"

#include <QCoreApplication>
#include <QStringList>

class FaxSender;
class Mailbox;
class MainWindow;
struct ForwardReceivers;
struct Ports;

/// Forwards faxes of the mailbox to others: a copy of each goes into "Outgoing". The main window is disabled
/// from `Begin` to the end of this object.
class ForwardFax final
{
    Q_DECLARE_TR_FUNCTIONS(ForwardFax)

public:
    struct Rooms
    {
        MainWindow &mainWindow;
        Mailbox &mailbox;
        FaxSender &faxUpload;
    };
    /// What the user has entered beside the recipients.
    struct Input
    {
        QString strSubject;
        int lImportance = 1;      ///< 0 high, 1 normal, 2 low
        QString strOtherReceiver; ///< numbers, with "," or ";" between them
    };

    ForwardFax(const Ports &ports, const Rooms &rooms);
    ~ForwardFax();
    ForwardFax(const ForwardFax &) = delete;
    ForwardFax &operator=(const ForwardFax &) = delete;

    /// Takes those of the faxes that have a file; false when none has. `isSent` tells their table. Raises the
    /// errors of the database.
    bool Begin(const QStringList &ids, bool isSent);
    /// Subject and importance to begin with: those of a single fax. Raises the errors of the database.
    Input ReadDefaults() const;

    /// Puts the copies into "Outgoing", all or none. False when it cannot be done, and the user has been told
    /// why: the input can be mended then.
    bool ClickOK(const QList<SelectedReceiver> &receivers, const Input &input);
    /// Hands the copies to the server.
    void Send();

private:
    bool PutIntoOutgoing(const ForwardReceivers &receivers, const Input &input);
    QString WriteCopies(const QStringList &newIds, const ForwardReceivers &receivers,
                        const Input &input) const;
    void WriteRow(const QString &id, const QString &newID, const ForwardReceivers &receivers,
                  const Input &input) const;

    const Ports &ports;
    Rooms rooms;
    QStringList aIds;
    bool bSent = false;
    QStringList aNewIds;
    bool bBegun = false;
};
