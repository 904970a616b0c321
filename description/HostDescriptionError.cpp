#include "description/HostDescriptionError.h"

#include <cstdint>
#include <string>

namespace description {
namespace {

/// How many bytes at the start of the text are one printable character in UTF-8; 0 when there is none.
std::size_t printableAt(std::string_view text) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    if (byte(0) < 0x80) {
        return byte(0) >= ' ' && byte(0) != 0x7F ? 1 : 0;
    }
    const std::size_t length = byte(0) < 0xC2 ? 0 : byte(0) < 0xE0 ? 2 : byte(0) < 0xF0 ? 3 : byte(0) < 0xF5 ? 4 : 0;
    if (length == 0 || length > text.size()) {
        return 0;
    }
    std::uint32_t character = byte(0) & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80) {
            return 0;
        }
        character = character << 6 | (byte(i) & 0x3FU);
    }
    constexpr std::uint32_t least[] = {0, 0, 0xA0, 0x800, 0x10000}; // below are controls and longer ways to write them
    const bool isSurrogate = character >= 0xD800 && character < 0xE000;
    const bool isSeparatorOrDirection = (character >= 0x2028 && character <= 0x202E) ||
                                        (character >= 0x2066 && character <= 0x2069) || character == 0xFEFF;
    return character < least[length] || character > 0x10FFFF || isSurrogate || isSeparatorOrDirection ? 0 : length;
}

/// The text in no more than `room` bytes, where what is not printable stands as "\x1b". What is too long loses its end.
std::string printable(std::string_view text, std::size_t room) {
    constexpr const char *digits = "0123456789abcdef";
    constexpr std::string_view cut = "...";
    std::string shown;
    std::size_t whole = 0; // of what is shown, with the cut behind it
    while (!text.empty()) {
        const std::size_t length = printableAt(text);
        if (length == 0) {
            const auto byte = static_cast<unsigned char>(text.front());
            shown += {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
        } else {
            shown += text.substr(0, length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
        if (shown.size() > room) {
            return shown.substr(0, whole).append(cut);
        }
        whole = shown.size() <= room - cut.size() ? shown.size() : whole;
    }
    return shown;
}

std::string endOf(std::string_view path) {
    constexpr std::size_t most = 80;
    return path.size() <= most ? std::string(path) : "..." + std::string(path.substr(path.size() - most));
}

} // namespace

HostDescriptionError::HostDescriptionError(std::string_view message)
    : std::runtime_error(printable(message, mostCharacters)) {
}

HostDescriptionError::HostDescriptionError(std::string_view path, std::string_view message)
    : HostDescriptionError(endOf(path).append(": ").append(message)) {
}

} // namespace description
