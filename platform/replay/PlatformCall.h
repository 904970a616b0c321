#pragma once

#include <cerrno>
#include <string>
#include <type_traits>

#include "platform/replay/Journal.h"

// What every platform call passes through: it is counted, perhaps refused, and leaves its line in the journal.

namespace replay {

/// Refuse the n-th platform call from now on (from 1), whatever the host has to say, the way the platform refuses it: -1
/// or null with EIO, an HBA status, a handle or a count of 0. It leaves a line that ends with "refused", readdir and
/// getmntent too. A call that gives something back does so all the same, and only its answer is a failure.
void refuseCall(int n);

/// Refuse none any more. Whether the chosen one has come.
bool stopRefusing();

/// Whether the calling thread is inside of a platform call.
bool isInPlatform();

/// Whether an answer leaves 0xA5 in what it does not set, as a platform may that promises nothing of it: the rest of a
/// SCSI command's buffer, a structure or a name of the HBA library when its call fails, what stands behind the end of a
/// text in them. Off until it is asked for; members that a description leaves out are told as the format says, dirt or
/// not.
void leaveDirt(bool isLeft);

/// Marks the calling thread as inside of the platform for as long as it lives: what is allocated then is the replay's, not
/// the caller's.
class InPlatform {
public:
    InPlatform();
    ~InPlatform();
    InPlatform(const InPlatform &) = delete;
    InPlatform &operator=(const InPlatform &) = delete;
};

/// Whether what an answer does not set is to be left full of `dirt`.
bool leavesDirt();
inline constexpr unsigned char dirt = 0xA5;

/// Counts the call that begins. Whether it is the one that refuseCall chose.
bool isChosen();

/// The same, with the line that a refused call leaves.
template <class Text>
bool isRefused(const Text &text) {
    const bool refused = isChosen();
    if (refused) {
        note([&] { return text() + " refused"; });
    }
    return refused;
}

/// The same, with the line of either case: for a call that sets no errno.
template <class Text>
bool noteCall(const Text &text) {
    const InPlatform inside;
    const bool refused = isRefused(text);
    if (!refused) {
        note(text);
    }
    return refused;
}

/// What is replayed passes at once, but for what is described as slow.
void pass(unsigned seconds);

/// The result by which a call says that it failed: null or -1.
template <class Result>
constexpr Result failure() {
    if constexpr (std::is_pointer_v<Result>) {
        return nullptr;
    } else {
        return -1;
    }
}

/// The same with the errno that tells why.
template <class Result = int>
Result failWith(int error) {
    errno = error;
    return failure<Result>();
}

/// Answers a call that reports failure by null or -1 and errno with what `answer` finds, unless the call is refused.
/// `text` makes its line, which ends with the name of the errno when the call failed and has set one. A call that gives
/// something back does so outside of `answer`: it is given back even when the call says that it failed.
template <class Text, class Answer>
auto answerCall(const Text &text, const Answer &answer) {
    using Result = std::invoke_result_t<Answer>;
    const InPlatform inside;
    if (isRefused(text)) {
        return failWith<Result>(EIO);
    }
    const Result result = answer();
    note([&] { return result == failure<Result>() && errno != 0 ? text() + " " + errnoName(errno) : text(); });
    return result;
}

} // namespace replay
