// Each allocation of the native code refused once; and that what is counted as such is that code's own.

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <new>
#include <nlohmann/json.hpp>

#include "common/hba/DeviceNames.h"
#include "common/hba/RemotePortIndex.h"
#include "common/hba/library/LibraryGuards.h"
#include "common/hba/library/Messages.h"
#include "common/system/SolarisDiskMap.h"
#include "native/JavaError.h"
#include "native/disks/SolarisDiskDriveProvider.h"
#include "native/disks/SolarisDiskPartitionProvider.h"
#include "native/host/SolarisCpuUtilizationInformation.h"
#include "native/host/SolarisDiskIOInformation.h"
#include "native/host/SolarisLogicalDisk.h"
#include "native/host/SolarisProcessor.h"
#include "native/host/SolarisUtil.h"
#include "tests/Allocations.h"
#include "tests/Expected.h"

namespace tarn {
namespace {

/// How many entries the first adapter's mapping has, and how many of them are of the port without a name.
std::pair<std::size_t, std::size_t> walkMapping() {
    WithHbaLibrary library;
    char name[adapterNameSize];
    const WithAdapterHandle adapter(library, 0, name);
    TargetMappingTable mapping;
    if (!mapping.fetch([&](HBA_FCPTARGETMAPPING *into) { return HBA_GetFcpTargetMapping(adapter.handle, into); })) {
        throw std::bad_alloc(); // as which the fill takes it
    }
    RemotePortIndex index;
    index.build(mapping.entries());
    return {mapping.entries().size(), index.find({}).size()};
}

TEST(Allocations, GiveEverythingBackWhicheverIsRefused) {
    const std::function<std::string()> functions[] = {
        [] { return tests::joined(ListLogicalDisks(), " "); },
        [] { return GetLogicalDisk("/", true).device; },
        [] { return GetLogicalDisk("/nowhere", true).device; },
        [] { return GetProcessors().at(1).processorType; },
        [] { return GetProcessorInfo(4)->processorType; },
        [] { return std::to_string(getCpuUtilInfos().size() + static_cast<unsigned>(getCpuUtilInfo(0).userTicks)); },
        [] { return std::to_string(getCpuUtilInfo(9).userTicks); },
        [] { return getDiskIOData().at(0).deviceName + getDiskIOData("c0t0d0").kstatName + getSDxName("c0t0d0"); },
        [] { return getDiskIOData("a disk that is not there").kstatName; },
        [] {
            return deviceIdentifier("../../devices/pci@1f,700000/scsi@2/sd@0,0:c,raw") +
                   diskType("LABEL-OF-A-DISK-X cyl");
        },
        [] { return partitionDiskName("c0t600A0B80001234560000ABCDd0s0"); },
        [] { return unableToOpen(0, "hba-0", 1) + tooMany("ports", 5000, adapterText(0, "hba-0"), 4096); },
        [] {
            HBA_FCPSCSIENTRY entry{{"/devices/pci@1f,700000/scsi@2/sd@0,0", 0, 0, 0}, {}};
            return std::to_string(divineScsiBusNumber(entry));
        },
        [] {
            const auto [all, found] = walkMapping();
            return std::to_string(all) + " " + std::to_string(found);
        }};
    const auto outcome = [&](const auto &function, int n, int &made) {
        const tests::RefusedAllocation allocation(n);
        std::string text;
        try {
            const std::string told = function();
            const tests::OutsideTheLibrary outside;
            text = told;
        } catch (const std::bad_alloc &) {
            text = "no memory";
        } catch (const NativeError &error) {
            const tests::OutsideTheLibrary outside;
            text = error.getMessage();
        }
        made = allocation.made();
        EXPECT_EQ(allocation.kept(), 0) << text;
        return text;
    };
    nlohmann::json adapter = {{"name", "a"}};
    adapter["targetMapping"] =
        nlohmann::json(513, nlohmann::json::object()); // more than there is room for without an allocation
    for (std::size_t i = 0; i < std::size(functions); ++i) {
        if (i + 1 < std::size(functions)) {
            tests::loadHost("small");
        } else {
            replay::loadHostText(nlohmann::json{{"hba", {{"adapters", nlohmann::json::array({adapter})}}}}.dump());
        }
        int made = 0, all = 0;
        const std::string whole = outcome(functions[i], 0, all);
        EXPECT_GT(all, 0) << i;
        for (int n = 1; n <= all; ++n) {
            EXPECT_EQ(outcome(functions[i], n, made), "no memory") << i << " " << n;
            EXPECT_EQ(made, n);
            EXPECT_EQ(outcome(functions[i], 0, made), whole);
        }
    }
}

/// Whatever it answers, and with lines for the journal that are longer than a string holds without an allocation.
TEST(Allocations, OfThePlatformAreItsOwn) {
    tests::loadHost("small");
    replay::startJournal();
    const tests::RefusedAllocation allocation(1);

    char text[256];
    struct stat status {};
    struct statvfs64 sizes {};
    struct utsname names {};
    struct ustat mounted {};
    processor_info_t processor{};
    stack_t stack{};
    mnttab entry{};
    spwd user{};
    dk_cinfo information{};
    const int disk = solaris::open("/dev/rdsk/c0t0d0s0", O_RDWR | O_NDELAY);
    solaris::ioctl(disk, DKIOCINFO, &information);
    solaris::fstat(disk, &status);
    solaris::close(disk);
    solaris::open("/dev/rdsk/a-disk-that-is-not-there", O_RDONLY);
    solaris::stat("/dev/dsk/c0t0d0s0", &status);
    solaris::readlink("/dev/rdsk/c0t0d0s0", text, sizeof text);
    solaris::ustat(status.st_rdev, &mounted);
    DIR *const directory = solaris::opendir("/dev/rdsk");
    while (solaris::readdir(directory) != nullptr) {
    }
    solaris::closedir(directory);
    FILE *const table = solaris::fopen(MNTTAB, "r");
    while (solaris::getmntent(table, &entry) == 0) {
    }
    solaris::fclose(table);
    solaris::statvfs64("/a/path/that/is/longer/than/a/string/holds", &sizes);
    solaris::sysinfo(SI_PLATFORM, text, sizeof text);
    solaris::uname(&names);
    solaris::sysconf(_SC_NPROCESSORS_CONF);
    solaris::sleep(1);
    solaris::processor_info(4, &processor);
    solaris::thr_stksegment(&stack);
    solaris::getspnam_r("a-user-that-nobody-knows", &user, text, sizeof text);
    solaris::crypt("tide pool", "ab");

    kstat_ctl_t *const statistics = kstat_open();
    char module[] = "cpu_stat", name[] = "cpu_stat0";
    kstat_read(statistics, kstat_lookup(statistics, module, 0, name), nullptr);
    kstat_close(statistics);

    HBA_ADAPTERATTRIBUTES attributes{};
    HBA_PORTATTRIBUTES port{};
    HBA_PORTSTATISTICS counters{};
    HBA_FCPTARGETMAPPING mapping{};
    HBA_LoadLibrary();
    HBA_GetNumberOfAdapters();
    HBA_GetAdapterName(0, text);
    const HBA_HANDLE handle = HBA_OpenAdapter(text);
    HBA_RefreshInformation(handle);
    HBA_GetAdapterAttributes(handle, &attributes);
    HBA_GetAdapterPortAttributes(handle, 1000000000, &port);
    HBA_GetPortStatistics(handle, 1000000000, &counters);
    HBA_GetDiscoveredPortAttributes(handle, 1000000000, 1000000000, &port);
    HBA_GetFcpTargetMapping(handle, &mapping);
    HBA_CloseAdapter(handle);
    HBA_FreeLibrary();

    EXPECT_EQ(allocation.made(), 0);
    const tests::OutsideTheLibrary outside;
    EXPECT_GT(replay::stopJournal().size(), 30U);
}

} // namespace
} // namespace tarn
