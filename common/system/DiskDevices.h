#pragma once

#include <cstddef>
#include <string_view>

#include "platform/solaris.h"

// Where the disks are, and how they are opened.

namespace tarn {

/// One entry per slice, each a symbolic link into the device tree.
inline constexpr const char *dev_dsk = "/dev/dsk";
inline constexpr const char *s_dev_rdsk = "/dev/rdsk";

/// Covers the whole disk by convention.
inline constexpr std::string_view wholeDiskSlice = "s2";

/// To put requests to a disk: without waiting for it to be ready.
inline constexpr int openForRequests = O_RDWR | O_NDELAY;

/// To put them to one that does not tell its geometry then: to read only, and waiting.
inline constexpr int openForRequestsAgain = O_RDONLY;

/// To send it SCSI commands.
inline constexpr int openForCommands = O_RDONLY | O_NDELAY;

inline constexpr short scsiTimeout = 30; // seconds

/// Of a device that commands go to, with its terminator. None is sent to one with a longer path.
inline constexpr std::size_t scsiPathSize = 256;

} // namespace tarn
