#pragma once

#include <QString>

struct sqlite3;

/// The error numbers of the database layer.
namespace DatabaseErrors {

/// The number of a SQLite result code: its low byte with the top bits of an error set, as a signed 32-bit
/// value.
constexpr long FromResultCode(int code)
{
    return -0x40000000L + (code & 0xff);
}

constexpr long lNotOpen = -1;
constexpr long lSqlError = FromResultCode(1);
constexpr long lConstraint = FromResultCode(19);
constexpr long lNoStatementGiven = FromResultCode(202);
constexpr long lNotPrepared = FromResultCode(203);
constexpr long lUnknownBinaryData = FromResultCode(204);
constexpr long lColumnOutOfRange = FromResultCode(209);
constexpr long lUnknownColumn = FromResultCode(210);
constexpr long lParameterOutOfRange = FromResultCode(212);
constexpr long lBadStep = FromResultCode(217);

/// The fixed text of a number; "UnSign Error" for a number of nobody.
QString Text(long number);

/// Raises the number with its fixed text.
[[noreturn]] void Raise(long number, const QString &source);
/// Raises what a call of SQLite has just reported, in SQLite's own words, which name the table or column.
[[noreturn]] void RaiseResult(sqlite3 *connection, int code, const QString &source);

} // namespace DatabaseErrors
