#pragma once

#include <string>
#include <vector>

#include "common/ArrayLuns.h"
#include "description/Host.h"
#include "record/Report.h"

// Asks the host what the library asks, in the library's own ways, and keeps the answers as a description. No file writes
// to a device, and none reads the users.

namespace record {

struct Options {
    std::vector<tarn::ArrayNames> arrays; // whose two large pages are read as well
    unsigned timeout = 10;                // seconds that a file system has to tell its sizes
};

/// Everything, in an order that puts last what may hang.
description::Host recordHost(const Options &options, Report &report);

// The sections.

void recordSystem(description::Host &host, Report &report);
void recordKernelStatistics(description::Host &host, Report &report);
void recordMountTable(description::Host &host, Report &report);
void recordDisks(const std::vector<tarn::ArrayNames> &arrays, description::Host &host, Report &report);
void recordHostBusAdapters(description::Host &host, Report &report);

/// The sizes of each UFS and NFS file system of the mount table.
void recordFileSystems(unsigned timeout, description::Host &host, Report &report);

} // namespace record
