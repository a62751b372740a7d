#pragma once

#include "core/RaisedError.h"
#include "core/clsDBcon.h"

/// A transaction that is rolled back when it goes away without `Commit`. No events may run meanwhile: a
/// statement of theirs would join it.
class TransactionScope
{
public:
    explicit TransactionScope(clsDBcon &connection)
        : database(connection)
    {
        database.Begin();
    }
    ~TransactionScope()
    {
        if (!bOpen)
            return;
        try {
            database.RollBack();
        } catch (const RaisedError &) {
            // SQLite has rolled back by itself; the first error is on its way to the caller
        }
    }
    TransactionScope(const TransactionScope &) = delete;
    TransactionScope &operator=(const TransactionScope &) = delete;

    void Commit()
    {
        database.Commit();
        bOpen = false;
    }

private:
    clsDBcon &database;
    bool bOpen = true;
};
