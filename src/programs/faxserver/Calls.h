#pragma once

#include <QList>
#include <QString>

#include <optional>

class Database;

/// What is to be done for one recipient of a sent fax.
struct Call
{
    /// Kinds of recipients, in the order in which the state of a fax tells them.
    enum Kind { toUser, toTyped, toContact };

    QString strFax;
    int lPlace = 0;
    int lKind = toTyped;
    QString strTarget; ///< id of the account or contact, or the text as it was typed
    QString strNumber; ///< to dial
    int lStatus = 1;   ///< a `FaxKind`; `kindSending` until it has come to an end
    int lAttempts = 0;
    int lPagesSent = 0;
    int lRound = 0;    ///< how many times its owner has had it sent again
    int lResends = 0;  ///< attempts allowed behind the first
    int lInterval = 0; ///< minutes between attempts
    int lLevel = 1;    ///< of the fax
    qint64 lDue = 0;   ///< milliseconds since 1970 (UTC): not before
    int lPages = 0;    ///< of the fax; read only
};

/// The calls of all sent faxes, as rows in the database. Raises `ServerError`, as all routines do.
class Calls
{
public:
    /// The faxes must be in the database already.
    explicit Calls(Database &database);

    void Insert(const Call &call);
    /// Stores all that can change: status, attempts, pages, round and due time.
    void Update(const Call &call);
    /// In the order of the places.
    QList<Call> OfFax(const QString &fax) const;
    /// The state of the whole fax: under way while a call is; otherwise what the first that failed says.
    int Outcome(const QString &fax) const;
    /// Those that need a line: urgent faxes first, then the ones that have waited longest.
    QList<Call> ToDial(qint64 now, int most) const;
    /// Faxes with a recipient who has an account and may get it by now.
    QStringList ToDeliver(qint64 now) const;
    /// When the next one is due behind `now`.
    std::optional<qint64> NextDue(qint64 now) const;

private:
    QList<Call> Select(const QByteArray &table, const QByteArray &condition,
                       const QVariantList &values) const;

    Database &objDatabase;
};
