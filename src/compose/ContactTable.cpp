#include "compose/ContactTable.h"

#include "core/Globals.h"
#include "core/Utilities.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <memory>
#include <span>
#include <string>

namespace {

constexpr char strGrouped[] = "Select ID,Name,Fax,Group_Name,Phone,Mobile,Mail,Im,Contacts.isPublic from "
                              "ContactGroup,Contacts Where ContactGroup.Group_id=Contacts.Group_id";
constexpr char strUngrouped[] = "Select ID,Name,Fax,Phone,Mobile,Mail,Im,isPublic   from Contacts Where "
                                "Contacts.Group_id=''";
constexpr char strUsers[] = "Select UserList.ID,LoginName,UserName,UserDepartment.Department  From UserList "
                            "left join UserDepartment on UserList.Department=UserDepartment.ID";
constexpr char strDepartment[] = "Select ID,LoginName,UserName From UserList Where Department=?";

constexpr QLatin1StringView strIndent("     ");

QString Tr(const char *text)
{
    return QCoreApplication::translate("ReceiverPicker", text);
}

using Texts = std::array<std::string_view, ContactTable::colCount>;

/// Whether a stored text may be shown by another one. Asked of each cell for the first key of a search:
/// looking for one letter of several would take ten times as long.
bool IsShownOtherwise(std::string_view text)
{
    static constexpr auto aSpecial = [] {
        std::array<bool, 256> special{};
        for (const char letter : std::string_view("~\"<>[];"))
            special.at(static_cast<unsigned char>(letter)) = true;
        return special;
    }();
    return std::any_of(text.begin(), text.end(),
                       [](char letter) { return aSpecial[static_cast<unsigned char>(letter)]; });
}

template <typename Take>
void ForEachRow(const QString &sql, const QString &parameter, Take take)
{
    const auto row = Global().objDB->SelectEx(sql);
    if (!parameter.isNull())
        row->BindText(1, parameter);
    while (row->Next())
        take(*row);
}

} // namespace

// Groups

QList<PickerGroup> PickerGroup::ReadAll()
{
    QList<PickerGroup> groups{{grpAllContacts, Tr("<All Contacts>"), {}}};
    ForEachRow("Select Group_ID,Group_Name from ContactGroup group by Group_Name", {}, [&](const auto &row) {
        groups.append({grpGroup, UnescapeText(row.Text(1)), {}});
    });
    groups.append({grpAllUsers, Tr("<All Users>"), {}});
    ForEachRow("Select ID,Department From UserDepartment", {}, [&](const auto &row) {
        groups.append({grpDepartment, UnescapeText(row.Text(1)), row.Text(0)});
    });
    return groups;
}

QString PickerGroup::ShownText() const
{
    const bool isPart = lKind == grpGroup || lKind == grpDepartment;
    return isPart ? strIndent + strName : strName;
}

// Rows

void ContactTable::Load(const PickerGroup &newGroup)
{
    aRows = Read(newGroup);
    group = newGroup;
    search.Clear();
    Sort();
}

ContactTable::Row ContactTable::ReadContact(const clsStatement &statement, bool hasGroup)
{
    const int shift = hasGroup ? 0 : 1;
    Texts texts;
    for (const int column : {colID, colContact, colFax})
        texts.at(column) = statement.Utf8(column);
    if (hasGroup)
        texts.at(colGroup) = statement.Utf8(colGroup);
    for (const int column : {colPhone, colMobile, colMail, colIm})
        texts.at(column) = statement.Utf8(column - shift);
    const bool isPublic = ReadsAsTrue(statement.Text(colCount - shift));
    return {PackedTexts(texts), isPublic ? SelectedReceiver::rcvPublicContact : SelectedReceiver::rcvContact};
}

