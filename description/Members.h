#pragma once

#include <algorithm>
#include <array>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "description/Host.h"
#include "description/Json.h"
#include "description/JsonWriter.h"

// How structures and JSON become each other. Each structure lists its members once, in a table:
//
//     template <>
//     inline constexpr auto members<dk_geom> = table<dk_geom>(MEMBER(dk_geom, dkg_ncyl), MEMBER(dk_geom, dkg_acyl));
//
// and Form<T> says for every type that a member may have how it is read, with its range, and how it is written. A
// member is written when it differs from what it is when it is left out.

namespace description {

/// read(value, place, into) refuses what does not fit. write(writer, value, usual) writes the value, of whose members
/// those that are as in `usual` are left out. isSame(value, usual) tells whether the whole can be left out.
template <class T>
struct Form;

/// One member of a described structure.
template <class T>
struct Member {
    std::string_view name;
    void (*read)(const Json &, const Place &, T &);
    bool (*isSame)(const T &, const T &);
    void (*write)(JsonWriter &, const T &, const T &);
};

/// A member whose form `FieldForm` is, and that Field{}(structure) finds.
template <class T, class Field, class FieldForm>
constexpr Member<T> memberRow(std::string_view name) {
    return {name, [](const Json &value, const Place &place, T &into) { FieldForm::read(value, place, Field{}(into)); },
            [](const T &value, const T &usual) { return FieldForm::isSame(Field{}(value), Field{}(usual)); },
            [](JsonWriter &writer, const T &value, const T &usual) {
                FieldForm::write(writer, Field{}(value), Field{}(usual));
            }};
}

template <auto pointer>
struct FieldAt {
    auto &operator()(auto &structure) const {
        return structure.*pointer;
    }
};

template <class T, class Field>
using FormOf = Form<std::remove_reference_t<decltype(Field{}(std::declval<T &>()))>>;

template <class T, class Field>
constexpr Member<T> memberRow(std::string_view name) {
    return memberRow<T, Field, FormOf<T, Field>>(name);
}

/// A number with published names. One that has none stands for itself.
template <const auto &names>
struct NamedForm {
    template <std::integral T>
    static void read(const Json &value, const Place &place, T &into) {
        if (value.is_number()) {
            Form<T>::read(value, place, into);
        } else {
            into = static_cast<T>(namedValueOf(textOf(value, place), names, place));
        }
    }
    static bool isSame(auto value, auto usual) {
        return value == usual;
    }
    static void write(JsonWriter &writer, auto value, auto) {
        const auto found = std::ranges::find(names, int{value}, &NamedValue::value);
        if (found == std::end(names)) {
            writer.number(value);
        } else {
            writer.text(found->name);
        }
    }
};

/// A map by numbers that have names.
template <const auto &names>
struct ByNameForm {
    template <class Value>
    static void read(const Json &value, const Place &place, std::map<int, Value> &into) {
        readEach(value, place, [&](const std::string &name, const Json &member, const Place &memberPlace) {
            const auto [added, isNew] = into.try_emplace(namedValueOf(name, names, memberPlace));
            Form<Value>::read(member, memberPlace, added->second);
            return isNew;
        });
    }
    static bool isSame(const auto &value, const auto &) {
        return value.empty();
    }
    template <class Value>
    static void write(JsonWriter &writer, const std::map<int, Value> &value, const std::map<int, Value> &) {
        writer.beginObject();
        for (const NamedValue &named : names) {
            if (const auto found = value.find(named.value); found != value.end()) {
                writer.name(named.name);
                Form<Value>::write(writer, found->second, Value());
            }
        }
        writer.endObject();
    }
};

inline void takeAnyName(std::string_view, const Place &) {
}

/// A map by texts; `requireName` refuses those that are no names of it.
template <class Value, class ValueForm = Form<Value>, Layout layout = Layout::inline_, auto requireName = takeAnyName>
struct ByTextForm {
    static void read(const Json &value, const Place &place, ByText<Value> &into) {
        readEach(value, place, [&](const std::string &name, const Json &member, const Place &memberPlace) {
            requireName(name, memberPlace);
            const auto [added, isNew] = into.try_emplace(name);
            ValueForm::read(member, memberPlace, added->second);
            return isNew;
        });
    }
    static bool isSame(const ByText<Value> &value, const ByText<Value> &) {
        return value.empty();
    }
    static void write(JsonWriter &writer, const ByText<Value> &value, const ByText<Value> &) {
        writer.beginObject(layout);
        for (const auto &[name, member] : value) {
            writer.name(name);
            ValueForm::write(writer, member, Value());
        }
        writer.endObject();
    }
};

#define MEMBER(Type, name) memberRow<Type, FieldAt<&Type::name>>(#name)
#define FORMED_MEMBER(Type, name, Form) memberRow<Type, FieldAt<&Type::name>, Form>(#name)

template <class T>
constexpr auto table(std::convertible_to<Member<T>> auto... rows) {
    return std::array<Member<T>, sizeof...(rows)>{rows...};
}

/// The table of a structure's members. They are read in its order, whatever the order of the description.
template <class T>
inline constexpr std::nullptr_t members = nullptr;

template <class T>
concept Described = !std::same_as<std::remove_cv_t<decltype(members<T>)>, std::nullptr_t>;

/// What a structure is whose members are all left out. Defaults may depend on the structure's other members.
template <class T>
struct Usual {
    static const T &of(const T &) {
        static const T blank{};
        return blank;
    }
};

/// What a structure needs once its members are read: defaults, and what spans several of them.
template <class T>
void complete(const Json &, const Place &, T &) {
}

template <Described T>
struct Form<T> {
    static void read(const Json &value, const Place &place, T &into) {
        std::array<const Json *, members<T>.size()> given{};
        for (const auto &[name, member] : objectOf(value, place)) {
            const auto row = std::ranges::find(members<T>, name, &Member<T>::name);
            if (row == members<T>.end()) {
                place.member(name).refuse("unknown member");
            }
            const Json *&json = given[static_cast<std::size_t>(row - members<T>.begin())];
            if (json != nullptr) {
                place.member(name).refuse("given twice");
            }
            json = &member;
        }
        for (std::size_t row = 0; row < given.size(); ++row) {
            if (given[row] != nullptr) {
                members<T>[row].read(*given[row], place.member(members<T>[row].name), into);
            }
        }
        complete<T>(value, place, into);
    }

