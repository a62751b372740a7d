#include "FaxServer.h"

#include "ServerError.h"

#include <QTcpSocket>

namespace {

constexpr qsizetype lMostConnections = 1000;

} // namespace

FaxServer::FaxServer(Store &store, const ServerSettings &settings)
    : objSettings(settings)
    , objLogins(settings.lMostUsers)
    , objOutgoing(store)
    , objLines(store, objOutgoing, settings.lines)
    , objAnswers(store, objLogins, objOutgoing, objLines)
    , objParts{store, objAnswers, objSettings.script, objOutgoing, objLines}
{
    connect(&objListener, &QTcpServer::newConnection, this, &FaxServer::Accept);
}

FaxServer::~FaxServer()
{
    const QList<Connection *> connections = std::exchange(aConnections, {});
    qDeleteAll(connections);
}

quint16 FaxServer::Listen()
{
    if (!objListener.listen(QHostAddress::LocalHost, objSettings.lPort))
        throw ServerError(QString("Port %1 cannot be listened on: %2.")
                              .arg(QString::number(objSettings.lPort), objListener.errorString()));
    objLines.Wake();
    return objListener.serverPort();
}

void FaxServer::Accept()
{
    while (QTcpSocket *socket = objListener.nextPendingConnection()) {
        if (aConnections.size() >= lMostConnections) {
            socket->abort();
            socket->deleteLater();
            continue;
        }
        auto *connection = new Connection(socket, objParts);
        aConnections.append(connection);
        connect(socket, &QTcpSocket::disconnected, this, [this, socket, connection] {
            objLogins.Leave(socket);
            if (aConnections.removeOne(connection))
                connection->deleteLater();
        });
        // A scripted greeting may have ended it already, before anybody listened.
        if (socket->state() == QAbstractSocket::UnconnectedState && aConnections.removeOne(connection))
            connection->deleteLater();
    }
}
