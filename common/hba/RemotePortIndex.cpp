#include "common/hba/RemotePortIndex.h"

#include <algorithm>
#include <cstdint>

#include "common/hba/Conversions.h"

namespace tarn {
namespace {

/// Orders port names as their bytes do.
std::uint64_t key(const HBA_WWN &wwn) {
    std::uint64_t value = 0;
    for (const HBA_UINT8 byte : wwn.wwn) {
        value = value << 8 | byte;
    }
    return value;
}

} // namespace

void RemotePortIndex::build(std::span<const HBA_FCPSCSIENTRY> entries) {
    places = {};
    if (entries.size() > own.size()) {
        heap.resize(entries.size());
        places = heap;
    } else {
        places = std::span(own).first(entries.size());
    }
    for (HBA_UINT32 position = 0; position < places.size(); ++position) {
        places[position] = {entries[position].FcpId.PortWWN, position};
    }
    std::sort(places.begin(), places.end(), [](const Place &a, const Place &b) {
        return key(a.portWWN) != key(b.portWWN) ? key(a.portWWN) < key(b.portWWN) : a.position < b.position;
    });
}

std::span<const RemotePortIndex::Place> RemotePortIndex::find(const HBA_WWN &portWWN) const {
    const auto first =
        std::ranges::lower_bound(places, key(portWWN), {}, [](const Place &place) { return key(place.portWWN); });
    const auto last =
        std::find_if_not(first, places.end(), [&](const Place &place) { return equal(place.portWWN, portWWN); });
    return {first, last};
}

} // namespace tarn
