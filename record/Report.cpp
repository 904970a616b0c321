#include "record/Report.h"

#include <cstdio>
#include <cstring>

#include "common/system/Printable.h"

namespace record {

void Report::section(const std::string &name, const std::string &result) {
    if (!quiet) {
        clearProgress();
        static_cast<void>(std::fprintf(stderr, "%s: %s\n", name.c_str(), tarn::printable(result).c_str()));
    }
}

void Report::notRead(const std::string &name, const std::string &what, const std::string &why) {
    if (!quiet && missing.size() < mostMissing) {
        missing.push_back(tarn::printable(name + ": " + what + ": " + why));
    } else {
        ++missingBeyond;
    }
}

void Report::finish(bool isStopped) {
    if (quiet) {
        return;
    }
    clearProgress();
    if (!missing.empty()) {
        static_cast<void>(std::fprintf(stderr, "Not read:\n"));
    }
    for (const std::string &line : missing) {
        static_cast<void>(std::fprintf(stderr, "  %s\n", line.c_str()));
    }
    if (missingBeyond != 0) {
        static_cast<void>(std::fprintf(stderr, "  and %zu more\n", missingBeyond));
    }
    if (isStopped) {
        static_cast<void>(std::fprintf(stderr, "Not read: the rest\n"));
    }
}

void Report::showProgress(const char *name, std::size_t done, std::size_t all, const std::string &more) {
    static_cast<void>(std::fprintf(stderr, "\r%s: %zu of %zu%s\033[K", name, done, all, tarn::printable(more).c_str()));
    static_cast<void>(std::fflush(stderr));
    progressIsShown = true;
    lastShown = Clock::now();
}

void Report::clearProgress() {
    if (progressIsShown) {
        static_cast<void>(std::fputs("\r\033[K", stderr));
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
