#include "compose/ForwardReceivers.h"

#include "compose/AddressLookup.h"
#include "core/Utilities.h"

namespace {

constexpr AddressLookup::Query contactByNameAndFax{"Select Name,Fax,ID,Fax,Name,isPublic From Contacts", 2};
constexpr AddressLookup::Query contactByFax{"Select Fax,ID,Fax,Name,isPublic from Contacts", 1};
constexpr AddressLookup::Query contactByID{"Select ID,ID,Fax,Name,isPublic from Contacts", 1};
constexpr AddressLookup::Query userByLogin{"Select LoginName,UserName,ID,LoginName from UserList", 1};
constexpr AddressLookup::Query userByID{"Select ID,UserName,ID,LoginName from UserList", 1};

/// Fills the columns one recipient after the other. Texts stay as they are stored.
class Resolver
{
public:
    void Want(const SelectedReceiver &receiver)
    {
        if (receiver.lType == SelectedReceiver::rcvUser)
            byLogin.Want({EscapeText(receiver.strNumber)});
        else
            byNameAndFax.Want(NameAndFax(receiver));
    }

    /// After all have been wanted.
    void WantOtherwise(const SelectedReceiver &receiver)
    {
        if (receiver.lType == SelectedReceiver::rcvUser) {
            usersByID.Want({receiver.strID});
        } else if (!byNameAndFax.Find(NameAndFax(receiver))) {
            byID.Want({receiver.strID});
            byFax.Want({EscapeText(receiver.strNumber)});
        }
    }

    void Add(const SelectedReceiver &receiver)
    {
        if (receiver.lType == SelectedReceiver::rcvUser)
            AddUser(receiver);
        else
            AddContact(receiver);
    }

    void AddNumbers(const QString &others)
    {
        for (const QString &part : CleanReceiverText(others).split(',')) { // ";" has become ","
            const QString number = EscapeText(part.trimmed());
            if (!number.isEmpty())
                columns.strTemp += '"' + number + "\"<" + number + ">;";
        }
    }

    ForwardReceivers Take()
    {
        // Private contacts stand in it twice, as they always have: the list of the others is shown whole.
        columns.strDisplay += columns.strTemp;
        return columns;
    }

private:
    static AddressLookup::Keys NameAndFax(const SelectedReceiver &receiver)
    {
        return {EscapeText(receiver.strName), EscapeText(receiver.strNumber)};
    }

    /// By its id where the table has other brackets than the picker: the number alone may be another's.
    std::optional<QStringList> FindContact(const SelectedReceiver &receiver)
    {
        auto row = byNameAndFax.Find(NameAndFax(receiver));
        if (!row && !receiver.strID.isEmpty())
            row = byID.Find({receiver.strID});
        return row ? row : byFax.Find({EscapeText(receiver.strNumber)});
    }

    void AddContact(const SelectedReceiver &receiver)
    {
        const auto row = FindContact(receiver);
        if (!row)
            return;
        const QString fax = CleanReceiverText(row->at(1)), name = CleanReceiverText(row->at(2));
        if (ReadsAsTrue(row->at(3)))
            columns.strOuter += EscapeText(row->at(0)) + ';';
        else
            columns.strTemp += EscapeText('"' + name + "\"<" + fax + ">;");
        columns.strDisplay += EscapeText('"' + (name.isEmpty() ? fax : name) + "\"<" + fax + ">;");
    }

    void AddUser(const SelectedReceiver &receiver)
    {
        auto row = byLogin.Find({EscapeText(receiver.strNumber)});
        if (!row && !receiver.strID.isEmpty())
            row = usersByID.Find({receiver.strID});
        if (!row)
            return;
        const QString name = CleanReceiverText(row->at(0));
        columns.strInner += EscapeText(name + '[' + row->at(1) + "];");
        columns.strDisplay += EscapeText(name + '[' + row->at(2) + "];");
    }

    AddressLookup byNameAndFax{contactByNameAndFax};
    AddressLookup byFax{contactByFax};
    AddressLookup byID{contactByID};
    AddressLookup byLogin{userByLogin};
    AddressLookup usersByID{userByID};
    ForwardReceivers columns;
};

} // namespace

ForwardReceivers ForwardReceivers::Resolve(const QList<SelectedReceiver> &chosen, const QString &others)
{
    Resolver resolver;
    for (const SelectedReceiver &receiver : chosen)
        resolver.Want(receiver);
    for (const SelectedReceiver &receiver : chosen)
        resolver.WantOtherwise(receiver);
    for (const SelectedReceiver &receiver : chosen)
        resolver.Add(receiver);
    resolver.AddNumbers(others);
    return resolver.Take();
}