    static bool isSame(const T &value, const T &usual) {
        return [&]<std::size_t... row>(std::index_sequence<row...>) {
            return (members<T>[row].isSame(value, usual) && ...);
        }
        (rows);
    }

    static void write(JsonWriter &writer, const T &value, const T &usual) {
        writer.beginObject();
        writeMembers(writer, value, usual);
        writer.endObject();
    }

    static void writeMembers(JsonWriter &writer, const T &value, const T &usual) {
        [&]<std::size_t... row>(std::index_sequence<row...>) {
            (writeMember<row>(writer, value, usual), ...);
        }
        (rows);
    }

private:
    // Row by row, each as its own code: a large host has a million members.
    static constexpr auto rows = std::make_index_sequence<members<T>.size()>();

    template <std::size_t row>
    static void writeMember(JsonWriter &writer, const T &value, const T &usual) {
        constexpr const Member<T> &member = members<T>[row];
        if (!member.isSame(value, usual)) {
            static constexpr auto quoted = quotedName<member.name.size()>(member.name);
            writer.identifier({quoted.data(), quoted.size()});
            member.write(writer, value, usual);
        }
    }
};

template <std::integral T>
struct Form<T> {
    static void read(const Json &value, const Place &place, T &into) {
        // A 64-bit field takes both readings of its bits.
        using Range = std::numeric_limits<T>;
        constexpr bool wide = sizeof(T) == sizeof(std::uint64_t);
        constexpr std::int64_t least = wide ? std::numeric_limits<std::int64_t>::min() : Range::min();
        constexpr std::uint64_t most = wide ? std::numeric_limits<std::uint64_t>::max() : Range::max();
        into = static_cast<T>(numberOf(value, place, least, most));
    }
    static bool isSame(T value, T usual) {
        return value == usual;
    }
    static void write(JsonWriter &writer, T value, T) {
        writer.number(value);
    }
};

template <>
struct Form<std::string> {
    static void read(const Json &value, const Place &place, std::string &into) {
        const std::vector<unsigned char> bytes = characterBytesOf(value, place);
        into.assign(bytes.begin(), bytes.end());
    }
    static bool isSame(const std::string &value, const std::string &usual) {
        return value == usual;
    }
    static void write(JsonWriter &writer, const std::string &value, const std::string &) {
        writer.text(value);
    }
};

/// What stands behind a terminator is no information.
template <std::size_t size>
struct Form<char[size]> {
    static void read(const Json &value, const Place &place, char (&into)[size]) {
        const std::vector<unsigned char> bytes = characterBytesOf(value, place);
        requireRoom(bytes.size(), size, "bytes", place);
        std::ranges::copy(bytes, reinterpret_cast<unsigned char *>(into));
    }
    static bool isSame(const char (&value)[size], const char (&usual)[size]) {
        return std::strncmp(value, usual, size) == 0;
    }
    static void write(JsonWriter &writer, const char (&value)[size], const char (&)[size]) {
        writer.text({value, strnlen(value, size)});
    }
};

template <>
struct Form<HBA_FC4TYPES> {
    static void read(const Json &value, const Place &place, HBA_FC4TYPES &into) {
        const std::vector<unsigned char> bytes = hexBytesOf(value, place);
        requireRoom(bytes.size(), sizeof into.bits, "bytes", place);
        std::ranges::copy(bytes, into.bits);
    }
    static bool isSame(const HBA_FC4TYPES &value, const HBA_FC4TYPES &usual) {
        return std::ranges::equal(value.bits, usual.bits);
    }
    static void write(JsonWriter &writer, const HBA_FC4TYPES &value, const HBA_FC4TYPES &) {
        const auto last = std::ranges::find_if(std::rbegin(value.bits), std::rend(value.bits),
                                               [](unsigned char byte) { return byte != 0; });
        writer.hexBytes({std::begin(value.bits), last.base()});
    }
};

template <>
struct Form<HBA_WWN> {
    static void read(const Json &value, const Place &place, HBA_WWN &into) {
        const std::vector<unsigned char> bytes = hexBytesOf(value, place);
        if (textOf(value, place).size() != 2 * sizeof into.wwn || bytes.size() != sizeof into.wwn) {
            place.refuse("16 hexadecimal digits expected");
        }
        std::ranges::copy(bytes, into.wwn);
    }
    static bool isSame(const HBA_WWN &value, const HBA_WWN &usual) {
        return std::ranges::equal(value.wwn, usual.wwn);
    }
    static void write(JsonWriter &writer, const HBA_WWN &value, const HBA_WWN &) {
        writer.hexBytes(value.wwn, "");
    }
};

template <class T>
struct Form<std::optional<T>> {
    static void read(const Json &value, const Place &place, std::optional<T> &into) {
        Form<T>::read(value, place, into.emplace());
    }
    static bool isSame(const std::optional<T> &value, const std::optional<T> &) {
        return !value;
    }
    static void write(JsonWriter &writer, const std::optional<T> &value, const std::optional<T> &) {
        Form<T>::write(writer, *value, Usual<T>::of(*value));
    }
};

/// An empty object takes no memory.
template <class T, const T &(*usually)()>
struct Form<Sparse<T, usually>> {
    static void read(const Json &value, const Place &place, Sparse<T, usually> &into) {
        if (!Described<T> || !objectOf(value, place).empty()) {
            Form<T>::read(value, place, into.edit());
        }
    }
    static bool isSame(const Sparse<T, usually> &value, const Sparse<T, usually> &usual) {
        return !value.isHeld() || Form<T>::isSame(*value, *usual);
    }
    static void write(JsonWriter &writer, const Sparse<T, usually> &value, const Sparse<T, usually> &usual) {
        Form<T>::write(writer, *value, *usual);
    }
};

template <class T>
struct WithoutSparse {
    using Type = T;
};
template <class T>
struct WithoutSparse<Sparse<T>> {
    using Type = T;
};

/// Structures stand one to a line.
template <class T>
struct Form<std::vector<T>> {
    using Element = typename WithoutSparse<T>::Type;

