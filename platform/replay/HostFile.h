#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "platform/replay/Host.h"

namespace replay {

/// The host that the file describes, as loadHostFile takes it. Raises HostDescriptionError, which names the file.
std::shared_ptr<const Host> readHostFile(const std::string &path, std::chrono::milliseconds silence);

/// The same of a text that is at hand, which errors call by that name.
std::shared_ptr<const Host> readHostText(const description::TextSource &text, const std::string &name);

} // namespace replay
