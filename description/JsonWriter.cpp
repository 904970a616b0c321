#include "description/JsonWriter.h"

#include <algorithm>
#include <optional>

#include <nlohmann/json.hpp>

namespace description {
namespace {

constexpr std::size_t indentationStep = 2;
constexpr const char *digits = "0123456789abcdef";

bool isPlain(char character) {
    return character >= ' ' && character <= '~' && character != '"' && character != '\\';
}

/// The text as a JSON string. Nothing when it is not UTF-8.
std::optional<std::string> escaped(std::string_view text) {
    try {
        return nlohmann::json(text).dump();
    } catch (const nlohmann::json::type_error &) {
        return std::nullopt;
    }
}

} // namespace

bool JsonWriter::isText(std::string_view bytes) {
    return std::ranges::all_of(bytes, isPlain) || escaped(bytes);
}

void JsonWriter::begin(char bracket, Layout layout) {
    separate();
    json += bracket;
    levels.push_back({layout, true});
    indentation += layout == Layout::lines ? indentationStep : 0;
}

void JsonWriter::end(char bracket) {
    const Level level = levels.back();
    levels.pop_back();
    if (level.layout == Layout::lines) {
        indentation -= indentationStep;
        if (!level.isEmpty) {
            newLine();
        }
    }
    json += bracket;
}

/// What stands between two members or elements.
void JsonWriter::separate() {
    if (isNamed) {
        isNamed = false;
        return;
    }
    if (levels.empty()) {
        return;
    }
    Level &level = levels.back();
    if (!level.isEmpty) {
        json += ',';
    }
    if (level.layout == Layout::lines) {
        newLine();
    } else if (!level.isEmpty) {
        json += ' ';
    }
    level.isEmpty = false;
}

void JsonWriter::newLine() {
    json += '\n';
    json.append(indentation, ' ');
}

void JsonWriter::quote(std::string_view text) {
    json += '"';
    json += text;
    json += '"';
}

void JsonWriter::name(std::string_view text) {
    separate();
    if (std::ranges::all_of(text, isPlain)) {
        quote(text);
    } else {
        json += escaped(text).value();
    }
    json += ": ";
    isNamed = true;
}

void JsonWriter::text(std::string_view bytes) {
    if (std::ranges::all_of(bytes, isPlain)) {
        separate();
        quote(bytes);
    } else if (const std::optional<std::string> string = escaped(bytes)) {
        separate();
        json += *string;
    } else {
        beginObject();
        name("hex");
        hexBytes({reinterpret_cast<const unsigned char *>(bytes.data()), bytes.size()});
        endObject();
    }
}

void JsonWriter::hexBytes(std::span<const unsigned char> bytes) {
    separate();
    json += '"';
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i != 0) {
            json += ' ';
        }
        json += digits[bytes[i] >> 4];
        json += digits[bytes[i] & 15];
    }
    json += '"';
}

void JsonWriter::hexDigits(std::span<const unsigned char> bytes) {
    separate();
    json += '"';
    for (const unsigned char byte : bytes) {
        json += digits[byte >> 4];
        json += digits[byte & 15];
    }
    json += '"';
}

} // namespace description
