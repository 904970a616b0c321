// Logical disks, processors, CPU ticks, the disk name map and disk I/O counters, over replayed hosts.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "native/JavaError.h"
#include "native/SolarisCpuUtilizationInformation.h"
#include "native/SolarisDiskIOInformation.h"
#include "native/SolarisDiskMap.h"
#include "native/SolarisLogicalDisk.h"
#include "native/SolarisProcessor.h"
#include "native/SolarisUtil.h"
#include "platform/replay/Replay.h"

namespace tarn {
namespace {

using Texts = std::vector<std::string>;
using TextMap = std::map<std::string, std::string>;

/// What the error says that the action ends with; "no error" when it ends well.
std::string errorOf(const std::function<void()> &action) {
    try {
        action();
    } catch (const NativeError &error) {
        return error.getMessage();
    }
    return "no error";
}

/// The platform calls of the action, whether it ends well or not.
Texts journalOf(const std::function<void()> &action) {
    replay::startJournal();
    errorOf(action);
    return replay::stopJournal();
}

std::ptrdiff_t count(const Texts &journal, const std::string &call) {
    return std::count(journal.begin(), journal.end(), call);
}

// ---- Logical disks

void loadMounts(const Texts &lines, const std::string &otherMembers = "") {
    std::string table;
    for (const std::string &line : lines) {
        table += (table.empty() ? "\"" : ", \"") + line + "\"";
    }
    replay::loadHostText(R"({"mnttab": [)" + table + "]" + otherMembers + "}");
}

std::string mount(const std::string &device, const std::string &mountPoint, const std::string &type) {
    return device + R"(\t)" + mountPoint + R"(\t)" + type + R"(\trw\t1130837021)";
}

std::string describe(const LogicalDisk &disk) {
    std::string text = disk.device + " " + disk.mountPoint + " " + disk.fileSystemType;
    for (const std::uint64_t size : {disk.totalBytes, disk.availableBytes, disk.freeBytes, disk.blockSize}) {
        text += " " + std::to_string(size);
    }
    return text;
}

TEST(LogicalDiskTest, TheMountTableDecides) {
    const std::string root = mount("/dev/dsk/c1t0d0s0", "/", "ufs");
    const std::string home = mount("shore:/export/home", "/home", "nfs");
    const std::string overHome = mount("/dev/dsk/c1t0d0s7", "/home", "ufs");
    const std::string tooLong = mount(std::string(1024, 'x'), "/long", "ufs");
    const std::string notFound = "Logical Disk Not Found: ";
    const struct {
        const char *what;
        Texts table;
        Texts listed;
        const char *name;
        std::string found; // the disk, or the error
    } cases[] = {
        {"other types are passed over, similar ones too",
         {mount("proc", "/proc", "proc"), root, mount("swap", "/tmp", "tmpfs"), mount("a", "/a", "UFS"),
          mount("b", "/b", "nfs3"), mount("c", "/c", "uf"), home},
         {"/", "/home"}, "/home", "shore:/export/home /home nfs 0 0 0 0"},
        {"and are not found by name", {mount("swap", "/tmp", "tmpfs")}, {}, "/tmp", notFound + "/tmp"},
        {"a mount point is listed as often as it is mounted; the first is described", {home, root, overHome},
         {"/home", "/", "/home"}, "/home", "shore:/export/home /home nfs 0 0 0 0"},
        {"unless the first is of another type", {mount("auto", "/home", "autofs"), overHome}, {"/home"}, "/home",
         "/dev/dsk/c1t0d0s7 /home ufs 0 0 0 0"},
        {"a trailing slash is another name", {home}, {"/home"}, "/home/", notFound + "/home/"},
        {"and so are capitals", {home}, {"/home"}, "/Home", notFound + "/Home"},
        {"too few fields end the table", {root, R"(a\tb\tufs\td)", home}, {"/"}, "/home", notFound + "/home"},
        {"too many end it", {root, home + R"(\tmore)", home}, {"/"}, "/home", notFound + "/home"},
        {"an over-long line ends it", {root, tooLong, home}, {"/"}, "/home", notFound + "/home"},
        {"but what precedes is found", {root, tooLong}, {"/"}, "/", "/dev/dsk/c1t0d0s0 / ufs 0 0 0 0"},
        {"an empty table", {}, {}, "", notFound},
    };
    for (const auto &[what, table, listed, name, found] : cases) {
        SCOPED_TRACE(what);
        loadMounts(table);
        replay::startJournal();
        EXPECT_EQ(ListLogicalDisks(), listed);
        std::string described;
        const std::string error = errorOf([&] { described = describe(GetLogicalDisk(name, false)); });
        EXPECT_EQ(error == "no error" ? described : error, found);
        EXPECT_EQ(replay::stopJournal(), (Texts{"fopen /etc/mnttab", "fclose", "fopen /etc/mnttab", "fclose"}));
    }
}

TEST(LogicalDiskTest, WithoutATableNothingIsListedAndNothingFound) {
    replay::loadHostText("{}");
    const Texts journal = journalOf([] {
        EXPECT_EQ(ListLogicalDisks(), Texts{});
        EXPECT_EQ(errorOf([] { GetLogicalDisk("/", true); }), "Unable to open mount table file: /etc/mnttab");
    });
    EXPECT_EQ(count(journal, "fclose"), 0);
}

TEST(LogicalDiskTest, SizesAreBytesAndAskedForOnly) {
    loadMounts({mount("d", "/", "ufs"), mount("far:/", "/far", "nfs")},
               R"(, "statvfs": {"/": {"f_bsize": 4294967296, "f_frsize": 8192, "f_blocks": 8589934592,
                                      "f_bavail": 4294967297, "f_bfree": 3}})");
    EXPECT_EQ(describe(GetLogicalDisk("/", true)), "d / ufs 70368744177664 35184372097024 24576 4294967296");
    EXPECT_EQ(describe(GetLogicalDisk("/far", true)), "far:/ /far nfs 0 0 0 0");
    EXPECT_EQ(count(journalOf([] { GetLogicalDisk("/", false); }), "statvfs64 /"), 0);
}

