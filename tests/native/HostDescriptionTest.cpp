#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

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

std::string inDisk(const std::string &members) {
    return R"({"disks": [{}, {)" + members + "}]}";
}

TEST(HostDescription, RefusesWithOneLineThatNamesTheMember) {
    const std::pair<std::string, std::string> cases[] = {
        {"", "not JSON: line 1, column 1: unexpected end of input; expected '[', '{', or a literal"},
        {"{\n  \"disks\": [,]}", "not JSON: line 2, column 13: unexpected ','; expected '[', '{', or a literal"},
        {"{} // rill", "not JSON: line 1, column 4: invalid literal"},
        {R"({"disks": 1e999})", "not JSON: number overflow parsing '1e999'"},
        {"[]", "object expected, not array"},
        {R"({"disk": []})", "disk: unknown member"},
        {R"({"mnttab": [], "disks": [], "mnttab": []})", "mnttab: given twice"},
        {R"({"shadow": {"a b": "", "a b": ""}})", R"(shadow["a b"]: given twice)"},
        {R"({"sysinfo": {"SI_NODENAME": "x"}})", R"(sysinfo.SI_NODENAME: unknown name "SI_NODENAME")"},
        {R"({"processors": [{"id": 4}, {"id": 4}]})", "processors[1]: processor 4 is there already"},
        {R"({"uname": null})", "uname: object expected, not null"},
        {R"({"uname": {"machine": 4}})", "uname.machine: string or {\"hex\": ...} expected, not number"},
        {R"({"uname": {"machine": {}}})", "uname.machine: \"hex\" expected"},
        {R"({"mnttab": ["a", "b\nc"]})", "mnttab[1]: a line holds no line end and no zero"},
        {R"({"entries": [{"path": "dev"}]})", "entries[0].path: the path of a file expected"},
        {R"({"disks": [{}], "entries": [{"path": "/dev/dsk/s7"}]})",
         R"(entries[0].path: "/dev/dsk/s7" is there already)"},
        {inDisk(R"("geometry": {"dkg_heads": 1})"), "disks[1].geometry.dkg_heads: unknown member"},
        {inDisk(R"("geometry": {"dkg_nhead": 65536})"), "disks[1].geometry.dkg_nhead: 65536 is not in 0 to 65535"},
        {inDisk(R"("geometry": {"dkg_nhead": -1})"), "disks[1].geometry.dkg_nhead: -1 is not in 0 to 65535"},
        {inDisk(R"("minor": 1.5)"), "disks[1].minor: 1.5 is not a whole number in 0 to 4294967295"},
        {inDisk(R"("slices": {})"), "disks[1].slices: array expected, not object"},
        {inDisk(R"("slices": ["a"], "mounted": ["s0"])"), R"(disks[1].mounted[0]: "s0" is no slice of the disk)"},
        {inDisk(R"("name": ["c1"])"), "disks[1].name: string expected, not array"},
        {inDisk(R"("name": "")"), R"(disks[1].name: "s0" is there already)"},
        {inDisk(R"("scsi": {"LOG SENSE 2F": ""})"), R"(disks[1].scsi["LOG SENSE 2F"]: unknown command)"},
        {inDisk(R"("scsi": {"INQUIRY": "00 0g"})"), R"(disks[1].scsi.INQUIRY: "0g" is no hexadecimal byte)"},
        {inDisk(R"("scsi": {"INQUIRY": "00 1"})"), R"(disks[1].scsi.INQUIRY: "1" is no hexadecimal byte)"},
        {inDisk(R"("fails": {"open O_WRONLY": "EIO"})"), R"(disks[1].fails["open O_WRONLY"]: unknown call)"},
        {inDisk(R"("fails": {"readlink O_RDWR": "EIO"})"), R"(disks[1].fails["readlink O_RDWR"]: unknown call)"},
        {inDisk(R"("fails": {"open": "EWHAT"})"), R"(disks[1].fails.open: unknown errno name "EWHAT")"},
        {inDisk(R"("vtoc": {"v_volume": "ninebytes"})"), "disks[1].vtoc.v_volume: 9 bytes do not fit in 8"},
        {inDisk(R"("vtoc": {"v_part": [{},{},{},{},{},{},{},{},{}]})"),
         "disks[1].vtoc.v_part: 9 elements do not fit in 8"},
        {R"({"kstat": [{"data": {}}]})", "kstat[0].data: only vminfo, cpu_stat and KSTAT_TYPE_IO records have data"},
        {R"({"kstat": [{"data": {}, "ks_name": "vminfo", "samples": []}]})", "kstat[0].samples: given besides data"},
        {R"({"kstat": [{"ks_name": "vminfo", "samples": [{}, {"idle": 1}]}]})",
         "kstat[0].samples[1].idle: unknown member"},
        {R"({"hba": {"adapters": [{"status": {"GetAdapterName": [0, "x"]}}]}})",
         "hba.adapters[0].status.GetAdapterName[1]: number expected, not string"},
        {R"({"hba": {"adapters": [{"attributes": {"NodeWWN": "50060e80  00c3a2"}}]}})",
         "hba.adapters[0].attributes.NodeWWN: 16 hexadecimal digits expected"},
        {R"({"hba": {"adapters": [{"name": ")" + std::string(256, 'x') + R"("}]}})",
         "hba.adapters[0].name: 256 bytes do not fit in 255"},
    };
    for (const auto &[description, message] : cases) {
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
