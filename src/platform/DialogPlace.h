#pragma once

class QDialog;

/// Puts a dialog over the active window, before it is shown. That window is no QObject parent: a run disables
/// it with all its children, and the dialog must stay alive.
void PlaceOverActiveWindow(QDialog &dialog);
