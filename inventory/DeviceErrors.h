#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "common/system/KernelChain.h"

// The disk driver's own record of a device: what it is, and how often it failed.

namespace tarn {

/// Their order is that of DiskActivity.Errors' constructor.
inline constexpr std::array<std::string_view, 9> errorCountNames = {
    "Soft Errors", "Hard Errors",     "Transport Errors",           "Media Error", "Device Not Ready", "No Device",
    "Recoverable", "Illegal Request", "Predictive Failure Analysis"};

using ErrorCounts = std::array<std::uint32_t, errorCountNames.size()>;

/// The counts of one of those records; one that it does not have is 0. Nothing when it cannot be read.
std::optional<ErrorCounts> readErrorCounts(const KernelChain &chain, kstat_t *record);

/// What the driver knows of a device. Texts are empty, and the size 0, where it does not.
struct DriverIdentity {
    std::string vendor;
    std::string product;
    std::string revision;
    std::string serial;
    std::uint64_t size = 0; // in bytes
};

DriverIdentity readDriverIdentity(const KernelChain &chain, kstat_t *record);

/// The chain's records of device errors by the name of the instance, "sd0". Valid until the chain is updated.
std::unordered_map<std::string, kstat_t *> deviceErrorRecords(const KernelChain &chain);

} // namespace tarn
