// The recording of a host, up to the description's text, against a loop that puts the same calls to the platform and
// keeps no answer.

#include <algorithm>
#include <cstddef>
#include <stdexcept>

#include "benchmarks/Comparison.h"
#include "benchmarks/Fabric.h"
#include "benchmarks/Hosts.h"
#include "common/hba/library/TargetMappingTable.h"
#include "common/system/DiskDevices.h"
#include "common/system/KernelChain.h"
#include "common/system/MountTable.h"
#include "common/system/Processors.h"
#include "common/system/ScsiCommands.h"
#include "description/Names.h"
#include "platform/replay/Replay.h"
#include "record/Recorder.h"

namespace bench {
namespace {

constexpr int manyDisks = 2000;
constexpr Fabric largeFabric{1, 1, 2048, 32}; // 65,536 mappings
constexpr int fewDisks = 2;
constexpr Fabric smallFabric{1, 1, 32, 32};

std::string describeHost(int disks, const Fabric &fabric) {
    constexpr const char *answers = R"(, "scsi": {
        "INQUIRY": "00 00 05 02 5b 00 00 02 53 45 41 47 41 54 45 20 53 54 33 37 33 33 30 37 4c 53 55 4e 37 32 47 20"})";
    return R"({"kstat": )" + listOf(disks, diskCounters) + R"(, "mnttab": [], "disks": )" +
           listOf(disks, [](int i) { return disk(i, answers); }) + ", " + hbaOf(fabric) + "}";
}

void record(const record::Options &options) {
    record::Report quiet(true, false);
    std::size_t size = 0;
    description::writeHost(record::recordHost(options, quiet), [&](std::string_view part) { size += part.size(); });
}

void askSystem() {
    char text[257];
    for (const auto &[name, command] : description::sysinfoCommands) {
        solaris::sysinfo(command, text, sizeof text);
    }
    struct utsname names = {};
    solaris::uname(&names);
    for (const auto &[name, number] : description::sysconfNames) {
        solaris::sysconf(number);
    }
    tarn::forEachProcessor(0, [](processorid_t, const processor_info_t &) {});
}

void readKernelStatistics() {
    kstat_ctl_t *const chain = kstat_open();
    char module[] = "unix";
    char name[] = "vminfo";
    kstat_lookup(chain, module, 0, name);
    for (kstat_t *record = chain->kc_chain; record != nullptr; record = record->ks_next) {
        kstat_read(chain, record, nullptr);
    }
    kstat_close(chain);
}

void readMountTable() {
    solaris::fclose(solaris::fopen(tarn::mountTablePath, "r"));
}

std::vector<std::string> pathsIn(const char *path) {
    std::vector<std::string> paths;
    DIR *const directory = solaris::opendir(path);
    while (const dirent *const entry = solaris::readdir(directory)) {
        if (entry->d_name[0] != '.') {
            paths.push_back(std::string(path) + "/" + entry->d_name);
        }
    }
    solaris::closedir(directory);
    return paths;
}

void readDirectory(const char *path) {
    DIR *const directory = solaris::opendir(path);
    while (solaris::readdir(directory) != nullptr) {
    }
    solaris::closedir(directory);
}

void sendInquiry(int descriptor, const tarn::ScsiCommand &inquiry) {
    std::array<unsigned char, 10> cdb = inquiry.block();
    unsigned char answer[tarn::inquirySize];
    uscsi_cmd command{};
    command.uscsi_flags = USCSI_READ;
    command.uscsi_timeout = tarn::scsiTimeout;
    command.uscsi_cdb = reinterpret_cast<char *>(cdb.data());
    command.uscsi_cdblen = 6;
    command.uscsi_bufaddr = reinterpret_cast<char *>(answer);
    command.uscsi_buflen = sizeof answer;
    solaris::ioctl(descriptor, USCSICMD, &command);
}

/// Known before the floor is measured.
struct Paths {
    std::vector<std::string> raw = pathsIn(tarn::s_dev_rdsk);
    std::vector<std::string> block = pathsIn(tarn::dev_dsk);
};

