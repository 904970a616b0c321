#pragma once

#include <string>
#include <string_view>

#include <sys/systeminfo.h>
#include <unistd.h>

namespace description {

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

/// "EIO" of EIO; the number as a text when this system has no name for it.
std::string errnoName(int error);

/// The number of either; 0 for any other text.
int errnoOf(std::string_view name);

} // namespace description
