// What the disk providers make of names, links and labels, and what they ask of a device.

#include <gtest/gtest.h>

#include "native/SolarisDiskDriveProvider.h"
#include "native/SolarisDiskPartitionProvider.h"
#include "platform/replay/Replay.h"
#include "platform/solaris.h"
#include "tests/Lines.h"

namespace {

using namespace tarn;
using tests::Lines;
using Pair = std::pair<std::string, std::string>;

TEST(DiskNames, AreTakenFromEntriesLinksAndLabels) {
    for (const auto &[entry, disk] : {Pair("c1t0d0s4", "c1t0d0"), Pair("c1t0d0s", "c1t0d0"), Pair("rss0", "r"),
                                      Pair("emcpower0a", "emcpower0"), Pair("emcpowers1", "emcpower"),
                                      Pair("emcpowe0a", "emcpowe0a"), Pair("c1t0d0p0", "c1t0d0p0"), Pair("sd0", "")}) {
        EXPECT_EQ(partitionDiskName(entry), disk) << entry;
    }
    const Pair linksAndIdentifiers[] = {
        {"../../devices/pci@1f,700000/scsi@2/sd@0,0:c,raw", "/pci@1f,700000/scsi@2/sd@0,0"},
        {"/devices/pci@8,600000/ssd@w50060e8000c3a2b1,0", "/pci@8,600000/ssd@w50060e8000c3a2b1,0"}, // no minor node
        {"../../devices/a:b/c:d:e", "/a:b/c:d"},                                                    // the last colon
        {"x:y/devices/z", "/z"}, // a colon before the device tree is none of the path's
        {"/devices/pseudo/devices/md@0:0,1,raw", "/pseudo/devices/md@0"}, // the first tree
        {"../../devices", ""},
        {"../../mydevices:c,raw", ""}};
    for (const auto &[link, identifier] : linksAndIdentifiers) {
        EXPECT_EQ(deviceIdentifier(link), identifier) << link;
    }
    const std::string full(128, 'T');
    for (const auto &[label, type] :
         {Pair("SUN72G cyl 14087 alt 2 hd 24 sec 424", "SUN72G"), Pair("NoBlank", "NoBlank"),
          Pair(full + " cyl 1", full), Pair(full + "T", " "), Pair(" leading", "")}) {
        EXPECT_EQ(diskType(label), type) << label;
    }
}

/// A host of one disk, c1, with what is given besides its name.
void loadDisk(const std::string &members) {
    replay::loadHostText(R"({"disks": [{"name": "c1", "geometry": {"dkg_ncyl": 10}, "vtoc": {"v_part": []})" + members +
                         "}]}");
}

TEST(DiskDevices, ADiskWithoutGeometryIsOpenedAgainToReadOnly) {
    const std::string opened = "open /dev/rdsk/c1s2 O_RDWR|O_NDELAY";
    const std::string asked = "ioctl DKIOCGGEOM /dev/rdsk/c1s2";
    const std::string openedToRead = "open /dev/rdsk/c1s2 O_RDONLY";
    const std::string closed = "close /dev/rdsk/c1s2";
    const std::tuple<std::string, bool, Lines> cases[] = {
        {"", true, {opened, asked, closed}},
        {R"("DKIOCGGEOM O_RDWR": "ENOTTY")", true, {opened, asked + " ENOTTY", closed, openedToRead, closed}},
        {R"("DKIOCGGEOM": "EIO", "open O_RDONLY": "EBUSY")",
         false,
         {opened, asked + " EIO", closed, openedToRead + " EBUSY"}},
        {R"("open O_RDWR": "EROFS")", false, {opened + " EROFS"}},
    };
    for (const auto &[failures, isOpen, journal] : cases) {
        loadDisk(R"(, "fails": {)" + failures + "}");
        replay::startJournal();
        EXPECT_EQ(DiskDriveImpl::OpenDeviceForIoctl("/dev/rdsk/c1s2").isOpen(), isOpen) << failures;
        EXPECT_EQ(replay::stopJournal(), journal) << failures;
    }
}

TEST(DiskDevices, ASliceIsAskedUntilARequestFails) {
    const std::string requests[] = {"fstat", "ioctl DKIOCINFO", "ioctl DKIOCGGEOM", "ioctl DKIOCGVTOC"};
    Lines journal;
    for (const std::string &request : requests) {
        const std::string failing = request.substr(request.rfind(' ') + 1);
        loadDisk(R"(, "fails": {")" + failing + R"(": "EIO"})");
        const FileDescriptor device(solaris::open("/dev/rdsk/c1s1", O_RDWR | O_NDELAY));
        replay::startJournal();
        EXPECT_FALSE(readPartition(device.get())) << failing;
        journal.push_back(request + " /dev/rdsk/c1s1 EIO");
        EXPECT_EQ(replay::stopJournal(), journal);
        journal.back() = request + " /dev/rdsk/c1s1";
    }
}

} // namespace
