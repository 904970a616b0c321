#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "platform/replay/Replay.h"
#include "platform/solaris.h"
#include "tests/Lines.h"

// The replayed calls keep the contracts of the published ones.

namespace {

using tests::Lines;

std::string join(const Lines &lines) {
    return tests::joined(lines, " ");
}

/// The result of a call as the journal would say it failed: "ok", or the error's name.
std::string outcome(long result) {
    return result == -1 ? strerrorname_np(errno) : "ok";
}

std::string namesIn(const char *path) {
    DIR *directory = solaris::opendir(path);
    if (directory == nullptr) {
        return outcome(-1);
    }
    Lines names;
    while (const dirent *entry = solaris::readdir(directory)) {
        names.emplace_back(static_cast<const char *>(entry->d_name));
    }
    solaris::closedir(directory);
    return join(names);
}

/// Where an entry leads, what stat says as ls would show it, and the outcome of open.
std::string looksOf(const std::string &path) {
    char link[256];
    const ssize_t length = solaris::readlink(path.c_str(), link, sizeof link);
    Lines looks{length == -1 ? outcome(-1) : std::string(link, static_cast<std::size_t>(length))};
    struct stat status = {};
    looks.push_back(outcome(solaris::stat(path.c_str(), &status)));
    if (looks[1] == "ok") {
        looks[1] = "?pc?d?b?-"[status.st_mode >> 12];
        looks.push_back(std::to_string(major(status.st_rdev)) + "," + std::to_string(minor(status.st_rdev)));
    }
    const int descriptor = solaris::open(path.c_str(), O_RDONLY | O_NDELAY);
    looks.push_back(outcome(descriptor));
    if (descriptor != -1) {
        struct stat opened = {};
        EXPECT_EQ(solaris::fstat(descriptor, &opened), 0);
        EXPECT_EQ(opened.st_rdev, status.st_rdev);
        EXPECT_EQ(solaris::close(descriptor), 0);
    }
    EXPECT_EQ(outcome(solaris::close(descriptor)), "EBADF");
    return join(looks);
}

TEST(ReplayedFiles, DirectoriesLinksAndDevices) {
    const std::string longName = "c" + std::string(300, '7') + "s2";
    auto host = nlohmann::json::parse(R"({
        "disks": [{"name": "c1", "slices": ["s0", "s2"], "path": "/sd@0,0", "major": 32, "minor": 8},
                  {"name": "emcpower0", "slices": ["a"], "major": 5000, "minor": 70000}],
        "entries": [{"path": "/dev/rdsk/z", "link": "../../devices/sd@0,0:b,raw"},
                    {"path": "/dev/rdsk/lost", "link": "../../devices/nowhere:c,raw", "position": "first"},
                    {"position": "first"},
                    {"path": "/dev/dsk/z", "link": "../../devices/sd@0,0:b"}]})");
    host["entries"][2]["path"] = "/dev/rdsk/" + longName;
    replay::loadHostText(host.dump());
    EXPECT_EQ(namesIn("/dev/rdsk"), ". .. lost " + longName + " c1s0 c1s2 emcpower0a z");
    EXPECT_EQ(namesIn("/dev/dsk"), ". .. c1s0 c1s2 emcpower0a z");
    EXPECT_EQ(namesIn("/dev/md"), "ENOENT");

    const std::pair<std::string, std::string> cases[] = {
        {"/dev/dsk/c1s2", "../../devices/sd@0,0:b b 32,9 ok"},
        {"/dev/rdsk/c1s0", "../../devices/sd@0,0:a,raw c 32,8 ok"},
        {"/dev/rdsk/emcpower0a", "EINVAL c 5000,70000 ok"},
        {"/dev/rdsk/z", "../../devices/sd@0,0:b,raw c 32,9 ok"},
        {"/dev/rdsk/lost", "../../devices/nowhere:c,raw ENOENT ENXIO"},
        {"/dev/rdsk/" + longName, "EINVAL - 0,0 ENXIO"},
        {"/dev/rdsk/..", "EINVAL d 0,0 ENXIO"},
        {"/dev/rdsk/c1s1", "ENOENT ENOENT ENXIO"},
    };
    for (const auto &[path, looks] : cases) {
        EXPECT_EQ(looksOf(path), looks) << path;
    }
    char little[] = "????";
    EXPECT_EQ(solaris::readlink("/dev/dsk/z", little, 3), 3);
    EXPECT_STREQ(little, "../?");
}

