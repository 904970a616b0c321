#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "common/system/KernelRecords.h"
#include "platform/solaris.h"

namespace tarn {

/// The kernel statistics chain, opened and closed with its scope.
///
///     const KernelChain statistics;
///     for (kstat_t *record = statistics.first(); record != nullptr; record = record->ks_next) ...
class KernelChain {
public:
    KernelChain() : control(kstat_open()) {
    }
    ~KernelChain() {
        if (isOpen()) {
            kstat_close(control);
        }
    }
    KernelChain(const KernelChain &) = delete;
    KernelChain &operator=(const KernelChain &) = delete;

    /// Nothing else may be asked of one that is not.
    bool isOpen() const {
        return control != nullptr;
    }

    kstat_t *first() const {
        return control->kc_chain;
    }

    /// The kernel's paging counters. Null when it keeps none.
    kstat_t *pagingCounters() const {
        return lookup(pagingModule, 0, pagingRecord);
    }

    /// Null when the kernel keeps no such record. A null name means any.
    kstat_t *lookup(const char *module, int instance, const char *name) const {
        // Older releases declare the texts as char *, newer ones as const char *: these arrays suit both.
        std::string moduleText(module);
        std::string nameText(name == nullptr ? "" : name);
        return kstat_lookup(control, moduleText.data(), instance, name == nullptr ? nullptr : nameText.data());
    }

    /// What the record holds now, as the published structure of its kind. Nothing when it cannot be read, or has not the
    /// first `used` bytes, up to the last field that the caller looks at: releases differ in what follows those.
    template <class Structure>
    std::optional<Structure> read(kstat_t *record, std::size_t used) const {
        Structure data{};
        return readInto(record, data) < used ? std::nullopt : std::optional(data);
    }

    /// Reads the record into the structure, as far as either goes. The bytes that the record has; nothing when it
    /// cannot be read, with errno.
    template <class Structure>
    std::optional<std::size_t> readInto(kstat_t *record, Structure &data) const {
        if (kstat_read(control, record, nullptr) == -1) {
            return std::nullopt;
        }
        std::memcpy(&data, record->ks_data, std::min(record->ks_data_size, sizeof data));
        return record->ks_data_size;
    }

    /// The statistics of a record of type KSTAT_TYPE_NAMED, as they are now. Nothing when it cannot be read, with errno.
    std::optional<std::vector<kstat_named_t>> readNamed(kstat_t *record) const {
        if (kstat_read(control, record, nullptr) == -1) {
            return std::nullopt;
        }
        std::vector<kstat_named_t> statistics(
            std::min<std::size_t>(record->ks_ndata, record->ks_data_size / sizeof(kstat_named_t)));
        if (!statistics.empty()) {
            std::memcpy(statistics.data(), record->ks_data, statistics.size() * sizeof(kstat_named_t));
        }
        return statistics;
    }

    /// Brings the chain up to what the kernel keeps now: records that are gone are freed, new ones are there. Whether there
    /// are; nothing when the kernel cannot be asked, and the chain is as it was.
    std::optional<bool> update() const {
        const kid_t chain = kstat_chain_update(control);
        return chain == -1 ? std::nullopt : std::optional(chain != 0);
    }

private:
    kstat_ctl_t *control;
};

} // namespace tarn
