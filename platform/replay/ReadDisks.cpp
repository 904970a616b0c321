#include <algorithm>

#include "platform/replay/HostSections.h"
#include "platform/replay/ScsiCommands.h"

// Disks, their slices and what else stands in the device directories.

namespace replay {
namespace {

constexpr std::size_t mostSlices = 26; // they are the minor nodes "a" to "z"

constexpr NamedValue positions[] = {{"first", positionFirst}, {"last", positionLast}};

constexpr std::string_view callsByPath[] = {"stat", "readlink", "ustat"};
constexpr std::string_view callsByDescriptor[] = {"open",       "close",      "fstat",   "DKIOCINFO",
                                                  "DKIOCGGEOM", "DKIOCGVTOC", "USCSICMD"};

bool isFailingCall(std::string_view call) {
    if (std::ranges::find(callsByPath, call) != std::end(callsByPath)) {
        return true;
    }
    const std::string_view mode = call.substr(std::min(call.find(' '), call.size()));
    return (mode.empty() || mode == " O_RDWR" || mode == " O_RDONLY") &&
           std::ranges::find(callsByDescriptor, call.substr(0, call.size() - mode.size())) !=
               std::end(callsByDescriptor);
}

void readScsi(const Json &value, const Place &place, Disk &disk) {
    readEach(value, place, [&](const std::string &name, const Json &member, const Place &memberPlace) {
        if (std::ranges::find(scsiCommands, name, &ScsiCommand::name) == scsiCommands.end()) {
            memberPlace.refuse("unknown command");
        }
        return disk.scsi.try_emplace(name, hexBytesOf(member, memberPlace)).second;
    });
}

void readFails(const Json &value, const Place &place, Disk &disk) {
    readEach(value, place, [&](const std::string &call, const Json &member, const Place &memberPlace) {
        if (!isFailingCall(call)) {
            memberPlace.refuse("unknown call");
        }
        return disk.fails.try_emplace(call, errnoOf(member, memberPlace)).second;
    });
}

} // namespace

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
inline constexpr auto members<Disk> = table<Disk>(MEMBER(Disk, name), MEMBER(Disk, slices), MEMBER(Disk, path),
                                                  MEMBER(Disk, major), MEMBER(Disk, minor), MEMBER(Disk, mounted),
                                                  MEMBER(Disk, geometry), MEMBER(Disk, vtoc),
                                                  Member<Disk>{"scsi", readScsi}, Member<Disk>{"fails", readFails});

template <>
inline constexpr auto members<Entry> = table<Entry>(MEMBER(Entry, path), MEMBER(Entry, link),
                                                    NAMED_MEMBER(Entry, position, positions));

template <>
void complete(const Json &value, const Place &, vtoc &label) {
    constexpr unsigned short usualSectorSize = 512;
    if (!isGiven(value, {"v_sectorsz"})) {
        label.v_sectorsz = usualSectorSize;
    }
    if (!isGiven(value, {"v_nparts"})) {
        label.v_nparts = V_NUMPAR;
    }
}

template <>
void complete(const Json &, const Place &place, Disk &disk) {
    requireRoom(disk.slices.size(), mostSlices, "slices", place.member("slices"));
    const Place mounted = place.member("mounted");
    for (std::size_t i = 0; i < disk.mounted.size(); ++i) {
        if (std::ranges::find(disk.slices, disk.mounted[i]) == disk.slices.end()) {
            mounted.element(i).refuse("\"" + disk.mounted[i] + "\" is no slice of the disk");
        }
    }
}

template <>
void complete(const Json &, const Place &place, Entry &entry) {
    if (!entry.path.starts_with('/') || entry.path.ends_with('/')) {
        place.member("path").refuse("the path of a file expected");
    }
}

void readDisks(const Json &value, const Place &place, Host &host) {
    read(value, place, host.disks);
}

void readEntries(const Json &value, const Place &place, Host &host) {
    read(value, place, host.entries);
}

void makeFiles(const Place &place, Host &host) {
    const Place disks = place.member("disks");
    for (std::size_t i = 0; i < host.disks.size(); ++i) {
        for (unsigned slice = 0; slice < host.disks[i].slices.size(); ++slice) {
            if (!host.files.addSlice(host.disks[i], slice)) {
                const Place disk = disks.element(i);
                disk.member("name").refuse("\"" + host.disks[i].name + host.disks[i].slices[slice] +
                                           "\" is there already");
            }
        }
    }
    const Place entries = place.member("entries");
    for (std::size_t i = 0; i < host.entries.size(); ++i) {
        if (!host.files.addEntry(host.entries[i])) {
            const Place entry = entries.element(i);
            entry.member("path").refuse("\"" + host.entries[i].path + "\" is there already");
        }
    }
    host.files.finish();
}

} // namespace replay
