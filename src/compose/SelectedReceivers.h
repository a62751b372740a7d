#pragma once

#include <QHash>
#include <QList>
#include <QString>

/// One recipient that was chosen in the picker, or that stood in the text before.
struct SelectedReceiver
{
    enum Type { rcvUntyped = -1, rcvContact = 0, rcvPublicContact = 1, rcvUser = 2 };

    QString strName;
    QString strNumber; ///< fax number, or the login of a user
    Type lType = rcvUntyped;
    QString strID; ///< of its row; empty for one from the text

    /// The name without quotes, or the number of one without a name.
    QString ShownName() const;
    static QString ImageKeyOf(Type type);
};

/// The recipients of a text in its normal form (see `Recipients::FormatReceiverText`).
QList<SelectedReceiver> ToSelectedReceivers(const QString &formatted);
/// The text of recipients, `"Name"<fax>;  ` or `Name[login];  ` for each.
QString ToReceiverText(const QList<SelectedReceiver> &receivers);

/// The recipients on the right side of the picker, in their order.
class SelectedReceivers final
{
public:
    int Count() const { return static_cast<int>(aReceivers.size()); }
    const SelectedReceiver &At(int place) const { return aReceivers.at(place); }
    const QList<SelectedReceiver> &All() const { return aReceivers; }

    void Replace(const QList<SelectedReceiver> &receivers);
    /// The place of the first one with that name and number; -1 for none. Quotes do not count.
    int PlaceOf(const SelectedReceiver &receiver) const;
    void Append(const SelectedReceiver &receiver);
    /// Takes out those at the places, each named once and in their order.
    void Remove(const QList<int> &unwanted);

private:
    void Index(int place);

    QList<SelectedReceiver> aReceivers;
    QHash<QString, int> places; ///< by name and number
};
