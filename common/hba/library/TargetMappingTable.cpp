#include "common/hba/library/TargetMappingTable.h"

#include <algorithm>
#include <cstring>

#include "common/hba/library/Limits.h"

namespace tarn {

bool TargetMappingTable::fetch(const Query &query) {
    release();
    HBA_UINT32 room = ownRoom;
    std::memset(own, 0, sizeof own); // the adapter before may have left its entries
    lastStatus = ask(query, own, room);
    if (lastStatus == HBA_STATUS_ERROR_MORE_DATA) {
        room = mapping->NumberOfEntries;
        if (!takeFromHeap(room)) {
            return false;
        }
        lastStatus = ask(query, heap.get(), room);
    }
    if (lastStatus != HBA_STATUS_OK || mapping->NumberOfEntries > room) {
        return false;
    }
    count = mapping->NumberOfEntries;
    return true;
}

void TargetMappingTable::release() {
    heap.reset();
    mapping = nullptr;
    count = 0;
}

/// The memory comes zeroed, page by page as it is used.
bool TargetMappingTable::takeFromHeap(HBA_UINT32 entryCount) {
    if (entryCount <= maximumMappingEntries) {
        // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): `heap` owns it
        heap.reset(std::calloc(1, std::max(mappingSize(entryCount), sizeof(HBA_FCPTARGETMAPPING))));
    }
    return heap != nullptr;
}

HBA_STATUS TargetMappingTable::ask(const Query &query, void *storage, HBA_UINT32 room) {
    mapping = static_cast<HBA_FCPTARGETMAPPING *>(storage);
    mapping->NumberOfEntries = room;
    return query(mapping);
}

} // namespace tarn
