#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>

/// The frames of the fax protocol, built and cut by pure functions. Integers are 32-bit little-endian,
/// signed; text is in the ANSI code page without a terminator.
namespace Frames {

/// Command numbers, which the server knows too.
enum Command : qint32 {
    cmdLogIn = 1,
    cmdLogOut = 2,
    cmdGetContactVersion = 3,
    cmdGetPublicContactGroup = 4,
    cmdGetPublicContacts = 5,
    cmdGetNewFaxList = 6,
    cmdGetFax = 7,
    cmdSendFaxFile = 8,
    cmdGetFaxState = 9,
    cmdGetHistoryList = 10,
    cmdChangePassword = 11,
    cmdFileHeader = 12,
    cmdGetUserList = 13,
    cmdGetDepartmentList = 14,
    cmdCancelSendingFax = 15,
    cmdResendErrorFax = 16,
    cmdNewFaxReceived = 17,
    cmdGetFaxConfigAndKeepTouckTime = 18,
    cmdSendReturnReceipt = 19,
    cmdGetReturnReceiptState = 20
};

/// Four bytes, little-endian.
QByteArray Long(qint32 value);
/// The number in the first four bytes; 0 when there are fewer.
qint32 ReadLong(const QByteArray &bytes);

/// Bytes of a number or length.
constexpr qsizetype lLengthBytes = 4;
/// A long reply of at most so many bytes comes in one read and needs no permission to send on.
constexpr qint32 lOneReadText = 2044;
/// A long reply that declares more is refused.
constexpr qint32 lReplyBound = 256 * 1024 * 1024;

/// True when the four bytes of a length are there.
bool HasLength(const QByteArray &bytes);
/// What follows the four bytes in front; empty when there is nothing.
QByteArray BehindLength(const QByteArray &bytes);
/// True for the text of a failure reply.
bool IsFailure(const QByteArray &text);
/// True when a long reply of this declared length comes in one read.
bool IsOneRead(qint32 declared);

/// Command number and body, without a length; the tail is binary and follows the text.
QByteArray FormA(Command command, const QByteArray &body = {}, const QByteArray &tail = {});
/// Command number, length of the body, body.
QByteArray FormB(Command command, const QByteArray &body);
/// The number 12, the size of the whole file, its first block.
QByteArray FormC(qint32 fileSize, const QByteArray &firstBlock);
/// The permission to send on.
QByteArray GoOn();

/// MD5 (RFC 1321) of the ANSI bytes, 32 upper-case hexadecimal digits.
QString Md5Digest(const QString &text);

/// Percentage rounded to the nearest whole number, halves to the even neighbour; 0 for a total of 0.
int Percent(qint64 done, qint64 total);

} // namespace Frames
