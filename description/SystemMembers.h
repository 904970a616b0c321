#pragma once

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
inline constexpr auto members<StatVfs> = table<StatVfs>(MEMBER(StatVfs, f_bsize), MEMBER(StatVfs, f_frsize),
                                                        MEMBER(StatVfs, f_blocks), MEMBER(StatVfs, f_bfree),
                                                        MEMBER(StatVfs, f_bavail));

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
        for (const auto &[id, processor] : value) {
            processors.push_back(processor);
        }
        Form<std::vector<Processor>>::write(writer, processors, {});
    }
};

/// The text as a list of its lines.
struct MountTableForm {
    static void read(const Json &value, const Place &place, std::optional<std::string> &into) {
        std::vector<std::string> lines;
        Form<std::vector<std::string>>::read(value, place, lines);
        std::string &text = into.emplace();
        for (std::size_t i = 0; i < lines.size(); ++i) {
            if (lines[i].find_first_of(std::string_view("\n\0", 2)) != std::string::npos) {
                place.element(i).refuse("a line holds no line end and no zero");
            }
            text += lines[i] + "\n";
        }
    }
    static bool isSame(const std::optional<std::string> &value, const std::optional<std::string> &) {
        return !value;
    }
    static void write(JsonWriter &writer, const std::optional<std::string> &value, const std::optional<std::string> &) {
        writer.beginList(Layout::lines);
        for (std::string_view rest = *value; !rest.empty();) {
            const std::size_t end = std::min(rest.find('\n'), rest.size());
            writer.text(rest.substr(0, end));
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
        writer.endList();
    }
};

/// A text, or null.
struct NullableTextForm {
    static void read(const Json &value, const Place &place, std::optional<std::string> &into) {
        if (!value.is_null()) {
            Form<std::string>::read(value, place, into.emplace());
        }
    }
    static void write(JsonWriter &writer, const std::optional<std::string> &value, const std::optional<std::string> &) {
        if (value) {
            writer.text(*value);
        } else {
            writer.null();
        }
    }
};

} // namespace description
