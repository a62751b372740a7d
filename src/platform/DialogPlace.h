#pragma once

class QDialog;

/// `PlaceOver` with the active window as the other one, if there is any.
void PlaceOverActiveWindow(QDialog &dialog);
