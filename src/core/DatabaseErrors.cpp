#include "core/DatabaseErrors.h"

#include "core/RaisedError.h"

#include <sqlite3.h>

namespace {

struct ErrorText
{
    long lNumber;
    const char *strText;
};

constexpr ErrorText aErrorTexts[] = {
    {-1073741823, "SQL error or missing database"},
    {-1073741822, "An internal logic error in SQLite"},
    {-1073741821, "Access permission denied"},
    {-1073741820, "Callback routine requested an abort"},
    {-1073741819, "The database file is locked."},
    {-1073741818, "A table in the database is locked"},
    {-1073741817, "A malloc() failed – out of memory"},
    {-1073741816, "Attempt to write a readonly database."},
    {-1073741815, "Operation terminated by sqlite3_interrupt().Never raised"},
    {-1073741814, "Some kind of disk I/O error occurred"},
    {-1073741813, "The database disk image is malformed"},
    {-1073741812, "(Internal Only) Table or record not found"},
    {-1073741811, "Insertion failed because database is full"},
    {-1073741810, "Unable to open the database file"},
    {-1073741809, "Database lock protocol error"},
    {-1073741808, "Database is empty"},
    {-1073741807, "The database schema changed"},
    {-1073741806, "Too much data for one row of a table"},
    {-1073741805, "Abort due to constraint violation"},
    {-1073741804, "Data type mismatch"},
    {-1073741803, "Library used incorrectly"},
    {-1073741802, "Uses OS features not supported on host"},
    {-1073741801, "Authorization denied"},
    {-1073741800, "Auxiliary database format error"},
    {-1073741799, "2nd parameter to BindParameter out of range"},
    {-1073741798, "File opened that is not a database file"},
    {-1073741624, "Statement already prepared."},
    {-1073741623, "Connection property not set"},
    {-1073741622, "No SQL statement was given"},
    {-1073741621, "Statement not prepared"},
    {-1073741620, "Unknown binary data"},
    {-1073741619, "Cannot guess data type"},
    {-1073741618, "Cannot get column name"},
    {-1073741617, "Unknown column type or bad column index."},
    {-1073741616, "Cannot create statement object"},
    {-1073741615, "Column index out of range"},
    {-1073741614, "Unknown column name"},
    {-1073741613, "Unknown column index type. Only string or integer values are allowed"},
    {-1073741612, "Parameter index out of range"},
    {-1073741611, "Unknown parameter name"},
    {-1073741610, "Unknown parameter index type. Only string or integer values are allowed."},
    {-1073741609, "Database file is open"},
    {-1073741608, "Database file isn't open."},
    {-1073741607, "Bad step parameter."},
    {1073741924, "Another row ready.Not an error"},
    {1073741925, "Finished query execution.Not an error"},
};

} // namespace

QString DatabaseErrors::Text(long number)
{
    for (const ErrorText &error : aErrorTexts) {
        if (error.lNumber == number)
            return QString::fromUtf8(error.strText);
    }
    return QStringLiteral("UnSign Error");
}

void DatabaseErrors::Raise(long number, const QString &source)
{
    throw RaisedError(number, source, Text(number));
}

void DatabaseErrors::RaiseResult(sqlite3 *connection, int code, const QString &source)
{
    throw RaisedError(FromResultCode(code), source, QString::fromUtf8(sqlite3_errmsg(connection)));
}
