#include "ReplyStream.h"

#include "WireText.h"

#include <algorithm>

namespace {

constexpr qsizetype lOnePiece = 2044; ///< text that travels without a "GoOn"
constexpr qint64 lFirstBlock = 4096;
constexpr qint64 lBlock = 256 * 1024;
constexpr qint64 lWindow = 1024 * 1024; ///< bytes under way at once

} // namespace

ReplyStream::ReplyStream(QTcpSocket &socket)
    : objOutlet(socket)
{
    connect(&objOutlet, &Outlet::Room, this, [this] {
        if (IsStreaming())
            GoOnWithFile();
    });
}

void ReplyStream::BeginReply()
{
    objOutlet.BeginReply();
    abRest.clear();
    objFile.reset();
    state = stateIdle;
    bDeclareWrong = false;
}

void ReplyStream::SendShort(const QByteArray &text)
{
    objOutlet.Write(WireText::Number(qint32(text.size())) + text);
}

void ReplyStream::SendLong(const QByteArray &text)
{
    WriteLong(text, Declared(text.size()));
}

void ReplyStream::WriteLong(const QByteArray &text, qint64 declared)
{
    const QByteArray head = WireText::Number(qint32(declared));
    objOutlet.Write(head + text.left(lOnePiece));
    abRest = text.mid(lOnePiece);
}

bool ReplyStream::SendFile(const QByteArray &announcement, const QString &path)
{
    auto file = std::make_unique<QFile>(path);
    if (!file->open(QIODevice::ReadOnly) || file->size() == 0)
        return false;
    objFile = std::move(file);
    state = stateAnnounced;
    WriteLong(announcement, announcement.size());
    return true;
}

void ReplyStream::Permit()
{
    if (!abRest.isEmpty()) {
        objOutlet.Write(std::exchange(abRest, {}));
    } else if (state == stateAnnounced) {
        StartFile();
    } else if (state == stateStarted) {
        state = stateStreaming;
        GoOnWithFile();
    }
}

/// The first block is smaller than the file, since a client that gets all of it in one read keeps the size
/// bytes in its file.
void ReplyStream::StartFile()
{
    state = stateStarted;
    const qint64 size = objFile->size();
    objOutlet.Write(WireText::Number(qint32(Declared(size))) +
                    objFile->read(std::min(lFirstBlock, size / 2)));
}

void ReplyStream::GoOnWithFile()
{
    while (objFile && !objFile->atEnd() && objOutlet.Pending() < lWindow) {
        const QByteArray block = objFile->read(lBlock);
        if (block.isEmpty()) {
            objOutlet.Close(); // unreadable in its middle: the client must not take it for a whole one
            return;
        }
        objOutlet.Write(block);
    }
    if (objFile && objFile->atEnd() && objOutlet.Pending() == 0)
        EndFile();
}

void ReplyStream::EndFile()
{
    objFile.reset();
    state = stateIdle;
    if (!objOutlet.IsCutShort() && !bDeclareWrong)
        emit FileSent();
    emit Idle();
}

void ReplyStream::DeclareWrong(qint64 value, bool isRelative)
{
    bDeclareWrong = true;
    lDeclared = value;
    bDeclareRelative = isRelative;
}

qint64 ReplyStream::Declared(qint64 real) const
{
    if (!bDeclareWrong)
        return real;
    return bDeclareRelative ? real + lDeclared : lDeclared;
}
