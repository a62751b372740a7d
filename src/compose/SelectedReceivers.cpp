#include "compose/SelectedReceivers.h"

#include "compose/Recipients.h"

namespace {

QString WithoutQuotes(QString text)
{
    return text.remove('"');
}

QString KeyOf(const SelectedReceiver &receiver)
{
    return WithoutQuotes(receiver.strName + QChar(2) + receiver.strNumber);
}

SelectedReceiver ToSelectedReceiver(QStringView element)
{
    const bool hasAngle = element.contains('<') || element.contains('>');
    const auto pair =
        hasAngle ? Recipients::FindPair(element, '<', '>') : Recipients::FindPair(element, '[', ']');
    if (!pair)
        return {element.trimmed().toString(), element.trimmed().toString(), SelectedReceiver::rcvUntyped, {}};
    // The name of a user keeps the quote in front, the other one stands behind the "]".
    return {pair->strLeft.trimmed().toString(),
            pair->strBetween.toString(),
            hasAngle ? SelectedReceiver::rcvContact : SelectedReceiver::rcvUser,
            {}};
}

} // namespace

QString SelectedReceiver::ShownName() const
{
    const QString name = WithoutQuotes(strName);
    return name.isEmpty() ? strNumber : name;
}

QString SelectedReceiver::ImageKeyOf(Type type)
{
    switch (type) {
    case rcvUser:
        return "imgUser";
    case rcvPublicContact:
        return "imgPublicContact";
    default:
        return "imgContact";
    }
}

QList<SelectedReceiver> ToSelectedReceivers(const QString &formatted)
{
    QList<SelectedReceiver> receivers;
    for (const QStringView element : Recipients::SplitItems(formatted))
        receivers.append(ToSelectedReceiver(element));
    return receivers;
}

QString ToReceiverText(const QList<SelectedReceiver> &receivers)
{
    QString text;
    for (const SelectedReceiver &receiver : receivers) {
        if (receiver.lType == SelectedReceiver::rcvUser)
            text += receiver.strName + '[' + receiver.strNumber + "];  ";
        else
            text += '"' + WithoutQuotes(receiver.strName) + "\"<" + receiver.strNumber + ">;  ";
    }
    return text;
}

void SelectedReceivers::Replace(const QList<SelectedReceiver> &receivers)
{
    aReceivers = receivers;
    places.clear();
    for (int place = 0; place < Count(); ++place)
        Index(place);
}

int SelectedReceivers::PlaceOf(const SelectedReceiver &receiver) const
{
    return places.value(KeyOf(receiver), -1);
}

void SelectedReceivers::Append(const SelectedReceiver &receiver)
{
    aReceivers.append(receiver);
    Index(Count() - 1);
}

void SelectedReceivers::Remove(const QList<int> &unwanted)
{
    QList<SelectedReceiver> kept;
    auto next = unwanted.begin();
    for (int place = 0; place < Count(); ++place) {
        if (next != unwanted.end() && *next == place)
            ++next;
        else
            kept.append(aReceivers.at(place));
    }
    Replace(kept);
}

/// One without a type has its name alone in the place of the two, and is never found.
void SelectedReceivers::Index(int place)
{
    const QString key = KeyOf(aReceivers.at(place));
    if (aReceivers.at(place).lType != SelectedReceiver::rcvUntyped && !places.contains(key))
        places.insert(key, place);
}
