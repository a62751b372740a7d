#pragma once

#include <QList>

class QItemSelectionModel;

/// The rows of a list without branches that are selected, from 0, in their order. Quick also when they are
/// many.
QList<int> GetSelectedRows(const QItemSelectionModel &selection);
