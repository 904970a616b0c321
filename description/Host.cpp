#include "description/Host.h"

#include <string_view>
#include <utility>
#include <vector>

#include "common/system/FieldText.h"
#include "description/DiskMembers.h"
#include "description/FileIndex.h"
#include "description/HbaMembers.h"
#include "description/KernelStatisticsMembers.h"
#include "description/SystemMembers.h"

namespace description {

constexpr std::size_t mostDisks = 65536;
using DisksForm = BoundedForm<mostDisks, Sparse<Disk>>;

template <>
inline constexpr auto members<Host> = table<Host>(
    FORMED_MEMBER(Host, recordedAt, TimeForm), FORMED_MEMBER(Host, sysinfo, ByNameForm<sysinfoCommands>),
    MEMBER(Host, uname), FORMED_MEMBER(Host, sysconf, ByNameForm<sysconfNames>),
    FORMED_MEMBER(Host, processors, ProcessorsForm), MEMBER(Host, kstat), FORMED_MEMBER(Host, mnttab, MountTableForm),
    FORMED_MEMBER(Host, statvfs, FileSystemsForm),
    memberRow<Host, FieldAt<&Host::shadow>, ByTextForm<std::optional<std::string>, NullableTextForm>>("shadow"),
    FORMED_MEMBER(Host, disks, DisksForm), MEMBER(Host, entries),
    memberRow<Host, FieldAt<&Host::listings>,
              ByTextForm<std::vector<std::string>, Form<std::vector<std::string>>, Layout::lines>>("listings"),
    MEMBER(Host, hba));

namespace {

/// Refuses a second file of one path, and a listing of what is not there or is there once.
void requireFiles(const Host &host, const Place &place) {
    const FileIndex index(host);
    if (const std::optional<std::size_t> second = index.firstDouble()) {
        const FileIndex::File &file = index.files()[*second];
        const bool isEntry = file.kind == FileIndex::entry;
        const Place list = place.member(isEntry ? "entries" : "disks");
        const Place owner = list.element(file.owner);
        const std::string shown = isEntry ? host.entries[file.owner].path : index.name(*second);
        owner.member(isEntry ? "path" : "name").refuse(inQuotes(shown) + " is there already");
    }
    const Place listings = place.member("listings");
    std::vector<bool> isListed(index.files().size());
    for (const auto &[directory, names] : host.listings) {
        for (std::size_t i = 0; i < names.size(); ++i) {
            const std::optional<std::size_t> found = index.find(directory, names[i]);
            if (!found || isListed[*found]) {
                const Place listing = listings.member(directory);
                listing.element(i).refuse(inQuotes(names[i]) + " is not there, or named twice");
            }
            isListed[*found] = true;
        }
    }
}

} // namespace

std::optional<KernelSample> blankSample(const kstat_t &record) {
    const std::string_view name = tarn::fieldText(record.ks_name);
    if (record.ks_type == KSTAT_TYPE_IO) {
        return kstat_io_t{};
    }
    if (record.ks_type == KSTAT_TYPE_NAMED) {
        return NamedStatistics{};
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

const std::vector<std::string> &usualDirectories() {
    static const std::vector<std::string> usual = {std::string(blockDirectory), std::string(rawDirectory)};
    return usual;
}

std::size_t sizeOf(const KernelSample &sample) {
    if (const auto *counters = std::get_if<PagingCounters>(&sample); counters != nullptr && counters->updates == 0) {
        return offsetof(PagingCounters, updates);
    }
    if (const auto *statistics = std::get_if<NamedStatistics>(&sample); statistics != nullptr) {
        return statistics->size() * sizeof(kstat_named_t);
    }
    return std::visit([](const auto &data) { return sizeof data; }, sample);
}

uint_t partsOf(const KernelSample &sample) {
    const auto *const statistics = std::get_if<NamedStatistics>(&sample);
    return statistics == nullptr ? 1 : static_cast<uint_t>(statistics->size());
}

const std::vector<Slice> &usualSlices() {
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
    std::string_view rest = json;
    return readHost([&] { return std::exchange(rest, {}); });
}

Host readHost(const TextSource &source) {
    Host host;
    const Place whole;
    Form<Host>::read(parseJson(source), whole, host);
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
