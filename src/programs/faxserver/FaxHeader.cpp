#include "FaxHeader.h"

#include "ServerError.h"
#include "ServerTime.h"
#include "WireText.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

enum Field {
    fldContacts,
    fldTitle,
    fldFileName,
    fldPages,
    fldLevel,
    fldRemark,
    fldTime,
    fldPeople,
    fldResends,
    fldInterval,
    fldSender,
    lFieldCount
};

constexpr int lMostResends = 1000;
constexpr int lMostMinutes = 1000;

QString Plain(QString text)
{
    return text.replace("~$@~", "'");
}

QStringList ContactsOf(const QString &field)
{
    static const QRegularExpression id("^[^'\\x00-\\x1f]{1,64}$");
    QStringList contacts = field.split(';', Qt::SkipEmptyParts);
    for (const QString &item : std::as_const(contacts)) {
        if (!id.match(item).hasMatch())
            throw ServerError("a recipient is no id of a contact");
    }
    contacts.removeDuplicates();
    return contacts;
}

/// On one line and without what separates entries.
QString OneEntry(QString text)
{
    for (QChar &letter : text) {
        if (letter.category() == QChar::Other_Control)
            letter = ' ';
    }
    return text.replace(';', ',').trimmed();
}

/// Splits the recipients "Name[id];" and `"Name"<number>;`, which travel in one field. A name may hold a ";":
/// a part without brackets is the front of the next.
void SplitPeople(const QString &people, FaxHeader &header)
{
    static const QRegularExpression user("\\[([^][<>'\\x00-\\x1f]{1,64})\\]$");
    QString front;
    for (const QString &part : people.split(';', Qt::SkipEmptyParts)) {
        const QRegularExpressionMatch match = user.match(part);
        const bool isTyped = part.contains('<') && (part.endsWith('>') || part.endsWith(')'));
        if (match.hasMatch()) {
            header.aUsers.append(match.captured(1));
        } else if (isTyped) {
            header.aTyped.append(OneEntry(front + part));
        } else {
            front += part + ';';
            continue;
        }
        front.clear();
    }
    front.chop(1);
    if (!front.trimmed().isEmpty())
        header.aTyped.append(OneEntry(front));
    header.aUsers.removeDuplicates();
}

QDateTime TimeOf(const QString &field)
{
    QDateTime time = QDateTime::fromString(field, ServerTime::strForm);
    if (!field.isEmpty() && !time.isValid())
        throw ServerError("the time to send it is none");
    return time;
}

} // namespace

FaxHeader FaxHeader::Parse(const QByteArray &body)
{
    const QStringList fields = WireText::FromAnsi(body).split(QChar(0));
    if (fields.size() != lFieldCount || body.size() > lMostBytes)
        throw ServerError(QString("there are %1 fields in %2 bytes")
                              .arg(QString::number(fields.size()), QString::number(body.size())));
    FaxHeader header;
    header.strTitle = Plain(fields[fldTitle]);
    header.strFileName = fields[fldFileName];
    header.lLevel = std::clamp(fields[fldLevel].toInt(), 0, 2);
    header.strRemark = Plain(fields[fldRemark]);
    header.timWanted = TimeOf(fields[fldTime]);
    header.aContacts = ContactsOf(fields[fldContacts]);
    SplitPeople(Plain(fields[fldPeople]), header);
    header.lResends = std::clamp(fields[fldResends].toInt(), 0, lMostResends);
    header.lInterval = std::clamp(fields[fldInterval].toInt(), 0, lMostMinutes);
    header.strOriginalSender = Plain(fields[fldSender]);
    if (header.aContacts.size() + header.aUsers.size() + header.aTyped.size() > lMostRecipients)
        throw ServerError("there are too many recipients");
    return header;
}

QString FaxHeader::NumberOf(const QString &typed)
{
    const qsizetype open = typed.lastIndexOf('<');
    return open < 0 ? typed : typed.mid(open + 1, typed.size() - open - 2);
}
