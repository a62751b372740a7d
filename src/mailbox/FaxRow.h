#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

class clsStatement;

/// One row of the fax list.
struct FaxRow
{
    QString strID;
    QStringList aCells; ///< texts of the columns from 2 on
    bool bRead = true;
    int lLevel = 1;        ///< 0 urgent, 2 low, anything else normal
    int lFaxTable = 0;     ///< 0 `ReceiveFax`, 1 `SendFax`
    bool bHovered = false; ///< the cursor is over the icon of an unread fax
    bool bSummary = false; ///< a line of the summary: no fax, no icons

    /// Text of a column, numbered from 1.
    QString Cell(int column) const { return column == 1 ? strID : aCells.value(column - 2); }
    void SetCell(int column, const QString &text);

    QString ReadImageKey() const;
    QString LevelImageKey() const;
    /// 0xRRGGBB; nothing for the normal colour.
    std::optional<quint32> TextColor() const;
};

/// Reads the current row of a query of list mode 1 to 7. `faxTable` is the query's.
FaxRow ReadFaxRow(const clsStatement &statement, int mode, int faxTable);

/// Reads the current row of `FaxListQueries::ForFax` into the row of that fax, whose table it knows.
void ReadFaxRowAgain(FaxRow &row, const clsStatement &statement, int mode);

/// "YYYY-MM-DD HH:MM:SS" as the list shows it, "MM/DD/YYYY hh:mm:ss"; any other text as it stands.
QString FormatListTime(const QString &stored);

/// What follows the last "/" or "\".
QString GetBareName(const QString &path);
