#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "description/Host.h"

namespace description {

/// Every path that the disks and entries of a host make, found without a text for each: they are sixteen of a disk. The
/// host has to stay as it is for as long as the index.
class FileIndex {
public:
    enum Kind : std::uint8_t { blockDevice, rawDevice, entry };

    struct File {
        std::uint32_t owner; // index of its disk or entry
        std::uint8_t slice;
        Kind kind;
    };

    explicit FileIndex(const Host &host);

    /// The files of the disks in order, slice by slice, and then the entries.
    const std::vector<File> &files() const {
        return all;
    }

    /// Index of the file at the path. Nothing when there is none.
    std::optional<std::size_t> find(std::string_view path) const;
    std::optional<std::size_t> find(std::string_view directory, std::string_view name) const;

    /// Index of the first whose path an earlier one has. The index has none behind it.
    std::optional<std::size_t> firstDouble() const {
        return doubled;
    }

    std::string_view directory(std::size_t file) const;

    /// Its name in the directory.
    std::string name(std::size_t file) const;

private:
    using Parts = std::array<std::string_view, 4>; // which make a path when they are put together

    Parts partsOf(std::size_t file) const;
    std::size_t placeOf(const Parts &path) const;
    void enlarge();

    /// False when there is one of its path.
    bool add(const File &file);

    static constexpr std::uint32_t unused = 0xFFFFFFFF;

    const Host &described;
    std::vector<File> all;
    std::vector<std::uint32_t> table = std::vector(64, unused); // indices of files, at or behind where their hash says
    std::optional<std::size_t> doubled;
};

} // namespace description
