#pragma once

#include <QByteArray>
#include <QObject>
#include <QTimer>

class QTcpSocket;

/// What goes out on one connection. Usually the socket itself; a script can shape one reply: cut it into
/// pieces, end the connection in its middle, or fall silent there.
class Outlet final : public QObject
{
    Q_OBJECT

public:
    explicit Outlet(QTcpSocket &socket);

    void Write(const QByteArray &bytes);
    /// Bytes that have not left yet.
    qint64 Pending() const;
    /// Closes once everything has left.
    void Close();

    /// A new reply begins: nothing is shaped any more.
    void BeginReply();
    void CutIntoPieces(qsizetype size, int milliseconds);
    void CloseAfter(qint64 bytes);
    void StallAfter(qint64 bytes);
    /// Whether bytes of this reply were left out.
    bool IsCutShort() const { return bCutShort; }

signals:
    /// Bytes have left.
    void Room();

private:
    void WritePiece();
    QByteArray UpToLimit(const QByteArray &bytes);

    QTcpSocket &sckClient;
    QTimer tmrPieces;
    QByteArray abQueue; ///< waits for its turn as pieces
    qsizetype lPieceSize = 0;
    qint64 lLimit = -1; ///< bytes of the reply that may still leave
    bool bCloseAtLimit = false;
    bool bCutShort = false;
    bool bClosing = false;
};
