#include <array>
#include <ctime>
#include <limits>

#include "common/FieldText.h"
#include "common/MountTable.h"
#include "common/Processors.h"
#include "description/Names.h"
#include "record/Recorder.h"

// The host as a whole, its processors and its mount table.

namespace record {
namespace {

/// A text of the system, whatever its length. Nothing when the system does not tell it.
std::optional<std::string> systemText(int command) {
    std::string text(257, '\0');
    int size = solaris::sysinfo(command, text.data(), static_cast<long>(text.size()));
    if (size > static_cast<int>(text.size())) {
        text.resize(static_cast<std::size_t>(size));
        size = solaris::sysinfo(command, text.data(), static_cast<long>(text.size()));
    }
    if (size < 1) {
        return std::nullopt;
    }
    text.resize(std::min(static_cast<std::size_t>(size) - 1, text.size()));
    return text;
}

std::string now() {
    const std::time_t time = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&time, &utc);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &utc);
    return text.data();
}

} // namespace

void recordSystem(description::Host &host, Report &report) {
    host.recordedAt = now();
    for (const auto &[name, command] : description::sysinfoCommands) {
        if (std::optional<std::string> text = systemText(command)) {
            host.sysinfo[command] = *std::move(text);
        } else {
            report.notRead("sysinfo", std::string(name), errnoText(errno));
        }
    }
    report.section("sysinfo", counted(host.sysinfo.size(), "text"));

    struct ::utsname names {};
    if (solaris::uname(&names) == -1) {
        report.notRead("uname", "all of it", errnoText(errno));
    } else {
        host.uname = names;
        report.section("uname",
                       std::string(tarn::fieldText(names.sysname)) + " " + std::string(tarn::fieldText(names.release)));
    }

    for (const auto &[name, number] : description::sysconfNames) {
        errno = 0;
        if (const long value = solaris::sysconf(number); value != -1) {
            host.sysconf[number] = value;
        } else {
            report.notRead("sysconf", std::string(name), errno == 0 ? "no limit" : errnoText(errno));
        }
    }
    report.section("sysconf", counted(host.sysconf.size(), "value"));

    tarn::forEachProcessor(std::numeric_limits<long>::max(),
                           [&](processorid_t id, const processor_info_t &information) {
                               host.processors[id] = {information, id};
                           });
    report.section("processors", std::to_string(host.processors.size()));
}

/// The text itself: what it is parsed into would not show its malformed lines.
void recordMountTable(description::Host &host, Report &report) {
    FILE *const file = solaris::fopen(tarn::mountTablePath, "r");
    if (file == nullptr) {
        report.notRead("mnttab", tarn::mountTablePath, errnoText(errno));
        return;
    }
    std::string &text = host.mnttab.emplace();
    std::array<char, 4096> part;
    while (const std::size_t size = std::fread(part.data(), 1, part.size(), file)) {
        text.append(part.data(), size);
    }
    if (std::ferror(file) != 0) {
        report.notRead("mnttab", "its end", errnoText(errno));
    }
    solaris::fclose(file);
    std::erase(text, '\0'); // which no line holds
    if (!text.empty() && text.back() != '\n') {
        text += '\n';
    }
    report.section("mnttab", counted(static_cast<std::size_t>(std::ranges::count(text, '\n')), "line"));
}

description::Host recordHost(const Options &options, Report &report) {
    description::Host host;
    recordSystem(host, report);
    recordKernelStatistics(host, report);
    recordMountTable(host, report);
    recordDisks(options.arrays, host, report);
    recordHostBusAdapters(host, report);
    recordFileSystems(options.timeout, host, report);
    return host;
}

} // namespace record
