#pragma once

#include <array>
#include <bitset>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "description/Host.h"
#include "record/DiskQuestions.h"

// What was seen of single directory entries, gathered into disks with slices.

namespace record {

/// How the calls came out: 0, an errno, or not asked.
class Outcomes {
public:
    static constexpr int notAsked = -1;

    Outcomes() {
        errors.fill(notAsked);
    }

    int &operator[](Question question) {
        return errors[static_cast<std::size_t>(question)];
    }
    int operator[](Question question) const {
        return errors[static_cast<std::size_t>(question)];
    }

    /// Whether nothing that both were asked came out differently.
    bool agreesWith(const Outcomes &other) const;

    /// Takes over what only the other was asked.
    void add(const Outcomes &other);

    std::bitset<questions> asked() const;

private:
    std::array<int, questions> errors;
};

/// What the slices of a disk have in common.
struct Answers {
    Outcomes outcomes;
    std::optional<dk_geom> geometry;
    std::optional<struct ::vtoc> label;
    std::array<std::vector<unsigned char>, askedCommands.size()> commands;

    /// What one of the commands answered.
    const std::vector<unsigned char> &command(Question question) const {
        return commands[static_cast<std::size_t>(question) - static_cast<std::size_t>(Question::inquiry)];
    }

    bool agreesWith(const Answers &other) const;
    void add(Answers &&other);
    void clear();
};

/// What readlink tells of an entry.
struct SeenLink {
    enum Kind { unknown, none, link };

    Kind kind = unknown;
    std::string text = {};

    /// Nothing when it is unknown.
    std::optional<description::Link> describe() const;
};

/// One entry of a directory.
struct SeenEntry {
    std::string_view name;
    SeenLink link;
    std::optional<dev_t> device;
    std::optional<ushort_t> partition;
    bool isMounted = false;
    Answers answers;

    /// For the next entry.
    void clear();
};

/// A slice, as far as it was seen in either directory.
struct SeenSlice {
    std::string_view suffix;       // of its name, behind the disk's
    std::optional<unsigned> place; // that the suffix tells
    SeenLink link;
    SeenLink rawLink;
    std::optional<dev_t> device;
    std::optional<ushort_t> partition;
    bool isMounted;
    std::bitset<questions> asked;

    bool isAsked(Question question) const {
        return asked[static_cast<std::size_t>(question)];
    }
};

/// Slices of one disk that answer alike.
struct Group {
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    std::string_view diskName;
    std::size_t next = none; // index of another group of that name
    bool isBlock;
    bool isRaw;
    std::vector<SeenSlice> slices;
    Answers answers;

    /// As a disk of a description.
    description::Disk describe() &&;
};

/// The part of an entry's name that names its disk.
std::string_view diskNameOf(std::string_view entryName);

/// The entries of one directory. Their names have to stay as long as the groups.
class DiskGroups {
public:
    explicit DiskGroups(bool isRawDirectory) : raw(isRawDirectory) {
    }

    /// For so many entries to come, if disks have the usual number of slices.
    void reserve(std::size_t entries);

    /// Puts the entry to a group that it agrees with, or into one of its own. Index of the group.
    std::size_t add(SeenEntry &&entry);

    /// The disks of both directories. Groups with the same slices that agree are one.
    static std::vector<Group> join(DiskGroups &&rawDisks, DiskGroups &&blockDisks);

    std::vector<Group> groups;

private:
    bool raw;
    std::unordered_map<std::string_view, std::size_t> firstByDiskName; // index of a group
};

} // namespace record
