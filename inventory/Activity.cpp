#include "inventory/Activity.h"

#include <utility>

#include "common/hba/library/LibraryGuards.h"
#include "common/hba/library/Limits.h"
#include "common/system/FieldText.h"
#include "common/system/SolarisDiskMap.h"
#include "inventory/InventoryError.h"

namespace tarn {

ActivitySampler::ActivitySampler() {
    if (!chain.isOpen()) {
        throw InventoryError("Unable to open the kernel statistics.");
    }
    watched = lookUp();
}

/// Which records are read, and whose they are: asked for once, and whenever devices have come or gone.
std::vector<ActivitySampler::Watched> ActivitySampler::lookUp() const {
    std::vector<Watched> found;
    const auto errorRecords = deviceErrorRecords(chain);
    SolarisDiskMap disks;
    for (kstat_t *record = chain.first(); record != nullptr; record = record->ks_next) {
        if (isOfDisk(*record)) {
            std::string instance(fieldText(record->ks_name));
            const auto errors = errorRecords.find(instance);
            std::string disk = disks.getDeviceIdFromMap(instance);
            found.push_back({record, errors == errorRecords.end() ? nullptr : errors->second, std::move(instance),
                             std::move(disk)});
        }
    }
    return found;
}

std::vector<DiskActivity> ActivitySampler::readDisks() {
    if (chain.update().value_or(false)) {
        watched.reset(); // its records are gone, also when the others cannot be looked up
    }
    if (!watched) {
        watched = lookUp();
    }
    std::vector<DiskActivity> disks;
    disks.reserve(watched->size());
    for (const Watched &disk : *watched) {
        const std::optional<kstat_io_t> counters = chain.read<kstat_io_t>(disk.record, sizeof(kstat_io_t));
        if (counters) {
            disks.push_back({disk.instance, disk.disk, disk.record->ks_crtime, disk.record->ks_snaptime, *counters,
                             disk.errors == nullptr ? std::nullopt : readErrorCounts(chain, disk.errors)});
        }
    }
    return disks;
}

std::vector<PortTraffic> readPorts() {
    std::vector<PortTraffic> ports;
    WithHbaLibrary library;
    const HBA_UINT32 adapters = believed(HBA_GetNumberOfAdapters(), maximumAdapters);
    for (HBA_UINT32 a = 0; a < adapters; ++a) {
        char name[adapterNameSize];
        const WithAdapterHandle adapter(library, a, name);
        HBA_ADAPTERATTRIBUTES attributes{};
        if (adapter.handle == 0 || HBA_GetAdapterAttributes(adapter.handle, &attributes) != HBA_STATUS_OK) {
            continue;
        }
        for (HBA_UINT32 p = 0; p < believed(attributes.NumberOfPorts, maximumPorts); ++p) {
            HBA_PORTATTRIBUTES port{};
            HBA_PORTSTATISTICS counters{};
            if (HBA_GetAdapterPortAttributes(adapter.handle, p, &port) == HBA_STATUS_OK &&
                HBA_GetPortStatistics(adapter.handle, p, &counters) == HBA_STATUS_OK) {
                ports.push_back({a, p, port.PortWWN, counters});
            }
        }
    }
    return ports;
}

} // namespace tarn
