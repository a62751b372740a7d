#pragma once

class QWidget;

/// Gives a window the size that it had when it was last closed, within the screen, and remembers it again
/// whenever it closes: in the account's section of the settings file, under the window's object name.
void RememberSize(QWidget &window);
