#include "record/Report.h"

#include <cstdio>
#include <cstring>

namespace record {

void Report::section(const std::string &name, const std::string &result) {
    if (!quiet) {
        clearProgress();
        std::fprintf(stderr, "%s: %s\n", name.c_str(), result.c_str());
    }
}

void Report::notRead(const std::string &name, const std::string &what, const std::string &why) {
    if (!quiet) {
        missing.push_back(name + ": " + what + ": " + why);
    }
}

void Report::finish() {
    if (quiet || missing.empty()) {
        return;
    }
    std::fprintf(stderr, "Not read:\n");
    for (const std::string &line : missing) {
        std::fprintf(stderr, "  %s\n", line.c_str());
    }
}

void Report::showProgress(const char *name, std::size_t done, std::size_t all) {
    std::fprintf(stderr, "\r%s: %zu of %zu", name, done, all);
    std::fflush(stderr);
    progressIsShown = true;
    lastShown = Clock::now();
}

void Report::clearProgress() {
    if (progressIsShown) {
        std::fputs("\r\033[K", stderr);
        progressIsShown = false;
    }
}

std::string counted(std::size_t count, const std::string &what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string errnoText(int error) {
    return std::strerror(error);
}

} // namespace record
