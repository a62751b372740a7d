#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// A fax that the server offers.
struct NewFaxItem
{
    QString FaxID; ///< also the base name of its file
    int Size = 0;  ///< as listed; goes back to the server with the request
    int Kind = 0;  ///< 0 new, 9 received (history); others: the status of a sent fax

    bool IsSent() const { return Kind != 0 && Kind != 9; }
    bool operator==(const NewFaxItem &) const = default;
};

namespace FaxListReply {

/// The faxes of a list reply. A line whose id cannot be a file name is left out; a line of fewer than two
/// fields ends the list.
QList<NewFaxItem> Parse(const QByteArray &data);

} // namespace FaxListReply
