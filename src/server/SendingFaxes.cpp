#include "server/SendingFaxes.h"

#include "core/Globals.h"
#include "core/RaisedError.h"
#include "core/TransactionScope.h"
#include "core/Utilities.h"

#include <memory>

namespace {

/// By the row's own number: the table has no index of the ids, and would be read once for each fax.
constexpr char strProgress[] =
    "Update SendFax Set Result=?3, ResultDetailed=?4 Where rowid=?1 and Fax_ID=?2 and FolderID='1005' and "
    "RecyleID=''";
constexpr char strEnd[] =
    "Update SendFax Set Result=?3, ResultDetailed=?4, EndTime=?5, FolderID=Case When FolderID='1005' and "
    "RecyleID='' Then ?6 Else FolderID End Where rowid=?1 and Fax_ID=?2";

} // namespace

/// Writes rows, with one prepared statement of each kind.
class SendingFaxes::Writer
{
public:
    /// False when the statement failed.
    bool Write(const QString &rowID, const FaxState &state, const FaxStateRule &rule)
    {
        clsStatement &statement = rule.strFolder ? Prepared(end, strEnd) : Prepared(progress, strProgress);
        statement.Reset();
        statement.BindText(1, rowID);
        statement.BindText(2, state.FaxID);
        statement.BindText(3, QString::fromLatin1(rule.strResult));
        statement.BindText(4, state.Detail);
        if (rule.strFolder) {
            statement.BindText(5, state.EndTime);
            statement.BindText(6, QString::fromLatin1(rule.strFolder));
        }
        try {
            statement.Execute();
        } catch (const RaisedError &) {
            return false; // the fax stays in "Sending": the next check asks for it again
        }
        return true;
    }

private:
    static clsStatement &Prepared(std::unique_ptr<clsStatement> &statement, const char *sql)
    {
        if (!statement)
            statement = Global().objDB->SelectEx(QString::fromLatin1(sql));
        return *statement;
    }

    std::unique_ptr<clsStatement> progress;
    std::unique_ptr<clsStatement> end;
};

SendingFaxes SendingFaxes::Read()
{
    SendingFaxes faxes;
    const auto row = Global().objDB->SelectEx(
        "Select Fax_ID,rowid,ResultDetailed from SendFax Where FolderID in('1005') and RecyleID=''");
    while (row->Next()) {
        const QString id = row->Text(0);
        if (!IsSafeFaxID(id))
            continue;
        faxes.aIds.append(id);
        faxes.rows.insert(id, {row->Text(1), row->Text(2)});
    }
    return faxes;
}

SendingFaxes::Outcome SendingFaxes::Store(const QList<FaxState> &states) const
{
    Outcome outcome;
    TransactionScope transaction(*Global().objDB);
    {
        Writer writer; // its statements end before the transaction does
        for (const FaxState &state : states) {
            if (!rows.contains(state.FaxID))
                continue;
            if (const FaxStateRule *rule = FaxStateReply::FindRule(state.Status))
                outcome.aChanged += WriteState(state, *rule, writer);
            else
                outcome.aUnknown.append(state.FaxID);
        }
    }
    transaction.Commit();
    return outcome;
}

/// The fax, if a row of it was written.
QStringList SendingFaxes::WriteState(const FaxState &state, const FaxStateRule &rule, Writer &writer) const
{
    QStringList changed;
    const auto [first, last] = rows.equal_range(state.FaxID);
    for (auto row = first; row != last && rule.strResult; ++row) {
        const bool hasMoved = rule.strFolder || row->ResultDetailed != state.Detail;
        if (hasMoved && writer.Write(row->strRowID, state, rule))
            changed = QStringList(state.FaxID);
    }
    return changed;
}
