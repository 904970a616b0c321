#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace description {

/// A SCSI command that a disk's "scsi" member can answer.
struct ScsiCommand {
    std::string_view name;
    std::size_t length;                // of the descriptor block
    std::size_t countAt;               // where its two-byte allocation or parameter list length stands
    bool sendsData;                    // to the device
    std::array<unsigned char, 10> cdb; // every other byte has to be as here
};

inline constexpr std::array<ScsiCommand, 6> scsiCommands = {{
    {"INQUIRY", 6, 3, false, {0x12}},
    {"INQUIRY 80", 6, 3, false, {0x12, 0x01, 0x80}},
    {"INQUIRY C0", 6, 3, false, {0x12, 0x01, 0xC0}},
    {"RECEIVE DIAGNOSTIC A0", 6, 3, false, {0x1C, 0x01, 0xA0}},
    {"LOG SENSE 3B", 10, 7, false, {0x4D, 0x00, 0x7B}},
    {"LOG SELECT 30", 10, 7, true, {0x4C, 0x00, 0x40}},
}};

inline constexpr unsigned char logSelectPage = 0x30; // first byte of the one parameter list that is understood

} // namespace description
