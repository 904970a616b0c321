#include "inventory/DeviceErrors.h"

#include <algorithm>

#include "common/system/FieldText.h"
#include "inventory/IdentityPages.h"

namespace tarn {

std::optional<ErrorCounts> readErrorCounts(const KernelChain &chain, kstat_t *record) {
    const std::optional<std::vector<kstat_named_t>> statistics = chain.readNamed(record);
    if (!statistics) {
        return std::nullopt;
    }
    ErrorCounts counts{};
    const auto *next = errorCountNames.begin(); // drivers keep them in this order, among others
    for (const kstat_named_t &statistic : *statistics) {
        if (statistic.data_type != KSTAT_DATA_UINT32) {
            continue;
        }
        const std::string_view name = fieldText(statistic.name);
        const auto *const found =
            next != errorCountNames.end() && *next == name ? next : std::ranges::find(errorCountNames, name);
        if (found != errorCountNames.end()) {
            counts[static_cast<std::size_t>(found - errorCountNames.begin())] = statistic.value.ui32;
            next = found + 1;
        }
    }
    return counts;
}

DriverIdentity readDriverIdentity(const KernelChain &chain, kstat_t *record) {
    static constexpr std::pair<std::string_view, std::string DriverIdentity::*> texts[] = {
        {"Vendor", &DriverIdentity::vendor},
        {"Product", &DriverIdentity::product},
        {"Revision", &DriverIdentity::revision},
        {"Serial No", &DriverIdentity::serial},
    };
    DriverIdentity identity;
    for (const kstat_named_t &statistic : chain.readNamed(record).value_or(std::vector<kstat_named_t>())) {
        const std::string_view name = fieldText(statistic.name);
        if (name == "Size") { // a small one may be told in 32 bits
            identity.size = statistic.data_type == KSTAT_DATA_UINT64   ? statistic.value.ui64
                            : statistic.data_type == KSTAT_DATA_UINT32 ? statistic.value.ui32
                                                                       : 0;
        }
        for (const auto &[textName, text] : texts) {
            if (name == textName && statistic.data_type == KSTAT_DATA_CHAR) {
                identity.*text = identityText({statistic.value.c, sizeof statistic.value.c});
            }
        }
    }
    return identity;
}

std::unordered_map<std::string, kstat_t *> deviceErrorRecords(const KernelChain &chain) {
    std::unordered_map<std::string, kstat_t *> records;
    for (kstat_t *record = chain.first(); record != nullptr; record = record->ks_next) {
        if (isOfDeviceErrors(*record)) {
            const std::string_view name = fieldText(record->ks_name);
            records.emplace(name.substr(0, name.find(',')), record);
        }
    }
    return records;
}

} // namespace tarn
