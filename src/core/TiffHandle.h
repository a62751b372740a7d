#pragma once

#include <memory>

#include <tiffio.h>

class TiffFile;

struct TiffCloser
{
    void operator()(TIFF *tiff) const { TIFFClose(tiff); }
};
using TiffHandle = std::unique_ptr<TIFF, TiffCloser>;

/// Opens what `file` shows, for a look at the page table and the coded bytes: strips are not loaded before
/// they are asked for. Null when it is no TIFF. `file` must outlive the handle.
TiffHandle OpenTiff(TiffFile &file);
