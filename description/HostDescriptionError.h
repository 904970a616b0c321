#pragma once

#include <stdexcept>
#include <string_view>

namespace description {

/// Why a host description was refused: one line that names the file, when there is one, and the member. Whatever the
/// message is made of, it is shown without what would steer a terminal, and no longer than `mostCharacters`.
class HostDescriptionError : public std::runtime_error {
public:
    static constexpr std::size_t mostCharacters = 300; // bytes of UTF-8

    explicit HostDescriptionError(std::string_view message);

    /// The same of a file, of whose path the end is shown.
    HostDescriptionError(std::string_view path, std::string_view message);
};

} // namespace description
