#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "platform/replay/BuiltInHost.h"
#include "platform/replay/Replay.h"
#include "platform/solaris.h"

// What a host description may say, and how it is refused.

namespace {

std::string refusal(const std::string &description) {
    try {
        replay::loadHostText(description);
    } catch (const replay::HostDescriptionError &error) {
        return error.what();
    }
    return "accepted";
}

std::string inDisk(const std::string &members) {
    return R"({"disks": [{}, {)" + members + "}]}";
}

std::string inAdapter(const std::string &members) {
    return R"({"hba": {"adapters": [{)" + members + "}]}}";
}

std::string inRecord(const std::string &members) {
    return R"({"kstat": [{"ks_name": "sd0", "ks_type": "KSTAT_TYPE_IO", )" + members + "}]}";
}

TEST(HostDescription, RefusesWithOneLineThatNamesTheMember) {
    const struct {
        std::string description;
        std::string message;
    } cases[] = {
        // Not JSON, or not an object.
        {"", "not JSON: line 1, column 1: unexpected end of input; expected '[', '{', or a literal"},
        {"{\n  \"disks\": [,]\n}", "not JSON: line 2, column 13: unexpected ','; expected '[', '{', or a literal"},
        {"{\"sysinfo\": tru", "not JSON: line 1, column 16: invalid literal"},
        {"{} // rill", "not JSON: line 1, column 4: invalid literal"},
        {R"({"disks": 1e999})", "not JSON: number overflow parsing '1e999'"},
        {"[]", "object expected, not array"},
        // Names.
        {R"({"disk": []})", "disk: unknown member"},
        {inDisk(R"("geometry": {"dkg_heads": 1})"), "disks[1].geometry.dkg_heads: unknown member"},
        {R"({"mnttab": [], "disks": [], "mnttab": []})", "mnttab: given twice"},
        {R"({"shadow": {"a b": "", "a b": ""}})", R"(shadow["a b"]: given twice)"},
        {R"({"sysinfo": {"SI_NODENAME": "x"}})", R"(sysinfo.SI_NODENAME: unknown name "SI_NODENAME")"},
        {R"({"sysconf": {"_SC_OPEN_MAX": 1}})", R"(sysconf._SC_OPEN_MAX: unknown name "_SC_OPEN_MAX")"},
        {R"({"processors": [{"pi_state": "ONLINE"}]})", R"(processors[0].pi_state: unknown name "ONLINE")"},
        {R"({"kstat": [{"ks_type": "RAW"}]})", R"(kstat[0].ks_type: unknown name "RAW")"},
        {R"({"entries": [{"path": "/a/b", "position": "middle"}]})", R"(entries[0].position: unknown name "middle")"},
        {inDisk(R"("scsi": {"LOG SENSE 2F": ""})"), R"(disks[1].scsi["LOG SENSE 2F"]: unknown command)"},
        {inDisk(R"("fails": {"DKIOCGMEDIAINFO": "EIO"})"), "disks[1].fails.DKIOCGMEDIAINFO: unknown call"},
        {inDisk(R"("fails": {"open O_WRONLY": "EIO"})"), R"(disks[1].fails["open O_WRONLY"]: unknown call)"},
        {inDisk(R"("fails": {"readlink O_RDWR": "EIO"})"), R"(disks[1].fails["readlink O_RDWR"]: unknown call)"},
        {inDisk(R"("fails": {"open": "EWHAT"})"), R"(disks[1].fails.open: unknown errno name "EWHAT")"},
        {inAdapter(R"("status": {"OpenAdapter": 1})"), "hba.adapters[0].status.OpenAdapter: unknown member"},
        // Types.
        {R"({"disks": {}})", "disks: array expected, not object"},
        {R"({"uname": null})", "uname: object expected, not null"},
        {R"({"uname": {"machine": 4}})", "uname.machine: string or {\"hex\": ...} expected, not number"},
        {R"({"uname": {"machine": {"hax": ""}}})", "uname.machine.hax: unknown member"},
        {R"({"uname": {"machine": {}}})", "uname.machine: \"hex\" expected"},
        {inDisk(R"("name": ["c1"])"), "disks[1].name: string expected, not array"},
        {R"({"shadow": {"root": true}})", "shadow.root: string expected, not boolean"},
        {R"({"statvfs": {"/": {"f_bsize": "8192"}}})", R"(statvfs["/"].f_bsize: number expected, not string)"},
        {inAdapter(R"("status": {"GetAdapterName": [0, "x"]})"),
         "hba.adapters[0].status.GetAdapterName[1]: number expected, not string"},
        // Numbers.
        {inDisk(R"("geometry": {"dkg_nhead": 70000})"), "disks[1].geometry.dkg_nhead: 70000 is not in 0 to 65535"},
        {inDisk(R"("geometry": {"dkg_nhead": -1})"), "disks[1].geometry.dkg_nhead: -1 is not in 0 to 65535"},
        {inDisk(R"("minor": 1.5)"), "disks[1].minor: 1.5 is not a whole number in 0 to 4294967295"},
        {R"({"processors": [{"pi_clock": 2147483648}]})",
         "processors[0].pi_clock: 2147483648 is not in -2147483648 to 2147483647"},
        {inRecord(R"("data": {"nread": 1e3})"),
         "kstat[0].data.nread: 1000.0 is not a whole number in -9223372036854775808 to 18446744073709551615"},
        {inRecord(R"("data": {"reads": 4294967296})"), "kstat[0].data.reads: 4294967296 is not in 0 to 4294967295"},
        // Bytes and texts.
        {inDisk(R"("scsi": {"INQUIRY": "00 0g"})"), R"(disks[1].scsi.INQUIRY: "0g" is no hexadecimal byte)"},
        {inDisk(R"("scsi": {"INQUIRY": "00 1"})"), R"(disks[1].scsi.INQUIRY: "1" is no hexadecimal byte)"},
        {inAdapter(R"("attributes": {"NodeWWN": "50060e80  00c3a2"})"),
         "hba.adapters[0].attributes.NodeWWN: 16 hexadecimal digits expected"},
        {inAdapter(R"("attributes": {"NodeWWN": "200000e08b01020x"})"),
         R"(hba.adapters[0].attributes.NodeWWN: "0x" is no hexadecimal byte)"},
        {inDisk(R"("vtoc": {"v_volume": "ninebytes"})"), "disks[1].vtoc.v_volume: 9 bytes do not fit in 8"},
        {R"({"kstat": [{"ks_class": {"hex": ")" + std::string(64, '0') + R"("}}]})",
         "kstat[0].ks_class: 32 bytes do not fit in 31"},
        {inAdapter(R"("name": ")" + std::string(256, 'x') + "\""), "hba.adapters[0].name: 256 bytes do not fit in 255"},
        {inDisk(R"("vtoc": {"v_part": [{},{},{},{},{},{},{},{},{}]})"),
         "disks[1].vtoc.v_part: 9 elements do not fit in 8"},
        {R"({"mnttab": ["a", "b\nc"]})", "mnttab[1]: a line holds no line end and no zero"},
        // What spans members.
        {R"({"kstat": [{"ks_name": "hwclock", "data": {}}]})",
         "kstat[0].data: only vminfo, cpu_stat and KSTAT_TYPE_IO records have data"},
        {inRecord(R"("data": {}, "samples": [])"), "kstat[0].samples: given besides data"},
        {inRecord(R"("samples": [{}, {"freemem": 1}])"), "kstat[0].samples[1].freemem: unknown member"},
        {R"({"processors": [{"id": 4}, {"id": 4}]})", "processors[1]: processor 4 is there already"},
        {inDisk(R"("slices": ["a"], "mounted": ["s0"])"), R"(disks[1].mounted[0]: "s0" is no slice of the disk)"},
        {inDisk(R"("name": "")"), R"(disks[1].name: "s0" is there already)"},
        {R"({"disks": [{"name": "c0"}], "entries": [{"path": "/dev/rdsk/c0s7"}]})",
         R"(entries[0].path: "/dev/rdsk/c0s7" is there already)"},
        {R"({"entries": [{"path": "dev"}]})", "entries[0].path: the path of a file expected"},
    };
    for (const auto &[description, message] : cases) {
        EXPECT_EQ(refusal(description), message) << description;
    }
}

