#include "record/Output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

namespace record {
namespace {

/// 0, or the errno.
int writeWhole(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::write(descriptor, text.data(), text.size());
        if (count < 0 && errno != EINTR) {
            return errno;
        }
        text.remove_prefix(count < 0 ? 0 : static_cast<std::size_t>(count));
    }
    return 0;
}

/// Writes what `produce` hands over, as far as that works. 0, or the first errno.
int writeAll(int descriptor, const Producer &produce) {
    int error = 0;
    produce([&](std::string_view part) { error = error == 0 ? writeWhole(descriptor, part) : error; });
    return error;
}

/// Holds back what would end the program, so that nothing unfinished is left behind.
class WithoutSignals {
public:
    WithoutSignals() {
        sigset_t ending;
        sigemptyset(&ending);
        for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
            sigaddset(&ending, signal);
        }
        sigprocmask(SIG_BLOCK, &ending, &before);
    }
    ~WithoutSignals() {
        sigprocmask(SIG_SETMASK, &before, nullptr);
    }
    WithoutSignals(const WithoutSignals &) = delete;
    WithoutSignals &operator=(const WithoutSignals &) = delete;

private:
    sigset_t before;
};

int createNew(const std::string &path) {
    return ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR);
}

/// A new file beside `path`, whose name goes to `made`.
int createBeside(const std::string &path, std::string &made) {
    made = path + ".XXXXXX";
    return ::mkstemp(made.data());
}

/// The finished file gets its name, unless another has it. 0, or the errno.
int giveName(const std::string &unfinished, const std::string &path) {
    if (::link(unfinished.c_str(), path.c_str()) == 0) {
        return 0;
    }
    if (errno == EEXIST || errno == ENOSPC || errno == EACCES) {
        return errno;
    }
    // A file system without links: the name is taken first, then the file is put in its place.
    const int reserved = createNew(path);
    if (reserved < 0) {
        return errno;
    }
    ::close(reserved);
    if (::rename(unfinished.c_str(), path.c_str()) == 0) {
        return 0;
    }
    const int error = errno;
    ::unlink(path.c_str());
    return error;
}

} // namespace

OutputFile::OutputFile(std::string filePath) : path(std::move(filePath)) {
    struct ::stat status {};
    if (::lstat(path.c_str(), &status) == 0) {
        refuse(std::strerror(EEXIST));
    }
    const WithoutSignals held;
    std::string unfinishedPath;
    const int descriptor = createBeside(path, unfinishedPath);
    if (descriptor < 0) {
        refuse(std::strerror(errno));
    }
    ::close(descriptor);
    ::unlink(unfinishedPath.c_str());
}

void OutputFile::refuse(const std::string &reason) const {
    throw OutputError(path + ": " + reason);
}

void OutputFile::write(const Producer &produce) const {
    const WithoutSignals held;
    std::string unfinishedPath;
    const int descriptor = createBeside(path, unfinishedPath);
    if (descriptor < 0) {
        refuse(std::strerror(errno));
    }
    int error = 0;
    try {
        error = writeAll(descriptor, produce);
    } catch (...) {
        ::close(descriptor);
        ::unlink(unfinishedPath.c_str());
        throw;
    }
    if (error == 0 && ::fsync(descriptor) != 0) {
        error = errno;
    }
    if (::close(descriptor) != 0 && error == 0) {
        error = errno;
    }
    if (error == 0) {
        error = giveName(unfinishedPath, path);
    }
    ::unlink(unfinishedPath.c_str());
    if (error != 0) {
        refuse(std::strerror(error));
    }
}

void writeToStandardOutput(const Producer &produce) {
    if (const int error = writeAll(STDOUT_FILENO, produce); error != 0) {
        throw OutputError(std::string("standard output: ") + std::strerror(error));
    }
}

} // namespace record
