#include <cerrno>
#include <cstring>
#include <string>
#include <unordered_set>

#include "common/system/FieldText.h"
#include "common/system/KernelChain.h"
#include "record/Recorder.h"

// The kernel statistics that the library reads.

namespace record {
namespace {

/// The bytes that the record has; nothing when it cannot be read, with errno.
template <class Data>
std::optional<std::size_t> readInto(const tarn::KernelChain &chain, kstat_t *source, Data &data) {
    return chain.readInto(source, data);
}

/// Those of the types that a description has, and of names that it can have.
std::optional<std::size_t> readInto(const tarn::KernelChain &chain, kstat_t *source,
                                    description::NamedStatistics &statistics) {
    std::optional<description::NamedStatistics> told = chain.readNamed(source);
    if (!told) {
        return std::nullopt;
    }
    statistics = *std::move(told);
    std::unordered_set<std::string> names;
    std::erase_if(statistics, [&](const kstat_named_t &statistic) {
        const std::string name(tarn::fieldText(statistic.name));
        return statistic.data_type > KSTAT_DATA_UINT64 || !description::JsonWriter::isText(name) ||
               !names.insert(name).second;
    });
    return statistics.size() * sizeof(kstat_named_t);
}

/// Reads the record once more. What it holds is a sample of the kind that a description has of such records; of others
/// that they cannot be read.
void addSample(const tarn::KernelChain &chain, kstat_t *source, description::KernelRecord &record, Report &report) {
    const auto refuse = [&](int error) {
        report.notRead("kstat", tarn::nameOf(*source), errnoText(error));
        record.samples.emplace_back(description::KernelReadFailure{error});
    };
    std::optional<description::KernelSample> sample = description::blankSample(*source);
    if (!sample) {
        refuse(ENOTSUP);
        return;
    }
    errno = 0;
    const std::optional<std::size_t> size =
        std::visit([&](auto &data) { return readInto(chain, source, data); }, *sample);
    if (!size || *size == 0) {
        refuse(errno == 0 ? ENXIO : errno);
        return;
    }
    record.ks_snaptime = source->ks_snaptime;
    const std::size_t whole = std::holds_alternative<description::NamedStatistics>(*sample)
                                  ? *size
                                  : std::visit([](const auto &data) { return sizeof data; }, *sample);
    record.ks_data_size = std::min(*size, whole);
    record.samples.push_back(*std::move(sample));
}

} // namespace

void recordKernelStatistics(description::Host &host, Report &report) {
    const tarn::KernelChain chain;
    if (!chain.isOpen()) {
        report.notRead("kstat", "all of it", errnoText(errno));
        return;
    }
    std::vector<description::Sparse<description::KernelRecord>> &records = host.kstat.emplace();
    kstat_t *const pagingCounters = chain.pagingCounters();
    std::optional<std::size_t> pagingRecord;
    for (kstat_t *source = chain.first(); source != nullptr; source = source->ks_next) {
        if (!tarn::isOfInterest(*source)) {
            continue;
        }
        if (source == pagingCounters) {
            pagingRecord = records.size();
        }
        description::KernelRecord &record = records.emplace_back().edit();
        static_cast<kstat_t &>(record) = {};
        record.ks_crtime = source->ks_crtime;
        record.ks_kid = source->ks_kid;
        std::memcpy(record.ks_module, source->ks_module, sizeof record.ks_module);
        record.ks_instance = source->ks_instance;
        std::memcpy(record.ks_name, source->ks_name, sizeof record.ks_name);
        record.ks_type = source->ks_type;
        std::memcpy(record.ks_class, source->ks_class, sizeof record.ks_class);
        record.ks_flags = source->ks_flags;
        if (source != pagingCounters) {
            addSample(chain, source, record, report);
        }
    }
    if (pagingRecord) {
        // The counters are sums; only their difference over one second tells something.
        description::KernelRecord &record = records[*pagingRecord].edit();
        addSample(chain, pagingCounters, record, report);
        if (!std::holds_alternative<description::KernelReadFailure>(record.samples.front())) {
            solaris::sleep(1);
            addSample(chain, pagingCounters, record, report);
        }
    }
    report.section("kstat", counted(records.size(), "record"));
}

} // namespace record
