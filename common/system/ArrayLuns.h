#pragma once

#include <array>
#include <cstddef>
#include <optional>

// How the LUNs of a two-controller array are told from other disks: by what they answer to INQUIRY.

namespace tarn {

// Standard INQUIRY data.
inline constexpr std::size_t inquiryVendorAt = 8;
inline constexpr std::size_t inquiryProductAt = 16;
inline constexpr std::size_t vendorSize = 8;
inline constexpr std::size_t productSize = 16;

// INQUIRY page 0xC0: the identity of the controller that owns the LUN.
inline constexpr std::size_t pageC0ControllerAt = 112;
inline constexpr std::size_t controllerIdSize = 16;

/// The names of an array, as its LUNs say them: what is longer is cut, what is shorter padded with blanks.
struct ArrayNames {
    ArrayNames(const char *controller1, const char *controller2, const char *vendorId, const char *productId);

    std::array<std::array<char, controllerIdSize>, 2> controllers;
    std::array<char, vendorSize> vendor;
    std::array<char, productSize> product;
};

enum class LunKind {
    data,
    access, // through which the array is managed
};

/// Nothing when the INQUIRY data, of 32 bytes at least, are not of a LUN of such an array.
std::optional<LunKind> lunKind(const ArrayNames &names, const unsigned char *inquiry);

/// Index of the controller that the page 0xC0, of 128 bytes at least, names. Nothing when it is neither.
std::optional<std::size_t> lunController(const ArrayNames &names, const unsigned char *pageC0);

/// The first LUN of a controller is its chosen one until the first access LUN replaces it. `chosen` is the kind of the
/// one that was chosen before.
constexpr bool isChosen(std::optional<LunKind> chosen, LunKind considered) {
    return !chosen || (considered == LunKind::access && chosen != LunKind::access);
}

} // namespace tarn
