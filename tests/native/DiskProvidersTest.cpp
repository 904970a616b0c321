// What the disk providers make of names, links and labels, and what they ask of a device.

#include <gtest/gtest.h>

#include "native/SolarisDiskDriveProvider.h"
#include "native/SolarisDiskPartitionProvider.h"
#include "platform/replay/Replay.h"
#include "platform/solaris.h"

namespace {

using namespace tarn;
using Lines = std::vector<std::string>;

TEST(DiskNames, ThePartitionsDiskStandsBeforeTheFirstS) {
    const struct {
        const char *entry;
        const char *disk;
    } cases[] = {{"c1t0d0s4", "c1t0d0"},
                 {"c1t0d0s", "c1t0d0"},
                 {"emcpower0a", "emcpower0"},
                 {"emcpower", "emcpowe"},
                 {"emcpowers1", "emcpower"},
                 {"emcpowe0a", "emcpowe0a"},
                 {"c1t0d0p0", "c1t0d0p0"},
                 {"rss0", "r"},
                 {"sd0", ""},
                 {"", ""}};
    for (const auto &[entry, disk] : cases) {
        EXPECT_EQ(partitionDiskName(entry), disk) << entry;
    }
    EXPECT_TRUE(fitsNameField(std::string(99, 'n')));
    EXPECT_FALSE(fitsNameField(std::string(100, 'n')));
}

TEST(DiskNames, ThePhysicalPathIsTakenFromTheLink) {
    const struct {
        const char *link;
        const char *identifier;
    } cases[] = {
        {"../../devices/pci@1f,700000/scsi@2/sd@0,0:c,raw", "/pci@1f,700000/scsi@2/sd@0,0"},
        {"/devices/pci@8,600000/ssd@w50060e8000c3a2b1,0", "/pci@8,600000/ssd@w50060e8000c3a2b1,0"}, // no minor node
        {"../../devices/a:b/c:d:e", "/a:b/c:d"},                                                    // the last colon
        {"x:y/devices/z", "/z"}, // a colon before the device tree is none of the path's
        {"/devices/pseudo/devices/md@0:0,1,raw", "/pseudo/devices/md@0"}, // the first tree
        {"../../devices/:c", "/"},
        {"../../devices", ""},
        {"../../mydevices:c,raw", ""},
        {"", ""}};
    for (const auto &[link, identifier] : cases) {
        EXPECT_EQ(deviceIdentifier(link), identifier) << link;
    }
}

TEST(DiskNames, TheTypeIsTheFirstWordOfTheLabel) {
    const std::string full(128, 'T');
    const std::pair<std::string, std::string> cases[] = {{"SUN72G cyl 14087 alt 2 hd 24 sec 424", "SUN72G"},
                                                         {"NoBlank", "NoBlank"},
                                                         {full, full},
                                                         {full + " cyl 1", full},
                                                         {full + "T", " "},
                                                         {" leading", ""},
                                                         {"", ""}};
    for (const auto &[label, type] : cases) {
        EXPECT_EQ(diskType(label), type) << label;
    }
}

/// A host of one disk, c1t0d0, with what is given besides its name and path.
void loadDisk(const std::string &members) {
    replay::loadHostText(R"({"disks": [{"name": "c1t0d0", "path": "/sd@0,0", "major": 32, "minor": 8)" + members +
                         "}]}");
}

const std::string geometry = R"(, "geometry": {"dkg_ncyl": 10})";
const std::string table = R"(, "vtoc": {"v_part": [{}, {"p_tag": 3, "p_flag": 1, "p_size": 4294967297}]})";

TEST(DiskDevices, ADiskWithoutGeometryIsOpenedAgainToReadOnly) {
    const std::string path = "/dev/rdsk/c1t0d0s2";
    const std::string first = "open " + path + " O_RDWR|O_NDELAY";
    const std::string ask = "ioctl DKIOCGGEOM " + path;
    const std::string second = "open " + path + " O_RDONLY";
    const struct {
        std::string members;
        bool isOpen;
        Lines journal;
    } cases[] = {
        {geometry, true, {first, ask, "close " + path}},
        {geometry + R"(, "fails": {"DKIOCGGEOM O_RDWR": "ENOTTY"})",
         true,
         {first, ask + " ENOTTY", "close " + path, second, "close " + path}},
        {geometry + R"(, "fails": {"DKIOCGGEOM": "EIO", "open O_RDONLY": "EBUSY"})",
         false,
         {first, ask + " EIO", "close " + path, second + " EBUSY"}},
        {geometry + R"(, "fails": {"open O_RDWR": "EROFS"})", false, {first + " EROFS"}},
    };
    for (const auto &[members, isOpen, journal] : cases) {
        loadDisk(members);
        replay::startJournal();
        EXPECT_EQ(DiskDriveImpl::OpenDeviceForIoctl(path.c_str()).isOpen(), isOpen) << members;
        EXPECT_EQ(replay::stopJournal(), journal) << members;
    }
}

TEST(DiskDevices, ASliceIsAskedUntilARequestFails) {
    const std::string path = "/dev/rdsk/c1t0d0s1";
    const Lines requests{"fstat " + path, "ioctl DKIOCINFO " + path, "ioctl DKIOCGGEOM " + path,
                         "ioctl DKIOCGVTOC " + path};
    const char *const failures[] = {"fstat", "DKIOCINFO", "DKIOCGGEOM", "DKIOCGVTOC"};
    const auto ask = [&path] {
        const FileDescriptor device(solaris::open(path.c_str(), O_RDWR | O_NDELAY));
        replay::startJournal();
        return readPartition(device.get());
    };
    for (std::size_t i = 0; i < std::size(failures); ++i) {
        loadDisk(geometry + table + R"(, "fails": {")" + failures[i] + R"(": "EIO"})");
        EXPECT_FALSE(ask()) << failures[i];
        Lines journal(requests.begin(), requests.begin() + static_cast<std::ptrdiff_t>(i) + 1);
        journal.back() += " EIO";
        journal.push_back("close " + path);
        EXPECT_EQ(replay::stopJournal(), journal);
    }

    loadDisk(geometry + table + R"(, "mounted": ["s1"])");
    const std::optional<PartitionData> slice = ask();
    Lines journal = requests;
    journal.insert(journal.end(), {"ustat 32,9", "close " + path});
    EXPECT_EQ(replay::stopJournal(), journal);
    ASSERT_TRUE(slice);
    EXPECT_EQ(slice->partition, 1);
    EXPECT_EQ(slice->size, 4294967297);
    EXPECT_EQ(slice->tag, 3);
    EXPECT_EQ(slice->flag, 1);
    EXPECT_TRUE(slice->mounted);
}

TEST(DiskDevices, APartitionBeyondTheTableIsNone) {
    replay::loadHostText(R"({"disks": [{"name": "emcpower0", "slices": ["a", "b", "c", "d", "e", "f", "g", "h", "i"],
        "path": "/pseudo/emcp@0", "major": 1, "minor": 0)" +
                         geometry + table + "}]}");
    for (const auto &[path, isFound] : {std::pair("/dev/rdsk/emcpower0h", true), {"/dev/rdsk/emcpower0i", false}}) {
        const FileDescriptor device(solaris::open(path, O_RDWR | O_NDELAY));
        const std::optional<PartitionData> slice = readPartition(device.get());
        EXPECT_EQ(slice.has_value(), isFound) << path;
        EXPECT_FALSE(slice && slice->mounted) << path;
    }
}

} // namespace
