#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <malloc.h>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
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

std::string fileRefusal(const std::string &path, int milliseconds = 1000) {
    try {
        replay::loadHostFile(path, std::chrono::milliseconds(milliseconds));
    } catch (const replay::HostDescriptionError &error) {
        return error.what();
    }
    return "accepted";
}

TEST(HostDescription, RefusesWithOneLineThatNamesTheMember) {
    const auto cases = nlohmann::json::parse(std::ifstream(TARN_TESTS "/native/description/refused-descriptions.json"));
    EXPECT_GT(cases.size(), 30U);
    for (const auto &[description, message] : cases.get<std::vector<std::pair<std::string, std::string>>>()) {
        EXPECT_EQ(refusal(replay::loadHostText, description), message) << description;
    }
    EXPECT_EQ(refusal(replay::loadHostText, std::string("{}\0{", 4)), "not JSON: byte 3: a zero");
}

std::string repeated(std::string_view text, std::size_t times) {
    std::string all;
    while (times-- > 0) {
        all += text;
    }
    return all;
}

TEST(HostDescription, RefusesOutOfBoundsInFewWords) {
    EXPECT_EQ(refusal(replay::loadHostText, R"({"hba": {"adapters": [)" + repeated("{},", 4096) + "{}]}}"),
              "hba.adapters: 4097 elements do not fit in 4096");
    EXPECT_EQ(refusal(replay::loadHostText, R"({"disks": [)" + repeated("{},", 65536) + "{}]}"),
              "disks: 65537 elements do not fit in 65536");
    for (const std::string &huge : {repeated("x", 100000), repeated("\\u001b", 10000), repeated("é\\n", 20000)}) {
        for (const auto &[before, after] : std::vector<std::pair<std::string, std::string>>{
                 {"{\"", "\": 1}"},
                 {R"({"disks": [{"fails": {")", R"(": "EIO"}}]})"},
                 {R"({"disks": [{"mounted": [")", "\"]}]}"},
                 {R"({"disks": [{"slices": [")", R"(", "a", "a"], "fails": {"stat": "E"}}]})"},
                 {R"({"entries": [{"path": "/)", "\"}], \"listings\": {\"/\": [\"a\"]}}"},
                 {R"({"listings": {")", R"(": ["a"]}})"},
                 {"{\"recordedAt\": \"", "\"}"},
                 {"[\"", "\", 1e999]"}}) {
            const std::string message = refusal(replay::loadHostText, before + huge + after);
            EXPECT_NE(message, "accepted");
            EXPECT_LE(message.size(), 300U) << message;
            EXPECT_TRUE(std::ranges::all_of(message, [](char c) { return c >= ' ' && c <= '~'; })) << message;
        }
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
          inLines(R"("sysinfo": {"SI_SYSNAME": {"hex": "00 41"}})"),
          inLines("\"entries\": [\n    {\"path\": \"/a\"}\n  ],\n  \"listings\": {\n    \"/\": [\"a\"]\n  }"),
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
        EXPECT_EQ(fileRefusal(path), message);
        EXPECT_EQ(solaris::sysconf(_SC_PHYS_PAGES), 99);
    }
    std::filesystem::resize_file(path, (1UL << 30) + 1);
    EXPECT_EQ(fileRefusal(path), path + ": larger than 1 GB");
    std::remove(path.c_str());
    EXPECT_EQ(fileRefusal(path), path + ": No such file or directory");
    EXPECT_EQ(fileRefusal("/dev/zero"), "/dev/zero: a device, not a file");
    EXPECT_EQ(fileRefusal("/"), "/: Is a directory");
    EXPECT_EQ(fileRefusal("/\x1b[2J\n😀\xff\u202e" + std::string(100, 'x') + std::string(60, 'y')).substr(0, 3), "...");
    EXPECT_EQ(fileRefusal("/\x1b[2J\n😀\xff\u202e"), "/\\x1b[2J\\x0a😀\\xff\\xe2\\x80\\xae: No such file or directory");
    EXPECT_EQ(solaris::sysconf(_SC_PHYS_PAGES), 99);
}

