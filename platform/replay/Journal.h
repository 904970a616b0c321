#pragma once

#include <atomic>
#include <cerrno>
#include <string>

#include "description/Names.h"

namespace replay {

using description::errnoName;

extern std::atomic<bool> journalIsOn;

/// Adds a line to the journal.
void addToJournal(std::string line);

/// Leaves the line that `text` makes in the journal, when it is on.
template <class Text>
void note(const Text &text) {
    if (journalIsOn.load(std::memory_order_relaxed)) {
        const int error = errno;
        addToJournal(text());
        errno = error;
    }
}

} // namespace replay
