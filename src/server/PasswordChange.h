#pragma once

#include <QString>

#include <functional>

struct Ports;

/// The change of the user's password at the server, as the password window runs it.
class PasswordChange
{
public:
    /// Asks the server; true when it has accepted.
    using Change = std::function<bool(const QString &oldPassword, const QString &newPassword)>;
    using IsConnected = std::function<bool()>;

    enum Result {
        resInvalidOld, ///< a message was shown; the focus belongs to the current password
        resInvalidNew, ///< a message was shown; the focus belongs to the new password
        resRefused,    ///< not changed; the window stays open
        resChanged     ///< the new digest is stored; the window closes
    };

    PasswordChange(const Ports &ports, Change change, IsConnected isConnected);

    /// Checks the three texts, has the password changed, and keeps its digest.
    Result ClickOK(const QString &oldPassword, const QString &newPassword, const QString &confirmation);
    /// True while the server is being asked.
    bool IsBusy() const { return bBusy; }

private:
    bool AskServer(const QString &oldPassword, const QString &newPassword);
    void StoreDigest(const QString &newPassword);

    const Ports &ports;
    Change change;
    IsConnected isConnected;
    bool bBusy = false;
};
