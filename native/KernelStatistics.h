#pragma once

#include <kstat.h>

#include <string>

#include "native/JavaError.h"

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

    /// Copies the record's data into `buffer`, or with null into the record's own. False when it cannot be read.
    bool read(kstat_t *record, void *buffer = nullptr) const {
        return kstat_read(control, record, buffer) != -1;
    }

private:
    kstat_ctl_t *control;
};

} // namespace tarn
