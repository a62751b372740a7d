#include "compose/ReceiverCompletion.h"

#include "core/Globals.h"
#include "core/Utilities.h"

#include <memory>
#include <utility>

namespace {

constexpr QLatin1StringView strSeparator(";  ");

/// The statements look for what was typed: "%" and "_" stand for themselves.
constexpr char strContacts[] = "Select name,fax from Contacts where name like ? Escape '\\'";
constexpr char strUsers[] = "Select UserName,LoginName from UserList where UserName like ? Escape '\\'";
/// SQLite refuses longer patterns, which no name matches.
constexpr qsizetype lLongestPattern = 50000;

struct Match
{
    QString strName;
    QString strNumber; ///< fax number or login
};

QString PatternOf(const QString &keyword)
{
    QString pattern = EscapeText(keyword);
    pattern.replace('\\', "\\\\").replace('%', "\\%").replace('_', "\\_");
    return '%' + pattern + '%';
}

/// The first `most` rows of those whose name holds the keyword, as stored.
QList<Match> FindMatches(const char *sql, const QString &keyword, qsizetype most)
{
    QList<Match> matches;
    const QString pattern = keyword.size() < lLongestPattern ? PatternOf(keyword) : QString();
    if (pattern.isEmpty() || pattern.toUtf8().size() > lLongestPattern)
        return matches;
    const auto row = Global().objDB->SelectEx(sql);
    row->BindText(1, pattern);
    while (matches.size() < most && row->Next())
        matches.append({row->Text(0), row->Text(1)});
    return matches;
}

/// What would cut the text into other items is made harmless: contacts keep "(" of a name or number as "<".
QString LineOf(const Match &match, ContactChoice::Kind kind)
{
    return kind == ContactChoice::chContact
               ? CleanReceiverText(match.strName) + '(' + CleanReceiverText(match.strNumber) + ')'
               : CleanReceiverText(match.strName) + '[' + match.strNumber + ']';
}

/// Here alone an apostrophe of the number comes back with a blank in front, as it has always done.
QString LineOfOnlyMatch(Match match, ContactChoice::Kind kind)
{
    match.strName = UnescapeText(match.strName);
    match.strNumber.replace("~$@~", " '");
    return LineOf(match, kind);
}

} // namespace

QStringList ContactChoice::ReadLines() const
{
    QStringList lines;
    const char *sql = lKind == chContact ? strContacts : strUsers;
    for (const Match &match : FindMatches(sql, strKeyword, std::numeric_limits<qsizetype>::max()))
        lines.append(LineOf({UnescapeText(match.strName), UnescapeText(match.strNumber)}, lKind));
    return lines;
}

ReceiverCompletion ReceiverCompletion::Complete(const QString &text)
{
    ReceiverCompletion completion;
    const qsizetype head = text.lastIndexOf(';') + 1;
    const QString last = text.mid(head).trimmed();
    if (last.isEmpty())
        return completion;
    completion.strHead = UnescapeText(text.left(head));
    // A user who matches takes the place of the one contact that does.
    for (const auto kind : {ContactChoice::chContact, ContactChoice::chUser}) {
        const char *sql = kind == ContactChoice::chContact ? strContacts : strUsers;
        const QList<Match> matches = FindMatches(sql, last, 2);
        if (matches.size() == 1)
            completion.strText = completion.WithChosen(LineOfOnlyMatch(matches.first(), kind));
        if (matches.size() < 2)
            continue;
        completion.choice = ContactChoice{last, kind};
        break;
    }
    return completion;
}

QString ReceiverCompletion::WithChosen(const QString &line) const
{
    return strHead + line + strSeparator;
}

ReceiverKeys::ReceiverKeys(Ask askUser)
    : ask(std::move(askUser))
{
}

std::optional<QString> ReceiverKeys::txtReceive_KeyPress(QChar key, const QString &text) const
{
    if (key != ';')
        return std::nullopt;
    const ReceiverCompletion completion = ReceiverCompletion::Complete(text);
    const QString line = completion.choice ? ask(*completion.choice) : QString();
    return line.isEmpty() ? completion.strText : completion.WithChosen(line);
}
