#pragma once

#include <atomic>
#include <cerrno>
#include <string>
#include <type_traits>

namespace replay {

extern std::atomic<bool> journalIsOn;

/// Adds a line to the journal.
void addToJournal(std::string line);

/// "EIO" of EIO.
std::string errnoName(int error);

/// Leaves the line that `text` makes in the journal, when it is on.
template <class Text>
void note(const Text &text) {
    if (journalIsOn.load(std::memory_order_relaxed)) {
        const int error = errno;
        addToJournal(text());
        errno = error;
    }
}

/// The same for a call that has come to its result, which is passed on: -1 or null with errno set is a failure.
template <class Result, class Text>
Result noted(Result result, const Text &text) {
    bool failed = false;
    if constexpr (std::is_pointer_v<Result>) {
        failed = result == nullptr;
    } else {
        failed = result == static_cast<Result>(-1);
    }
    note([&] { return failed ? text() + " " + errnoName(errno) : text(); });
    return result;
}

/// Sets errno and returns the result by which a call reports it.
template <class Result = int>
Result failWith(int error) {
    errno = error;
    if constexpr (std::is_pointer_v<Result>) {
        return nullptr;
    } else {
        return -1;
    }
}

} // namespace replay
