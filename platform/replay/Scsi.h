#pragma once

#include <string>

#include "description/Host.h"

struct uscsi_cmd;

namespace replay {

/// Sends a command to the device: USCSICMD without the device failing as a whole. 0, or an errno.
int sendScsiCommand(const description::Disk &disk, uscsi_cmd &command);

/// What the journal says of the command: its descriptor block, and what it sends to the device.
std::string scsiCommandText(const uscsi_cmd &command);

} // namespace replay
