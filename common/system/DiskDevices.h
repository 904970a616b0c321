#pragma once

#include <fcntl.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "common/system/FileDescriptor.h"

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

/// Whether an entry's name says more than a slice; "." and ".." do not.
inline bool namesDevice(std::string_view entryName) {
    return entryName.size() > 2;
}

inline bool isWholeDisk(std::string_view entryName) {
    return namesDevice(entryName) && entryName.ends_with(wholeDiskSlice);
}

/// That of an entry of "/dev/rdsk".
inline std::string devicePath(std::string_view entryName) {
    return std::string(s_dev_rdsk).append("/").append(entryName);
}

/// To put requests to a disk: without waiting for it to be ready.
inline constexpr int openForRequests = O_RDWR | O_NDELAY;

/// To put them to one that does not tell its geometry then: to read only, and waiting.
inline constexpr int openForRequestsAgain = O_RDONLY;

/// Opens a raw disk to put requests to it, without waiting for it to be ready. One that does not tell its geometry
/// then is opened again to read only, and waited for. Not open when the last attempt failed.
inline FileDescriptor OpenDeviceForIoctl(const char *path) {
    FileDescriptor device(solaris::open(path, openForRequests));
    dk_geom geometry{};
    if (device.isOpen() && solaris::ioctl(device.get(), DKIOCGGEOM, &geometry) < 0) {
        device.close();
        return FileDescriptor(solaris::open(path, openForRequestsAgain));
    }
    return device;
}

/// To send it SCSI commands.
inline constexpr int openForCommands = O_RDONLY | O_NDELAY;

/// Of a device that commands go to, with its terminator. None is sent to one with a longer path.
inline constexpr std::size_t scsiPathSize = 256;

} // namespace tarn
