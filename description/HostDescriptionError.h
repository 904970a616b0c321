#pragma once

#include <stdexcept>

namespace description {

/// Why a host description was refused: one line that names the file, when there is one, and the member.
class HostDescriptionError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace description
