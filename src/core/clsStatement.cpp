#include "core/DatabaseErrors.h"
#include "core/RaisedError.h"
#include "core/Utilities.h"
#include "core/clsDBcon.h"

#include <algorithm>

#include <sqlite3.h>

namespace {

constexpr int lNextRow = 1; ///< the only mode of `Step`
constexpr int lBlob = 5;    ///< the only type of `BindParameter`

bool EndsStatement(QChar character)
{
    return character.isSpace() || character == ';';
}

/// SQLite reads up to the first NUL and prepares the first statement only. What stands behind would be left
/// out without a word.
void RefuseTextBehind(const QByteArray &utf8, const char *tail)
{
    const QString rest = QString::fromUtf8(tail, utf8.constData() + utf8.size() - tail);
    if (!std::all_of(rest.begin(), rest.end(), EndsStatement))
        throw RaisedError(DatabaseErrors::lSqlError, "Prepare",
                          "You can only execute one statement at a time.");
}

sqlite3_stmt *Prepare(sqlite3 *connection, const QString &sql)
{
    const QByteArray utf8 = sql.toUtf8();
    sqlite3_stmt *prepared = nullptr;
    const char *tail = nullptr;
    const int result = sqlite3_prepare_v2(connection, utf8.constData(), -1, &prepared, &tail);
    if (result != SQLITE_OK)
        DatabaseErrors::RaiseResult(connection, result, "Prepare");
    try {
        RefuseTextBehind(utf8, tail);
        if (prepared == nullptr)
            DatabaseErrors::Raise(DatabaseErrors::lNoStatementGiven, "Prepare");
    } catch (const RaisedError &) {
        sqlite3_finalize(prepared);
        throw;
    }
    return prepared;
}

QVariant ReadValue(sqlite3_stmt *statement, int index)
{
    switch (sqlite3_column_type(statement, index)) {
    case SQLITE_INTEGER:
        return static_cast<qlonglong>(sqlite3_column_int64(statement, index));
    case SQLITE_FLOAT:
        return sqlite3_column_double(statement, index);
    case SQLITE_TEXT: {
        const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(statement, index));
        return QString::fromUtf8(text, sqlite3_column_bytes(statement, index));
    }
    case SQLITE_BLOB: {
        const auto *bytes = static_cast<const char *>(sqlite3_column_blob(statement, index));
        return QByteArray(bytes, sqlite3_column_bytes(statement, index));
    }
    default:
        return {};
    }
}

} // namespace

clsStatement::clsStatement(sqlite3 *connection, const QString &sql)
    : connection(connection)
    , statement(Prepare(connection, sql))
    , lColumns(sqlite3_column_count(statement))
{
}

clsStatement::~clsStatement()
{
    sqlite3_finalize(statement);
}

sqlite3_stmt *clsStatement::Prepared() const
{
    if (statement == nullptr)
        DatabaseErrors::Raise(DatabaseErrors::lNotPrepared, "Statement");
    return statement;
}

void clsStatement::Step(int mode, bool &done)
{
    if (mode != lNextRow)
        DatabaseErrors::Raise(DatabaseErrors::lBadStep, "Step");
    done = !Next();
}

bool clsStatement::Next()
{
    sqlite3_stmt *prepared = Prepared();
    // SQLite would start over from the first row.
    if (bDone)
        return false;
    const int result = sqlite3_step(prepared);
    if (result != SQLITE_ROW && result != SQLITE_DONE)
        DatabaseErrors::RaiseResult(connection, result, "Step");
    bDone = result == SQLITE_DONE;
    return !bDone;
}

int clsStatement::ColumnIndex(const QString &name) const
{
    const QByteArray wanted = name.toUtf8();
    const int columns = sqlite3_column_count(Prepared());
    for (int index = 0; index < columns; ++index) {
        if (sqlite3_stricmp(sqlite3_column_name(statement, index), wanted.constData()) == 0)
            return index;
    }
    throw RaisedError(DatabaseErrors::lUnknownColumn, "ColumnValue",
                      DatabaseErrors::Text(DatabaseErrors::lUnknownColumn) + ": " + name);
}

QVariant clsStatement::ColumnValue(const QString &name) const
{
    return ColumnValue(ColumnIndex(name));
}

int clsStatement::ColumnCount() const
{
    return lColumns;
}

void clsStatement::RequireColumn(int index) const
{
    Prepared();
    if (index < 0 || index >= lColumns)
        DatabaseErrors::Raise(DatabaseErrors::lColumnOutOfRange, "ColumnValue");
}

QVariant clsStatement::ColumnValue(int index) const
{
    RequireColumn(index);
    return ReadValue(statement, index);
}

std::string_view clsStatement::Utf8(int index) const
{
    RequireColumn(index);
    sqlite3_value *value = sqlite3_column_value(statement, index);
    const auto *text = reinterpret_cast<const char *>(sqlite3_value_text(value));
    return text ? std::string_view(text, static_cast<std::size_t>(sqlite3_value_bytes(value)))
                : std::string_view();
}

long clsStatement::Number(const QString &name) const
{
    return Number(ColumnIndex(name));
}

long clsStatement::Number(int index) const
{
    return ToNumber(Text(index));
}

void clsStatement::BindParameter(int index, const QByteArray &value, int type)
{
    sqlite3_stmt *prepared = Prepared();
    if (type != lBlob)
        DatabaseErrors::Raise(DatabaseErrors::lUnknownBinaryData, "BindParameter");
    RequireParameter(index, "BindParameter");
    const auto size = static_cast<sqlite3_uint64>(value.size());
    const int result = sqlite3_bind_blob64(prepared, index, value.constData(), size, SQLITE_TRANSIENT);
    if (result != SQLITE_OK)
        DatabaseErrors::RaiseResult(connection, result, "BindParameter");
}

void clsStatement::BindText(int index, QStringView value)
{
    RequireParameter(index, "BindText");
    // A null pointer would be bound as NULL.
    const char16_t *text = value.isNull() ? u"" : value.utf16();
    const auto bytes = static_cast<sqlite3_uint64>(value.size()) * sizeof(char16_t);
    const int result = sqlite3_bind_text64(statement, index, reinterpret_cast<const char *>(text), bytes,
                                           SQLITE_TRANSIENT, SQLITE_UTF16);
    if (result != SQLITE_OK)
        DatabaseErrors::RaiseResult(connection, result, "BindText");
}

void clsStatement::RequireParameter(int index, const QString &source) const
{
    if (index < 1 || index > sqlite3_bind_parameter_count(Prepared()))
        DatabaseErrors::Raise(DatabaseErrors::lParameterOutOfRange, source);
}

void clsStatement::Execute()
{
    while (Next()) {
    }
}

void clsStatement::Reset()
{
    sqlite3_reset(Prepared()); // tells the result of the run before, which has been raised already
    bDone = false;
}

void clsStatement::Close()
{
    sqlite3_finalize(statement);
    statement = nullptr;
}
