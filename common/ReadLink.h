#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>

#include "platform/solaris.h"

namespace tarn {

/// The target of a symbolic link. Nothing when `path` is no link that can be read, or when its target has 1024 bytes or
/// more: no device of the system has such a name, and a part of one would name another device.
inline std::optional<std::string> readLink(const char *path) {
    constexpr std::size_t targetLimit = 1024;
    std::array<char, targetLimit> target;
    const ssize_t length = solaris::readlink(path, target.data(), target.size());
    if (length < 0 || static_cast<std::size_t>(length) >= targetLimit) {
        return std::nullopt;
    }
    return std::string(target.data(), static_cast<std::size_t>(length));
}

} // namespace tarn
