#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <memory>
#include <memory_resource>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "common/system/Directory.h"
#include "common/system/DiskDevices.h"
#include "record/DiskGroups.h"
#include "record/DiskQuestions.h"
#include "record/Recorder.h"
#include "record/StopSignals.h"

// The device directories, and what stands in them.

namespace record {
namespace {

using Names = std::vector<std::string>;

/// The names in a directory in its order, without "." and "..", and each once: one that changes while it is read may show
/// a name twice. Nothing when it cannot be opened.
std::optional<Names> namesIn(const char *path) {
    tarn::Directory directory(path);
    if (!directory.isOpen()) {
        return std::nullopt;
    }
    Names names;
    while (const char *const name = directory.next()) {
        if (std::string_view(name) != "." && std::string_view(name) != "..") {
            names.emplace_back(name);
        }
    }
    std::pmr::monotonic_buffer_resource room; // of a large host, given back at once
    std::pmr::unordered_set<std::string_view> seen(names.size(), &room);
    std::vector<bool> isAgain;
    for (const std::string &name : names) {
        isAgain.push_back(!seen.insert(name).second);
    }
    std::size_t at = 0;
    std::erase_if(names, [&](const std::string &) { return isAgain[at++]; });
    return names;
}

// A call as the report names it.
constexpr const char *questionNames[] = {
    "stat",         "readlink",   "ustat",      "open O_RDWR",         "open O_RDONLY", "open O_RDONLY|O_NDELAY",
    "fstat",        "DKIOCINFO",  "DKIOCGGEOM", "DKIOCGGEOM O_RDONLY", "DKIOCGVTOC",    "DKIOCGVTOC O_RDONLY",
    "INQUIRY",      "INQUIRY 00", "INQUIRY 80", "INQUIRY 83",          "INQUIRY C0",    "RECEIVE DIAGNOSTIC A0",
    "LOG SENSE 3B", "close",
};
static_assert(std::size(questionNames) == closeCall + 1);

/// Whether the call goes to the disk by itself, not with what every slice is asked.
bool isCommand(unsigned call) {
    return call == static_cast<unsigned>(Question::openForCommands) || call >= static_cast<unsigned>(Question::inquiry);
}

/// Takes in what one of the calls told.
void takeAnswer(const Answer &answer, Answers &answers) {
    const auto question = static_cast<Question>(answer.call);
    answers.outcomes[question] = answer.error;
    if (answer.error != 0) {
        return;
    }
    switch (question) {
    case Question::geometry:
    case Question::geometryAgain:
        answers.geometry = valueOf<dk_geom>(answer.data);
        break;
    case Question::label:
    case Question::labelAgain:
        answers.label = valueOf<struct ::vtoc>(answer.data);
        break;
    default:
        if (question >= Question::inquiry) {
            const auto *const bytes = reinterpret_cast<const unsigned char *>(answer.data.data());
            answers.commands[answer.call - static_cast<std::size_t>(Question::inquiry)].assign(
                bytes, bytes + answer.data.size());
        }
    }
}

/// The LUNs from which the interrogator would read an array's statistics.
struct ArrayChoice {
    struct Lun {
        std::optional<tarn::LunKind> kind;
        std::string path;
        std::size_t group;
        std::size_t slice; // of the group
    };
    const tarn::ArrayNames *names;
    std::array<Lun, 2> luns;

    void consider(const Answers &answers, const std::string &path, std::size_t group, std::size_t slice) {
        const auto whole = [&](Question question) { // filled up with zeros
            std::array<unsigned char, tarn::inquirySize> bytes{};
            std::ranges::copy(answers.command(question), bytes.begin());
            return bytes;
        };
        const std::optional<tarn::LunKind> kind = tarn::lunKind(*names, whole(Question::inquiry).data());
        const std::optional<std::size_t> controller = tarn::lunController(*names, whole(Question::inquiryC0).data());
        if (kind && controller && tarn::isChosen(luns[*controller].kind, *kind)) {
            luns[*controller] = {kind, path, group, slice};
        }
    }
};

/// The two large pages of the LUNs that were chosen.
class ArrayPages : public Inquiry {
public:
    ArrayPages(const std::vector<ArrayChoice> &choices, std::vector<Group> &toAnswer, Report &toReport)
        : groups(toAnswer), report(toReport) {
        for (const ArrayChoice &choice : choices) {
            std::ranges::copy_if(choice.luns, std::back_inserter(luns),
                                 [](const ArrayChoice::Lun &lun) { return lun.kind.has_value(); });
        }
    }

