#pragma once

#include <algorithm>

#include "description/Members.h"
#include "description/ScsiCommands.h"

// Disks, their slices and what else stands in the device directories.

namespace description {

inline constexpr std::size_t mostSlices = 26; // they are the minor nodes "a" to "z"

inline constexpr NamedValue positions[] = {{"first", positionFirst}, {"last", positionLast}};

inline constexpr std::string_view callsByPath[] = {"stat", "readlink", "ustat"};
inline constexpr std::string_view callsByDescriptor[] = {"open",       "close",      "fstat",   "DKIOCINFO",
                                                         "DKIOCGGEOM", "DKIOCGVTOC", "USCSICMD"};

inline bool isFailingCall(std::string_view call) {
    if (std::ranges::find(callsByPath, call) != std::end(callsByPath)) {
        return true;
    }
    const std::string_view mode = call.substr(std::min(call.find(' '), call.size()));
    return (mode.empty() || mode == " O_RDWR" || mode == " O_RDONLY") &&
           std::ranges::find(callsByDescriptor, call.substr(0, call.size() - mode.size())) !=
               std::end(callsByDescriptor);
}

inline void requireFailingCall(std::string_view call, const Place &place) {
    if (!isFailingCall(call)) {
        place.refuse("unknown call");
    }
}

inline void requireCommand(std::string_view name, const Place &place) {
    if (std::ranges::find(scsiCommands, name, &ScsiCommand::name) == scsiCommands.end()) {
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

struct ErrnoForm {
    static void read(const Json &value, const Place &place, int &into) {
        into = errnoIn(value, place);
    }
    static void write(JsonWriter &writer, int value, int) {
        writer.text(errnoName(value));
    }
};

using ScsiForm = ByTextForm<std::vector<unsigned char>, AnswerForm, Layout::inline_, requireCommand>;
using FailsForm = ByTextForm<int, ErrnoForm, Layout::inline_, requireFailingCall>;

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

template <>
inline constexpr auto
    members<Disk> = table<Disk>(MEMBER(Disk, name), MEMBER(Disk, slices), MEMBER(Disk, path), MEMBER(Disk, major),
                                MEMBER(Disk, minor), MEMBER(Disk, mounted), MEMBER(Disk, geometry), MEMBER(Disk, vtoc),
                                FORMED_MEMBER(Disk, scsi, ScsiForm), FORMED_MEMBER(Disk, fails, FailsForm));

template <>
inline constexpr auto members<Entry> = table<Entry>(MEMBER(Entry, path), MEMBER(Entry, link),
                                                    FORMED_MEMBER(Entry, position, NamedForm<positions>));

template <>
struct Usual<vtoc> {
    static const vtoc &of(const vtoc &) {
        static const vtoc label = [] {
            vtoc blank{};
            blank.v_sectorsz = 512;
            blank.v_nparts = V_NUMPAR;
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
    requireRoom(disk.slices.size(), mostSlices, "slices", place.member("slices"));
    const Place mounted = place.member("mounted");
    for (std::size_t i = 0; i < disk.mounted.size(); ++i) {
        if (std::ranges::find(disk.slices, disk.mounted[i]) == disk.slices.end()) {
            mounted.element(i).refuse("\"" + disk.mounted[i] + "\" is no slice of the disk");
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
