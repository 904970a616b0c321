#include <cerrno>
#include <unordered_set>

#include "common/system/MountTable.h"
#include "record/Recorder.h"
#include "record/StopSignals.h"

// The sizes of the mounted file systems.

namespace record {
namespace {

bool isAsked(std::string_view fileSystemType) {
    return tarn::isOfLogicalDisk(fileSystemType) || tarn::isOfInventory(fileSystemType);
}

/// Those of the mount table whose sizes anybody asks for, each once.
std::vector<std::string> mountPointsOf(const description::Host &host) {
    std::vector<std::string> mountPoints;
    tarn::MountTable table;
    if (!host.mnttab || !table.isOpen()) {
        return mountPoints;
    }
    std::unordered_set<std::string> known;
    while (const mnttab *const entry = table.nextOf(isAsked)) {
        if (known.insert(entry->mnt_mountp).second) {
            mountPoints.emplace_back(entry->mnt_mountp);
        }
    }
    return mountPoints;
}

class Sizes : public Inquiry, public AskedSection {
public:
    Sizes(description::Host &described, Report &toReport) : host(described), report(toReport) {
    }

    void begin(Askers &askers) override {
        mountPoints = mountPointsOf(host);
        askers.add("statvfs", mountPoints.size(), *this);
    }

    void finish() override {
        if (!isStopped()) {
            report.section("statvfs", std::to_string(told) + " of " + counted(mountPoints.size(), "file system"));
        }
    }

    Request request(std::size_t item) override {
        return {Askers::fileSystem, mountPoints[item]};
    }
    std::string nameOf(std::size_t item, unsigned, unsigned) const override {
        return mountPoints[item];
    }
    void take(std::size_t item, const Answer &answer) override {
        if (answer.error != 0) {
            refuse(item, answer.error);
            return;
        }
        static_cast<description::StatVfs &>(host.statvfs[mountPoints[item]]) =
            valueOf<description::StatVfs>(answer.data);
        ++told;
    }
    void giveUp(std::size_t item, unsigned, unsigned) override {
        refuse(item, ETIMEDOUT);
    }
    void fail(std::size_t item, const std::string &reason) override {
        if (!isStopped()) {
            report.notRead("statvfs", mountPoints[item], reason);
        }
    }
    void finish(std::size_t) override {
    }

private:
    void refuse(std::size_t item, int error) {
        report.notRead("statvfs", mountPoints[item], errnoText(error));
        if (error != ENOENT) {
            host.statvfs[mountPoints[item]].fails = error;
        }
    }

    std::vector<std::string> mountPoints;
    std::size_t told = 0;
    description::Host &host;
    Report &report;
};

} // namespace

Ask wayToAskFileSystem() {
    return [](std::string_view mountPoint, Teller &teller) {
        description::StatVfs sizes{};
        teller.begin(0);
        const int error = solaris::statvfs64(std::string(mountPoint).c_str(), &sizes) == 0 ? 0 : errno;
        teller.tell(0, error, bytesOf(sizes));
    };
}

std::unique_ptr<AskedSection> fileSystemSection(description::Host &host, Report &report) {
    return std::make_unique<Sizes>(host, report);
}

} // namespace record
