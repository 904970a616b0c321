#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/replay/Host.h"
#include "platform/replay/PlatformCall.h"

// The mount table, and the sizes of what is mounted.

namespace replay {
namespace {

constexpr std::size_t fieldsOfALine = 5;

/// A table that is open: its stream reads from the text that the host holds, and getmntent what stands `next`.
struct OpenTable {
    std::shared_ptr<const Host> host;
    std::size_t next = 0;
};

std::mutex openTablesMutex;
std::unordered_map<std::FILE *, OpenTable> openTables;

std::FILE *openTable(std::string_view path) {
    std::shared_ptr<const Host> host = currentHost();
    if (path != MNTTAB || !host->mnttab) {
        return failWith<std::FILE *>(ENOENT);
    }
    // A stream that is only read leaves its text alone.
    std::string &text = const_cast<std::string &>(host->mountTableText);
    std::FILE *file = fmemopen(text.data(), text.size(), "r");
    if (file != nullptr) {
        const std::lock_guard lock(openTablesMutex);
        openTables[file] = {std::move(host)};
    }
    return file;
}

/// What getmntent comes to next. Null at the end.
const description::MountTable::value_type *nextOf(std::FILE *file) {
    const std::lock_guard lock(openTablesMutex);
    const auto found = openTables.find(file);
    if (found == openTables.end() || found->second.next == found->second.host->mnttab->size()) {
        return nullptr;
    }
    return &(*found->second.host->mnttab)[found->second.next++];
}

/// The fields of a line, which it takes apart. 0, or what is wrong with it.
int readLine(std::string &line, mnttab &entry) {
    if (line.size() > MNT_LINE_MAX) {
        return MNT_TOOLONG;
    }
    char *fields[fieldsOfALine + 1] = {};
    char *rest = nullptr;
    std::size_t count = 0;
    for (char *field = strtok_r(line.data(), "\t", &rest); field != nullptr; field = strtok_r(nullptr, "\t", &rest)) {
        if (count == fieldsOfALine) {
            return MNT_TOOMANY;
        }
        fields[count++] = field;
    }
    if (count < fieldsOfALine) {
        return MNT_TOOFEW;
    }
    entry = {fields[0], fields[1], fields[2], fields[3], fields[4]};
    return 0;
}

} // namespace
} // namespace replay

namespace solaris {

using namespace replay;

FILE *fopen(const char *path, const char *) {
    return answerCall([&] { return std::string("fopen ") + path; }, [&] { return openTable(path); });
}

int fclose(FILE *file) {
    OpenTable table; // outlives the stream
    {
        const std::lock_guard lock(openTablesMutex);
        if (const auto found = openTables.find(file); found != openTables.end()) {
            table = std::move(found->second);
            openTables.erase(found);
        }
    }
    const int result = std::fclose(file); // NOLINT(cppcoreguidelines-owning-memory): this is what gives it back
    return answerCall([] { return std::string("fclose"); }, [&] { return result; });
}

int getmntent(FILE *table, struct mnttab *entry) {
    const InPlatform inside;
    thread_local std::string line;
    thread_local description::MountEntry told;
    if (isRefused([] { return std::string("getmntent"); })) {
        return failWith(EIO);
    }
    const auto *const next = nextOf(table);
    if (next == nullptr) {
        return -1;
    }
    if (const auto *const text = std::get_if<std::string>(next)) {
        line = *text;
        return readLine(line, *entry);
    }
    told = *std::get<description::Sparse<description::MountEntry>>(*next);
    *entry = {told.mnt_special.data(), told.mnt_mountp.data(), told.mnt_fstype.data(), told.mnt_mntopts.data(),
              told.mnt_time.data()};
    return 0;
}

int statvfs64(const char *path, struct ::statvfs64 *status) {
    const auto line = [&] { return std::string("statvfs64 ") + path; };
    return answerCall(line, [&] {
        const std::shared_ptr<const Host> host = currentHost();
        const auto found = host->statvfs.find(std::string_view(path));
        if (found == host->statvfs.end()) {
            return failWith(ENOENT);
        }
        pass(found->second.seconds);
        if (found->second.fails != 0) {
            return failWith(found->second.fails);
        }
        *status = static_cast<const description::StatVfs &>(found->second);
        return 0;
    });
}

} // namespace solaris
