#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/replay/Replay.h"
#include "platform/solaris.h"

// The replayed calls keep the contracts of the published ones.

namespace {

using Lines = std::vector<std::string>;

/// The result of a call as the journal would say it failed: "ok", or the error's name.
std::string outcome(long result) {
    return result == -1 ? strerrorname_np(errno) : "ok";
}

Lines namesIn(const char *path) {
    Lines names;
    DIR *directory = solaris::opendir(path);
    if (directory == nullptr) {
        return {strerrorname_np(errno)};
    }
    while (const dirent *entry = solaris::readdir(directory)) {
        names.emplace_back(static_cast<const char *>(entry->d_name));
    }
    solaris::closedir(directory);
    return names;
}

std::string linkOf(const std::string &path) {
    char text[256];
    const ssize_t length = solaris::readlink(path.c_str(), text, sizeof text);
    return length == -1 ? strerrorname_np(errno) : std::string(text, static_cast<std::size_t>(length));
}

TEST(ReplayedFiles, DirectoriesLinksAndDevices) {
    const std::string longName = "c" + std::string(300, '7') + "s2";
    replay::loadHostText(R"({
        "disks": [{"name": "c1t0d0", "slices": ["s0", "s2"], "path": "/pci@1f/sd@0,0", "major": 32, "minor": 8},
                  {"name": "emcpower0", "slices": ["a"], "major": 5000, "minor": 70000}],
        "entries": [{"path": "/dev/rdsk/z", "link": "../../devices/pci@1f/sd@0,0:b,raw"},
                    {"path": "/dev/rdsk/lost", "link": "../../devices/nowhere:c,raw", "position": "first"},
                    {"path": "/dev/rdsk/)" +
                         longName + R"(", "position": "first"},
                    {"path": "/dev/dsk/z", "link": "../../devices/pci@1f/sd@0,0:b"}]})");
    EXPECT_EQ(namesIn("/dev/rdsk"), (Lines{".", "..", "lost", longName, "c1t0d0s0", "c1t0d0s2", "emcpower0a", "z"}));
    EXPECT_EQ(namesIn("/dev/dsk"), (Lines{".", "..", "c1t0d0s0", "c1t0d0s2", "emcpower0a", "z"}));
    EXPECT_EQ(namesIn("/dev/md"), Lines{"ENOENT"});
    EXPECT_EQ(namesIn("/dev/dsk/z"), Lines{"ENOTDIR"});

    const struct {
        std::string path;
        std::string link;
        std::string opened; // outcome of open
        std::string status; // outcome of stat
        mode_t kind;
        dev_t device;
    } cases[] = {
        {"/dev/dsk/c1t0d0s2", "../../devices/pci@1f/sd@0,0:b", "ok", "ok", S_IFBLK, makedev(32, 9)},
        {"/dev/rdsk/c1t0d0s0", "../../devices/pci@1f/sd@0,0:a,raw", "ok", "ok", S_IFCHR, makedev(32, 8)},
        {"/dev/rdsk/emcpower0a", "EINVAL", "ok", "ok", S_IFCHR, makedev(5000, 70000)},
        {"/dev/rdsk/z", "../../devices/pci@1f/sd@0,0:b,raw", "ok", "ok", S_IFCHR, makedev(32, 9)},
        {"/dev/dsk/z", "../../devices/pci@1f/sd@0,0:b", "ok", "ok", S_IFBLK, makedev(32, 9)},
        {"/dev/rdsk/lost", "../../devices/nowhere:c,raw", "ENXIO", "ENOENT", 0, 0},
        {"/dev/rdsk/" + longName, "EINVAL", "ENXIO", "ok", S_IFREG, 0},
        {"/dev/rdsk/..", "EINVAL", "ENXIO", "ok", S_IFDIR, 0},
        {"/dev/rdsk/c1t0d0s1", "ENOENT", "ENXIO", "ENOENT", 0, 0},
    };
    for (const auto &expected : cases) {
        SCOPED_TRACE(expected.path);
        EXPECT_EQ(linkOf(expected.path), expected.link);
        struct stat status = {};
        EXPECT_EQ(outcome(solaris::stat(expected.path.c_str(), &status)), expected.status);
        EXPECT_EQ(status.st_mode & S_IFMT, expected.kind);
        EXPECT_EQ(status.st_rdev, expected.device);
        const int descriptor = solaris::open(expected.path.c_str(), O_RDONLY | O_NDELAY);
        EXPECT_EQ(outcome(descriptor), expected.opened);
        if (descriptor != -1) {
            struct stat opened = {};
            EXPECT_EQ(solaris::fstat(descriptor, &opened), 0);
            EXPECT_EQ(opened.st_rdev, expected.device);
            EXPECT_EQ(solaris::close(descriptor), 0);
        }
        EXPECT_EQ(outcome(solaris::close(descriptor)), "EBADF");
    }
    char little[4] = {'?', '?', '?', '?'};
    EXPECT_EQ(solaris::readlink("/dev/dsk/z", little, 3), 3);
    EXPECT_EQ(std::string(little, 4), "../?");
}

