#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarn {

/// One processor, from processor_info.
struct ProcessorInfo {
    std::int32_t processorId = 0;
    std::string processorType; ///< pi_processor_type, such as "sparcv9"
    std::string state;         ///< "online", or "offline" for every pi_state but P_ONLINE
    std::int32_t clockMHz = 0; ///< pi_clock
};

/// The processors in increasing id: as many as are configured, but no more than 128. Ids between them that are no
/// processor are passed over.
std::vector<ProcessorInfo> GetProcessors();

/// Nothing when GetProcessors has none of that id.
std::optional<ProcessorInfo> GetProcessorInfo(std::int32_t id);

} // namespace tarn
