#pragma once

#include "Answers.h"
#include "Connection.h"
#include "Logins.h"
#include "Script.h"

#include <QObject>
#include <QTcpServer>

class Store;

struct ServerSettings
{
    quint16 lPort = 8750; ///< 0 for any
    int lMostUsers = 0;   ///< 0 for no limit
    int lLineSeconds = 3; ///< how long the simulated line takes for a fax
    Script script;
};

/// Listens on the loopback address and keeps the connections.
class FaxServer final : public QObject
{
    Q_OBJECT

public:
    FaxServer(Store &store, const ServerSettings &settings);
    ~FaxServer() override;

    /// Begins to listen and returns the port. Raises `ServerError`.
    quint16 Listen();

private:
    void Accept();

    ServerSettings objSettings;
    Logins objLogins;
    Answers objAnswers;
    ServerParts objParts;
    QTcpServer objListener;
    QList<Connection *> aConnections;
};
