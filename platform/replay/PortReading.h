#pragma once

#include <cstddef>

namespace replay {

/// Which of a port's successive statistics this thread finds. Time goes on for ports as it does for the statistics chain
/// that the thread brought up to date last: its first update is for the first reading, and who never updates one always
/// finds the first.
inline thread_local std::size_t portReading = 0;

} // namespace replay