TEST(ReplayedFiles, CallsFailAsDescribed) {
    replay::loadHostText(R"({"disks": [{"name": "bad", "path": "/b", "geometry": {}, "mounted": ["s0"], "major": 9,
        "fails": {"fstat": "EIO", "DKIOCINFO": "ENOTTY", "DKIOCGGEOM O_RDONLY": "EROFS", "close": "EINTR",
                  "stat": "EACCES", "readlink": "ELOOP", "ustat": "ENOSPC", "USCSICMD": "EPERM"}}]})");
    const int descriptor = solaris::open("/dev/rdsk/bads0", O_RDONLY);
    replay::loadHostText("{}"); // what is open keeps its host
    struct stat status = {};
    Lines results{outcome(solaris::fstat(descriptor, &status))};
    for (const int request : {DKIOCINFO, DKIOCGGEOM, DKIOCGVTOC, USCSICMD}) {
        vtoc answer = {}; // the largest
        results.push_back(outcome(solaris::ioctl(descriptor, request, &answer)));
    }
    results.push_back(outcome(solaris::close(descriptor)));
    EXPECT_EQ(join(results), "EIO ENOTTY EROFS EIO EPERM EINTR");
}

TEST(ReplayedScsi, CommandsLengthsAndDirections) {
    replay::loadHostText(R"({"disks": [{"name": "c1", "scsi": {
        "INQUIRY": "01 02 03 04 05 06 07 08", "LOG SENSE 3B": "3b", "LOG SELECT 30": ""}}]})");
    const int descriptor = solaris::open("/dev/rdsk/c1s2", O_RDONLY | O_NDELAY);
    const std::string inquiry("\x12\0\0\0\xFF\0", 6);
    const std::string select("\x4C\0\x40\0\0\0\0\0\x9\0", 10);
    const std::string list("0\0\0\5\0\1\x20\1.|", 10); // a page with one parameter
    const std::string longPage("0\0\0\6\0\1\x20\1.|", 10);
    const std::string longParameter("0\0\0\5\0\1\x20\2.|", 10);
    const struct {
        const char *what;
        std::string cdb;
        int flags;
        std::string data; // before; the buffer ends before the bar
        const char *outcome;
        std::string after;
        std::size_t resid;
    } cases[] = {
        {"all of the answer", inquiry, USCSI_READ, ".........|", "ok", "\1\2\3\4\5\6\7\10.|", 1},
        {"as far as the buffer goes", inquiry, USCSI_READ | USCSI_SILENT, "...|", "ok", "\1\2\3|", 0},
        {"no more than was asked for", {"\x12\0\0\0\2\0", 6}, USCSI_READ, "....|", "ok", "\1\2..|", 2},
        {"another page control", {"\x4D\0\x3B\0\0\0\0\1\0\0", 10}, USCSI_READ, "..|", "EIO", "..|", 2},
        {"a byte too few", inquiry.substr(0, 5), USCSI_READ, "..|", "EIO", "..|", 2},
        {"reading as writing", inquiry, USCSI_WRITE, "..|", "EINVAL", "..|", 0},
        {"a parameter list", select, USCSI_WRITE, list, "ok", list, 0},
        {"less of it than announced", select, USCSI_WRITE, list.substr(1), "EINVAL", list.substr(1), 0},
        {"another page", select, USCSI_WRITE, "1" + list.substr(1), "EIO", "1" + list.substr(1), 9},
        {"a longer page", select, USCSI_WRITE, longPage, "EINVAL", longPage, 0},
        {"a longer parameter", select, USCSI_WRITE, longParameter, "EINVAL", longParameter, 0},
    };
    for (auto [what, cdb, flags, data, expected, after, resid] : cases) {
        uscsi_cmd command = {};
        command.uscsi_flags = flags;
        command.uscsi_cdb = cdb.data();
        command.uscsi_cdblen = static_cast<unsigned char>(cdb.size());
        command.uscsi_bufaddr = data.data();
        command.uscsi_buflen = data.size() - 1;
        EXPECT_EQ(outcome(solaris::ioctl(descriptor, USCSICMD, &command)), expected) << what;
        EXPECT_EQ(data, after) << what;
        EXPECT_EQ(command.uscsi_resid, resid) << what;
    }
    solaris::close(descriptor);
}

