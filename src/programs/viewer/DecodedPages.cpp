#include "DecodedPages.h"

#include <algorithm>

namespace {

/// About a hundred pages of a fine fax, or one of the largest that there may be.
constexpr qint64 lMostBytes = 64 * 1024 * 1024;

} // namespace

const PageBits &DecodedPages::Get(int page)
{
    const auto known = std::find_if(aDecoded.begin(), aDecoded.end(),
                                    [page](const Decoded &decoded) { return decoded.lPage == page; });
    if (known != aDecoded.end()) {
        aDecoded.splice(aDecoded.begin(), aDecoded, known);
        return aDecoded.front().bits;
    }
    MakeRoomFor(page);
    aDecoded.push_front({page, pages.Load(page, 0)});
    return aDecoded.front().bits;
}

/// Before it is decoded, or two of the largest pages would stand beside each other.
void DecodedPages::MakeRoomFor(int page)
{
    const TiffPage &entry = pages.Page(page);
    qint64 bytes = qint64(entry.lWidth) * entry.lHeight * entry.lDecodedBits / 8;
    for (const Decoded &decoded : aDecoded)
        bytes += decoded.bits.abBits.size();
    while (bytes > lMostBytes && !aDecoded.empty()) {
        bytes -= aDecoded.back().bits.abBits.size();
        aDecoded.pop_back();
    }
}
