#include <algorithm>
#include <bit>
#include <cstring>
#include <deque>
#include <functional>
#include <span>
#include <unordered_set>
#include <utility>

#include "common/Directory.h"
#include "common/DiskDevices.h"
#include "common/FileDescriptor.h"
#include "description/ScsiCommands.h"
#include "record/DiskGroups.h"
#include "record/Recorder.h"

// The device directories, and what stands in them.

namespace record {
namespace {

constexpr std::size_t longestLink = 8192; // of what is kept of a link; the library takes less
constexpr std::size_t longestName = 99;   // of an entry that the library opens to put requests to
constexpr std::size_t inquirySize = 255;
constexpr std::size_t pageSize = 65535;

using Names = std::deque<std::string>;

/// Whether two of the names have one hash.
bool mayRepeat(const Names &names) {
    std::vector<std::size_t> table(std::bit_ceil(2 * names.size() + 1)); // by hash; 0 is free
    for (const std::string &name : names) {
        const std::size_t hash = std::max<std::size_t>(std::hash<std::string>()(name), 1);
        std::size_t at = hash & (table.size() - 1);
        while (table[at] != 0) {
            if (table[at] == hash) {
                return true;
            }
            at = (at + 1) & (table.size() - 1);
        }
        table[at] = hash;
    }
    return false;
}

/// A directory that changes while it is read may show a name twice.
void dropRepeated(Names &names) {
    if (mayRepeat(names)) {
        std::unordered_set<std::string> kept;
        std::erase_if(names, [&](const std::string &name) { return !kept.insert(name).second; });
    }
}

/// The names in a directory in its order, without "." and "..". Nothing when it cannot be opened.
std::optional<Names> namesIn(const char *path) {
    tarn::Directory directory(path);
    if (!directory.isOpen()) {
        return std::nullopt;
    }
    Names names;
    while (const char *const name = directory.next()) {
        if (std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0) {
            names.emplace_back(name);
        }
    }
    dropRepeated(names);
    return names;
}

int errorOf(int result) {
    return result < 0 ? errno : 0;
}

/// Asks about one entry after the other.
class Asker {
public:
    SeenEntry askBlock(const std::string &path, std::string_view name) {
        SeenEntry entry;
        entry.name = name;
        askLink(path, entry);
        struct ::stat status {};
        Outcomes &outcome = entry.answers.outcomes;
        outcome[Question::stat] = errorOf(solaris::stat(path.c_str(), &status));
        if (outcome[Question::stat] == 0) {
            entry.device = status.st_rdev;
        }
        isPlain = outcome[Question::stat] == 0 && S_ISREG(status.st_mode) && entry.link.kind == SeenLink::none;
        return entry;
    }

    SeenEntry askRaw(const std::string &path, std::string_view name) {
        SeenEntry entry;
        entry.name = name;
        askLink(path, entry);
        if (name.size() <= longestName) {
            askRequests(path, entry);
        }
        if (name.find(tarn::wholeDiskSlice) != std::string_view::npos && path.size() < tarn::scsiPathSize) {
            askInquiry(path, entry);
        }
        const Outcomes &outcome = entry.answers.outcomes;
        const auto isNoDevice = [&](Question question) {
            return outcome[question] == ENXIO || outcome[question] == Outcomes::notAsked;
        };
        isPlain = outcome[Question::openForRequests] == ENXIO && isNoDevice(Question::openForCommands) &&
                  entry.link.kind == SeenLink::none;
        return entry;
    }

    /// The two large pages of an array's LUN.
    void askPages(const std::string &path, Answers &answers) {
        const tarn::FileDescriptor device(solaris::open(path.c_str(), tarn::openForCommands));
        if (device.isOpen()) {
            ask(device, Question::receiveDiagnosticA0, pageSize, answers);
            ask(device, Question::logSense3B, pageSize, answers);
        }
    }

    bool isPlain = false; // of the last entry: it is a plain file

