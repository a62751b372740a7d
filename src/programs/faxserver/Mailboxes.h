#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

#include <optional>

class Database;

/// States of a sent fax and of its calls, and the mark of a received one in a history.
enum FaxKind {
    kindSending = 1,
    kindFailed = 2,
    kindUnchanged = 3, ///< told for `kindSending` when nothing has moved; of a call: the operator ended it
    kindSent = 4,
    kindBarred = 5,
    kindBadFile = 6,
    kindUnheardOf = 7, ///< clients do not know it
    kindReceived = 9,
    kindNoneLeft = 10, ///< no attempt is left
    kindRemoved = 11
};

/// One fax of one account. Texts are as people write them; lists have ";" behind each entry.
struct Fax
{
    QString strID;
    QString strOwner; ///< id of the account
    int lKind = kindReceived;
    bool bWaiting = false; ///< not yet taken by its owner
    QString strFile;       ///< name in the folder of the fax files; copies of a fax share one
    qint64 lSize = 0;      ///< bytes of the file
    QString strSender;
    QString strTitle;
    int lPages = 1;
    int lLevel = 1; ///< 0 high, 1 normal, 2 low
    QString strRemark;
    QString strTime;     ///< YYYY-MM-DD HH:MM:SS, as are the other times
    QString strContacts; ///< ids of public contacts among the recipients
    QString strUsers;    ///< ids of accounts among the recipients
    QString strTyped;    ///< recipients typed in by hand, as they stand
    QString strResender; ///< id of the account that forwarded it
    QString strReceipts; ///< per recipient a read time, a comma and 1 or 0
    QString strEndTime;  ///< when the last attempt to send it ended
    /// The same for all copies of a received fax that several accounts have got: who reads his copy shows in
    /// the receipts of all. Empty for the only one.
    QString strDistribution;
};

struct HistoryRange
{
    QString strFrom; ///< YYYY-MM-DD, as is the end, which is included
    QString strTo;
    bool bSending = false;
    bool bSent = false;
    bool bFailed = false;
    bool bReceived = false;
};

/// The faxes of all accounts: rows in the database, files in a folder beside it.
class Mailboxes
{
public:
    /// Makes the folder when missing. Raises `ServerError`, as all routines do.
    Mailboxes(Database &database, const QString &filesFolder);

    QString PathOf(const QString &file) const;
    void Insert(const Fax &fax);
    std::optional<Fax> Find(const QString &id) const;
    std::optional<Fax> Find(const QString &owner, const QString &id) const;
    /// Oldest first.
    QList<Fax> Waiting(const QString &owner) const;
    QList<Fax> History(const QString &owner, const HistoryRange &range) const;
    /// Nothing of these waits any more.
    void Acknowledge(const QString &owner, const QStringList &ids);
    /// Turns the receipt entry of the owner into "read at this time", in all copies of the fax, if there is
    /// one that is still unread.
    void MarkRead(const QString &owner, const QString &id, const QString &time);

    void SetState(const QString &id, int kind, const QString &endTime);

private:
    void AddDistribution();
    QList<Fax> Select(const QByteArray &condition, const QVariantList &values) const;

    Database &objDatabase;
    QString strFolder;
};
