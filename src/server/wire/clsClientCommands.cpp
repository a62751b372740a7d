#include "core/AnsiText.h"
#include "core/Utilities.h"
#include "server/wire/clsClient.h"

using Frames::Command;

namespace {

/// The texts in the code page, with a NUL between them.
QByteArray JoinFields(const QStringList &fields)
{
    return AnsiText::ToAnsi(fields.join(QChar(u'\0')));
}

} // namespace

// Flags are set before a frame goes: the reply may come in during the send.

void clsClient::SendShort(Command command, const QByteArray &body)
{
    SendData(Frames::FormA(command, body));
}

void clsClient::SendLong(Command command, const QByteArray &body)
{
    bLongReply = true;
    SendShort(command, body);
}

void clsClient::SendList(Command command, const QString &list, bool longReply)
{
    if (list.isEmpty())
        return;
    if (longReply)
        bLongReply = true;
    SendData(Frames::FormB(command, AnsiText::ToAnsi(list)));
}

void clsClient::SendGoOn()
{
    SendData(Frames::GoOn());
}

void clsClient::LogIn(const QString &user, QString &password, bool alreadyDigested)
{
    if (!alreadyDigested)
        password = Frames::Md5Digest(password);
    SendShort(Frames::cmdLogIn, AnsiText::ToAnsi(user + QStringLiteral("\r\n") + password));
}

void clsClient::LogOut()
{
    ResetTransfer();
    SendShort(Frames::cmdLogOut);
}

void clsClient::GetContactVersion()
{
    SendShort(Frames::cmdGetContactVersion);
}

void clsClient::GetPublicContactGroup()
{
    SendLong(Frames::cmdGetPublicContactGroup);
}

void clsClient::GetPublicContacts()
{
    SendLong(Frames::cmdGetPublicContacts);
}

void clsClient::GetNewFaxList()
{
    SendLong(Frames::cmdGetNewFaxList);
}

void clsClient::GetFax(long type, const QString &id, const QString &folder)
{
    const QString target = folder.isEmpty() ? strDefaultFolder : folder;
    if (target.isEmpty() || !IsSafeFaxID(id))
        return;
    strFileName = target + id + QStringLiteral(".tif");
    bReceivingFile = true;
    SendLong(Frames::cmdGetFax, JoinFields({QString::number(type), id}));
}

void clsClient::SendFaxFile(const QString &header, const QString &path)
{
    if (!FileExists(path) || header.isEmpty())
        return;
    ++lTransfer;
    strFileName = path;
    bServerReady = false;
    bWaitServerReady = true;
    SendList(Frames::cmdSendFaxFile, header, false);
}

void clsClient::GetFaxState(const QString &idList)
{
    SendList(Frames::cmdGetFaxState, idList, true);
}

void clsClient::GetHistoryList(const QString &range)
{
    SendLong(Frames::cmdGetHistoryList, AnsiText::ToAnsi(range));
}

void clsClient::ChangePassword(const QString &user, const QString &oldPassword, const QString &newPassword)
{
    SendShort(Frames::cmdChangePassword,
              JoinFields({user, Frames::Md5Digest(oldPassword), Frames::Md5Digest(newPassword)}));
}

void clsClient::GetUserList()
{
    SendLong(Frames::cmdGetUserList);
}

void clsClient::GetDepartmentList()
{
    SendLong(Frames::cmdGetDepartmentList);
}

void clsClient::CancelSendingFax(const QString &idList)
{
    SendList(Frames::cmdCancelSendingFax, idList, true);
}

void clsClient::ResendErrorFax(const QString &idList)
{
    SendList(Frames::cmdResendErrorFax, idList, true);
}

void clsClient::SendReturnReceipt(const QString &idList)
{
    SendList(Frames::cmdSendReturnReceipt, idList, false);
}

void clsClient::GetReturnReceiptState(const QString &idList)
{
    SendList(Frames::cmdGetReturnReceiptState, idList, true);
}

void clsClient::NewFaxReceived()
{
    SendShort(Frames::cmdNewFaxReceived);
}

void clsClient::GetFaxConfigAndKeepTouckTime()
{
    SendShort(Frames::cmdGetFaxConfigAndKeepTouckTime);
}
