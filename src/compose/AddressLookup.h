#pragma once

#include <QStringList>

#include <optional>
#include <string>
#include <unordered_map>

/// Finds rows of the address book by the texts of some columns, byte for byte, and of several rows the first.
/// All questions are known before the first answer: one reading of the table answers all, since no index
/// covers these columns.
class AddressLookup final
{
public:
    /// The statement gives of each row so many keys, and behind them the columns to find.
    struct Query
    {
        const char *strSql;
        int lKeys;
    };
    using Keys = QStringList;

    explicit AddressLookup(const Query &query);

    /// Announces a question. The texts are compared as they stand: see `EscapeText`.
    void Want(const Keys &keys);
    /// The columns of the row, as stored. The first call reads the table, and raises the errors of the
    /// database.
    std::optional<QStringList> Find(const Keys &keys);

private:
    void Read();

    Query query;
    std::unordered_map<std::string, std::optional<QStringList>> rows; ///< by their keys
    bool bRead = false;
};