// ---- Processors

std::string processor(int id, const std::string &state = "P_ONLINE", const std::string &type = "sparcv9") {
    return R"({"id": )" + std::to_string(id) + R"(, "pi_state": ")" + state + R"(", "pi_processor_type": ")" + type +
           R"(", "pi_clock": 1200})";
}

void loadProcessors(int configured, const Texts &processors, const std::string &largest = R"(, "_SC_CPUID_MAX": 31)") {
    std::string list;
    for (const std::string &one : processors) {
        list += (list.empty() ? "" : ", ") + one;
    }
    replay::loadHostText(R"({"sysconf": {"_SC_NPROCESSORS_CONF": )" + std::to_string(configured) + largest +
                         R"(}, "processors": [)" + list + "]}");
}

std::string ids() {
    std::string text;
    for (const ProcessorInfo &info : GetProcessors()) {
        text += std::to_string(info.processorId) + " ";
    }
    return text;
}

TEST(ProcessorTest, IdsAreProbedUntilAllHaveAnswered) {
    const struct {
        const char *what;
        int configured;
        Texts processors;
        std::string found;
        std::string lastProbed;
    } cases[] = {
        {"gaps are passed over", 4, {processor(5), processor(0), processor(1), processor(4), processor(9)}, "0 1 4 5 ",
         "processor_info 5"},
        {"fewer answer than are configured", 4, {processor(0), processor(31)}, "0 31 ", "processor_info 31"},
        {"the largest id does not answer", 2, {processor(3)}, "3 ", "processor_info 31 EINVAL"},
        {"none are configured", 0, {processor(0)}, "", "sysconf _SC_CPUID_MAX"},
        {"a negative count", -1, {processor(0)}, "", "sysconf _SC_CPUID_MAX"},
    };
    for (const auto &[what, configured, processors, found, lastProbed] : cases) {
        SCOPED_TRACE(what);
        loadProcessors(configured, processors);
        std::string answer;
        const Texts journal = journalOf([&answer] { answer = ids(); });
        EXPECT_EQ(answer, found);
        EXPECT_EQ(journal.back(), lastProbed);
    }
    replay::loadHostText("{}");
    EXPECT_EQ(ids(), "");
    loadProcessors(2, {processor(0), processor(600)}, ""); // a system that does not tell its largest id
    EXPECT_EQ(ids(), "0 600 ");
}

TEST(ProcessorTest, NoMoreThan128AreReported) {
    Texts many;
    for (int id = 0; id < 400; id += 2) {
        many.push_back(processor(id));
    }
    for (const int configured : {127, 128, 129, 200}) {
        loadProcessors(configured, many, R"(, "_SC_CPUID_MAX": 511)");
        const std::vector<ProcessorInfo> processors = GetProcessors();
        ASSERT_EQ(processors.size(), static_cast<std::size_t>(std::min(configured, 128)));
        EXPECT_EQ(processors.back().processorId, std::min(configured, 128) * 2 - 2);
    }
    EXPECT_TRUE(GetProcessorInfo(254).has_value());
    EXPECT_FALSE(GetProcessorInfo(256).has_value());
}

