#include "compose/Recipients.h"

#include "compose/AddressLookup.h"
#include "core/Utilities.h"

#include <algorithm>

namespace {

constexpr AddressLookup::Query contactByName{"Select Name,Name,Fax from Contacts", 1};
constexpr AddressLookup::Query publicContact{"Select Name,Fax,ID From Contacts Where isPublic=1", 2};
constexpr AddressLookup::Query namelessContact{"Select Fax,ID From Contacts Where isPublic=1 and Name=''", 1};
constexpr AddressLookup::Query userByLogin{"Select LoginName,ID,UserName from UserList", 1};

/// How many of each bracket an item holds: none, one, or more.
struct Brackets
{
    explicit Brackets(QStringView item)
        : lLess(item.count(u'<'))
        , lGreater(item.count(u'>'))
        , lOpen(item.count(u'['))
        , lClose(item.count(u']'))
    {
    }

    bool AreNone() const { return !HasAngle() && !HasSquare(); }
    bool AreAngle() const { return lLess == 1 && lGreater == 1 && !HasSquare(); }
    bool AreSquare() const { return lOpen == 1 && lClose == 1 && !HasAngle(); }
    bool HasAngle() const { return lLess + lGreater > 0; }
    bool HasSquare() const { return lOpen + lClose > 0; }

    qsizetype lLess, lGreater, lOpen, lClose;
};

QString Quoted(QStringView name)
{
    return '"' + name.toString() + '"';
}

/// A contact's name or number without what would cut the text into other items. Contacts keep "(" of a name
/// or number as "<".
QString FromRow(const QString &stored)
{
    return CleanReceiverText(UnescapeText(stored));
}

QString FormatPlainItem(const QString &item, AddressLookup &contacts)
{
    if (const auto row = contacts.Find({EscapeText(item)}))
        return Quoted(FromRow(row->at(0))) + '<' + FromRow(row->at(1)) + ">;";
    return Quoted(item) + '<' + item + ">;";
}

/// The item is trimmed and holds no quotes.
QString FormatItem(const QString &item, AddressLookup &contacts)
{
    const Brackets brackets(item);
    if (brackets.AreNone())
        return FormatPlainItem(item, contacts);
    if (brackets.AreAngle()) { // a blank before the "<" stays inside the quotes
        const qsizetype less = item.indexOf('<');
        return Quoted(QStringView(item).left(less)) + item.mid(less) + ';';
    }
    return brackets.AreSquare() ? Quoted(item) + ';' : QString();
}

QString WithoutLineBreaks(const QString &receivers)
{
    QString text = receivers;
    return text.removeIf([](QChar character) { return character == '\r' || character == '\n'; });
}

/// The public contacts by name and number.
class PublicContacts
{
public:
    void Want(const Recipients::Pair &item)
    {
        contacts.Want(KeysOf(item));
        if (IsNumberAlone(item))
            nameless.Want({NumberOf(item)});
    }

    /// Empty for none. The name still bears the quotes of the normal form, so that a contact is found only by
    /// a name with quotes: faxes have always been stored so, and such a recipient travels with its number.
    QString FindID(const Recipients::Pair &item)
    {
        auto row = contacts.Find(KeysOf(item));
        if (!row && IsNumberAlone(item))
            row = nameless.Find({NumberOf(item)});
        return row ? row->at(0) : QString();
    }

private:
    static bool IsNumberAlone(const Recipients::Pair &item)
    {
        return item.strLeft.trimmed() == item.strBetween;
    }
    static QString NumberOf(const Recipients::Pair &item) { return EscapeText(item.strBetween.toString()); }
    static AddressLookup::Keys KeysOf(const Recipients::Pair &item)
    {
        return {EscapeText(item.strLeft.trimmed().toString()), NumberOf(item)};
    }

