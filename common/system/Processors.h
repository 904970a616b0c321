#pragma once

#include <algorithm>

#include "platform/solaris.h"

namespace tarn {

/// The largest id a processor can have on this system.
inline long largestProcessorId() {
    constexpr long largestKnown = 4095; // beyond the ids of any SPARC; for a system that does not tell its own limit
    constexpr long largestProbed = 1'048'575; // so that no answer of the system makes the probing endless
    const long largest = solaris::sysconf(_SC_CPUID_MAX);
    return largest < 0 ? largestKnown : std::min(largest, largestProbed);
}

/// Finds the processors that the system is configured with, `most` at most, by asking one id after the other. `each`
/// takes the id and what the system tells of it.
template <class Each>
void forEachProcessor(long most, Each each) {
    long missing = std::min(solaris::sysconf(_SC_NPROCESSORS_CONF), most);
    const long largestId = largestProcessorId();
    for (processorid_t id = 0; missing > 0 && id <= largestId; ++id) {
        processor_info_t information{};
        if (solaris::processor_info(id, &information) != -1) {
            each(id, information);
            --missing;
        }
    }
}

} // namespace tarn
