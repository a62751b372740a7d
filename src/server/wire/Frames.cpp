#include "server/wire/Frames.h"

#include "core/AnsiText.h"

#include <QCryptographicHash>
#include <QtEndian>

#include <cmath>

namespace Frames {

namespace {

void AppendLong(QByteArray &frame, qint32 value)
{
    const qint32 little = qToLittleEndian(value);
    frame.append(reinterpret_cast<const char *>(&little), lLengthBytes);
}

} // namespace

QByteArray Long(qint32 value)
{
    QByteArray bytes;
    AppendLong(bytes, value);
    return bytes;
}

qint32 ReadLong(const QByteArray &bytes)
{
    return bytes.size() < lLengthBytes ? 0 : qFromLittleEndian<qint32>(bytes.constData());
}

bool HasLength(const QByteArray &bytes)
{
    return bytes.size() >= lLengthBytes;
}

QByteArray BehindLength(const QByteArray &bytes)
{
    return HasLength(bytes) ? bytes.sliced(lLengthBytes) : QByteArray();
}

bool IsFailure(const QByteArray &text)
{
    return text.startsWith("ERR");
}

bool IsOneRead(qint32 declared)
{
    return declared >= 0 && declared <= lOneReadText;
}

QByteArray FormA(Command command, const QByteArray &body, const QByteArray &tail)
{
    QByteArray frame;
    frame.reserve(lLengthBytes + body.size() + tail.size());
    AppendLong(frame, command);
    return frame.append(body).append(tail);
}

QByteArray FormB(Command command, const QByteArray &body)
{
    QByteArray frame;
    frame.reserve(2 * lLengthBytes + body.size());
    AppendLong(frame, command);
    AppendLong(frame, static_cast<qint32>(body.size()));
    return frame.append(body);
}

QByteArray FormC(qint32 fileSize, const QByteArray &firstBlock)
{
    QByteArray frame;
    frame.reserve(2 * lLengthBytes + firstBlock.size());
    AppendLong(frame, cmdFileHeader);
    AppendLong(frame, fileSize);
    return frame.append(firstBlock);
}

QByteArray GoOn()
{
    return QByteArrayLiteral("GoOn");
}

QString Md5Digest(const QString &text)
{
    const QByteArray digest =
        QCryptographicHash::hash(AnsiText::ToAnsi(text), QCryptographicHash::Md5).toHex().toUpper();
    return QString::fromLatin1(digest);
}

int Percent(qint64 done, qint64 total)
{
    if (total == 0)
        return 0;
    // The default rounding mode takes halves to the even neighbour.
    return static_cast<int>(std::nearbyint(100.0 * static_cast<double>(done) / static_cast<double>(total)));
}

} // namespace Frames
