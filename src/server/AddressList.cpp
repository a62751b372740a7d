#include "server/AddressList.h"

#include "core/AnsiText.h"

const AddressList &AddressList::ContactGroups()
{
    // The name and the description enter with their apostrophes, unlike all other texts.
    static const AddressList list{
        "Delete From ContactGroup Where IsPublic=1",
        "Insert Into ContactGroup(IsPublic,Group_ID,Group_Name,Group_Detail) Values(1,?,?,?)",
        {fldEscaped, fldUnescaped, fldUnescaped},
        false};
    return list;
}

const AddressList &AddressList::Contacts()
{
    static const AddressList list{
        "Delete From Contacts Where IsPublic=1",
        "Insert Into Contacts(ID,Name,Company,Department,Duty,Fax,Phone,Mobile,Mail,IM,Group_ID,isPublic) "
        "values(?,?,?,?,?,?,?,?,?,?,?,'1')",
        {fldID, fldEscaped, fldEscaped, fldEscaped, fldEscaped, fldEscaped, fldEscaped, fldEscaped,
         fldEscaped, fldEscaped, fldID},
        true};
    return list;
}

const AddressList &AddressList::Departments()
{
    static const AddressList list{"Delete From UserDepartment",
                                  "Insert Into UserDepartment(ID,Department,Describle) values(?,?,?)",
                                  {fldID, fldEscaped, fldEscaped},
                                  false};
    return list;
}

const AddressList &AddressList::Users()
{
    static const AddressList list{"Delete From UserList",
                                  "Insert Into UserList(ID,LoginName,UserName,Department) values(?,?,?,?)",
                                  {fldID, fldEscaped, fldEscaped, fldEscaped},
                                  true};
    return list;
}

AddressListReply::AddressListReply(const QByteArray &data)
    : strText(AnsiText::FromAnsi(data))
{
    // The first line is the status, the last the empty tail.
    aLines = QStringView(strText).split(u"\r\n");
    bWhole = aLines.size() > 1 && aLines.first() == u"OK" && aLines.last().isEmpty();
    aLines.removeFirst();
    if (!aLines.isEmpty())
        aLines.removeLast();
}
