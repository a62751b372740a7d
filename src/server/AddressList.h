#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringView>

/// One list of public address data, which is replaced as a whole: its place in the database and how the
/// fields of its lines enter the statement.
struct AddressList
{
    enum Field {
        fldEscaped,   ///< an apostrophe becomes "~$@~"
        fldUnescaped, ///< the other way round; the statement then fails at an apostrophe
        fldID         ///< taken as it stands; may hold no apostrophe
    };

    const char *strDelete;
    const char *strInsert; ///< with a parameter for each field
    QList<Field> aFields;  ///< of the least fields of a line; more are left out
    bool bInTransaction;   ///< the long lists are

    static const AddressList &ContactGroups();
    static const AddressList &Contacts();
    static const AddressList &Departments();
    static const AddressList &Users();
};

/// The text of a list reply, in lines with a NUL between the fields.
class AddressListReply
{
public:
    explicit AddressListReply(const QByteArray &data);

    /// The status "OK" stands in front and the last line is complete. A list that was cut on its way is not.
    bool IsWhole() const { return bWhole; }
    /// The data lines. They live as long as this object.
    const QList<QStringView> &Lines() const { return aLines; }

private:
    QString strText;
    QList<QStringView> aLines;
    bool bWhole = false;
};
