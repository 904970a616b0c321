// What the HBA library's fields and statuses become, and what is worked out from device names.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <thread>

#include "common/hba/Conversions.h"
#include "common/hba/DeviceNames.h"
#include "common/hba/Messages.h"
#include "platform/replay/Replay.h"

namespace tarn {
namespace {

TEST(HbaMessages, NameEveryStatusOfTheApi) {
    const struct {
        HBA_STATUS status;
        const char *text;
    } cases[] = {{0, "OK"},
                 {1, "Error"},
                 {2, "Not supported"},
                 {3, "Invalid handle"},
                 {4, "Invalid argument"},
                 {5, "Illegal WWN"},
                 {6, "Illegal index"},
                 {7, "More data available"},
                 {8, "Stale data"},
                 {9, "SCSI check condition"},
                 {10, "Adapter busy or reserved"},
                 {11, "HBA request timed out"},
                 {12, "HBA has been removed or deactivated"},
                 {13, ""},
                 {0x7fffffff, ""},
                 {0xffffffff, ""}};
    for (const auto &[status, text] : cases) {
        EXPECT_STREQ(StatusString(status), text) << status;
    }
}

TEST(HbaMessages, TellWhichCallFailedOnWhichAdapter) {
    EXPECT_STREQ(BadStatus("GetPortStatistics", 2, 0, "hba-0"),
                 "HBA_GetPortStatistics call returned 2 (Not supported) for adapter 0 (hba-0)");
    EXPECT_STREQ(BadStatus("GetFcpTargetMapping", 1, 3, "hba-3"),
                 "HBA_GetFcpTargetMapping call returned 1 (Error) for adapter 3 (hba-3)");
    EXPECT_STREQ(BadStatus("GetAdapterAttributes", 99, 1, "hba-1"),
                 "HBA_GetAdapterAttributes call returned 99 () for adapter 1 (hba-1)");
    EXPECT_STREQ(BadStatus("GetAdapterAttributes", 0xffffffff, 1, ""),
                 "HBA_GetAdapterAttributes call returned -1 () for adapter 1 ()");
    const std::string name(255, 'n');
    EXPECT_EQ(BadStatus("GetDiscoveredPortAttributes", 12, 2147483647, name.c_str()),
              "HBA_GetDiscoveredPortAttributes call returned 12 (HBA has been removed or deactivated) for adapter "
              "2147483647 (" +
                  name + ")");
    EXPECT_EQ(unableToOpen(2, name.c_str(), 0),
              "Unable to open HBA adapter 2 (" + name + ") -- status is 0 (OK) (check ownership)");
}

TEST(HbaConversions, WriteWorldWideNames) {
    EXPECT_STREQ(toString({}), "0000000000000000");
    EXPECT_STREQ(toString({{0x20, 0, 0, 0xe0, 0x8b, 1, 2, 3}}), "200000e08b010203");
    EXPECT_STREQ(toString({{0x10, 0, 0, 0, 0xc9, 0x2a, 0xbb, 0xcc}}), "10000000c92abbcc");

    const HBA_WWN wwn{{1, 2, 3, 4, 5, 6, 7, 8}};
    EXPECT_TRUE(equal(wwn, wwn));
    for (HBA_UINT8 &byte : HBA_WWN(wwn).wwn) {
        HBA_WWN other = wwn;
        other.wwn[byte - 1] ^= 0x80;
        EXPECT_FALSE(equal(wwn, other));
    }
}

TEST(HbaConversions, KeepTheTextsOfThreadsApart) {
    const char *const text = toString({{0xaa, 0, 0, 0, 0, 0, 0, 1}});
    const char *const line = BadStatus("A", 1, 1, "here");
    std::thread([] {
        toString({});
        BadStatus("B", 2, 2, "there");
    }).join();
    EXPECT_STREQ(text, "aa00000000000001");
    EXPECT_STREQ(line, "HBA_A call returned 1 (Error) for adapter 1 (here)");
}

/// The field cleaned, in memory of just its size.
std::string cleaned(const std::string &field) {
    const std::unique_ptr<char[]> memory(new char[field.size()]);
    std::memcpy(memory.get(), field.data(), field.size());
    EXPECT_EQ(terminateString(memory.get(), static_cast<int>(field.size())), memory.get());
    const void *const end = std::memchr(memory.get(), '\0', field.size());
    EXPECT_NE(end, nullptr) << "not terminated";
    return end == nullptr ? "" : memory.get();
}

TEST(HbaConversions, CleanAndTerminateFields) {
    using namespace std::string_literals;
    const struct {
        std::string field;
        std::string text;
    } cases[] = {
        {"Vendor\0\xff\x01junk"s, "Vendor"},
        {"abc\t1234\0"s, "abc1234"},
        {"caf\xE9 au lait\0\0"s, "caf au lait"},
        {"\x01\x02\x1f\x80\xff\0"s, ""},
        {"a\n\n\n\nb\0"s, "ab"},
        {"full!"s, "full"},
        {"no\tNUL"s, "noNUL"},
        {"\t\t\t"s, ""},
        {"\x7f ~\0"s, "\x7f ~"},
        {"x"s, ""},
        {"\0x"s, ""},
        {std::string(64, 'S'), std::string(63, 'S')},
    };
    for (const auto &[field, text] : cases) {
        EXPECT_EQ(cleaned(field), text);
    }
}

TEST(HbaConversions, CleanRandomFieldsOfEverySize) {
    std::minstd_rand random(20051030);
    for (std::size_t size = 1; size <= 256; ++size) {
        for (int round = 0; round < 200; ++round) {
            // Rounds differ in how many bytes are plain, so that both clean and unterminated fields come up.
            std::string field(size, '\0');
            for (char &c : field) {
                c = static_cast<char>(random() % 8 < static_cast<unsigned>(round % 9) ? 32 + random() % 96
                                                                                      : random() % 256);
            }
            std::string expected;
            for (const char c : field.substr(0, field.find('\0'))) {
                if (c >= 32) { // plain char may be unsigned
                    expected += static_cast<unsigned char>(c) < 128 ? std::string(1, c) : "";
                }
            }
            expected.resize(std::min(expected.size(), size - 1));
            ASSERT_EQ(cleaned(field), expected);

            std::string clean = expected;
            clean.resize(size, '\0');
            ASSERT_EQ(cleaned(clean), expected) << "a clean field is not changed";
        }
    }
}

TEST(HbaDeviceNames, GiveControllerNumbers) {
    const struct {
        const char *name;
        HBA_UINT32 number;
        bool ok;
    } cases[] = {
        {"c12t3d0s2", 12, true},    {"c0t0d0", 0, true}, {"c0012t", 12, true}, {"c4294967295t0", 4294967295, true},
        {"c4294967297t0", 1, true}, // 32 bits
        {"c3d0", 0, false},         {"c3", 0, false},    {"c", 0, false},      {"ct0d0", 0, false},
        {"c-1t0", 0, false},        {"C3t0", 0, false},  {"xc3t0", 0, false},  {"", 0, false},
    };
    for (const auto &[name, number, success] : cases) {
        bool ok = false;
        EXPECT_EQ(parseScsiBusNumber(name, ok), number) << name;
        EXPECT_EQ(ok, success) << name;
        ok = true;
        parseScsiBusNumber(name, ok);
        EXPECT_TRUE(ok) << "never cleared: " << name;
    }
}

HBA_FcpScsiEntry entryOf(const std::string &deviceName, HBA_UINT32 bus = 0) {
    HBA_FcpScsiEntry entry{};
    deviceName.copy(entry.ScsiId.OSDeviceName, sizeof entry.ScsiId.OSDeviceName);
    entry.ScsiId.ScsiBusNumber = bus;
    return entry;
}

TEST(HbaDeviceNames, GiveBusNumbersAsTheRawDiskDirectoryTells) {
    const std::string longPath = "/devices/" + std::string(1100, 'p');
    replay::loadHostText(R"({"entries": [
        {"path": "/dev/rdsk/a9t0d0s2", "link": "../../devices/pci@1/ssd@w50,0:c,raw"},
        {"path": "/dev/rdsk/c1t0d0s2"},
        {"path": "/dev/rdsk/c2t0d0s2", "link": "/elsewhere/pci@1/ssd@w50,0:c,raw"},
        {"path": "/dev/rdsk/c3t0d0s2", "link": "../../devices/pci@1/ssd@w50,01:c,raw"},
        {"path": "/dev/rdsk/c4d0s2",   "link": "../../devices/pci@1/ssd@w50,0:c,raw"},
        {"path": "/dev/rdsk/c5t0d0s2", "link": "../../devices/pci@1/ssd@w50,0:c,raw"},
        {"path": "/dev/rdsk/c6t0d0s2", "link": "../../devices/pci@1/ssd@w50,0:d,raw"},
        {"path": "/dev/rdsk/c7t0d0s2", "link": "../../devices/pci@1/ssd@w51,0"},
        {"path": "/dev/rdsk/c8t0d0s2", "link": ")" +
                         longPath + R"(:c"}]})");
    const struct {
        std::string name;
        HBA_UINT32 reported;
        HBA_UINT32 bus;
        bool looksIntoDirectory;
    } cases[] = {
        {"/devices/pci@1/ssd@w50,0", 5, 5, false},
        {"c7t0d0s2", 0xffffffff, 0xffffffff, false},
        {"c7t0d0s2", 0, 7, false},
        {"/dev/dsk/c4t1d0s0", 0, 4, false},
        {"/dev/dsk/c3d0", 0, 0, false},
        {"/dev/rdsk/c4t1d0s2", 0, 0, false},
        {"", 0, 0, false},
        {"/devices/pci@1/ssd@w50,0", 0, 5, true},
        {"/devices/pci@1/ssd@w50", 0, 0, true},   // ends inside a unit address
        {"/devices/pci@1/ssd@w51,0", 0, 0, true}, // the node without a minor name
        {"/devices/pci@1/ssd@w50,2", 0, 0, true},
        {longPath.substr(0, 300), 0, 0, true}, // fills its field without a terminator
    };
    for (const auto &[name, reported, bus, looksIntoDirectory] : cases) {
        replay::startJournal();
        EXPECT_EQ(divineScsiBusNumber(entryOf(name, reported)), bus) << name;
        const std::vector<std::string> journal = replay::stopJournal();
        ASSERT_EQ(!journal.empty(), looksIntoDirectory) << name;
        if (looksIntoDirectory) {
            EXPECT_EQ(journal.front(), "opendir /dev/rdsk");
            EXPECT_EQ(journal.back(), "closedir /dev/rdsk");
            EXPECT_EQ(std::count(journal.begin(), journal.end(), "readlink /dev/rdsk/a9t0d0s2"), 0);
            EXPECT_EQ(std::count(journal.begin(), journal.end(), "readlink /dev/rdsk/c6t0d0s2"), bus == 5 ? 0 : 1)
                << "stops at the first match";
        }
    }
    EXPECT_TRUE(deviceDerivesFrom("c5t0d0s2", "/devices/pci@1/ssd@w50,0"));
    EXPECT_FALSE(deviceDerivesFrom("c8t0d0s2", longPath)) << "a target of more than 1023 bytes";

    replay::loadHostText("{}");
    EXPECT_EQ(divineScsiBusNumber(entryOf("/devices/pci@1/ssd@w50,0")), 0U) << "no directory";
}

TEST(HbaDeviceNames, AreCutByTheLeadvilleHeuristic) {
    const struct {
        std::string name;
        std::string cut;
    } cases[] = {
        {"/dev/rdsk/c2t50060E8000C3A2B1d0s2", "c2t50060E8000C3A2B1d0"},
        {"/dev/rdsk/c1t0d0s0", "c1t0d0s0"},
        {"/dev/rdsk/c1s2d0s2", "c1"},
        {"/devices/s2/ssd@0:s2,raw", "ssd@0:"},
        {"/dev/rdsk/", ""},
        {"c1t0d0s2", "c1t0d0"},
        {"", ""},
        {std::string(256, 'x'), std::string(255, 'x')},
    };
    for (const auto &[name, cut] : cases) {
        char buffer[deviceNameSize];
        leadvilleName(name, buffer);
        EXPECT_EQ(buffer, cut) << name;
    }
}

} // namespace
} // namespace tarn
