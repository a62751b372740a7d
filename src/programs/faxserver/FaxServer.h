#pragma once

#include "Answers.h"
#include "Connection.h"
#include "Lines.h"
#include "Logins.h"
#include "OutgoingFaxes.h"
#include "Script.h"

#include <QObject>
#include <QTcpServer>

class Store;

struct ServerSettings
{
    quint16 lPort = 8750; ///< 0 for any
    int lMostUsers = 0;   ///< 0 for no limit
    LineSettings lines;
    Script script;
};

/// Listens on the loopback address and keeps the connections.
class FaxServer final : public QObject
{
    Q_OBJECT

public:
    FaxServer(Store &store, const ServerSettings &settings);
    ~FaxServer() override;

    /// Begins to listen and to dial, and returns the port. Raises `ServerError`.
    quint16 Listen();

private:
    void Accept();

    ServerSettings objSettings;
    Logins objLogins;
    OutgoingFaxes objOutgoing;
    Lines objLines;
    Answers objAnswers;
    ServerParts objParts;
    QTcpServer objListener;
    QList<Connection *> aConnections;
};
