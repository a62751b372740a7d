#pragma once

#include "compose/RowSearch.h"
#include "compose/SelectedReceivers.h"
#include "core/RowOrder.h"
#include "mailbox/PackedTexts.h"

#include <QStringList>

#include <vector>

class clsStatement;

/// What the picker's grid can show.
struct PickerGroup
{
    enum Kind { grpAllContacts, grpGroup, grpAllUsers, grpDepartment };

    /// All groups in the order of `cmbGroup`. Raises the errors of the database.
    static QList<PickerGroup> ReadAll();
    bool HasUsers() const { return lKind == grpAllUsers || lKind == grpDepartment; }
    /// As `cmbGroup` shows it: what belongs to one of the two wholes stands below it, indented.
    QString ShownText() const;

    Kind lKind = grpAllContacts;
    QString strName;
    QString strKey; ///< id of a department
};

/// The contacts or users that the picker offers. Rows and columns count from 0.
class ContactTable final
{
public:
    /// Of a user, `colContact` holds the name and `colFax` the login.
    enum Column { colID, colContact, colFax, colGroup, colPhone, colMobile, colMail, colIm, colCount };

    /// Replaces the rows; on a raised error of the database the table stays as it was.
    void Load(const PickerGroup &newGroup);

    int RowCount() const { return static_cast<int>(aRows.size()); }
    /// As it is shown.
    QString Cell(int row, int column) const;
    SelectedReceiver::Type Type(int row) const { return aRows[static_cast<std::size_t>(row)].lType; }
    QString Caption(int column) const;
    bool HasUsers() const { return group.HasUsers(); }
    /// The row as a recipient.
    SelectedReceiver Receiver(int row) const;

    /// The first row that holds the text, in any letter case, in one cell or across some; -1 for none.
    int Find(const QString &text) const;

    /// Sorts by a column: ascending at first, then the other way round at each call. The new row of each row.
    std::vector<int> SortBy(int column);
    int SortColumn() const { return lSortColumn; } ///< -1 while the rows stand as they were loaded
    bool IsDescending() const { return bDescending; }

private:
    struct Row
    {
        PackedTexts texts; ///< as stored, by column
        SelectedReceiver::Type lType;
    };
    using Rows = std::vector<Row>;

    static Rows Read(const PickerGroup &group);
    static Row ReadContact(const clsStatement &statement, bool hasGroup);
    static QString TextOf(const Row &row, int column);
    std::vector<int> Sort();
    void FillSearch() const;

    PickerGroup group;
    Rows aRows;
    int lSortColumn = -1;
    bool bDescending = false;
    mutable RowSearch search; ///< filled by the first search
};
