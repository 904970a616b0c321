#include "tests/Allocations.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <mutex>
#include <new>
#include <thread>

#include "platform/replay/Replay.h"
#include "tests/WrappedCalls.h"

using tests::wrapped;

// NOLINTBEGIN(cppcoreguidelines-owning-memory,cppcoreguidelines-no-malloc): this is what owns

namespace {

/// Of a thread. Nothing in it may allocate.
struct State {
    bool isWatched = false;
    int outside = 0;
    int refused = 0;
    int made = 0;

    /// Whether the allocation that begins is to be refused. `isOwn` tells whether it is the library's.
    bool refuses(bool &isOwn) {
        isOwn = isWatched && outside == 0 && !replay::isInPlatform();
        return isOwn && ++made == refused;
    }
};

/// What was allocated and not given back yet, by whatever thread.
struct Kept {
    std::mutex mutex;
    std::atomic<int> count = 0;
    std::array<const void *, 4096> places{};

    void *keep(void *memory, bool isOwn) {
        if (isOwn && memory != nullptr) {
            const std::lock_guard lock(mutex);
            places.at(static_cast<std::size_t>(count++)) = memory;
        }
        return memory;
    }

    void forget(const void *memory) {
        if (count == 0) {
            return;
        }
        const std::lock_guard lock(mutex);
        const auto end = places.begin() + count;
        if (const auto found = std::find(places.begin(), end, memory); found != end) {
            *found = places.at(static_cast<std::size_t>(--count));
        }
    }
};

thread_local constinit State state;
constinit Kept kept;

} // namespace

void *operator new(std::size_t size) {
    bool isOwn = false;
    void *const memory = state.refuses(isOwn) ? nullptr : std::malloc(std::max(size, std::size_t{1}));
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return kept.keep(memory, isOwn);
}

void operator delete(void *memory) noexcept {
    kept.forget(memory);
    std::free(memory);
}

void operator delete(void *memory, std::size_t) noexcept {
    operator delete(memory);
}

// The linker lets the tests' programs call these in the place of the C library's.
extern "C" {
void *__real_calloc(std::size_t count, std::size_t size);
void __real_free(void *memory);

void *__wrap_calloc(std::size_t count, std::size_t size) {
    bool isOwn = false;
    const bool isRefused = state.refuses(isOwn) || wrapped.refusesMemory;
    return wrapped.mapping = isRefused ? nullptr : kept.keep(__real_calloc(count, size), isOwn);
}

void __wrap_free(void *memory) {
    void *expected = memory;
    wrapped.mapping.compare_exchange_strong(expected, nullptr);
    kept.forget(memory);
    __real_free(memory);
}
}

// NOLINTEND(cppcoreguidelines-owning-memory,cppcoreguidelines-no-malloc)

namespace tests {

RefusedAllocation::RefusedAllocation(int n) {
    state.isWatched = true;
    state.refused = n;
    state.made = ::kept.count = 0;
}

RefusedAllocation::~RefusedAllocation() {
    state.isWatched = false;
    ::kept.count = 0;
}

int RefusedAllocation::made() const {
    return state.made;
}

int RefusedAllocation::kept() const {
    for (int i = 0; i < 10000 && ::kept.count != 0; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return ::kept.count;
}

OutsideTheLibrary::OutsideTheLibrary() {
    ++state.outside;
}

OutsideTheLibrary::~OutsideTheLibrary() {
    --state.outside;
}

} // namespace tests
