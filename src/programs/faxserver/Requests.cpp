#include "Requests.h"

#include "WireText.h"

using namespace Frames;
using Requests::Outcome;
using Requests::Request;

namespace {

const QByteArray abPermission = "GoOn";
constexpr qsizetype lDigestLength = 32;

enum Form { formUnknown, formBare, formText, formCounted, formFile };

Form FormOf(qint32 command)
{
    switch (command) {
    case cmdLogIn:
    case cmdGetFax:
    case cmdGetHistoryList:
    case cmdChangePassword:
        return formText;
    case cmdSendFaxFile:
    case cmdGetFaxState:
    case cmdCancelSendingFax:
    case cmdResendErrorFax:
    case cmdSendReturnReceipt:
    case cmdGetReturnReceiptState:
        return formCounted;
    case cmdFileHeader:
        return formFile;
    default:
        return command >= cmdLogIn && command <= cmdGetReturnReceiptState ? formBare : formUnknown;
    }
}

/// Whether the text behind the last separator has the length that a complete request gives it.
bool IsComplete(qint32 command, const QByteArray &body)
{
    // A search for a text of one NUL would find the terminator of the byte array.
    const qsizetype separator = body.lastIndexOf(command == cmdLogIn ? '\n' : '\0');
    if (separator < 0)
        return false;
    const qsizetype tail = body.size() - separator - 1;
    if (command == cmdGetHistoryList)
        return tail >= qsizetype(sizeof("1;1;1;1")) - 1;
    if (command == cmdChangePassword && body.count('\0') < 2)
        return false;
    return tail >= lDigestLength;
}

Outcome TakeText(QByteArray &input, bool isAll, Request &request)
{
    if (input.size() > Requests::lMostText)
        return Requests::cutBroken;
    request.abBody = input.mid(4);
    if (!isAll && !IsComplete(request.lCommand, request.abBody))
        return Requests::cutOpenEnded;
    input.clear();
    return Requests::cutWhole;
}

Outcome TakeCounted(QByteArray &input, Request &request)
{
    if (input.size() < 8)
        return Requests::cutNeedMore;
    const qint32 length = WireText::ReadNumber(input, 4);
    if (length < 0 || length > Requests::lMostIds)
        return Requests::cutBroken;
    if (input.size() - 8 < length)
        return Requests::cutNeedMore;
    request.abBody = input.mid(8, length);
    input.remove(0, 8 + length);
    return Requests::cutWhole;
}

Outcome TakeFile(QByteArray &input, Request &request)
{
    if (input.size() < 8)
        return Requests::cutNeedMore;
    request.lFileSize = WireText::ReadNumber(input, 4);
    if (request.lFileSize <= 0)
        return Requests::cutBroken;
    request.abBody = input.mid(8, request.lFileSize);
    input.remove(0, 8 + request.abBody.size());
    return Requests::cutWhole;
}

} // namespace

Outcome Requests::Take(QByteArray &input, bool isAll, Request &request)
{
    if (input.size() < 4)
        return cutNeedMore;
    if (input.startsWith(abPermission)) {
        input.remove(0, abPermission.size());
        return cutPermission;
    }
    request = {WireText::ReadNumber(input), {}, 0};
    switch (FormOf(request.lCommand)) {
    case formBare:
        input.remove(0, 4);
        return cutWhole;
    case formText:
        return TakeText(input, isAll, request);
    case formCounted:
        return TakeCounted(input, request);
    case formFile:
        return TakeFile(input, request);
    case formUnknown:
        break;
    }
    return cutBroken;
}

bool Requests::HasLongReply(qint32 command)
{
    switch (command) {
    case cmdGetPublicContactGroup:
    case cmdGetPublicContacts:
    case cmdGetNewFaxList:
    case cmdGetFax:
    case cmdGetFaxState:
    case cmdGetHistoryList:
    case cmdGetUserList:
    case cmdGetDepartmentList:
    case cmdCancelSendingFax:
    case cmdResendErrorFax:
    case cmdGetReturnReceiptState:
        return true;
    default:
        return false;
    }
}