TEST(ReplayedFiles, RequestsFailAsDescribed) {
    replay::loadHostText(R"({"disks": [
        {"name": "whole", "mounted": ["s1"], "minor": 16, "geometry": {"dkg_nsect": 424}, "vtoc": {}},
        {"name": "bare"},
        {"name": "mode", "geometry": {}, "fails": {"DKIOCGGEOM O_RDWR": "ENOTTY", "open O_RDONLY": "EBUSY"}},
        {"name": "bad", "geometry": {}, "path": "/p", "mounted": ["s0"], "major": 9,
         "fails": {"fstat": "EIO", "DKIOCINFO": "ENOTTY", "DKIOCGGEOM O_RDONLY": "EROFS", "close": "EINTR",
                   "stat": "EACCES", "readlink": "ELOOP", "ustat": "EIO", "USCSICMD": "EPERM"}}]})");
    const struct {
        const char *path;
        int flags;
        const char *fstat;
        const char *info;
        const char *geometry;
        const char *label;
        const char *scsi;
        const char *close;
    } cases[] = {
        {"/dev/rdsk/wholes1", O_RDWR, "ok", "ok", "ok", "ok", "EIO", "ok"},
        {"/dev/rdsk/bares1", O_RDWR, "ok", "ok", "EIO", "EIO", "EIO", "ok"},
        {"/dev/rdsk/modes0", O_RDWR | O_NDELAY, "ok", "ok", "ENOTTY", "EIO", "EIO", "ok"},
        {"/dev/rdsk/modes0", O_RDONLY, "EBADF", "EBADF", "EBADF", "EBADF", "EBADF", "EBADF"},
        {"/dev/rdsk/bads0", O_RDONLY, "EIO", "ENOTTY", "EROFS", "EIO", "EPERM", "EINTR"},
        {"/dev/rdsk/bads0", O_RDWR, "EIO", "ENOTTY", "ok", "EIO", "EPERM", "EINTR"},
    };
    for (const auto &expected : cases) {
        SCOPED_TRACE(std::string(expected.path) + " " + std::to_string(expected.flags));
        struct stat status = {};
        dk_cinfo info = {};
        dk_geom geometry = {};
        vtoc label = {};
        uscsi_cmd command = {};
        const int descriptor = solaris::open(expected.path, expected.flags);
        EXPECT_EQ(outcome(solaris::fstat(descriptor, &status)), expected.fstat);
        EXPECT_EQ(outcome(solaris::ioctl(descriptor, DKIOCINFO, &info)), expected.info);
        EXPECT_EQ(outcome(solaris::ioctl(descriptor, DKIOCGGEOM, &geometry)), expected.geometry);
        EXPECT_EQ(outcome(solaris::ioctl(descriptor, DKIOCGVTOC, &label)), expected.label);
        EXPECT_EQ(outcome(solaris::ioctl(descriptor, USCSICMD, &command)), expected.scsi);
        EXPECT_EQ(outcome(solaris::close(descriptor)), expected.close);
    }
    struct stat status = {};
    struct ustat mounted = {};
    EXPECT_EQ(outcome(solaris::stat("/dev/dsk/bads3", &status)), "EACCES");
    EXPECT_EQ(linkOf("/dev/dsk/bads3"), "ELOOP");
    EXPECT_EQ(outcome(solaris::ustat(makedev(9, 0), &mounted)), "EIO");
    EXPECT_EQ(outcome(solaris::ustat(makedev(0, 17), &mounted)), "ok");
    EXPECT_EQ(outcome(solaris::ustat(makedev(0, 16), &mounted)), "EINVAL");

    const int descriptor = solaris::open("/dev/rdsk/wholes5", O_RDWR);
    dk_cinfo info = {};
    dk_geom geometry = {};
    EXPECT_EQ(solaris::ioctl(descriptor, DKIOCINFO, &info), 0);
    EXPECT_EQ(info.dki_partition, 5);
    EXPECT_EQ(solaris::ioctl(descriptor, DKIOCGGEOM, &geometry), 0);
    EXPECT_EQ(geometry.dkg_nsect, 424);
    EXPECT_EQ(outcome(solaris::ioctl(descriptor, 0x4FF, &info)), "ENOTTY");
    EXPECT_EQ(outcome(solaris::ioctl(descriptor, DKIOCINFO, nullptr)), "EFAULT");
    // What is open keeps its host.
    replay::loadHostText("{}");
    EXPECT_EQ(outcome(solaris::ioctl(descriptor, DKIOCGGEOM, &geometry)), "ok");
    EXPECT_EQ(solaris::close(descriptor), 0);
    EXPECT_EQ(outcome(solaris::open("/dev/rdsk/wholes5", O_RDWR)), "ENXIO");
}

