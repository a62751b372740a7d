#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

/// One step of a scripted reply.
struct ScriptAction
{
    enum Kind {
        actAnswer,     ///< the server's own answer
        actShort,      ///< a text as a short reply
        actLong,       ///< a text as a long reply
        actRaw,        ///< bytes as they stand
        actRefuse,     ///< "ERR" and the reason `lFirst`, in the form of the command
        actDelay,      ///< waits `lFirst` milliseconds
        actSilence,    ///< nothing at all
        actClose,      ///< closes when everything has left
        actAbort,      ///< ends the connection at once
        actPieces,     ///< what follows travels in pieces of `lFirst` bytes, `lSecond` milliseconds apart
        actCloseAfter, ///< the connection ends after `lFirst` bytes of the reply
        actStallAfter, ///< what is behind `lFirst` bytes of the reply never leaves
        actDeclare,    ///< the size `lFirst` is told instead of the real one
        actDeclareBy,  ///< the size told is wrong by `lFirst`
        actFields,     ///< records of the answer end after `lFirst` fields
        actKeepID      ///< the fax that comes keeps the id that its sender gave it
    };

    Kind kind = actAnswer;
    QByteArray abText;
    qint64 lFirst = 0;
    qint64 lSecond = 0;
};

/// What shall happen instead of the usual answers; the README beside this tells the form of a line.
class Script
{
public:
    /// Raises `ServerError` with the line's number for anything that is no rule.
    static Script Load(const QString &path);
    static Script Parse(const QString &text);

    static constexpr int lGreeting = 0;

    /// Counts one more command (or greeting), and gives the steps of the first rule that takes it.
    std::optional<QList<ScriptAction>> Match(int event);
    static bool Has(const QList<ScriptAction> &actions, ScriptAction::Kind kind);

private:
    struct Rule
    {
        int lEvent = 0;
        int lFrom = 1; ///< first and last occurrence
        int lTo = 0;   ///< 0 for no end
        QList<ScriptAction> aActions;
    };

    static Rule ParseRule(const QString &line);

    QList<Rule> aRules;
    QList<int> aCounts; ///< occurrences per event
};
