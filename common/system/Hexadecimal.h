#pragma once

#include <array>
#include <string_view>

namespace tarn {

/// The byte as two lower-case hexadecimal digits.
constexpr std::array<char, 2> hexDigits(unsigned char byte) {
    constexpr std::string_view digits = "0123456789abcdef";
    return {digits[byte >> 4], digits[byte & 15]};
}

} // namespace tarn
