#include "platform/replay/HostSections.h"

// The host as a whole, its processors, mounted file systems and users.

namespace replay {
namespace {

using StatVfs = struct ::statvfs64;

constexpr NamedValue processorStates[] = {{"P_OFFLINE", P_OFFLINE},   {"P_ONLINE", P_ONLINE}, {"P_FAULTED", P_FAULTED},
                                          {"P_POWEROFF", P_POWEROFF}, {"P_NOINTR", P_NOINTR}, {"P_SPARE", P_SPARE}};

/// Reads an object whose member names stand for numbers.
template <class Map>
void readByNumber(const Json &value, const Place &place, std::span<const NamedValue> names, Map &into) {
    readEach(value, place, [&](const std::string &name, const Json &member, const Place &memberPlace) {
        const auto [added, isNew] = into.try_emplace(namedValueOf(name, names, memberPlace));
        read(member, memberPlace, added->second);
        return isNew;
    });
}

} // namespace

template <>
inline constexpr auto members<utsname> = table<utsname>(MEMBER(utsname, sysname), MEMBER(utsname, nodename),
                                                        MEMBER(utsname, release), MEMBER(utsname, version),
                                                        MEMBER(utsname, machine));

template <>
inline constexpr auto
    members<Processor> = table<Processor>(MEMBER(Processor, id), NAMED_MEMBER(Processor, pi_state, processorStates),
                                          MEMBER(Processor, pi_processor_type), MEMBER(Processor, pi_fputypes),
                                          MEMBER(Processor, pi_clock));

template <>
inline constexpr auto members<StatVfs> = table<StatVfs>(MEMBER(StatVfs, f_bsize), MEMBER(StatVfs, f_frsize),
                                                        MEMBER(StatVfs, f_blocks), MEMBER(StatVfs, f_bfree),
                                                        MEMBER(StatVfs, f_bavail));

void readSysinfo(const Json &value, const Place &place, Host &host) {
    readByNumber(value, place, sysinfoCommands, host.sysinfo);
}

void readUname(const Json &value, const Place &place, Host &host) {
    read(value, place, host.uname);
}

void readSysconf(const Json &value, const Place &place, Host &host) {
    readByNumber(value, place, sysconfNames, host.sysconf);
}

void readProcessors(const Json &value, const Place &place, Host &host) {
    std::vector<Processor> processors;
    read(value, place, processors);
    for (std::size_t i = 0; i < processors.size(); ++i) {
        if (!host.processors.try_emplace(processors[i].id, processors[i]).second) {
            place.element(i).refuse("processor " + std::to_string(processors[i].id) + " is there already");
        }
    }
}

void readMnttab(const Json &value, const Place &place, Host &host) {
    std::vector<std::string> lines;
    read(value, place, lines);
    std::string &text = host.mnttab.emplace();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].find_first_of(std::string_view("\n\0", 2)) != std::string::npos) {
            place.element(i).refuse("a line holds no line end and no zero");
        }
        text += lines[i] + "\n";
    }
}

void readStatvfs(const Json &value, const Place &place, Host &host) {
    readEach(value, place, [&](const std::string &path, const Json &member, const Place &memberPlace) {
        const auto [added, isNew] = host.statvfs.try_emplace(path);
        read(member, memberPlace, added->second);
        return isNew;
    });
}

void readShadow(const Json &value, const Place &place, Host &host) {
    readEach(value, place, [&](const std::string &user, const Json &member, const Place &memberPlace) {
        const auto [added, isNew] = host.shadow.try_emplace(user);
        if (!member.is_null()) {
            read(member, memberPlace, added->second);
        }
        return isNew;
    });
}

} // namespace replay
