#pragma once

#include "description/Members.h"

// The kernel statistics.

namespace description {

inline constexpr NamedValue kernelTypes[] = {{"KSTAT_TYPE_RAW", KSTAT_TYPE_RAW},
                                             {"KSTAT_TYPE_NAMED", KSTAT_TYPE_NAMED},
                                             {"KSTAT_TYPE_INTR", KSTAT_TYPE_INTR},
                                             {"KSTAT_TYPE_IO", KSTAT_TYPE_IO},
                                             {"KSTAT_TYPE_TIMER", KSTAT_TYPE_TIMER}};

template <int state>
struct Ticks {
    auto &operator()(auto &record) const {
        return record.cpu_sysinfo.cpu[state];
    }
};

template <>
inline constexpr auto members<PagingCounters> = table<PagingCounters>(
    MEMBER(PagingCounters, freemem), MEMBER(PagingCounters, swap_resv), MEMBER(PagingCounters, swap_alloc),
    MEMBER(PagingCounters, swap_avail), MEMBER(PagingCounters, swap_free), MEMBER(PagingCounters, updates));

template <>
inline constexpr auto members<cpu_stat_t> = table<cpu_stat_t>(memberRow<cpu_stat_t, Ticks<CPU_IDLE>>("idle"),
                                                              memberRow<cpu_stat_t, Ticks<CPU_USER>>("user"),
                                                              memberRow<cpu_stat_t, Ticks<CPU_KERNEL>>("kernel"),
                                                              memberRow<cpu_stat_t, Ticks<CPU_WAIT>>("wait"));

template <>
inline constexpr auto members<kstat_io_t> = table<kstat_io_t>(
    MEMBER(kstat_io_t, nread), MEMBER(kstat_io_t, nwritten), MEMBER(kstat_io_t, reads), MEMBER(kstat_io_t, writes),
    MEMBER(kstat_io_t, wtime), MEMBER(kstat_io_t, wlentime), MEMBER(kstat_io_t, wlastupdate), MEMBER(kstat_io_t, rtime),
    MEMBER(kstat_io_t, rlentime), MEMBER(kstat_io_t, rlastupdate), MEMBER(kstat_io_t, wcnt), MEMBER(kstat_io_t, rcnt));

template <>
struct Form<KernelReadFailure> {
    static void read(const Json &value, const Place &place, KernelReadFailure &into) {
        into.error = errnoIn(value, place);
    }
    static void write(JsonWriter &writer, const KernelReadFailure &value, const KernelReadFailure &) {
        writer.text(errnoName(value.error));
    }
};

/// Adds a sample to a record whose type, module and name are known.
inline void readSample(const Json &value, const Place &place, KernelRecord &record) {
    if (value.is_string()) {
        record.samples.emplace_back(KernelReadFailure{errnoIn(value, place)});
        return;
    }
    const std::optional<KernelSample> blank = blankSample(record);
    if (!blank) {
        place.refuse("only vminfo, cpu_stat and KSTAT_TYPE_IO records have data");
    }
    record.samples.push_back(*blank);
    std::visit([&]<class Sample>(Sample &sample) { Form<Sample>::read(value, place, sample); }, record.samples.back());
}

inline void writeSample(JsonWriter &writer, const KernelSample &sample) {
    std::visit([&]<class Sample>(const Sample &data) { Form<Sample>::write(writer, data, Sample()); }, sample);
}

inline void readSamples(const Json &value, const Place &place, KernelRecord &record) {
    const Json::array_t &samples = listOf(value, place);
    record.samples.reserve(samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        readSample(samples[i], place.element(i), record);
    }
}

inline void writeSamples(JsonWriter &writer, const KernelRecord &record, const KernelRecord &) {
    writer.beginList();
    for (const KernelSample &sample : record.samples) {
        writeSample(writer, sample);
    }
    writer.endList();
}

/// A single sample is "data", several are "samples".
inline constexpr Member<KernelRecord> dataRow = {
    "data", readSample, [](const KernelRecord &record, const KernelRecord &) { return record.samples.size() != 1; },
    [](JsonWriter &writer, const KernelRecord &record, const KernelRecord &) {
        writeSample(writer, record.samples.front());
    }};
inline constexpr Member<KernelRecord> samplesRow = {
    "samples", readSamples, [](const KernelRecord &record, const KernelRecord &) { return record.samples.size() < 2; },
    writeSamples};

template <>
inline constexpr auto members<KernelRecord> = table<KernelRecord>(
    MEMBER(KernelRecord, ks_module), MEMBER(KernelRecord, ks_instance), MEMBER(KernelRecord, ks_name),
    MEMBER(KernelRecord, ks_class), FORMED_MEMBER(KernelRecord, ks_type, NamedForm<kernelTypes>),
    MEMBER(KernelRecord, ks_kid), MEMBER(KernelRecord, ks_flags), MEMBER(KernelRecord, ks_crtime),
    MEMBER(KernelRecord, ks_snaptime), MEMBER(KernelRecord, ks_data_size), dataRow, samplesRow);

template <>
struct Usual<KernelRecord> {
    static KernelRecord of(const KernelRecord &record) {
        KernelRecord usual{};
        const std::optional<KernelSample> blank = blankSample(record);
        if (blank && !record.samples.empty()) {
            usual.ks_data_size = sizeOf(*blank);
            for (const KernelSample &sample : record.samples) {
                usual.ks_data_size = std::max(usual.ks_data_size, sizeOf(sample));
            }
        }
        return usual;
    }
};

/// The most bytes that it can be said to have. Paging counters have as many as a newer kernel's, whatever was read of them.
inline std::size_t largestSize(const KernelRecord &record, std::size_t usual) {
    const std::optional<KernelSample> blank = blankSample(record);
    return blank && std::holds_alternative<PagingCounters>(*blank) ? sizeof(PagingCounters) : usual;
}

template <>
inline void complete(const Json &value, const Place &place, KernelRecord &record) {
    if (isGiven(value, {"data"}) && isGiven(value, {"samples"})) {
        place.member("samples").refuse("given besides data");
    }
    if (!record.samples.empty()) {
        record.ks_ndata = 1;
        const std::size_t usual = Usual<KernelRecord>::of(record).ks_data_size;
        record.ks_data_size =
            record.ks_data_size == 0 ? usual : std::min<std::size_t>(largestSize(record, usual), record.ks_data_size);
    }
}

} // namespace description
