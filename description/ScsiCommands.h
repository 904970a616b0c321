#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "common/system/ScsiCommands.h"

namespace description {

/// A SCSI command that a disk's "scsi" member can answer, under the name that it has there.
struct ScsiCommandName {
    std::string_view name;
    const tarn::ScsiCommand *command;
};

inline constexpr std::array<ScsiCommandName, 8> scsiCommandNames = {{
    {"INQUIRY", &tarn::standardInquiry},
    {"INQUIRY 00", &tarn::inquiry00},
    {"INQUIRY 80", &tarn::inquiry80},
    {"INQUIRY 83", &tarn::inquiry83},
    {"INQUIRY C0", &tarn::inquiryC0},
    {"RECEIVE DIAGNOSTIC A0", &tarn::receiveDiagnosticA0},
    {"LOG SENSE 3B", &tarn::logSense3B},
    {"LOG SELECT 30", &tarn::logSelect30},
}};

constexpr std::string_view nameOf(const tarn::ScsiCommand &command) {
    return std::ranges::find(scsiCommandNames, &command, &ScsiCommandName::command)->name;
}

} // namespace description
