#pragma once

#include <chrono>

class QWidget;

enum class PrinterSearch {
    Found,
    NoPrinter,
    NoAnswer,
    Cancelled,
};

/// Asks the print service for printers. One that hangs keeps its callers waiting without limit, so this is
/// asked before anything of the toolkit does, and not on the event loop's thread.
PrinterSearch LookForPrinters(QWidget *parent, std::chrono::milliseconds limit = std::chrono::seconds(10));
