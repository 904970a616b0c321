#pragma once

#include <utility>

#include "platform/solaris.h"

// How much of what the HBA library counts is believed.

namespace tarn {

// Counts that no host reaches. A library that reports more is not believed: walking them would end in as many failed
// calls, and making room for them in as much lost memory.
inline constexpr HBA_UINT32 maximumAdapters = 4096;
inline constexpr HBA_UINT32 maximumPorts = 4096;                       // of an adapter, virtual ports included
inline constexpr HBA_UINT32 maximumDiscoveredPorts = 65536;            // of a port
inline constexpr HBA_UINT32 maximumDiscoveredPortsTogether = 1U << 18; // of all ports that a walk comes to
inline constexpr HBA_UINT32 maximumMappingEntries = 1U << 20;          // of an adapter: 304 MB of entries

/// The count, or none when it is out of all reason.
constexpr HBA_UINT32 believed(HBA_UINT32 count, HBA_UINT32 maximum) {
    return count <= maximum ? count : 0;
}

/// Adds up the discovered ports of a walk, up to maximumDiscoveredPortsTogether.
class DiscoveredPortSum {
public:
    /// Whether so many more are still to be believed. The first time that they are not, `complain` is called.
    template <class Complain>
    bool add(HBA_UINT32 count, Complain complain) {
        if (count <= maximumDiscoveredPortsTogether - sum) {
            sum += count;
            return true;
        }
        if (!std::exchange(hasComplained, true)) {
            complain();
        }
        return false;
    }

private:
    HBA_UINT32 sum = 0;
    bool hasComplained = false;
};

} // namespace tarn
