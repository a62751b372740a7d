#include "Script.h"

#include "ServerError.h"
#include "WireText.h"

#include <QFile>
#include <QHash>
#include <QRegularExpression>

#include <algorithm>

namespace {

constexpr int lLastCommand = 20;

struct Word
{
    QString strText;
    bool bQuoted = false;
};

[[noreturn]] void Refuse(const QString &reason)
{
    throw ServerError(reason);
}

QString Unescape(const QString &text)
{
    static const QHash<QChar, QChar> plain{{'r', '\r'},     {'n', '\n'}, {'0', QChar(0)}, {'1', QChar(1)},
                                           {'2', QChar(2)}, {'"', '"'},  {'\\', '\\'}};
    QString out;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            out += text[i];
            continue;
        }
        const auto found = ++i < text.size() ? plain.constFind(text[i]) : plain.constEnd();
        if (found == plain.constEnd())
            Refuse("no such escape in a text");
        out += *found;
    }
    return out;
}

QList<Word> WordsOf(const QString &line)
{
    static const QRegularExpression word("\\G\\s*(?:\"((?:[^\"\\\\]|\\\\.)*)\"|([^\\s\"]+))");
    QList<Word> words;
    qsizetype at = 0;
    while (at < line.size()) {
        const QRegularExpressionMatch match = word.match(line, at);
        if (!match.hasMatch())
            Refuse("a text has no end");
        const bool isQuoted = match.capturedStart(1) >= 0;
        if (match.captured(2) == "#")
            break; // a comment
        words.append({isQuoted ? Unescape(match.captured(1)) : match.captured(2), isQuoted});
        at = match.capturedEnd();
    }
    return words;
}

/// Goes through the words of one rule.
class Words
{
public:
    explicit Words(const QString &line)
        : aWords(WordsOf(line))
    {
    }

    bool AtEnd() const { return lNext >= aWords.size(); }
    const Word &Peek() const { return aWords[lNext]; }

    QString Take(const QString &wanted)
    {
        if (AtEnd())
            Refuse(QString("%1 is missing").arg(wanted));
        return aWords[lNext++].strText;
    }

    qint64 TakeNumber(const QString &wanted)
    {
        bool isNumber = false;
        const qint64 number = Take(wanted).toLongLong(&isNumber);
        if (!isNumber || number < 0)
            Refuse(QString("%1 must be a number").arg(wanted));
        return number;
    }

private:
    QList<Word> aWords;
    qsizetype lNext = 0;
};

int EventOf(const QString &name)
{
    bool isNumber = false;
    const int command = name.toInt(&isNumber);
    if (name == "greeting")
        return Script::lGreeting;
    if (!isNumber || command < 1 || command > lLastCommand)
        Refuse(QString("\"%1\" is neither \"greeting\" nor a command").arg(name));
    return command;
}

ScriptAction ParseDeclare(const QString &size)
{
    const bool isRelative = size.startsWith('+') || size.startsWith('-');
    bool isNumber = false;
    ScriptAction action{isRelative ? ScriptAction::actDeclareBy : ScriptAction::actDeclare, {}, 0, 0};
    action.lFirst = size.toLongLong(&isNumber);
    if (!isNumber)
        Refuse("the declared size must be a number");
    return action;
}

