#include "description/JsonWriter.h"

#include <algorithm>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

namespace description {
namespace {

constexpr std::size_t indentationStep = 2;

constexpr auto digitPairs = [] {
    constexpr std::string_view digits = "0123456789abcdef";
    std::array<std::array<char, 4>, 256> pairs{}; // with a blank
    for (std::size_t byte = 0; byte < pairs.size(); ++byte) {
        pairs[byte] = {digits[byte >> 4], digits[byte & 15], ' '};
    }
    return pairs;
}();

/// Whether the text is a JSON string as it is. Most are, so all of it is looked at without a branch for each character,
/// in blocks of which the compiler makes single instructions.
bool isPlain(std::string_view text) {
    constexpr std::size_t block = 16;
    const auto isSpecial = [](char character) {
        return static_cast<unsigned>(character < ' ') | static_cast<unsigned>(character > '~') |
               static_cast<unsigned>(character == '"') | static_cast<unsigned>(character == '\\');
    };
    unsigned special = 0;
    for (; text.size() >= block; text.remove_prefix(block)) {
        for (std::size_t i = 0; i < block; ++i) {
            special |= isSpecial(text[i]);
        }
    }
    for (const char character : text) {
        special |= isSpecial(character);
    }
    return special == 0;
}

/// The text as a JSON string. Nothing when it is not UTF-8, or has a zero.
std::optional<std::string> escaped(std::string_view text) {
    if (text.find('\0') != std::string_view::npos) {
        return std::nullopt;
    }
    try {
        return nlohmann::json(text).dump();
    } catch (const nlohmann::json::type_error &) {
        return std::nullopt;
    }
}

} // namespace

bool JsonWriter::isText(std::string_view bytes) {
    return isPlain(bytes) || escaped(bytes);
}

void JsonWriter::putBeyondBuffer(std::initializer_list<std::string_view> parts) {
    for (std::string_view part : parts) {
        while (!part.empty()) {
            if (used == buffer.size()) {
                flush();
            }
            const std::string_view fitting = part.substr(0, buffer.size() - used);
            copy(fitting);
            part.remove_prefix(fitting.size());
        }
    }
}

void JsonWriter::begin(char bracket, Layout layout) {
    separate();
    put(bracket);
    outerLevels.push_back(level);
    level = {layout, true};
    indentation += layout == Layout::lines ? indentationStep : 0;
}

void JsonWriter::end(char bracket) {
    if (level.layout == Layout::lines) {
        indentation -= indentationStep;
        if (!level.isEmpty) {
            newLine();
        }
    }
    put(bracket);
    level = outerLevels.back();
    outerLevels.pop_back();
}

/// What stands between two members or elements.
void JsonWriter::separateFromLast() {
    if (level.layout == Layout::lines) {
        if (!level.isEmpty) {
            put(',');
        }
        newLine();
    } else if (!level.isEmpty) {
        put(inlineSeparator);
    }
    level.isEmpty = false;
}

void JsonWriter::newLine() {
    static constexpr std::string_view blanks = "                                ";
    put('\n', blanks.substr(0, indentation));
}

void JsonWriter::name(std::string_view text) {
    separate();
    if (isPlain(text)) {
        put('"', text, std::string_view("\": "));
    } else {
        put(std::string_view(escaped(text).value()), std::string_view(": "));
    }
    isNamed = true;
}

void JsonWriter::text(std::string_view bytes) {
    if (isPlain(bytes)) {
        separate();
        put('"', bytes, '"');
    } else if (const std::optional<std::string> string = escaped(bytes)) {
        separate();
        put(std::string_view(*string));
    } else {
        beginObject();
        name(std::string_view("hex"));
        hexBytes({reinterpret_cast<const unsigned char *>(bytes.data()), bytes.size()});
        endObject();
    }
}

void JsonWriter::hexBytes(std::span<const unsigned char> bytes) {
    hex(bytes, true);
}

void JsonWriter::hexDigits(std::span<const unsigned char> bytes) {
    hex(bytes, false);
}

void JsonWriter::hex(std::span<const unsigned char> bytes, bool isSpaced) {
    separate();
    put('"');
    constexpr std::size_t most = 1024; // bytes for which room is made at once
    const std::size_t step = isSpaced ? 3 : 2;
    for (std::size_t from = 0; from < bytes.size(); from += most) {
        const std::span<const unsigned char> part = bytes.subspan(from, std::min(most, bytes.size() - from));
        makeRoom(3 * part.size());
        char *at = buffer.data() + used;
        for (const unsigned char byte : part) {
            std::memcpy(at, digitPairs[byte].data(), 3);
            at += step;
        }
        used += part.size() * step;
    }
    used -= isSpaced && !bytes.empty() ? 1 : 0; // nothing follows the last blank
    put('"');
}

} // namespace description
