#pragma once

#include "Accounts.h"
#include "AddressBook.h"
#include "Calls.h"
#include "Database.h"
#include "Mailboxes.h"

#include <memory>

/// All that the server keeps: one database and one folder of fax files in its data folder.
class Store
{
public:
    /// Makes what is missing. Raises `ServerError`.
    explicit Store(const QString &dataFolder);

    /// Stays the same for the life of the data folder; clients know the server by it.
    QString ServerID() const;
    /// What is stored from here on is stored together, or not at all.
    std::unique_ptr<Transaction> Change() { return std::make_unique<Transaction>(objDatabase); }

private:
    Database objDatabase;

public:
    Accounts accounts;
    AddressBook addresses;
    Mailboxes mailboxes;
    Calls calls;
};