TEST(HostDescription, FieldsTakeEveryReadingOfTheirBits) {
    replay::loadHostText(R"({
        "disks": [{"name": "c0", "vtoc": {"v_part": [{"p_size": 18446744073709551615}, {"p_size": -1}],
                   "v_volume": {"hex": "41 09FF"}, "v_asciilabel": "D\u00e9j"}}],
        "statvfs": {"/": {"f_blocks": -1}},
        "kstat": [{"ks_module": "sd", "ks_name": "0123456789012345678901234567890", "ks_type": "KSTAT_TYPE_IO",
                   "data": {"nread": -2, "wlastupdate": -3}}]})");
    vtoc label = {};
    const int descriptor = solaris::open("/dev/rdsk/c0s0", O_RDONLY);
    ASSERT_EQ(solaris::ioctl(descriptor, DKIOCGVTOC, &label), 0);
    EXPECT_EQ(solaris::close(descriptor), 0);
    EXPECT_EQ(label.v_part[0].p_size, -1);
    EXPECT_EQ(label.v_part[1].p_size, -1);
    EXPECT_EQ(label.v_part[2].p_size, 0);
    EXPECT_EQ(std::string(label.v_volume, 8), std::string("A\t\xff\0\0\0\0\0", 8));
    EXPECT_STREQ(label.v_asciilabel, "D\xc3\xa9j");
    EXPECT_EQ(label.v_sectorsz, 512);
    EXPECT_EQ(label.v_nparts, V_NUMPAR);

    struct statvfs64 status = {};
    ASSERT_EQ(solaris::statvfs64("/", &status), 0);
    EXPECT_EQ(status.f_blocks, ~0ull);

    kstat_ctl_t *control = kstat_open();
    ASSERT_NE(control, nullptr);
    kstat_io_t data = {};
    EXPECT_EQ(std::string(control->kc_chain->ks_name, KSTAT_STRLEN), "0123456789012345678901234567890");
    ASSERT_NE(kstat_read(control, control->kc_chain, &data), -1);
    EXPECT_EQ(data.nread, ~0ull - 1);
    EXPECT_EQ(data.wlastupdate, -3);
    kstat_close(control);
}

