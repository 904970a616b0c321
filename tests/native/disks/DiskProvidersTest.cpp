// What the disk providers make of names, links and labels, and what they ask of a device.

#include <gtest/gtest.h>

#include <utility>

#include "native/disks/SolarisDiskDriveProvider.h"
#include "native/disks/SolarisDiskPartitionProvider.h"
#include "platform/replay/Replay.h"
#include "platform/solaris.h"
#include "tests/Expected.h"

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

TEST(DiskDevices, ASliceIsReadAsItsDiskSays) {
    tests::loadHost("disks");
    const FileDescriptor slice(solaris::open("/dev/rdsk/c0t0d0s1", O_RDWR | O_NDELAY));
    const std::optional<PartitionData> data = readPartition(slice.get());
    ASSERT_TRUE(data.has_value());
    EXPECT_EQ(data->partition, 1);
    EXPECT_EQ(data->size, 4294967297);
    EXPECT_EQ(data->tag, 65535);
    EXPECT_EQ(data->flag, 65534);
    EXPECT_TRUE(data->mounted);
    EXPECT_TRUE(OpenDeviceForIoctl("/dev/rdsk/toReads2").isOpen());
    EXPECT_FALSE(OpenDeviceForIoctl("/dev/rdsk/noWritings2").isOpen());
}

TEST(DiskDevices, DescriptorZeroIsAnOpenOneAndIsClosed) {
    replay::startJournal();
    {
        FileDescriptor zero(0);
        EXPECT_TRUE(zero.isOpen());
        EXPECT_TRUE(FileDescriptor(std::move(zero)).isOpen());
        EXPECT_FALSE(zero.isOpen()); // NOLINT(bugprone-use-after-move): it owns none
    }
    EXPECT_EQ(replay::stopJournal(), Lines{"close ? EBADF"});
}

} // namespace
