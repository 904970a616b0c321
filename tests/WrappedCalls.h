#pragma once

#include <atomic>
#include <string>

#include "platform/solaris.h"

namespace tests {

/// Calls of the library's that the linker leads through the tests, answered as a test wants them.
struct WrappedCalls {
    bool refusesMemory = false;            ///< of a target mapping: calloc, which nothing else is taken from
    std::atomic<void *> mapping;           ///< the latest of them that has not been given back
    std::atomic<bool> isHeldAtNextAdapter; ///< a mapping was there when an adapter was opened
    HBA_UINT32 moreAdapters = 0;           ///< than the host has, as HBA_GetNumberOfAdapters tells it
    std::string adapterName;               ///< what HBA_GetAdapterName writes; empty, and it is the host's
};

extern WrappedCalls wrapped;

} // namespace tests