    void begin(Askers &askers) {
        askers.add("array pages", luns.size(), *this);
    }

    Request request(std::size_t item) override {
        return {Askers::arrayPages, luns[item].path};
    }
    std::string nameOf(std::size_t item, unsigned call, unsigned) const override {
        return luns[item].path + " " + questionNames[call];
    }
    void take(std::size_t item, const Answer &answer) override {
        if (answer.call != static_cast<unsigned>(Question::openForCommands)) { // which has been asked for the INQUIRY
            Group &group = groups[luns[item].group];
            group.slices[luns[item].slice].asked.set(answer.call);
            takeAnswer(answer, group.answers);
        }
    }
    void giveUp(std::size_t item, unsigned call, unsigned) override {
        if (call == static_cast<unsigned>(Question::receiveDiagnosticA0) ||
            call == static_cast<unsigned>(Question::logSense3B)) {
            take(item, {call, 0, ETIMEDOUT, {}});
        } else {
            report.notRead("disks", nameOf(item, call, 0), errnoText(ETIMEDOUT));
        }
    }
    void fail(std::size_t item, const std::string &reason) override {
        if (!isStopped()) {
            report.notRead("disks", luns[item].path, reason);
        }
    }
    void finish(std::size_t) override {
    }

private:
    std::vector<ArrayChoice::Lun> luns;
    std::vector<Group> &groups;
    Report &report;
};

/// The entries of one of the two directories.
class Walk : public Inquiry {
public:
    Walk(const char *directoryPath, const std::vector<tarn::ArrayNames> &arrays, description::Host &described,
         Report &toReport)
        : directory(directoryPath), isRaw(directory == description::rawDirectory), host(described), report(toReport),
          groups(isRaw) {
        for (const tarn::ArrayNames &arrayNames : arrays) {
            choices.push_back({&arrayNames, {}});
        }
    }

    void begin(Askers &askers) {
        names = namesIn(directory.c_str());
        if (!names) {
            report.notRead("disks", directory, errnoText(errno));
            return;
        }
        groups.reserve(names->size());
        isKept.resize(names->size());
        askers.add(directory.c_str(), names->size(), *this);
    }

    void askForPages(Askers &askers) {
        pages.emplace(choices, groups.groups, report).begin(askers);
    }

    void list() {
        if (!names) {
            return;
        }
        for (std::size_t i = 0; i < names->size(); ++i) {
            if (isKept[i]) {
                listed.push_back((*names)[i]);
            }
        }
        report.section("disks", counted(listed.size(), isRaw ? "raw device" : "block device"));
    }

    Request request(std::size_t item) override {
        const auto hang = hanging.find(subject(item));
        if (hang != hanging.end()) {
            return {hang->second.isOfLink ? Askers::nothing : Askers::link, pathOf(item)};
        }
        return {isRaw ? Askers::rawEntry : Askers::blockEntry, pathOf(item)};
    }

    std::string_view subject(std::size_t item) const override {
        return diskNameOf((*names)[item]);
    }

    std::string nameOf(std::size_t item, unsigned call, unsigned) const override {
        return (*names)[item] + " " + questionNames[call];
    }

    /// A disk that hangs for one slice is not asked for the others.
    void hangs(std::size_t item, unsigned call) override {
        if (!isCommand(call)) {
            hanging.try_emplace(subject(item), Hang{item, call == static_cast<unsigned>(Question::readlink)});
        }
    }

