#pragma once

#include <string>
#include <utility>

#include "platform/solaris.h"

// The wording of what the HBA library refuses, the same in the agent's log and in the self-test's lines.

namespace tarn {

/// The text of a status of the HBA API; empty for a value that the API does not name.
const char *StatusString(HBA_STATUS status);

/// The line for a failed call; `callName` lacks its "HBA_". One buffer per thread: the line is valid until the thread's
/// next call.
const char *BadStatus(const char *callName, HBA_STATUS status, int adapterIndex, const char *adapterName);

/// The line for an adapter that gave no handle; `status` is that of the lookup of its name.
std::string unableToOpen(int adapterIndex, const char *adapterName, HBA_STATUS status);

// Counts that no host reaches. A library that reports more is not believed: walking them would end in as many failed
// calls, and making room for them in as much lost memory.
inline constexpr HBA_UINT32 maximumAdapters = 4096;
inline constexpr HBA_UINT32 maximumPorts = 4096;                       // of an adapter, virtual ports included
inline constexpr HBA_UINT32 maximumDiscoveredPorts = 65536;            // of a port
inline constexpr HBA_UINT32 maximumDiscoveredPortsTogether = 1U << 18; // of all ports that a walk comes to
inline constexpr HBA_UINT32 maximumMappingEntries = 1U << 20;          // of an adapter: 304 MB of entries

/// The line for a count above its maximum: "ports", 4294967295 of them, reported by "HBA adapter 0 (hba-0)".
std::string tooMany(const std::string &what, HBA_UINT32 count, const std::string &reporter, HBA_UINT32 maximum);

/// The discovered ports of port 0, as `tooMany` names them.
std::string discoveredPortsOf(HBA_UINT32 port);

/// The line for the first port whose discovered ports are too many together with those of the ports before it.
std::string tooManyTogether(HBA_UINT32 port, HBA_UINT32 count, const std::string &reporter);

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

/// An adapter as `tooMany` names it.
std::string adapterText(int adapterIndex, const char *adapterName);

} // namespace tarn