ContactTable::Rows ContactTable::Read(const PickerGroup &group)
{
    Rows rows;
    const auto takeGrouped = [&](const clsStatement &row) { rows.push_back(ReadContact(row, true)); };
    const auto takeUngrouped = [&](const clsStatement &row) { rows.push_back(ReadContact(row, false)); };
    const std::string department = group.strName.toStdString();
    const auto takeUser = [&](const clsStatement &row) {
        const std::string_view shown = row.ColumnCount() > 3 ? row.Utf8(3) : std::string_view(department);
        const Texts texts{row.Utf8(0), row.Utf8(2), row.Utf8(1), shown};
        rows.push_back({PackedTexts(texts), SelectedReceiver::rcvUser});
    };
    switch (group.lKind) {
    case PickerGroup::grpAllContacts:
        ForEachRow(strGrouped, {}, takeGrouped);
        ForEachRow(strUngrouped, {}, takeUngrouped);
        break;
    case PickerGroup::grpGroup:
        ForEachRow(QString(strGrouped) + "  and Group_Name=?", EscapeText(group.strName), takeGrouped);
        break;
    case PickerGroup::grpAllUsers:
        ForEachRow(strUsers, {}, takeUser);
        break;
    case PickerGroup::grpDepartment:
        ForEachRow(strDepartment, group.strKey, takeUser);
        break;
    }
    return rows;
}

QString ContactTable::Cell(int row, int column) const
{
    return TextOf(aRows[static_cast<std::size_t>(row)], column);
}

/// Names and numbers as they will stand in the recipients' text: contacts keep "(" of them as "<".
QString ContactTable::TextOf(const Row &row, int column)
{
    const QString text = UnescapeText(row.texts.Text(column));
    return column == colContact || column == colFax ? CleanReceiverText(text) : text;
}

QString ContactTable::Caption(int column) const
{
    const std::array<QString, colCount> captions{{{},
                                                  HasUsers() ? Tr("User") : Tr("Contact"),
                                                  HasUsers() ? Tr("User Name") : Tr("Fax"),
                                                  Tr("Group/Department"),
                                                  Tr("Phone"),
                                                  Tr("Mobile"),
                                                  Tr("E-mail"),
                                                  Tr("IM")}};
    return captions.at(static_cast<std::size_t>(column));
}

SelectedReceiver ContactTable::Receiver(int row) const
{
    return {Cell(row, colContact), Cell(row, colFax), Type(row), Cell(row, colID)};
}

// Search

void ContactTable::FillSearch() const
{
    for (const Row &row : aRows) {
        std::array<std::string, colCount> changed;
        Texts texts;
        for (std::size_t column = colContact; column < colCount; ++column) {
            texts.at(column) = row.texts.At(static_cast<int>(column));
            if (!IsShownOtherwise(texts.at(column)))
                continue;
            changed.at(column) = TextOf(row, static_cast<int>(column)).toStdString();
            texts.at(column) = changed.at(column);
        }
        search.AddRow(std::span(texts).subspan(colContact));
    }
}

int ContactTable::Find(const QString &text) const
{
    if (search.RowCount() < RowCount())
        FillSearch();
    return search.Find(text);
}

// Order

std::vector<int> ContactTable::SortBy(int column)
{
    bDescending = lSortColumn == column && !bDescending;
    lSortColumn = column;
    return Sort();
}

/// The new row of each row; empty without an order.
std::vector<int> ContactTable::Sort()
{
    if (lSortColumn < 0)
        return {};
    const WordOrder words;
    const std::vector<std::size_t> order =
        OrderRows(aRows, bDescending, [&](const Row &row) { return words.KeyOf(TextOf(row, lSortColumn)); });
    std::vector<int> newRows(aRows.size());
    Rows sorted;
    sorted.reserve(aRows.size());
    for (const std::size_t place : order) {
        newRows[place] = static_cast<int>(sorted.size());
        sorted.push_back(std::move(aRows[place]));
    }
    aRows = std::move(sorted);
    search.Clear();
    return newRows;
}