void askRawDevices(const Paths &paths) {
    char link[8192];
    struct stat status = {};
    for (const std::string &path : paths.raw) {
        solaris::readlink(path.c_str(), link, sizeof link);
        const int device = solaris::open(path.c_str(), tarn::openForRequests);
        solaris::fstat(device, &status);
        dk_cinfo controller{};
        solaris::ioctl(device, DKIOCINFO, &controller);
        dk_geom geometry{};
        solaris::ioctl(device, DKIOCGGEOM, &geometry);
        vtoc label{};
        solaris::ioctl(device, DKIOCGVTOC, &label);
        struct ustat fileSystem = {};
        solaris::ustat(status.st_rdev, &fileSystem);
        solaris::close(device);
        if (path.ends_with(tarn::wholeDiskSlice)) {
            const int disk = solaris::open(path.c_str(), tarn::openForCommands);
            sendInquiry(disk, tarn::standardInquiry);
            sendInquiry(disk, tarn::inquiry00); // of a release that may know pages
            solaris::close(disk);
        }
    }
}

void askBlockDevices(const Paths &paths) {
    char link[8192];
    struct stat status = {};
    readDirectory(tarn::dev_dsk);
    for (const std::string &path : paths.block) {
        solaris::readlink(path.c_str(), link, sizeof link);
        solaris::stat(path.c_str(), &status);
    }
}

void askHostBusAdapters() {
    HBA_LoadLibrary();
    HBA_GetNumberOfAdapters();
    char name[256];
    HBA_GetAdapterName(0, name);
    const HBA_HANDLE adapter = HBA_OpenAdapter(name);
    HBA_RefreshInformation(adapter);
    HBA_ADAPTERATTRIBUTES attributes{};
    HBA_GetAdapterAttributes(adapter, &attributes);
    tarn::TargetMappingTable mapping;
    mapping.fetch([&](HBA_FCPTARGETMAPPING *storage) { return HBA_GetFcpTargetMapping(adapter, storage); });
    HBA_PORTATTRIBUTES port{};
    HBA_GetAdapterPortAttributes(adapter, 0, &port);
    HBA_PORTSTATISTICS statistics{};
    HBA_GetPortStatistics(adapter, 0, &statistics);
    for (HBA_UINT32 i = 0; i < port.NumberofDiscoveredPorts; ++i) {
        HBA_PORTATTRIBUTES remote{};
        HBA_GetDiscoveredPortAttributes(adapter, 0, i, &remote);
    }
    HBA_CloseAdapter(adapter);
    HBA_FreeLibrary();
}

void askOnly(const Paths &paths) {
    askSystem();
    readKernelStatistics();
    readMountTable(); // its text, then its entries
    readMountTable();
    readDirectory(tarn::s_dev_rdsk);
    readMountTable();
    askRawDevices(paths);
    askHostBusAdapters();
    askBlockDevices(paths);
}

/// The platform calls that `ask` makes.
template <class Ask>
std::vector<std::string> callsOf(Ask ask) {
    replay::startJournal();
    ask();
    return replay::stopJournal();
}

std::vector<Comparison> comparisons() {
    replay::loadHostText(describeHost(fewDisks, smallFabric));
    const Paths few;
    if (callsOf([] { record({{}, false, 0}); }) != callsOf([&] { askOnly(few); })) {
        throw std::logic_error("tarn-record and its floor ask for different things");
    }
    const std::string host = describeHost(manyDisks, largeFabric);
    const auto measured = [](JNIEnv *) -> jobject {
        record({{}, false, 0});
        return nullptr;
    };
    // Without a limit no other process makes the calls. With one, what takes in their answers is measured, and what it
    // takes to begin a process beside this one, which the virtual machine makes large.
    const auto asked = [](JNIEnv *) -> jobject {
        record({});
        return nullptr;
    };
    const auto floor = [](JNIEnv *) -> jobject {
        static const Paths paths;
        askOnly(paths);
        return nullptr;
    };
    return {{"tarn-record, 2,000 disks and 65,536 mappings", 3.0, {host, measured}, {host, floor}, 1.0, 40, nullptr},
            {"tarn-record, asking from other processes", 4.5, {host, asked}, {host, floor}, 1.0, 40, nullptr}};
}

const Registration registration(comparisons);

} // namespace
} // namespace bench
