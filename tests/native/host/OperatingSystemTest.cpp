// The memory report, over replayed samples of the kernel's paging counters.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "native/host/SolarisOperatingSystem.h"
#include "platform/replay/Replay.h"
#include "tests/Lines.h"

namespace tarn {
namespace {

/// A host whose record of the paging counters has these members too.
std::string hostWith(int pageSize, const char *members) {
    nlohmann::json vminfo = nlohmann::json::parse(members);
    vminfo.update({{"ks_module", "unix"}, {"ks_name", "vminfo"}});
    const nlohmann::json sysconf = {{"_SC_PHYS_PAGES", 1000}, {"_SC_AVPHYS_PAGES", 40}, {"_SC_PAGESIZE", pageSize}};
    return nlohmann::json{{"sysconf", sysconf}, {"kstat", nlohmann::json::array({vminfo})}}.dump();
}

TEST(OperatingSystemTest, MemoryComesFromTwoSamples) {
    const struct {
        std::string host;
        OsMemoryInfo expected;
        int refusedCall = 0;
    } cases[] = {
        {hostWith(8192, R"({"samples": [{"freemem": 1, "swap_avail": 20, "swap_resv": 10},
                                          {"freemem": 3, "swap_avail": 30, "swap_resv": 15}]})"),
         {8000, 16, 120, 80}},
        // counters that wrap
        {hostWith(4096, R"({"samples": [{"swap_avail": 18446744073709551606, "swap_resv": -1},
                                          {"swap_avail": 10, "swap_resv": 4}]})"),
         {4000, 0, 100, 80}},
        // more swap than 32 bits of kilobytes
        {hostWith(8192, R"({"samples": [{}, {"swap_avail": 4294967296, "swap_resv": 1}]})"),
         {8000, 0, 34359738376, 34359738368}},
        // a page that is no whole number of kilobytes
        {hostWith(1536, R"({"samples": [{"swap_avail": 0}, {"swap_avail": 3}]})"), {1000, 0, 4, 4}},
        // a record of another kind, one that cannot be read, none, and a host that tells nothing
        {hostWith(8192, R"({"ks_type": "KSTAT_TYPE_IO", "data": {}})"), {8000, 0, 0, 0}},
        {hostWith(8192, "{}"), {8000, 320, 0, 0}},
        {hostWith(8192, R"({"ks_instance": 1, "data": {}})"), {8000, 320, 0, 0}},
        {R"({"kstat": []})", {0, 0, 0, 0}},
        // more pages than 32 bits, and no count of the free ones
        {R"({"kstat": [], "sysconf": {"_SC_PHYS_PAGES": 4294967297, "_SC_PAGESIZE": 8192}})", {34359738376, 0, 0, 0}},
        // a record that is gone, and one that cannot be read, the second time
        {hostWith(8192, R"({"data": {"swap_avail": 9}})"), {8000, 320, 0, 0}, 8},
        {hostWith(8192, R"({"data": {"swap_avail": 9}})"), {8000, 320, 0, 0}, 9},
    };
    for (const auto &[host, expected, refusedCall] : cases) {
        SCOPED_TRACE(host);
        replay::loadHostText(host);
        replay::startJournal();
        replay::refuseCall(refusedCall);
        const OsMemoryInfo memory = GetOSMemoryInfo();
        EXPECT_TRUE(replay::stopRefusing());
        EXPECT_EQ(tests::beginning(replay::stopJournal(), {"kstat_close"}).size(), 1U);
        EXPECT_EQ(memory.totalPhysicalKB, expected.totalPhysicalKB);
        EXPECT_EQ(memory.freePhysicalKB, expected.freePhysicalKB);
        EXPECT_EQ(memory.totalSwapKB, expected.totalSwapKB);
        EXPECT_EQ(memory.freeSwapKB, expected.freeSwapKB);
    }
}

} // namespace
} // namespace tarn
