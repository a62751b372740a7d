#include "core/ports/Clock.h"
#include "core/ports/EventPump.h"
#include "core/ports/Socket.h"
#include "server/wire/clsClient.h"

#include <QPointer>

#include <limits>
#include <utility>

namespace {
constexpr qint64 lBlockSize = 2048000;
constexpr int passLength = 20; // milliseconds
constexpr int countPerPass = 5;
constexpr int countAtTimeOut = 2000;
} // namespace

void clsClient::sckClient_SendComplete()
{
    if (bWaitServerReady) {
        if (!IsWaitingServerReady() && WaitServerReady())
            StartUpload(strFileName);
    } else if (bSendingFile) {
        if (lSendSize == lBytesDone)
            FinishUpload();
        else if (lSendSize > lBytesDone)
            SendNextBlock();
    } else if (std::exchange(bFileLeaving, false)) {
        emit FileLeft();
    }
}

/// Waits for the answer to the header. True when it came; the object may be gone otherwise.
bool clsClient::WaitServerReady()
{
    const QPointer<clsClient> self(this);
    const int transfer = lTransfer;
    lAwaitedTransfer = transfer;
    int lCounter = 0;
    while (!bServerReady && lCounter < countAtTimeOut) {
        const int state = State();
        if (state == Socket::sckClosed || state == Socket::sckError)
            break;
        RunOneWait();
        if (!self || transfer != lTransfer)
            return false;
        if (pump.IsQuitting())
            break;
        lCounter += countPerPass;
    }
    lAwaitedTransfer = -1;
    const bool hasAnswered = std::exchange(bServerReady, false);
    if (lCounter >= countAtTimeOut)
        ReportNoAnswer();
    return hasAnswered && lCounter < countAtTimeOut;
}

/// One pass of the wait; events do not shorten it.
void clsClient::RunOneWait()
{
    const QPointer<clsClient> self(this);
    const int transfer = lTransfer;
    const qint64 lEnd = clock.Milliseconds() + passLength;
    do {
        pump.RunSlice(passLength);
    } while (self && transfer == lTransfer && !bServerReady && !pump.IsQuitting() &&
             clock.Milliseconds() < lEnd);
}

void clsClient::ReportNoAnswer()
{
    CloseConnect();
    emit Error({ClientError::errHeaderNotAnswered, QStringLiteral("Sending Fax Out of Time"),
                QStringLiteral("sckClient_SendComplete()")});
}

void clsClient::StartUpload(const QString &path)
{
    auto file = std::make_unique<QFile>(path);
    if (path.isEmpty() || !file->open(QIODevice::ReadOnly) || file->size() == 0 ||
        file->size() > std::numeric_limits<qint32>::max())
        return; // the owner's time-out ends its wait
    bWaitServerReady = false;
    iFileNumber = std::move(file);
    lSendSize = iFileNumber->size();
    lBytesDone = 0;
    bSendingFile = lSendSize > lBlockSize;
    QByteArray block;
    if (ReadBlock(block))
        SendFirstBlock(block);
    else
        AbandonUpload();
}

void clsClient::SendFirstBlock(const QByteArray &block)
{
    if (!bSendingFile)
        iFileNumber.reset();
    const QPointer<clsClient> self(this);
    const int transfer = lTransfer;
    emit SendingProgress(Frames::Percent(lBytesDone, lSendSize));
    if (self && transfer == lTransfer)
        SendBlock(Frames::FormC(static_cast<qint32>(lSendSize), block));
}

void clsClient::SendNextBlock()
{
    QByteArray block;
    if (ReadBlock(block))
        SendBlock(block);
    else
        AbandonUpload();
}

void clsClient::SendBlock(const QByteArray &bytes)
{
    const QPointer<clsClient> self(this);
    const int transfer = lTransfer;
    if (lBytesDone == lSendSize) {
        bFileLeaving = true;
        emit FileLeaving();
    }
    if (self && transfer == lTransfer)
        SendData(bytes);
}

void clsClient::FinishUpload()
{
    iFileNumber.reset();
    bSendingFile = false;
    bFileLeaving = false;
    lSendSize = -1;
    lBytesDone = -1;
    const QPointer<clsClient> self(this);
    const int transfer = lTransfer;
    emit FileLeft();
    if (self && transfer == lTransfer)
        emit SendingProgress(100);
    if (self && transfer == lTransfer)
        emit SendComplete({});
}

/// Reads the next block, as much as is left of the announced size at most.
bool clsClient::ReadBlock(QByteArray &block)
{
    const qint64 length = qMin(lBlockSize, lSendSize - lBytesDone);
    block = iFileNumber->read(length);
    lBytesDone += block.size();
    return block.size() == length;
}

/// The file has become shorter or unreadable. The server counts on the size that it was told, and would take
/// the next command for the rest: the connection ends here.
void clsClient::AbandonUpload()
{
    CloseConnect();
    emit Error({ClientError::errReadingFailed, QStringLiteral("Device I/O error"),
                QStringLiteral("sckClient_SendComplete()")});
}

void clsClient::sckClient_SendProgress(qint64 bytesSent)
{
    if (lSendSize <= 0)
        return;
    lProgressBytes += bytesSent;
    const int percent = Frames::Percent(lProgressBytes, lSendSize);
    if (lProgressBytes >= lSendSize)
        lProgressBytes = 0;
    emit SendingProgress(percent);
}