ScriptAction ParseAction(Words &words)
{
    enum Shape { shapeBare, shapeText, shapeHex, shapeNumber, shapePieces, shapeDeclare };
    using Kind = ScriptAction::Kind;
    static const QHash<QString, std::pair<Kind, Shape>> known{
        {"answer", {ScriptAction::actAnswer, shapeBare}},
        {"short", {ScriptAction::actShort, shapeText}},
        {"long", {ScriptAction::actLong, shapeText}},
        {"raw", {ScriptAction::actRaw, shapeText}},
        {"hex", {ScriptAction::actRaw, shapeHex}},
        {"refuse", {ScriptAction::actRefuse, shapeNumber}},
        {"delay", {ScriptAction::actDelay, shapeNumber}},
        {"silence", {ScriptAction::actSilence, shapeBare}},
        {"close", {ScriptAction::actClose, shapeBare}},
        {"abort", {ScriptAction::actAbort, shapeBare}},
        {"pieces", {ScriptAction::actPieces, shapePieces}},
        {"close-after", {ScriptAction::actCloseAfter, shapeNumber}},
        {"stall-after", {ScriptAction::actStallAfter, shapeNumber}},
        {"declare", {ScriptAction::actDeclare, shapeDeclare}},
        {"fields", {ScriptAction::actFields, shapeNumber}},
        {"keep-id", {ScriptAction::actKeepID, shapeBare}},
    };
    const QString name = words.Take("an action");
    const auto found = known.constFind(name);
    if (found == known.constEnd())
        Refuse(QString("\"%1\" is no action").arg(name));
    const auto [kind, shape] = *found;
    switch (shape) {
    case shapeBare:
        return {kind, {}, 0, 0};
    case shapeText:
        return {kind, WireText::ToAnsi(words.Take("a text")), 0, 0};
    case shapeHex:
        return {kind, QByteArray::fromHex(words.Take("a number of bytes").toLatin1()), 0, 0};
    case shapeNumber:
        return {kind, {}, words.TakeNumber("a number"), 0};
    case shapePieces: {
        const qint64 size = words.TakeNumber("the size of a piece");
        return {kind, {}, size, words.TakeNumber("the time between pieces")};
    }
    case shapeDeclare:
        break;
    }
    return ParseDeclare(words.Take("the declared size"));
}

/// A rule that only says how an answer travels, or when, means the usual answer.
bool MeansAnAnswer(const QList<ScriptAction> &actions)
{
    for (const ScriptAction &action : actions) {
        switch (action.kind) {
        case ScriptAction::actDelay:
        case ScriptAction::actPieces:
        case ScriptAction::actCloseAfter:
        case ScriptAction::actStallAfter:
        case ScriptAction::actDeclare:
        case ScriptAction::actDeclareBy:
        case ScriptAction::actFields:
        case ScriptAction::actKeepID:
            break;
        default:
            return false;
        }
    }
    return true;
}

} // namespace

Script::Rule Script::ParseRule(const QString &line)
{
    static const QRegularExpression counted("^#(\\d+)(\\+?)$");
    Words words(line);
    if (words.Take("a rule") != "on")
        Refuse("a rule begins with \"on\"");
    Rule rule;
    rule.lEvent = EventOf(words.Take("\"greeting\" or a command"));
    if (!words.AtEnd() && words.Peek().strText == "once") {
        words.Take({});
        rule.lTo = 1;
    } else if (!words.AtEnd()) {
        const QRegularExpressionMatch match = counted.match(words.Peek().strText);
        if (match.hasMatch()) {
            words.Take({});
            rule.lFrom = match.captured(1).toInt();
            rule.lTo = match.captured(2).isEmpty() ? rule.lFrom : 0;
        }
    }
    do {
        rule.aActions.append(ParseAction(words));
    } while (!words.AtEnd());
    if (MeansAnAnswer(rule.aActions))
        rule.aActions.append(ScriptAction());
    return rule;
}

Script Script::Parse(const QString &text)
{
    Script script;
    int number = 0;
    for (const QString &line : text.split('\n')) {
        ++number;
        const QString trimmed = line.trimmed();
        if (trimmed.isEmpty() || trimmed.startsWith('#'))
            continue;
        try {
            script.aRules.append(ParseRule(trimmed));
        } catch (const ServerError &error) {
            throw ServerError(
                QString("Line %1 of the script: %2.").arg(QString::number(number), error.Description()));
        }
    }
    return script;
}

Script Script::Load(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw ServerError(QString("The script %1 cannot be read: %2.").arg(path, file.errorString()));
    return Parse(QString::fromUtf8(file.readAll()));
}

std::optional<QList<ScriptAction>> Script::Match(int event)
{
    if (aCounts.isEmpty())
        aCounts.fill(0, lLastCommand + 1);
    const int count = ++aCounts[event];
    for (const Rule &rule : aRules) {
        if (rule.lEvent == event && count >= rule.lFrom && (rule.lTo == 0 || count <= rule.lTo))
            return rule.aActions;
    }
    return std::nullopt;
}

bool Script::Has(const QList<ScriptAction> &actions, ScriptAction::Kind kind)
{
    return std::any_of(actions.begin(), actions.end(),
                       [kind](const ScriptAction &action) { return action.kind == kind; });
}
