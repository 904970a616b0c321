#include <array>
#include <cerrno>

#include "native/array/SolarisScsiInterrogatorC.h"
#include "native/array/SolarisScsiInterrogatorCTrace.h"
#include "platform/solaris.h"

using namespace tarn;

namespace {

template <std::size_t length>
using Bytes = std::array<unsigned char, length>;

// Allocation lengths are the big-endian byte pairs before the last byte.
constexpr Bytes<6> standardInquiry{0x12, 0x00, 0x00, 0x00, 0xFF, 0x00};
constexpr Bytes<6> inquiryVPD80{0x12, 0x01, 0x80, 0x00, 0xFF, 0x00};
constexpr Bytes<6> inquiryVPDC0{0x12, 0x01, 0xC0, 0x00, 0xFF, 0x00};
static_assert(inquirySize == 0xFF && dataBufferSize == 0xFFFF);
constexpr Bytes<10> logSense3B{0x4D, 0x00, 0x7B, 0x00, 0x00, 0x00, 0x00, 0xFF, 0xFF, 0x00}; // current cumulative values
constexpr Bytes<6> receiveDiagnosticA0{0x1C, 0x01, 0xA0, 0xFF, 0xFF, 0x00};

constexpr Bytes<10> logSelect30{0x4C, 0x00, 0x40, 0x00, 0x00, 0x00, 0x00, 0x00, 0x0C, 0x00};
constexpr Bytes<12> logSelect30Parameters{
    0x30, 0x00, 0x00, 0x08, // page 0x30, subpage 0, 8 bytes follow
    0x00, 0x01, 0x60, 0x04, // parameter 0x0001, not saved and without target save, 4 bytes follow
    0x01, 0x00, 0x00, 0x00,
};

/// By value: the command block takes a pointer to bytes that are not constant.
template <std::size_t length>
int send(int descriptor, uscsi_cmd *command, Bytes<length> cdb) {
    return scsiIoctl(descriptor, command, length, cdb.data());
}

} // namespace

int scsiIoctl(int descriptor, uscsi_cmd *command, unsigned char cdbLength, unsigned char *cdb) {
    command->uscsi_cdb = reinterpret_cast<char *>(cdb);
    command->uscsi_cdblen = cdbLength;
    if (solaris::ioctl(descriptor, USCSICMD, command) == -1) {
        traceFailedRequest(errno);
        return 1;
    }
    return 0;
}

int scsiStandardInquiry(int descriptor, uscsi_cmd *command) {
    return send(descriptor, command, standardInquiry);
}

int scsiInquiryVPD80(int descriptor, uscsi_cmd *command) {
    return send(descriptor, command, inquiryVPD80);
}

int scsiInquiryVPDC0(int descriptor, uscsi_cmd *command) {
    return send(descriptor, command, inquiryVPDC0);
}

int scsiLogSense3B(int descriptor, uscsi_cmd *command) {
    return send(descriptor, command, logSense3B);
}

int scsiReceiveDiagnosticA0(int descriptor, uscsi_cmd *command) {
    return send(descriptor, command, receiveDiagnosticA0);
}

int scsiLogSelect30(int descriptor, uscsi_cmd *command) {
    Bytes<12> parameters = logSelect30Parameters;
    command->uscsi_bufaddr = reinterpret_cast<char *>(parameters.data());
    command->uscsi_buflen = parameters.size();
    return send(descriptor, command, logSelect30);
}
