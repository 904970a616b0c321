#include "description/Host.h"

#include <string_view>
#include <unordered_set>

#include "common/FieldText.h"
#include "description/DiskMembers.h"
#include "description/HbaMembers.h"
#include "description/KernelStatisticsMembers.h"
#include "description/SystemMembers.h"

namespace description {

template <>
inline constexpr auto members<Host> = table<Host>(
    FORMED_MEMBER(Host, sysinfo, ByNameForm<sysinfoCommands>), MEMBER(Host, uname),
    FORMED_MEMBER(Host, sysconf, ByNameForm<sysconfNames>), FORMED_MEMBER(Host, processors, ProcessorsForm),
    MEMBER(Host, kstat), FORMED_MEMBER(Host, mnttab, MountTableForm),
    memberRow<Host, FieldAt<&Host::statvfs>, ByTextForm<StatVfs, Form<StatVfs>, Layout::lines>>("statvfs"),
    memberRow<Host, FieldAt<&Host::shadow>, ByTextForm<std::optional<std::string>, NullableTextForm>>("shadow"),
    MEMBER(Host, disks), MEMBER(Host, entries), MEMBER(Host, hba));

namespace {

/// Refuses a second file of one path.
void requireOnePathEach(const Host &host, const Place &place) {
    std::unordered_set<std::string> paths;
    const Place disks = place.member("disks");
    for (std::size_t i = 0; i < host.disks.size(); ++i) {
        for (const std::string &slice : host.disks[i].slices) {
            const std::string name = host.disks[i].name + slice;
            const bool isNew = paths.insert("/dev/dsk/" + name).second;
            if (!paths.insert("/dev/rdsk/" + name).second || !isNew) {
                const Place disk = disks.element(i);
                disk.member("name").refuse("\"" + name + "\" is there already");
            }
        }
    }
    const Place entries = place.member("entries");
    for (std::size_t i = 0; i < host.entries.size(); ++i) {
        if (!paths.insert(host.entries[i].path).second) {
            const Place entry = entries.element(i);
            entry.member("path").refuse("\"" + host.entries[i].path + "\" is there already");
        }
    }
}

} // namespace

std::optional<KernelSample> blankSample(const kstat_t &record) {
    const std::string_view name = tarn::fieldText(record.ks_name);
    if (record.ks_type == KSTAT_TYPE_IO) {
        return kstat_io_t{};
    }
    if (record.ks_type == KSTAT_TYPE_RAW &&
        (tarn::fieldText(record.ks_module) == "cpu_stat" || name.starts_with("cpu_stat"))) {
        return cpu_stat_t{};
    }
    if (record.ks_type == KSTAT_TYPE_RAW && name == "vminfo") {
        return vminfo_t{};
    }
    return std::nullopt;
}

Host readHost(const std::string &json) {
    Host host;
    const Place whole;
    Form<Host>::read(parseJson(json), whole, host);
    requireOnePathEach(host, whole);
    return host;
}

std::string writeHost(const Host &host) {
    JsonWriter writer;
    writer.beginObject(Layout::lines);
    Form<Host>::writeMembers(writer, host, Host());
    writer.endObject();
    return writer.take();
}

} // namespace description
