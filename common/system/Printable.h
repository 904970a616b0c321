#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn {

/// The text with "\x1b" and the like in place of control characters, which would steer a terminal: those below a blank,
/// DEL, and the second half's in UTF-8.
inline std::string printable(std::string_view text) {
    constexpr const char *digits = "0123456789abcdef";
    std::string shown;
    for (std::size_t i = 0; i < text.size(); ++i) {
        auto byte = static_cast<unsigned char>(text[i]);
        const bool isOfSecondHalf =
            byte == 0xC2 && i + 1 < text.size() && (static_cast<unsigned char>(text[i + 1]) & 0xE0) == 0x80;
        if (isOfSecondHalf) {
            byte = static_cast<unsigned char>(text[++i]);
        }
        if (isOfSecondHalf || byte < ' ' || byte == 0x7F) {
            shown += {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
        } else {
            shown += static_cast<char>(byte);
        }
    }
    return shown;
}

} // namespace tarn
