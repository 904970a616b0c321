#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <utility>

#include "platform/replay/BuiltInHost.h"
#include "platform/replay/Host.h"
#include "platform/replay/Replay.h"

// Which host answers: the one that was loaded last; until one is, that of TARN_HOST or the built-in one.

namespace replay {
namespace {

std::mutex hostMutex;
std::shared_ptr<const Host> host; // null until first use

void setHost(std::shared_ptr<const Host> loaded) {
    const std::lock_guard lock(hostMutex);
    host.swap(loaded); // the old one goes away after the lock
}

std::string readFile(const std::string &path) {
    const auto refuse = [&] { throw HostDescriptionError(path + ": " + std::strerror(errno)); };
    const std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
    if (file == nullptr) {
        refuse();
    }
    std::string text;
    char buffer[65536];
    while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, file.get())) {
        text.append(buffer, count);
    }
    if (std::ferror(file.get()) != 0) {
        refuse();
    }
    return text;
}

std::shared_ptr<const Host> makeHost(const std::string &json) {
    return std::make_shared<const Host>(description::readHost(json));
}

std::shared_ptr<const Host> readHostFile(const std::string &path) {
    const std::string text = readFile(path);
    try {
        return makeHost(text);
    } catch (const HostDescriptionError &error) {
        throw HostDescriptionError(path + ": " + error.what());
    }
}

/// A host that cannot be read leaves one on which every facility is absent: the program is told, and goes on.
std::shared_ptr<const Host> firstHost() {
    const char *path = std::getenv("TARN_HOST");
    try {
        return path == nullptr || *path == '\0' ? makeHost(std::string(builtInHostText)) : readHostFile(path);
    } catch (const HostDescriptionError &error) {
        std::fprintf(stderr, "TARN_HOST: %s\n", error.what());
        return std::make_shared<const Host>();
    }
}

} // namespace

std::shared_ptr<const Host> currentHost() {
    const std::lock_guard lock(hostMutex);
    if (host == nullptr) {
        host = firstHost();
    }
    return host;
}

void loadHostFile(const std::string &path) {
    setHost(readHostFile(path));
}

void loadHostText(const std::string &json) {
    setHost(makeHost(json));
}

} // namespace replay
