#include "platform/replay/Replay.h"

#include "platform/replay/HostFile.h"

namespace replay {

void loadHostFile(const std::string &path, std::chrono::milliseconds silence) {
    makeCurrent(readHostFile(path, silence));
}

void loadHostText(const std::string &json) {
    makeCurrent(std::make_shared<const Host>(description::readHost(json)));
}

} // namespace replay
