#include "compose/AddressLookup.h"

#include "core/Globals.h"

#include <algorithm>

namespace {

/// About as long as reading the table takes.
constexpr int lStatements = 16;

QStringList TextsOf(const clsStatement &row, int first, int last)
{
    QStringList texts;
    for (int column = first; column < last; ++column)
        texts.append(row.Text(column));
    return texts;
}

/// No text equals NULL.
bool HasKeys(const clsStatement &row, int keys)
{
    for (int column = 0; column < keys; ++column) {
        if (!row.ColumnValue(column).isValid())
            return false;
    }
    return true;
}

} // namespace

AddressLookup::AddressLookup(const Query &lookupQuery)
    : query(lookupQuery)
{
}

AddressLookup::~AddressLookup() = default;

std::optional<QStringList> AddressLookup::Find(const QStringList &keys)
{
    ++lAsked;
    if (lAsked <= lStatements)
        return Ask(keys);
    if (lAsked == lStatements + 1)
        ReadAll();
    const auto row = rows.constFind(keys);
    return row == rows.constEnd() ? std::nullopt : std::optional(*row);
}

std::optional<QStringList> AddressLookup::Ask(const QStringList &keys)
{
    if (!statement)
        statement = Global().objDB->SelectEx(query.strOne);
    statement->Reset();
    for (int i = 0; i < keys.size(); ++i)
        statement->BindText(i + 1, keys[i]);
    if (!statement->Next())
        return std::nullopt;
    const QStringList found = TextsOf(*statement, 0, statement->ColumnCount());
    statement->Reset(); // an unfinished statement would keep others from writing
    return found;
}

void AddressLookup::ReadAll()
{
    const auto row = Global().objDB->SelectEx(query.strAll);
    while (row->Next()) {
        if (!HasKeys(*row, query.lKeys))
            continue;
        const QStringList keys = TextsOf(*row, 0, query.lKeys);
        if (!rows.contains(keys))
            rows.insert(keys, TextsOf(*row, query.lKeys, row->ColumnCount()));
    }
}
