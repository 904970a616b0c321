#include <algorithm>
#include <cstring>
#include <span>
#include <string>

#include "platform/replay/Host.h"
#include "platform/replay/Journal.h"
#include "platform/replay/Names.h"

// The host as a whole and its processors.

namespace replay {
namespace {

/// The name of the number, or the number.
std::string nameOf(int value, std::span<const NamedValue> names) {
    const auto found = std::ranges::find(names, value, &NamedValue::value);
    return found == names.end() ? std::to_string(value) : std::string(found->name);
}

} // namespace
} // namespace replay

namespace solaris {

using namespace replay;

int sysinfo(int command, char *buffer, long count) {
    const std::shared_ptr<const Host> host = currentHost();
    const auto found = host->sysinfo.find(command);
    int result = 0;
    if (found == host->sysinfo.end()) {
        result = failWith(EINVAL);
    } else {
        const std::string &text = found->second;
        if (count > 0) {
            const std::size_t length = std::min(text.size(), static_cast<std::size_t>(count) - 1);
            std::memcpy(buffer, text.data(), length);
            buffer[length] = '\0';
        }
        result = static_cast<int>(text.size()) + 1;
    }
    return noted(result, [&] { return "sysinfo " + nameOf(command, sysinfoCommands); });
}

int uname(struct utsname *name) {
    const std::shared_ptr<const Host> host = currentHost();
    if (host->uname) {
        *name = *host->uname;
    }
    return noted(host->uname ? 0 : failWith(ENOSYS), [] { return std::string("uname"); });
}

long sysconf(int name) {
    const std::shared_ptr<const Host> host = currentHost();
    const auto found = host->sysconf.find(name);
    return noted(found == host->sysconf.end() ? failWith<long>(EINVAL) : found->second,
                 [&] { return "sysconf " + nameOf(name, sysconfNames); });
}

/// A replayed second passes at once.
unsigned sleep(unsigned seconds) {
    note([&] { return "sleep " + std::to_string(seconds); });
    return 0;
}

int processor_info(processorid_t processor, processor_info_t *information) {
    const std::shared_ptr<const Host> host = currentHost();
    const auto found = host->processors.find(processor);
    const bool exists = found != host->processors.end();
    if (exists) {
        *information = found->second;
    }
    return noted(exists ? 0 : failWith(EINVAL), [&] { return "processor_info " + std::to_string(processor); });
}

} // namespace solaris
