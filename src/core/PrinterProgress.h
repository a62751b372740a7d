#pragma once

struct Ports;

/// The progress value that the print tool keeps in the user's settings: 0 idle, 1 working, 2 done, 3 failed.
int GetPrinterStatus(const Ports &ports);

/// Waits while the tool works, `limitSeconds` at most when that is above 0. False on failure or time-out.
bool WaitForPrinter(const Ports &ports, int limitSeconds);
