#include "record/DiskGroups.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <utility>

#include "common/system/DiskDevices.h"
#include "description/ScsiCommands.h"

namespace record {
namespace {

constexpr std::size_t usualSlices = 8;
constexpr std::string_view deviceTree = "../../devices";
constexpr std::string_view rawNode = ",raw";

/// An entry's name, taken apart as names of disks are made: "c1t0d0" "s3", or "emcpower7" "d".
struct NameParts {
    std::string_view disk;
    std::string_view suffix;
    std::optional<unsigned> place;
};

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

NameParts takeApart(std::string_view name) {
    std::size_t at = name.size();
    while (at > 0 && isDigit(name[at - 1])) {
        --at;
    }
    const std::string_view number = name.substr(at);
    if (at > 0 && name[at - 1] == 's' && !number.empty() && number.size() <= 2) {
        unsigned place = 0;
        for (const char digit : number) {
            place = place * 10 + static_cast<unsigned>(digit - '0');
        }
        return {name.substr(0, at - 1), name.substr(at - 1),
                place < tarn::mostSlices ? std::optional(place) : std::nullopt};
    }
    if (name.starts_with(tarn::powerPathPrefix) && name.back() >= 'a' && name.back() <= 'z') {
        return {name.substr(0, name.size() - 1), name.substr(name.size() - 1), name.back() - 'a'};
    }
    return {name, {}, std::nullopt};
}

/// Its bytes. Characters are compared many at a time, std::byte one by one.
template <class T>
std::string_view charactersOf(const T &value) {
    return {reinterpret_cast<const char *>(&value), sizeof value};
}

template <class T>
bool agree(const std::optional<T> &one, const std::optional<T> &other) {
    if constexpr (std::equality_comparable<T>) {
        return !one || !other || *one == *other;
    } else {
        return !one || !other || charactersOf(*one) == charactersOf(*other);
    }
}

template <class T>
void addTo(std::optional<T> &known, const std::optional<T> &more) {
    if (!known) {
        known = more;
    }
}

bool haveOneMajor(const std::optional<dev_t> &one, const std::optional<dev_t> &other) {
    return !one || !other || major(*one) == major(*other);
}

bool hasMajorOf(const Group &group, const std::optional<dev_t> &device) {
    return std::ranges::all_of(group.slices,
                               [&](const SeenSlice &slice) { return haveOneMajor(slice.device, device); });
}

/// The physical path when the link leads to the minor node that goes with the place.
std::optional<std::string_view> physicalPath(const SeenLink &link, unsigned place, bool raw) {
    std::string_view text = link.text;
    if (!text.starts_with(deviceTree)) {
        return std::nullopt;
    }
    text.remove_prefix(deviceTree.size());
    if (raw) {
        if (!text.ends_with(rawNode)) {
            return std::nullopt;
        }
        text.remove_suffix(rawNode.size());
    }
    const char node[] = {':', static_cast<char>('a' + place)};
    if (!text.ends_with(std::string_view(node, sizeof node))) {
        return std::nullopt;
    }
    text.remove_suffix(sizeof node);
    return text;
}

/// A link that does not follow from path and place.
std::optional<description::Link> unruledLink(const SeenLink &link, const std::optional<std::string> &path,
                                             unsigned place, bool raw) {
    const bool isRuled = path ? physicalPath(link, place, raw) == *path : link.kind == SeenLink::none;
    return isRuled ? std::nullopt : link.describe();
}

/// One call's errno by ways to open the device, each under a name no longer than needed.
class FailuresOfCall {
public:
    FailuresOfCall(std::string_view call, description::Disk &described) : name(call), disk(described) {
    }

    void describe(int forRequests, int again, int forCommands) {
        const int asked[] = {forRequests, again, forCommands};
        const auto first = std::ranges::find_if(asked, isAsked);
        if (first == std::end(asked)) {
            return;
        }
        if (std::ranges::all_of(asked, [&](int error) { return !isAsked(error) || error == *first; })) {
            set("", *first);
            return;
        }
        set(" O_RDWR", forRequests);
        if (!isAsked(again) || !isAsked(forCommands) || again == forCommands) {
            set(" O_RDONLY", std::max(again, forCommands));
            return;
        }
        set(" O_RDONLY", again);
        if (again != 0 || forCommands != 0) {
            disk.fails[std::string(name) + " O_RDONLY|O_NDELAY"] = forCommands;
        }
    }

private:
    static bool isAsked(int error) {
        return error != Outcomes::notAsked;
    }

    void set(const char *mode, int error) {
        if (error > 0) {
            disk.fails[std::string(name) + mode] = error;
        }
    }

