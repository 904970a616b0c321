#pragma once

#include <string_view>

namespace replay {

/// The text of hosts/rill.json, made part of the program by the build.
extern const std::string_view builtInHostText;

} // namespace replay
