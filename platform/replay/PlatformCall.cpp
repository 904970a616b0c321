#include "platform/replay/PlatformCall.h"

#include <atomic>
#include <chrono>
#include <thread>

#include "platform/replay/Replay.h"

namespace replay {
namespace {

std::atomic<int> callsUntilRefusal = 0; // 0 or less: none is to come

} // namespace

bool isChosen() {
    return callsUntilRefusal.load(std::memory_order_relaxed) > 0 && callsUntilRefusal.fetch_sub(1) == 1;
}

void pass(unsigned seconds) {
    if (seconds != 0) {
        std::this_thread::sleep_for(std::chrono::seconds(seconds));
    }
}

void refuseCall(int n) {
    callsUntilRefusal = n;
}

bool stopRefusing() {
    return callsUntilRefusal.exchange(0) <= 0;
}

} // namespace replay
