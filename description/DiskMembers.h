#pragma once

#include <algorithm>

#include "common/system/DiskDevices.h"
#include "description/Members.h"
#include "description/ScsiCommands.h"

// Disks, their slices and what else stands in the device directories.

namespace description {

inline constexpr NamedValue positions[] = {{"first", positionFirst}, {"last", positionLast}};

inline constexpr std::string_view callsByPath[] = {"stat", "readlink", "ustat"};
inline constexpr std::string_view callsByDescriptor[] = {"open",       "close",      "fstat",   "DKIOCINFO",
                                                         "DKIOCGGEOM", "DKIOCGVTOC", "USCSICMD"};

inline constexpr std::string_view openModes[] = {"", " O_RDWR", " O_RDONLY", " O_RDWR|O_NDELAY", " O_RDONLY|O_NDELAY"};

inline bool isCommand(std::string_view name) {
    return std::ranges::find(scsiCommandNames, name, &ScsiCommandName::name) != scsiCommandNames.end();
}

inline bool isFailingCall(std::string_view call) {
    if (std::ranges::find(callsByPath, call) != std::end(callsByPath) || isCommand(call)) {
        return true;
    }
    const std::string_view mode = call.substr(std::min(call.find(' '), call.size()));
    return std::ranges::find(openModes, mode) != std::end(openModes) &&
           std::ranges::find(callsByDescriptor, call.substr(0, call.size() - mode.size())) !=
               std::end(callsByDescriptor);
}

inline void requireFailingCall(std::string_view call, const Place &place) {
    if (!isFailingCall(call)) {
        place.refuse("unknown call");
    }
}

inline void requireCommand(std::string_view name, const Place &place) {
    if (!isCommand(name)) {
        place.refuse("unknown command");
    }
}

/// The bytes that a command answers.
struct AnswerForm {
    static void read(const Json &value, const Place &place, std::vector<unsigned char> &into) {
        into = hexBytesOf(value, place);
    }
    static void write(JsonWriter &writer, const std::vector<unsigned char> &value, const std::vector<unsigned char> &) {
        writer.hexBytes(value);
    }
};

/// An errno; null is none.
struct OutcomeForm {
    static void read(const Json &value, const Place &place, int &into) {
        into = value.is_null() ? 0 : errnoIn(value, place);
    }
    static void write(JsonWriter &writer, int value, int) {
        if (value == 0) {
            writer.null();
        } else {
            writer.text(errnoName(value));
        }
    }
};

using ScsiForm = ByTextForm<std::vector<unsigned char>, AnswerForm, Layout::inline_, requireCommand>;
using SecondsForm = ByTextForm<unsigned, Form<unsigned>, Layout::inline_, requireFailingCall>;
using FailsForm = ByTextForm<int, OutcomeForm, Layout::inline_, requireFailingCall>;

template <>
inline constexpr auto members<dk_geom> = table<dk_geom>(
    MEMBER(dk_geom, dkg_ncyl), MEMBER(dk_geom, dkg_acyl), MEMBER(dk_geom, dkg_bcyl), MEMBER(dk_geom, dkg_nhead),
    MEMBER(dk_geom, dkg_obs1), MEMBER(dk_geom, dkg_nsect), MEMBER(dk_geom, dkg_intrlv), MEMBER(dk_geom, dkg_obs2),
    MEMBER(dk_geom, dkg_obs3), MEMBER(dk_geom, dkg_apc), MEMBER(dk_geom, dkg_rpm), MEMBER(dk_geom, dkg_pcyl),
    MEMBER(dk_geom, dkg_write_reinstruct), MEMBER(dk_geom, dkg_read_reinstruct), MEMBER(dk_geom, dkg_extra));

template <>
inline constexpr auto members<partition> = table<partition>(MEMBER(partition, p_tag), MEMBER(partition, p_flag),
                                                            MEMBER(partition, p_start), MEMBER(partition, p_size));

template <>
inline constexpr auto members<vtoc> = table<vtoc>(MEMBER(vtoc, v_bootinfo), MEMBER(vtoc, v_sanity),
                                                  MEMBER(vtoc, v_version), MEMBER(vtoc, v_volume),
                                                  MEMBER(vtoc, v_sectorsz), MEMBER(vtoc, v_nparts),
                                                  MEMBER(vtoc, v_reserved), MEMBER(vtoc, v_part),
                                                  MEMBER(vtoc, timestamp), MEMBER(vtoc, v_asciilabel));

/// A link that is given may be null.
struct LinkForm {
    static void read(const Json &value, const Place &place, std::optional<Link> &into) {
        NullableTextForm::read(value, place, into.emplace());
    }
    static bool isSame(const std::optional<Link> &value, const std::optional<Link> &) {
        return !value;
    }
    static void write(JsonWriter &writer, const std::optional<Link> &value, const std::optional<Link> &) {
        NullableTextForm::write(writer, *value, {});
    }
};

template <>
inline constexpr auto members<Slice> = table<Slice>(MEMBER(Slice, name), MEMBER(Slice, place), MEMBER(Slice, minor),
                                                    MEMBER(Slice, partition), FORMED_MEMBER(Slice, link, LinkForm),
                                                    FORMED_MEMBER(Slice, rawLink, LinkForm));

/// A slice that is as its place says is its name.
struct SlicesForm {
    using Slices = decltype(Disk::slices);

