#include "platform/replay/PlatformCall.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace replay {
namespace {

std::atomic<int> callsUntilRefusal = 0; // 0 or less: none is to come
std::atomic<bool> dirtIsLeft = false;
thread_local int callsUnderWay = 0; // of this thread

} // namespace

InPlatform::InPlatform() {
    ++callsUnderWay;
}

InPlatform::~InPlatform() {
    --callsUnderWay;
}

bool isInPlatform() {
    return callsUnderWay > 0;
}

bool leavesDirt() {
    return dirtIsLeft.load(std::memory_order_relaxed);
}

void leaveDirt(bool isLeft) {
    dirtIsLeft = isLeft;
}

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
