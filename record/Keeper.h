#pragma once

#include <array>
#include <vector>

#include "record/AskerRegion.h"

namespace record {

/// The process that begins and ends askers as it is told, and ends with the recorder. To be called in a child of the
/// recorder that has just been forked.
[[noreturn]] void keepAskers(const std::vector<Ask> &waysToAsk, Shared &shared, std::array<Pipe, mostAskers> &tokens,
                             Pipe &commands, Pipe &bells);

} // namespace record
