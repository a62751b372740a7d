#pragma once

#include <QList>
#include <QString>

/// One recipient of a received fax and whether he has read it.
struct ReceiptState
{
    QString strReceiver; ///< as a person reads it
    QString strReadTime; ///< a date and time in the server's form; empty when he has not read it
    bool bRead = false;
};

/// The packed texts `ReceiveUser` and `ReturnReceipts` of a received fax: recipients, and for each in the
/// same order a read time, a comma and 1 or 0, every one with ";" behind it.
namespace ReceiptStates {

/// One entry a recipient; an empty list when the two texts do not hold the same number.
QList<ReceiptState> Parse(const QString &receiveUser, const QString &returnReceipts);

/// Who has read the fax first, and of two at the same time the one who stands first. Empty when nobody has,
/// and when a time is no date: then nobody knows who was first.
QString FindFirstReader(const QList<ReceiptState> &states);

} // namespace ReceiptStates
