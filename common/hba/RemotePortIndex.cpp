#include "common/hba/RemotePortIndex.h"

#include <algorithm>
#include <utility>

namespace tarn {
namespace {

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
        places[position] = {key(entries[position].FcpId.PortWWN), position};
    }
    std::ranges::sort(places, {}, [](const Place &place) { return std::pair(place.port, place.position); });
}

std::span<const RemotePortIndex::Place> RemotePortIndex::find(const HBA_WWN &portWWN) const {
    const std::uint64_t port = key(portWWN);
    const auto first = std::ranges::lower_bound(places, port, {}, &Place::port);
    return {first, std::ranges::upper_bound(first, places.end(), port, {}, &Place::port)};
}

} // namespace tarn
