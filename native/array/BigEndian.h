#pragma once

#include <cstdint>

namespace tarn {

constexpr std::uint32_t big16(const unsigned char *bytes) {
    return std::uint32_t{bytes[0]} << 8 | bytes[1];
}

constexpr std::uint32_t big32(const unsigned char *bytes) {
    return big16(bytes) << 16 | big16(bytes + 2);
}

} // namespace tarn
