#include "common/system/Utf8.h"

#include <algorithm>
#include <cstddef>

namespace tarn {
namespace {

unsigned byteAt(std::string_view text, std::size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
}

bool continues(unsigned byte) {
    return (byte & 0xc0) == 0x80;
}

/// Bytes of the UTF-8 sequence that the text begins with; 0 when it begins with none.
std::size_t sequenceLength(std::string_view text) {
    const unsigned first = byteAt(text, 0);
    if (first < 0x80) {
        return 1;
    }
    if (first < 0xc2 || first > 0xf4) {
        return 0;
    }
    const std::size_t length = first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
    for (std::size_t i = 1; i < length; ++i) {
        if (!continues(byteAt(text, i))) {
            return 0;
        }
    }
    const unsigned second = byteAt(text, 1);
    const bool isOverlong = (first == 0xe0 && second < 0xa0) || (first == 0xf0 && second < 0x90);
    const bool isNoCharacter = (first == 0xed && second >= 0xa0) || (first == 0xf4 && second >= 0x90);
    return isOverlong || isNoCharacter ? 0 : length;
}

void append(std::string &text, unsigned lead, unsigned code, unsigned continuations) {
    text += static_cast<char>(lead | code >> 6 * continuations);
    while (continuations-- > 0) {
        text += static_cast<char>(0x80 | (code >> 6 * continuations & 0x3f));
    }
}

/// Whether the text begins with a half of a pair: `kind` is 0xa0 for the first, 0xb0 for the second.
bool beginsWithHalf(std::string_view text, unsigned kind) {
    return byteAt(text, 0) == 0xed && (byteAt(text, 1) & 0xf0) == kind && continues(byteAt(text, 2));
}

/// The ten bits of a half.
unsigned halfBits(std::string_view text) {
    return (byteAt(text, 1) & 0x0f) << 6 | (byteAt(text, 2) & 0x3f);
}

} // namespace

std::optional<std::string> toModifiedUtf8(std::string_view text) {
    if (std::ranges::none_of(text, [](char c) { return static_cast<unsigned char>(c) >= 0xf0; })) {
        return std::nullopt;
    }
    std::string modified;
    while (!text.empty()) {
        const std::size_t length = sequenceLength(text);
        if (length == 0) {
            return std::nullopt;
        }
        if (length == 4) {
            const unsigned code = (byteAt(text, 0) & 0x07) << 18 | (byteAt(text, 1) & 0x3f) << 12 |
                                  (byteAt(text, 2) & 0x3f) << 6 | (byteAt(text, 3) & 0x3f);
            append(modified, 0xe0, 0xd800 + ((code - 0x10000) >> 10), 2);
            append(modified, 0xe0, 0xdc00 + (code & 0x3ff), 2);
        } else {
            modified += text.substr(0, length);
        }
        text.remove_prefix(length);
    }
    return modified;
}

std::optional<std::string> fromModifiedUtf8(std::string_view text) {
    constexpr std::size_t halfSize = 3;
    std::optional<std::string> plain;
    for (std::size_t at = 0; at < text.size();) {
        const std::string_view rest = text.substr(at);
        if (rest.size() < 2 * halfSize || !beginsWithHalf(rest, 0xa0) || !beginsWithHalf(rest.substr(halfSize), 0xb0)) {
            if (plain) {
                *plain += text[at];
            }
            ++at;
            continue;
        }
        if (!plain) {
            plain = text.substr(0, at);
        }
        append(*plain, 0xf0, 0x10000 + (halfBits(rest) << 10 | halfBits(rest.substr(halfSize))), 3);
        at += 2 * halfSize;
    }
    return plain;
}

} // namespace tarn
