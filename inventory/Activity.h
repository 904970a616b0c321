#pragma once

#include <optional>
#include <string>
#include <vector>

#include "common/system/KernelChain.h"
#include "inventory/DeviceErrors.h"

namespace tarn {

/// The counters of one disk, of one reading.
struct DiskActivity {
    std::string instance; // "sd0"
    std::string disk;     // "c1t0d0"; empty when no device is that instance
    hrtime_t crtime = 0;
    hrtime_t snaptime = 0;
    kstat_io_t counters{};
    std::optional<ErrorCounts> errors;
};

/// Those of one port whose statistics can be read.
struct PortTraffic {
    HBA_UINT32 adapter;
    HBA_UINT32 port;
    HBA_WWN wwn;
    HBA_PORTSTATISTICS counters;
};

/// The disks' counters, again and again, over one opened chain. Not for two threads at once.
class ActivitySampler {
public:
    /// Throws InventoryError when the kernel statistics cannot be opened.
    ActivitySampler();

    /// The disks of the chain as it is now, in its order. One that cannot be read, as one that has just gone, is left out.
    std::vector<DiskActivity> readDisks();

private:
    struct Watched {
        kstat_t *record;
        kstat_t *errors; // null when the driver keeps none
        std::string instance;
        std::string disk;
    };

    std::vector<Watched> lookUp() const;

    KernelChain chain;
    std::optional<std::vector<Watched>> watched; // nothing while that of the chain as it is now has yet to be looked up
};

/// The ports of all adapters that open, by adapter and port. The HBA library is loaded meanwhile.
std::vector<PortTraffic> readPorts();

} // namespace tarn