    /// What the last standard INQUIRY and the last page 0xC0 answered, filled up with zeros.
    std::array<unsigned char, inquirySize> inquiry{};
    std::array<unsigned char, inquirySize> pageC0{};

private:
    void askLink(const std::string &path, SeenEntry &entry) {
        const ssize_t length = solaris::readlink(path.c_str(), link.data(), link.size());
        int &outcome = entry.answers.outcomes[Question::readlink];
        outcome = 0;
        if (length >= 0) {
            entry.link = {SeenLink::link, links.keep({link.data(), static_cast<std::size_t>(length)})};
        } else if (errno == EINVAL) {
            entry.link = {SeenLink::none};
        } else {
            outcome = errno;
        }
    }

    /// As the providers of disks and of partitions do.
    void askRequests(const std::string &path, SeenEntry &entry) {
        Outcomes &outcome = entry.answers.outcomes;
        tarn::FileDescriptor device(solaris::open(path.c_str(), tarn::openForRequests));
        outcome[Question::openForRequests] = errorOf(device.get());
        if (!device.isOpen()) {
            return;
        }
        struct ::stat status {};
        outcome[Question::fstat] = errorOf(solaris::fstat(device.get(), &status));
        dk_cinfo information{};
        outcome[Question::information] = errorOf(solaris::ioctl(device.get(), DKIOCINFO, &information));
        if (outcome[Question::information] == 0) {
            entry.partition = information.dki_partition;
        }
        askTables(device, Question::geometry, Question::label, entry.answers);
        if (outcome[Question::fstat] == 0) {
            entry.device = status.st_rdev;
            askMounted(entry);
        }
        if (outcome[Question::geometry] != 0 && entry.name.ends_with(tarn::wholeDiskSlice)) {
            device.close();
            device = tarn::FileDescriptor(solaris::open(path.c_str(), tarn::openForRequestsAgain));
            outcome[Question::openAgain] = errorOf(device.get());
            if (device.isOpen()) {
                askTables(device, Question::geometryAgain, Question::labelAgain, entry.answers);
            }
        }
    }

    static void askTables(const tarn::FileDescriptor &device, Question forGeometry, Question forLabel,
                          Answers &answers) {
        const auto request = [&]<class Table>(Question question, int code, std::optional<Table> &known) {
            Table table{};
            answers.outcomes[question] = errorOf(solaris::ioctl(device.get(), code, &table));
            if (answers.outcomes[question] == 0) {
                known = table;
            }
        };
        request(forGeometry, DKIOCGGEOM, answers.geometry);
        request(forLabel, DKIOCGVTOC, answers.label);
    }

    static void askMounted(SeenEntry &entry) {
        struct ::ustat fileSystem {};
        const int error = errorOf(solaris::ustat(*entry.device, &fileSystem));
        if (error != EINVAL) { // nothing is mounted from it
            entry.isMounted = true;
            entry.answers.outcomes[Question::ustat] = error;
        }
    }

    /// As the interrogator does.
    void askInquiry(const std::string &path, SeenEntry &entry) {
        const tarn::FileDescriptor device(solaris::open(path.c_str(), tarn::openForCommands));
        entry.answers.outcomes[Question::openForCommands] = errorOf(device.get());
        if (!device.isOpen()) {
            return;
        }
        ask(device, Question::inquiry, inquirySize, entry.answers);
        std::copy_n(data.begin(), inquirySize, inquiry.begin());
        ask(device, Question::inquiryC0, inquirySize, entry.answers);
        std::copy_n(data.begin(), inquirySize, pageC0.begin());
    }

