#pragma once

#include <string>
#include <string_view>

#include "common/system/ScsiPages.h"

// What the SCSI pages of a device's identity say.

namespace tarn {

/// The text of a field, without what follows a NUL and without blanks at its ends; bytes that cannot be shown are written
/// "\x1b" and the like. Empty when nothing is left.
std::string identityText(std::string_view field);

/// What the standard INQUIRY tells. Texts are empty where it does not.
struct StandardInquiry {
    explicit StandardInquiry(Page page);

    bool isPresent; ///< there is a logical unit
    std::string vendor;
    std::string product;
    std::string revision;
};

/// The unit serial number (page 0x80); empty when it tells none.
std::string serialNumber(Page page);

/// The best designator of the logical unit (page 0x83): NAA before EUI-64 before T10, of those the longer, the first of
/// its kind. "naa." or "eui." and lower-case hexadecimal digits, or "t10." and text. Empty when there is none.
std::string bestDesignator(Page page);

/// The designator that the name of a multipath device carries: "c4t600A0B800012AB34000005D64E8B1F2Ad0". Of one with
/// 16 digits only the device path, in the tree of the multipath driver, tells that they are the unit's and not a port's.
/// Empty when it carries none.
std::string designatorInName(std::string_view diskName, std::string_view devicePath);

} // namespace tarn