TEST(ReplayedScsi, CommandsLengthsAndDirections) {
    replay::loadHostText(R"({"disks": [{"name": "c1", "scsi": {
        "INQUIRY": "01 02 03 04 05 06 07 08", "INQUIRY C0": "c0 c1 c2", "LOG SENSE 3B": "3b",
        "LOG SELECT 30": ""}}]})");
    const int descriptor = solaris::open("/dev/rdsk/c1s2", O_RDONLY | O_NDELAY);
    const std::vector<unsigned char> inquiry = {0x12, 0, 0, 0, 0xFF, 0};
    const std::vector<unsigned char> select = {0x4C, 0, 0x40, 0, 0, 0, 0, 0, 4, 0};
    const struct {
        const char *what;
        std::vector<unsigned char> cdb;
        int flags;
        std::string data;   // in the buffer before
        std::size_t length; // of the buffer
        const char *outcome;
        std::string after;
        std::size_t resid;
    } cases[] = {
        {"all of the answer", inquiry, USCSI_READ, "..........", 10, "ok", "\1\2\3\4\5\6\7\10..", 2},
        {"as far as the buffer goes", inquiry, USCSI_READ | USCSI_SILENT, "..........", 3, "ok", "\1\2\3.......", 0},
        {"no more than was asked for", {0x12, 0, 0, 0, 2, 0}, USCSI_READ, "....", 4, "ok", "\1\2..", 2},
        {"a page", {0x12, 1, 0xC0, 0, 0xFF, 0}, USCSI_READ, "....", 4, "ok", "\xc0\xc1\xc2.", 1},
        {"two bytes of count", {0x4D, 0, 0x7B, 0, 0, 0, 0, 1, 0, 0}, USCSI_READ, "..", 2, "ok", "\x3b.", 1},
        {"a page without an answer", {0x12, 1, 0x80, 0, 0xFF, 0}, USCSI_READ, "..", 2, "EIO", "..", 2},
        {"another page control", {0x4D, 0, 0x3B, 0, 0, 0, 0, 1, 0, 0}, USCSI_READ, "..", 2, "EIO", "..", 2},
        {"a byte too few", {0x12, 0, 0, 0, 0xFF}, USCSI_READ, "..", 2, "EIO", "..", 2},
        {"reading as writing", inquiry, USCSI_WRITE, "..", 2, "EINVAL", "..", 0},
        {"a parameter list", select, USCSI_WRITE, "\x30...", 4, "ok", "\x30...", 0},
        {"writing as reading", select, USCSI_READ, "\x30...", 4, "EINVAL", "\x30...", 0},
        {"less than announced", select, USCSI_WRITE, "\x30..", 3, "EINVAL", "\x30..", 0},
        {"another parameter list", select, USCSI_WRITE, "\x31...", 4, "EIO", "\x31...", 4},
    };
    for (const auto &expected : cases) {
        SCOPED_TRACE(expected.what);
        std::string data = expected.data;
        std::vector<unsigned char> cdb = expected.cdb;
        uscsi_cmd command = {};
        command.uscsi_flags = expected.flags;
        command.uscsi_cdb = reinterpret_cast<caddr_t>(cdb.data());
        command.uscsi_cdblen = static_cast<unsigned char>(cdb.size());
        command.uscsi_bufaddr = data.data();
        command.uscsi_buflen = expected.length;
        EXPECT_EQ(outcome(solaris::ioctl(descriptor, USCSICMD, &command)), expected.outcome);
        EXPECT_EQ(data, expected.after);
        EXPECT_EQ(command.uscsi_resid, expected.resid);
    }
    solaris::close(descriptor);
}

