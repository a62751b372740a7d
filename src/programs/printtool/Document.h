#pragma once

#include "PageSource.h"

#include <QString>

#include <memory>

/// How a picture is laid on its sheet; the numbers are those of the send options.
enum class Fitting { Match = 0, Stretch = 1, Width = 2, Height = 3, Original = 4 };

/// One entry of a request.
struct Document
{
    /// What its pages come from; by its contents first, by its extension where they do not tell.
    enum Kind { FaxFile, Pdf, Picture, Office };

    QString strPath;     ///< as the request names it, without the "*"
    bool bReady = false; ///< marked as a ready fax file
    Kind kind = Office;
    QString strReadable; ///< what is opened: the path itself, or what a converter made of it

    /// For texts that a user reads: the bare name.
    QString Name() const;
};

/// Opens the document's pages. Called once for each thread. Raises `ConversionError`.
std::unique_ptr<PageSource> OpenDocument(const Document &document);