TEST(ProcessorTest, OneIsDescribedByWhatTheSystemTells) {
    const char *const states[] = {"P_ONLINE", "P_OFFLINE", "P_FAULTED", "P_POWEROFF", "P_NOINTR", "P_SPARE"};
    Texts all;
    for (const char *state : states) {
        all.push_back(processor(static_cast<int>(all.size()), state, "sparcv9+vis3b+16")); // fills its field
    }
    loadProcessors(static_cast<int>(all.size()), all);
    for (int id = 0; id < static_cast<int>(all.size()); ++id) {
        const ProcessorInfo info = GetProcessorInfo(id).value();
        EXPECT_EQ(info.processorId, id);
        EXPECT_EQ(info.state, id == 0 ? "online" : "offline") << states[id];
        EXPECT_EQ(info.processorType, "sparcv9+vis3b+16");
        EXPECT_EQ(info.clockMHz, 1200);
    }
    EXPECT_FALSE(GetProcessorInfo(-1).has_value());
    EXPECT_FALSE(GetProcessorInfo(6).has_value());
}

// ---- Kernel statistics

/// A record of the chain; without data it cannot be read.
std::string record(const std::string &module, int instance, const std::string &name, const std::string &kind,
                   const std::string &data = "") {
    return R"({"ks_module": ")" + module + R"(", "ks_instance": )" + std::to_string(instance) + R"(, "ks_name": ")" +
           name + R"(", )" + kind + (data.empty() ? "" : R"(, "data": {)" + data + "}") + "}";
}

const char *const raw = R"("ks_class": "misc", "ks_type": "KSTAT_TYPE_RAW")";
const char *const disk = R"("ks_class": "disk", "ks_type": "KSTAT_TYPE_IO")";

std::string chain(const Texts &records) {
    std::string text;
    for (const std::string &one : records) {
        text += (text.empty() ? "" : ", ") + one;
    }
    return R"("kstat": [)" + text + "]";
}

std::string describe(const CpuUtilInfo &info) {
    std::string text = std::to_string(info.cpuId) + ":";
    for (const std::int32_t ticks : {info.userTicks, info.kernelTicks, info.waitTicks, info.idleTicks}) {
        text += " " + std::to_string(ticks);
    }
    return text;
}

TEST(CpuUtilizationTest, RecordsAreTakenByTheirNames) {
    replay::loadHostText(
        "{" + chain({record("unix", 0, "vminfo", raw, R"("freemem": 1)"),
                     record("cpu_stat", 2, "cpu_stat2", raw, R"("idle": 4, "user": 1, "kernel": 2, "wait": 3)"),
                     record("cpu_stat", 1, "cpu_stat1", raw),
                     record("cpu_stat", 7, "seventh", raw, R"("user": 70)"),
                     record("other", 5, "cpu_stats_of_5", raw, R"("user": 50)"),
                     record("other", 6, "acpu_stat6", disk, R"("nread": 1)"),
                     record("cpu_stat", 0, "cpu_stat0", raw,
                            R"("idle": 2147483648, "user": 4294967295, "kernel": 2147483647)")}) +
        "}");
    Texts listed;
    const Texts journal = journalOf([&] {
        for (const CpuUtilInfo &info : getCpuUtilInfos()) {
            listed.push_back(describe(info));
        }
    });
    EXPECT_EQ(listed, (Texts{"2: 1 2 3 4", "5: 50 0 0 0", "0: -1 2147483647 0 -2147483648"}));
    EXPECT_EQ(count(journal, "kstat_close"), 1);

    const struct {
        int id;
        std::string answer;
    } cases[] = {
        {2, "2: 1 2 3 4"},           {0, "0: -1 2147483647 0 -2147483648"},
        {7, "7: 70 0 0 0"},          {1, "kstat_read failed."},
        {5, "kstat_lookup failed."}, {9, "kstat_lookup failed."},
    };
    for (const auto &[id, answer] : cases) {
        SCOPED_TRACE(id);
        std::string described;
        const Texts calls = journalOf([&, number = id] {
            const std::string error = errorOf([&] { described = describe(getCpuUtilInfo(number)); });
            described += error == "no error" ? "" : error;
        });
        EXPECT_EQ(described, answer);
        EXPECT_EQ(count(calls, "kstat_open"), 1);
        EXPECT_EQ(count(calls, "kstat_close"), 1);
    }
}

