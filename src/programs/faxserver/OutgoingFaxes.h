#pragma once

#include "Calls.h"

#include <QDateTime>
#include <QString>

struct CallEnd;
struct Fax;
struct FaxHeader;
class Store;

/// What becomes of the faxes that users send. All of it is in the store: a server that was killed goes on
/// where it was, and nobody gets a fax twice. Raises `ServerError`, as all routines do. `Insert`, `Cancel`
/// and `Resend` write several rows and belong into a `Store::Change` of their caller; the others make their
/// own.
class OutgoingFaxes
{
public:
    /// For faxes that have no values of their own.
    static constexpr int lServerResends = 3;
    static constexpr int lServerInterval = 5; ///< minutes

    explicit OutgoingFaxes(Store &store);

    /// Stores a fax and a call for each recipient, due at `due`, that has the fax's own kind so far.
    void Insert(Fax fax, const FaxHeader &header, const QDateTime &due);
    /// Takes a fax that is due at its time, or at once. Its file is in its place.
    void Accept(const Fax &fax, const FaxHeader &header);
    /// Gives copies to the recipients with an account, where they are due by now.
    void DeliverInside(qint64 now);
    /// Stores how an attempt ended; a further one is due at `again`.
    void EndCall(Call call, const CallEnd &end, qint64 again);

    /// Takes a fax that waits, is under way or has failed out of the queue for good. False for any other.
    bool Cancel(const QString &owner, const QString &id);
    /// Sends a failed fax again to those who have not got it. True for one that is still under way, too;
    /// false for one that was delivered, has no usable file, was removed, or is not the owner's.
    bool Resend(const QString &owner, const QString &id);

private:
    void DeliverCopies(const QString &id);
    bool DeliverCopy(const Fax &fax, const QString &account);
    void Settle(const QString &id, const QString &endTime);

    Store &objStore;
};
