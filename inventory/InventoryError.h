#pragma once

#include <stdexcept>

namespace tarn {

/// The host does not tell what was asked for. Its message reaches Java as a RuntimeException.
class InventoryError : public std::runtime_error {
public:
    using runtime_error::runtime_error;
};

} // namespace tarn
