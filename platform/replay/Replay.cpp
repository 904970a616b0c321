#include "platform/replay/Replay.h"

#include <utility>

#include "platform/replay/HostFile.h"

namespace replay {

std::string loadHostFile(const std::string &path, std::chrono::milliseconds silence) {
    std::shared_ptr<const Host> loaded = readHostFile(path, silence);
    std::string recordedAt = loaded->recordedAt;
    makeCurrent(std::move(loaded));
    return recordedAt;
}

void loadHostText(const std::string &json) {
    makeCurrent(std::make_shared<const Host>(description::readHost(json)));
}

} // namespace replay
