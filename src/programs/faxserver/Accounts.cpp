#include "Accounts.h"

#include "Database.h"
#include "WireText.h"

#include <QCryptographicHash>
#include <QUuid>

namespace {

Account AccountOf(const Statement &row)
{
    return {row.Text(0), row.Text(1), row.Text(2), row.Text(3), row.Text(4), row.Number(5) != 0};
}

} // namespace

Accounts::Accounts(Database &database)
    : objDatabase(database)
{
    objDatabase.Run("CREATE TABLE IF NOT EXISTS Account (ID TEXT PRIMARY KEY, Login TEXT UNIQUE, Name TEXT, "
                    "Department TEXT, Digest TEXT, IsLocked INTEGER)");
}

std::optional<Account> Accounts::Find(const QString &login) const
{
    Statement row =
        objDatabase.Query("SELECT ID, Login, Name, Department, Digest, IsLocked FROM Account WHERE Login = ?",
                          {login.toLower()});
    return row.Next() ? std::optional<Account>(AccountOf(row)) : std::nullopt;
}

std::optional<QString> Accounts::NameOf(const QString &id) const
{
    Statement row = objDatabase.Query("SELECT Name FROM Account WHERE ID = ?", {id});
    return row.Next() ? std::optional<QString>(row.Text(0)) : std::nullopt;
}

QList<Account> Accounts::All() const
{
    Statement rows =
        objDatabase.Query("SELECT ID, Login, Name, Department, Digest, IsLocked FROM Account ORDER BY rowid");
    QList<Account> found;
    while (rows.Next())
        found.append(AccountOf(rows));
    return found;
}

void Accounts::Save(const Account &account)
{
    objDatabase.Run(
        "INSERT INTO Account (ID, Login, Name, Department, Digest, IsLocked) VALUES (?, ?, ?, ?, ?, ?) "
        "ON CONFLICT (Login) DO UPDATE SET Name = excluded.Name, Department = excluded.Department, "
        "Digest = excluded.Digest, IsLocked = excluded.IsLocked",
        {account.strID.isEmpty() ? NewID() : account.strID, account.strLogin.toLower(), account.strName,
         account.strDepartment, account.strDigest, int(account.bLocked)});
}

void Accounts::SetDigest(const QString &id, const QString &digest)
{
    objDatabase.Run("UPDATE Account SET Digest = ? WHERE ID = ?", {digest, id});
}

QString Accounts::DigestOf(const QString &password)
{
    const QByteArray hash = QCryptographicHash::hash(WireText::ToAnsi(password), QCryptographicHash::Md5);
    return QString::fromLatin1(hash.toHex().toUpper());
}

QString Accounts::NewID()
{
    return QUuid::createUuid().toString(QUuid::Id128).toUpper();
}
