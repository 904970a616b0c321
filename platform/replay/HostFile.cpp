#include "platform/replay/HostFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "description/HostDescriptionError.h"

namespace replay {
namespace {

using description::HostDescriptionError;

/// A file from which a description is read part by part: a pipe as well, but neither a device nor what never ends.
class HostFile {
public:
    HostFile(const std::string &path, std::chrono::milliseconds patience)
        : descriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)), silence(patience) {
        struct ::stat status {};
        if (descriptor < 0) {
            refuse(std::strerror(errno));
        }
        if (::fstat(descriptor, &status) != 0 || S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode)) {
            ::close(descriptor);
            refuse("a device, not a file");
        }
        isPipe = !S_ISREG(status.st_mode);
        if (!isPipe && static_cast<std::uintmax_t>(status.st_size) > mostBytes) {
            ::close(descriptor);
            refuse(tooLarge);
        }
    }
    ~HostFile() {
        ::close(descriptor);
    }
    HostFile(const HostFile &) = delete;
    HostFile &operator=(const HostFile &) = delete;

    /// Empty at the end.
    std::string_view nextPart() {
        if (isPipe && size == 0) {
            awaitMore(); // a pipe that nobody has opened to write would read as one at its end
        }
        ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
        for (; count < 0; count = ::read(descriptor, buffer.data(), buffer.size())) {
            if (errno == EAGAIN) {
                awaitMore();
            } else if (errno != EINTR) {
                refuse(std::strerror(errno));
            }
        }
        size += static_cast<std::size_t>(count);
        if (size > mostBytes) {
            refuse(tooLarge);
        }
        return {buffer.data(), static_cast<std::size_t>(count)};
    }

private:
    static constexpr std::size_t mostBytes = std::size_t{1} << 30;
    static constexpr const char *tooLarge = "larger than 1 GB";

    void awaitMore() const {
        const auto end = std::chrono::steady_clock::now() + silence;
        for (;;) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
            struct ::pollfd awaited = {descriptor, POLLIN, 0};
            const int ready = ::poll(&awaited, 1, static_cast<int>(std::max(left.count(), std::int64_t{0})));
            if (ready > 0) {
                return;
            }
            if (ready == 0) {
                refuse("nothing came for " + std::to_string(silence.count() / 1000) + " seconds");
            }
        }
    }

    [[noreturn]] static void refuse(const std::string &reason) {
        throw HostDescriptionError(reason);
    }

    int descriptor;
    std::chrono::milliseconds silence;
    bool isPipe = false;
    std::size_t size = 0;
    std::array<char, 65536> buffer;
};

/// What `make` makes; what it complains of is told with the description's name.
template <class Make>
auto named(const std::string &name, const Make &make) {
    try {
        return make();
    } catch (const HostDescriptionError &error) {
        throw HostDescriptionError(name, error.what());
    }
}

} // namespace

std::string readHostFileText(const std::string &path, std::chrono::milliseconds silence) {
    return named(path, [&] {
        HostFile file(path, silence);
        std::string text;
        for (std::string_view part = file.nextPart(); !part.empty(); part = file.nextPart()) {
            text += part;
        }
        return text;
    });
}

std::shared_ptr<const Host> readHostText(const description::TextSource &text, const std::string &name) {
    return named(name, [&] { return std::make_shared<const Host>(description::readHost(text)); });
}

std::shared_ptr<const Host> readHostFile(const std::string &path, std::chrono::milliseconds silence) {
    return named(path, [&] {
        HostFile file(path, silence);
        return std::make_shared<const Host>(description::readHost([&] { return file.nextPart(); }));
    });
}

} // namespace replay
