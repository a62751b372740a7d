#pragma once

class FaxDocument;
class QWidget;

/// The commands "Save a copy" and "Copy page": they ask, work while the window stays alive, and tell what
/// went wrong.
namespace FaxSaving {

/// Asks for a name and a kind of file (TIFF or PDF) and saves a copy of the fax there.
void SaveCopy(const FaxDocument &fax, QWidget *parent);

/// Puts the zero-based page on the clipboard.
void CopyPage(const FaxDocument &fax, int page, QWidget *parent);

} // namespace FaxSaving
