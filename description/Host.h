#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/solaris.h"

// What a host looks like, as data. Members bear the names that they have in a host description.

namespace description {

template <class Value>
using ByText = std::map<std::string, Value, std::less<>>;

using StatVfs = struct ::statvfs64;

struct Processor : processor_info_t {
    processorid_t id;
};

using KernelSample = std::variant<vminfo_t, cpu_stat_t, kstat_io_t>;

/// A record of the kernel statistics chain, and what successive reads of it find; none, and it cannot be read.
struct KernelRecord : kstat_t {
    std::vector<KernelSample> samples;
};

/// An empty sample of the kind that the record's type, module and name call for. Nothing when such records have none.
std::optional<KernelSample> blankSample(const kstat_t &record);

/// What a disk and its slices look like.
struct Disk {
    std::string name;
    std::vector<std::string> slices = {"s0", "s1", "s2", "s3", "s4", "s5", "s6", "s7"};
    std::optional<std::string> path; // of the physical device; without it the entries are no symbolic links
    unsigned major;
    unsigned minor;
    std::vector<std::string> mounted;
    std::optional<dk_geom> geometry;
    std::optional<struct ::vtoc> vtoc;
    ByText<std::vector<unsigned char>> scsi; // answers by command
    ByText<int> fails;                       // errno by call, or by call and access mode ("open O_RDWR")
};

struct Entry {
    std::string path;
    std::optional<std::string> link;
    int position;
};
inline constexpr int positionLast = 0; // the default
inline constexpr int positionFirst = 1;

/// The statuses that one HBA call answers: one per call and then 0, or with `always` the same for ever.
struct HbaAnswers {
    std::vector<HBA_STATUS> statuses;
    bool always;
};

struct HbaDiscoveredPort {
    struct Status {
        HbaAnswers GetDiscoveredPortAttributes;
    };
    HBA_PORTATTRIBUTES attributes;
    Status status;
};

struct HbaPort {
    struct Status {
        HbaAnswers GetAdapterPortAttributes;
        HbaAnswers GetPortStatistics;
    };
    HBA_PORTATTRIBUTES attributes;
    HBA_PORTSTATISTICS statistics;
    std::vector<HbaDiscoveredPort> discovered;
    Status status;
};

struct HbaAdapter {
    struct Status {
        HbaAnswers GetAdapterName;
        HbaAnswers GetAdapterAttributes;
        HbaAnswers GetFcpTargetMapping;
    };
    std::string name;
    unsigned openFailures;
    HBA_ADAPTERATTRIBUTES attributes;
    std::vector<HbaPort> ports;
    std::vector<HBA_FCPSCSIENTRY> targetMapping;
    std::optional<HBA_UINT32> NumberOfEntries; // that the library claims; without it, as many as there are
    Status status;
};

struct Hba {
    std::vector<HbaAdapter> adapters;
};

/// One host. A facility that is empty or has no value is absent.
struct Host {
    std::map<int, std::string> sysinfo; // by command
    std::optional<struct ::utsname> uname;
    std::map<int, long> sysconf; // by name
    std::map<processorid_t, Processor> processors;
    std::optional<std::vector<KernelRecord>> kstat;
    std::optional<std::string> mnttab; // the whole text
    ByText<StatVfs> statvfs;
    ByText<std::optional<std::string>> shadow; // sp_pwdp by user
    std::vector<Disk> disks;
    std::vector<Entry> entries;
    std::optional<Hba> hba;
};

/// Reads a description. Raises HostDescriptionError.
Host readHost(const std::string &json);

/// The description of the host, which `readHost` takes back. Members that have their default are left out.
std::string writeHost(const Host &host);

} // namespace description
