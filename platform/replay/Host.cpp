#include "platform/replay/Host.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <utility>
#include <variant>

#include <fcntl.h>

#include "common/system/Printable.h"
#include "platform/HasHost.h"
#include "platform/replay/BuiltInHost.h"
#include "platform/replay/HostFile.h"
#include "platform/replay/PlatformCall.h"
#include "platform/replay/Replay.h"

namespace replay {
namespace {

std::mutex hostMutex;
std::shared_ptr<const Host> current; // null until first use
bool firstHostIsUsable = true;

/// A host that cannot be read leaves one on which every facility is absent: the program is told, and goes on.
std::shared_ptr<const Host> firstHost() {
    const char *path = std::getenv("TARN_HOST");
    try {
        return path == nullptr || *path == '\0'
                   ? std::make_shared<const Host>(description::readHost(std::string(builtInHostText)))
                   : readHostFile(path, usualSilence);
    } catch (const HostDescriptionError &error) {
        static_cast<void>(std::fprintf(stderr, "TARN_HOST: %s\n", tarn::printable(error.what()).c_str()));
        firstHostIsUsable = false;
        return std::make_shared<const Host>();
    }
}

/// An entry of the mount table as its text shows it.
std::string textOf(const description::MountEntry &entry) {
    return entry.mnt_special + "\t" + entry.mnt_mountp + "\t" + entry.mnt_fstype + "\t" + entry.mnt_mntopts + "\t" +
           entry.mnt_time;
}

/// What is said of the call; 0 when nothing is.
template <class Value>
Value saidOf(const description::ByText<Value> &said, std::string_view call) {
    const auto found = said.find(call);
    return found == said.end() ? 0 : found->second;
}

/// The same for a call on a descriptor of these open flags.
template <class Value>
Value saidOf(const description::ByText<Value> &said, std::string_view call, int openFlags) {
    if (said.empty()) {
        return 0;
    }
    const int mode = openFlags & O_ACCMODE;
    if (mode == O_RDWR || mode == O_RDONLY) {
        const std::string inMode = std::string(call) + (mode == O_RDWR ? " O_RDWR" : " O_RDONLY");
        const std::string withFlag = (openFlags & O_NDELAY) != 0 ? inMode + "|O_NDELAY" : inMode;
        for (const std::string &name : {withFlag, inMode}) {
            if (const auto found = said.find(name); found != said.end()) {
                return found->second;
            }
        }
    }
    return saidOf(said, call);
}

} // namespace

Host::Host(description::Host read) : description::Host(std::move(read)), files(*this) {
    if (mnttab) {
        for (const auto &line : *mnttab) {
            const auto *const text = std::get_if<std::string>(&line);
            mountTableText +=
                (text != nullptr ? *text : textOf(*std::get<description::Sparse<description::MountEntry>>(line))) +
                "\n";
        }
    }
}

int failureOf(const Disk &disk, std::string_view call) {
    pass(saidOf(disk.seconds, call));
    return saidOf(disk.fails, call);
}

int failureOf(const Disk &disk, std::string_view call, int openFlags) {
    pass(saidOf(disk.seconds, call, openFlags));
    return saidOf(disk.fails, call, openFlags);
}

std::shared_ptr<const Host> currentHost() {
    const std::lock_guard lock(hostMutex);
    if (current == nullptr) {
        current = firstHost();
    }
    return current;
}

void makeCurrent(std::shared_ptr<const Host> loaded) {
    const std::lock_guard lock(hostMutex);
    current.swap(loaded); // the old one goes away after the lock
}

} // namespace replay

bool platform::hasHost() {
    replay::currentHost();
    const std::lock_guard lock(replay::hostMutex);
    return replay::firstHostIsUsable;
}
