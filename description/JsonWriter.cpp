#include "description/JsonWriter.h"

#include <algorithm>
#include <array>
#include <optional>

#include <nlohmann/json.hpp>

#include "common/system/Hexadecimal.h"

namespace description {
namespace {

constexpr std::size_t indentationStep = 2;
constexpr std::string_view blanks = "                                "; // what is deeper has no more

/// By character: whether it stands in a JSON string as it is.
constexpr std::array<bool, 256> plainCharacters = [] {
    std::array<bool, 256> plain{};
    std::fill(plain.begin() + ' ', plain.begin() + '~' + 1, true);
    plain['"'] = plain['\\'] = false;
    return plain;
}();

/// Whether the text is a JSON string as it is. Most are, and the library takes 14 times as long for one.
bool isPlain(std::string_view text) {
    return std::ranges::all_of(text,
                               [](char character) { return plainCharacters[static_cast<unsigned char>(character)]; });
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

void JsonWriter::begin(char bracket, Layout layout) {
    separate();
    put(bracket);
    levels.push_back({layout, true});
    indentation += layout == Layout::lines ? indentationStep : 0;
}

void JsonWriter::end(char bracket) {
    if (levels.back().layout == Layout::lines) {
        indentation -= indentationStep;
        if (!levels.back().isEmpty) {
            newLine();
        }
    }
    put(bracket);
    levels.pop_back();
}

void JsonWriter::putBeyond(std::string_view piece) {
    handOver();
    if (piece.size() > part.size()) {
        sink(piece);
    } else {
        put(piece);
    }
}

void JsonWriter::handOver() {
    sink({part.data(), used});
    used = 0;
}

void JsonWriter::separate() {
    if (std::exchange(isNamed, false)) {
        return;
    }
    Level &level = levels.back();
    const bool isFirst = std::exchange(level.isEmpty, false);
    if (level.layout == Layout::lines) {
        put(isFirst ? "" : ",");
        newLine();
    } else if (!isFirst) {
        put(", ");
    }
}

void JsonWriter::newLine() {
    put('\n');
    put(blanks.substr(0, indentation));
}

void JsonWriter::name(std::string_view text) {
    this->text(text);
    put(": ");
    isNamed = true;
}

void JsonWriter::identifier(std::string_view quoted) {
    separate();
    put(quoted);
    isNamed = true;
}

void JsonWriter::text(std::string_view bytes) {
    if (isPlain(bytes)) {
        separate();
        quote(bytes);
    } else if (const std::optional<std::string> string = escaped(bytes)) {
        separate();
        put(*string);
    } else {
        beginObject();
        name("hex");
        hexBytes({reinterpret_cast<const unsigned char *>(bytes.data()), bytes.size()});
        endObject();
    }
}

void JsonWriter::quote(std::string_view plain) {
    put('"');
    put(plain);
    put('"');
}

void JsonWriter::hexBytes(std::span<const unsigned char> bytes, std::string_view separator) {
    separate();
    put('"');
    std::array<char, 32> piece; // of a name with a number for each of its bytes, all
    std::size_t length = 0;
    for (const unsigned char &byte : bytes) {
        if (length + 2 + separator.size() > piece.size()) {
            put({piece.data(), std::exchange(length, 0)});
        }
        if (&byte != bytes.data()) {
            length += separator.copy(piece.data() + length, separator.size());
        }
        const std::array<char, 2> digits = tarn::hexDigits(byte);
        piece[length++] = digits[0];
        piece[length++] = digits[1];
    }
    put({piece.data(), length});
    put('"');
}

} // namespace description
