#include <chrono>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/replay/Host.h"
#include "platform/replay/PlatformCall.h"

// The mount table, and the sizes of what is mounted.

namespace replay {
namespace {

constexpr std::size_t fieldsOfALine = 5;

/// The hosts whose tables are open: the streams read from the text that the host holds.
std::mutex openTablesMutex;
std::unordered_map<std::FILE *, std::shared_ptr<const Host>> openTables;

std::FILE *openTable(std::string_view path) {
    std::shared_ptr<const Host> host = currentHost();
    if (path != MNTTAB || !host->mnttab) {
        return failWith<std::FILE *>(ENOENT);
    }
    // A stream that is only read leaves its text alone.
    std::FILE *file = fmemopen(const_cast<char *>(host->mnttab->data()), host->mnttab->size(), "r");
    if (file != nullptr) {
        const std::lock_guard lock(openTablesMutex);
        openTables[file] = std::move(host);
    }
    return file;
}

/// The next line without its end, in a buffer that the thread's next call uses again. False at the end of the file.
bool readLine(std::FILE *file, std::string &line) {
    line.clear();
    int character = std::getc(file);
    if (character == EOF) {
        return false;
    }
    for (; character != EOF && character != '\n'; character = std::getc(file)) {
        line += static_cast<char>(character);
    }
    return true;
}

} // namespace
} // namespace replay

namespace solaris {

using namespace replay;

FILE *fopen(const char *path, const char *) {
    return answerCall([&] { return std::string("fopen ") + path; }, [&] { return openTable(path); });
}

int fclose(FILE *file) {
    std::shared_ptr<const Host> host; // outlives the stream
    {
        const std::lock_guard lock(openTablesMutex);
        if (const auto found = openTables.find(file); found != openTables.end()) {
            host = std::move(found->second);
            openTables.erase(found);
        }
    }
    const int result = std::fclose(file);
    return answerCall([] { return std::string("fclose"); }, [&] { return result; });
}

int getmntent(FILE *table, struct mnttab *entry) {
    const InPlatform inside;
    thread_local std::string line;
    if (isRefused([] { return std::string("getmntent"); })) {
        return failWith(EIO);
    }
    if (!readLine(table, line)) {
        return -1;
    }
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
    *entry = {fields[0], fields[1], fields[2], fields[3], fields[4]};
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
        // What is replayed passes at once, but for a file system that is described as slow.
        std::this_thread::sleep_for(std::chrono::seconds(found->second.seconds));
        if (found->second.fails != 0) {
            return failWith(found->second.fails);
        }
        *status = found->second;
        return 0;
    });
}

} // namespace solaris