// One that answers late or in parts is a file like any other.
TEST(HostDescription, APipeIsReadAsFarAsItAnswers) {
    const std::string path = testing::TempDir() + "host.fifo";
    std::remove(path.c_str());
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(fileRefusal(path, 0), path + ": nothing came for 0 seconds");
    const auto write = [&](std::string_view early, std::string_view late) {
        return std::thread([&path, early, late] {
            std::ofstream pipe(path);
            pipe << early << std::flush;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            pipe << late;
        });
    };
    std::thread writer = write(R"({"sysconf": {"_SC_PHYS)", R"(_PAGES": 77}})");
    EXPECT_EQ(fileRefusal(path, 60000), "accepted");
    writer.join();
    EXPECT_EQ(solaris::sysconf(_SC_PHYS_PAGES), 77);
    writer = write("", "");
    EXPECT_EQ(fileRefusal(path, 60000),
              path + ": not JSON: line 1, column 1: unexpected end of input; expected '[', '{', or a literal");
    writer.join();
    std::remove(path.c_str());
}

/// The peak of what memory a child takes to read the text, in bytes for each of its bytes.
int memoryPerByte(const std::string &text) {
    const pid_t child = fork();
    if (child == 0) {
        const auto inKilobytes = [](const std::string &field) {
            std::ifstream status("/proc/self/status");
            std::string line;
            while (std::getline(status, line) && !line.starts_with(field)) {
            }
            return std::stoul(line.substr(field.size() + 1));
        };
        malloc_trim(0);
        const std::size_t before = inKilobytes("VmRSS");
        std::ofstream("/proc/self/clear_refs") << "5"; // the peak begins anew
        refusal(replay::loadHostText, text);
        _exit(static_cast<int>(std::min<std::size_t>((inKilobytes("VmHWM") - before) * 1024 / text.size(), 255)));
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WEXITSTATUS(status);
}

// Much of little: structures of which nothing is said, or next to nothing. '#' is another number each time.
TEST(HostDescription, TakesMemoryInProportionToItsText) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || defined(__clang__) || defined(__sparc__)
    GTEST_SKIP() << "a sanitizer takes memory of its own, and so does an emulator";
#endif
    for (const auto &[before, unit, after] : std::vector<std::array<std::string, 3>>{
             {R"({"hba": {"adapters": [)", "{}", "]}}"},
             {R"({"hba": {"adapters": [{"ports": [)", "{}", "]}]}}"},
             {R"({"hba": {"adapters": [{"ports": [)", R"({"attributes":{"PortType":1}})", "]}]}}"},
             {R"({"hba": {"adapters": [{"ports": [{"discovered": [)", "{}", "]}]}]}}"},
             {R"({"hba": {"adapters": [{"targetMapping": [)", "{}", "]}]}}"},
             {R"({"hba": {"adapters": [{"targetMapping": [)", R"({"FcpId":{}})", "]}]}}"},
             {R"({"kstat": [)", "{}", "]}"},
             {R"({"kstat": [)", R"({"ks_kid":1})", "]}"},
             {R"({"kstat": [{"ks_name": "vminfo", "samples": [)", "{}", "]}]}"},
             {R"({"disks": [)", "{}", "]}"},
             {R"({"disks": [)", R"({"name":"#"})", "]}"},
             {R"({"disks": [)", R"({"slices":["#","a","b","c","d","e","f","g"],"directories":[]})", "]}"},
             {R"({"disks": [{"slices": [)", "{}", "]}]}"},
             {R"({"statvfs": [)", "{}", "]}"},
             {R"({"entries": [)", R"({"path":"/#/a"})", "]}"},
             {R"({"mnttab": [)", R"("")", "]}"},
             {"[", "[[[[]]]]", "]"},
             {"{", R"("":"")", "}"}}) {
        const std::size_t hash = unit.find('#');
        std::string text = before + unit;
        for (int i = 0; text.size() < 100000; ++i) {
            text += "," + unit.substr(0, hash);
            if (hash != std::string::npos) {
                text.append(std::to_string(i)).append(unit, hash + 1);
            }
        }
        EXPECT_LE(memoryPerByte(text + after), 100) << before << unit;
    }
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