    /// Keeps the answer without the zeros at its end: what a command does not answer reads as zeros.
    void ask(const tarn::FileDescriptor &device, Question question, std::size_t size, Answers &answers) {
        const std::size_t index = static_cast<std::size_t>(question) - static_cast<std::size_t>(Question::inquiry);
        const description::ScsiCommand &known =
            *std::ranges::find(description::scsiCommands, askedCommands[index], &description::ScsiCommand::name);
        std::array<unsigned char, 10> cdb = known.cdb;
        cdb[known.countAt] = static_cast<unsigned char>(size >> 8);
        cdb[known.countAt + 1] = static_cast<unsigned char>(size);
        std::fill_n(data.begin(), size, static_cast<unsigned char>(0));
        uscsi_cmd command{};
        command.uscsi_flags = USCSI_READ;
        command.uscsi_timeout = tarn::scsiTimeout;
        command.uscsi_cdb = reinterpret_cast<char *>(cdb.data());
        command.uscsi_cdblen = static_cast<uchar_t>(known.length);
        command.uscsi_bufaddr = reinterpret_cast<char *>(data.data());
        command.uscsi_buflen = data.size();
        const int error = errorOf(solaris::ioctl(device.get(), USCSICMD, &command));
        answers.outcomes[question] = error;
        if (error == 0) {
            const auto last = std::find_if(std::make_reverse_iterator(data.begin() + static_cast<std::ptrdiff_t>(size)),
                                           data.rend(), [](unsigned char byte) { return byte != 0; });
            answers.commands[index].assign(data.begin(), last.base());
        }
    }

    std::array<char, longestLink> link;
    TextStore links;
    std::array<unsigned char, pageSize> data;
};

/// The LUNs from which the interrogator would read an array's statistics.
struct ArrayChoice {
    struct Lun {
        std::optional<tarn::LunKind> kind;
        std::string path;
        std::size_t group;
    };
    const tarn::ArrayNames *names;
    std::array<Lun, 2> luns;

    void consider(const Asker &asker, const std::string &path, std::size_t group) {
        const std::optional<tarn::LunKind> kind = tarn::lunKind(*names, asker.inquiry.data());
        const std::optional<std::size_t> controller = tarn::lunController(*names, asker.pageC0.data());
        if (kind && controller && tarn::isChosen(luns[*controller].kind, *kind)) {
            luns[*controller] = {kind, path, group};
        }
    }
};

/// The entries of one of the two directories.
class Walk {
public:
    Walk(const char *directoryPath, const std::vector<tarn::ArrayNames> &arrays, description::Host &described,
         Report &toReport)
        : directory(directoryPath), isRaw(directory == description::rawDirectory), host(described), report(toReport),
          groups(isRaw) {
        for (const tarn::ArrayNames &arrayNames : arrays) {
            choices.push_back({&arrayNames, {}});
        }
    }

    void walk() {
        names = namesIn(directory.c_str());
        if (!names) {
            report.notRead("disks", directory, errnoText(errno));
            return;
        }
        groups.reserve(names->size());
        std::string path = directory + "/";
        const std::size_t nameAt = path.size();
        for (std::size_t i = 0; i < names->size(); ++i) {
            report.progress(directory.c_str(), i, names->size());
            path.replace(nameAt, std::string::npos, (*names)[i]);
            walkEntry(path, (*names)[i]);
        }
        for (const ArrayChoice &choice : choices) {
            for (const ArrayChoice::Lun &lun : choice.luns) {
                if (lun.kind) {
                    asker.askPages(lun.path, groups.groups[lun.group].answers);
                }
            }
        }
        report.section("disks", counted(names->size(), isRaw ? "raw device" : "block device"));
    }