TEST(ReplayedMountTable, LinesHaveFiveFieldsAndALimit) {
    const std::string longest = "a\tb\tc\td\t" + std::string(MNT_LINE_MAX - 8, 'x');
    replay::loadHostText(
        nlohmann::json{{"mnttab", {longest, longest + "x", "/dev/dsk/c1\t/\tufs\trw,nosuid\t113"}}}.dump());
    std::FILE *table = solaris::fopen("/etc/mnttab", "r");
    replay::loadHostText("{}"); // the open table goes on
    struct mnttab entry = {};
    for (const int expected : {0, MNT_TOOLONG, 0}) {
        EXPECT_EQ(solaris::getmntent(table, &entry), expected);
    }
    EXPECT_EQ(join({entry.mnt_special, entry.mnt_mountp, entry.mnt_fstype, entry.mnt_mntopts, entry.mnt_time}),
              "/dev/dsk/c1 / ufs rw,nosuid 113");
    EXPECT_EQ(solaris::getmntent(table, &entry), -1);
    EXPECT_EQ(solaris::fclose(table), 0);
}

TEST(ReplayedKernelStatistics, ChainSamplesAndLookups) {
    replay::loadHostText(R"({"kstat": [
        {"ks_module": "unix", "ks_name": "vminfo", "samples": [{"freemem": 1}, {"freemem": 2}]},
        {"ks_module": "sd", "ks_instance": 3, "ks_name": "sd3"}]})");
    kstat_ctl_t *control = kstat_open();
    kstat_ctl_t *other = kstat_open();
    replay::loadHostText("{}"); // handles keep their host
    EXPECT_EQ(kstat_open(), nullptr);
    kstat_t *const vminfo = control->kc_chain;
    kstat_t *const disk = vminfo->ks_next;

    vminfo_t copy = {};
    for (const unsigned expected : {1u, 2u, 2u}) {
        EXPECT_NE(kstat_read(control, vminfo, &copy), -1);
        EXPECT_EQ(copy.freemem, expected);
    }
    EXPECT_NE(kstat_read(other, other->kc_chain, nullptr), -1);
    EXPECT_EQ(*static_cast<std::uint64_t *>(other->kc_chain->ks_data), 1u);
    EXPECT_EQ(vminfo->ks_data_size, sizeof copy);
    EXPECT_EQ(kstat_read(control, disk, nullptr), -1);
    EXPECT_EQ(kstat_read(control, other->kc_chain, nullptr), -1); // of another chain

    EXPECT_EQ(kstat_lookup(control, nullptr, 3, "sd3"), disk);
    EXPECT_EQ(kstat_lookup(control, "sd", -1, nullptr), disk);
    EXPECT_EQ(kstat_lookup(control, "sd", 0, nullptr), nullptr);
    EXPECT_EQ(kstat_lookup(control, "sd", 3, "sd"), nullptr);
    kstat_close(control);
    kstat_close(other);
}

TEST(ReplayedHba, HandlesEndWithTheirAdapterOrTheLibrary) {
    using Statuses = std::vector<HBA_STATUS>;
    char name[] = "hba-0";
    char read[256];
    HBA_ADAPTERATTRIBUTES adapter = {};
    const auto ask = [&adapter](HBA_HANDLE handle) { return HBA_GetAdapterAttributes(handle, &adapter); };
    replay::loadHostText("{}");
    EXPECT_EQ((Statuses{HBA_LoadLibrary(), HBA_GetAdapterName(0, read), HBA_FreeLibrary()}), (Statuses{1, 1, 1}));
    replay::loadHostText(R"({"hba": {"adapters": [{"name": "hba-0", "openFailures": 1, "attributes": {"Model": "M"},
                                                   "status": {"GetAdapterAttributes": [10, 0, 8]}}]}})");
    EXPECT_EQ((Statuses{HBA_LoadLibrary(), HBA_LoadLibrary(), HBA_GetAdapterName(1, read)}), (Statuses{0, 1, 6}));
    EXPECT_EQ(HBA_OpenAdapter(name), 0u); // the one failure
    const HBA_HANDLE one = HBA_OpenAdapter(name);
    const HBA_HANDLE other = HBA_OpenAdapter(name);
    EXPECT_EQ(ask(one), 10u);
    EXPECT_STREQ(adapter.Model, "");
    EXPECT_EQ(ask(other), 0u);
    EXPECT_STREQ(adapter.Model, "M");
    HBA_CloseAdapter(one);
    EXPECT_EQ((Statuses{ask(one), ask(other), ask(other)}), (Statuses{3, 8, 0}));
    EXPECT_EQ((Statuses{HBA_FreeLibrary(), ask(other)}), (Statuses{0, 1}));
    EXPECT_EQ(HBA_LoadLibrary(), 0u); // counts its failures afresh, and knows no handle of before
    EXPECT_EQ(HBA_OpenAdapter(name), 0u);
    EXPECT_NE(HBA_OpenAdapter(name), 0u);
    EXPECT_EQ((Statuses{ask(one), ask(other), HBA_FreeLibrary()}), (Statuses{3, 3, 0}));
}

