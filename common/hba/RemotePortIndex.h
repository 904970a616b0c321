#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "common/hba/library/TargetMappingTable.h"
#include "platform/solaris.h"

namespace tarn {

/// Finds the entries of a target mapping by their remote port, without a walk over all of them for each port.
class RemotePortIndex {
public:
    /// Where in the mapping an entry of that remote port stands.
    struct Place {
        std::uint64_t port; ///< its name as a number, byte 0 highest
        HBA_UINT32 position;
    };

    /// Throws std::bad_alloc, which can only happen for a mapping of more than 512 entries.
    void build(std::span<const HBA_FCPSCSIENTRY> entries);

    /// The places of the port's entries, in the mapping's order. Valid until the next `build`.
    std::span<const Place> find(const HBA_WWN &portWWN) const;

private:
    std::array<Place, TargetMappingTable::ownRoom> own;
    std::vector<Place> heap;
    std::span<Place> places; // in order
};

} // namespace tarn
