#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "record/Askers.h"

// What the recorder, the keeper of its askers and the askers share: memory, and what they say through pipes.

namespace record {

using Nanoseconds = std::uint64_t;

inline constexpr std::size_t mostAskers = 64;   // at once
inline constexpr std::size_t largestBatch = 64; // requests for an asker

inline Nanoseconds now() {
    return static_cast<Nanoseconds>(std::chrono::steady_clock::now().time_since_epoch().count());
}

/// What came of a call, or of an item. The data follow.
struct Frame {
    enum Kind : std::uint32_t { answer, givenUp, failed, finished };

    std::uint32_t dataSize;
    Kind kind;
    std::uint32_t item;
    std::uint32_t call;
    std::uint32_t index;
    std::int32_t error;

    std::size_t size() const {
        return sizeof(Frame) + (dataSize + std::size_t{7}) / 8 * 8;
    }
};

struct PlacedRequest {
    std::uint32_t item;
    std::uint32_t kind;
    std::uint32_t at; // of its text
    std::uint32_t size;
};

/// What an asker and the recorder share.
struct Region {
    std::atomic<Nanoseconds> beganAt; // of the call that is under way; 0: none is
    std::atomic<std::uint32_t> call;
    std::atomic<std::uint32_t> index;
    std::atomic<std::uint32_t> item;
    std::atomic<std::uint32_t> next; // request of the batch; whoever raises it has those in between
    std::uint32_t count;             // of requests
    std::atomic<std::uint32_t> written;
    std::atomic<bool> wantsRoom;
    std::atomic<bool> isDone; // with the batch
    std::array<PlacedRequest, largestBatch> requests;
    std::array<char, 65536> texts;
    alignas(std::max_align_t) std::array<std::byte, Teller::mostData + 65536> frames;
};

/// To the keeper.
struct Command {
    bool isStart; // otherwise the slot's asker is to be ended
    std::uint32_t slot;
    std::uint32_t generation;
};

/// To the recorder.
struct Bell {
    enum Kind : std::uint32_t { rings, hasDied, isGone, isRefused };

    Kind kind;
    std::uint32_t slot;
    std::uint32_t generation;
    std::int32_t detail; // a wait status, or an errno
};

/// The end of a pipe: the system's own, whatever the door leads to.
class PipeEnd {
public:
    PipeEnd() = default;
    ~PipeEnd() {
        close();
    }
    PipeEnd(const PipeEnd &) = delete;
    PipeEnd &operator=(const PipeEnd &) = delete;

    void close() {
        if (descriptor != -1) {
            ::close(std::exchange(descriptor, -1));
        }
    }

    int descriptor = -1;
};

struct Pipe {
    PipeEnd reader;
    PipeEnd writer;

    /// 0, or an errno.
    int open() {
        int ends[2];
        if (::pipe(ends) != 0) {
            return errno;
        }
        reader.descriptor = ends[0];
        writer.descriptor = ends[1];
        return 0;
    }
};

template <class T>
bool readWhole(int descriptor, T &value) {
    ssize_t size = 0;
    do {
        size = ::read(descriptor, &value, sizeof value); // is written at once, and shorter than what a pipe takes whole
    } while (size < 0 && errno == EINTR);
    return size == static_cast<ssize_t>(sizeof value);
}

template <class T>
bool writeWhole(int descriptor, const T &value) {
    ssize_t size = 0;
    do {
        size = ::write(descriptor, &value, sizeof value);
    } while (size < 0 && errno == EINTR);
    return size == static_cast<ssize_t>(sizeof value);
}

struct Shared {
    std::array<Region, mostAskers> regions;
};

} // namespace record
