#pragma once

#include <sys/types.h>

#include <array>
#include <cstddef>

#include "common/system/ScsiCommands.h"

// What an asker is asked of a disk, by the numbers under which it tells the answers.

namespace record {

/// A call, in a way to open the device where it can depend on that.
enum class Question {
    stat,
    readlink,
    ustat,
    openForRequests,
    openAgain,
    openForCommands,
    fstat,
    information,
    geometry,
    geometryAgain,
    label,
    labelAgain,
    inquiry, // the commands, in the order of `askedCommands`
    inquiry00,
    inquiry80,
    inquiry83,
    inquiryC0,
    receiveDiagnosticA0,
    logSense3B,
};
inline constexpr std::size_t questions = static_cast<std::size_t>(Question::logSense3B) + 1;

inline constexpr std::array<const tarn::ScsiCommand *, 7> askedCommands = {
    &tarn::standardInquiry, &tarn::inquiry00,           &tarn::inquiry80, &tarn::inquiry83,
    &tarn::inquiryC0,       &tarn::receiveDiagnosticA0, &tarn::logSense3B};

/// The number that a call has while it is asked: its question's, or this.
inline constexpr unsigned closeCall = questions;

/// What fstat or stat tells of a file.
struct FileKind {
    dev_t device;
    bool isRegular;
};

} // namespace record
