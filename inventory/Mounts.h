#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// In bytes.
struct MountSizes {
    std::uint64_t total;
    std::uint64_t free;
    std::uint64_t available;
};

struct InventoryMount {
    std::string mountPoint;
    std::string device;
    std::string fileSystemType;
    bool isAnswered;                 // in time, whatever the answer is
    std::optional<MountSizes> sizes; // where they were told
};

/// The mounts of the inventory's kinds, in the table's order, asked at once for their sizes; with a limit of 0 they are not
/// asked. One that does not answer within the limit keeps a thread until it does, and is not asked again before. At most
/// so many threads are kept; while they are, no other mount is asked. Throws InventoryError when the table cannot be
/// opened. A mount point other than "" limits all this to what is mounted there.
std::vector<InventoryMount> readMounts(std::chrono::milliseconds limit, std::string_view mountPoint = "");

inline constexpr std::size_t mostThreads = 64;

/// The kind of each mount that neither the agent's calls tell of nor readMounts, in the table's order. Throws likewise.
std::vector<std::string> readOtherKinds();

} // namespace tarn
