#pragma once

#include <fcntl.h>

#include <cstddef>
#include <string_view>

// Where the disks are, what their names tell, and how they are opened.

namespace tarn {

/// One entry per slice, each a symbolic link into the device tree.
inline constexpr const char *dev_dsk = "/dev/dsk";
inline constexpr const char *s_dev_rdsk = "/dev/rdsk";

/// Covers the whole disk by convention.
inline constexpr std::string_view wholeDiskSlice = "s2";

/// What the slices of a disk are at most: its minor nodes are "a" to "z".
inline constexpr std::size_t mostSlices = 26;

/// Begins the names of multipath pseudo devices, whose slices are letters: "emcpower7" "d".
inline constexpr std::string_view powerPathPrefix = "emcpower";

/// Of an entry's or a disk's name, with its terminator. An entry with a longer one is not opened for requests.
inline constexpr std::size_t nameFieldSize = 100;

inline bool fitsNameField(std::string_view entryName) {
    return entryName.size() < nameFieldSize;
}

/// To put requests to a disk: without waiting for it to be ready.
inline constexpr int openForRequests = O_RDWR | O_NDELAY;

/// To put them to one that does not tell its geometry then: to read only, and waiting.
inline constexpr int openForRequestsAgain = O_RDONLY;

/// To send it SCSI commands.
inline constexpr int openForCommands = O_RDONLY | O_NDELAY;

/// Of a device that commands go to, with its terminator. None is sent to one with a longer path.
inline constexpr std::size_t scsiPathSize = 256;

} // namespace tarn
