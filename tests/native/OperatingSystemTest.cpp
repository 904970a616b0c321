// The memory report, over replayed samples of the kernel's paging counters.

#include <gtest/gtest.h>

#include <algorithm>

#include "native/JavaError.h"
#include "native/SolarisOperatingSystem.h"
#include "platform/replay/Replay.h"

namespace tarn {
namespace {

std::string hostWith(const std::string &pageSize, const std::string &vminfo) {
    return R"({"sysconf": {"_SC_PAGESIZE": )" + pageSize + R"(, "_SC_PHYS_PAGES": 1000, "_SC_AVPHYS_PAGES": 40},
        "kstat": [{"ks_module": "unix", "ks_instance": 0, "ks_name": "vminfo", "ks_class": "vm",
                   "ks_type": "KSTAT_TYPE_RAW")" + vminfo + "}]}";
}

TEST(OperatingSystemTest, MemoryComesFromTwoSamples) {
    const struct {
        const char *what;
        std::string host;
        OsMemoryInfo expected;
    } cases[] = {
        {"differences of ten and five pages",
         hostWith("8192", R"(, "samples": [{"freemem": 1, "swap_avail": 20, "swap_resv": 10},
                                           {"freemem": 3, "swap_avail": 30, "swap_resv": 15}])"),
         {8000, 16, 120, 80}},
        {"counters that wrap", hostWith("4096", R"(, "samples": [{"swap_avail": 18446744073709551606, "swap_resv": -1},
                                                                 {"swap_avail": 10, "swap_resv": 4}])"),
         {4000, 0, 100, 80}},
        {"more swap than 32 bits of kilobytes",
         hostWith("8192", R"(, "samples": [{}, {"swap_avail": 4294967296, "swap_resv": 1}])"),
         {8000, 0, 34359738376, 34359738368}},
        {"a page that is no whole number of kilobytes",
         hostWith("1536", R"(, "samples": [{"swap_avail": 0}, {"swap_avail": 3}])"),
         {1000, 0, 4, 4}},
        {"a record that cannot be read", hostWith("8192", ""), {8000, 320, 0, 0}},
        {"a host without the record", R"({"sysconf": {"_SC_PAGESIZE": 8192, "_SC_PHYS_PAGES": 2, "_SC_AVPHYS_PAGES": 1},
                                          "kstat": []})",
         {16, 8, 0, 0}},
        {"a host that tells nothing", R"({"kstat": []})", {0, 0, 0, 0}},
    };
    for (const auto &[what, host, expected] : cases) {
        SCOPED_TRACE(what);
        replay::loadHostText(host);
        replay::startJournal();
        const OsMemoryInfo memory = GetOSMemoryInfo();
        const std::vector<std::string> journal = replay::stopJournal();
        EXPECT_EQ(memory.totalPhysicalKB, expected.totalPhysicalKB);
        EXPECT_EQ(memory.freePhysicalKB, expected.freePhysicalKB);
        EXPECT_EQ(memory.totalSwapKB, expected.totalSwapKB);
        EXPECT_EQ(memory.freeSwapKB, expected.freeSwapKB);
        EXPECT_EQ(std::count(journal.begin(), journal.end(), "kstat_close"), 1);
    }
}

TEST(OperatingSystemTest, TheSamplesAreASecondApartAndEachIsLookedUp) {
    replay::loadHostText(hostWith("8192", R"(, "data": {})"));
    replay::startJournal();
    GetOSMemoryInfo();
    std::vector<std::string> journal = replay::stopJournal();
    std::erase_if(journal, [](const std::string &line) { return line.starts_with("sysconf"); });
    EXPECT_EQ(journal, (std::vector<std::string>{"kstat_open", "kstat_lookup unix:0:vminfo", "kstat_read unix:0:vminfo",
                                                 "sleep 1", "kstat_lookup unix:0:vminfo", "kstat_read unix:0:vminfo",
                                                 "kstat_close"}));
}

TEST(OperatingSystemTest, AHostWithoutStatisticsIsAnError) {
    replay::loadHostText("{}");
    try {
        GetOSMemoryInfo();
        FAIL();
    } catch (const NativeError &error) {
        EXPECT_EQ(error.getMessage(), "kstat open failed");
    }
}

} // namespace
} // namespace tarn