    void take(std::size_t item, const Answer &answer) override {
        entry.name = (*names)[item];
        const auto question = static_cast<Question>(answer.call);
        takeAnswer(answer, entry.answers);
        int &outcome = entry.answers.outcomes[question];
        switch (question) {
        case Question::readlink:
            takeLink(answer, outcome);
            break;
        case Question::stat:
        case Question::fstat:
            if (answer.error == 0) {
                const auto kind = valueOf<FileKind>(answer.data);
                entry.device = kind.device;
                isRegular = kind.isRegular;
            }
            break;
        case Question::information:
            if (answer.error == 0) {
                entry.partition = valueOf<dk_cinfo>(answer.data).dki_partition;
            }
            break;
        case Question::ustat:
            entry.isMounted = answer.error != EINVAL; // nothing is mounted from it
            outcome = entry.isMounted ? outcome : Outcomes::notAsked;
            break;
        default:
            break;
        }
    }

    void giveUp(std::size_t item, unsigned call, unsigned) override {
        entry.name = (*names)[item];
        entry.isMounted = entry.isMounted || call == static_cast<unsigned>(Question::ustat);
        if (call < questions) {
            entry.answers.outcomes[static_cast<Question>(call)] = ETIMEDOUT;
        } else {
            report.notRead("disks", nameOf(item, call, 0), errnoText(ETIMEDOUT));
        }
    }

    void fail(std::size_t item, const std::string &reason) override {
        if (!isStopped()) {
            report.notRead("disks", pathOf(item), reason);
        }
        entry.clear();
        isRegular = false;
    }

    void finish(std::size_t item) override {
        isKept[item] = true;
        if (isPlainFile()) {
            host.entries.push_back({pathOf(item), std::nullopt, description::positionLast});
        } else {
            addDevice(item);
        }
        entry.clear();
        isRegular = false;
    }

    /// Keeps the directory's order when it is not that in which the description has its entries.
    void describeOrder() {
        if (!names || (listed.empty() && !names->empty())) {
            return; // nobody could be asked
        }
        auto next = listed.begin();
        const auto isNext = [&](std::string_view disk, std::string_view slice) {
            return next != listed.end() && next->size() == disk.size() + slice.size() && next->starts_with(disk) &&
                   next++->ends_with(slice);
        };
        bool isInOrder = !listed.empty();
        for (const description::Disk &disk : host.disks) {
            if (std::ranges::find(*disk.directories, directory) != disk.directories->end()) {
                isInOrder = isInOrder && std::ranges::all_of(*disk.slices, [&](const description::Slice &slice) {
                                return isNext(disk.name, slice.name);
                            });
            }
        }
        for (const description::Entry &other : host.entries) {
            if (other.path.starts_with(directory + "/")) {
                isInOrder = isInOrder && isNext(std::string_view(other.path).substr(directory.size() + 1), {});
            }
        }
        if (!isInOrder) {
            host.listings[directory].assign(listed.begin(), listed.end());
        }
    }

    DiskGroups &found() {
        return groups;
    }

private:
    std::string pathOf(std::size_t item) const {
        return directory + "/" + (*names)[item];
    }

    void addDevice(std::size_t item) {
        const Outcomes outcomes = entry.answers.outcomes;
        if (outcomes[isRaw ? Question::openForRequests : Question::stat] == Outcomes::notAsked) {
            notAsked(item);
        }
        const std::size_t index = groups.add(std::move(entry));
        if (outcomes[Question::inquiry] == 0 && outcomes[Question::inquiryC0] == 0) {
            const Group &group = groups.groups[index]; // whose answers to both are the entry's
            for (ArrayChoice &choice : choices) {
                choice.consider(group.answers, pathOf(item), index, group.slices.size() - 1);
            }
        }
    }

    /// Told once for each disk.
    void notAsked(std::size_t item) {
        const auto hang = hanging.find(subject(item));
        if (hang == hanging.end() || hang->second.item == item) {
            return;
        }
        entry.name = (*names)[item]; // of which nothing may have been told
        if (hang->second.isOfLink) {
            entry.answers.outcomes[Question::readlink] = ETIMEDOUT;
        }
        if (!std::exchange(hang->second.isTold, true)) {
            report.notRead("disks", std::string(subject(item)) + " other slices",
                           "not asked, since " + pathOf(hang->second.item) + " hangs");
        }
    }

