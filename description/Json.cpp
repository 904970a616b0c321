#include "description/Json.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "description/HostDescriptionError.h"

namespace description {
namespace {

constexpr std::string_view letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";
constexpr std::string_view hexDigits = "0123456789abcdefABCDEF";

/// A text on one line, whatever it holds.
std::string quoted(const std::string &text) {
    constexpr std::size_t enough = 60;
    const std::string shown = text.size() > enough ? text.substr(0, enough) + "..." : text;
    return Json(shown).dump(-1, ' ', true, Json::error_handler_t::replace);
}

[[noreturn]] void refuseType(const char *expected, const Json &value, const Place &place) {
    place.refuse(std::string(expected) + " expected, not " + (value.is_null() ? "null" : value.type_name()));
}

unsigned digitValue(char digit) {
    const std::size_t index = hexDigits.find(digit);
    return static_cast<unsigned>(index < 16 ? index : index - 6);
}

} // namespace

std::string Place::text() const {
    if (around == nullptr) {
        return "";
    }
    const std::string before = around->text();
    if (name.data() == nullptr) {
        return before + "[" + std::to_string(index) + "]";
    }
    if (name.empty() || name.find_first_not_of(letters) != std::string_view::npos) {
        return before + "[" + quoted(std::string(name)) + "]";
    }
    return before + (before.empty() ? "" : ".") + std::string(name);
}

void Place::refuse(const std::string &reason) const {
    throw HostDescriptionError(around == nullptr ? reason : text() + ": " + reason);
}

Json parseJson(const std::string &text) {
    try {
        return Json::parse(text);
    } catch (const Json::out_of_range &error) {
        const std::string message = error.what(); // "[json...] number overflow parsing '1e999'"
        throw HostDescriptionError("not JSON: " + message.substr(message.find("number")));
    } catch (const Json::parse_error &error) {
        // "[json...] parse error at line 3, column 7: syntax error while parsing value - WHY; last read: '...'; ..."
        std::string message = error.what();
        const std::size_t at = message.find("line ");
        const std::size_t colon = message.find(": ", at);
        const std::size_t dash = message.find(" - ", colon);
        std::string why = message.substr(dash == std::string::npos ? colon + 2 : dash + 3);
        why = why.substr(0, why.find("; last read"));
        throw HostDescriptionError("not JSON: " + message.substr(at, colon - at) + ": " + why);
    }
}

const Json::object_t &objectOf(const Json &value, const Place &place) {
    if (!value.is_object()) {
        refuseType("object", value, place);
    }
    return value.get_ref<const Json::object_t &>();
}

const Json::array_t &listOf(const Json &value, const Place &place) {
    if (!value.is_array()) {
        refuseType("array", value, place);
    }
    return value.get_ref<const Json::array_t &>();
}

const std::string &textOf(const Json &value, const Place &place) {
    if (!value.is_string()) {
        refuseType("string", value, place);
    }
    return value.get_ref<const std::string &>();
}

std::uint64_t numberOf(const Json &value, const Place &place, std::int64_t least, std::uint64_t most) {
    if (!value.is_number()) {
        refuseType("number", value, place);
    }
    const std::string range = " in " + std::to_string(least) + " to " + std::to_string(most);
    if (value.is_number_float()) {
        place.refuse(value.dump() + " is not a whole number" + range);
    }
    if (value.is_number_unsigned()) {
        if (const auto number = value.get<std::uint64_t>(); number <= most) {
            return number;
        }
    } else if (const auto number = value.get<std::int64_t>(); number >= least) {
        return static_cast<std::uint64_t>(number);
    }
    place.refuse(value.dump() + " is not" + range);
}

std::vector<unsigned char> hexBytesOf(const Json &value, const Place &place) {
    const std::string &text = textOf(value, place);
    std::vector<unsigned char> bytes;
    for (std::size_t at = text.find_first_not_of(' '); at < text.size(); at = text.find_first_not_of(' ', at)) {
        const std::string_view pair = std::string_view(text).substr(at, 2);
        if (pair.size() != 2 || pair.find_first_not_of(hexDigits) != std::string_view::npos) {
            place.refuse(quoted(std::string(pair)) + " is no hexadecimal byte");
        }
        bytes.push_back(static_cast<unsigned char>(digitValue(pair[0]) << 4 | digitValue(pair[1])));
        at += 2;
    }
    return bytes;
}

std::vector<unsigned char> characterBytesOf(const Json &value, const Place &place) {
    if (!value.is_object()) {
        if (!value.is_string()) {
            refuseType("string or {\"hex\": ...}", value, place);
        }
        const std::string &text = value.get_ref<const std::string &>();
        return {text.begin(), text.end()};
    }
    std::optional<std::vector<unsigned char>> bytes;
    readEach(value, place, [&](const std::string &name, const Json &member, const Place &memberPlace) {
        if (name != "hex") {
            memberPlace.refuse("unknown member");
        }
        return !std::exchange(bytes, hexBytesOf(member, memberPlace)).has_value();
    });
    if (!bytes) {
        place.refuse("\"hex\" expected");
    }
    return *bytes;
}

void requireRoom(std::size_t count, std::size_t room, const char *what, const Place &place) {
    if (count > room) {
        place.refuse(std::to_string(count) + " " + what + " do not fit in " + std::to_string(room));
    }
}

const Json *memberOf(const Json &object, std::string_view name) {
    const auto &members = object.get_ref<const Json::object_t &>();
    const auto found =
        std::ranges::find(members, name, [](const auto &member) -> std::string_view { return member.first; });
    return found == members.end() ? nullptr : &found->second;
}

bool isGiven(const Json &value, std::initializer_list<std::string_view> path) {
    const Json *at = &value;
    for (const std::string_view name : path) {
        at = memberOf(*at, name);
        if (at == nullptr) {
            return false;
        }
    }
    return true;
}

int namedValueOf(std::string_view name, std::span<const NamedValue> names, const Place &place) {
    const auto found = std::ranges::find(names, name, &NamedValue::name);
    if (found == names.end()) {
        place.refuse("unknown name " + quoted(std::string(name)));
    }
    return found->value;
}

int errnoIn(const Json &value, const Place &place) {
    const std::string &name = textOf(value, place);
    const int error = errnoOf(name);
    if (error == 0) {
        place.refuse("unknown errno name " + quoted(name));
    }
    return error;
}

} // namespace description