TEST(ReplayedMountTable, LinesAndTheirErrors) {
    const std::string longest(MNT_LINE_MAX - 8, 'x');
    replay::loadHostText(R"({"mnttab": ["/dev/dsk/c1t0d0s0\t/\tufs\trw,intr\t113", "a\tb\tc\td", "a\tb\tc\td\te\tf",
                                        "a\tb\tc\td\t)" +
                         longest + R"(", "a\tb\tc\td\tx)" + longest + R"(", "a\tb\tnfs\t-\t9"]})");
    std::FILE *table = solaris::fopen("/etc/mnttab", "r");
    ASSERT_NE(table, nullptr);
    struct mnttab entry = {};
    EXPECT_EQ(solaris::getmntent(table, &entry), 0);
    EXPECT_STREQ(entry.mnt_special, "/dev/dsk/c1t0d0s0");
    EXPECT_STREQ(entry.mnt_mountp, "/");
    EXPECT_STREQ(entry.mnt_fstype, "ufs");
    EXPECT_STREQ(entry.mnt_mntopts, "rw,intr");
    EXPECT_STREQ(entry.mnt_time, "113");
    replay::loadHostText(R"({"mnttab": []})"); // the open table goes on
    for (const int expected : {MNT_TOOFEW, MNT_TOOMANY, 0, MNT_TOOLONG, 0, -1, -1}) {
        EXPECT_EQ(solaris::getmntent(table, &entry), expected);
    }
    EXPECT_EQ(solaris::fclose(table), 0);

    table = solaris::fopen("/etc/mnttab", "r");
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(solaris::getmntent(table, &entry), -1);
    solaris::fclose(table);
    EXPECT_EQ(solaris::fopen("/etc/passwd", "r"), nullptr);
    replay::loadHostText("{}");
    EXPECT_EQ(solaris::fopen("/etc/mnttab", "r"), nullptr);
    EXPECT_EQ(errno, ENOENT);
}

TEST(ReplayedKernelStatistics, ChainSamplesAndLookups) {
    replay::loadHostText(R"({"kstat": [
        {"ks_module": "unix", "ks_name": "vminfo", "samples": [{"freemem": 1}, {"freemem": 2}]},
        {"data": {"idle": 4, "user": 1, "kernel": 2, "wait": 4294967295}, "ks_module": "cpu_stat", "ks_instance": 3,
         "ks_name": "cpu_stat3"},
        {"ks_module": "sd", "ks_instance": 3, "ks_name": "sd3", "ks_class": "disk", "ks_type": "KSTAT_TYPE_IO"}]})");
    kstat_ctl_t *control = kstat_open();
    kstat_ctl_t *other = kstat_open();
    ASSERT_NE(control, nullptr);
    replay::loadHostText("{}"); // handles keep their host
    EXPECT_EQ(kstat_open(), nullptr);

    kstat_t *const vminfo = control->kc_chain;
    kstat_t *const cpu = vminfo->ks_next;
    kstat_t *const disk = cpu->ks_next;
    EXPECT_EQ(disk->ks_next, nullptr);
    EXPECT_STREQ(disk->ks_class, "disk");

    vminfo_t copy = {};
    for (const unsigned expected : {1u, 2u, 2u}) {
        EXPECT_NE(kstat_read(control, vminfo, &copy), -1);
        EXPECT_EQ(copy.freemem, expected);
    }
    EXPECT_NE(kstat_read(other, other->kc_chain, nullptr), -1);
    EXPECT_EQ(static_cast<vminfo_t *>(other->kc_chain->ks_data)->freemem, 1u);
    EXPECT_NE(kstat_read(control, cpu, nullptr), -1);
    const auto *ticks = static_cast<const cpu_stat_t *>(cpu->ks_data);
    EXPECT_EQ(ticks->cpu_sysinfo.cpu[CPU_IDLE], 4u);
    EXPECT_EQ(ticks->cpu_sysinfo.cpu[CPU_USER], 1u);
    EXPECT_EQ(ticks->cpu_sysinfo.cpu[CPU_KERNEL], 2u);
    EXPECT_EQ(ticks->cpu_sysinfo.cpu[CPU_WAIT], 4294967295u);
    EXPECT_EQ(kstat_read(control, disk, nullptr), -1);
    EXPECT_EQ(kstat_read(control, other->kc_chain, nullptr), -1); // of another chain

    EXPECT_EQ(kstat_lookup(control, "unix", 0, "vminfo"), vminfo);
    EXPECT_EQ(kstat_lookup(control, "cpu_stat", 3, nullptr), cpu);
    EXPECT_EQ(kstat_lookup(control, nullptr, 3, "sd3"), disk);
    EXPECT_EQ(kstat_lookup(control, nullptr, 3, nullptr), cpu);
    EXPECT_EQ(kstat_lookup(control, "sd", -1, nullptr), disk);
    EXPECT_EQ(kstat_lookup(control, "sd", 0, nullptr), nullptr);
    EXPECT_EQ(kstat_lookup(control, "cpu_stat", 3, "cpu_stat"), nullptr);
    kstat_close(control);
    kstat_close(other);
}

