#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "description/Host.h"
#include "platform/replay/BuiltInHost.h"
#include "platform/replay/Replay.h"
#include "platform/solaris.h"

// What a host description may say, and how it is refused.

namespace {

/// Why the function that loads a host does not take what it is given.
std::string refusal(void (*load)(const std::string &), const std::string &argument) {
    try {
        load(argument);
    } catch (const replay::HostDescriptionError &error) {
        return error.what();
    }
    return "accepted";
}

TEST(HostDescription, RefusesWithOneLineThatNamesTheMember) {
    const auto cases = nlohmann::json::parse(std::ifstream(TARN_TESTS "/native/refused-descriptions.json"));
    EXPECT_GT(cases.size(), 30U);
    for (const auto &[description, message] : cases.get<std::vector<std::pair<std::string, std::string>>>()) {
        EXPECT_EQ(refusal(replay::loadHostText, description), message) << description;
    }
}

TEST(HostDescription, FieldsTakeEveryReadingOfTheirBits) {
    replay::loadHostText(R"({
        "disks": [{"name": "c0", "vtoc": {"v_part": [{"p_size": 18446744073709551615}, {"p_size": -1}],
                   "v_volume": {"hex": "41 09FF"}, "v_asciilabel": "D\u00e9j"}}],
        "statvfs": {"/": {"f_blocks": -1}}})");
    vtoc label = {};
    const int descriptor = solaris::open("/dev/rdsk/c0s0", O_RDONLY);
    EXPECT_EQ(solaris::ioctl(descriptor, DKIOCGVTOC, &label), 0);
    solaris::close(descriptor);
    EXPECT_EQ(label.v_part[0].p_size, -1);
    EXPECT_EQ(label.v_part[1].p_size, -1);
    EXPECT_EQ(std::string(label.v_volume, 8), std::string("A\t\xff\0\0\0\0\0", 8));
    EXPECT_STREQ(label.v_asciilabel, "D\xc3\xa9j");
    EXPECT_EQ(label.v_nparts, V_NUMPAR);
    struct statvfs64 status = {};
    EXPECT_EQ(solaris::statvfs64("/", &status), 0);
    EXPECT_EQ(status.f_blocks, ~0ull);
}

std::string rewritten(const std::string &description) {
    std::string text;
    description::writeHost(description::readHost(description), [&](std::string_view part) { text += part; });
    return text;
}

// A description as short as it can be comes back letter for letter.
TEST(HostDescription, WhatIsReadIsWritten) {
    std::ifstream file(TARN_TESTS "/hosts/edges.json");
    const std::string edges{std::istreambuf_iterator(file), {}};
    const auto inLines = [](std::string_view member) { return "{\n  " + std::string(member) + "\n}\n"; };
    for (const std::string &text :
         {edges, inLines(R"("kstat": [])"), inLines(R"("hba": {})"),
          inLines("\"statvfs\": [\n    {\"f_frsize\": 1},\n    {\"path\": {\"hex\": \"2f ff\"}}\n  ]")}) {
        EXPECT_EQ(rewritten(text), text);
    }
    const std::string rill = rewritten(std::string(replay::builtInHostText));
    EXPECT_EQ(rewritten(rill), rill);
    EXPECT_EQ(rill.find("\": {}"), std::string::npos);
}

TEST(HostDescription, ARefusedFileIsNamedAndLeavesTheHostAsItIs) {
    const std::string path = testing::TempDir() + "host.json";
    const std::pair<std::string, std::string> cases[] = {
        {R"({"sysconf": {"_SC_PHYS_PAGES": 99}})", "accepted"},
        {R"({"sysconf": {"_SC_PHYS_PAGES": 88}, "disks": [{"major": "x"}]})",
         path + ": disks[0].major: number expected, not string"},
        {"{", path + ": not JSON: line 1, column 2: unexpected end of input; expected string literal"},
    };
    for (const auto &[text, message] : cases) {
        std::ofstream(path) << text;
        EXPECT_EQ(refusal(replay::loadHostFile, path), message);
        EXPECT_EQ(solaris::sysconf(_SC_PHYS_PAGES), 99);
    }
    std::remove(path.c_str());
    EXPECT_EQ(refusal(replay::loadHostFile, path), path + ": No such file or directory");
}

// What the built-in host promises to those who try the system first: its parts agree with one another.
TEST(HostDescription, TheBuiltInHostIsWhole) {
    replay::loadHostText(std::string(replay::builtInHostText));
    std::FILE *table = solaris::fopen(MNTTAB, "r");
    ASSERT_NE(table, nullptr);
    struct mnttab entry = {};
    int fileSystems = 0;
    while (solaris::getmntent(table, &entry) == 0) {
        const std::string type = entry.mnt_fstype;
        struct statvfs64 size = {};
        EXPECT_EQ(solaris::statvfs64(entry.mnt_mountp, &size) == 0, type == "ufs" || type == "nfs") << type;
        if (type != "ufs") {
            continue;
        }
        ++fileSystems;
        const std::string raw = std::string(entry.mnt_special).insert(5, "r"); // "/dev/rdsk/..."
        const int descriptor = solaris::open(raw.c_str(), O_RDWR | O_NDELAY);
        struct stat status = {};
        struct ustat mounted = {};
        dk_cinfo info = {};
        vtoc label = {};
        EXPECT_EQ(solaris::fstat(descriptor, &status), 0) << raw;
        EXPECT_EQ(solaris::ustat(status.st_rdev, &mounted), 0) << raw;
        EXPECT_EQ(solaris::ioctl(descriptor, DKIOCINFO, &info), 0) << raw;
        EXPECT_EQ(solaris::ioctl(descriptor, DKIOCGVTOC, &label), 0) << raw;
        const auto bytes = static_cast<unsigned long>(label.v_part[info.dki_partition].p_size) * 512;
        EXPECT_LT(size.f_blocks * size.f_frsize, bytes) << raw;
        EXPECT_GT(size.f_blocks * size.f_frsize, bytes / 100 * 95) << raw;
        solaris::close(descriptor);
    }
    EXPECT_EQ(fileSystems, 8);
    solaris::fclose(table);
}

} // namespace
