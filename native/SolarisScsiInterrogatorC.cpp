#include "native/SolarisScsiInterrogatorC.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <mutex>

#include "common/Directory.h"
#include "common/FileDescriptor.h"
#include "platform/solaris.h"

using namespace tarn;

namespace {

// Standard INQUIRY data.
constexpr std::size_t inquiryVendorAt = 8;
constexpr std::size_t inquiryProductAt = 16;
constexpr std::size_t inquiryRevisionAt = 32;
constexpr std::size_t vendorSize = 8;
constexpr std::size_t productSize = 16;
constexpr std::size_t revisionSize = 4;

// INQUIRY page 0xC0: the identity of the controller that owns the LUN.
constexpr std::size_t pageC0ControllerAt = 112;
constexpr std::size_t controllerIdSize = 16;

constexpr char accessLunProduct[] = "Universal Xport ";
static_assert(sizeof accessLunProduct - 1 == productSize);

constexpr char rawDeviceDirectory[] = "/dev/rdsk";
constexpr char wholeDiskSlice[] = "s2";
constexpr std::size_t pathSize = 256;
constexpr std::size_t controllerFieldSize = 256; // blanks to 16 characters and a terminator, so that it can be traced
constexpr short commandTimeout = 30;             // seconds

using Path = std::array<char, pathSize>;

/// The tables of the page decoding belong to the process, so one scan at a time uses them.
std::mutex scanLock;

/// One of the array's two controllers.
struct Controller {
    std::array<char, controllerFieldSize> field{};
    Path chosenLun{};   // empty until discovery finds one
    bool isUtm = false; // the chosen LUN is an access LUN
    unsigned numberOfDrivesOut = 0;
    int logSelect = 0;
};

/// A LUN as discovery sees it.
struct Lun {
    Path path{};
    bool isUtm = false;
    std::array<char, controllerIdSize> controller{}; // identity of its owner
};

/// What one scan holds, on the stack.
struct Scan {
    std::array<Controller, 2> controllers{};
    std::array<char, vendorSize> vendorField{};
    std::array<char, productSize> productField{};
    std::array<unsigned char, dataBufferSize> data{};
    uscsi_cmd command{};
    char commonReturnString[2][commonStringSize] = {};
    char uncommonReturnString[2][uncommonStringSize] = {};
    char result[returnStringSize] = {};
};

/// Lays the text over the start of `width` blanks; what does not fit is cut. No terminator is written.
void fillField(char *field, std::size_t width, const char *text) {
    std::memset(field, ' ', width);
    std::copy_n(text, std::min(std::strlen(text), width), field);
}

void directToDataBuffer(Scan &scan) {
    scan.command.uscsi_flags = USCSI_READ;
    scan.command.uscsi_bufaddr = reinterpret_cast<char *>(scan.data.data());
    scan.command.uscsi_buflen = dataBufferSize;
}

FileDescriptor openToRead(const Path &path) {
    return FileDescriptor(solaris::open(path.data(), O_RDONLY | O_NDELAY));
}

/// Sends a read command into a cleared buffer: an answer that is cut short is followed by zeros, not by the one before.
/// `size` is what the command asks for: beyond it the buffer is still clear, or is not looked at until it is cleared for
/// a command that asks for more. False when the request failed.
bool read(Scan &scan, const FileDescriptor &device, int (*command)(int, uscsi_cmd *), std::size_t size) {
    std::memset(scan.data.data(), 0, size);
    return command(device.get(), &scan.command) == 0;
}

void traceCharacters(const unsigned char *characters, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        standalonePrintf("%c", characters[i]);
    }
}

void traceInquiry(const unsigned char *inquiry) {
    standalonePrintf("INQ:\"");
    traceCharacters(inquiry + inquiryVendorAt, vendorSize);
    standalonePrintf("\" \"");
    traceCharacters(inquiry + inquiryProductAt, productSize);
    standalonePrintf("\" \"");
    traceCharacters(inquiry + inquiryRevisionAt, revisionSize);
    standalonePrintf("\" ");
}

/// Whether standard INQUIRY data tell a LUN of the array; `isUtm` then tells which kind.
bool isOfArray(const Scan &scan, bool &isUtm) {
    const unsigned char *const inquiry = scan.data.data();
    if (std::memcmp(inquiry + inquiryVendorAt, scan.vendorField.data(), vendorSize) != 0) {
        return false;
    }
    isUtm = std::memcmp(inquiry + inquiryProductAt, accessLunProduct, productSize) == 0;
    return isUtm || std::memcmp(inquiry + inquiryProductAt, scan.productField.data(), productSize) == 0;
}

/// Forms the path of the directory's entry. False when there is no room for it.
bool makePath(Path &path, const char *name) {
    constexpr std::size_t nameAt = sizeof rawDeviceDirectory; // behind the directory and a slash
    const std::size_t length = std::strlen(name);
    if (nameAt + length >= path.size()) {
        return false;
    }
    std::memcpy(path.data(), rawDeviceDirectory, nameAt - 1);
    path[nameAt - 1] = '/';
    std::memcpy(path.data() + nameAt, name, length + 1);
    return true;
}

