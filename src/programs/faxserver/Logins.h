#pragma once

#include <QHash>
#include <QString>

class QTcpSocket;

/// Who is logged in over which connection: one connection for each account.
class Logins
{
public:
    /// `most` accounts at once; 0 for no limit.
    explicit Logins(int most);

    /// 0, or the reason why the account cannot come in. A holder whose client has gone makes room.
    int Enter(const QString &accountID, QTcpSocket *socket);
    void Leave(QTcpSocket *socket);

private:
    QHash<QString, QTcpSocket *> holders;
    int lMost;
};
