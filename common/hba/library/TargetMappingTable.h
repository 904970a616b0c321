#pragma once

#include <cstddef>
#include <cstdlib>
#include <functional>
#include <memory>
#include <span>

#include "platform/solaris.h"

namespace tarn {

/// What a mapping of so many entries takes, in bytes. They follow one another beyond the array of one that the published
/// structure declares.
constexpr std::size_t mappingSize(HBA_UINT32 entries) {
    return offsetof(HBA_FCPTARGETMAPPING, entry) + std::size_t{entries} * sizeof(HBA_FCPSCSIENTRY);
}

/// The FCP target mapping of one adapter: which operating-system device leads to which logical unit of which remote
/// port. Up to 512 entries fit the storage it holds itself; only a larger mapping is taken from the heap.
class TargetMappingTable {
public:
    /// HBA_GetFcpTargetMapping of an adapter: reads the room in `NumberOfEntries` and leaves there how many there are.
    using Query = std::function<HBA_STATUS(HBA_FCPTARGETMAPPING *)>;

    /// Asks for the mapping, and once more with the exact room when the library has more entries than fit. False when
    /// they cannot be had; then there are none. Entries that the library counts but does not write are empty ones.
    bool fetch(const Query &query);

    /// Forgets the entries and gives back what was taken from the heap.
    void release();

    /// What the library last answered; it may be OK with more entries than there was room for, which is a failure.
    HBA_STATUS status() const {
        return lastStatus;
    }

    std::span<HBA_FCPSCSIENTRY> entries() const {
        return {mapping == nullptr ? nullptr : mapping->entry, count};
    }

    static constexpr HBA_UINT32 ownRoom = 512; // entries

private:
    bool takeFromHeap(HBA_UINT32 entryCount);
    HBA_STATUS ask(const Query &query, void *storage, HBA_UINT32 room);

    struct Release {
        void operator()(void *memory) const {
            std::free(memory); // NOLINT(cppcoreguidelines-owning-memory): the unique_ptr's, which calls this
        }
    };

    alignas(HBA_FCPTARGETMAPPING) std::byte own[mappingSize(ownRoom)];
    std::unique_ptr<void, Release> heap;
    HBA_FCPTARGETMAPPING *mapping = nullptr; // the one of the two that is in use
    HBA_UINT32 count = 0;
    HBA_STATUS lastStatus = HBA_STATUS_OK;
};

} // namespace tarn
