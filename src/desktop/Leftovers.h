#pragma once

#include <QString>

/// Deletes the files "tmp~*.tif" that the print tool has left in a folder. What cannot be deleted stays: the
/// program's next end tries again.
void DeleteLeftovers(const QString &folder);
