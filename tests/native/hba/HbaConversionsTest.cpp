// What the HBA library's fields and statuses become, and what is worked out from device names.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <thread>

#include "common/hba/Conversions.h"
#include "common/hba/DeviceNames.h"
#include "common/hba/library/Messages.h"
#include "platform/replay/Replay.h"
#include "tests/Lines.h"

namespace tarn {
namespace {

TEST(HbaMessages, NameStatusesCallsAndAdapters) {
    const std::pair<HBA_STATUS, const char *> statuses[] = {
        {0, "OK"}, {4, "Invalid argument"}, {5, "Illegal WWN"}, {10, "Adapter busy or reserved"}, {13, ""}};
    for (const auto &[status, text] : statuses) { // the others stand in the logs of whole calls
        EXPECT_STREQ(StatusString(status), text);
    }
    EXPECT_STREQ(BadStatus("GetPortStatistics", 2, 0, "hba-0"),
                 "HBA_GetPortStatistics call returned 2 (Not supported) for adapter 0 (hba-0)");
    EXPECT_STREQ(BadStatus("GetAdapterAttributes", 0xffffffff, 1, ""),
                 "HBA_GetAdapterAttributes call returned -1 () for adapter 1 ()");
}

TEST(HbaConversions, WriteAndCompareWorldWideNames) {
    EXPECT_STREQ(toString({}), "0000000000000000");
    EXPECT_STREQ(toString({{0x10, 0, 0, 0, 0xc9, 0x2a, 0xbb, 0xcc}}), "10000000c92abbcc");
    EXPECT_TRUE(equal({{1, 2, 3, 4, 5, 6, 7, 8}}, {{1, 2, 3, 4, 5, 6, 7, 8}}));
    EXPECT_FALSE(equal({{1, 2, 3, 4, 5, 6, 7, 8}}, {{1, 2, 3, 4, 5, 6, 7, 0x88}}));
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
    std::vector<char> memory(field.begin(), field.end());
    EXPECT_EQ(terminateString(memory.data(), static_cast<int>(field.size())), memory.data());
    EXPECT_NE(std::ranges::count(memory, '\0'), 0) << "not terminated";
    return {memory.begin(), std::ranges::find(memory, '\0')};
}

TEST(HbaConversions, CleanAndTerminateFields) {
    using namespace std::string_literals;
    const std::pair<std::string, std::string> cases[] = {{"Vendor\0\xff\x01junk"s, "Vendor"},
                                                         {"abc\t1234\0"s, "abc1234"},
                                                         {"caf\xE9 au lait\0\0"s, "caf au lait"},
                                                         {"a\n\n\n\nb\0"s, "ab"},
                                                         {"full!", "full"},
                                                         {"no\tNUL", "noNUL"},
                                                         {"\t\t\t", ""},
                                                         {"\x7f ~\0"s, "\x7f ~"},
                                                         {"x", ""},
                                                         {"\0x"s, ""}};
    for (const auto &[field, text] : cases) {
        EXPECT_EQ(cleaned(field), text);
    }

    std::minstd_rand random(20051030);
    for (std::size_t size = 1; size <= 256; ++size) {
        // Rounds differ in how many bytes are plain, so that both clean and unterminated fields come up.
        for (unsigned round = 0; round < 27; ++round) {
            std::string field(size, '\0');
            std::ranges::generate(field, [&] {
                return static_cast<char>(random() % 8 < round % 9 ? 32 + random() % 96 : random() % 256);
            });
            std::string expected = field.substr(0, field.find('\0'));
            std::erase_if(expected, [](char c) { return c < 32 || static_cast<unsigned char>(c) > 127; });
            expected.resize(std::min(expected.size(), size - 1));
            ASSERT_EQ(cleaned(field), expected);
            ASSERT_EQ(cleaned(expected + std::string(size - expected.size(), '\0')), expected) << "was clean";
        }
    }
}

TEST(HbaDeviceNames, GiveControllerNumbers) {
    const std::pair<const char *, HBA_UINT32> numbers[] = {
        {"c12t3d0s2", 12}, {"c0t0d0", 0}, {"c0012t", 12}, {"c4294967295t0", 4294967295}, {"c4294967297t0", 1}};
    for (const auto &[name, number] : numbers) {
        bool ok = false;
        EXPECT_EQ(parseScsiBusNumber(name, ok), number) << name;
        EXPECT_TRUE(ok) << name;
    }
    for (const char *name : {"c3d0", "c3", "c", "ct0d0", "c-1t0", "C3t0", "xc3t0", ""}) {
        for (const bool before : {false, true}) { // the flag is left as it was
            bool ok = before;
            EXPECT_EQ(parseScsiBusNumber(name, ok), 0U) << name;
            EXPECT_EQ(ok, before) << name;
        }
    }
}

TEST(HbaDeviceNames, GiveBusNumbersAsTheRawDiskDirectoryTells) {
    const std::string fills(247, 'p'); // the field, after "/devices/", without a terminator
    replay::loadHostText(R"({"entries": [
        {"path": "/dev/rdsk/a9t0d0s2", "link": "../../devices/pci@1/ssd@w50,0:c,raw"},
        {"path": "/dev/rdsk/c1t0d0s2"},
        {"path": "/dev/rdsk/c2t0d0s2", "link": "/elsewhere/pci@1/ssd@w50,0:c,raw"},
        {"path": "/dev/rdsk/c3t0d0s2", "link": "../../devices/pci@1/ssd@w50,01:c,raw"},
        {"path": "/dev/rdsk/c4d0s2",   "link": "../../devices/pci@1/ssd@w50,0:c,raw"},
        {"path": "/dev/rdsk/c5t0d0s2", "link": "../../devices/pci@1/ssd@w50,0:c,raw"},
        {"path": "/dev/rdsk/c6t0d0s2", "link": "../../devices/pci@1/ssd@w50,0:d,raw"},
        {"path": "/dev/rdsk/c7t0d0s2", "link": "../../devices/pci@1/ssd@w51,0"},
        {"path": "/dev/rdsk/c8t0d0s2", "link": "../../devices/pseudo/devices/md@0:c,raw"},
        {"path": "/dev/rdsk/c9t0d0s2", "link": "../../devices/)" +
                         fills + R"(:c,raw"}]})");
    const struct {
        std::string name;
        HBA_UINT32 reported, bus, links; // of "c" entries that are read
    } cases[] = {
        {"/devices/pci@1/ssd@w50,0", 5, 5, 0},
        {"/dev/dsk/c4t1d0s0", 0, 4, 0},
        {"/dev/rdsk/c4t1d0s2", 0, 0, 0},
        {"/devices/" + fills, 0, 9, 9},
        {"c9t" + std::string(253, '8'), 0, 9, 0}, // and so does this, which has the number in its name
        {"/devices/pci@1/ssd@w50", 0, 0, 9},      // ends inside a unit address
        {"/devices/pci@1/ssd@w51,0", 0, 0, 9},    // the node without a minor name
        {"/devices/md@0", 0, 0, 9},               // the tree is the link's first "/devices/"
        {"/devices/pseudo/devices/md@0", 1, 1, 0},
        {"/devices/pseudo/devices/md@0", 0, 8, 8},
        {"/devices/pci@1/ssd@w50,0", 0, 5, 5}, // stops at the first match
    };
    HBA_FcpScsiEntry entry;
    for (const auto &[name, reported, bus, links] : cases) {
        entry = {};
        name.copy(entry.ScsiId.OSDeviceName, sizeof entry.ScsiId.OSDeviceName);
        entry.ScsiId.ScsiBusNumber = reported;
        replay::startJournal();
        EXPECT_EQ(divineScsiBusNumber(entry), bus) << name;
        const tests::Lines journal = replay::stopJournal();
        EXPECT_EQ(journal.size(), links == 0 ? 0 : links + 2) << name; // opened and closed
        EXPECT_EQ(tests::beginning(journal, {"readlink /dev/rdsk/c"}).size(), links) << name;
    }
    replay::loadHostText("{}");
    EXPECT_EQ(divineScsiBusNumber(entry), 0U) << "no directory";
}

TEST(HbaDeviceNames, AreCutByTheLeadvilleHeuristic) {
    const std::pair<std::string, std::string> cases[] = {{"/dev/rdsk/c1s2d0s2", "c1"},
                                                         {"/devices/s2/ssd@0:s2,raw", "ssd@0:"},
                                                         {"/dev/rdsk/", ""},
                                                         {"", ""},
                                                         {std::string(256, 'x'), std::string(255, 'x')}};
    for (const auto &[name, cut] : cases) {
        char buffer[deviceNameSize];
        leadvilleName(name, buffer);
        EXPECT_EQ(buffer, cut) << name;
    }
}

} // namespace
} // namespace tarn
