#include "Records.h"

#include "Accounts.h"
#include "WireText.h"

#include <QStringList>

using namespace WireText;

namespace {

/// Each id between the two characters, with ";" behind it.
QByteArray Marked(const QString &ids, const QString &front, const QString &back)
{
    QString marked;
    for (const QString &id : ids.split(';', Qt::SkipEmptyParts))
        marked += front + id + back + ';';
    return ToAnsi(marked);
}

} // namespace

QByteArray Records::OfFax(const Fax &fax)
{
    return Record({Field(fax.strSender), Field(fax.strTitle), ToAnsi(fax.strID) + ".tif",
                   QByteArray::number(fax.lPages), QByteArray::number(fax.lLevel), Field(fax.strRemark),
                   ToAnsi(fax.strTime), ToAnsi(fax.strContacts), Marked(fax.strUsers, "U", {}),
                   Field(fax.strTyped), ToAnsi(fax.strResender), QByteArray(), QByteArray(),
                   ToAnsi(fax.strReceipts)});
}

QByteArray Records::OfState(const Fax &fax, const QList<Call> &calls)
{
    QByteArray statuses;
    for (const Call &call : calls)
        statuses += QByteArray::number(call.lStatus) + ';';
    return Record({ToAnsi(fax.strID), QByteArray::number(fax.lKind), ToAnsi(fax.strEndTime),
                   Marked(fax.strUsers, "[", "]"), statuses, Field(fax.strTyped), ToAnsi(fax.strContacts)});
}

QByteArray Records::OfUnknownState(const QString &id)
{
    return Record({Field(id), QByteArray::number(kindRemoved), {}, {}, {}, {}, {}});
}

QByteArray Records::OfAccount(const Account &account)
{
    return Record({ToAnsi(account.strID), Field(account.strLogin), Field(account.strName),
                   ToAnsi(account.strDepartment)});
}

std::optional<HistoryRange> Records::RangeOf(const QString &request)
{
    const QStringList parts = request.split(QChar(0));
    if (parts.size() != 2)
        return std::nullopt;
    const QStringList dates = parts[0].split(';');
    const QStringList flags = parts[1].split(';');
    if (dates.size() != 2 || flags.size() < 4 || !QDate::fromString(dates[0], Qt::ISODate).isValid() ||
        !QDate::fromString(dates[1], Qt::ISODate).isValid())
        return std::nullopt;
    return HistoryRange{dates[0],        dates[1],        flags[0] == "1",
                        flags[1] == "1", flags[2] == "1", flags[3] == "1"};
}
