#pragma once

#include <algorithm>
#include <charconv>
#include <chrono>
#include <utility>

#include "description/Members.h"

// The host as a whole, its processors, mounted file systems and users.

namespace description {

inline constexpr NamedValue processorStates[] = {{"P_OFFLINE", P_OFFLINE}, {"P_ONLINE", P_ONLINE},
                                                 {"P_FAULTED", P_FAULTED}, {"P_POWEROFF", P_POWEROFF},
                                                 {"P_NOINTR", P_NOINTR},   {"P_SPARE", P_SPARE}};

using SystemNames = struct ::utsname; // beside the structure there may be a variable of its name

template <>
inline constexpr auto
    members<SystemNames> = table<SystemNames>(MEMBER(SystemNames, sysname), MEMBER(SystemNames, nodename),
                                              MEMBER(SystemNames, release), MEMBER(SystemNames, version),
                                              MEMBER(SystemNames, machine));

template <>
inline constexpr auto members<Processor> =
    table<Processor>(MEMBER(Processor, id), FORMED_MEMBER(Processor, pi_state, NamedForm<processorStates>),
                     MEMBER(Processor, pi_processor_type), MEMBER(Processor, pi_fputypes), MEMBER(Processor, pi_clock));

template <>
inline constexpr auto members<FileSystem> = table<FileSystem>(MEMBER(FileSystem, path), MEMBER(FileSystem, f_bsize),
                                                              MEMBER(FileSystem, f_frsize),
                                                              MEMBER(FileSystem, f_blocks), MEMBER(FileSystem, f_bfree),
                                                              MEMBER(FileSystem, f_bavail), MEMBER(FileSystem, seconds),
                                                              FORMED_MEMBER(FileSystem, fails, ErrnoForm));

/// A list, in the order of the ids.
struct ProcessorsForm {
    static void read(const Json &value, const Place &place, std::map<processorid_t, Processor> &into) {
        std::vector<Processor> processors;
        Form<std::vector<Processor>>::read(value, place, processors);
        for (std::size_t i = 0; i < processors.size(); ++i) {
            if (!into.try_emplace(processors[i].id, processors[i]).second) {
                place.element(i).refuse("processor " + std::to_string(processors[i].id) + " is there already");
            }
        }
    }
    static bool isSame(const std::map<processorid_t, Processor> &value, const std::map<processorid_t, Processor> &) {
        return value.empty();
    }
    static void write(JsonWriter &writer, const std::map<processorid_t, Processor> &value,
                      const std::map<processorid_t, Processor> &) {
        std::vector<Processor> processors;
        processors.reserve(value.size());
        for (const auto &[id, processor] : value) {
            processors.push_back(processor);
        }
        Form<std::vector<Processor>>::write(writer, processors, {});
    }
};

template <>
inline constexpr auto
    members<MountEntry> = table<MountEntry>(MEMBER(MountEntry, mnt_special), MEMBER(MountEntry, mnt_mountp),
                                            MEMBER(MountEntry, mnt_fstype), MEMBER(MountEntry, mnt_mntopts),
                                            MEMBER(MountEntry, mnt_time));

/// A list of lines, and of entries that no line tells.
struct MountTableForm {
    static void read(const Json &value, const Place &place, std::optional<MountTable> &into) {
        const Json::array_t &list = listOf(value, place);
        into.emplace(list.size());
        for (std::size_t i = 0; i < list.size(); ++i) {
            const Place element = place.element(i);
            if (list[i].is_object() && !isGiven(list[i], {"hex"})) {
                readEntry(list[i], element, (*into)[i].emplace<Sparse<MountEntry>>().edit());
                continue;
            }
            std::string &line = std::get<std::string>((*into)[i]);
            Form<std::string>::read(list[i], element, line);
            if (line.find_first_of(std::string_view("\n\0", 2)) != std::string::npos) {
                element.refuse("a line holds no line end and no zero");
            }
        }
    }
    static bool isSame(const std::optional<MountTable> &value, const std::optional<MountTable> &) {
        return !value;
    }
    static void write(JsonWriter &writer, const std::optional<MountTable> &value, const std::optional<MountTable> &) {
        writer.beginList(Layout::lines);
        for (const auto &element : *value) {
            if (const auto *line = std::get_if<std::string>(&element)) {
                writer.text(*line);
            } else {
                Form<MountEntry>::write(writer, *std::get<Sparse<MountEntry>>(element), {});
            }
        }
        writer.endList();
    }

private:
    static void readEntry(const Json &value, const Place &place, MountEntry &entry) {
        Form<MountEntry>::read(value, place, entry);
        for (const std::string *field :
             {&entry.mnt_special, &entry.mnt_mountp, &entry.mnt_fstype, &entry.mnt_mntopts, &entry.mnt_time}) {
            if (field->find('\0') != std::string::npos) {
                place.refuse("no field holds a zero");
            }
        }
    }
};

/// An object with a member for each path, or a list of what has a "path": a path need not be a text.
struct FileSystemsForm {
    static void read(const Json &value, const Place &place, ByText<FileSystem> &into) {
        if (!value.is_array()) {
            ByPath::read(value, place, into);
            for (auto &[path, fileSystem] : into) {
                if (!std::exchange(fileSystem.path, path).empty()) {
                    place.member(path).member("path").refuse("given by the name");
                }
            }
            return;
        }
        std::vector<FileSystem> list;
        Form<std::vector<FileSystem>>::read(value, place, list);
        for (std::size_t i = 0; i < list.size(); ++i) {
            if (!into.try_emplace(list[i].path, list[i]).second) {
                place.element(i).refuse("the path is there already");
            }
        }
    }
    static bool isSame(const ByText<FileSystem> &value, const ByText<FileSystem> &) {
        return value.empty();
    }
    static void write(JsonWriter &writer, const ByText<FileSystem> &value, const ByText<FileSystem> &usual) {
        ByText<FileSystem> named = value;
        std::vector<FileSystem> list;
        for (auto &[path, fileSystem] : named) {
            fileSystem.path = path;
            list.push_back(fileSystem);
            fileSystem.path.clear();
        }
        if (std::ranges::all_of(value, [](const auto &entry) { return JsonWriter::isText(entry.first); })) {
            ByPath::write(writer, named, usual);
        } else {
            Form<std::vector<FileSystem>>::write(writer, list, {});
        }
    }

private:
    using ByPath = ByTextForm<FileSystem, Form<FileSystem>, Layout::lines>;
};

/// A time as in "2026-11-24T10:00:00Z".
struct TimeForm : Form<std::string> {
    static void read(const Json &value, const Place &place, std::string &into) {
        constexpr std::string_view pattern = "0000-00-00T00:00:00Z";
        into = textOf(value, place);
        const bool fits = std::ranges::equal(into, pattern, [](char character, char expected) {
            return expected == '0' ? character >= '0' && character <= '9' : character == expected;
        });
        if (!fits || !isInstant(into)) {
            place.refuse("a time such as \"2026-11-24T10:00:00Z\" expected");
        }
    }

private:
    static bool isInstant(std::string_view text) {
        const auto number = [&](std::size_t at, std::size_t digits) {
            int value = 0;
            std::from_chars(text.data() + at, text.data() + at + digits, value);
            return value;
        };
        const std::chrono::year_month_day date(std::chrono::year(number(0, 4)),
                                               std::chrono::month(static_cast<unsigned>(number(5, 2))),
                                               std::chrono::day(static_cast<unsigned>(number(8, 2))));
        return date.ok() && number(11, 2) < 24 && number(14, 2) < 60 && number(17, 2) < 60;
    }
};

} // namespace description
