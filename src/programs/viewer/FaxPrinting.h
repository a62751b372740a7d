#pragma once

class FaxDocument;
class QWidget;

/// The commands "Print" and "Print preview". Both ask first, off the event loop's thread, whether the print
/// service answers at all, and tell the user when it does not.
namespace FaxPrinting {

/// Asks with the system's dialog and prints. `currentPage` is the zero-based page that the dialog offers as
/// the current one.
void Print(FaxDocument &fax, QWidget *parent, int currentPage);

/// Shows how the fax comes out on paper, beginning with the zero-based page.
void Preview(FaxDocument &fax, QWidget *parent, int currentPage);

} // namespace FaxPrinting
