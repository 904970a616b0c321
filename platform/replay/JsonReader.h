#pragma once

#include <algorithm>
#include <array>
#include <bitset>
#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <hbaapi.h>
#include <nlohmann/json.hpp>

#include "platform/replay/Names.h"

// How a description becomes structures. Each structure lists its members once, in a table:
//
//     template <>
//     inline constexpr auto members<dk_geom> = table<dk_geom>(MEMBER(dk_geom, dkg_ncyl), MEMBER(dk_geom, dkg_acyl));
//
// and Reader<T> reads whatever type a member has, with its range. What does not fit is refused at its place.

namespace replay {

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

/// Parses a text. Raises HostDescriptionError that names line and column.
Json parseJson(const std::string &text);

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

/// Whether the path of members leads to a value.
bool isGiven(const Json &value, std::initializer_list<std::string_view> path);

/// The number that a name stands for. Refuses any other name.
int namedValueOf(std::string_view name, std::span<const NamedValue> names, const Place &place);

/// The errno that a text names.
int errnoOf(const Json &value, const Place &place);

template <class T>
struct Reader;

template <class T>
void read(const Json &value, const Place &place, T &into) {
    Reader<T>::read(value, place, into);
}

/// Reads an object of freely named members, one after the other.
template <class Each>
void readEach(const Json &value, const Place &place, const Each &each) {
    for (const auto &[name, member] : objectOf(value, place)) {
        const Place memberPlace = place.member(name);
        if (!each(name, member, memberPlace)) {
            memberPlace.refuse("given twice");
        }
    }
}

/// One member of a described structure: its name, and how it is read.
template <class T>
struct Member {
    std::string_view name;
    void (*read)(const Json &, const Place &, T &);
};

template <auto Field, class T>
constexpr Member<T> memberRow(std::string_view name) {
    return {name, [](const Json &value, const Place &place, T &into) { replay::read(value, place, into.*Field); }};
}

template <auto Field, const auto &names, class T>
constexpr Member<T> namedMemberRow(std::string_view name) {
    return {name, [](const Json &value, const Place &place, T &into) {
                using Type = std::remove_reference_t<decltype(into.*Field)>;
                into.*Field = static_cast<Type>(namedValueOf(textOf(value, place), names, place));
            }};
}

#define MEMBER(Type, name) memberRow<&Type::name, Type>(#name)
#define NAMED_MEMBER(Type, name, names) namedMemberRow<&Type::name, names, Type>(#name)

template <class T>
constexpr auto table(std::convertible_to<Member<T>> auto... rows) {
    return std::array<Member<T>, sizeof...(rows)>{rows...};
}

/// The table of a structure's members.
template <class T>
inline constexpr std::nullptr_t members = nullptr;

template <class T>
concept Described = !std::same_as<std::remove_cv_t<decltype(members<T>)>, std::nullptr_t>;

/// What a structure needs once its members are read: defaults, and what spans several of them.
template <class T>
void complete(const Json &, const Place &, T &) {
}

template <Described T>
struct Reader<T> {
    static void read(const Json &value, const Place &place, T &into) {
        std::bitset<members<T>.size()> given;
        for (const auto &[name, member] : objectOf(value, place)) {
            const Place memberPlace = place.member(name);
            std::size_t row = 0;
            while (row < members<T>.size() && members<T>[row].name != name) {
                ++row;
            }
            if (row == members<T>.size()) {
                memberPlace.refuse("unknown member");
            }
            if (given[row]) {
                memberPlace.refuse("given twice");
            }
            given[row] = true;
            members<T>[row].read(member, memberPlace, into);
        }
        complete<T>(value, place, into);
    }
};

template <std::integral T>
struct Reader<T> {
    static void read(const Json &value, const Place &place, T &into) {
        // A 64-bit field takes both readings of its bits.
        using Range = std::numeric_limits<T>;
        constexpr bool wide = sizeof(T) == sizeof(std::uint64_t);
        constexpr std::int64_t least = wide ? std::numeric_limits<std::int64_t>::min() : Range::min();
        constexpr std::uint64_t most = wide ? std::numeric_limits<std::uint64_t>::max() : Range::max();
        into = static_cast<T>(numberOf(value, place, least, most));
    }
};

template <>
struct Reader<std::string> {
    static void read(const Json &value, const Place &place, std::string &into) {
        into = textOf(value, place);
    }
};

template <std::size_t size>
struct Reader<char[size]> {
    static void read(const Json &value, const Place &place, char (&into)[size]) {
        const std::vector<unsigned char> bytes = characterBytesOf(value, place);
        requireRoom(bytes.size(), size, "bytes", place);
        std::ranges::copy(bytes, reinterpret_cast<unsigned char *>(into));
    }
};

template <>
struct Reader<HBA_FC4TYPES> {
    static void read(const Json &value, const Place &place, HBA_FC4TYPES &into) {
        const std::vector<unsigned char> bytes = hexBytesOf(value, place);
        requireRoom(bytes.size(), sizeof into.bits, "bytes", place);
        std::ranges::copy(bytes, into.bits);
    }
};

template <>
struct Reader<HBA_WWN> {
    static void read(const Json &value, const Place &place, HBA_WWN &into) {
        const std::vector<unsigned char> bytes = hexBytesOf(value, place);
        if (textOf(value, place).size() != 2 * sizeof into.wwn || bytes.size() != sizeof into.wwn) {
            place.refuse("16 hexadecimal digits expected");
        }
        std::ranges::copy(bytes, into.wwn);
    }
};

template <class T>
struct Reader<std::optional<T>> {
    static void read(const Json &value, const Place &place, std::optional<T> &into) {
        Reader<T>::read(value, place, into.emplace());
    }
};

template <class T>
struct Reader<std::vector<T>> {
    static void read(const Json &value, const Place &place, std::vector<T> &into) {
        const Json::array_t &list = listOf(value, place);
        into = std::vector<T>(list.size());
        for (std::size_t i = 0; i < list.size(); ++i) {
            Reader<T>::read(list[i], place.element(i), into[i]);
        }
    }
};

/// A list of fewer elements than the field has leaves the rest as it is.
template <class T, std::size_t size>
struct Reader<T[size]> {
    static void read(const Json &value, const Place &place, T (&into)[size]) {
        const Json::array_t &list = listOf(value, place);
        requireRoom(list.size(), size, "elements", place);
        for (std::size_t i = 0; i < list.size(); ++i) {
            Reader<T>::read(list[i], place.element(i), into[i]);
        }
    }
};

} // namespace replay
