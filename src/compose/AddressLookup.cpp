#include "compose/AddressLookup.h"

#include "core/Globals.h"

namespace {

std::string Joined(const AddressLookup::Keys &keys)
{
    return keys.join(QChar(0)).toStdString();
}

/// False for a row with a NULL, which no text equals.
bool ReadKey(const clsStatement &row, int keys, std::string &key)
{
    key.clear();
    for (int column = 0; column < keys; ++column) {
        const std::string_view text = row.Utf8(column);
        if (text.empty() && !row.ColumnValue(column).isValid())
            return false;
        if (column > 0)
            key += '\0';
        key += text;
    }
    return true;
}

} // namespace

AddressLookup::AddressLookup(const Query &lookupQuery)
    : query(lookupQuery)
{
}

void AddressLookup::Want(const Keys &keys)
{
    rows.try_emplace(Joined(keys));
}

std::optional<QStringList> AddressLookup::Find(const Keys &keys)
{
    if (!bRead)
        Read();
    const auto row = rows.find(Joined(keys));
    return row == rows.end() ? std::nullopt : row->second;
}

void AddressLookup::Read()
{
    const auto row = Global().objDB->SelectEx(query.strSql);
    std::string key;
    while (row->Next()) {
        const auto wanted = ReadKey(*row, query.lKeys, key) ? rows.find(key) : rows.end();
        if (wanted == rows.end() || wanted->second)
            continue;
        wanted->second.emplace();
        for (int column = query.lKeys; column < row->ColumnCount(); ++column)
            wanted->second->append(row->Text(column));
    }
    bRead = true;
}
