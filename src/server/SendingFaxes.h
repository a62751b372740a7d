#pragma once

#include "server/FaxStateReply.h"

#include <QMultiHash>
#include <QStringList>

/// The faxes that stand in "Sending", as they were when the server was asked for their state.
class SendingFaxes
{
public:
    /// Reads them from the table. Raises the errors of the database.
    static SendingFaxes Read();

    const QStringList &Ids() const { return aIds; }

    struct Outcome
    {
        QStringList aChanged; ///< their rows were written
        QStringList aUnknown; ///< of a status that is not known: they leave the list, but not the folder
    };
    /// Writes what has become of them, in one transaction. A statement that fails is passed over, and so is
    /// the state of a fax that was not asked for. One that the user has taken out of "Sending" meanwhile
    /// stays where it is and only learns its result. Raises the errors of the transaction.
    Outcome Store(const QList<FaxState> &states) const;

private:
    struct Row
    {
        QString strRowID;
        QString ResultDetailed;
    };
    class Writer;

    QStringList WriteState(const FaxState &state, const FaxStateRule &rule, Writer &writer) const;

    QStringList aIds;
    QMultiHash<QString, Row> rows; ///< nothing keeps two rows from having one id
};
