#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace record {

/// What the recorder says of its work, on standard error.
class Report {
public:
    /// `isQuiet`: says nothing at all. `isTerminal`: counts may move.
    Report(bool isQuiet, bool isTerminal) : quiet(isQuiet), moving(isTerminal && !isQuiet) {
    }

    /// A line for a section that is done, such as "processors: 4".
    void section(const std::string &name, const std::string &result);

    /// How far a section with many elements has come; shown on a terminal only, now and then: after so many elements,
    /// or when they take long.
    void progress(const char *name, std::size_t done, std::size_t all) {
        if (moving && done != 0 && (done % progressStep == 0 || Clock::now() - lastShown >= std::chrono::seconds(1))) {
            showProgress(name, done, all);
        }
    }

    /// The same while something takes long, whose name `what` makes.
    template <class What>
    void waiting(const char *name, std::size_t done, std::size_t all, const What &what) {
        if (moving && Clock::now() - lastShown >= std::chrono::seconds(1)) {
            showProgress(name, done, all, ", waiting for " + what());
        }
    }

    /// Something that could not be read, for the list at the end.
    void notRead(const std::string &name, const std::string &what, const std::string &why);

    /// The list of what could not be read, the first fifty of it; `isStopped`: and the rest, which nobody asked for.
    void finish(bool isStopped);

private:
    using Clock = std::chrono::steady_clock;

    static constexpr std::size_t progressStep = 100;
    static constexpr std::size_t mostMissing = 50; // lines

    void showProgress(const char *name, std::size_t done, std::size_t all, const std::string &more = {});
    void clearProgress();

    bool quiet;
    bool moving;
    bool progressIsShown = false;
    Clock::time_point lastShown = Clock::now();
    std::vector<std::string> missing;
    std::size_t missingBeyond = 0;
};

/// "1 disk", "2 disks".
std::string counted(std::size_t count, const std::string &what);

/// The system's text for the errno.
std::string errnoText(int error);

} // namespace record
