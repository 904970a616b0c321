#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <string_view>

#include "description/HostDescriptionError.h"
#include "platform/replay/Journal.h"
#include "platform/replay/PlatformCall.h"

/// The replayed host, as tests, benchmarks and the command line steer it: what is loaded, the journal of the calls
/// (Journal.h), and calls that are refused or answered with dirt (PlatformCall.h). The calls themselves are those of
/// platform/solaris.h, kstat.h and hbaapi.h; docs/host-descriptions.md says what a description holds.
namespace replay {

using description::HostDescriptionError;

/// How long a pipe may leave its reader without a word.
inline constexpr std::chrono::milliseconds usualSilence = std::chrono::seconds(30);

/// Make this description the current host, from the next call on. What was opened before keeps the host it was opened
/// on. Raise HostDescriptionError, and leave the host as it is, when the description cannot be used; a file also when it
/// is a device, larger than 1 GB, or a pipe from which nothing comes for so long. A file is read once. A text comes part
/// by part, an empty one at its end, and errors call it by its name. The answer is when the host was recorded, in UTC
/// ("2026-11-24T10:00:00Z"), empty when the description does not say.
std::string loadHostFile(const std::string &path, std::chrono::milliseconds silence = usualSilence);
std::string loadHostText(const std::function<std::string_view()> &text, const std::string &name);
void loadHostText(const std::string &json);

/// The text of such a file, for whoever has more than one use of it: a pipe is read but once.
std::string readHostFileText(const std::string &path, std::chrono::milliseconds silence = usualSilence);

} // namespace replay
