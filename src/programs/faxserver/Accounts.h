#pragma once

#include <QList>
#include <QString>

#include <optional>

class Database;

struct Account
{
    QString strID;
    QString strLogin; ///< kept in lower case, found in any
    QString strName;
    QString strDepartment; ///< id of a department
    QString strDigest;     ///< MD5 of the password, 32 upper-case hexadecimal digits
    bool bLocked = false;
};

/// Who may log in.
class Accounts
{
public:
    explicit Accounts(Database &database);

    std::optional<Account> Find(const QString &login) const;
    /// The name of the account with this id; nothing for an unknown id.
    std::optional<QString> NameOf(const QString &id) const;
    QList<Account> All() const;
    /// Adds an account, or replaces all but the id of the one of this login.
    void Save(const Account &account);
    void SetDigest(const QString &id, const QString &digest);

    static QString DigestOf(const QString &password);
    /// 32 upper-case hexadecimal digits.
    static QString NewID();

private:
    Database &objDatabase;
};
