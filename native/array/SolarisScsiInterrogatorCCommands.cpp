#include <array>
#include <cerrno>

#include "native/array/SolarisScsiInterrogatorC.h"
#include "native/array/SolarisScsiInterrogatorCTrace.h"
#include "platform/solaris.h"

using namespace tarn;

namespace {

/// Of a copy: the command block takes a pointer to bytes that are not constant.
int send(int descriptor, uscsi_cmd *command, const ScsiCommand &sent) {
    std::array<unsigned char, 10> block = sent.block();
    return scsiIoctl(descriptor, command, static_cast<unsigned char>(sent.length), block.data());
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
    return send(descriptor, command, inquiry80);
}

int scsiInquiryVPDC0(int descriptor, uscsi_cmd *command) {
    return send(descriptor, command, inquiryC0);
}

int scsiLogSense3B(int descriptor, uscsi_cmd *command) {
    return send(descriptor, command, logSense3B);
}

int scsiReceiveDiagnosticA0(int descriptor, uscsi_cmd *command) {
    return send(descriptor, command, receiveDiagnosticA0);
}

int scsiLogSelect30(int descriptor, uscsi_cmd *command) {
    std::array parameters = logSelectParameters;
    command->uscsi_bufaddr = reinterpret_cast<char *>(parameters.data());
    command->uscsi_buflen = parameters.size();
    return send(descriptor, command, logSelect30);
}
