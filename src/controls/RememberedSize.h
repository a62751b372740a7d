#pragma once

class QWidget;

/// Gives a window the size that it had when it was last closed, or what it would like at first, within the
/// screen. The size is remembered whenever the window closes: in the account's section of the settings file,
/// under the object name of the window.
void RememberSize(QWidget &window);
