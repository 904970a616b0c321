#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarn {

/// What a disk is. Texts are empty, and the size 0, where that is unknown.
struct DiskIdentity {
    std::string disk;
    std::string vendor;
    std::string product;
    std::string revision;
    std::string serial;
    std::string designator;
    std::uint64_t size = 0;     // in bytes
    const char *from = nullptr; // "driver", "device", "name"; null when nothing is known
};

/// Of every whole disk that opens, in the order of "/dev/rdsk". What the driver's statistics tell is asked of no device,
/// and of a device's pages only those are asked for that it lists.
std::vector<DiskIdentity> readIdentities();

} // namespace tarn
