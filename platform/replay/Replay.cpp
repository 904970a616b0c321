#include "platform/replay/Replay.h"

#include <utility>

#include "platform/replay/HostFile.h"

namespace replay {
namespace {

std::string loadHost(std::shared_ptr<const Host> loaded) {
    std::string recordedAt = loaded->recordedAt;
    makeCurrent(std::move(loaded));
    return recordedAt;
}

} // namespace

std::string loadHostFile(const std::string &path, std::chrono::milliseconds silence) {
    return loadHost(readHostFile(path, silence));
}

std::string loadHostText(const std::function<std::string_view()> &text, const std::string &name) {
    return loadHost(readHostText(text, name));
}

void loadHostText(const std::string &json) {
    makeCurrent(std::make_shared<const Host>(description::readHost(json)));
}

} // namespace replay
