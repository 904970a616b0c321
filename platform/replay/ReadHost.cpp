#include "platform/replay/HostSections.h"

namespace replay {

template <>
inline constexpr auto members<Host> = table<Host>(
    Member<Host>{"sysinfo", readSysinfo}, Member<Host>{"uname", readUname}, Member<Host>{"sysconf", readSysconf},
    Member<Host>{"processors", readProcessors}, Member<Host>{"kstat", readKstat}, Member<Host>{"mnttab", readMnttab},
    Member<Host>{"statvfs", readStatvfs}, Member<Host>{"shadow", readShadow}, Member<Host>{"disks", readDisks},
    Member<Host>{"entries", readEntries}, Member<Host>{"hba", readHba});

std::shared_ptr<const Host> readHost(const std::string &json) {
    const auto host = std::make_shared<Host>();
    const Place whole;
    read(parseJson(json), whole, *host);
    makeFiles(whole, *host);
    return host;
}

} // namespace replay
