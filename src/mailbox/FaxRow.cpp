#include "mailbox/FaxRow.h"

#include "core/Utilities.h"
#include "core/clsDBcon.h"
#include "mailbox/FaxListColumns.h"

#include <QStringBuilder>

#include <algorithm>

namespace {

constexpr int lReceiverWidth = 100;

/// The first reader, in queries of received faxes. The statement that reads a single fax goes without it.
constexpr int lFirstReaderField = 9;

enum class CellKind { Plain, Receiver, Sender, Time, FileList, BareName, Result };

/// Which field of a query's row stands in which column.
struct CellRule
{
    int lColumn;
    int lField;
    CellKind kind;
};

struct RowRules
{
    int lLevelField;
    int lReadField;
    QList<CellRule> aCells;
};

const RowRules &GetRules(int mode, int faxTable)
{
    static const RowRules draft{1,
                                7,
                                {{4, 2, CellKind::Receiver},
                                 {5, 3, CellKind::Plain},
                                 {6, 4, CellKind::Plain},
                                 {7, 5, CellKind::Time},
                                 {8, 6, CellKind::FileList}}};
    static const RowRules received{2,
                                   1,
                                   {{4, 3, CellKind::Sender},
                                    {5, lFirstReaderField, CellKind::Plain},
                                    {6, 4, CellKind::Plain},
                                    {7, 5, CellKind::Plain},
                                    {8, 6, CellKind::Time},
                                    {9, 7, CellKind::Plain},
                                    {10, 8, CellKind::Plain}}};
    // Rows of the Recycle bin leave no room for "First Read By" though its column stands there: from the
    // title on every value is one column left of its caption, and column 10 tells the table of the fax.
    static const RowRules recyleSent{
        1, 5, {{5, 2, CellKind::Plain}, {6, 3, CellKind::Plain}, {9, 4, CellKind::BareName}}};
    static const RowRules recyleReceived{2,
                                         1,
                                         {{4, 3, CellKind::Sender},
                                          {5, 4, CellKind::Plain},
                                          {6, 5, CellKind::Plain},
                                          {7, 6, CellKind::Time},
                                          {8, 7, CellKind::Plain},
                                          {9, 8, CellKind::Plain}}};
    static const RowRules outgoing{1,
                                   6,
                                   {{4, 2, CellKind::Receiver},
                                    {5, 3, CellKind::Plain},
                                    {6, 4, CellKind::Plain},
                                    {7, 5, CellKind::BareName}}};
    static const RowRules sended{1,
                                 8,
                                 {{4, 2, CellKind::Receiver},
                                  {5, 3, CellKind::Plain},
                                  {6, 4, CellKind::Plain},
                                  {7, 5, CellKind::Result},
                                  {8, 6, CellKind::Time},
                                  {9, 7, CellKind::Plain}}};
    switch (mode) {
    case 1:
        return draft;
    case 2:
        return received;
    case 3:
        return faxTable == 1 ? recyleSent : recyleReceived;
    case 4:
        return outgoing;
    default:
        return sended;
    }
}

QString FormatCell(const QString &stored, CellKind kind)
{
    const QString text = UnescapeText(stored);
    switch (kind) {
    case CellKind::Plain:
        return text;
    case CellKind::Receiver:
        return CompactPath(RemoveLastChar(text, ";"), lReceiverWidth);
    case CellKind::Sender:
        return RemoveLastChar(text, ";");
    case CellKind::Time:
        return FormatListTime(text);
    case CellKind::FileList:
        return RemoveLastChar(text, ",");
    case CellKind::BareName:
        return GetBareName(text);
    case CellKind::Result:
        return text.left(text.indexOf(QChar(2)));
    }
    return text;
}

/// A level that is missing or no number is the normal one.
int ReadLevel(const QString &stored)
{
    const QString level = stored.trimmed();
    return level.isEmpty() || !level.front().isDigit() ? 1 : ToNumber(level);
}

void ReadCells(FaxRow &row, const clsStatement &statement, int mode, bool again)
{
    const RowRules &rules = GetRules(mode, row.lFaxTable);
    row.strID = statement.Text(0);
    row.bRead = ReadsAsTrue(statement.Text(rules.lReadField));
    row.lLevel = ReadLevel(statement.Text(rules.lLevelField));
    for (const CellRule &rule : rules.aCells) {
        if (!again || rule.lField != lFirstReaderField)
            row.SetCell(rule.lColumn, FormatCell(statement.Text(rule.lField), rule.kind));
    }
    if (mode == 3)
        row.SetCell(colFaxTable, QString::number(row.lFaxTable));
}

} // namespace

void FaxRow::SetCell(int column, const QString &text)
{
    while (aCells.size() < column - 1)
        aCells.append(QString());
    aCells[column - 2] = text;
}

QString FaxRow::ReadImageKey() const
{
    if (bSummary)
        return {};
    return bRead ? "imgReaded" : bHovered ? "imgFaxMouseOn" : "imgNotRead";
}

QString FaxRow::LevelImageKey() const
{
    return lLevel == 0 ? "imgLevel" : lLevel == 2 ? "imgLowLevel" : "";
}

std::optional<quint32> FaxRow::TextColor() const
{
    if (lLevel == 0)
        return 0xff0000;
    return lLevel == 2 ? std::optional<quint32>(0x969696) : std::nullopt;
}

FaxRow ReadFaxRow(const clsStatement &statement, int mode, int faxTable)
{
    FaxRow row;
    row.lFaxTable = faxTable;
    ReadCells(row, statement, mode, false);
    return row;
}

void ReadFaxRowAgain(FaxRow &row, const clsStatement &statement, int mode)
{
    ReadCells(row, statement, mode, true);
}

/// By hand, since it runs for every row of a long list.
QString FormatListTime(const QString &stored)
{
    static const QString pattern = "0000-00-00 00:00:00";
    const bool hasTime = stored.size() == pattern.size();
    if (!hasTime && stored.size() != pattern.indexOf(' '))
        return stored;
    for (qsizetype i = 0; i < stored.size(); ++i) {
        const QChar wanted = pattern.at(i);
        const bool isWanted =
            wanted == '0' ? stored.at(i) >= '0' && stored.at(i) <= '9' : stored.at(i) == wanted;
        if (!isWanted && !(wanted == ' ' && stored.at(i) == 'T'))
            return stored;
    }
    const QStringView text(stored);
    return text.mid(5, 2) % '/' % text.mid(8, 2) % '/' % text.left(4) % ' ' %
           (hasTime ? text.mid(11) : QStringView(u"00:00:00"));
}

QString GetBareName(const QString &path)
{
    return path.mid(std::max(path.lastIndexOf('/'), path.lastIndexOf('\\')) + 1);
}
