#include "core/ports/Timer.h"
#include "server/wire/clsClient.h"

#include <QPointer>

#include <utility>

// Replies of one read, and long replies put together. The owner's handlers may send the next command, reset
// the transfer, wait, or destroy the client: state is brought up to date before an event is raised, and what
// follows one looks again.

void clsClient::ReadHeaderAnswer(const QByteArray &bytes)
{
    const QByteArray text = Frames::BehindLength(bytes);
    if (Frames::IsFailure(text)) {
        // Not the end of the wait for this answer: a refusal is reported as a time-out.
        ForgetTransfer();
        bHeaderRefused = true;
        return;
    }
    bServerReady = true;
    ClientReply reply = MakeReply(bytes.size(), ClientReply::statComplete, 0);
    reply.abData = text;
    emit DataArrival(reply);
}

void clsClient::ReadShortReply(const QByteArray &bytes)
{
    const QByteArray text = Frames::BehindLength(bytes);
    if (Frames::IsFailure(text))
        ForgetTransfer();
    ClientReply reply = MakeReply(bytes.size(), ClientReply::statShort, 0);
    reply.abData = text;
    emit DataArrival(reply);
}

void clsClient::ReadLongReply(const QByteArray &bytes)
{
    if (bFirstBlock) {
        BeginLongReply(abHeld.isEmpty() ? bytes : abHeld + bytes);
        return;
    }
    abReply += bytes;
    lBytesDone += bytes.size();
    TakePart(bytes.size());
}

void clsClient::BeginLongReply(const QByteArray &bytes)
{
    if (!Frames::HasLength(bytes)) {
        Hold(bytes);
        return;
    }
    lReplySize = Frames::ReadLong(bytes);
    lBytesDone = bytes.size() - Frames::lLengthBytes;
    if (lReplySize < 0 || lReplySize > Frames::lReplyBound)
        FailLongReply(bytes.size());
    else if (!Frames::IsOneRead(lReplySize)) {
        abReply = Frames::BehindLength(bytes);
        TakeFirstPart(bytes.size());
    } else if (lBytesDone < lReplySize)
        Hold(bytes); // the network has cut it
    else
        TakeOneRead(bytes);
}

void clsClient::Hold(const QByteArray &bytes)
{
    abHeld = bytes;
    tmrSilence->SetEnabled(true);
}

void clsClient::tmrSilence_Tick()
{
    tmrSilence->SetEnabled(false);
    const QByteArray bytes = std::exchange(abHeld, {});
    if (bytes.isEmpty())
        return;
    if (bLongReply)
        TakeOneRead(bytes);
    else
        FailFile(bytes.size());
}

/// The whole reply is in one read, whatever length it declares.
void clsClient::TakeOneRead(const QByteArray &bytes)
{
    abReply = Frames::BehindLength(bytes);
    if (Frames::IsFailure(abReply))
        RefuseLongReply(bytes.size());
    else
        AcceptOneRead(bytes.size());
}

void clsClient::RefuseLongReply(qint64 bytesTotal)
{
    // A refused download stays marked as one; the owner resets it before its next command.
    ClientReply reply = MakeReply(bytesTotal, ClientReply::statFailure, 100);
    reply.abData = abReply;
    bLongReply = false;
    bSendingFile = false;
    ClearCounters();
    emit DataArrival(reply);
}

void clsClient::AcceptOneRead(qint64 bytesTotal)
{
    constexpr qsizetype shortestAnnouncement = 5;
    ClientReply reply = MakeReply(bytesTotal, ClientReply::statComplete, 100);
    reply.lCurrent = lSendSize;
    bLongReply = false;
    ClearCounters();
    if (bReceivingFile && abReply.size() >= shortestAnnouncement) {
        SendGoOn();
        return;
    }
    bReceivingFile = false;
    reply.abData = abReply;
    emit DataArrival(reply);
}

void clsClient::TakeFirstPart(qint64 bytesTotal)
{
    bFirstBlock = false;
    abHeld.clear();
    tmrSilence->SetEnabled(false);
    if (lBytesDone > lReplySize) {
        FailLongReply(bytesTotal);
        return;
    }
    const QPointer<clsClient> self(this);
    const int transfer = lTransfer;
    const bool isWhole = lBytesDone == lReplySize;
    ReportPart(bytesTotal);
    if (isWhole && self && transfer == lTransfer && !bFirstBlock)
        CompleteLongReply(bytesTotal);
}

void clsClient::TakePart(qint64 bytesTotal)
{
    if (lBytesDone < lReplySize)
        ReportPart(bytesTotal);
    else if (lBytesDone == lReplySize)
        CompleteLongReply(bytesTotal);
    else
        FailLongReply(bytesTotal);
}

void clsClient::ReportPart(qint64 bytesTotal)
{
    ClientReply reply = MakeReply(bytesTotal, ClientReply::statPart, Frames::Percent(lBytesDone, lReplySize));
    reply.lTotal = lReplySize;
    reply.abData = abReply;
    const QPointer<clsClient> self(this);
    const int transfer = lTransfer;
    emit DataArrival(reply);
    if (self && transfer == lTransfer)
        SendGoOn();
}

void clsClient::CompleteLongReply(qint64 bytesTotal)
{
    ClientReply reply = MakeReply(bytesTotal, ClientReply::statComplete, 100);
    reply.lTotal = lReplySize;
    reply.abData = abReply;
    bLongReply = false;
    bFirstBlock = true;
    if (!bReceivingFile) {
        abReply.clear();
        ClearCounters();
        emit DataArrival(reply);
        return;
    }
    const QPointer<clsClient> self(this);
    const int transfer = lTransfer;
    emit DataArrival(reply);
    if (self && transfer == lTransfer)
        SendGoOn();
}

void clsClient::FailLongReply(qint64 bytesTotal)
{
    bLongReply = false;
    bReceivingFile = false;
    abReply.clear();
    ClearCounters();
    emit DataArrival(MakeReply(bytesTotal, ClientReply::statFailure, 0));
}
