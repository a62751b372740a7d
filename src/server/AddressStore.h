#pragma once

#include <QList>
#include <QStringView>

#include <functional>

struct AddressList;

/// Writes the lists of public address data into the database.
namespace AddressStore {

enum class Result {
    Stored,
    ShortLine, ///< a line had too few fields; the rows before it stay
    Stopped    ///< the caller did not want to go on; the rows so far stay
};

/// Replaces the rows of the list. A list without a transaction asks `goOn` between its rows. An entry whose
/// id cannot be used, or is there already, is left out, and an error is raised when the others are written.
/// Raises the database layer's errors; the rows before the failed one stay.
Result Replace(const AddressList &list, const QList<QStringView> &lines, const std::function<bool()> &goOn);

} // namespace AddressStore
