#pragma once

class Folders;
class QString;
struct Ports;

/// The progress value that the print tool keeps in the user's settings; others mean that it works as well.
enum PrinterStatus { printerIdle = 0, printerBusy = 1, printerDone = 2, printerFailed = 3 };

/// The file that holds it; empty when the user has no settings folder.
QString PrinterProgressFile(const Folders &folders);

/// The number as it stands there, 0 when there is none.
int GetPrinterStatus(const Ports &ports);

/// Makes the file's folder where needed. False when it cannot be written.
bool SetPrinterStatus(const Folders &folders, PrinterStatus status);

/// Waits while the tool works, `limitSeconds` at most when that is above 0. False on failure or time-out.
bool WaitForPrinter(const Ports &ports, int limitSeconds);