    void takeLink(const Answer &answer, int &outcome) {
        if (answer.error == 0) {
            entry.link = {SeenLink::link,
                          std::string(reinterpret_cast<const char *>(answer.data.data()), answer.data.size())};
        } else if (answer.error == EINVAL) {
            entry.link = {SeenLink::none};
            outcome = 0;
        }
    }

    bool isPlainFile() const {
        const Outcomes &outcome = entry.answers.outcomes;
        const auto isNoDevice = [&](Question question) {
            return outcome[question] == ENXIO || outcome[question] == Outcomes::notAsked;
        };
        return entry.link.kind == SeenLink::none &&
               (isRaw ? outcome[Question::openForRequests] == ENXIO && isNoDevice(Question::openForCommands)
                      : outcome[Question::stat] == 0 && isRegular);
    }

    const std::string directory;
    const bool isRaw;
    description::Host &host;
    Report &report;
    std::optional<Names> names;
    std::vector<bool> isKept;             // by name
    std::vector<std::string_view> listed; // the names of what is known
    DiskGroups groups;
    std::vector<ArrayChoice> choices;
    std::optional<ArrayPages> pages;
    struct Hang {
        std::size_t item; // that was asked for
        bool isOfLink;
        bool isTold = false;
    };
    std::unordered_map<std::string_view, Hang> hanging; // by disk

    // What is known of the entry that is handed over.
    SeenEntry entry;
    bool isRegular = false;
};

/// The calls that failed, and on which of the group's slices they were tried.
void reportFailures(const Group &group, Report &report) {
    for (std::size_t i = 0; i < questions; ++i) {
        const auto question = static_cast<Question>(i);
        const int error = group.answers.outcomes[question];
        const bool isUsual = question == Question::inquiryC0 && error == EIO; // an array's disks have it, others not
        if (error <= 0 || isUsual) {
            continue;
        }
        const auto isAsked = [&](const SeenSlice &slice) { return slice.isAsked(question); };
        const auto first = std::ranges::find_if(group.slices, isAsked);
        const auto last = std::find_if(group.slices.rbegin(), group.slices.rend(), isAsked);
        std::string place(group.diskName);
        place.append(first == group.slices.end() ? std::string_view() : first->suffix);
        if (last != group.slices.rend() && &*first != &*last) {
            // an EFI disk's own entry is the disk's name
            place.append(" to ").append(last->suffix.empty() ? group.diskName : last->suffix);
        }
        report.notRead("disks", place + " " + questionNames[i], errnoText(error));
    }
}

class Disks : public AskedSection {
public:
    Disks(const std::vector<tarn::ArrayNames> &arrays, description::Host &described, Report &toReport)
        : host(described), report(toReport), raw(tarn::s_dev_rdsk, arrays, described, toReport),
          block(tarn::dev_dsk, {}, described, toReport) {
    }

    void begin(Askers &askers) override {
        raw.begin(askers);
    }

    void goOn(Askers &askers) override {
        raw.askForPages(askers);
        block.begin(askers);
    }

    void finish() override {
        raw.list();
        block.list();
        std::vector<Group> groups = DiskGroups::join(std::move(raw.found()), std::move(block.found()));
        host.disks.reserve(groups.size());
        for (Group &group : groups) {
            reportFailures(group, report);
            host.disks.push_back(std::move(group).describe());
        }
        raw.describeOrder();
        block.describeOrder();
    }

private:
    description::Host &host;
    Report &report;
    Walk raw;
    Walk block;
};

} // namespace

std::unique_ptr<AskedSection> diskSection(const std::vector<tarn::ArrayNames> &arrays, description::Host &host,
                                          Report &report) {
    return std::make_unique<Disks>(arrays, host, report);
}

} // namespace record