TEST(KernelStatisticsTest, WithoutStatisticsEveryListFails) {
    replay::loadHostText("{}");
    const std::function<void()> actions[] = {[] { getCpuUtilInfos(); }, [] { getCpuUtilInfo(0); },
                                             [] { getDiskIOData(); }, [] { getDiskIOData("c0t0d0"); },
                                             [] { findDiskIOData("c0t0d0"); }};
    for (const auto &action : actions) {
        EXPECT_EQ(errorOf(action), "kstat open failed.");
        EXPECT_EQ(count(journalOf(action), "kstat_close"), 0);
    }
}

// ---- Disk names

std::string device(const std::string &name, const std::string &path, int minor, const std::string &more = "") {
    return R"({"name": ")" + name + R"(", "path": ")" + path + R"(", "major": 32, "minor": )" + std::to_string(minor) +
           more + "}";
}

std::string devices(const Texts &all, const std::string &entries = "") {
    std::string text;
    for (const std::string &one : all) {
        text += (text.empty() ? "" : ", ") + one;
    }
    return R"("disks": [)" + text + R"(], "entries": [)" + entries + "]";
}

std::string entry(const std::string &name, const std::string &target, const char *position = "last") {
    return R"({"path": "/dev/dsk/)" + name + R"(", "link": "../../devices)" + target + R"(", "position": ")" + position +
           R"("})";
}

TEST(DiskMapTest, EntriesBecomeNames) {
    const struct {
        const char *what;
        std::string description;
        TextMap byDisk;
        TextMap byInstance;
    } cases[] = {
        {"one name per disk, whatever its slices",
         devices({device("c0t0d0", "/pci@1f,0/sd@0,0", 0), device("c1t1d0", "/pci@1f,0/ide@d/dad@1,0", 8)}),
         {{"c0t0d0", "sd0"}, {"c1t1d0", "dad1"}},
         {{"sd0", "c0t0d0"}, {"dad1", "c1t1d0"}}},
        {"eight minor numbers per instance",
         devices({device("a0", "/ssd@w500,0", 96), device("b0", "/ssd@w501,0", 95), device("c0", "/ssd@w502,0", 262136)}),
         {{"a0", "ssd12"}, {"b0", "ssd11"}, {"c0", "ssd32767"}},
         {{"ssd12", "a0"}, {"ssd11", "b0"}, {"ssd32767", "c0"}}},
        {"a disk without slice 0", devices({device("c0t0d0", "/sd@0,0", 0, R"(, "slices": ["s1", "s2", "s7"])")}), {}, {}},
        {"driver names keep their small letters",
         devices({device("c0", "/pci@1f/SUNW,ssd_9Ab-x@w5006,Zz", 0), device("c1", "/pseudo/mdE7", 8),
                  device("c2", "/8@0,0", 16)}),
         {{"c0", "ssdbx0"}, {"c1", "mda1"}, {"c2", "2"}},
         {{"ssdbx0", "c0"}, {"mda1", "c1"}, {"2", "c2"}}},
        {"s0 anywhere in a name; the name ends at its first s",
         devices({device("c0t0d0", "/sd@0,0", 0, R"(, "slices": ["s0"])"),
                  device("c1t0d0", "/sd@1,0", 8, R"(, "slices": ["s0"])")},
                 entry("c0t0d0s01", "/sd@1,0:a") + "," + entry("xs0y", "/sd@0,0:a") + "," +
                     entry("cSs1s0", "/sd@0,0:a", "first")),
         {{"c0t0d0", "sd1"}, {"c1t0d0", "sd1"}, {"cS", "sd0"}, {"x", "sd0"}},
         {{"sd0", "x"}, {"sd1", "c0t0d0"}}},
        {"the later entry wins",
         devices({device("c5t0d0", "/sd@5,0", 40)},
                 entry("c9t0d0s0", "/sd@5,0:a", "first") + "," + entry("c1t0d0s0", "/sd@5,0:a")),
         {{"c1t0d0", "sd5"}, {"c5t0d0", "sd5"}, {"c9t0d0", "sd5"}},
         {{"sd5", "c1t0d0"}}},
        {"entries that lead nowhere, are no links, or link too far",
         devices({R"({"name": "c0t0d0", "major": 32, "minor": 0})",
                  device("c1t0d0", "/sd@" + std::string(1024 - 19, '1'), 8),  // target of 1024 bytes
                  device("c2t0d0", "/sd@" + std::string(1023 - 19, '1'), 16)},
                 entry("c9t9d9s0", "/nowhere:a")),
         {{"c2t0d0", "sd2"}},
         {{"sd2", "c2t0d0"}}},
        {"no directory", R"("kstat": [])", {}, {}},
    };
    for (const auto &[what, description, byDisk, byInstance] : cases) {
        SCOPED_TRACE(what);
        replay::loadHostText("{" + description + "}");
        replay::startJournal();
        const SolarisDiskMap map;
        const Texts journal = replay::stopJournal();
        EXPECT_EQ(map.deviceToInstance, byDisk);
        EXPECT_EQ(map.instanceToDevice, byInstance);
        EXPECT_EQ(count(journal, "opendir /dev/dsk"), count(journal, "closedir /dev/dsk"));
    }
}

