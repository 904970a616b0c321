#include "native/array/SolarisScsiInterrogatorC.h"

#include <array>
#include <cstring>
#include <mutex>
#include <optional>
#include <string_view>

#include "common/system/ArrayLuns.h"
#include "common/system/Directory.h"
#include "common/system/DiskDevices.h"
#include "common/system/FileDescriptor.h"
#include "native/array/SolarisScsiInterrogatorCTrace.h"
#include "platform/solaris.h"

using namespace tarn;

namespace {

using Path = std::array<char, scsiPathSize>;

/// The tables of the page decoding belong to the process, so one scan at a time uses them.
std::mutex scanLock;

/// One of the array's two controllers.
struct Controller {
    Path chosenLun{}; // empty until discovery finds one
    std::optional<LunKind> chosenKind;
    unsigned numberOfDrivesOut = 0;
    int logSelect = 0;
};

/// A LUN as discovery sees it.
struct Lun {
    Path path{};
    LunKind kind = LunKind::data;
    std::optional<std::size_t> controller; // index of its owner, when that is one of the array's
};

/// What one scan holds, on the stack.
struct Scan {
    ArrayNames names;
    std::array<Controller, 2> controllers{};
    std::array<unsigned char, dataBufferSize> data{};
    uscsi_cmd command{};
    char commonReturnString[2][commonStringSize] = {};
    char uncommonReturnString[2][uncommonStringSize] = {};
    char result[returnStringSize] = {};
};

void directToDataBuffer(Scan &scan) {
    scan.command.uscsi_flags = USCSI_READ;
    scan.command.uscsi_bufaddr = reinterpret_cast<char *>(scan.data.data());
    scan.command.uscsi_buflen = dataBufferSize;
}

FileDescriptor openToRead(const Path &path) {
    return FileDescriptor(solaris::open(path.data(), openForCommands));
}

/// Sends a read command into a cleared buffer: an answer that is cut short is followed by zeros, not by the one before.
/// `size` is what the command asks for: beyond it the buffer is still clear, or is not looked at until it is cleared for
/// a command that asks for more. False when the request failed.
bool read(Scan &scan, const FileDescriptor &device, int (*command)(int, uscsi_cmd *), std::size_t size) {
    std::memset(scan.data.data(), 0, size);
    return command(device.get(), &scan.command) == 0;
}

/// Forms the path of the directory's entry. False when there is no room for it.
bool makePath(Path &path, const char *name) {
    constexpr std::size_t nameAt = std::char_traits<char>::length(s_dev_rdsk) + 1; // behind the directory and a slash
    const std::size_t length = std::strlen(name);
    if (nameAt + length >= path.size()) {
        return false;
    }
    std::memcpy(path.data(), s_dev_rdsk, nameAt - 1);
    path[nameAt - 1] = '/';
    std::memcpy(path.data() + nameAt, name, length + 1);
    return true;
}

/// Learns kind and owner of the LUN behind a directory entry. Null then, or what it lacks to be one of the array's.
const char *identifyLun(Scan &scan, const char *name, Lun &lun) {
    if (!makePath(lun.path, name)) {
        return missing::lun;
    }
    const FileDescriptor device = openToRead(lun.path);
    if (!device.isOpen()) {
        return missing::lun;
    }
    if (!read(scan, device, scsiStandardInquiry, inquirySize)) {
        return missing::standardInquiry;
    }
    traceInquiry(scan.data.data());
    const std::optional<LunKind> kind = lunKind(scan.names, scan.data.data());
    if (!kind) {
        return missing::arrayLun;
    }
    if (!read(scan, device, scsiInquiryVPDC0, inquirySize)) {
        return missing::pageC0;
    }
    lun.kind = *kind;
    lun.controller = lunController(scan.names, scan.data.data());
    return nullptr;
}

void assignLun(Scan &scan, const Lun &lun) {
    traceOwner(scan.data.data(), lun.controller);
    if (!lun.controller) {
        return;
    }
    Controller &controller = scan.controllers[*lun.controller];
    if (isChosen(controller.chosenKind, lun.kind)) {
        controller.chosenLun = lun.path;
        controller.chosenKind = lun.kind;
    }
}

/// Chooses one LUN per controller among the whole-disk entries of the raw-device directory.
void discoverLuns(Scan &scan) {
    Directory directory(s_dev_rdsk);
    while (const char *const name = directory.next()) {
        if (std::string_view(name).find(wholeDiskSlice) == std::string_view::npos) {
            continue;
        }
        traceEntry(name);
        Lun lun;
        if (const char *const why = identifyLun(scan, name, lun)) {
            traceMissing(why);
            continue;
        }
        assignLun(scan, lun);
        if (scan.controllers[0].chosenKind == LunKind::access && scan.controllers[1].chosenKind == LunKind::access) {
            traceEndOfDiscovery();
            return;
        }
    }
}

void traceChosenLuns(const Scan &scan) {
    for (std::size_t i = 0; i < scan.controllers.size(); ++i) {
        const Controller &controller = scan.controllers[i];
        traceChosenLun(i, scan.names.controllers[i].data(), controller.chosenLun.data(),
                       controller.chosenKind == LunKind::access);
    }
}

void sendLogSelect(Scan &scan, const FileDescriptor &device) {
    scan.command.uscsi_flags = USCSI_WRITE;
    if (scsiLogSelect30(device.get(), &scan.command) != 0) {
        traceMissing(missing::logSelect);
    }
    directToDataBuffer(scan);
}

/// Reads and decodes both pages of a controller through its chosen LUN. Null then, or which of it is missing.
const char *readStatistics(Scan &scan, std::size_t index) {
    Controller &controller = scan.controllers[index];
    const FileDescriptor device = openToRead(controller.chosenLun);
    if (!device.isOpen()) {
        return missing::chosenLun;
    }
    if (!read(scan, device, scsiReceiveDiagnosticA0, dataBufferSize)) {
        return missing::pageA0;
    }
    processReceiveDiagnosticA0buffer(scan.data.data());
    if (!read(scan, device, scsiLogSense3B, dataBufferSize)) {
        return missing::page3B;
    }
    processLogSense3Bbuffer(scan.data.data(), &controller.numberOfDrivesOut, scan.commonReturnString[index],
                            scan.uncommonReturnString[index], &controller.logSelect);
    if (controller.logSelect != 0) {
        sendLogSelect(scan, device);
    }
    return nullptr;
}

void readAllStatistics(Scan &scan) {
    for (std::size_t i = 0; i < scan.controllers.size(); ++i) {
        if (scan.controllers[i].chosenLun[0] == '\0') {
            continue;
        }
        traceStatisticsOf(scan.controllers[i].chosenLun.data());
        if (const char *const why = readStatistics(scan, i)) {
            traceMissing(why);
        }
    }
}

void composeResult(Scan &scan) {
    const Controller &first = scan.controllers[0];
    const Controller &second = scan.controllers[1];
    if (first.logSelect != 0 || second.logSelect != 0) {
        std::memcpy(scan.result, logSelectReport, sizeof logSelectReport);
        return;
    }
    buildReturnString(scan.result, scan.commonReturnString[0], scan.uncommonReturnString[0], first.numberOfDrivesOut,
                      second.numberOfDrivesOut);
}

} // namespace

constexpr std::size_t tarn::scanStack = sizeof(Scan);

int scsiInterrogatorC(char *returnString, const char *controller1Id, const char *controller2Id, const char *vendorId,
                      const char *productId) {
    if (controller1Id[0] == '\0' || controller2Id[0] == '\0') {
        std::memcpy(returnString, noDataReport, sizeof noDataReport);
        return 0;
    }
    const std::lock_guard<std::mutex> onlyScan(scanLock);
    Scan scan{ArrayNames(controller1Id, controller2Id, vendorId, productId)};
    std::memset(driveStatistics, 0, sizeof driveStatistics);
    scan.command.uscsi_timeout = scsiTimeout;
    directToDataBuffer(scan);

    discoverLuns(scan);
    traceChosenLuns(scan);
    readAllStatistics(scan);
    composeResult(scan);

    traceResult(scan.result);
    std::memcpy(returnString, scan.result, std::strlen(scan.result) + 1);
    return 0;
}
