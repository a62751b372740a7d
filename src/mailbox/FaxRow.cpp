#include "mailbox/FaxRow.h"

#include "core/Utilities.h"
#include "core/clsDBcon.h"
#include "mailbox/FaxListColumns.h"

#include <QStringBuilder>

#include <algorithm>
#include <array>
#include <iterator>

namespace {

constexpr int lReceiverWidth = 100;
/// Bytes of a text that the list keeps: more than it shows, and little enough to be made anew for each paint.
constexpr std::size_t lMostStored = 65536;
constexpr int lBinMode = 3;

/// The first reader, in queries of received faxes. The statement that reads a single fax goes without it.
constexpr int lFirstReaderField = 9;

enum class CellKind { Plain, Receiver, Sender, Time, FileList, BareName, Result };

/// Which field of a query's row stands in which column.
struct CellRule
{
    int lColumn = 0; ///< 0 ends the rules of a row
    int lField = 0;
    CellKind kind = CellKind::Plain;
};

constexpr std::size_t lMostCells = 7;

struct RowRules
{
    int lLevelField;
    int lReadField;
    CellRule aCells[lMostCells];

    std::size_t CellCount() const
    {
        const auto isEnd = [](const CellRule &rule) { return rule.lColumn == 0; };
        return static_cast<std::size_t>(std::find_if(std::begin(aCells), std::end(aCells), isEnd) - aCells);
    }
};

const RowRules &GetRules(int mode, int faxTable)
{
    static constexpr RowRules draft{1,
                                    7,
                                    {{4, 2, CellKind::Receiver},
                                     {5, 3, CellKind::Plain},
                                     {6, 4, CellKind::Plain},
                                     {7, 5, CellKind::Time},
                                     {8, 6, CellKind::FileList}}};
    static constexpr RowRules received{2,
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
    static constexpr RowRules recyleSent{
        1, 5, {{5, 2, CellKind::Plain}, {6, 3, CellKind::Plain}, {9, 4, CellKind::BareName}}};
    static constexpr RowRules recyleReceived{2,
                                             1,
                                             {{4, 3, CellKind::Sender},
                                              {5, 4, CellKind::Plain},
                                              {6, 5, CellKind::Plain},
                                              {7, 6, CellKind::Time},
                                              {8, 7, CellKind::Plain},
                                              {9, 8, CellKind::Plain}}};
    static constexpr RowRules outgoing{1,
                                       6,
                                       {{4, 2, CellKind::Receiver},
                                        {5, 3, CellKind::Plain},
                                        {6, 4, CellKind::Plain},
                                        {7, 5, CellKind::BareName}}};
    static constexpr RowRules sended{1,
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
    case lBinMode:
        return faxTable == 1 ? recyleSent : recyleReceived;
    case 4:
        return outgoing;
    default:
        return sended;
    }
}

QString ToText(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
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

bool ReadsAsRead(std::string_view stored)
{
    if (stored == "0" || stored == "1" || stored == "-1") // nearly always, and quicker
        return stored != "0";
    return ReadsAsTrue(ToText(stored));
}

/// 0, 2 or 1 for all that is normal. A level that is missing or no number is a normal one.
int ReadLevel(std::string_view stored)
{
    if (stored == "1")
        return 1;
    const QString text = ToText(stored).trimmed();
    if (text.isEmpty() || !text.front().isDigit())
        return 1;
    const int level = ToNumber(text);
    return level == 0 || level == 2 ? level : 1;
}

} // namespace

FaxRow::FaxRow(const clsStatement &statement, int mode, int faxTable)
    : lMode(static_cast<quint8>(mode))
    , lFaxTable(static_cast<quint8>(faxTable))
{
    Read(statement, {});
}

void FaxRow::ReadAgain(const clsStatement &statement, int mode)
{
    const PackedTexts before = lMode == mode ? texts : PackedTexts();
    lMode = static_cast<quint8>(mode);
    Read(statement, before);
}

/// `before` has what the statement leaves out.
void FaxRow::Read(const clsStatement &statement, const PackedTexts &before)
{
    const RowRules &rules = GetRules(lMode, lFaxTable);
    std::array<std::string_view, 1 + lMostCells> stored{statement.Utf8(0)};
    const std::size_t count = 1 + rules.CellCount();
    const int fields = statement.ColumnCount();
    for (std::size_t i = 1; i < count; ++i) {
        const int field = rules.aCells[i - 1].lField;
        stored[i] = field < fields ? statement.Utf8(field) : before.At(static_cast<int>(i));
        stored[i] = stored[i].substr(0, lMostStored);
    }
    lIdHash = HashOf(stored[0]);
    const std::string_view readState = statement.Utf8(rules.lReadField);
    bRead = ReadsAsRead(readState);
    bStoredUnread = readState == "0";
    lLevel = ReadLevel(statement.Utf8(rules.lLevelField));
    texts = PackedTexts({stored.data(), count});
}

FaxRow::FaxRow(const QString &label, long unread, long total)
{
    const std::string cells[] = {label.toStdString(), std::to_string(unread), std::to_string(total)};
    const std::string_view all[] = {{}, cells[0], cells[1], cells[2]};
    texts = PackedTexts(all);
}

quint32 FaxRow::HashOf(std::string_view id)
{
    return static_cast<quint32>(std::hash<std::string_view>()(id));
}

QString FaxRow::Cell(int column) const
{
    if (column == colFaxID || IsSummary())
        return texts.Text(column - colFaxID);
    if (lMode == lBinMode && column == colFaxTable)
        return QString::number(lFaxTable);
    const RowRules &rules = GetRules(lMode, lFaxTable);
    for (std::size_t i = 0; i < rules.CellCount(); ++i) {
        if (rules.aCells[i].lColumn == column)
            return FormatCell(texts.Text(static_cast<int>(i) + 1), rules.aCells[i].kind);
    }
    return {};
}

QString FaxRow::ReadImageKey() const
{
    if (IsSummary())
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