/// A mapping with room for so many entries, filled with a pattern.
struct Mapping {
    explicit Mapping(unsigned room)
        : storage((sizeof(HBA_FCPTARGETMAPPING) + room * sizeof(HBA_FCPSCSIENTRY)) / 8, ~0ull) {
        get()->NumberOfEntries = room;
    }
    HBA_FCPTARGETMAPPING *get() {
        return reinterpret_cast<HBA_FCPTARGETMAPPING *>(storage.data());
    }
    unsigned lunAt(unsigned index) {
        HBA_FCPSCSIENTRY entry;
        std::memcpy(&entry, reinterpret_cast<char *>(storage.data()) + 8 + index * sizeof entry, sizeof entry);
        return entry.ScsiId.ScsiOSLun;
    }
    std::vector<unsigned long long> storage;
};

TEST(ReplayedHba, LibraryHandlesAndStatuses) {
    replay::loadHostText("{}");
    EXPECT_EQ(HBA_LoadLibrary(), 1u);
    replay::loadHostText(R"({"hba": {"adapters": [
        {"name": "hba-0", "openFailures": 1,
         "attributes": {"Model": "M"},
         "ports": [{"discovered": [{"attributes": {"PortWWN": "50060E8000c3a2b1"}}, {}],
                    "statistics": {"TxFrames": -1}, "status": {"GetPortStatistics": [2, 0, 8]}}, {}],
         "status": {"GetAdapterAttributes": [10]}},
        {"name": "hba-1", "attributes": {"NumberOfPorts": 9}, "status": {"GetAdapterName": 12}}]}})");
    char name[256] = "";
    char first[] = "hba-0";
    EXPECT_EQ(HBA_GetNumberOfAdapters(), 0u);
    EXPECT_EQ(HBA_GetAdapterName(0, name), 1u);
    EXPECT_EQ(HBA_OpenAdapter(first), 0u);
    EXPECT_EQ(HBA_FreeLibrary(), 1u);

    EXPECT_EQ(HBA_LoadLibrary(), 0u);
    EXPECT_EQ(HBA_LoadLibrary(), 1u);
    EXPECT_EQ(HBA_GetNumberOfAdapters(), 2u);
    EXPECT_EQ(HBA_GetAdapterName(0, name), 0u);
    EXPECT_STREQ(name, "hba-0");
    EXPECT_EQ(HBA_GetAdapterName(1, name), 12u);
    EXPECT_EQ(HBA_GetAdapterName(1, name), 12u);
    EXPECT_EQ(HBA_GetAdapterName(2, name), 6u);

    HBA_ADAPTERATTRIBUTES adapter = {};
    HBA_PORTATTRIBUTES port = {};
    HBA_PORTSTATISTICS statistics = {};
    EXPECT_EQ(HBA_OpenAdapter(first), 0u); // the one failure
    const HBA_HANDLE handle = HBA_OpenAdapter(first);
    ASSERT_NE(handle, 0u);
    EXPECT_EQ(HBA_GetAdapterAttributes(handle, &adapter), 10u);
    EXPECT_STREQ(adapter.Model, "");
    EXPECT_EQ(HBA_GetAdapterAttributes(handle, &adapter), 0u);
    EXPECT_STREQ(adapter.Model, "M");
    EXPECT_EQ(adapter.NumberOfPorts, 2u);
    EXPECT_EQ(HBA_GetAdapterPortAttributes(handle, 0, &port), 0u);
    EXPECT_EQ(port.NumberofDiscoveredPorts, 2u);
    EXPECT_EQ(HBA_GetAdapterPortAttributes(handle, 2, &port), 6u);
    EXPECT_EQ(HBA_GetDiscoveredPortAttributes(handle, 0, 0, &port), 0u);
    EXPECT_EQ(port.PortWWN.wwn[2], 0x0Eu);
    EXPECT_EQ(HBA_GetDiscoveredPortAttributes(handle, 0, 2, &port), 6u);
    EXPECT_EQ(HBA_GetDiscoveredPortAttributes(handle, 1, 0, &port), 6u);
    for (const HBA_STATUS expected : {2u, 0u, 8u, 0u, 0u}) {
        EXPECT_EQ(HBA_GetPortStatistics(handle, 0, &statistics), expected);
    }
    EXPECT_EQ(statistics.TxFrames, -1);

    const HBA_HANDLE second = HBA_OpenAdapter(first);
    HBA_CloseAdapter(handle);
    EXPECT_EQ(HBA_GetAdapterAttributes(handle, &adapter), 3u);
    EXPECT_EQ(HBA_GetAdapterAttributes(second, &adapter), 0u);
    EXPECT_EQ(HBA_FreeLibrary(), 0u);
    EXPECT_EQ(HBA_GetAdapterAttributes(second, &adapter), 1u);
    EXPECT_EQ(HBA_LoadLibrary(), 0u); // counts its failures afresh, and knows no handle of before
    EXPECT_EQ(HBA_OpenAdapter(first), 0u);
    EXPECT_NE(HBA_OpenAdapter(first), 0u);
    EXPECT_EQ(HBA_GetAdapterAttributes(second, &adapter), 3u);
    EXPECT_EQ(HBA_FreeLibrary(), 0u);
}

