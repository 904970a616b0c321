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
    FORMED_MEMBER(Host, recordedAt, TimeForm), FORMED_MEMBER(Host, sysinfo, ByNameForm<sysinfoCommands>),
    MEMBER(Host, uname), FORMED_MEMBER(Host, sysconf, ByNameForm<sysconfNames>),
    FORMED_MEMBER(Host, processors, ProcessorsForm), MEMBER(Host, kstat), FORMED_MEMBER(Host, mnttab, MountTableForm),
    FORMED_MEMBER(Host, statvfs, FileSystemsForm),
    memberRow<Host, FieldAt<&Host::shadow>, ByTextForm<std::optional<std::string>, NullableTextForm>>("shadow"),
    MEMBER(Host, disks), MEMBER(Host, entries),
    memberRow<Host, FieldAt<&Host::listings>,
              ByTextForm<std::vector<std::string>, Form<std::vector<std::string>>, Layout::lines>>("listings"),
    MEMBER(Host, hba));

namespace {

/// Refuses a second file of one path, and a listing of what is not there or is there once.
void requireFiles(const Host &host, const Place &place) {
    std::unordered_set<std::string> paths;
    const Place disks = place.member("disks");
    for (std::size_t i = 0; i < host.disks.size(); ++i) {
        for (const std::string &directory : host.disks[i].directories) {
            for (const Slice &slice : host.disks[i].slices) {
                const std::string name = host.disks[i].name + slice.name;
                if (!paths.insert(directory + "/" + name).second) {
                    const Place disk = disks.element(i);
                    disk.member("name").refuse("\"" + name + "\" is there already");
                }
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
    const Place listings = place.member("listings");
    for (const auto &[directory, names] : host.listings) {
        for (std::size_t i = 0; i < names.size(); ++i) {
            if (paths.erase(directory + "/" + names[i]) == 0) {
                const Place listing = listings.member(directory);
                listing.element(i).refuse("\"" + names[i] + "\" is not there, or named twice");
            }
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
        return PagingCounters{};
    }
    return std::nullopt;
}

std::size_t sizeOf(const KernelSample &sample) {
    if (const auto *counters = std::get_if<PagingCounters>(&sample); counters != nullptr && counters->updates == 0) {
        return offsetof(PagingCounters, updates);
    }
    return std::visit([](const auto &data) { return sizeof data; }, sample);
}

std::vector<Slice> Disk::usualSlices() {
    static const std::vector<Slice> usual = [] {
        std::vector<Slice> list(8);
        for (std::size_t i = 0; i < list.size(); ++i) {
            list[i].name = "s" + std::to_string(i);
        }
        return list;
    }();
    return usual;
}

Host readHost(const std::string &json) {
    Host host;
    const Place whole;
    Form<Host>::read(parseJson(json), whole, host);
    requireFiles(host, whole);
    return host;
}

void writeHost(const Host &host, const TextSink &sink) {
    JsonWriter writer(sink);
    writer.beginObject(Layout::lines);
    Form<Host>::writeMembers(writer, host, Host());
    writer.endObject();
    writer.finish();
}

} // namespace description
