#pragma once

class QWidget;

/// Makes a window stay over another one and puts it in its middle, as far as the screen has room; before it
/// is shown. It is not owned by that one: a run of the server disables the main window with all that it owns,
/// and takes the keyboard from it.
void PlaceOver(QWidget &window, const QWidget &owner);
