#include "server/PasswordChange.h"

#include "core/Globals.h"
#include "core/Message.h"
#include "core/RaisedError.h"
#include "core/ports/Ports.h"
#include "server/wire/Frames.h"

#include <QCoreApplication>
#include <QScopedValueRollback>

namespace {
constexpr int minLength = 4; ///< characters of a new password
}

PasswordChange::PasswordChange(const Ports &ports, Change change, IsConnected isConnected)
    : ports(ports)
    , change(std::move(change))
    , isConnected(std::move(isConnected))
{
}

PasswordChange::Result PasswordChange::ClickOK(const QString &oldPassword, const QString &newPassword,
                                               const QString &confirmation)
{
    const auto refuse = [this](const QString &text, Result result) {
        ports.message.ShowMessage(text, mbExclamation);
        return result;
    };
    if (bBusy)
        return resRefused;
    if (oldPassword.isEmpty())
        return refuse(QCoreApplication::translate("server", "Current password cannot be left blank."),
                      resInvalidOld);
    if (newPassword != confirmation)
        return refuse(
            QCoreApplication::translate("server", "New password and confirm password do not match. "),
            resInvalidNew);
    if (newPassword.length() < minLength)
        return refuse(QCoreApplication::translate("server", "Password is too short"), resInvalidNew);
    if (AskServer(oldPassword, newPassword)) {
        StoreDigest(newPassword);
        return resChanged;
    }
    // Without a connection the change itself has told why.
    return isConnected()
               ? refuse(QCoreApplication::translate("server", "The password you gave is incorrect."),
                        resInvalidOld)
               : resRefused;
}

bool PasswordChange::AskServer(const QString &oldPassword, const QString &newPassword)
{
    const QScopedValueRollback<bool> busy(bBusy, true);
    return change(oldPassword, newPassword);
}

/// The settings file keeps a remembered digest of the old password until the next login.
void PasswordChange::StoreDigest(const QString &newPassword)
{
    const QString digest = Frames::Md5Digest(newPassword);
    Global().strPwdDigest = digest; // the server knows the new password already, whatever the database says
    try {
        Global().objDB->Execute(QString("Update Option Set Pwd='%1'").arg(digest));
    } catch (const RaisedError &error) {
        ports.message.ShowMessage(error.Description(), mbCritical);
    }
}
