#pragma once

#include "platform/solaris.h"

namespace tarn {

/// Walks a directory from its first entry; a directory that cannot be opened is empty. Closed with its scope.
///
///     Directory directory("/dev/dsk");
///     while (const char *const name = directory.next()) ...
class Directory {
public:
    explicit Directory(const char *path) : stream(solaris::opendir(path)) {
    }
    ~Directory() {
        if (stream != nullptr) {
            solaris::closedir(stream);
        }
    }
    Directory(const Directory &) = delete;
    Directory &operator=(const Directory &) = delete;

    bool isOpen() const {
        return stream != nullptr;
    }

    /// Name of the next entry, "." and ".." included, valid until the next call; null behind the last.
    const char *next() {
        if (stream == nullptr) {
            return nullptr;
        }
        const dirent *const entry = solaris::readdir(stream);
        return entry == nullptr ? nullptr : entry->d_name;
    }

private:
    DIR *stream;
};

} // namespace tarn
