#pragma once

#include "core/FaxImage.h"

#include <list>

/// The pages of a fax that were decoded last, upright, as many as fit into a bounded memory. For one thread.
class DecodedPages final
{
public:
    explicit DecodedPages(const FaxPages &faxPages)
        : pages(faxPages)
    {
    }

    /// Decodes the page if needed. Empty when it cannot be read. Valid until the next call.
    const PageBits &Get(int page);

private:
    struct Decoded
    {
        int lPage;
        PageBits bits;
    };

    void MakeRoomFor(int page);

    FaxPages pages;
    std::list<Decoded> aDecoded; ///< the one that was asked for last in front
};
