// Logical disks, processors, CPU ticks, the disk name map and disk I/O counters, over replayed hosts.

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <sstream>
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
#include "tests/Lines.h"

namespace tarn {
namespace {

using tests::Lines;
using TextMap = std::map<std::string, std::string>;

/// With "../../devices" before it and ":a" after it, the longest link that is read.
const std::string longPath = "/sd@" + std::string(1023 - 19, '1');

const std::string host = R"({
    "mnttab": ["proc\t/proc\tproc\trw\t1", "far:/home\t/home\tnfs\trw\t1", "auto\t/auto\tautofs\trw\t1",
               "d0\t/\tufs\trw,intr\t1130837021", "swap\t/tmp\ttmpfs\trw\t1", "a\t/a\tUFS\trw\t1",
               "b\t/b\tnfs3\trw\t1", "c\t/c\tuf\trw\t1", "d7\t/home\tufs\trw\t1", "d5\t/auto\tufs\trw\t1"],
    "statvfs": {"/": {"f_bsize": 4294967296, "f_frsize": 8192, "f_blocks": 8589934592, "f_bavail": 9, "f_bfree": 3}},
    "sysconf": {"_SC_NPROCESSORS_CONF": 6, "_SC_CPUID_MAX": 31},
    "processors": [{"id": 0, "pi_state": "P_ONLINE", "pi_processor_type": "sparcv9", "pi_clock": 1200},
                   {"id": 1, "pi_state": "P_OFFLINE", "pi_clock": -1}, {"id": 5, "pi_state": "P_POWEROFF"},
                   {"id": 4, "pi_state": "P_FAULTED", "pi_processor_type": "sparcv9+vis3b+16", "pi_fputypes": "fpu"},
                   {"id": 9, "pi_state": "P_NOINTR"}, {"id": 31, "pi_state": "P_SPARE"}],
    "kstat": [
        {"ks_module": "unix", "ks_name": "vminfo", "data": {"freemem": 1}},
        {"ks_module": "cpu_stat", "ks_instance": 3, "ks_name": "cpu_stat3",
         "data": {"idle": 4, "user": 1, "kernel": 2, "wait": 3}},
        {"ks_module": "cpu_stat", "ks_instance": 1, "ks_name": "cpu_stat1"},
        {"ks_module": "cpu_stat", "ks_instance": 7, "ks_name": "seventh", "data": {"user": 70}},
        {"ks_module": "other", "ks_instance": 5, "ks_name": "cpu_stats_of_5", "data": {"user": 50}},
        {"ks_module": "cpu_stat", "ks_instance": 0, "ks_name": "cpu_stat0",
         "data": {"idle": 2147483648, "user": 4294967295, "kernel": 2147483647}},
        {"ks_name": "sd0", "ks_class": "disk", "ks_type": "KSTAT_TYPE_IO", "data": {"nread": 18446744073709551615,
         "nwritten": 2, "rtime": -7, "wlastupdate": 9, "wtime": 11, "rlentime": 3, "rlastupdate": 4}},
        {"ks_name": "sd1", "ks_class": "disk", "ks_type": "KSTAT_TYPE_IO"},
        {"ks_name": "acpu_stat2", "ks_class": "disks", "ks_type": "KSTAT_TYPE_IO", "data": {}},
        {"ks_name": "cpu_stat", "ks_instance": 8, "ks_class": "disk", "data": {}},
        {"ks_name": "sd99", "ks_class": "disk", "ks_type": "KSTAT_TYPE_IO", "data": {"nread": 6}},
        {"ks_name": "sd0", "ks_class": "disk", "ks_type": "KSTAT_TYPE_IO", "data": {"nread": 1}},
        {"ks_name": "", "ks_class": "disk", "ks_type": "KSTAT_TYPE_IO", "data": {"nread": 9}}],
    "disks": [{"name": "c0t0d0", "path": "/pci@1f,0/sd@0,0"}, {"name": "c0t1d0", "path": "/sd@1,0", "minor": 8},
              {"name": "c0t2d0", "path": "/sd@2,0", "minor": 16},
              {"name": "c1t1d0", "path": "/pci@1f,0/ide@d/dad@1,0", "minor": 8},
              {"name": "c20", "path": "/ssd@w0,0", "minor": 96}, {"name": "c21", "path": "/ssd@w1,0", "minor": 95},
              {"name": "c22", "path": "/ssd@2,0", "minor": 262136}, {"name": "c5t0d0", "path": "/sd@5,0", "minor": 40},
              {"name": "c3t0d0", "path": "/sd@3,0", "minor": 24, "slices": ["s1", "s7"]},
              {"name": "c40", "path": "/pci@1f/SUNW,ssd_9Ab-x@w5006,Zz"}, {"name": "c6t0d0", "minor": 48},
              {"name": "c41", "path": "/pseudo/mdE7", "minor": 8}, {"name": "c42", "path": "/8@0,0", "minor": 16},
              {"name": "c6t1d0", "path": ")" +
                         longPath + R"(1", "minor": 56},
              {"name": "c6t2d0", "path": ")" +
                         longPath + R"(", "minor": 64}],
    "entries": [{"path": "/dev/dsk/cSs1s0", "link": "../../devices/sd@5,0:a", "position": "first"},
                {"path": "/dev/dsk/xs0y", "link": "../../devices/sd@5,0:a"},
                {"path": "/dev/dsk/c1t0d0s0", "link": "../../devices/sd@5,0:a"},
                {"path": "/dev/dsk/c5t0d0s01", "link": "../../devices/ssd@2,0:a"},
                {"path": "/dev/dsk/c9t9d9s0", "link": "../../devices/nowhere:a"}]})";

