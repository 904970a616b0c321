#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "common/system/DiskDevices.h"
#include "description/JsonWriter.h"
#include "description/Sparse.h"
#include "platform/solaris.h"

// What a host looks like, as data. Members bear the names that they have in a host description.

namespace description {

template <class Value>
using ByText = std::map<std::string, Value, std::less<>>;

/// Gives the next part of a text, an empty one at its end.
using TextSource = std::function<std::string_view()>;

using StatVfs = struct ::statvfs64;

struct Processor : processor_info_t {
    processorid_t id;
};

/// A read that fails, with its errno.
struct KernelReadFailure {
    int error;
};

/// The published vminfo_t as newer kernels keep it. Older ones keep no `updates`, and their records end before it.
struct PagingCounters {
    std::uint64_t freemem;
    std::uint64_t swap_resv;
    std::uint64_t swap_alloc;
    std::uint64_t swap_avail;
    std::uint64_t swap_free;
    std::uint64_t updates;
};

/// The statistics of a record of type KSTAT_TYPE_NAMED, in its order.
using NamedStatistics = std::vector<kstat_named_t>;

/// What one reading of a record finds, and when, in nanoseconds; without a time, it is that of the record.
struct KernelSample : std::variant<PagingCounters, cpu_stat_t, kstat_io_t, NamedStatistics, KernelReadFailure> {
    using variant::variant;
    std::optional<hrtime_t> ks_snaptime;
};

/// A record of the kernel statistics chain, and what successive reads of it find; none, and it cannot be read.
struct KernelRecord : kstat_t {
    std::vector<KernelSample> samples;
};

/// An empty sample of the kind that the record's type, module and name call for. Nothing when such records have none.
std::optional<KernelSample> blankSample(const kstat_t &record);

/// The bytes that a kernel with such a sample keeps, and in how many parts.
std::size_t sizeOf(const KernelSample &sample);
uint_t partsOf(const KernelSample &sample);

/// How large a mounted file system is. `fails` is the errno with which it does not say so, 0 when it does.
struct FileSystem : StatVfs {
    std::string path;
    unsigned seconds; // until it answers
    int fails;
};

/// What getmntent tells of a mounted file system.
struct MountEntry {
    std::string mnt_special;
    std::string mnt_mountp;
    std::string mnt_fstype;
    std::string mnt_mntopts;
    std::string mnt_time;
};

/// Lines of the table's text without their ends; an entry where getmntent tells another than the line would say.
using MountTable = std::vector<std::variant<std::string, Sparse<MountEntry>>>;

/// The text of a symbolic link; nothing when an entry is none.
using Link = std::optional<std::string>;

/// What is left out follows from the slice's place on its disk.
struct Slice {
    std::string name;              // what the names of its entries end in
    std::optional<unsigned> place; // without it, its index among the slices of its disk
    std::optional<unsigned> minor;
    std::optional<ushort_t> partition;
    std::optional<Link> link;    // in /dev/dsk
    std::optional<Link> rawLink; // in /dev/rdsk
};

inline constexpr std::string_view blockDirectory = tarn::dev_dsk;
inline constexpr std::string_view rawDirectory = tarn::s_dev_rdsk;

/// "s0" to "s7", and both directories.
const std::vector<Slice> &usualSlices();
const std::vector<std::string> &usualDirectories();

/// What a disk and its slices look like.
struct Disk {
    std::string name;
    Sparse<std::vector<Slice>, usualSlices> slices;
    Sparse<std::vector<std::string>, usualDirectories> directories;
    std::optional<std::string> path; // of the physical device; without it the entries are no symbolic links
    unsigned major;
    unsigned minor;
    std::vector<std::string> mounted;
    std::optional<dk_geom> geometry;
    Sparse<std::optional<struct ::vtoc>> vtoc;
    ByText<std::vector<unsigned char>> scsi; // answers by command
    ByText<int> fails;        // errno, or 0, by call ("fstat"), by call and open flags ("open O_RDWR"), or by command
    ByText<unsigned> seconds; // until a call answers, by the same names

    unsigned place(std::size_t slice) const {
        return (*slices)[slice].place.value_or(static_cast<unsigned>(slice));
    }
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
    Sparse<HBA_PORTATTRIBUTES> attributes;
    Status status;
};

struct HbaPort {
    struct Status {
        HbaAnswers GetAdapterPortAttributes;
        HbaAnswers GetPortStatistics;
    };
    Sparse<HBA_PORTATTRIBUTES> attributes; // where not held, NumberofDiscoveredPorts is what `discovered` has
    Sparse<HBA_PORTSTATISTICS> statistics;
    std::vector<Sparse<HBA_PORTSTATISTICS>> laterStatistics; // what later readings find, in their order
    std::vector<HbaDiscoveredPort> discovered;
    Status status;
};

/// The entries of a target mapping, one by one or wherever they came to be: on a large host they are tens of megabytes,
/// which nobody copies.
class TargetMapping {
public:
    TargetMapping() = default;
    explicit TargetMapping(std::vector<Sparse<HBA_FCPSCSIENTRY>> &&list) : listed(std::move(list)) {
    }
    TargetMapping(std::shared_ptr<const void> &&storageOfEntries, std::span<const HBA_FCPSCSIENTRY> entriesInIt)
        : storage(std::move(storageOfEntries)), known(entriesInIt) {
    }

    std::size_t size() const {
        return storage == nullptr ? listed.size() : known.size();
    }
    const HBA_FCPSCSIENTRY &operator[](std::size_t index) const {
        return storage == nullptr ? *listed[index] : known[index];
    }

private:
    std::shared_ptr<const void> storage;
    std::span<const HBA_FCPSCSIENTRY> known;
    std::vector<Sparse<HBA_FCPSCSIENTRY>> listed; // without storage
};

struct HbaAdapter {
    struct Status {
        HbaAnswers GetAdapterName;
        HbaAnswers GetAdapterAttributes;
        HbaAnswers GetFcpTargetMapping;
    };
    std::string name;
    unsigned openFailures;
    Sparse<HBA_ADAPTERATTRIBUTES> attributes; // where not held, NumberOfPorts is what `ports` has
    std::vector<HbaPort> ports;
    TargetMapping targetMapping;
    std::optional<HBA_UINT32> NumberOfEntries; // that the library claims; without it, as many as there are
    Status status;
    ByText<unsigned> seconds; // until a call answers, by its name without "HBA_"
};

struct Hba {
    std::optional<HBA_UINT32> NumberOfAdapters; // that the library claims; without it, as many as there are
    std::vector<HbaAdapter> adapters;
};

/// One host. A facility that is empty or has no value is absent.
struct Host {
    std::string recordedAt;             // "2026-11-24T10:00:00Z"; empty when it was not recorded
    std::map<int, std::string> sysinfo; // by command
    std::optional<struct ::utsname> uname;
    std::map<int, long> sysconf; // by name
    std::map<processorid_t, Processor> processors;
    std::optional<std::vector<Sparse<KernelRecord>>> kstat;
    std::optional<MountTable> mnttab;
    ByText<FileSystem> statvfs;                // by path
    ByText<std::optional<std::string>> shadow; // sp_pwdp by user
    std::vector<Sparse<Disk>> disks;
    std::vector<Entry> entries;
    ByText<std::vector<std::string>> listings; // by directory, the names that it lists first
    std::optional<Hba> hba;
};

/// Reads a description. Raises HostDescriptionError.
Host readHost(const std::string &json);
Host readHost(const TextSource &source);

/// Writes the description of the host, which `readHost` takes back. Members that have their default are left out.
void writeHost(const Host &host, const TextSink &sink);

} // namespace description