    /// Keeps the directory's order when it is not that in which the description has its entries.
    void describeOrder() {
        if (!names) {
            return;
        }
        auto next = names->begin();
        const auto isNext = [&](std::string_view disk, std::string_view slice) {
            return next != names->end() && next->size() == disk.size() + slice.size() && next->starts_with(disk) &&
                   next++->ends_with(slice);
        };
        bool isInOrder = !names->empty();
        for (const description::Disk &disk : host.disks) {
            if (std::ranges::find(*disk.directories, directory) != disk.directories->end()) {
                isInOrder = isInOrder && std::ranges::all_of(*disk.slices, [&](const description::Slice &slice) {
                                return isNext(disk.name, slice.name);
                            });
            }
        }
        for (const description::Entry &entry : host.entries) {
            if (entry.path.starts_with(directory + "/")) {
                isInOrder = isInOrder && isNext(std::string_view(entry.path).substr(directory.size() + 1), {});
            }
        }
        if (!isInOrder) {
            host.listings[directory].assign(names->begin(), names->end());
        }
    }

    DiskGroups &found() {
        return groups;
    }

private:
    void walkEntry(const std::string &path, const std::string &name) {
        SeenEntry entry = isRaw ? asker.askRaw(path, name) : asker.askBlock(path, name);
        if (asker.isPlain) {
            host.entries.push_back({path, std::nullopt, description::positionLast});
            return;
        }
        const bool isAnswered =
            entry.answers.outcomes[Question::inquiry] == 0 && entry.answers.outcomes[Question::inquiryC0] == 0;
        const std::size_t group = groups.add(std::move(entry));
        for (ArrayChoice &choice : choices) {
            if (isAnswered) {
                choice.consider(asker, path, group);
            }
        }
    }

    const std::string directory;
    const bool isRaw;
    description::Host &host;
    Report &report;
    std::optional<Names> names;
    DiskGroups groups;
    std::vector<ArrayChoice> choices;
    Asker asker;
};

/// A call that failed on all slices of a group, as the report names it.
void reportFailures(const Group &group, Report &report) {
    static constexpr std::pair<Question, const char *> names[] = {
        {Question::stat, "stat"},
        {Question::readlink, "readlink"},
        {Question::ustat, "ustat"},
        {Question::openForRequests, "open O_RDWR"},
        {Question::openAgain, "open O_RDONLY"},
        {Question::openForCommands, "open O_RDONLY|O_NDELAY"},
        {Question::fstat, "fstat"},
        {Question::information, "DKIOCINFO"},
        {Question::geometry, "DKIOCGGEOM"},
        {Question::geometryAgain, "DKIOCGGEOM O_RDONLY"},
        {Question::label, "DKIOCGVTOC"},
        {Question::labelAgain, "DKIOCGVTOC O_RDONLY"},
        {Question::inquiry, "INQUIRY"},
        {Question::inquiryC0, "INQUIRY C0"},
        {Question::receiveDiagnosticA0, "RECEIVE DIAGNOSTIC A0"},
        {Question::logSense3B, "LOG SENSE 3B"},
    };
    static_assert(std::size(names) == questions);
    std::string place = std::string(group.diskName).append(group.slices.front().suffix);
    if (group.slices.size() > 1) {
        const std::string_view last = group.slices.back().suffix;
        place.append(" to ").append(last.empty() ? group.diskName : last); // which an EFI disk's own entry is
    }
    for (const auto &[question, name] : names) {
        const int error = group.answers.outcomes[question];
        const bool isUsual = question == Question::inquiryC0 && error == EIO; // an array's disks have it, others not
        if (error > 0 && !isUsual) {
            report.notRead("disks", place + " " + name, errnoText(error));
        }
    }
}

} // namespace

void recordDisks(const std::vector<tarn::ArrayNames> &arrays, description::Host &host, Report &report) {
    Walk raw(tarn::s_dev_rdsk, arrays, host, report);
    raw.walk();
    Walk block(tarn::dev_dsk, {}, host, report);
    block.walk();
    std::vector<Group> groups = DiskGroups::join(std::move(raw.found()), std::move(block.found()));
    host.disks.reserve(groups.size());
    for (Group &group : groups) {
        reportFailures(group, report);
        host.disks.push_back(std::move(group).describe());
    }
    raw.describeOrder();
    block.describeOrder();
}

} // namespace record
