#include <fcntl.h>
#include <unistd.h>

#include <charconv>
#include <csignal>
#include <cstdio>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "common/system/Printable.h"
#include "description/Host.h"
#include "platform/HasHost.h"
#include "record/Askers.h"
#include "record/Output.h"
#include "record/Recorder.h"
#include "record/StopSignals.h"
#include "record/Version.h"

// tarn-record: writes a description of the host that it runs on.

namespace {

constexpr int statusNotWritten = 1; // or not all of it
constexpr int statusBadUsage = 2;

constexpr const char help[] =
    "tarn-record [--output FILE] [--array CONTROLLER1 CONTROLLER2 VENDOR PRODUCT]... [--array-pages]\n"
    "            [--timeout SECONDS] [--quiet]\n"
    "\n"
    "Records what the host looks like, and writes it to standard output as a host description. Only reads; the users\n"
    "are left out. Some answers are for root only.\n"
    "\n"
    "  --output FILE        write to a new file instead, which only its owner may read\n"
    "  --array NAMES...     also read the drive statistics of this two-controller array; as often as there are arrays\n"
    "  --array-pages        ask every disk for the page 0xC0 of an array's disks; one that has none counts an error\n"
    "  --timeout SECONDS    how long a call to a disk, an adapter or a file system has to answer (10)\n"
    "  --quiet              say nothing on standard error\n"
    "  --version, --help    tell the version, or this\n"
    "\n"
    "SIGINT and SIGTERM end the recording; what is known so far is written.\n"
    "\n"
    "Exit status: 0 done, 1 the description cannot be written or is not whole, 2 bad usage or no usable host.\n";

/// One line that names the culprit.
class BadUsage : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct CommandLine {
    record::Options options;
    std::optional<std::string> output;
    bool isQuiet = false;
    bool wantsHelp = false;
    bool wantsVersion = false;
};

/// The arguments, one after the other. An option's value follows it, or stands behind an equals sign.
class Arguments {
public:
    explicit Arguments(std::span<char *const> given) : rest(given) {
    }

    std::optional<std::string_view> nextOption() {
        if (rest.empty()) {
            return std::nullopt;
        }
        option = take();
        if (const std::size_t equals = option.find('='); option.starts_with("--") && equals != option.npos) {
            attached = option.data() + equals + 1;
            option = option.substr(0, equals);
        }
        return option;
    }

    /// The option's next value.
    const char *value(const char *expected) {
        if (attached != nullptr) {
            return std::exchange(attached, nullptr);
        }
        if (rest.empty() || std::string_view(rest.front()).starts_with("--")) {
            throw BadUsage(std::string(option) + " takes " + expected);
        }
        return take();
    }

    /// Refuses a value that the option does not take.
    void finishOption() const {
        if (attached != nullptr) {
            throw BadUsage(std::string(option) + " takes no value");
        }
    }

private:
    const char *take() {
        const char *const argument = rest.front();
        rest = rest.subspan(1);
        return argument;
    }

    std::span<char *const> rest;
    std::string_view option;
    const char *attached = nullptr;
};

unsigned secondsOf(std::string_view text) {
    constexpr unsigned most = 86400;
    unsigned seconds = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    if (error != std::errc() || end != text.data() + text.size() || seconds < 1 || seconds > most) {
        throw BadUsage("--timeout: '" + std::string(text) + "' is no number of seconds from 1 to 86400");
    }
    return seconds;
}

CommandLine parse(std::span<char *const> given) {
    CommandLine parsed;
    Arguments arguments(given);
    while (const std::optional<std::string_view> option = arguments.nextOption()) {
        if (*option == "--output") {
            parsed.output = arguments.value("a file");
            if (parsed.output->empty()) {
                throw BadUsage("--output: '' is no file");
            }
        } else if (*option == "--array") {
            constexpr const char *names = "four names: CONTROLLER1 CONTROLLER2 VENDOR PRODUCT";
            const char *const controller1 = arguments.value(names);
            const char *const controller2 = arguments.value(names);
            const char *const vendor = arguments.value(names);
            parsed.options.arrays.emplace_back(controller1, controller2, vendor, arguments.value(names));
        } else if (*option == "--array-pages") {
            parsed.options.arrayPages = true;
        } else if (*option == "--timeout") {
            parsed.options.timeout = secondsOf(arguments.value("a number of seconds"));
        } else if (*option == "--quiet") {
            parsed.isQuiet = true;
        } else if (*option == "--help") {
            parsed.wantsHelp = true;
        } else if (*option == "--version") {
            parsed.wantsVersion = true;
        } else {
            throw BadUsage((option->starts_with('-') ? "unknown option '" : "surplus argument '") +
                           std::string(*option) + "'");
        }
        arguments.finishOption();
    }
    return parsed;
}

/// No device, nor a pipe, is to be opened in the place of a standard stream that is closed: what is written there would
/// go to it.
void occupyStandardStreams() {
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(standard, F_GETFD) == -1) {
            ::open("/dev/null", O_RDONLY);
        }
    }
}

/// Returns the exit status.
int writeDescription(const CommandLine &commandLine) {
    if (!platform::hasHost()) {
        return statusBadUsage;
    }
    std::optional<record::OutputFile> file;
    if (commandLine.output) {
        file.emplace(*commandLine.output); // so that nothing is asked in vain
    }
    record::stopOnSignals();
    record::Report report(commandLine.isQuiet, ::isatty(STDERR_FILENO) == 1);
    const description::Host host = record::recordHost(commandLine.options, report);
    const auto write = [&](const description::TextSink &sink) { description::writeHost(host, sink); };
    if (file) {
        file->write(write);
    } else {
        record::writeToStandardOutput(write);
    }
    const bool isStopped = record::isStopped();
    report.finish(isStopped);
    return isStopped ? statusNotWritten : 0;
}

int run(std::span<char *const> given) {
    const CommandLine commandLine = parse(given);
    if (commandLine.wantsHelp) {
        record::writeToStandardOutput([](const description::TextSink &sink) { sink(help); });
    } else if (commandLine.wantsVersion) {
        record::writeToStandardOutput(
            [](const description::TextSink &sink) { sink("tarn-record " TARN_VERSION "\n"); });
    } else {
        return writeDescription(commandLine);
    }
    return 0;
}

} // namespace

int main(int count, char **arguments) {
    occupyStandardStreams();
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN)); // a write that fails is told, and nothing is left half done
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
    int status = statusNotWritten;
    try {
        return run(std::span<char *const>(arguments, static_cast<std::size_t>(count)).subspan(count > 0 ? 1 : 0));
    } catch (const BadUsage &error) {
        static_cast<void>(std::fprintf(stderr, "tarn-record: %s (try 'tarn-record --help')\n",
                                       tarn::printable(error.what()).c_str()));
        status = statusBadUsage;
    } catch (const std::exception &error) {
        static_cast<void>(std::fprintf(stderr, "tarn-record: %s\n", tarn::printable(error.what()).c_str()));
    }
    return status;
}
