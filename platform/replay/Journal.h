#pragma once

#include <atomic>
#include <cerrno>
#include <string>
#include <vector>

#include "description/Names.h"

namespace replay {

using description::errnoName;

/// Begin an empty journal: from now on every platform call leaves a line, its name and then its salient arguments.
/// When the call failed and set errno, the name of that error ends the line. readdir and getmntent, which only
/// move within what was opened, leave none.
void startJournal();

/// The lines since the start, in the order of the calls; nothing more is kept after it.
std::vector<std::string> stopJournal();

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
