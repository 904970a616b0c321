#pragma once

#include <string_view>

#include "platform/solaris.h"

// What the names of SCSI devices tell. A name may come from a 256-byte field that it fills without a terminator, so
// names are views.

namespace tarn {

/// The device's bus (controller) number: the HBA library's own, or when that is 0 what can be worked out from the
/// device's name; 0 when nothing can.
HBA_UINT32 divineScsiBusNumber(const HBA_FcpScsiEntry &entry);

/// The number between the "c" and the "t" with which `name` begins ("c12t3d0s2" gives 12), in unsigned 32-bit
/// arithmetic. Sets `ok`, or answers 0 and leaves it as it is when the name does not begin so.
HBA_UINT32 parseScsiBusNumber(std::string_view name, bool &ok);

/// Whether the entry `name` of "/dev/rdsk" is a minor node of the physical device `path`, which begins "/devices/".
bool deviceDerivesFrom(std::string_view name, std::string_view path);

inline constexpr int deviceNameSize = 256; // terminator included

/// Writes what follows the last "/" of the name, up to the first "s2" in it, into `buffer` (256 bytes). A name without
/// "/" is its own last component.
void leadvilleName(std::string_view osDeviceName, char *buffer);

/// Writes "cBUStTARGETdLUN" into `buffer` (256 bytes), each number in signed decimal.
void numberedName(HBA_UINT32 bus, HBA_UINT32 target, HBA_UINT32 lun, char *buffer);

} // namespace tarn
