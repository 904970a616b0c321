#pragma once

#include <functional>
#include <string>

// Host descriptions of any size, as JSON text.

namespace bench {

/// "[ELEMENT, ELEMENT, ...]" of the texts for 0, 1, ... count - 1.
std::string listOf(int count, const std::function<std::string(int)> &element);

/// Elements of the lists of a description. A disk has eight slices, geometry and label; `moreMembers` begins with a
/// comma.
std::string processor(int index);
std::string processorTicks(int index); ///< its "cpu_stat" record
std::string mount(int index);          ///< "/export/INDEX", every other one NFS
std::string disk(int index, const std::string &moreMembers = "");
std::string diskCounters(int index); ///< its I/O record

/// A host of so many of each, with the kernel statistics that belong to them; `moreMembers` begins with a comma.
struct HostSize {
    int processors = 0;
    int disks = 0;
    int mounts = 0;
};
std::string hostOf(const HostSize &size, const std::string &moreMembers = "");

} // namespace bench
