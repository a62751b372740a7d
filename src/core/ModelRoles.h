#pragma once

#include <Qt>

/// Roles of the item models of the logic, which know no fonts, icons or colours. The delegates draw them.
enum ModelRole : int {
    KeyRole = Qt::UserRole + 1, ///< the row's id as text
    ImageKeyRole,               ///< name of an icon; empty for none
    BoldRole,                   ///< true for bold text
    ColorRole,                  ///< 0xRRGGBB of the text; invalid for the normal colour
    CountRole                   ///< number drawn behind the text when above 0
};
