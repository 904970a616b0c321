#pragma once

#include <cstddef>
#include <string_view>

namespace tarn {

/// The text of a fixed-size character field, which is not terminated when the text fills it.
template <std::size_t size>
std::string_view fieldText(const char (&field)[size]) {
    const std::string_view whole(field, size);
    return whole.substr(0, whole.find('\0'));
}

} // namespace tarn