template <class... Values>
std::string words(const Values &...values) {
    std::ostringstream text;
    ((text << values << ' '), ...);
    return text.str();
}

std::string text(const std::string &plain) {
    return plain;
}
std::string text(const LogicalDisk &disk) {
    return words(disk.device, disk.mountPoint, disk.fileSystemType, disk.totalBytes, disk.availableBytes,
                 disk.freeBytes, disk.blockSize);
}
std::string text(const ProcessorInfo &info) {
    return words(info.processorId, info.processorType, info.state, info.clockMHz);
}
std::string text(const CpuUtilInfo &info) {
    return words(info.cpuId, info.userTicks, info.kernelTicks, info.waitTicks, info.idleTicks);
}
std::string text(const diskIOData &data) {
    return words(data.kstatName, data.deviceName, data.bytesRead, data.bytesWritten, data.runTime, data.waitLastUpdate);
}
template <class Record>
std::string text(const std::vector<Record> &records) {
    std::string all;
    for (const Record &record : records) {
        all += text(record) + "|";
    }
    return all;
}

/// What the action answers, or the error it ends with. All that it opened must be closed.
template <class Action>
std::string answerOf(Action action) {
    std::string answer;
    replay::startJournal();
    try {
        answer = text(action());
    } catch (const NativeError &error) {
        answer = error.getMessage();
    }
    Lines journal = replay::stopJournal();
    std::erase_if(journal, [](const std::string &line) { return line.ends_with("ENOENT"); });
    EXPECT_EQ(tests::beginning(journal, {"fopen", "opendir", "kstat_open"}).size(),
              tests::beginning(journal, {"fclose", "closedir", "kstat_close"}).size());
    return answer;
}

