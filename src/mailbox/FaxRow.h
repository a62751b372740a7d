#pragma once

#include "mailbox/PackedTexts.h"

#include <QString>

#include <optional>

class clsStatement;

/// One row of the fax list. It keeps the texts as they are stored; those of the cells are made when they are
/// asked for, since few of a long list's rows are ever shown.
class FaxRow
{
public:
    /// Reads the current row of a query of list mode 1 to 7. `faxTable` is the query's: 0 `ReceiveFax`, 1
    /// `SendFax`.
    FaxRow(const clsStatement &statement, int mode, int faxTable);
    /// Reads the current row of `FaxListQueries::ForFax`, which does not tell the first reader again.
    void ReadAgain(const clsStatement &statement, int mode);
    /// A line of the summary: no fax, no icons.
    FaxRow(const QString &label, long unread, long total);

    QString ID() const { return texts.Text(0); }
    /// The id as UTF-8, valid as long as the row.
    std::string_view StoredID() const { return texts.At(0); }
    /// Tells most ids apart without a look at the texts: of an id as UTF-8, and of the row's.
    static quint32 HashOf(std::string_view id);
    quint32 IdHash() const { return lIdHash; }
    bool IsSummary() const { return lMode == 0; }
    /// 0 `ReceiveFax`, 1 `SendFax`.
    int FaxTable() const { return lFaxTable; }
    /// 0 urgent, 2 low, 1 normal.
    int Level() const { return lLevel; }
    /// As it was read: its stored state was 0.
    bool IsStoredUnread() const { return bStoredUnread; }
    /// Text of a column, numbered from 1.
    QString Cell(int column) const;

    QString ReadImageKey() const;
    QString LevelImageKey() const;
    /// 0xRRGGBB; nothing for the normal colour.
    std::optional<quint32> TextColor() const;

    bool bRead = true;
    bool bHovered = false; ///< the cursor is over the icon of an unread fax

private:
    void Read(const clsStatement &statement, const PackedTexts &before);

    bool bStoredUnread = false;
    quint8 lMode : 4 = 0;
    quint8 lLevel : 2 = 1;
    quint8 lFaxTable : 2 = 0;
    quint32 lIdHash = 0;
    PackedTexts texts; ///< the id, then one text for each cell that has one
};

/// "YYYY-MM-DD HH:MM:SS" as the list shows it, "MM/DD/YYYY hh:mm:ss"; any other text as it stands.
QString FormatListTime(const QString &stored);
