#include "inventory/Identities.h"

#include <array>
#include <string_view>

#include "common/system/Directory.h"
#include "common/system/DiskDevices.h"
#include "common/system/ReadLink.h"
#include "common/system/ScsiRequest.h"
#include "common/system/SolarisDiskMap.h"
#include "inventory/DeviceErrors.h"
#include "inventory/IdentityPages.h"

namespace tarn {
namespace {

/// Sends a device the commands of its identity.
class Device {
public:
    explicit Device(const char *path) : device(solaris::open(path, openForCommands)) {
    }

    /// The bytes that came, valid until the next call; none when it does not answer.
    Page ask(const ScsiCommand &command) {
        if (!device.isOpen()) {
            return {};
        }
        return Page(data).first(readFromDisk(device, command, USCSI_SILENT, data).value_or(0));
    }

private:
    FileDescriptor device;
    std::array<unsigned char, inquirySize> data;
};

void takeDrivers(DriverIdentity &&told, DiskIdentity &identity) {
    identity.vendor = std::move(told.vendor);
    identity.product = std::move(told.product);
    identity.revision = std::move(told.revision);
    identity.serial = std::move(told.serial);
    identity.size = told.size;
    if (!identity.vendor.empty() || !identity.product.empty() || !identity.revision.empty() ||
        !identity.serial.empty() || identity.size != 0) {
        identity.from = "driver";
    }
}

void askDevice(const char *path, DiskIdentity &identity) {
    Device device(path);
    const auto fill = [&](std::string &known, std::string told) {
        if (known.empty() && !told.empty()) {
            known = std::move(told);
            identity.from = "device";
        }
    };
    const Page answer = device.ask(standardInquiry);
    StandardInquiry inquiry(answer);
    const bool hasPages = knowsPages(answer);
    if (!inquiry.isPresent) {
        return;
    }
    fill(identity.vendor, std::move(inquiry.vendor));
    fill(identity.product, std::move(inquiry.product));
    fill(identity.revision, std::move(inquiry.revision));
    if (!hasPages) {
        return;
    }
    const Page pages = device.ask(inquiry00);
    const bool hasSerial = listsPage(pages, pageOfSerialNumber);
    const bool hasDesignators = listsPage(pages, pageOfDesignators);
    if (hasSerial && identity.serial.empty()) {
        fill(identity.serial, serialNumber(device.ask(inquiry80)));
    }
    if (hasDesignators) {
        fill(identity.designator, bestDesignator(device.ask(inquiry83)));
    }
}

void readName(const char *path, DiskIdentity &identity) {
    LinkBuffer buffer;
    identity.designator = designatorInName(identity.disk, readLink(path, buffer).value_or(std::string_view()));
    if (!identity.designator.empty()) {
        identity.from = "name";
    }
}

} // namespace

std::vector<DiskIdentity> readIdentities() {
    const KernelChain chain;
    const auto records = chain.isOpen() ? deviceErrorRecords(chain) : std::unordered_map<std::string, kstat_t *>();
    SolarisDiskMap instances;
    std::vector<DiskIdentity> identities;
    Directory directory(s_dev_rdsk);
    while (const char *const entryName = directory.next()) {
        const std::string path = devicePath(entryName);
        if (!isWholeDisk(entryName) || !fitsNameField(entryName) || !OpenDeviceForIoctl(path.c_str()).isOpen()) {
            continue;
        }
        DiskIdentity &identity = identities.emplace_back();
        identity.disk.assign(entryName, std::string_view(entryName).size() - wholeDiskSlice.size());
        const auto record = records.find(instances.getSDxNameFromMap(identity.disk));
        if (record != records.end()) {
            takeDrivers(readDriverIdentity(chain, record->second), identity);
        }
        askDevice(path.c_str(), identity);
        if (identity.designator.empty()) {
            readName(path.c_str(), identity);
        }
    }
    return identities;
}

} // namespace tarn
