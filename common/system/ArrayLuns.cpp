#include "common/system/ArrayLuns.h"

#include <algorithm>
#include <cstring>

namespace tarn {
namespace {

constexpr char accessLunProduct[] = "Universal Xport ";
static_assert(sizeof accessLunProduct - 1 == productSize);

template <std::size_t size>
std::array<char, size> padded(const char *text) {
    std::array<char, size> field;
    field.fill(' ');
    std::copy_n(text, std::min(std::strlen(text), size), field.begin());
    return field;
}

} // namespace

ArrayNames::ArrayNames(const char *controller1, const char *controller2, const char *vendorId, const char *productId)
    : controllers{padded<controllerIdSize>(controller1), padded<controllerIdSize>(controller2)},
      vendor(padded<vendorSize>(vendorId)), product(padded<productSize>(productId)) {
}

std::optional<LunKind> lunKind(const ArrayNames &names, const unsigned char *inquiry) {
    if (std::memcmp(inquiry + inquiryVendorAt, names.vendor.data(), vendorSize) != 0) {
        return std::nullopt;
    }
    if (std::memcmp(inquiry + inquiryProductAt, accessLunProduct, productSize) == 0) {
        return LunKind::access;
    }
    return std::memcmp(inquiry + inquiryProductAt, names.product.data(), productSize) == 0
               ? std::optional(LunKind::data)
               : std::nullopt;
}

std::optional<std::size_t> lunController(const ArrayNames &names, const unsigned char *pageC0) {
    for (std::size_t i = 0; i < names.controllers.size(); ++i) {
        if (std::memcmp(pageC0 + pageC0ControllerAt, names.controllers[i].data(), controllerIdSize) == 0) {
            return i;
        }
    }
    return std::nullopt;
}

} // namespace tarn
