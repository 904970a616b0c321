#include "description/Json.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "description/HostDescriptionError.h"

namespace description {
namespace {

constexpr std::string_view letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";
constexpr std::string_view hexDigits = "0123456789abcdefABCDEF";

[[noreturn]] void refuseType(const char *expected, const Json &value, const Place &place) {
    place.refuse(std::string(expected) + " expected, not " + (value.is_null() ? "null" : value.type_name()));
}

unsigned digitValue(char digit) {
    const std::size_t index = hexDigits.find(digit);
    return static_cast<unsigned>(index < 16 ? index : index - 6);
}

/// The characters of a source, one after the other.
class Characters {
public:
    explicit Characters(const TextSource &textSource) : source(textSource) {
    }

    bool isAtEnd() {
        if (part.empty()) {
            part = source();
        }
        return part.empty();
    }

    /// The parser takes a zero for the end of the text, and would not see what is behind it.
    char current() const {
        if (part.front() == '\0') {
            throw HostDescriptionError("not JSON: byte " + std::to_string(passed + 1) + ": a zero");
        }
        return part.front();
    }

    void advance() {
        part.remove_prefix(1);
        ++passed;
    }

private:
    const TextSource &source;
    std::string_view part;
    std::size_t passed = 0;
};

/// The same as the parser wants it. Without characters it is the end.
class CharacterIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char *;
    using reference = char;

    explicit CharacterIterator(Characters *over = nullptr) : characters(over) {
    }

    char operator*() const {
        return characters->current();
    }
    CharacterIterator &operator++() {
        characters->advance();
        return *this;
    }
    bool operator==(const CharacterIterator &) const {
        return characters->isAtEnd(); // nothing but the end is ever compared with
    }

private:
    Characters *characters;
};

/// Makes the value of what the parser finds, and knows where it is when something is wrong.
class TreeBuilder {
public:
    explicit TreeBuilder(Json &into) : root(into) {
    }

    bool null() {
        add(nullptr);
        return true;
    }
    bool boolean(bool value) {
        add(value);
        return true;
    }
    bool number_integer(Json::number_integer_t value) {
        add(value);
        return true;
    }
    bool number_unsigned(Json::number_unsigned_t value) {
        add(value);
        return true;
    }
    bool number_float(Json::number_float_t value, const std::string &) {
        add(value);
        return true;
    }
    bool string(const std::string &value) {
        add(value);
        return true;
    }
    bool binary(const Json::binary_t &) {
        return false; // there is none in a text
    }
    bool start_object(std::size_t) {
        open(Json::object());
        return true;
    }
    bool key(const std::string &name) {
        outer.back()->get_ref<Json::object_t &>()[name];
        return true;
    }
    bool end_object() {
        outer.pop_back();
        return true;
    }
    bool start_array(std::size_t) {
        open(Json::array());
        return true;
    }
    bool end_array() {
        outer.pop_back();
        return true;
    }

    [[noreturn]] bool parse_error(std::size_t, const std::string &token, const Json::out_of_range &) {
        refuseHere(Place(), 0, inQuotes(token) + " is too large a number");
    }

    [[noreturn]] bool parse_error(std::size_t, const std::string &, const Json::exception &error) {
        // "[json...] parse error at line 3, column 7: syntax error while parsing value - WHY; last read: '...'; ..."
        const std::string_view message = error.what();
        const std::size_t at = message.find("line ");
        const std::size_t colon = message.find(": ", at);
        const std::size_t dash = message.find(" - ", colon);
        std::string_view why = message.substr(dash == std::string_view::npos ? colon + 2 : dash + 3);
        why = why.substr(0, why.find("; last read"));
        throw HostDescriptionError(
            std::string("not JSON: ").append(message.substr(at, colon - at)).append(": ").append(why));
    }

private:
    template <class Value>
    Json &add(Value &&value) {
        if (outer.empty()) {
            return root = std::forward<Value>(value);
        }
        if (outer.back()->is_array()) {
            return outer.back()->get_ref<Json::array_t &>().emplace_back(std::forward<Value>(value));
        }
        return outer.back()->get_ref<Json::object_t &>().back().second = std::forward<Value>(value);
    }

    void open(Json &&empty) {
        constexpr std::size_t mostLevels = 32; // a description has ten; each takes memory for a single bracket
        if (outer.size() == mostLevels) {
            refuseHere(Place(), 0, "more than " + std::to_string(mostLevels) + " levels");
        }
        outer.push_back(&add(std::move(empty)));
    }

    /// Refuses the value that comes next; `level` of its levels have led to `place`.
    [[noreturn]] void refuseHere(const Place &place, std::size_t level, const std::string &reason) const {
        if (level == outer.size()) {
            place.refuse(reason);
        }
        const Json &around = *outer[level];
        if (around.is_array()) {
            const bool isInnermost = level + 1 == outer.size();
            refuseHere(place.element(isInnermost ? around.size() : around.size() - 1), level + 1, reason);
        }
        refuseHere(place.member(around.get_ref<const Json::object_t &>().back().first), level + 1, reason);
    }

    Json &root;
    std::vector<Json *> outer; // the objects and lists that are open
};

/// A name no longer than a message has room for.
std::string shortened(std::string_view name) {
    constexpr std::size_t enough = 60;
    return name.size() > enough ? std::string(name.substr(0, enough)) + "..." : std::string(name);
}

} // namespace

std::string inQuotes(std::string_view text) {
    constexpr std::size_t enough = 80; // with quotes and escapes
    std::string kept = shortened(text);
    std::string shown = Json(kept).dump(-1, ' ', true, Json::error_handler_t::replace);
    for (std::size_t size = kept.size(); shown.size() > enough;) {
        size = size / 2;
        kept = std::string(text.substr(0, size)) + "...";
        shown = Json(kept).dump(-1, ' ', true, Json::error_handler_t::replace);
    }
    return shown;
}

void requireNoZero(std::string_view text, const Place &place) {
    if (text.find('\0') != std::string_view::npos) {
        place.refuse("a text holds no zero");
    }
}

std::string Place::text() const {
    if (around == nullptr) {
        return "";
    }
    const std::string before = around->text();
    if (name.data() == nullptr) {
        return before + "[" + std::to_string(index) + "]";
    }
    if (name.empty() || name.find_first_not_of(letters) != std::string_view::npos) {
        return before + "[" + inQuotes(name) + "]";
    }
    return before + (before.empty() ? "" : ".") + shortened(name);
}

void Place::refuse(const std::string &reason) const {
    throw HostDescriptionError(around == nullptr ? reason : text() + ": " + reason);
}

Json parseJson(const TextSource &source) {
    Json value;
    TreeBuilder builder(value);
    Characters characters(source);
    Json::sax_parse(CharacterIterator(&characters), CharacterIterator(), &builder);
    return value;
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
            place.refuse(inQuotes(pair) + " is no hexadecimal byte");
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
        requireNoZero(text, place);
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
        place.refuse("unknown name " + inQuotes(name));
    }
    return found->value;
}

int errnoIn(const Json &value, const Place &place) {
    const std::string &name = textOf(value, place);
    const int error = errnoOf(name);
    if (error == 0) {
        place.refuse("unknown errno name " + inQuotes(name));
    }
    return error;
}

} // namespace description
