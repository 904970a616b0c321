#pragma once

#include "common/system/KernelChain.h"
#include "native/JavaError.h"

namespace tarn {

/// The kernel statistics chain for a method that cannot do without.
class KernelStatistics : public KernelChain {
public:
    /// Raises NativeError `failure` when the statistics cannot be opened.
    explicit KernelStatistics(const char *failure) {
        if (!isOpen()) {
            throw NativeError(failure);
        }
    }
};

} // namespace tarn
