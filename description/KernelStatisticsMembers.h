#pragma once

#include <string_view>
#include <unordered_set>
#include <utility>

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

inline constexpr NamedValue statisticTypes[] = {{"KSTAT_DATA_CHAR", KSTAT_DATA_CHAR},
                                                {"KSTAT_DATA_INT32", KSTAT_DATA_INT32},
                                                {"KSTAT_DATA_UINT32", KSTAT_DATA_UINT32},
                                                {"KSTAT_DATA_INT64", KSTAT_DATA_INT64},
                                                {"KSTAT_DATA_UINT64", KSTAT_DATA_UINT64}};

/// Calls `use` with the field of the statistic's value that its type has.
void withValue(auto &statistic, const auto &use) {
    switch (statistic.data_type) {
    case KSTAT_DATA_CHAR:
        return use(statistic.value.c);
    case KSTAT_DATA_INT32:
        return use(statistic.value.i32);
    case KSTAT_DATA_UINT32:
        return use(statistic.value.ui32);
    case KSTAT_DATA_INT64:
        return use(statistic.value.i64);
    default:
        return use(statistic.value.ui64);
    }
}

/// The type that a statistic has whose value says nothing of it: text, or a number of as many bits as it needs.
inline uchar_t plainTypeOf(const Json &value) {
    if (!value.is_number()) {
        return KSTAT_DATA_CHAR;
    }
    return value.is_number_unsigned() && value.get<std::uint64_t>() <= std::numeric_limits<std::uint32_t>::max()
               ? KSTAT_DATA_UINT32
               : KSTAT_DATA_UINT64;
}

inline uchar_t plainTypeOf(const kstat_named_t &statistic) {
    switch (statistic.data_type) {
    case KSTAT_DATA_CHAR:
        return KSTAT_DATA_CHAR;
    case KSTAT_DATA_UINT64:
        return statistic.value.ui64 > std::numeric_limits<std::uint32_t>::max() ? KSTAT_DATA_UINT64 : KSTAT_DATA_UINT32;
    default:
        return KSTAT_DATA_UINT32;
    }
}

/// A value, or an object of its type and its value where its type does not follow.
template <>
struct Form<kstat_named_t> {
    static void read(const Json &value, const Place &place, kstat_named_t &into) {
        into.data_type = plainTypeOf(value);
        if (!isTyped(value)) {
            readValue(value, place, into);
            return;
        }
        bool isTypeTold = false;
        const Json *told = nullptr;
        readEach(value, place, [&](const std::string &name, const Json &member, const Place &memberPlace) {
            if (name == "data_type") {
                NamedForm<statisticTypes>::read(member, memberPlace, into.data_type);
                if (into.data_type > KSTAT_DATA_UINT64) {
                    memberPlace.refuse("unknown type");
                }
                return !std::exchange(isTypeTold, true);
            }
            if (name != "value") {
                memberPlace.refuse("unknown member");
            }
            return std::exchange(told, &member) == nullptr;
        });
        if (told == nullptr) {
            place.member("value").refuse("missing");
        }
        readValue(*told, place.member("value"), into);
    }
    static void write(JsonWriter &writer, const kstat_named_t &value, const kstat_named_t &) {
        const bool isPlain = plainTypeOf(value) == value.data_type;
        if (!isPlain) {
            writer.beginObject();
            writer.name("data_type");
            NamedForm<statisticTypes>::write(writer, value.data_type, uchar_t{});
            writer.name("value");
        }
        withValue(value, [&]<class T>(const T &field) { Form<T>::write(writer, field, {}); });
        if (!isPlain) {
            writer.endObject();
        }
    }

private:
    /// An object of raw bytes is a text.
    static bool isTyped(const Json &value) {
        return value.is_object() && !value.contains("hex");
    }
    static void readValue(const Json &value, const Place &place, kstat_named_t &into) {
        withValue(into, [&]<class T>(T &field) { Form<T>::read(value, place, field); });
    }
};

template <>
struct Form<NamedStatistics> {
    static void read(const Json &value, const Place &place, NamedStatistics &into) {
        std::unordered_set<std::string_view> names;
        readEach(value, place, [&](const std::string &name, const Json &member, const Place &memberPlace) {
            kstat_named_t &statistic = into.emplace_back();
            requireRoom(name.size(), sizeof statistic.name - 1, "bytes", memberPlace);
            std::ranges::copy(name, statistic.name);
            Form<kstat_named_t>::read(member, memberPlace, statistic);
            return names.insert(name).second;
        });
    }
    static void writeMembers(JsonWriter &writer, const NamedStatistics &value, const NamedStatistics &) {
        for (const kstat_named_t &statistic : value) {
            writer.name({statistic.name, strnlen(statistic.name, sizeof statistic.name)});
            Form<kstat_named_t>::write(writer, statistic, {});
        }
    }
};

template <>
struct Form<KernelReadFailure> {
    static void read(const Json &value, const Place &place, KernelReadFailure &into) {
        into.error = errnoIn(value, place);
    }
    static void write(JsonWriter &writer, const KernelReadFailure &value, const KernelReadFailure &) {
        writer.text(errnoName(value.error));
    }
};

inline constexpr std::string_view timeOfReading = "ks_snaptime";

/// Adds a sample to a record whose type, module and name are known.
inline void readSample(const Json &value, const Place &place, KernelRecord &record) {
    if (value.is_string()) {
        record.samples.emplace_back(KernelReadFailure{errnoIn(value, place)});
        return;
    }
    std::optional<KernelSample> blank = blankSample(record);
    if (!blank) {
        place.refuse("only vminfo, cpu_stat, KSTAT_TYPE_IO and KSTAT_TYPE_NAMED records have data");
    }
    KernelSample &sample = record.samples.emplace_back(*std::move(blank));
    const auto readData = [&](const Json &members) {
        std::visit([&]<class Data>(Data &data) { Form<Data>::read(members, place, data); }, sample);
    };
    const Json *const time = memberOf(value, timeOfReading);
    if (time == nullptr) {
        readData(value);
        return;
    }
    Form<hrtime_t>::read(*time, place.member(timeOfReading), sample.ks_snaptime.emplace());
    Json::object_t others = objectOf(value, place);
    others.erase(others.begin() +
                 (std::ranges::find(others, timeOfReading, &Json::object_t::value_type::first) - others.begin()));
    readData(others);
}

inline void writeSample(JsonWriter &writer, const KernelSample &sample) {
    if (const auto *const failed = std::get_if<KernelReadFailure>(&sample); failed != nullptr) {
        Form<KernelReadFailure>::write(writer, *failed, {});
        return;
    }
    writer.beginObject();
    std::visit(
        [&]<class Data>(const Data &data) {
            if constexpr (!std::same_as<Data, KernelReadFailure>) {
                Form<Data>::writeMembers(writer, data, Data());
            }
        },
        sample);
    if (sample.ks_snaptime) {
        writer.name(timeOfReading);
        writer.number(*sample.ks_snaptime);
    }
    writer.endObject();
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
        record.ks_ndata = partsOf(record.samples.front());
        const std::size_t usual = Usual<KernelRecord>::of(record).ks_data_size;
        record.ks_data_size =
            record.ks_data_size == 0 ? usual : std::min<std::size_t>(largestSize(record, usual), record.ks_data_size);
    }
}

} // namespace description