    std::string_view name;
    description::Disk &disk;
};

void describeAnswers(Answers &&answers, description::Disk &disk) {
    disk.geometry = answers.geometry;
    disk.vtoc = answers.label;
    const Outcomes &outcome = answers.outcomes;
    constexpr int none = Outcomes::notAsked;
    const auto single = [&](std::string_view call, Question question) {
        FailuresOfCall(call, disk).describe(outcome[question], none, none);
    };
    single("stat", Question::stat);
    single("readlink", Question::readlink);
    single("ustat", Question::ustat);
    single("fstat", Question::fstat);
    single("DKIOCINFO", Question::information);
    FailuresOfCall("open", disk)
        .describe(outcome[Question::openForRequests], outcome[Question::openAgain], outcome[Question::openForCommands]);
    // What has no answer fails with EIO without being told so.
    const auto isUsual = [](int error) { return error == EIO || error == none; };
    const auto request = [&](std::string_view call, Question first, Question again, bool isAnswered) {
        if (isAnswered || !isUsual(outcome[first]) || !isUsual(outcome[again])) {
            FailuresOfCall(call, disk).describe(outcome[first], outcome[again], none);
        }
    };
    request("DKIOCGGEOM", Question::geometry, Question::geometryAgain, answers.geometry.has_value());
    request("DKIOCGVTOC", Question::label, Question::labelAgain, answers.label.has_value());
    for (std::size_t i = 0; i < askedCommands.size(); ++i) {
        const auto question = static_cast<Question>(static_cast<std::size_t>(Question::inquiry) + i);
        if (!isUsual(outcome[question])) {
            single(description::nameOf(*askedCommands[i]), question);
        }
        if (outcome[question] == 0) {
            disk.scsi.emplace(description::nameOf(*askedCommands[i]), std::move(answers.commands[i]));
        }
    }
}

} // namespace

std::optional<description::Link> SeenLink::describe() const {
    switch (kind) {
    case unknown:
        return std::nullopt;
    case none:
        return std::optional<description::Link>(std::in_place);
    case link:
        break;
    }
    return std::optional<description::Link>(std::in_place, text);
}

bool Outcomes::agreesWith(const Outcomes &other) const {
    if (errors == other.errors) {
        return true; // as of nearly all slices of a disk
    }
    for (std::size_t i = 0; i < questions; ++i) {
        if (errors[i] != other.errors[i] && errors[i] != notAsked && other.errors[i] != notAsked) {
            return false;
        }
    }
    return true;
}

void Outcomes::add(const Outcomes &other) {
    if (errors == other.errors) {
        return;
    }
    for (std::size_t i = 0; i < questions; ++i) {
        if (errors[i] == notAsked) {
            errors[i] = other.errors[i];
        }
    }
}

std::bitset<questions> Outcomes::asked() const {
    std::bitset<questions> known;
    for (std::size_t i = 0; i < questions; ++i) {
        known[i] = errors[i] != notAsked;
    }
    return known;
}

bool Answers::agreesWith(const Answers &other) const {
    if (!outcomes.agreesWith(other.outcomes) || !agree(geometry, other.geometry) || !agree(label, other.label)) {
        return false;
    }
    for (std::size_t i = 0; i < commands.size(); ++i) {
        const auto question = static_cast<Question>(static_cast<std::size_t>(Question::inquiry) + i);
        if (outcomes[question] == 0 && other.outcomes[question] == 0 && commands[i] != other.commands[i]) {
            return false;
        }
    }
    return true;
}

void Answers::add(Answers &&other) {
    for (std::size_t i = 0; i < commands.size(); ++i) {
        if (commands[i].empty() && !other.commands[i].empty()) {
            commands[i] = std::move(other.commands[i]);
        }
    }
    outcomes.add(other.outcomes);
    addTo(geometry, other.geometry);
    addTo(label, other.label);
}

// Labels are large: an empty one is not copied over them, entry by entry.
void Answers::clear() {
    outcomes = {};
    geometry.reset();
    label.reset();
    for (std::vector<unsigned char> &command : commands) {
        command.clear();
    }
}

void SeenEntry::clear() {
    name = {};
    link = {};
    device.reset();
    partition.reset();
    isMounted = false;
    answers.clear();
}

std::string_view diskNameOf(std::string_view entryName) {
    return takeApart(entryName).disk;
}

void DiskGroups::reserve(std::size_t entries) {
    groups.reserve(entries / usualSlices);
    firstByDiskName.reserve(entries / usualSlices);
}

std::size_t DiskGroups::add(SeenEntry &&entry) {
    const NameParts parts = takeApart(entry.name);
    const auto fits = [&](const Group &group) {
        return group.slices.size() < tarn::mostSlices && hasMajorOf(group, entry.device) &&
               group.answers.agreesWith(entry.answers);
    };
    std::size_t chosen = groups.size();
    if (!groups.empty() && groups.back().diskName == parts.disk && fits(groups.back())) {
        chosen = groups.size() - 1; // the entries of a disk mostly follow one another
    } else {
        std::size_t *ofDisk = &firstByDiskName.try_emplace(parts.disk, Group::none).first->second;
        while (*ofDisk != Group::none && !fits(groups[*ofDisk])) {
            ofDisk = &groups[*ofDisk].next;
        }
        if (*ofDisk != Group::none) {
            chosen = *ofDisk;
        } else {
            *ofDisk = chosen;
            Group &added = groups.emplace_back();
            added.diskName = parts.disk;
            added.isBlock = !raw;
            added.isRaw = raw;
            added.slices.reserve(usualSlices);
        }
    }
    Group &group = groups[chosen];
    SeenSlice &slice = group.slices.emplace_back();
    slice.suffix = parts.suffix;
    slice.place = parts.place;
    (raw ? slice.rawLink : slice.link) = std::move(entry.link);
    slice.device = entry.device;
    slice.partition = entry.partition;
    slice.isMounted = entry.isMounted;
    slice.asked = entry.answers.outcomes.asked();
    group.answers.add(std::move(entry.answers));
    return chosen;
}

std::vector<Group> DiskGroups::join(DiskGroups &&rawDisks, DiskGroups &&blockDisks) {
    const auto putInOrder = [](Group &group) {
        const auto placeOf = [](const SeenSlice &slice) {
            return slice.place.value_or(static_cast<unsigned>(tarn::mostSlices));
        };
        if (!std::ranges::is_sorted(group.slices, {}, placeOf)) {
            std::ranges::stable_sort(group.slices, {}, placeOf);
        }
    };
    std::ranges::for_each(rawDisks.groups, putInOrder);
    std::ranges::for_each(blockDisks.groups, putInOrder);
    const auto isSameSlice = [](const SeenSlice &one, const SeenSlice &other) {
        return one.suffix == other.suffix && agree(one.device, other.device);
    };
    std::vector<Group> joined = std::move(rawDisks.groups);
    for (Group &block : blockDisks.groups) {
        const auto agrees = [&](const Group &other) {
            return !other.isBlock && std::ranges::equal(other.slices, block.slices, isSameSlice) &&
                   hasMajorOf(other, block.slices.front().device) && other.answers.agreesWith(block.answers);
        };
        const auto first = rawDisks.firstByDiskName.find(block.diskName);
        std::size_t index = first == rawDisks.firstByDiskName.end() ? Group::none : first->second;
        while (index != Group::none && !agrees(joined[index])) {
            index = joined[index].next;
        }
        if (index == Group::none) {
            joined.push_back(std::move(block));
            continue;
        }
        Group &partner = joined[index];
        partner.isBlock = true;
        partner.answers.add(std::move(block.answers));
        for (std::size_t i = 0; i < block.slices.size(); ++i) {
            partner.slices[i].link = std::move(block.slices[i].link);
            partner.slices[i].asked |= block.slices[i].asked;
            addTo(partner.slices[i].device, block.slices[i].device);
        }
    }
    return joined;
}

description::Disk Group::describe() && {
    description::Disk disk{};
    disk.name = diskName;
    if (!isBlock || !isRaw) {
        disk.directories = std::vector{std::string(isRaw ? description::rawDirectory : description::blockDirectory)};
    }
    const auto placeOf = [&](std::size_t i) { return slices[i].place.value_or(static_cast<unsigned>(i)); };
    for (std::size_t i = 0; i < slices.size() && !disk.path; ++i) {
        for (const bool raw : {false, true}) {
            const auto path = physicalPath(raw ? slices[i].rawLink : slices[i].link, placeOf(i), raw);
            disk.path = path && !disk.path ? std::optional(std::string(*path)) : disk.path;
        }
    }
    bool hasMinor = false;
    for (std::size_t i = 0; i < slices.size() && !hasMinor; ++i) {
        if (slices[i].device && minor(*slices[i].device) >= placeOf(i)) {
            disk.minor = static_cast<unsigned>(minor(*slices[i].device)) - placeOf(i);
            hasMinor = true;
        }
    }
    disk.slices = std::vector<description::Slice>(slices.size());
    std::vector<description::Slice> &described = disk.slices.edit();
    for (std::size_t i = 0; i < slices.size(); ++i) {
        const SeenSlice &seen = slices[i];
        description::Slice &slice = described[i];
        const unsigned place = placeOf(i);
        slice.name = seen.suffix;
        if (place != i) {
            slice.place = place;
        }
        if (seen.device) {
            disk.major = static_cast<unsigned>(major(*seen.device));
            const auto number = static_cast<unsigned>(minor(*seen.device));
            slice.minor = number == disk.minor + place ? std::nullopt : std::optional(number);
        }
        slice.partition = seen.partition == place ? std::nullopt : seen.partition;
        slice.link = unruledLink(seen.link, disk.path, place, false);
        slice.rawLink = unruledLink(seen.rawLink, disk.path, place, true);
        if (seen.isMounted) {
            disk.mounted.emplace_back(seen.suffix);
        }
    }
    describeAnswers(std::move(answers), disk);
    return disk;
}

} // namespace record
