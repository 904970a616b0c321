#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <optional>
#include <string>

#include "native/JavaError.h"
#include "platform/solaris.h"

namespace tarn {

/// The kernel statistics chain, opened and closed with its scope.
///
///     const KernelStatistics statistics("kstat open failed.");
///     for (kstat_t *record = statistics.first(); record != nullptr; record = record->ks_next) ...
class KernelStatistics {
public:
    /// Raises NativeError `failure` when the statistics cannot be opened.
    explicit KernelStatistics(const char *failure) : control(kstat_open()) {
        if (control == nullptr) {
            throw NativeError(failure);
        }
    }
    ~KernelStatistics() {
        kstat_close(control);
    }
    KernelStatistics(const KernelStatistics &) = delete;
    KernelStatistics &operator=(const KernelStatistics &) = delete;

    kstat_t *first() const {
        return control->kc_chain;
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
        if (kstat_read(control, record, nullptr) == -1 || record->ks_data_size < used) {
            return std::nullopt;
        }
        Structure data{};
        std::memcpy(&data, record->ks_data, std::min(record->ks_data_size, sizeof data));
        return data;
    }

private:
    kstat_ctl_t *control;
};

} // namespace tarn