TEST(ReplayedHba, MappingsAndTheirRoom) {
    const std::string three =
        R"([{"ScsiId": {"ScsiOSLun": 5}}, {"ScsiId": {"ScsiOSLun": 6}}, {"ScsiId": {"ScsiOSLun": 7}}])";
    constexpr unsigned untouched = ~0u;
    const struct {
        std::string more;
        unsigned room;
        HBA_STATUS status;
        unsigned count;
        std::vector<unsigned> luns;
    } cases[] = {
        {"", 3, 0, 3, {5, 6, 7, untouched}},
        {"", 4, 0, 3, {5, 6, 7, untouched}},
        {"", 2, 7, 3, {5, 6, untouched}},
        {"", 0, 7, 3, {untouched}},
        {R"(, "NumberOfEntries": 5)", 3, 7, 5, {5, 6, 7, untouched}},
        {R"(, "NumberOfEntries": 5)", 6, 0, 5, {5, 6, 7, 0, 0, untouched}},
        {R"(, "NumberOfEntries": 1)", 6, 0, 1, {5, untouched}},
        {R"(, "NumberOfEntries": 4294967295)", 1, 7, 4294967295, {5, untouched}},
        {R"(, "status": {"GetFcpTargetMapping": [7]})", 4, 7, 3, {5, 6, 7, untouched}},
        {R"(, "status": {"GetFcpTargetMapping": 2})", 4, 2, 4, {untouched}},
    };
    for (const auto &expected : cases) {
        SCOPED_TRACE(expected.more + " room " + std::to_string(expected.room));
        replay::loadHostText(R"({"hba": {"adapters": [{"name": "a", "targetMapping": )" + three + expected.more +
                             "}]}}");
        char name[] = "a";
        ASSERT_EQ(HBA_LoadLibrary(), 0u);
        Mapping mapping(expected.room);
        EXPECT_EQ(HBA_GetFcpTargetMapping(HBA_OpenAdapter(name), mapping.get()), expected.status);
        HBA_FreeLibrary();
        EXPECT_EQ(mapping.get()->NumberOfEntries, expected.count);
        for (unsigned i = 0; i < expected.luns.size(); ++i) {
            EXPECT_EQ(mapping.lunAt(i), expected.luns[i]) << i;
        }
    }
}

TEST(ReplayedUsers, EntriesAndTheirRoom) {
    replay::loadHostText(R"({"shadow": {"root": "hash", "guest": "", "none": null}})");
    const struct {
        const char *user;
        int length;
        int error; // of errno afterwards; it was EDOM before
        bool found;
        const char *hash;
    } cases[] = {
        {"root", 100, EDOM, true, "hash"},    {"root", 10, EDOM, true, "hash"},
        {"root", 9, ERANGE, false, nullptr},  {"guest", 7, EDOM, true, ""},
        {"guest", 6, ERANGE, false, nullptr}, {"none", 5, EDOM, true, nullptr},
        {"none", 4, ERANGE, false, nullptr},  {"nobody", 100, EDOM, false, nullptr},
        {"root", -1, ERANGE, false, nullptr},
    };
    for (const auto &expected : cases) {
        SCOPED_TRACE(std::string(expected.user) + " " + std::to_string(expected.length));
        const auto buffer = std::make_unique<char[]>(static_cast<std::size_t>(std::max(expected.length, 0)));
        spwd entry = {};
        errno = EDOM;
        const spwd *found = solaris::getspnam_r(expected.user, &entry, buffer.get(), expected.length);
        EXPECT_EQ(errno, expected.error);
        ASSERT_EQ(found, expected.found ? &entry : nullptr);
        if (expected.found) {
            EXPECT_STREQ(entry.sp_namp, expected.user);
            EXPECT_STREQ(entry.sp_pwdp, expected.hash);
        }
    }
}