TEST(DiskMapTest, AskingForAnAbsentNameEntersIt) {
    replay::loadHostText("{" + devices({device("c0t0d0", "/sd@0,0", 0)}) + "}");
    SolarisDiskMap map;
    EXPECT_EQ(map.getSDxNameFromMap("c0t0d0"), "sd0");
    EXPECT_EQ(map.getDeviceIdFromMap("sd0"), "c0t0d0");
    EXPECT_EQ(map.getSDxNameFromMap("c9t9d9"), "");
    EXPECT_EQ(map.getDeviceIdFromMap("sd9"), "");
    EXPECT_EQ(map.deviceToInstance, (TextMap{{"c0t0d0", "sd0"}, {"c9t9d9", ""}}));
    EXPECT_EQ(map.instanceToDevice, (TextMap{{"sd0", "c0t0d0"}, {"sd9", ""}}));
    EXPECT_EQ(getSDxName("c0t0d0"), "sd0");
    EXPECT_EQ(getSDxName("sd0"), "");
}

// ---- Disk I/O

std::string describe(const diskIOData &data) {
    return data.kstatName + " '" + data.deviceName + "' " + std::to_string(data.bytesRead) + " " +
           std::to_string(data.bytesWritten) + " " + std::to_string(data.runTime) + " " +
           std::to_string(data.waitLastUpdate);
}

TEST(DiskIOTest, OnlyDisksAreReported) {
    const std::string counters =
        R"("nread": 18446744073709551615, "nwritten": 2, "rtime": -7, "wlastupdate": 9, "wtime": 11, "rlastupdate": 13)";
    replay::loadHostText(
        "{" +
        chain({record("sd", 0, "sd0", disk, counters), record("sd", 1, "sd1", disk),
               record("sd", 2, "sd2", R"("ks_class": "disks", "ks_type": "KSTAT_TYPE_IO")", counters),
               record("sd", 3, "sd3", R"("ks_class": "dis", "ks_type": "KSTAT_TYPE_IO")", counters),
               record("cpu_stat", 4, "sd4", R"("ks_class": "disk", "ks_type": "KSTAT_TYPE_RAW")", R"("idle": 1)"),
               record("sd", 6, "sd6", disk, R"("nread": 6)"), record("sd", 0, "sd0", disk, R"("nread": 1)"),
               record("sd", 9, "", disk, R"("nread": 9)")}) +
        ", " + devices({device("c0t0d0", "/sd@0,0", 0), device("c0t1d0", "/sd@1,0", 8), device("c0t2d0", "/sd@2,0", 16)}) +
        "}");
    const std::string first = "sd0 'c0t0d0' 18446744073709551615 2 -7 9";
    Texts listed;
    Texts journal = journalOf([&] {
        for (const diskIOData &data : getDiskIOData()) {
            listed.push_back(describe(data));
        }
    });
    EXPECT_EQ(listed, (Texts{first, "sd6 '' 6 0 0 0", "sd0 'c0t0d0' 1 0 0 0", " '' 9 0 0 0"}));
    EXPECT_EQ(count(journal, "kstat_close"), 1);
    EXPECT_EQ(count(journal, "opendir /dev/dsk"), 1);

    journal = journalOf([&] { EXPECT_EQ(describe(getDiskIOData("c0t0d0")), first); });
    EXPECT_EQ(count(journal, "kstat_close"), 1);
    EXPECT_EQ(count(journal, "opendir /dev/dsk"), 2); // translating the name, then labelling the records

    for (const char *name : {"c0t1d0", "c0t2d0", "c9t9d9", "sd0", "", "c0t0d0s0"}) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(findDiskIOData(name).has_value());
        EXPECT_EQ(errorOf([&] { getDiskIOData(name); }),
                  std::string("Unable to find Disk IO Information name: ") + name);
    }
}

} // namespace
} // namespace tarn
