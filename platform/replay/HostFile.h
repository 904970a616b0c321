#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "platform/replay/Host.h"

namespace replay {

/// The host that the file describes, as loadHostFile takes it. Raises HostDescriptionError, which names the file.
std::shared_ptr<const Host> readHostFile(const std::string &path, std::chrono::milliseconds silence);

} // namespace replay
