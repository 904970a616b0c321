#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

namespace tarn {

/// The byte as two lower-case hexadecimal digits.
constexpr std::array<char, 2> hexDigits(unsigned char byte) {
    constexpr std::string_view digits = "0123456789abcdef";
    return {digits[byte >> 4], digits[byte & 15]};
}

/// The bytes so, one after the other.
inline std::string hexText(std::span<const unsigned char> bytes) {
    std::string text;
    for (const unsigned char byte : bytes) {
        text.append(hexDigits(byte).data(), 2);
    }
    return text;
}

} // namespace tarn