TEST(LogicalDiskTest, TheMountTableDecides) {
    replay::loadHostText(host);
    EXPECT_EQ(answerOf(ListLogicalDisks), "/home|/|/home|/auto|");
    const TextMap answers{
        {"/", "d0 / ufs 70368744177664 73728 24576 4294967296 "},
        {"/home", "far:/home /home nfs 0 0 0 0 "}, // the first of two, whose sizes the system does not tell
        {"/auto", "d5 /auto ufs 0 0 0 0 "},        // the first is of another type
    };
    for (const std::string name : {"/", "/home", "/auto", "/tmp", "/a", "/b", "/c", "/home/", "/Home", ""}) {
        const auto found = answers.find(name);
        EXPECT_EQ(answerOf([&] { return GetLogicalDisk(name, true); }),
                  found == answers.end() ? "Logical Disk Not Found: " + name : found->second);
    }
    replay::startJournal();
    EXPECT_EQ(text(GetLogicalDisk("/", false)), "d0 / ufs 0 0 0 0 ");
    EXPECT_EQ(replay::stopJournal(), (Lines{"fopen /etc/mnttab", "fclose"}));

    for (const std::string &malformed :
         Lines{R"(d7\t/7\tufs\trw)", R"(d7\t/7\tufs\trw\t1\tmore)", std::string(1024, 'x') + R"(\t/7\tufs\trw\t1)"}) {
        replay::loadHostText(R"({"mnttab": ["d0\t/\tufs\trw\t1", ")" + malformed + R"(", "d8\t/8\tufs\trw\t1"]})");
        EXPECT_EQ(answerOf(ListLogicalDisks), "/|");
        EXPECT_EQ(answerOf([] { return GetLogicalDisk("/8", true); }), "Logical Disk Not Found: /8");
    }
}

TEST(ProcessorTest, EachIsDescribedByWhatTheSystemTells) {
    replay::loadHostText(host);
    EXPECT_EQ(answerOf(GetProcessors), "0 sparcv9 online 1200 |1  offline -1 |4 sparcv9+vis3b+16 offline 0 |"
                                       "5  offline 0 |9  offline 0 |31  offline 0 |");
    EXPECT_EQ(text(GetProcessorInfo(1).value()), "1  offline -1 ");
    for (const int id : {-1, 2, 32}) {
        EXPECT_FALSE(GetProcessorInfo(id).has_value());
    }
}

TEST(ProcessorTest, IdsAreProbedUntilAllOr128HaveAnswered) {
    using Ids = std::vector<int>;
    Ids many(200);
    std::generate(many.begin(), many.end(), [id = -2]() mutable { return id += 2; });
    const struct {
        int configured, largest;
        Ids present;
        std::ptrdiff_t found;
        const char *lastProbed;
    } cases[] = {
        {4, 31, {0, 1, 4, 5, 9}, 4, "processor_info 5"}, {2, 31, {3}, 1, "processor_info 31 EINVAL"},
        {0, 31, {0}, 0, "sysconf _SC_CPUID_MAX"},        {-1, 31, {0}, 0, "sysconf _SC_CPUID_MAX"},
        {2, -1, {0, 600}, 2, "processor_info 600"}, // a system that does not tell its largest id
        {127, 511, many, 127, "processor_info 252"},     {129, 511, many, 128, "processor_info 254"},
    };
    for (const auto &[configured, largest, present, found, lastProbed] : cases) {
        SCOPED_TRACE(lastProbed);
        std::string list;
        for (const int id : present) {
            list += (list.empty() ? R"({"id": )" : R"(, {"id": )") + std::to_string(id) + "}";
        }
        replay::loadHostText(R"({"processors": [)" + list + R"(], "sysconf": {"_SC_CPUID_MAX": )" +
                             std::to_string(largest) + R"(, "_SC_NPROCESSORS_CONF": )" + std::to_string(configured) +
                             "}}");
        Ids ids;
        replay::startJournal();
        std::ranges::transform(GetProcessors(), std::back_inserter(ids), &ProcessorInfo::processorId);
        EXPECT_EQ(replay::stopJournal().back(), lastProbed);
        EXPECT_EQ(ids, Ids(present.begin(), present.begin() + found));
    }
    EXPECT_FALSE(GetProcessorInfo(256).has_value());
}

