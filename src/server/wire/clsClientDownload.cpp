#include "core/ports/Socket.h"
#include "core/ports/Timer.h"
#include "server/wire/clsClient.h"

#include <QFileInfo>

#include <filesystem>
#include <utility>

namespace {

/// True when the folder of `path` has so much space left, or does not tell.
bool HasSpace(const QString &path, qint64 bytes)
{
    std::error_code error;
    const std::filesystem::path folder = QFileInfo(path).absolutePath().toStdString();
    const std::filesystem::space_info space = std::filesystem::space(folder, error);
    return error || static_cast<qint64>(space.available) >= bytes;
}

} // namespace

void clsClient::ReadFile(const QByteArray &bytes)
{
    if (bFirstBlock)
        BeginFile(abHeld.isEmpty() ? bytes : abHeld + bytes);
    else
        ContinueFile(bytes);
}

void clsClient::BeginFile(const QByteArray &bytes)
{
    if (!Frames::HasLength(bytes)) {
        Hold(bytes);
        return;
    }
    abHeld.clear();
    tmrSilence->SetEnabled(false);
    lFileSize = Frames::ReadLong(bytes);
    lBytesDone = bytes.size() - Frames::lLengthBytes;
    if (lFileSize < lBytesDone) {
        FailFile(bytes.size());
        return;
    }
    // The file of one read keeps its four size bytes in front; whoever reads files steps over them.
    const bool isWhole = lFileSize == lBytesDone;
    if (!OpenForReceiving() || !WriteBlock(isWhole ? bytes : Frames::BehindLength(bytes), isWhole))
        AbandonFile(bytes.size());
    else if (isWhole)
        CompleteFile(bytes.size());
    else {
        bFirstBlock = false;
        SendGoOn();
    }
}

void clsClient::ContinueFile(const QByteArray &bytes)
{
    lBytesDone += bytes.size();
    if (!WriteBlock(bytes, lBytesDone == lFileSize)) {
        AbandonFile(bytes.size());
    } else if (lBytesDone == lFileSize) {
        CompleteFile(bytes.size());
    } else if (lBytesDone > lFileSize) {
        // Nothing is raised: the owner's time-out ends its wait.
        ForgetFile();
    } else {
        SendGoOn();
        ClientReply reply =
            MakeReply(bytes.size(), ClientReply::statPart, Frames::Percent(lBytesDone, lFileSize));
        reply.abData = abReply;
        emit DataArrival(reply);
    }
}

void clsClient::CompleteFile(qint64 bytesTotal)
{
    ClientReply reply = MakeReply(bytesTotal, ClientReply::statFileDone, 100);
    reply.lTotal = lFileSize;
    reply.strFileName = strFileName;
    reply.abData = abReply;
    ForgetFile();
    emit DataArrival(reply);
}

/// The server contradicts itself about the size.
void clsClient::FailFile(qint64 bytesTotal)
{
    ForgetFile();
    emit DataArrival(MakeReply(bytesTotal, ClientReply::statFailure, 100));
}

/// The disk does not take the file. The server may still be sending it, and must not believe that it has
/// been taken: the connection ends here.
void clsClient::AbandonFile(qint64 bytesTotal)
{
    if (iFileNumber && iFileNumber->isOpen())
        iFileNumber->remove();
    sckClient->Close();
    FailFile(bytesTotal);
}

void clsClient::ForgetFile()
{
    bReceivingFile = false;
    abReply.clear();
    ClearCounters();
}

bool clsClient::OpenForReceiving()
{
    if (!HasSpace(strFileName, lFileSize))
        return false;
    iFileNumber = std::make_unique<QFile>(strFileName);
    return iFileNumber->open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered);
}

bool clsClient::WriteBlock(const QByteArray &bytes, bool last)
{
    constexpr qsizetype threshold = 0;
    abWriteBuffer += bytes;
    if (!last && abWriteBuffer.size() <= threshold)
        return true;
    const QByteArray block = std::exchange(abWriteBuffer, {});
    return iFileNumber->write(block) == block.size();
}
