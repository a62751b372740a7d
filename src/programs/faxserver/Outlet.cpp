#include "Outlet.h"

#include <QTcpSocket>

#include <algorithm>

Outlet::Outlet(QTcpSocket &socket)
    : sckClient(socket)
{
    connect(&socket, &QTcpSocket::bytesWritten, this, &Outlet::Room);
    tmrPieces.setTimerType(Qt::PreciseTimer);
    connect(&tmrPieces, &QTimer::timeout, this, &Outlet::WritePiece);
}

void Outlet::Write(const QByteArray &bytes)
{
    if (bClosing)
        return;
    const QByteArray allowed = UpToLimit(bytes);
    if (lPieceSize > 0 || !abQueue.isEmpty()) {
        abQueue += allowed;
        if (!tmrPieces.isActive())
            WritePiece();
    } else {
        sckClient.write(allowed);
    }
    if (lLimit == 0 && bCloseAtLimit)
        Close();
}

QByteArray Outlet::UpToLimit(const QByteArray &bytes)
{
    if (lLimit < 0)
        return bytes;
    const QByteArray allowed = bytes.left(lLimit);
    bCutShort = bCutShort || allowed.size() < bytes.size();
    lLimit -= allowed.size();
    return allowed;
}

void Outlet::WritePiece()
{
    const qsizetype size = lPieceSize > 0 ? std::min(lPieceSize, abQueue.size()) : abQueue.size();
    sckClient.write(abQueue.left(size));
    sckClient.flush(); // each piece is to travel by itself
    abQueue.remove(0, size);
    if (!abQueue.isEmpty()) {
        tmrPieces.start();
        return;
    }
    tmrPieces.stop();
    if (bClosing)
        sckClient.disconnectFromHost();
    else
        emit Room();
}

qint64 Outlet::Pending() const
{
    return abQueue.size() + sckClient.bytesToWrite();
}

void Outlet::Close()
{
    bClosing = true;
    if (abQueue.isEmpty())
        sckClient.disconnectFromHost();
}

void Outlet::BeginReply()
{
    lPieceSize = 0;
    lLimit = -1;
    bCloseAtLimit = false;
    bCutShort = false;
}

void Outlet::CutIntoPieces(qsizetype size, int milliseconds)
{
    lPieceSize = size;
    tmrPieces.setInterval(milliseconds);
}

void Outlet::CloseAfter(qint64 bytes)
{
    lLimit = bytes;
    bCloseAtLimit = true;
}

void Outlet::StallAfter(qint64 bytes)
{
    lLimit = bytes;
    bCloseAtLimit = false;
}
