#pragma once

#include <QList>
#include <QString>
#include <QStringView>

#include <optional>

/// The recipients of a fax, as the user writes them and as the fax keeps them. Items are separated by ";":
/// `"Name"<fax>` is a contact or a number, `Name[login]` a user of the server, and any other text a name that
/// is looked up, or a number. All raise the errors of the database.
namespace Recipients {

/// The text in its normal form, `"Name"<fax>;` or `"Name[login]";` for each item: what the fax shows as its
/// recipients, and what the other routines read. An item that mixes the forms is left out.
QString FormatReceiverText(const QString &receivers);

/// "ID;" of each public contact. This and the next are in the form in which they stand in the table: they go
/// into a statement as they are.
QString GetOuterReceiver(const QString &receivers);
/// "UserName[ID];" of each user of the server; an unknown login is left out.
QString GetInnerReceiver(const QString &receivers);
/// `"Name"<fax>;` of all others.
QString GetTempReceiver(const QString &receivers);

/// An item cut at a pair of brackets.
struct Pair
{
    QStringView strLeft;
    QStringView strBetween;
};
/// Nothing unless the first `open` of the item stands before its first `close`.
std::optional<Pair> FindPair(QStringView item, QChar open, QChar close);

/// The items of a text, the one behind the last ";" too unless it is blank.
QList<QStringView> SplitItems(const QString &receivers);

} // namespace Recipients
