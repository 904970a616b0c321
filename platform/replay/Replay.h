#pragma once

#include <chrono>
#include <string>

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
/// is a device, larger than 1 GB, or a pipe from which nothing comes for so long.
void loadHostFile(const std::string &path, std::chrono::milliseconds silence = usualSilence);
void loadHostText(const std::string &json);

} // namespace replay
