#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "common/system/ArrayLuns.h"
#include "description/Host.h"
#include "record/Askers.h"
#include "record/Report.h"

// Asks the host what the library asks, in the library's own ways, and keeps the answers as a description. No file writes
// to a device, and none reads the users.

namespace record {

struct Options {
    std::vector<tarn::ArrayNames> arrays; // whose two large pages are read as well
    bool arrayPages = false;              // whether every disk is asked for page 0xC0, not the LUNs of `arrays` alone
    unsigned timeout = 10;                // seconds that a call has; 0: no limit, and no other process asks
};

/// Everything; what is known so far when the recorder is asked to stop.
description::Host recordHost(const Options &options, Report &report);

// The sections.

void recordSystem(description::Host &host, Report &report);
void recordKernelStatistics(description::Host &host, Report &report);
void recordMountTable(description::Host &host, Report &report);

/// A section that askers are asked for, beside others, so that what hangs in several is waited for once.
class AskedSection {
public:
    virtual ~AskedSection() = default;
    virtual void begin(Askers &askers) = 0;

    /// Adds what is to be asked since the first answers are known.
    virtual void goOn(Askers &) {
    }

    /// Describes what is known.
    virtual void finish() = 0;
};

std::unique_ptr<AskedSection> diskSection(const std::vector<tarn::ArrayNames> &arrays, description::Host &host,
                                          Report &report);
std::unique_ptr<AskedSection> hostBusAdapterSection(description::Host &host, Report &report);

/// The sizes of the file systems of the mount table that are logical disks or of the inventory.
std::unique_ptr<AskedSection> fileSystemSection(description::Host &host, Report &report);

// How askers ask.

/// An entry of a device directory by its path: all of one in /dev/rdsk, its link, all of one in /dev/dsk, a LUN's two
/// large pages, or nothing. `options` stay as they are.
Ask wayToAskDisk(std::size_t kind, const Options &options);

/// The HBA library: from an adapter on, or a single one.
Ask wayToAskAdapters();

/// A mounted file system by its path.
Ask wayToAskFileSystem();

} // namespace record
