// Logical disks, processors, CPU ticks, the disk name map and disk I/O counters, over replayed hosts.

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "common/system/SolarisDiskMap.h"
#include "native/JavaError.h"
#include "native/host/SolarisCpuUtilizationInformation.h"
#include "native/host/SolarisDiskIOInformation.h"
#include "native/host/SolarisLogicalDisk.h"
#include "native/host/SolarisOperatingSystem.h"
#include "native/host/SolarisProcessor.h"
#include "native/host/SolarisUtil.h"
#include "platform/replay/Replay.h"
#include "tests/Expected.h"

namespace tarn {
namespace {

using nlohmann::json;
using tests::Lines;

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

template <class Record>
std::string text(const std::optional<Record> &record) {
    return record ? text(*record) : "none";
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

TEST(HostFactsTest, QuestionsAreAnsweredAsTheHostsSay) {
    Lines facts;
    const auto tell = [&](const std::string &question, auto action) {
        facts.push_back(question + ": " + answerOf(action));
    };
    for (const std::string host : {"host-facts", "newer-kernel", "bare"}) {
        facts.push_back("On the host " + host + ":");
        tests::loadHost(host);
        tell("mount points", ListLogicalDisks);
        for (const std::string name : {"/", "/home", "/auto", "/tmp", "/a", "/b", "/c", "/home/", "/Home", ""}) {
            tell("logical disk '" + name + "'", [&] { return GetLogicalDisk(name, true); });
        }
        tell("logical disk '/' without sizes", [] { return GetLogicalDisk("/", false); });
        tell("processors", GetProcessors);
        for (const int id : {-1, 0, 1, 2, 31, 32, 64, 65, 200}) {
            tell("processor " + std::to_string(id), [=] { return GetProcessorInfo(id); });
        }
        tell("CPU ticks", getCpuUtilInfos);
        for (const int id : {-1, 0, 1, 3, 5, 7, 9, 72}) { // -1 means any instance to the system
            tell("CPU ticks of " + std::to_string(id), [=] { return getCpuUtilInfo(id); });
        }
        tell("disk I/O", [] { return getDiskIOData(); });
        for (const std::string name : {"c0t0d0", "c0t1d0", "c0t2d0", "c9t9d9", "sd0", "", "c0t0d0s0"}) {
            tell("disk I/O of '" + name + "'", [&] { return getDiskIOData(name); });
            tell("the same, if there is any", [&] { return findDiskIOData(name); });
        }
        SolarisDiskMap map;
        for (const char *name :
             {"c0t0d0", "c0t1d0", "c0t2d0", "c1t0d0", "c1t1d0", "c20",    "c21",    "c22", "c3t0d0", "c40",    "c41",
              "c42",    "c43",    "c5t0d0", "c6t0d0", "c6t1d0", "c6t2d0", "c9t9d9", "cS",  "x",      "absent", ""}) {
            facts.push_back("instance of '" + std::string(name) + "': " + map.getSDxNameFromMap(name));
        }
        for (const char *name : {"sd0", "sd1", "sd2", "sd3", "sd5", "dad1", "ssd12", "ssd11", "ssd32767", "ssdbx0",
                                 "mda1", "2", "sd8", "sd9", "cS", ""}) {
            facts.push_back("disk of '" + std::string(name) + "': " + map.getDeviceIdFromMap(name));
        }
        tell("free memory and swap", [] {
            const OsMemoryInfo memory = GetOSMemoryInfo();
            return words(memory.freePhysicalKB, memory.totalSwapKB, memory.freeSwapKB);
        });
        tell("instance name", [] { return getSDxName("c0t0d0"); });
    }
    tests::expectFile("native/host/host-facts.txt", facts);
}

TEST(HostFactsTest, NothingIsAskedForThatIsNotWanted) {
    tests::loadHost("host-facts");
    replay::startJournal();
    GetLogicalDisk("/", false);
    EXPECT_EQ(replay::stopJournal(), (Lines{"fopen /etc/mnttab", "fclose"}));
    replay::startJournal();
    getDiskIOData(); // of the records with a disk's class, those of type I/O
    EXPECT_EQ(tests::beginning(replay::stopJournal(), {"kstat_read"}),
              (Lines{"kstat_read :0:sd0", "kstat_read :0:sd1 ENXIO", "kstat_read :0:sd99", "kstat_read :0:sd0",
                     "kstat_read :0:"}));
}

TEST(HostFactsTest, AMalformedLineEndsTheMountTable) {
    for (const std::string &malformed :
         Lines{"d7\t/7\tufs\trw", "d7\t/7\tufs\trw\t1\tmore", std::string(1024, 'x') + "\t/7\tufs\trw\t1"}) {
        replay::loadHostText(json{{"mnttab", {"d0\t/\tufs\trw\t1", malformed, "d8\t/8\tufs\trw\t1"}}}.dump());
        EXPECT_EQ(answerOf(ListLogicalDisks), "/|");
        EXPECT_EQ(answerOf([] { return GetLogicalDisk("/8", true); }), "Logical Disk Not Found: /8");
    }
}

TEST(HostFactsTest, RecordsNeedHoldNoMoreThanWhatIsUsed) {
    // Up to the idle, user, kernel and wait ticks, the run time and the available swap.
    for (const auto &[ticks, io, paging, holds] :
         {std::tuple{24, 56, 32, true}, {23, 55, 31, false}, {1000, 1000, 1000, true}}) {
        json records = json::parse(R"([
            {"ks_name": "cpu_stat0", "ks_type": "KSTAT_TYPE_RAW", "data": {"wait": 3}},
            {"ks_module": "unix", "ks_name": "vminfo", "ks_type": "KSTAT_TYPE_RAW", "data": {}},
            {"ks_name": "sd0", "ks_class": "disk", "ks_type": "KSTAT_TYPE_IO", "data": {"rtime": 7}}])");
        records[0]["ks_data_size"] = ticks;
        records[1]["ks_data_size"] = paging;
        records[2]["ks_data_size"] = io;
        replay::loadHostText(json{{"kstat", records}}.dump());
        EXPECT_EQ(answerOf(getCpuUtilInfos), holds ? "0 0 0 3 0 |" : "");
        EXPECT_EQ(answerOf([] { return getDiskIOData(); }), holds ? "sd0  0 0 7 0 |" : "");
        replay::startJournal();
        GetOSMemoryInfo();
        EXPECT_EQ(tests::beginning(replay::stopJournal(), {"kstat_read"}).size(), holds ? 2U : 1U);
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
        {4, 31, {0, 1, 4, 5, 9}, 4, "processor_info 5"},
        {2, 31, {3}, 1, "processor_info 31 EINVAL"},
        {4, 1'048'576, {0, 9, 1'048'575, 1'048'576}, 3, nullptr}, // nor is it believed; a journal of it would be long
        {0, 31, {0}, 0, "sysconf _SC_CPUID_MAX"},
        {-1, 31, {0}, 0, "sysconf _SC_CPUID_MAX"},
        {2, -1, {0, 4095, 4096}, 2, "processor_info 4095"}, // a system that does not tell its largest id
        {3, -1, {0, 4095, 4096}, 2, "processor_info 4095"},
        {127, 511, many, 127, "processor_info 252"},
        {129, 511, many, 128, "processor_info 254"},
    };
    for (const auto &[configured, largest, present, found, lastProbed] : cases) {
        SCOPED_TRACE(configured);
        json host = {{"sysconf", {{"_SC_CPUID_MAX", largest}, {"_SC_NPROCESSORS_CONF", configured}}}};
        for (const int id : present) {
            host["processors"].push_back({{"id", id}});
        }
        replay::loadHostText(host.dump());
        Ids ids;
        if (lastProbed != nullptr) {
            replay::startJournal();
        }
        std::ranges::transform(GetProcessors(), std::back_inserter(ids), &ProcessorInfo::processorId);
        if (lastProbed != nullptr) {
            EXPECT_EQ(replay::stopJournal().back(), lastProbed);
        }
        EXPECT_EQ(ids, Ids(present.begin(), present.begin() + found));
    }
    EXPECT_FALSE(GetProcessorInfo(256).has_value());
}

} // namespace
} // namespace tarn
