#pragma once

#include "AddressBook.h"
#include "Requests.h"
#include "Session.h"

#include <QByteArray>
#include <QString>

class Lines;
class Logins;
class OutgoingFaxes;
class QTcpSocket;
class Store;

/// What the server answers to each command. Knows nothing of how a reply travels.
class Answers
{
public:
    struct Reply
    {
        QByteArray abText;
        QString strFileToSend; ///< follows the text, when not empty
        QString strFaxID;      ///< of that file
        bool bClose = false;
    };

    Answers(Store &store, Logins &logins, OutgoingFaxes &outgoing, Lines &lines);

    /// Raises `ServerError` when the store fails.
    Reply To(const Requests::Request &request, Session &session, QTcpSocket *socket);

private:
    QByteArray LogIn(const QByteArray &body, Session &session, QTcpSocket *socket);
    QByteArray ChangePassword(const QByteArray &body, Session &session);
    QByteArray Versions() const;
    QByteArray UserList() const;
    Reply Addresses(AddressBook::List list) const;
    QByteArray NewFaxList(Session &session);
    QByteArray HistoryList(const QByteArray &body, Session &session);
    Reply FaxFor(const QByteArray &body, Session &session);
    QByteArray TakeAcknowledgement(Session &session);
    QByteArray FaxStates(const QByteArray &body, Session &session);
    QByteArray FaxState(const QString &id, Session &session);
    QByteArray Cancel(const QByteArray &body, const Session &session);
    QByteArray Resend(const QByteArray &body, const Session &session);
    QByteArray TakeReceipts(const QByteArray &body, const Session &session);
    QByteArray ReceiptStates(const QByteArray &body, const Session &session);

    QStringList FaxIds(const QByteArray &body, const Session &session) const;

    Store &objStore;
    Logins &objLogins;
    OutgoingFaxes &objOutgoing;
    Lines &objLines;
};
