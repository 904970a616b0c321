#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "description/Host.h"
#include "description/Names.h"

// The reading of JSON values. What does not fit is refused at its place.

namespace description {

/// The members of a JSON object in their order, each as often as it is given, so that a second one can be refused.
template <class Key, class Value, class Compare, class Allocator>
struct EveryMember : nlohmann::ordered_map<Key, Value, Compare, Allocator> {
    using nlohmann::ordered_map<Key, Value, Compare, Allocator>::ordered_map;

    Value &operator[](const Key &key) {
        this->push_back({key, Value()});
        return this->back().second;
    }
};

using Json = nlohmann::basic_json<EveryMember>;

/// Where in a description a value stands: "disks[3].geometry.dkg_nhead".
class Place {
public:
    Place() = default;

    /// Both refer to this place and to the name, and live no longer than they do.
    Place member(std::string_view named) const {
        return {this, named, 0};
    }
    Place element(std::size_t at) const {
        return {this, {}, at};
    }

    std::string text() const;

    /// Raises HostDescriptionError with the place and the reason.
    [[noreturn]] void refuse(const std::string &reason) const;

private:
    Place(const Place *outer, std::string_view named, std::size_t at) : around(outer), name(named), index(at) {
    }

    const Place *around = nullptr;
    std::string_view name;
    std::size_t index = 0;
};

/// Parses a text. Raises HostDescriptionError that names line and column, or the member.
Json parseJson(const TextSource &source);

/// A text as a message shows it: quoted, escaped, and cut where it is long.
std::string inQuotes(std::string_view text);

/// Refuses a string with a zero in it, which would end there for every call. Raw bytes may have one.
void requireNoZero(std::string_view text, const Place &place);

/// The value as an object, list or text. Refuse any other type.
const Json::object_t &objectOf(const Json &value, const Place &place);
const Json::array_t &listOf(const Json &value, const Place &place);
const std::string &textOf(const Json &value, const Place &place);

/// The bits of a whole number in the range. Refuses all else.
std::uint64_t numberOf(const Json &value, const Place &place, std::int64_t least, std::uint64_t most);

/// The bytes of a text of two-digit hexadecimal numbers, which blanks may separate.
std::vector<unsigned char> hexBytesOf(const Json &value, const Place &place);

/// The bytes of a character field: a text, or {"hex": "41 09 ff"}.
std::vector<unsigned char> characterBytesOf(const Json &value, const Place &place);

/// Refuses more than there is room for.
void requireRoom(std::size_t count, std::size_t room, const char *what, const Place &place);

/// The first member of that name. Null when there is none.
const Json *memberOf(const Json &object, std::string_view name);

/// Whether the path of members leads to a value.
bool isGiven(const Json &value, std::initializer_list<std::string_view> path);

/// The number that a name stands for. Refuses any other name.
int namedValueOf(std::string_view name, std::span<const NamedValue> names, const Place &place);

/// The errno that a text names.
int errnoIn(const Json &value, const Place &place);

/// Reads an object of freely named members, one after the other.
template <class Each>
void readEach(const Json &value, const Place &place, const Each &each) {
    for (const auto &[name, member] : objectOf(value, place)) {
        const Place memberPlace = place.member(name);
        requireNoZero(name, memberPlace);
        if (!each(name, member, memberPlace)) {
            memberPlace.refuse("given twice");
        }
    }
}

} // namespace description
