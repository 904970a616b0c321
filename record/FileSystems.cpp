#include <poll.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <optional>
#include <unordered_set>

#include "common/MountTable.h"
#include "record/Recorder.h"

// The sizes of the mounted file systems. To ask for those of one whose server is gone may never return, and cannot be
// broken off either. So a process of its own asks, and writes down each answer as it comes; one that does not go on in
// time is given up, and another asks for the rest.

namespace record {
namespace {

/// What is asked for at `index`.
struct SizesAnswer {
    std::size_t index;
    int error; // 0, or an errno
    description::StatVfs sizes;
};

/// The end of a pipe: the system's own, whatever the door leads to.
class PipeEnd {
public:
    explicit PipeEnd(int opened) : descriptor(opened) {
    }
    ~PipeEnd() {
        ::close(descriptor);
    }
    PipeEnd(const PipeEnd &) = delete;
    PipeEnd &operator=(const PipeEnd &) = delete;

    const int descriptor;
};

/// Asks for the sizes from `first` on. The process that it runs in ends with it.
[[noreturn]] void answerSizes(const std::vector<std::string> &mountPoints, std::size_t first, int answers) {
    // Whoever reads what the recorder writes is not to wait for this process.
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        ::close(standard);
    }
    for (std::size_t i = first; i < mountPoints.size(); ++i) {
        SizesAnswer answer{};
        answer.index = i;
        answer.error = solaris::statvfs64(mountPoints[i].c_str(), &answer.sizes) == 0 ? 0 : errno;
        if (::write(answers, &answer, sizeof answer) != static_cast<ssize_t>(sizeof answer)) {
            break;
        }
    }
    ::_exit(0);
}

/// The next answer. Nothing when there is none in time, or ever.
std::optional<SizesAnswer> nextAnswer(int answers, unsigned timeout) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + std::chrono::seconds(timeout);
    pollfd waited{answers, POLLIN, 0};
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        const int ready = ::poll(&waited, 1, static_cast<int>(std::max<decltype(left)>(left, 0)));
        if (ready > 0) {
            break;
        }
        if (ready == 0 || errno != EINTR) {
            return std::nullopt;
        }
    }
    SizesAnswer answer; // is written at once, and shorter than what a pipe takes whole
    return ::read(answers, &answer, sizeof answer) == static_cast<ssize_t>(sizeof answer) ? std::optional(answer)
                                                                                          : std::nullopt;
}

/// Asks for the sizes from `first` on until one is not told in time. Where it stopped, for the reason of `error`; `each`
/// takes the answers.
template <class Each>
std::size_t askFrom(const std::vector<std::string> &mountPoints, std::size_t first, unsigned timeout, int &error,
                    Each each) {
    int ends[2];
    if (::pipe(ends) != 0) {
        error = errno;
        return first;
    }
    const PipeEnd answers(ends[0]);
    std::optional<PipeEnd> written(std::in_place, ends[1]);
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[0]);
        answerSizes(mountPoints, first, ends[1]);
    }
    error = child == -1 ? errno : ETIMEDOUT;
    written.reset(); // so that the pipe ends with the child
    if (child == -1) {
        return first;
    }
    std::size_t next = first;
    while (next < mountPoints.size()) {
        const std::optional<SizesAnswer> answer = nextAnswer(answers.descriptor, timeout);
        if (!answer) {
            break;
        }
        each(*answer);
        next = answer->index + 1;
    }
    const bool isDone = next == mountPoints.size();
    if (!isDone) {
        ::kill(child, SIGKILL); // which it may never notice
    }
    ::waitpid(child, nullptr, isDone ? 0 : WNOHANG);
    return next;
}

/// The UFS and NFS file systems of the mount table, each once.
std::vector<std::string> mountPointsOf(const description::Host &host) {
    std::vector<std::string> mountPoints;
    tarn::MountTable table;
    if (!host.mnttab || !table.isOpen()) {
        return mountPoints;
    }
    std::unordered_set<std::string> known;
    while (const mnttab *const entry = table.nextLogicalDisk()) {
        if (known.insert(entry->mnt_mountp).second) {
            mountPoints.emplace_back(entry->mnt_mountp);
        }
    }
    return mountPoints;
}

} // namespace

void recordFileSystems(unsigned timeout, description::Host &host, Report &report) {
    const std::vector<std::string> mountPoints = mountPointsOf(host);
    std::size_t told = 0;
    const auto refuse = [&](std::size_t i, int error) {
        report.notRead("statvfs", mountPoints[i], errnoText(error));
        if (error != ENOENT) {
            host.statvfs[mountPoints[i]].fails = error;
        }
    };
    for (std::size_t next = 0; next < mountPoints.size(); ++next) {
        report.progress("statvfs", next, mountPoints.size());
        int error = 0;
        next = askFrom(mountPoints, next, timeout, error, [&](const SizesAnswer &answer) {
            report.progress("statvfs", answer.index, mountPoints.size());
            if (answer.error != 0) {
                refuse(answer.index, answer.error);
                return;
            }
            static_cast<description::StatVfs &>(host.statvfs[mountPoints[answer.index]]) = answer.sizes;
            ++told;
        });
        if (next < mountPoints.size()) {
            refuse(next, error);
        }
    }
    report.section("statvfs", std::to_string(told) + " of " + counted(mountPoints.size(), "file system"));
}

} // namespace record
