#pragma once

#include <string_view>

#include <sys/systeminfo.h>
#include <unistd.h>

namespace replay {

/// A published name and the number it stands for.
struct NamedValue {
    std::string_view name;
    int value;
};

inline constexpr NamedValue sysinfoCommands[] = {{"SI_SYSNAME", SI_SYSNAME},
                                                 {"SI_HOSTNAME", SI_HOSTNAME},
                                                 {"SI_RELEASE", SI_RELEASE},
                                                 {"SI_VERSION", SI_VERSION},
                                                 {"SI_PLATFORM", SI_PLATFORM}};

inline constexpr NamedValue sysconfNames[] = {{"_SC_PAGESIZE", _SC_PAGESIZE},
                                              {"_SC_PHYS_PAGES", _SC_PHYS_PAGES},
                                              {"_SC_AVPHYS_PAGES", _SC_AVPHYS_PAGES},
                                              {"_SC_NPROCESSORS_CONF", _SC_NPROCESSORS_CONF},
                                              {"_SC_CPUID_MAX", _SC_CPUID_MAX}};

} // namespace replay
