#pragma once

#include <utility>

#include "platform/solaris.h"

namespace tarn {

/// Owner of an open file descriptor, or of none (-1), which is what a failed open answers.
class FileDescriptor {
public:
    explicit FileDescriptor(int opened = none) : descriptor(opened) {
    }
    FileDescriptor(FileDescriptor &&other) noexcept : descriptor(std::exchange(other.descriptor, none)) {
    }
    FileDescriptor &operator=(FileDescriptor &&other) noexcept {
        std::swap(descriptor, other.descriptor);
        return *this;
    }
    ~FileDescriptor() {
        close();
    }

    bool isOpen() const {
        return descriptor != none;
    }

    /// -1 when it is not open.
    int get() const {
        return descriptor;
    }

    /// Closes it now, if it is open.
    void close() {
        if (isOpen()) {
            solaris::close(std::exchange(descriptor, none));
        }
    }

private:
    static constexpr int none = -1;
    int descriptor;
};

} // namespace tarn