    AddressLookup contacts{publicContact};
    AddressLookup nameless{namelessContact};
};

/// The pairs of those items that have one, in their order.
QList<Recipients::Pair> FindPairs(const QString &text, QChar open, QChar close)
{
    QList<Recipients::Pair> pairs;
    for (const QStringView item : Recipients::SplitItems(text)) {
        if (const auto pair = Recipients::FindPair(item, open, close))
            pairs.append(*pair);
    }
    return pairs;
}

/// The text of an item that is neither a public contact nor a user; empty otherwise.
QString FormatTempItem(QStringView item, PublicContacts &contacts)
{
    const Brackets brackets(item);
    if (brackets.lLess == 1 && brackets.lGreater == 1) {
        const auto pair = Recipients::FindPair(item, '<', '>');
        if (!pair || !contacts.FindID(*pair).isEmpty())
            return {};
        return pair->strLeft.trimmed().toString() + '<' + pair->strBetween.trimmed().toString() + ">;";
    }
    if (item.isEmpty() || !brackets.AreNone())
        return {};
    // The ")" is how such an item has always been written. The normal form has none of them.
    return item.toString() + '<' + item.trimmed().toString() + ");";
}

QStringView WithoutLeadingBlanks(QStringView text)
{
    const auto first = std::find_if_not(text.begin(), text.end(), [](QChar c) { return c.isSpace(); });
    return text.mid(first - text.begin());
}

} // namespace

std::optional<Recipients::Pair> Recipients::FindPair(QStringView item, QChar open, QChar close)
{
    const qsizetype first = item.indexOf(open), last = item.indexOf(close);
    if (first < 0 || last < first)
        return std::nullopt;
    return Pair{item.left(first), item.mid(first + 1, last - first - 1)};
}

QList<QStringView> Recipients::SplitItems(const QString &receivers)
{
    QList<QStringView> items = QStringView(receivers).split(u';');
    if (items.last().trimmed().isEmpty())
        items.removeLast();
    return items;
}

QString Recipients::FormatReceiverText(const QString &receivers)
{
    QStringList items;
    AddressLookup contacts(contactByName);
    for (const QStringView element : SplitItems(receivers)) {
        const QString item = element.toString().remove('"').trimmed();
        if (item.isEmpty())
            continue;
        if (Brackets(item).AreNone())
            contacts.Want({EscapeText(item)});
        items.append(item);
    }
    QString formatted;
    for (const QString &item : items)
        formatted += FormatItem(item, contacts);
    return formatted;
}

QString Recipients::GetOuterReceiver(const QString &receivers)
{
    const QString text = WithoutLineBreaks(receivers);
    const QList<Pair> items = FindPairs(text, '<', '>');
    PublicContacts contacts;
    for (const Pair &item : items)
        contacts.Want(item);
    QString ids;
    for (const Pair &item : items) {
        if (const QString id = contacts.FindID(item); !id.isEmpty())
            ids += EscapeText(id) + ';';
    }
    return ids;
}

QString Recipients::GetInnerReceiver(const QString &receivers)
{
    const QString text = WithoutLineBreaks(receivers);
    const QList<Pair> items = FindPairs(text, '[', ']');
    AddressLookup users(userByLogin);
    for (const Pair &item : items)
        users.Want({EscapeText(item.strBetween.toString())});
    QString names;
    for (const Pair &item : items) {
        if (const auto row = users.Find({EscapeText(item.strBetween.toString())}))
            names += EscapeText(CleanReceiverText(row->at(1)) + '[' + row->at(0) + "];");
    }
    return names;
}

QString Recipients::GetTempReceiver(const QString &receivers)
{
    const QString text = WithoutLineBreaks(receivers);
    PublicContacts contacts;
    for (const Pair &item : FindPairs(text, '<', '>'))
        contacts.Want(item);
    QString others;
    for (const QStringView item : SplitItems(text))
        others += FormatTempItem(WithoutLeadingBlanks(item), contacts);
    return others;
}