TEST(ReplayedUsers, HashesStandInOneStorage) {
    errno = 0;
    const char *hashed = solaris::crypt("battery staple", "rq");
    if (hashed == nullptr && errno == ENOSYS) {
        GTEST_SKIP() << "no libcrypt on this machine";
    }
    EXPECT_STREQ(hashed, "rqbghJ6LtIlnQ");
    const char *elsewhere = nullptr;
    std::thread([&] { elsewhere = solaris::crypt("correct horse", "$5$Xk8vQ2rT$"); }).join();
    EXPECT_STREQ(elsewhere, "$5$Xk8vQ2rT$bl9PZWLoSEaRMwn.dwHkgXUOEwtshm4AvBiNmZRlCR1");
    EXPECT_EQ(hashed, elsewhere) << "the storage of the result is one for all threads";
    EXPECT_EQ(solaris::crypt("x", "*LK*"), nullptr);
}

TEST(ReplayedSystem, WhatIsDescribedAndWhatIsNot) {
    replay::loadHostText(R"({
        "sysinfo": {"SI_HOSTNAME": "rill"}, "uname": {"nodename": "rill"}, "sysconf": {"_SC_CPUID_MAX": 31},
        "processors": [{"id": 4, "pi_state": "P_NOINTR", "pi_processor_type": "sparcv9", "pi_clock": 1281}]})");
    char buffer[8] = "???????";
    EXPECT_EQ(solaris::sysinfo(SI_HOSTNAME, buffer, 3), 5);
    EXPECT_STREQ(buffer, "ri");
    EXPECT_EQ(solaris::sysinfo(SI_HOSTNAME, buffer, 5), 5);
    EXPECT_STREQ(buffer, "rill");
    EXPECT_EQ(outcome(solaris::sysinfo(SI_VERSION, buffer, 8)), "EINVAL");
    utsname name = {};
    EXPECT_EQ(solaris::uname(&name), 0);
    EXPECT_STREQ(name.nodename, "rill");
    EXPECT_EQ(solaris::sysconf(_SC_CPUID_MAX), 31);
    EXPECT_EQ(outcome(solaris::sysconf(_SC_PAGESIZE)), "EINVAL");
    processor_info_t information = {};
    EXPECT_EQ(solaris::processor_info(4, &information), 0);
    EXPECT_EQ(information.pi_state, P_NOINTR);
    EXPECT_STREQ(information.pi_processor_type, "sparcv9");
    EXPECT_EQ(outcome(solaris::processor_info(0, &information)), "EINVAL");
    replay::loadHostText("{}");
    EXPECT_EQ(solaris::uname(&name), -1);
    struct statvfs64 status = {};
    EXPECT_EQ(outcome(solaris::statvfs64("/", &status)), "ENOENT");
}

TEST(ReplayedCalls, ManyThreadsMayMakeThem) {
    const std::string description = R"({
        "disks": [{"name": "c1", "geometry": {"dkg_nhead": 3}}], "mnttab": ["a\tb\tc\td\te"],
        "kstat": [{"ks_name": "cpu_stat0", "data": {}}], "hba": {"adapters": [{"name": "hba-0"}]}})";
    constexpr int threadCount = 4;
    constexpr int rounds = 50;
    replay::loadHostText(description);
    replay::startJournal();
    std::atomic<int> faults = 0;
    std::atomic<int> loaded = 0;
    const auto expect = [&](bool holds) { faults += holds ? 0 : 1; };
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < rounds; ++round) {
                if (i == 0) {
                    replay::loadHostText(description);
                }
                dk_geom geometry = {};
                const int descriptor = solaris::open("/dev/rdsk/c1s2", O_RDONLY);
                expect(solaris::ioctl(descriptor, DKIOCGGEOM, &geometry) == 0 && geometry.dkg_nhead == 3);
                expect(solaris::close(descriptor) == 0);
                kstat_ctl_t *control = kstat_open();
                expect(kstat_read(control, control->kc_chain, nullptr) != -1);
                kstat_close(control);
                struct mnttab entry = {};
                std::FILE *table = solaris::fopen("/etc/mnttab", "r");
                expect(solaris::getmntent(table, &entry) == 0 && std::strcmp(entry.mnt_time, "e") == 0);
                solaris::fclose(table);
                expect(namesIn("/dev/rdsk").size() == 10);
                if (HBA_LoadLibrary() == HBA_STATUS_OK) {
                    char name[] = "hba-0";
                    expect(++loaded == 1);
                    expect(HBA_OpenAdapter(name) != 0);
                    --loaded;
                    expect(HBA_FreeLibrary() == HBA_STATUS_OK);
                }
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(faults, 0);
    EXPECT_EQ(std::ranges::count(replay::stopJournal(), "kstat_close"), threadCount * rounds);
}

