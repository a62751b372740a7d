#pragma once

class QTreeView;

/// Gives the columns of a list the widths that they had when its window was last closed, and remembers them
/// again whenever it closes: in the account's section of the settings file, under the names of window and
/// list, in pixels at 96 dpi. Before the window is shown, and after its columns are there. The last column
/// takes what room is left.
void RememberColumns(QTreeView &list);
