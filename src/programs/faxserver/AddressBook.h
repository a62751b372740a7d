#pragma once

#include <QByteArrayList>
#include <QStringList>

class Database;

/// The addresses that the server publishes to all users. Each list is read and added to as rows of texts, in
/// the order of the fields of its reply.
class AddressBook
{
public:
    enum List {
        lstGroups,     ///< id, name, description
        lstContacts,   ///< id, name, company, department, duty, fax, phone, mobile, mail, messenger, group
        lstDepartments ///< id, name, description
    };

    explicit AddressBook(Database &database);

    void Add(List list, const QStringList &fields);
    /// The lines of the reply.
    QByteArrayList Lines(List list) const;
    /// Differs whenever the list has changed, since rows are only added.
    int Version(List list) const;

private:
    Database &objDatabase;
};