    static void read(const Json &value, const Place &place, Slices &slices) {
        const Json::array_t &list = listOf(value, place);
        requireRoom(list.size(), tarn::mostSlices, "slices", place);
        slices = std::vector<Slice>(list.size());
        std::vector<Slice> &into = slices.edit();
        for (std::size_t i = 0; i < list.size(); ++i) {
            if (list[i].is_object() && !isGiven(list[i], {"hex"})) {
                Form<Slice>::read(list[i], place.element(i), into[i]);
            } else {
                Form<std::string>::read(list[i], place.element(i), into[i].name);
            }
        }
    }
    static bool isSame(const Slices &value, const Slices &usual) {
        return std::ranges::equal(*value, *usual, Form<Slice>::isSame);
    }
    static void write(JsonWriter &writer, const Slices &value, const Slices &) {
        writer.beginList();
        for (const Slice &slice : *value) {
            Slice plain{};
            plain.name = slice.name;
            if (Form<Slice>::isSame(slice, plain)) {
                writer.text(slice.name);
            } else {
                Form<Slice>::write(writer, slice, Slice());
            }
        }
        writer.endList();
    }
};

template <>
inline constexpr auto
    members<Disk> = table<Disk>(MEMBER(Disk, name), FORMED_MEMBER(Disk, slices, SlicesForm), MEMBER(Disk, directories),
                                MEMBER(Disk, path), MEMBER(Disk, major), MEMBER(Disk, minor), MEMBER(Disk, mounted),
                                MEMBER(Disk, geometry), MEMBER(Disk, vtoc), FORMED_MEMBER(Disk, scsi, ScsiForm),
                                FORMED_MEMBER(Disk, fails, FailsForm), FORMED_MEMBER(Disk, seconds, SecondsForm));

template <>
inline constexpr auto members<Entry> = table<Entry>(MEMBER(Entry, path), MEMBER(Entry, link),
                                                    FORMED_MEMBER(Entry, position, NamedForm<positions>));

template <>
struct Usual<vtoc> {
    static const vtoc &of(const vtoc &) {
        static const vtoc label = [] {
            vtoc blank{};
            blank.v_sectorsz = 512;
            blank.v_nparts = 8; // V_NUMPAR of a SPARC, whichever system writes the description
            return blank;
        }();
        return label;
    }
};

template <>
inline void complete(const Json &value, const Place &, vtoc &label) {
    const vtoc &usual = Usual<vtoc>::of(label);
    if (!isGiven(value, {"v_sectorsz"})) {
        label.v_sectorsz = usual.v_sectorsz;
    }
    if (!isGiven(value, {"v_nparts"})) {
        label.v_nparts = usual.v_nparts;
    }
}

template <>
inline void complete(const Json &, const Place &place, Disk &disk) {
    const Place slices = place.member("slices");
    for (std::size_t i = 0; i < disk.slices->size(); ++i) {
        if (disk.place(i) >= tarn::mostSlices) {
            const Place slice = slices.element(i);
            slice.member("place").refuse(std::to_string(disk.place(i)) + " is not in 0 to 25");
        }
    }
    const Place directories = place.member("directories");
    for (std::size_t i = 0; i < disk.directories->size(); ++i) {
        const std::string &directory = (*disk.directories)[i];
        if (directory != blockDirectory && directory != rawDirectory) {
            directories.element(i).refuse("\"/dev/dsk\" or \"/dev/rdsk\" expected");
        }
    }
    const Place mounted = place.member("mounted");
    for (std::size_t i = 0; i < disk.mounted.size(); ++i) {
        if (std::ranges::find(*disk.slices, disk.mounted[i], &Slice::name) == disk.slices->end()) {
            mounted.element(i).refuse(inQuotes(disk.mounted[i]) + " is no slice of the disk");
        }
    }
}

template <>
inline void complete(const Json &, const Place &place, Entry &entry) {
    if (!entry.path.starts_with('/') || entry.path.ends_with('/')) {
        place.member("path").refuse("the path of a file expected");
    }
}

} // namespace description
