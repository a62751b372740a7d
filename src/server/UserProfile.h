#pragma once

#include <QString>
#include <QStringList>

struct Ports;
class clsStatement;

/// What the user has entered to log in.
struct LoginEntry
{
    QString strAccount;
    QString strPassword;       ///< typed text, or a digest
    bool bPwdIsDigest = false; ///< `strPassword` is a stored digest
    bool bRememberPwd = false;
    bool bAutoLogin = false;

    /// MD5 of the password, 32 upper-case hexadecimal digits.
    QString Digest() const;
};

/// The user profiles on disk: the list of known accounts in the settings file, and per account a folder
/// with the database and the boxes. Fills the login's part of `Global()`.
class UserProfile
{
public:
    explicit UserProfile(const Ports &ports)
        : ports(ports)
    {
    }

    /// True when the name may become a folder, a section of the settings file and a value in it.
    static bool IsUsableAccount(const QString &account);
    /// True for 32 hexadecimal digits, whatever their case.
    static bool IsDigest(const QString &text);
    /// Accounts in the order of their first login, blank entries left out.
    static QStringList KnownAccounts();
    /// The folder that the settings file names for the account, with a trailing slash; empty when it names
    /// none that can be used.
    static QString UserFolder(const QString &account);
    /// The same for the account's entry in the list, found without regard to case.
    static QString FindUserFolder(const QString &account);
    /// The database file in a user folder.
    static QString DatabaseFile(const QString &userFolder);

    /// True while the database of the account in the login window is open.
    bool IsOpen() const { return bProfileOpen; }
    /// Opens the database in a user folder; false when it is missing or not usable.
    bool Open(const QString &userFolder);
    void Close();

    /// Writes the account's settings, lays its folder out, opens or makes the database and loads the settings
    /// into `Global()`. On false the reason has been shown and the database is closed. Raises the database
    /// layer's errors.
    bool Save(const LoginEntry &entry);
    /// True when the latest `Save` could not write a setting; the user has been told.
    bool HasLostSettings() const { return bSettingsFailed; }

private:
    void Enter(const QString &account);
    void WriteChoices(const LoginEntry &entry);
    bool PrepareDatabase(const QString &account);
    bool MakeDatabase(const QString &userFolder);
    bool LayOutBoxes();
    void CopyDefaultHeaders() const;
    void WriteSetting(const QString &section, const QString &key, const QString &value);

    const Ports &ports;
    bool bProfileOpen = false;
    bool bSettingsFailed = false; ///< a value of the settings file could not be written
};