TEST(HostDescription, ARefusedOneLeavesTheHostAsItIs) {
    replay::loadHostText(R"({"sysconf": {"_SC_PHYS_PAGES": 77}})");
    EXPECT_NE(refusal(R"({"sysconf": {"_SC_PHYS_PAGES": 88}, "disks": 1})"), "accepted");
    EXPECT_EQ(solaris::sysconf(_SC_PHYS_PAGES), 77);
}

TEST(HostDescription, AFileIsNamedInItsRefusal) {
    const std::string path = testing::TempDir() + "host.json";
    const auto refusalOf = [&](const std::string &text) {
        std::FILE *file = std::fopen(path.c_str(), "w");
        std::fputs(text.c_str(), file);
        std::fclose(file);
        try {
            replay::loadHostFile(path);
        } catch (const replay::HostDescriptionError &error) {
            return std::string(error.what());
        }
        return std::string("accepted");
    };
    EXPECT_EQ(refusalOf(R"({"sysconf": {"_SC_PHYS_PAGES": 99}})"), "accepted");
    EXPECT_EQ(solaris::sysconf(_SC_PHYS_PAGES), 99);
    EXPECT_EQ(refusalOf(R"({"disks": [{"major": "x"}]})"), path + ": disks[0].major: number expected, not string");
    EXPECT_EQ(refusalOf("{"), path + ": not JSON: line 1, column 2: unexpected end of input; expected string literal");
    std::remove(path.c_str());
    try {
        replay::loadHostFile(path);
        ADD_FAILURE() << "a file that is not there was read";
    } catch (const replay::HostDescriptionError &error) {
        EXPECT_EQ(error.what(), path + ": No such file or directory");
    }
}

// What the built-in host promises to those who try the system first: its parts agree with one another.
TEST(HostDescription, TheBuiltInHostIsWhole) {
    replay::loadHostText(std::string(replay::builtInHostText));
    std::FILE *table = solaris::fopen(MNTTAB, "r");
    ASSERT_NE(table, nullptr);
    struct mnttab entry = {};
    int result = 0;
    std::vector<std::string> devices;
    while ((result = solaris::getmntent(table, &entry)) == 0) {
        const std::string type = entry.mnt_fstype;
        if (type != "ufs" && type != "nfs") {
            continue;
        }
        struct statvfs64 size = {};
        ASSERT_EQ(solaris::statvfs64(entry.mnt_mountp, &size), 0) << entry.mnt_mountp;
        if (type == "ufs") {
            devices.push_back(entry.mnt_special);
            const std::string raw = "/dev/rdsk" + devices.back().substr(std::string("/dev/dsk").size());
            const int descriptor = solaris::open(raw.c_str(), O_RDWR | O_NDELAY);
            struct stat status = {};
            struct ustat mounted = {};
            dk_cinfo info = {};
            vtoc label = {};
            ASSERT_EQ(solaris::fstat(descriptor, &status), 0) << raw;
            EXPECT_EQ(solaris::ustat(status.st_rdev, &mounted), 0) << raw;
            ASSERT_EQ(solaris::ioctl(descriptor, DKIOCINFO, &info), 0) << raw;
            ASSERT_EQ(solaris::ioctl(descriptor, DKIOCGVTOC, &label), 0) << raw;
            const auto bytes = static_cast<unsigned long>(label.v_part[info.dki_partition].p_size) * 512;
            EXPECT_LT(size.f_blocks * size.f_frsize, bytes) << raw;
            EXPECT_GT(size.f_blocks * size.f_frsize, bytes / 100 * 95) << raw;
            solaris::close(descriptor);
        }
    }
    EXPECT_EQ(result, -1);
    EXPECT_EQ(devices.size(), 8u);
    solaris::fclose(table);
}

} // namespace