TEST(ReplayedJournal, OneLineForEveryCall) {
    replay::loadHostText(
        R"({"disks": [{"name": "c1", "path": "/p", "major": 32, "mounted": ["s0"], "scsi": {"LOG SELECT 30": ""}}],
        "mnttab": [], "kstat": [{"ks_module": "sd", "ks_instance": 1, "ks_name": "sd1"}], "shadow": {"root": "ab"},
        "hba": {"adapters": [{"name": "hba-0"}]}})");
    replay::startJournal();
    char buffer[64];
    struct stat status = {};
    struct ustat mounted = {};
    struct statvfs64 size = {};
    const int descriptor = solaris::open("/dev/rdsk/c1s0", O_RDWR | O_NDELAY);
    solaris::open("/dev/rdsk/c2s0", O_RDONLY);
    solaris::fstat(descriptor, &status);
    solaris::ustat(status.st_rdev, &mounted);
    solaris::ioctl(descriptor, DKIOCGGEOM, buffer);
    unsigned char cdb[] = {0x4C, 0, 0x40, 0, 0, 0, 0, 0, 2, 0};
    unsigned char list[] = {0x30, 0x0A};
    uscsi_cmd command = {};
    command.uscsi_cdb = reinterpret_cast<caddr_t>(cdb);
    command.uscsi_cdblen = sizeof cdb;
    command.uscsi_bufaddr = reinterpret_cast<caddr_t>(list);
    command.uscsi_buflen = sizeof list;
    solaris::ioctl(descriptor, USCSICMD, &command);
    solaris::close(descriptor);
    namesIn("/dev/dsk");
    solaris::readlink("/dev/dsk/c1s0", buffer, sizeof buffer);
    solaris::stat("/dev/dsk/c1s9", &status);
    solaris::fclose(solaris::fopen("/etc/mnttab", "r"));
    solaris::statvfs64("/", &size);
    solaris::sysinfo(SI_SYSNAME, buffer, sizeof buffer);
    solaris::sysconf(_SC_PAGESIZE);
    EXPECT_EQ(solaris::sleep(3600), 0u); // at once
    kstat_ctl_t *control = kstat_open();
    kstat_read(control, kstat_lookup(control, "sd", 1, nullptr), nullptr);
    kstat_close(control);
    spwd entry = {};
    solaris::getspnam_r("root", &entry, buffer, sizeof buffer);
    solaris::getspnam_r("nobody", &entry, buffer, sizeof buffer);
    solaris::getspnam_r("root", &entry, buffer, 1);
    char name[] = "hba-0";
    HBA_LoadLibrary();
    const HBA_HANDLE handle = HBA_OpenAdapter(name);
    Mapping mapping(3);
    HBA_GetFcpTargetMapping(handle, mapping.get());
    HBA_CloseAdapter(handle);
    HBA_CloseAdapter(handle);
    HBA_FreeLibrary();
    const Lines journal = replay::stopJournal();
    solaris::sleep(1);
    EXPECT_EQ(journal, (Lines{"open /dev/rdsk/c1s0 O_RDWR|O_NDELAY",
                              "open /dev/rdsk/c2s0 O_RDONLY ENXIO",
                              "fstat /dev/rdsk/c1s0",
                              "ustat 32,0",
                              "ioctl DKIOCGGEOM /dev/rdsk/c1s0 EIO",
                              "ioctl USCSICMD 4c 00 40 00 00 00 00 00 02 00 data 30 0a",
                              "close /dev/rdsk/c1s0",
                              "opendir /dev/dsk",
                              "closedir /dev/dsk",
                              "readlink /dev/dsk/c1s0",
                              "stat /dev/dsk/c1s9 ENOENT",
                              "fopen /etc/mnttab",
                              "fclose",
                              "statvfs64 / ENOENT",
                              "sysinfo SI_SYSNAME EINVAL",
                              "sysconf _SC_PAGESIZE EINVAL",
                              "sleep 3600",
                              "kstat_open",
                              "kstat_lookup sd:1:*",
                              "kstat_read sd:1:sd1 ENXIO",
                              "kstat_close",
                              "getspnam_r root",
                              "getspnam_r nobody",
                              "getspnam_r root ERANGE",
                              "HBA_LoadLibrary",
                              "HBA_OpenAdapter hba-0",
                              "HBA_GetFcpTargetMapping hba-0 3",
                              "HBA_CloseAdapter hba-0",
                              "HBA_CloseAdapter ?",
                              "HBA_FreeLibrary"}));
    EXPECT_EQ(replay::stopJournal(), Lines{});
}

} // namespace
