#include "inventory/IdentityPages.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

#include "common/system/Hexadecimal.h"
#include "common/system/Printable.h"

namespace tarn {
namespace {

constexpr std::size_t designatorHeader = 4;

std::string_view textAt(Page page, std::size_t at, std::size_t size) {
    const Page field = page.subspan(std::min(at, page.size()));
    return {reinterpret_cast<const char *>(field.data()), std::min(size, field.size())};
}

bool isNaa(Page identifier) {
    const unsigned kind = identifier.empty() ? 0 : identifier[0] >> 4;
    return (kind == 6 && identifier.size() == 16) || ((kind == 2 || kind == 3 || kind == 5) && identifier.size() == 8);
}

struct Designator {
    std::size_t rank = 0; // 0: none
    std::string text;
};

enum CodeSet { binary = 1 };
enum DesignatorType { t10 = 1, eui64 = 2, naa = 3 };

Designator designatorOf(unsigned codeSet, unsigned type, Page identifier) {
    constexpr std::size_t rankOfEui = 0x100;
    constexpr std::size_t rankOfNaa = 0x200;
    const std::size_t size = identifier.size();
    if (type == naa && codeSet == binary && isNaa(identifier)) {
        return {rankOfNaa + size, "naa." + hexText(identifier)};
    }
    if (type == eui64 && codeSet == binary && (size == 8 || size == 12 || size == 16)) {
        return {rankOfEui + size, "eui." + hexText(identifier)};
    }
    if (type == t10) {
        const std::string text = identityText(textAt(identifier, 0, size));
        return {text.empty() ? std::size_t{0} : 1, "t10." + text};
    }
    return {};
}

} // namespace

std::string identityText(std::string_view field) {
    field = field.substr(0, field.find('\0'));
    const std::size_t first = field.find_first_not_of(' ');
    return first == std::string_view::npos ? std::string()
                                           : printable(field.substr(first, field.find_last_not_of(' ') + 1 - first));
}

StandardInquiry::StandardInquiry(Page page)
    : isPresent(!page.empty() && page[0] >> 5 == 0), vendor(identityText(textAt(page, 8, 8))),
      product(identityText(textAt(page, 16, 16))), revision(identityText(textAt(page, 32, 4))) {
}

std::string serialNumber(Page page) {
    const Page content = contentOf(page, pageOfSerialNumber);
    return identityText(textAt(content, 0, content.size()));
}

std::string bestDesignator(Page page) {
    Page rest = contentOf(page, pageOfDesignators);
    Designator best;
    while (rest.size() >= designatorHeader && rest[3] <= rest.size() - designatorHeader) {
        const bool isOfUnit = (rest[1] >> 4 & 3) == 0;
        Designator found = isOfUnit
                               ? designatorOf(rest[0] & 15U, rest[1] & 15U, rest.subspan(designatorHeader, rest[3]))
                               : Designator();
        if (found.rank > best.rank) {
            best = std::move(found);
        }
        rest = rest.subspan(designatorHeader + rest[3]);
    }
    return best.text;
}

std::string designatorInName(std::string_view diskName, std::string_view devicePath) {
    const std::size_t target = diskName.find('t');
    if (target == std::string_view::npos) {
        return {};
    }
    const std::string_view behind = diskName.substr(target + 1);
    std::string digits(behind.substr(0, behind.rfind('d')));
    std::ranges::transform(digits, digits.begin(), [](char digit) {
        return static_cast<char>(std::tolower(static_cast<unsigned char>(digit)));
    });
    if (digits.find_first_not_of("0123456789abcdef") != std::string::npos) {
        return {};
    }
    if (digits.size() == 32 && digits.front() == '6') {
        return "naa." + digits;
    }
    if (digits.size() == 16 && devicePath.find("/scsi_vhci/") != std::string_view::npos) {
        const bool isOfNaa = std::string_view("235").find(digits.front()) != std::string_view::npos;
        return (isOfNaa ? "naa." : "eui.") + digits;
    }
    return {};
}

} // namespace tarn
