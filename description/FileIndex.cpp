#include "description/FileIndex.h"

#include <algorithm>

namespace description {
namespace {

std::uint64_t hashOf(const auto &parts) {
    std::uint64_t hash = 0xCBF29CE484222325; // FNV-1a, which does not mind where one part ends
    for (const std::string_view part : parts) {
        for (const char character : part) {
            hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001B3;
        }
    }
    return hash ^ hash >> 32;
}

/// Whether both come to the same text.
bool areSame(auto one, auto other) {
    auto left = one.begin();
    auto right = other.begin();
    for (;;) {
        left = std::find_if(left, one.end(), [](std::string_view part) { return !part.empty(); });
        right = std::find_if(right, other.end(), [](std::string_view part) { return !part.empty(); });
        if (left == one.end() || right == other.end()) {
            return left == one.end() && right == other.end();
        }
        const std::size_t common = std::min(left->size(), right->size());
        if (left->substr(0, common) != right->substr(0, common)) {
            return false;
        }
        left->remove_prefix(common);
        right->remove_prefix(common);
    }
}

} // namespace

FileIndex::FileIndex(const Host &host) : described(host) {
    for (std::uint32_t i = 0; i < host.disks.size(); ++i) {
        const Disk &disk = host.disks[i];
        for (std::size_t slice = 0; slice < disk.slices->size(); ++slice) {
            for (const std::string &directory : *disk.directories) {
                if (!add({i, static_cast<std::uint8_t>(slice), directory == rawDirectory ? rawDevice : blockDevice})) {
                    return;
                }
            }
        }
    }
    for (std::uint32_t i = 0; i < host.entries.size(); ++i) {
        if (!add({i, 0, entry})) {
            return;
        }
    }
}

bool FileIndex::add(const File &file) {
    if (all.size() * 5 >= table.size() * 4) {
        enlarge();
    }
    const std::size_t index = all.size();
    all.push_back(file);
    std::uint32_t &place = table[placeOf(partsOf(index))];
    if (place != unused) {
        doubled = index;
        return false;
    }
    place = static_cast<std::uint32_t>(index);
    return true;
}

void FileIndex::enlarge() {
    const std::size_t size = 2 * table.size();
    table = {};
    table.resize(size, unused);
    for (std::size_t index = 0; index < all.size(); ++index) {
        table[placeOf(partsOf(index))] = static_cast<std::uint32_t>(index);
    }
}

/// Where the path is in the table, or has its place.
std::size_t FileIndex::placeOf(const Parts &path) const {
    std::size_t at = hashOf(path) & (table.size() - 1);
    while (table[at] != unused && !areSame(partsOf(table[at]), path)) {
        at = (at + 1) & (table.size() - 1);
    }
    return at;
}

std::optional<std::size_t> FileIndex::find(std::string_view path) const {
    return find({}, path);
}

std::optional<std::size_t> FileIndex::find(std::string_view directory, std::string_view name) const {
    const std::string_view separator = directory.empty() || directory == "/" ? "" : "/";
    const std::uint32_t found = table[placeOf({directory, separator, name})];
    return found == unused ? std::nullopt : std::optional<std::size_t>(found);
}

FileIndex::Parts FileIndex::partsOf(std::size_t file) const {
    const File &which = all[file];
    if (which.kind == entry) {
        return {described.entries[which.owner].path};
    }
    const Disk &disk = described.disks[which.owner];
    return {directory(file), "/", disk.name, (*disk.slices)[which.slice].name};
}

std::string_view FileIndex::directory(std::size_t file) const {
    if (all[file].kind != entry) {
        return all[file].kind == rawDevice ? rawDirectory : blockDirectory;
    }
    const std::string_view path = described.entries[all[file].owner].path;
    return path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
}

std::string FileIndex::name(std::size_t file) const {
    const Parts parts = partsOf(file);
    return all[file].kind == entry ? std::string(parts[0].substr(parts[0].rfind('/') + 1))
                                   : std::string(parts[2]).append(parts[3]);
}

} // namespace description
