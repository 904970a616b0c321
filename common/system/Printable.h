#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "common/system/Hexadecimal.h"

namespace tarn {

/// How many bytes at the start of the text are one printable character in UTF-8; 0 when there is none.
inline std::size_t printableAt(std::string_view text) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    if (byte(0) < 0x80) {
        return byte(0) >= ' ' && byte(0) != 0x7F ? 1 : 0;
    }
    const std::size_t length = byte(0) < 0xC2 ? 0 : byte(0) < 0xE0 ? 2 : byte(0) < 0xF0 ? 3 : byte(0) < 0xF5 ? 4 : 0;
    if (length == 0 || length > text.size()) {
        return 0;
    }
    std::uint32_t character = byte(0) & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80) {
            return 0;
        }
        character = character << 6 | (byte(i) & 0x3FU);
    }
    constexpr std::uint32_t least[] = {0, 0, 0xA0, 0x800, 0x10000}; // below are controls and longer ways to write them
    const bool isSurrogate = character >= 0xD800 && character < 0xE000;
    const bool isSeparatorOrDirection = (character >= 0x2028 && character <= 0x202E) ||
                                        (character >= 0x2066 && character <= 0x2069) || character == 0xFEFF;
    return character < least[length] || character > 0x10FFFF || isSurrogate || isSeparatorOrDirection ? 0 : length;
}

/// Appends the text's first character to what is shown, or "\x1b" and the like in place of a byte that begins none, or that
/// would steer a terminal. The text may not be empty. Returns how many of its bytes that was.
inline std::size_t showFirst(std::string_view text, std::string &shown) {
    if (const std::size_t length = printableAt(text); length != 0) {
        shown += text.substr(0, length);
        return length;
    }
    const auto byte = static_cast<unsigned char>(text.front());
    shown.append("\\x").append(hexDigits(byte).data(), 2);
    return 1;
}

/// The whole text so.
inline std::string printable(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        text.remove_prefix(showFirst(text, shown));
    }
    return shown;
}

} // namespace tarn
