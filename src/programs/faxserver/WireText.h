#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>
#include <QStringList>

/// Numbers, texts and replies as the server writes them: 32-bit little-endian numbers, text in the ANSI code
/// page, lines with CR LF behind them, fields with a NUL between them.
namespace WireText {

/// Reasons behind "ERR". The first four are those of a refused login, which clients have texts for.
enum Refusal {
    refWrongPassword = 1,
    refTooManyUsers = 2,
    refAlreadyLoggedIn = 12,
    refLocked = 14,
    refNotLoggedIn = 20,
    refNoSuchFax = 21,
    refBadRequest = 22,
    refStoreFailed = 23
};

/// The ANSI bytes of a text; what the code page lacks becomes "?".
QByteArray ToAnsi(const QString &text);
QString FromAnsi(const QByteArray &bytes);
/// Free text as a field of a record: on one line, with "~$@~" for an apostrophe.
QByteArray Field(const QString &text);

QByteArray Number(qint32 value);
/// The number at an offset; 0 when the bytes end before it does.
qint32 ReadNumber(const QByteArray &bytes, qsizetype offset = 0);

/// "OK" and its records, each line ended.
QByteArray Ok(const QByteArrayList &lines = {});
/// "ERR" and the reason, each line ended.
QByteArray Refused(int reason);
/// One line of fields.
QByteArray Record(const QByteArrayList &fields);

} // namespace WireText
