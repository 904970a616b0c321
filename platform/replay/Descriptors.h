#pragma once

#include <memory>
#include <string>

#include "platform/replay/Host.h"

struct uscsi_cmd;

namespace replay {

/// An open device, on the host it was opened on.
struct OpenDevice {
    std::shared_ptr<const Host> host;
    Device device;
    int flags; // of open
    std::string path;
};

/// Sends a command to the device: USCSICMD without the device failing as a whole. 0, or an errno.
int sendScsiCommand(const Disk &disk, uscsi_cmd &command);

/// What the journal says of the command: its descriptor block, and what it sends to the device.
std::string scsiCommandText(const uscsi_cmd &command);

} // namespace replay
