#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

// Which pages a device has. A page is the bytes that came, whatever it says of its length.

namespace tarn {

using Page = std::span<const unsigned char>;

inline constexpr unsigned char pageOfPages = 0x00;
inline constexpr unsigned char pageOfSerialNumber = 0x80;
inline constexpr unsigned char pageOfDesignators = 0x83;

/// Whether the standard INQUIRY tells of a logical unit that keeps to SPC or later, by which it has the page of pages.
inline bool knowsPages(Page inquiry) {
    constexpr unsigned char firstWithPages = 3;
    return inquiry.size() > 2 && inquiry[0] >> 5 == 0 && inquiry[2] >= firstWithPages;
}

/// What follows the page's header, as far as it came. Nothing when it is another page: a device that knows no pages
/// answers its standard INQUIRY.
inline Page contentOf(Page page, unsigned char code) {
    constexpr std::size_t header = 4;
    if (page.size() < header || page[1] != code) {
        return {};
    }
    const std::size_t length = std::size_t{page[2]} << 8 | page[3];
    return page.subspan(header, std::min(length, page.size() - header));
}

/// Whether the page of pages has that code.
inline bool listsPage(Page page, unsigned char code) {
    const Page codes = contentOf(page, pageOfPages);
    return std::ranges::find(codes, code) != codes.end();
}

} // namespace tarn