TEST(ReplayedCalls, ManyThreadsMayMakeThem) {
    constexpr int threadCount = 4, rounds = 200;
    std::atomic<int> right = 0;
    replay::startJournal();
    const auto makeCalls = [&] {
        replay::loadHostText(R"({"disks": [{"name": "c1", "geometry": {"dkg_nhead": 3}}], "mnttab": ["a\tb\tc\td\te"],
                                 "kstat": [{"ks_name": "cpu_stat0", "data": {}}]})");
        dk_geom geometry = {};
        const int descriptor = solaris::open("/dev/rdsk/c1s2", O_RDONLY);
        right += solaris::ioctl(descriptor, DKIOCGGEOM, &geometry) == 0 && geometry.dkg_nhead == 3;
        right += solaris::close(descriptor) == 0;
        kstat_ctl_t *control = kstat_open();
        right += kstat_read(control, control->kc_chain, nullptr) != -1;
        kstat_close(control);
        struct mnttab entry = {};
        std::FILE *table = solaris::fopen("/etc/mnttab", "r");
        right += solaris::getmntent(table, &entry) == 0 && std::strcmp(entry.mnt_time, "e") == 0;
        solaris::fclose(table);
        right += namesIn("/dev/rdsk") == ". .. c1s0 c1s1 c1s2 c1s3 c1s4 c1s5 c1s6 c1s7";
    };
    std::vector<std::jthread> threads(threadCount);
    std::ranges::generate(threads, [&] {
        return std::jthread([&] {
            for (int round = 0; round < rounds; ++round) {
                makeCalls();
            }
        });
    });
    threads.clear();
    EXPECT_EQ(right, 5 * threadCount * rounds);
    EXPECT_EQ(std::ranges::count(replay::stopJournal(), "kstat_close"), threadCount * rounds);
}

TEST(ReplayedJournal, CallsWithTheirArgumentsAndErrors) {
    replay::loadHostText(R"({"shadow": {"root": "ab"}, "sysinfo": {"SI_HOSTNAME": "rill"}})");
    char buffer[64];
    struct stat status = {};
    spwd entry = {};
    replay::startJournal();
    solaris::ioctl(-1, DKIOCGGEOM, buffer);
    solaris::stat("/dev/dsk/c1s9", &status);
    EXPECT_EQ(solaris::sysinfo(SI_HOSTNAME, buffer, 3), 5); // the room it takes
    EXPECT_STREQ(buffer, "ri");
    EXPECT_EQ(solaris::sleep(3600), 0u); // at once
    solaris::getspnam_r("root", &entry, buffer, 8);
    solaris::getspnam_r("root", &entry, buffer, 7);
    HBA_CloseAdapter(1);
    const Lines journal = replay::stopJournal();
    solaris::sleep(1);
    EXPECT_EQ(journal, (Lines{"ioctl DKIOCGGEOM ? EBADF", "stat /dev/dsk/c1s9 ENOENT", "sysinfo SI_HOSTNAME",
                              "sleep 3600", "getspnam_r root", "getspnam_r root ERANGE", "HBA_CloseAdapter ?"}));
    EXPECT_EQ(replay::stopJournal(), Lines{});
}

} // namespace