    static void read(const Json &value, const Place &place, std::vector<T> &into) {
        const Json::array_t &list = listOf(value, place);
        into = std::vector<T>(list.size());
        for (std::size_t i = 0; i < list.size(); ++i) {
            Form<T>::read(list[i], place.element(i), into[i]);
        }
    }
    static bool isSame(const std::vector<T> &value, const std::vector<T> &usual) {
        if constexpr (std::equality_comparable<T>) {
            return value == usual;
        } else {
            return value.empty() && usual.empty();
        }
    }
    static void write(JsonWriter &writer, std::span<const T> value, std::span<const T>) {
        writer.beginList(Described<Element> ? Layout::lines : Layout::inline_);
        for (const Element &element : value) {
            Form<Element>::write(writer, element, Usual<Element>::of(element));
        }
        writer.endList();
    }
};

/// A list of no more elements.
template <std::size_t most, class T>
struct BoundedForm : Form<std::vector<T>> {
    static void read(const Json &value, const Place &place, std::vector<T> &into) {
        requireRoom(listOf(value, place).size(), most, "elements", place);
        Form<std::vector<T>>::read(value, place, into);
    }
};

/// A list of fewer elements than the field has leaves the rest as it is.
template <class T, std::size_t size>
struct Form<T[size]> {
    static void read(const Json &value, const Place &place, T (&into)[size]) {
        const Json::array_t &list = listOf(value, place);
        requireRoom(list.size(), size, "elements", place);
        for (std::size_t i = 0; i < list.size(); ++i) {
            Form<T>::read(list[i], place.element(i), into[i]);
        }
    }
    static bool isSame(const T (&value)[size], const T (&usual)[size]) {
        return differing(value, usual) == 0;
    }
    static void write(JsonWriter &writer, const T (&value)[size], const T (&usual)[size]) {
        writer.beginList();
        for (std::size_t i = 0; i < differing(value, usual); ++i) {
            Form<T>::write(writer, value[i], usual[i]);
        }
        writer.endList();
    }

private:
    /// How many elements there are up to the last that differs.
    static std::size_t differing(const T (&value)[size], const T (&usual)[size]) {
        std::size_t count = size;
        while (count > 0 && Form<T>::isSame(value[count - 1], usual[count - 1])) {
            --count;
        }
        return count;
    }
};

/// A text, or null.
struct NullableTextForm {
    static void read(const Json &value, const Place &place, std::optional<std::string> &into) {
        if (!value.is_null()) {
            Form<std::string>::read(value, place, into.emplace());
        }
    }
    static void write(JsonWriter &writer, const std::optional<std::string> &value, const std::optional<std::string> &) {
        if (value) {
            writer.text(*value);
        } else {
            writer.null();
        }
    }
};

struct ErrnoForm {
    static void read(const Json &value, const Place &place, int &into) {
        into = errnoIn(value, place);
    }
    static bool isSame(int value, int usual) {
        return value == usual;
    }
    static void write(JsonWriter &writer, int value, int) {
        writer.text(errnoName(value));
    }
};

} // namespace description
