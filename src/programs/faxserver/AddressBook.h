#pragma once

#include <QByteArrayList>
#include <QList>
#include <QStringList>

class Database;

/// The addresses that the server publishes to all users. Each list is read and written as rows of texts, in
/// the order of the fields of its reply, and has a version number that every change raises.
class AddressBook
{
public:
    enum List {
        lstGroups,      ///< id, name, description
        lstContacts,    ///< id, name, company, department, duty, fax, phone, mobile, mail, messenger, group
        lstDepartments, ///< id, name, description
        lstUsers        ///< the accounts; here is only their version
    };

    /// The accounts must be in the database already.
    explicit AddressBook(Database &database);

    void Add(List list, const QStringList &fields);
    /// Raises `ServerError` for a row with another number of fields than the list has.
    void Replace(List list, const QList<QStringList> &rows);
    /// The lines of the reply.
    QByteArrayList Lines(List list) const;
    int Version(List list) const;
    /// Of the public contact with this id; empty for an unknown one.
    QString FaxNumber(const QString &contact) const;

private:
    Database &objDatabase;
};
