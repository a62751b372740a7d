#include "compose/Recipients.h"

#include "compose/AddressLookup.h"
#include "core/Utilities.h"

#include <algorithm>

namespace {

constexpr AddressLookup::Query contactByName{"Select Name,Fax from Contacts Where Name=?",
                                             "Select Name,Name,Fax from Contacts", 1};
constexpr AddressLookup::Query publicContact{"Select ID From Contacts Where isPublic=1 and  Name=? and Fax=?",
                                             "Select Name,Fax,ID From Contacts Where isPublic=1", 2};
constexpr AddressLookup::Query namelessContact{
    "Select ID From Contacts Where isPublic=1 and   (Name='' and  Fax=?) ",
    "Select Fax,ID From Contacts Where isPublic=1 and Name=''", 1};
constexpr AddressLookup::Query userByLogin{"Select ID,UserName from UserList Where LoginName=?",
                                           "Select LoginName,ID,UserName from UserList", 1};

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

QString FormatItem(QStringView element, AddressLookup &contacts)
{
    const QString item = element.toString().remove('"').trimmed();
    if (item.isEmpty())
        return {};
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
    /// Empty for none. The name still bears the quotes of the normal form, so that a contact is found only by
    /// a name with quotes: faxes have always been stored so, and such a recipient travels with its number.
    QString FindID(QStringView name, QStringView fax)
    {
        const QString stored = EscapeText(fax.toString());
        auto row = contacts.Find({EscapeText(name.toString()), stored});
        if (!row && name == fax)
            row = nameless.Find({stored});
        return row ? row->at(0) : QString();
    }

private:
    AddressLookup contacts{publicContact};
    AddressLookup nameless{namelessContact};
};

/// The text of an item that is neither a public contact nor a user; empty otherwise.
QString FormatTempItem(QStringView item, PublicContacts &contacts)
{
    const Brackets brackets(item);
    if (brackets.lLess == 1 && brackets.lGreater == 1) {
        const auto pair = Recipients::FindPair(item, '<', '>');
        if (!pair || !contacts.FindID(pair->strLeft.trimmed(), pair->strBetween).isEmpty())
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
    AddressLookup contacts(contactByName);
    QString formatted;
    for (const QStringView element : SplitItems(receivers))
        formatted += FormatItem(element, contacts);
    return formatted;
}

QString Recipients::GetOuterReceiver(const QString &receivers)
{
    const QString text = WithoutLineBreaks(receivers);
    PublicContacts contacts;
    QString ids;
    for (const QStringView item : SplitItems(text)) {
        const auto pair = FindPair(item, '<', '>');
        const QString id = pair ? contacts.FindID(pair->strLeft.trimmed(), pair->strBetween) : QString();
        if (!id.isEmpty())
            ids += EscapeText(id) + ';';
    }
    return ids;
}

QString Recipients::GetInnerReceiver(const QString &receivers)
{
    const QString text = WithoutLineBreaks(receivers);
    AddressLookup users(userByLogin);
    QString names;
    for (const QStringView item : SplitItems(text)) {
        const auto pair = FindPair(item, '[', ']');
        const auto row = pair ? users.Find({EscapeText(pair->strBetween.toString())}) : std::nullopt;
        if (row)
            names += EscapeText(row->at(1) + '[' + row->at(0) + "];");
    }
    return names;
}

QString Recipients::GetTempReceiver(const QString &receivers)
{
    const QString text = WithoutLineBreaks(receivers);
    PublicContacts contacts;
    QString others;
    for (const QStringView item : SplitItems(text))
        others += FormatTempItem(WithoutLeadingBlanks(item), contacts);
    return others;
}
