#include <algorithm>
#include <array>
#include <ctime>
#include <limits>
#include <memory>
#include <utility>

#include "common/system/FieldText.h"
#include "common/system/MountTable.h"
#include "common/system/Processors.h"
#include "description/Names.h"
#include "record/Recorder.h"
#include "record/StopSignals.h"

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

std::string utcNow() {
    const std::time_t time = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&time, &utc);
    std::array<char, 32> text{};
    static_cast<void>(std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &utc));
    return text.data();
}

} // namespace

void recordSystem(description::Host &host, Report &report) {
    host.recordedAt = utcNow();
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

namespace {

/// The whole text, without zeros, which no line holds, and with an end to its last line.
std::string mountTableText(tarn::MountTable &table, Report &report) {
    std::string text;
    if (!table.readText(text)) {
        report.notRead("mnttab", "its end", errnoText(errno));
    }
    std::erase(text, '\0');
    if (!text.empty() && text.back() != '\n') {
        text += '\n';
    }
    return text;
}

/// What getmntent answers, and what it tells then.
struct ToldEntry {
    int result;
    description::MountEntry fields;
};

/// What getmntent makes of the line of a text.
int resultOf(std::string_view line) {
    if (line.size() > MNT_LINE_MAX) {
        return MNT_TOOLONG;
    }
    std::size_t fields = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        fields += line[i] != '\t' && (i == 0 || line[i - 1] == '\t') ? 1 : 0;
    }
    constexpr std::size_t fieldsOfALine = 5;
    return fields < fieldsOfALine ? MNT_TOOFEW : fields > fieldsOfALine ? MNT_TOOMANY : 0;
}

std::string lineOf(const description::MountEntry &entry) {
    return entry.mnt_special + '\t' + entry.mnt_mountp + '\t' + entry.mnt_fstype + '\t' + entry.mnt_mntopts + '\t' +
           entry.mnt_time;
}

/// Whether getmntent tells of the line what a text's line tells.
bool isTold(std::string_view line, const ToldEntry &told) {
    if (resultOf(line) != told.result || told.result != 0) {
        return resultOf(line) == told.result;
    }
    const auto isBlank = [](char one, char other) { return one == '\t' && other == '\t'; };
    std::string single(line); // several tabs separate as one does
    single.erase(std::unique(single.begin(), single.end(), isBlank), single.end());
    const std::size_t from = single.starts_with('\t') ? 1 : 0;
    const std::size_t to = single.ends_with('\t') ? single.size() - 1 : single.size();
    return std::string_view(single).substr(from, to - from) == lineOf(told.fields);
}

std::vector<ToldEntry> toldEntries() {
    std::vector<ToldEntry> told;
    tarn::MountTable table;
    const mnttab *entry = nullptr;
    for (int result = 0; table.isOpen() && (result = table.next(entry)) != -1;) {
        told.push_back({result, {}});
        if (result == 0) {
            const auto text = [](const char *field) { return std::string(field == nullptr ? "" : field); };
            told.back().fields = {text(entry->mnt_special), text(entry->mnt_mountp), text(entry->mnt_fstype),
                                  text(entry->mnt_mntopts), text(entry->mnt_time)};
        }
    }
    return told;
}

/// The lines of the table's text. Nothing when it cannot be opened.
std::optional<description::MountTable> mountTableLines(Report &report) {
    tarn::MountTable table;
    if (!table.isOpen()) {
        report.notRead("mnttab", tarn::mountTablePath, errnoText(errno));
        return std::nullopt;
    }
    const std::string text = mountTableText(table, report);
    description::MountTable lines;
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t end = rest.find('\n');
        lines.emplace_back(std::string(rest.substr(0, end)));
        rest.remove_prefix(end + 1);
    }
    return lines;
}

} // namespace

/// The lines of the text, which may be malformed; entries where getmntent tells more than they do, such as a kernel's
/// table with a tab in a name.
void recordMountTable(description::Host &host, Report &report) {
    std::optional<description::MountTable> lines = mountTableLines(report);
    if (!lines) {
        return;
    }
    std::vector<ToldEntry> told = toldEntries();
    const auto isOwnLine = [&](std::size_t i) {
        return lines->size() == told.size() && isTold(std::get<std::string>((*lines)[i]), told[i]);
    };
    description::MountTable table;
    for (std::size_t i = 0; i < told.size(); ++i) {
        ToldEntry &entry = told[i];
        const std::string line = lineOf(entry.fields);
        if (isOwnLine(i)) {
            table.push_back(std::move((*lines)[i]));
        } else if (entry.result != 0) {
            report.notRead("mnttab", "entry " + std::to_string(i + 1), "malformed");
        } else if (line.find('\n') == line.npos && isTold(line, entry)) {
            table.emplace_back(line);
        } else {
            table.emplace_back(description::Sparse(std::move(entry.fields)));
        }
    }
    report.section("mnttab", counted(table.size(), "line"));
    host.mnttab = std::move(table);
}

namespace {

std::vector<Ask> waysToAsk(const Options &options) {
    std::vector<Ask> ways;
    for (const std::size_t kind :
         {Askers::rawEntry, Askers::link, Askers::blockEntry, Askers::arrayPages, Askers::nothing}) {
        ways.push_back(wayToAskDisk(kind, options));
    }
    ways.push_back(wayToAskAdapters());
    ways.push_back(wayToAskFileSystem());
    return ways;
}

} // namespace

description::Host recordHost(const Options &options, Report &report) {
    description::Host host;
    recordSystem(host, report);
    Askers askers(waysToAsk(options), options.timeout, report); // while the recorder is small
    const auto unlessStopped = [&](auto section) {
        if (!isStopped()) {
            section();
        }
    };
    unlessStopped([&] { recordKernelStatistics(host, report); });
    unlessStopped([&] { recordMountTable(host, report); });
    const std::unique_ptr<AskedSection> sections[] = {diskSection(options.arrays, host, report),
                                                      hostBusAdapterSection(host, report),
                                                      fileSystemSection(host, report)};
    for (const auto step : {&AskedSection::begin, &AskedSection::goOn}) {
        unlessStopped([&] {
            for (const auto &section : sections) {
                ((*section).*step)(askers);
            }
            askers.gather();
        });
    }
    for (const auto &section : sections) {
        section->finish();
    }
    return host;
}

} // namespace record
