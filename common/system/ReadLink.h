#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "platform/solaris.h"

namespace tarn {

/// Receives the target of a symbolic link. One of 1024 bytes or more does not fit: no device of the system has such a
/// name, and a part of one would name another device.
using LinkBuffer = std::array<char, 1024>;

/// The target of a symbolic link, in `buffer`. Nothing when `path` is no link that can be read, or its target does not
/// fit.
inline std::optional<std::string_view> readLink(const char *path, LinkBuffer &buffer) {
    const ssize_t length = solaris::readlink(path, buffer.data(), buffer.size());
    if (length < 0 || static_cast<std::size_t>(length) >= buffer.size()) {
        return std::nullopt;
    }
    return std::string_view(buffer.data(), static_cast<std::size_t>(length));
}

} // namespace tarn
