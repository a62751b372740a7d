#pragma once

#include <QHash>
#include <QStringList>

#include <memory>
#include <optional>

class clsStatement;

/// Finds rows of the address book by the texts of some columns, as a statement does: byte for byte, and of
/// several rows the first. The first questions are a statement each; when there are many, one reading of the
/// table answers the rest, since no index covers these columns. Raises the errors of the database.
class AddressLookup final
{
public:
    struct Query
    {
        const char *strOne; ///< a statement with a parameter for each key
        const char *strAll; ///< the keys of all rows, and behind them the columns of `strOne`
        int lKeys;
    };

    explicit AddressLookup(const Query &query);
    ~AddressLookup();
    AddressLookup(const AddressLookup &) = delete;
    AddressLookup &operator=(const AddressLookup &) = delete;

    /// The columns of the row, as stored. `keys` are compared as they stand: see `EscapeText`.
    std::optional<QStringList> Find(const QStringList &keys);

private:
    std::optional<QStringList> Ask(const QStringList &keys);
    void ReadAll();

    Query query;
    std::unique_ptr<clsStatement> statement;
    int lAsked = 0;
    QHash<QStringList, QStringList> rows; ///< by their keys, once they have been read
};
