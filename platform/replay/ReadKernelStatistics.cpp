#include <algorithm>
#include <type_traits>

#include "platform/replay/HostSections.h"

namespace replay {
namespace {

constexpr NamedValue kernelTypes[] = {{"KSTAT_TYPE_RAW", KSTAT_TYPE_RAW},
                                      {"KSTAT_TYPE_NAMED", KSTAT_TYPE_NAMED},
                                      {"KSTAT_TYPE_INTR", KSTAT_TYPE_INTR},
                                      {"KSTAT_TYPE_IO", KSTAT_TYPE_IO},
                                      {"KSTAT_TYPE_TIMER", KSTAT_TYPE_TIMER}};

/// A record as it is described. What its data hold depends on other members, so they are kept for later.
struct RecordDescription : KernelRecord {
    const Json *data;
    const Json *samples;
};

template <int state>
void readTicks(const Json &value, const Place &place, cpu_stat_t &into) {
    read(value, place, into.cpu_sysinfo.cpu[state]);
}

} // namespace

template <>
struct Reader<const Json *> {
    static void read(const Json &value, const Place &, const Json *&into) {
        into = &value;
    }
};

template <>
inline constexpr auto members<RecordDescription> = table<RecordDescription>(
    MEMBER(RecordDescription, ks_module), MEMBER(RecordDescription, ks_instance), MEMBER(RecordDescription, ks_name),
    MEMBER(RecordDescription, ks_class), NAMED_MEMBER(RecordDescription, ks_type, kernelTypes),
    MEMBER(RecordDescription, ks_kid), MEMBER(RecordDescription, ks_flags), MEMBER(RecordDescription, ks_crtime),
    MEMBER(RecordDescription, ks_snaptime), MEMBER(RecordDescription, ks_data_size), MEMBER(RecordDescription, data),
    MEMBER(RecordDescription, samples));

template <>
inline constexpr auto members<vminfo_t> = table<vminfo_t>(MEMBER(vminfo_t, freemem), MEMBER(vminfo_t, swap_resv),
                                                          MEMBER(vminfo_t, swap_alloc), MEMBER(vminfo_t, swap_avail),
                                                          MEMBER(vminfo_t, swap_free));

template <>
inline constexpr auto members<cpu_stat_t> = table<cpu_stat_t>(Member<cpu_stat_t>{"idle", readTicks<CPU_IDLE>},
                                                              Member<cpu_stat_t>{"user", readTicks<CPU_USER>},
                                                              Member<cpu_stat_t>{"kernel", readTicks<CPU_KERNEL>},
                                                              Member<cpu_stat_t>{"wait", readTicks<CPU_WAIT>});

template <>
inline constexpr auto members<kstat_io_t> = table<kstat_io_t>(
    MEMBER(kstat_io_t, nread), MEMBER(kstat_io_t, nwritten), MEMBER(kstat_io_t, reads), MEMBER(kstat_io_t, writes),
    MEMBER(kstat_io_t, wtime), MEMBER(kstat_io_t, wlentime), MEMBER(kstat_io_t, wlastupdate), MEMBER(kstat_io_t, rtime),
    MEMBER(kstat_io_t, rlentime), MEMBER(kstat_io_t, rlastupdate), MEMBER(kstat_io_t, wcnt), MEMBER(kstat_io_t, rcnt));

namespace {

/// An empty sample of the kind that the record's type, module and name call for.
KernelSample emptySample(const KernelRecord &record, const Place &place) {
    const std::string_view module(record.ks_module, strnlen(record.ks_module, KSTAT_STRLEN));
    const std::string_view name(record.ks_name, strnlen(record.ks_name, KSTAT_STRLEN));
    if (record.ks_type == KSTAT_TYPE_IO) {
        return kstat_io_t{};
    }
    if (record.ks_type == KSTAT_TYPE_RAW && (module == "cpu_stat" || name.starts_with("cpu_stat"))) {
        return cpu_stat_t{};
    }
    if (record.ks_type == KSTAT_TYPE_RAW && name == "vminfo") {
        return vminfo_t{};
    }
    place.refuse("only vminfo, cpu_stat and KSTAT_TYPE_IO records have data");
}

void addSample(const Json &value, const Place &place, KernelRecord &record) {
    record.samples.push_back(emptySample(record, place));
    std::visit([&](auto &sample) { read(value, place, sample); }, record.samples.back());
    record.ks_ndata = 1;
    const std::size_t size = std::visit([](const auto &sample) { return sizeof sample; }, record.samples.back());
    record.ks_data_size = record.ks_data_size == 0 ? size : std::min<std::size_t>(size, record.ks_data_size);
}

} // namespace

template <>
void complete(const Json &, const Place &place, RecordDescription &record) {
    if (record.data != nullptr && record.samples != nullptr) {
        place.member("samples").refuse("given besides data");
    }
    if (record.data != nullptr) {
        addSample(*record.data, place.member("data"), record);
    }
    if (record.samples != nullptr) {
        const Place list = place.member("samples");
        const Json::array_t &samples = listOf(*record.samples, list);
        for (std::size_t i = 0; i < samples.size(); ++i) {
            addSample(samples[i], list.element(i), record);
        }
    }
}

void readKstat(const Json &value, const Place &place, Host &host) {
    std::vector<RecordDescription> records;
    read(value, place, records);
    host.kstat.emplace(records.begin(), records.end());
}

} // namespace replay
