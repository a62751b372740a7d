#include "server/AddressStore.h"

#include "core/DatabaseErrors.h"
#include "core/Globals.h"
#include "core/RaisedError.h"
#include "core/TransactionScope.h"
#include "core/Utilities.h"
#include "server/AddressList.h"

#include <QCoreApplication>

#include <memory>

namespace {

QString Tr(const char *text)
{
    return QCoreApplication::translate("AddressSync", text);
}

/// Inserts the rows of one list with one prepared statement.
class Inserter
{
public:
    explicit Inserter(const AddressList &list)
        : list(list)
        , statement(Global().objDB->SelectEx(QString::fromLatin1(list.strInsert)))
    {
    }

    AddressStore::Result InsertAll(const QList<QStringView> &lines, const std::function<bool()> &goOn)
    {
        for (const QStringView line : lines) {
            if (!list.bInTransaction && !goOn())
                return AddressStore::Result::Stopped;
            const QList<QStringView> fields = line.split(QChar(0));
            if (fields.size() < list.aFields.size())
                return AddressStore::Result::ShortLine;
            Insert(fields);
        }
        return AddressStore::Result::Stored;
    }

    void RaiseLeftOut() const
    {
        if (lLeftOut > 0)
            throw RaisedError(DatabaseErrors::lConstraint, "AddressStore",
                              Tr("Entries of the server that were left out, since their ids cannot be used "
                                 "or are not unique: %1.")
                                  .arg(lLeftOut));
    }

private:
    void Insert(const QList<QStringView> &fields)
    {
        statement->Reset();
        for (int i = 0; i < list.aFields.size(); ++i) {
            if (!Bind(i, fields[i])) {
                ++lLeftOut;
                return;
            }
        }
        try {
            statement->Execute();
        } catch (const RaisedError &error) {
            if (error.Number() != DatabaseErrors::lConstraint)
                throw;
            ++lLeftOut;
        }
    }

    /// False for an id that cannot be used.
    bool Bind(int field, QStringView value)
    {
        const bool hasApostrophe = value.contains(u'\'');
        switch (list.aFields[field]) {
        case AddressList::fldID:
            if (hasApostrophe)
                return false;
            statement->BindText(field + 1, value);
            break;
        case AddressList::fldEscaped:
            statement->BindText(field + 1, hasApostrophe ? EscapeText(value.toString()) : value);
            break;
        case AddressList::fldUnescaped:
            BindUnescaped(field, value.toString());
            break;
        }
        return true;
    }

    void BindUnescaped(int field, const QString &value)
    {
        const QString text = UnescapeText(value);
        if (text.contains('\'')) // a fault of old: readers expect such a statement to fail
            throw RaisedError(DatabaseErrors::lSqlError, "AddressStore",
                              Tr("A name of the server holds an apostrophe: %1").arg(text));
        statement->BindText(field + 1, text);
    }

    const AddressList &list;
    std::unique_ptr<clsStatement> statement;
    int lLeftOut = 0;
};

/// The rows before an error stay, unless the database has rolled back by itself.
void CommitBeforeError(TransactionScope &transaction)
{
    try {
        transaction.Commit();
    } catch (const RaisedError &) {
        // The first error is on its way to the caller.
    }
}

AddressStore::Result InsertAsBatch(Inserter &inserter, const QList<QStringView> &lines)
{
    TransactionScope transaction(*Global().objDB);
    try {
        const AddressStore::Result result = inserter.InsertAll(lines, {});
        transaction.Commit();
        return result;
    } catch (const RaisedError &) {
        CommitBeforeError(transaction);
        throw;
    }
}

} // namespace

AddressStore::Result AddressStore::Replace(const AddressList &list, const QList<QStringView> &lines,
                                           const std::function<bool()> &goOn)
{
    Global().objDB->Execute(QString::fromLatin1(list.strDelete));
    if (lines.isEmpty())
        return Result::Stored;
    Inserter inserter(list);
    const Result result =
        list.bInTransaction ? InsertAsBatch(inserter, lines) : inserter.InsertAll(lines, goOn);
    inserter.RaiseLeftOut();
    return result;
}