TEST(CpuUtilizationTest, RecordsAreTakenByTheirNames) {
    replay::loadHostText(host);
    EXPECT_EQ(answerOf(getCpuUtilInfos), "3 1 2 3 4 |5 50 0 0 0 |0 -1 2147483647 0 -2147483648 |8 0 0 0 0 |");
    const std::map<int, const char *> answers{
        // -1 means any instance to the system
        {3, "3 1 2 3 4 "},
        {0, "0 -1 2147483647 0 -2147483648 "},
        {7, "7 70 0 0 0 "},
        {1, "kstat_read failed."},
        {5, "kstat_lookup failed."},
        {9, "kstat_lookup failed."},
        {-1, "kstat_lookup failed."},
    };
    for (const auto &[id, answer] : answers) {
        EXPECT_EQ(answerOf([asked = id] { return getCpuUtilInfo(asked); }), answer);
    }
}

TEST(DiskMapTest, EntriesOfSlice0BecomeNames) {
    replay::loadHostText(host);
    TextMap byDisk{{"c0t0d0", "sd0"},  {"c0t1d0", "sd1"},      {"c0t2d0", "sd2"}, {"c1t0d0", "sd5"},
                   {"c1t1d0", "dad1"}, {"c20", "ssd12"},       {"c21", "ssd11"},  {"c22", "ssd32767"},
                   {"c40", "ssdbx0"},  {"c41", "mda1"},        {"c42", "2"},      {"c6t2d0", "sd8"},
                   {"cS", "sd5"},      {"c5t0d0", "ssd32767"}, {"x", "sd5"}};
    TextMap byInstance{{"sd0", "c0t0d0"},  {"sd1", "c0t1d0"}, {"sd2", "c0t2d0"}, {"sd5", "c1t0d0"},
                       {"dad1", "c1t1d0"}, {"ssd12", "c20"},  {"ssd11", "c21"},  {"ssd32767", "c5t0d0"},
                       {"ssdbx0", "c40"},  {"mda1", "c41"},   {"2", "c42"},      {"sd8", "c6t2d0"}};
    byDisk["absent"] = byInstance["sd9"] = byInstance[""] = "";
    const auto expectFound = [](SolarisDiskMap::Key key, const TextMap &expected) {
        const SolarisDiskMap map(key);
        for (const auto &[name, other] : expected) {
            EXPECT_EQ(map.find(name), other) << name;
        }
    };
    expectFound(SolarisDiskMap::Key::diskName, byDisk);
    expectFound(SolarisDiskMap::Key::instanceName, byInstance);
    EXPECT_EQ(answerOf([] { return getSDxName("c0t0d0"); }), "sd0");
}

TEST(DiskIOTest, OnlyDisksAreReported) {
    replay::loadHostText(host);
    const std::string first = "sd0 c0t0d0 18446744073709551615 2 -7 9 ";
    EXPECT_EQ(answerOf([] { return getDiskIOData(); }), first + "|sd99  6 0 0 0 |sd0 c0t0d0 1 0 0 0 |  9 0 0 0 |");
    EXPECT_EQ(answerOf([] { return getDiskIOData("c0t0d0"); }), first);
    for (const std::string name : {"c0t1d0", "c0t2d0", "c9t9d9", "sd0", "", "c0t0d0s0"}) {
        EXPECT_FALSE(findDiskIOData(name).has_value()) << name;
        EXPECT_EQ(answerOf([&] { return getDiskIOData(name); }), "Unable to find Disk IO Information name: " + name);
    }
}

TEST(HostFactsTest, ABareHostHasNothingOrFails) {
    replay::loadHostText("{}");
    EXPECT_EQ(answerOf(ListLogicalDisks), "");
    EXPECT_EQ(answerOf([] { return GetLogicalDisk("/", true); }), "Unable to open mount table file: /etc/mnttab");
    EXPECT_EQ(answerOf(GetProcessors), "");
    EXPECT_EQ(answerOf([] { return getSDxName("c0t0d0"); }), "");
    for (const std::string &answer :
         {answerOf(getCpuUtilInfos), answerOf([] { return getCpuUtilInfo(0); }),
          answerOf([] { return getDiskIOData(); }), answerOf([] { return getDiskIOData("c0t0d0"); })}) {
        EXPECT_EQ(answer, "kstat open failed.");
    }
}

} // namespace
} // namespace tarn
