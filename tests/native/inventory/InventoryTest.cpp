// What disks are, how full mounts are, and what disks and ports do, over replayed hosts.

#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "inventory/Activity.h"
#include "inventory/Identities.h"
#include "inventory/IdentityPages.h"
#include "inventory/InventoryError.h"
#include "inventory/Mounts.h"
#include "platform/replay/Replay.h"
#include "tests/Allocations.h"

namespace tarn {
namespace {

using nlohmann::json;

std::vector<unsigned char> bytesOf(const std::string &hex) {
    std::vector<unsigned char> bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 3) {
        bytes.push_back(static_cast<unsigned char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

TEST(Inventory, ReadsPagesToTheBytesThatCame) {
    const std::string naa6 = "01 03 00 10 60 0a 0b 80 00 12 ab 34 00 00 05 d6 4e 8b 1f 2a";
    const std::string naa5 = "01 03 00 08 50 00 c5 00 0a 2b 3c 41";
    const std::string ofPort = "61 93 00 08 50 00 c5 00 0a 2b 3c 42 61 94 00 04 00 00 00 01"; // protocol, association 1
    const std::string eui = "01 02 00 08 00 22 a1 00 01 02 03 04";
    const std::string t10 = "02 01 00 10 49 45 54 20 20 20 20 20 30 30 30 31 00 00 00 00"; // "IET     0001"
    const struct {
        std::string page;
        const char *designator;
    } cases[] = {
        {"00 83 00 0c " + naa5, "naa.5000c5000a2b3c41"},
        {"00 83 00 60 " + t10 + " " + ofPort + " " + eui + " " + naa5 + " " + naa6,
         "naa.600a0b800012ab34000005d64e8b1f2a"},
        {"00 83 00 20 " + t10 + " " + eui, "eui.0022a10001020304"},
        {"00 83 00 14 " + t10, "t10.IET     0001"},
        {"00 83 00 14 " + ofPort, ""},
        {"00 83 00 18 " + naa5 + " " + eui.substr(0, 30), "naa.5000c5000a2b3c41"}, // the second is cut
        {"00 83 ff ff " + naa5, "naa.5000c5000a2b3c41"},                           // more than came
        {"00 83 00 08 " + naa5, ""},                                               // and less than it takes
        {"00 83 00 0c 01 03 00 08 60 0a 0b 80 00 12 ab 34", ""},                   // kind 6 has 16 bytes
        {"00 83 00 0c 02 03 00 08 50 00 c5 00 0a 2b 3c 41", ""},                   // an NAA identifier is binary
        {"00 83 00 08 02 01 00 04 41 1b 42 20", "t10.A\\x1bB"},
        {"00 00 05 02 1f 00 00 02 53 55 4e 20", ""}, // the standard INQUIRY again
        {"00 83 00", ""},
        {"", ""},
    };
    for (const auto &[page, designator] : cases) {
        EXPECT_EQ(bestDesignator(bytesOf(page)), designator) << page;
    }
    EXPECT_EQ(serialNumber(bytesOf("00 80 00 06 20 31 32 20 20 20")), "12");
    EXPECT_EQ(serialNumber(bytesOf("00 80 00 ff 31 32")), "12");
    EXPECT_TRUE(listsPage(bytesOf("00 00 00 03 00 80 83"), 0x83));
    EXPECT_FALSE(listsPage(bytesOf("00 00 00 02 00 80 83"), 0x83));
    EXPECT_FALSE(knowsPages(bytesOf("7f 00 05 02")));
}

TEST(Inventory, TakesFromANameWhatIsTheUnits) {
    EXPECT_EQ(designatorInName("c4t600A0B800012AB34000005D64E8B1F2Ad0", ""), "naa.600a0b800012ab34000005d64e8b1f2a");
    EXPECT_EQ(designatorInName("c4t5000C5000A2B3C41d0", "../../devices/scsi_vhci/disk@g5000c5000a2b3c41:c,raw"),
              "naa.5000c5000a2b3c41");
    EXPECT_EQ(designatorInName("c4t0022A10001020304d0", "/devices/scsi_vhci/disk@g0022"), "eui.0022a10001020304");
    for (const char *const name : {"c2t50060E8000C3A2B1d0", "c1t0d0", "c0d0", "emcpower0", ""}) {
        EXPECT_EQ(designatorInName(name, "/devices/pci@1/fp@0,0/ssd@w50060e8000c3a2b1,0"), "") << name;
    }
}

json statistics(const std::string &name, json data) {
    return {{"ks_module", "sderr"},
            {"ks_name", name + ",err"},
            {"ks_class", "device_error"},
            {"ks_type", "KSTAT_TYPE_NAMED"},
            {"data", std::move(data)}};
}

TEST(Inventory, AsksDevicesForWhatIsNotKnown) {
    const auto disk = [](const char *name, int minor, json scsi) {
        return json{{"name", name},
                    {"path", "/scsi@2/sd@" + std::to_string(minor / 8) + ",0"},
                    {"major", 32},
                    {"minor", minor},
                    {"geometry", {{"dkg_ncyl", 9}}},
                    {"scsi", std::move(scsi)}};
    };
    const std::string names = "53 55 4e 20 20 20 20 20 44 49 53 4b 20 20 20 20 20 20 20 20 20 20 20 20 31 2e 30 20";
    const json whole = {{"INQUIRY", "00 00 05 02 1f 00 00 02 " + names},
                        {"INQUIRY 00", "00 00 00 03 00 80 83"},
                        {"INQUIRY 80", "00 80 00 04 41 42 43 20"},
                        {"INQUIRY 83", "00 83 00 0c 01 03 00 08 50 00 c5 00 0a 2b 3c 41"}};
    json old = whole, bare = whole;
    old["INQUIRY"] = "00 00 02 02 1f 00 00 02 " + names;
    bare["INQUIRY 00"] = "00 00 00 01 00";
    const json told = {{"Vendor", "SEAGATE "},
                       {"Product", "ST373207LSUN72G "},
                       {"Revision", "045A"},
                       {"Serial No", "0545B1A0C2  "},
                       {"Size", 73400057856}};
    const json host = {
        {"kstat", {statistics("sd0", told)}},
        {"disks",
         {disk("c0t0d0", 0, whole), disk("c0t1d0", 8, whole), disk("c0t2d0", 16, old), disk("c0t3d0", 24, bare),
          disk("c0t600A0B800012AB34000005D64E8B1F2Ad0", 32, json::object()), disk("c0t4d0", 40, json::object())}}};
    replay::loadHostText(host.dump());
    replay::startJournal();
    std::vector<std::string> identities;
    for (const DiskIdentity &is : readIdentities()) {
        identities.push_back(is.disk + "|" + is.vendor + "|" + is.product + "|" + is.revision + "|" + is.serial + "|" +
                             is.designator + "|" + std::to_string(is.size) + "|" + (is.from == nullptr ? "" : is.from));
    }
    std::string sent; // to the devices, by page and in their order
    for (const std::string &line : replay::stopJournal()) {
        if (line.starts_with("ioctl USCSICMD")) {
            sent += line.substr(18, 6) + (line.substr(18, 2) == "00" ? "," : ";");
        }
    }
    EXPECT_EQ(identities, (std::vector<std::string>{
                              "c0t0d0|SEAGATE|ST373207LSUN72G|045A|0545B1A0C2|naa.5000c5000a2b3c41|73400057856|device",
                              "c0t1d0|SUN|DISK|1.0|ABC|naa.5000c5000a2b3c41|0|device", "c0t2d0|SUN|DISK|1.0|||0|device",
                              "c0t3d0|SUN|DISK|1.0|||0|device",
                              "c0t600A0B800012AB34000005D64E8B1F2Ad0|||||naa.600a0b800012ab34000005d64e8b1f2a|0|name",
                              "c0t4d0||||||0|"}));
    EXPECT_EQ(sent, "00 00 ,01 00 ;01 83 ;00 00 ,01 00 ;01 80 ;01 83 ;00 00 ,00 00 ,01 00 ;00 00 ,00 00 ,");
}

TEST(Inventory, GivesUpMountsThatHang) {
    json host = {{"mnttab", json::array({"/dev/dsk/c0t0d0s0\t/\tufs\trw\t1", "p\t/proc\tproc\trw\t1"})},
                 {"statvfs", json::object()}};
    for (int i = 0; i < 40; ++i) {
        const std::string path = "/m" + std::to_string(i);
        host["mnttab"].push_back("pool/x\t" + path + (i % 2 == 0 ? "\tzfs" : "\tvxfs") + "\trw\t1");
        host["statvfs"][path] = {{"f_frsize", 1024}, {"f_blocks", 10}, {"f_bfree", 5}, {"f_bavail", i}};
    }
    for (int i = 0; i < 12; ++i) {
        host["statvfs"]["/m" + std::to_string(i)]["seconds"] = 3600;
    }
    host["statvfs"]["/m20"] = {{"fails", "EACCES"}};
    replay::loadHostText(host.dump());
    for (int round = 0; round < 2; ++round) { // what still hangs is not asked again
        const std::vector<InventoryMount> mounts = readMounts(std::chrono::seconds(2));
        ASSERT_EQ(mounts.size(), 40U);
        for (std::size_t i = 0; i < mounts.size(); ++i) {
            EXPECT_EQ(mounts[i].isAnswered, i >= 12) << i;
            EXPECT_EQ(mounts[i].sizes.has_value(), i >= 12 && i != 20) << i;
            EXPECT_EQ(mounts[i].sizes ? mounts[i].sizes->available : i * 1024, i * 1024);
        }
    }
    EXPECT_TRUE(readMounts(std::chrono::hours(1), "/m30").at(0).sizes); // whatever else hangs
    EXPECT_EQ(readOtherKinds(), std::vector<std::string>{"proc"});
    replay::loadHostText("{}");
    EXPECT_THROW(readMounts({}), InventoryError);
    EXPECT_THROW(readOtherKinds(), InventoryError);
    EXPECT_THROW(ActivitySampler(), InventoryError);
}

TEST(Inventory, AsksOnForWhomeverStillWaits) {
    json host = {{"mnttab", json::array()}, {"statvfs", json::object()}};
    for (int i = 0; i < 9; ++i) { // the last has to wait for a thread
        host["mnttab"].push_back("pool/x\t/n" + std::to_string(i) + "\tzfs\trw\t1");
        host["statvfs"]["/n" + std::to_string(i)] = {{"f_blocks", 10}, {"seconds", i < 8 ? 1 : 0}};
    }
    replay::loadHostText(host.dump());
    std::vector<InventoryMount> mounts;
    std::thread patient([&] { mounts = readMounts(std::chrono::seconds(20)); });
    for (int round = 0; round < 5; ++round) {
        readMounts(std::chrono::milliseconds(10));
    }
    patient.join();
    EXPECT_TRUE(std::ranges::all_of(mounts, &std::optional<MountSizes>::has_value, &InventoryMount::sizes));
}

TEST(Inventory, SamplesDisksThatComeAndGo) {
    const auto disk = [](const char *name, json samples) {
        return json{{"ks_module", "sd"},          {"ks_name", name}, {"ks_class", "disk"},
                    {"ks_type", "KSTAT_TYPE_IO"}, {"ks_crtime", 5},  {"samples", std::move(samples)}};
    };
    const json sd0 =
        disk("sd0", json::array({{{"reads", 1}, {"ks_snaptime", 10}}, {{"reads", 4}, {"ks_snaptime", 20}}}));
    const auto host = [](const json &records) {
        json all = json::parse(R"({"hba": {"adapters": [{"name": "a", "ports": [{
            "statistics": [{"InvalidCRCCount": 7, "TxWords": -1}, {"InvalidCRCCount": 9}]}]}]}})");
        all["kstat"] = records;
        return all.dump();
    };
    replay::loadHostText(host(
        json::array({sd0, disk("sd1", json::array({"EIO"})), statistics("sd0", {{"Media Error", 3}, {"Size", 1}})})));
    ActivitySampler sampler;
    const auto text = [&] {
        std::string all;
        for (const DiskActivity &is : sampler.readDisks()) {
            all += is.instance + " " + std::to_string(is.crtime) + " " + std::to_string(is.snaptime) + " " +
                   std::to_string(is.counters.reads) + (is.errors ? " errors " + std::to_string((*is.errors)[3]) : "") +
                   "; ";
        }
        for (const PortTraffic &is : readPorts()) {
            all += std::to_string(is.counters.InvalidCRCCount) + " " + std::to_string(is.counters.TxWords);
        }
        return all;
    };
    EXPECT_EQ(text(), "sd0 5 10 1 errors 3; 7 -1");
    EXPECT_EQ(text(), "sd0 5 20 4 errors 3; 9 0");
    EXPECT_EQ(text(), "sd0 5 20 4 errors 3; 9 0");
    replay::loadHostText(host(json::array({disk("sd2", json::array({json{{"reads", 8}}}))})));
    EXPECT_EQ(text(), "sd2 5 0 8; 7 -1");

    json three = json::array();
    for (const char *const name : {"sd2", "sd3", "sd4"}) {
        three.push_back(disk(name, json::array({json{{"reads", 8}}})));
    }
    for (int n = 1; n <= 4; ++n) { // a reading that fails leaves nothing out of the next
        replay::loadHostText(host(three));
        {
            const tests::RefusedAllocation refused(n);
            EXPECT_THROW(sampler.readDisks(), std::bad_alloc);
        }
        EXPECT_EQ(text(), "sd2 5 0 8; sd3 5 0 8; sd4 5 0 8; 9 0");
    }
}

} // namespace
} // namespace tarn