/// Learns kind and owner of the LUN behind a directory entry. Returns null, or why it is none of the array's LUNs.
const char *identifyLun(Scan &scan, const char *name, Lun &lun) {
    if (!makePath(lun.path, name)) {
        return "No open.";
    }
    const FileDescriptor device = openToRead(lun.path);
    if (!device.isOpen()) {
        return "No open.";
    }
    if (!read(scan, device, scsiStandardInquiry, inquirySize)) {
        return "No SCSI Standard Inquiry.";
    }
    traceInquiry(scan.data.data());
    if (!isOfArray(scan, lun.isUtm)) {
        return "not a recognized LSI-derived LUN - skipping. ";
    }
    if (!read(scan, device, scsiInquiryVPDC0, inquirySize)) {
        return "scsiInquiryVPDC0 failed - skipping. ";
    }
    std::memcpy(lun.controller.data(), scan.data.data() + pageC0ControllerAt, controllerIdSize);
    return nullptr;
}

/// The first LUN of a controller is its chosen one until the first access LUN replaces it.
void considerLun(Controller &controller, const Lun &lun) {
    const bool isFirst = controller.chosenLun[0] == '\0';
    if (isFirst || (lun.isUtm && !controller.isUtm)) {
        controller.chosenLun = lun.path;
        controller.isUtm = lun.isUtm;
    }
}

void assignLun(Scan &scan, const Lun &lun) {
    standalonePrintf("C0:\"");
    traceCharacters(scan.data.data() + pageC0ControllerAt, controllerIdSize);
    standalonePrintf("\"");
    for (std::size_t i = 0; i < scan.controllers.size(); ++i) {
        if (std::memcmp(lun.controller.data(), scan.controllers[i].field.data(), controllerIdSize) == 0) {
            standalonePuts(i == 0 ? "1" : "2");
            considerLun(scan.controllers[i], lun);
            return;
        }
    }
    standalonePuts("");
}

/// Chooses one LUN per controller among the whole-disk entries of the raw-device directory.
void discoverLuns(Scan &scan) {
    Directory directory(rawDeviceDirectory);
    while (const char *const name = directory.next()) {
        if (std::strstr(name, wholeDiskSlice) == nullptr) {
            continue;
        }
        standalonePrintf("%s: ", name);
        Lun lun;
        if (const char *const failure = identifyLun(scan, name, lun)) {
            standalonePuts(failure);
            continue;
        }
        assignLun(scan, lun);
        if (scan.controllers[0].isUtm && scan.controllers[1].isUtm) {
            standalonePuts("GOT UTM LUN from each Controller - ending scan.");
            return;
        }
    }
}

void traceChosenLuns(const Scan &scan) {
    const auto kind = [](const Controller &controller) { return controller.isUtm ? "" : "NON-"; };
    const Controller &first = scan.controllers[0];
    const Controller &second = scan.controllers[1];
    // The digit in both names is how these lines have always read.
    standalonePrintf("Chosen Lun from Contro1ler1\"%s\": %s (%sUTM)\n", first.field.data(), first.chosenLun.data(),
                     kind(first));
    standalonePrintf("Chosen Lun from Contro1ler2\"%s\": %s (%sUTM)\n", second.field.data(), second.chosenLun.data(),
                     kind(second));
}

void sendLogSelect(Scan &scan, const FileDescriptor &device) {
    scan.command.uscsi_flags = USCSI_WRITE;
    if (scsiLogSelect30(device.get(), &scan.command) != 0) {
        standalonePuts("scsiLogSelect30 failed - ignoring");
    }
    directToDataBuffer(scan);
}

/// Reads and decodes both pages of a controller through its chosen LUN. Returns null, or why there is nothing of it.
const char *readStatistics(Scan &scan, std::size_t index) {
    Controller &controller = scan.controllers[index];
    const FileDescriptor device = openToRead(controller.chosenLun);
    if (!device.isOpen()) {
        return "No open during inbanding.";
    }
    if (!read(scan, device, scsiReceiveDiagnosticA0, dataBufferSize)) {
        return "scsiReceiveDiagnosticA0 failed - skipping.";
    }
    processReceiveDiagnosticA0buffer(scan.data.data());
    if (!read(scan, device, scsiLogSense3B, dataBufferSize)) {
        return "scsiLogSense3B failed - skipping.";
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
        standalonePrintf("GETTING STATS FROM %s\n", scan.controllers[i].chosenLun.data());
        if (const char *const failure = readStatistics(scan, i)) {
            standalonePuts(failure);
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
    Scan scan;
    fillField(scan.controllers[0].field.data(), controllerIdSize, controller1Id);
    fillField(scan.controllers[1].field.data(), controllerIdSize, controller2Id);
    fillField(scan.vendorField.data(), vendorSize, vendorId);
    fillField(scan.productField.data(), productSize, productId);
    std::memset(driveStatistics, 0, sizeof driveStatistics);
    scan.command.uscsi_timeout = commandTimeout;
    directToDataBuffer(scan);

    discoverLuns(scan);
    traceChosenLuns(scan);
    readAllStatistics(scan);
    composeResult(scan);

    standalonePrintf("returnString:%s\n", scan.result);
    std::memcpy(returnString, scan.result, std::strlen(scan.result) + 1);
    return 0;
}
