#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// The state of one outgoing fax, as the server tells it. Texts are escaped.
struct FaxState
{
    QString FaxID;
    double Status = 0; ///< see `FaxStateReply::FindRule`
    QString EndTime;   ///< of the last attempt
    QString Detail;    ///< packed, as `ResultDetailed` holds it

    bool operator==(const FaxState &) const = default;
};

/// What a status makes of a fax's row.
struct FaxStateRule
{
    int lStatus;
    const char *strResult = nullptr; ///< null for no change
    const char *strFolder = nullptr; ///< the folder that it goes to; null while it is being sent
};

/// Cuts the reply to `GetFaxState`.
namespace FaxStateReply {

struct Cut
{
    QList<FaxState> states;
    bool bEmpty = false; ///< one line only: there is nothing in it
    bool bShort = false; ///< a line has too few fields; it and what follows is left out
};

/// A line whose id cannot be that of a fax is left out.
Cut Parse(const QByteArray &data);

/// Null for a status that is not known.
const FaxStateRule *FindRule(double status);

} // namespace FaxStateReply
