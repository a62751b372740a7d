#pragma once

#include <QHash>
#include <QList>
#include <QString>

/// The widths that the user has given the columns of the list, by layout: those of the shown columns in
/// their order without the last one, which takes what room is left. In pixels at 96 dpi.
using FaxColumnWidths = QHash<int, QList<int>>;

/// A layout whose widths are missing, too few or too many, or could not be those of columns, is left out.
FaxColumnWidths ReadFaxColumnWidths(const QString &section, const QString &file);

/// False when the file could not be written.
bool WriteFaxColumnWidths(const FaxColumnWidths &widths, const QString &section, const QString &file);
