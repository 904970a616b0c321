#include "platform/replay/Journal.h"

#include <mutex>
#include <utility>

namespace replay {

std::atomic<bool> journalIsOn = false;

namespace {

std::mutex linesMutex;
std::vector<std::string> lines;

} // namespace

void addToJournal(std::string line) {
    const std::lock_guard lock(linesMutex);
    if (journalIsOn) {
        lines.push_back(std::move(line));
    }
}

void startJournal() {
    const std::lock_guard lock(linesMutex);
    lines.clear();
    journalIsOn = true;
}

std::vector<std::string> stopJournal() {
    const std::lock_guard lock(linesMutex);
    journalIsOn = false;
    return std::exchange(lines, {});
}

} // namespace replay
