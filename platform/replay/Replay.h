#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "description/HostDescriptionError.h"

/// The replayed host, as tests, benchmarks and the command line steer it. The calls themselves are those of
/// platform/solaris.h, kstat.h and hbaapi.h; docs/host-descriptions.md says what a description holds.
namespace replay {

using description::HostDescriptionError;

/// How long a pipe may leave its reader without a word.
inline constexpr std::chrono::milliseconds usualSilence = std::chrono::seconds(30);

/// Make this description the current host, from the next call on. What was opened before keeps the host it was opened
/// on. Raise HostDescriptionError, and leave the host as it is, when the description cannot be used; a file also when it
/// is a device, larger than 1 GB, or a pipe from which nothing comes for so long. A file is read once; the answer is when
/// the host was recorded, in UTC ("2026-11-24T10:00:00Z"), empty when the description does not say.
std::string loadHostFile(const std::string &path, std::chrono::milliseconds silence = usualSilence);
void loadHostText(const std::string &json);

/// Begin an empty journal: from now on every platform call leaves a line, its name and then its salient arguments.
/// When the call failed and set errno, the name of that error ends the line. readdir and getmntent, which only
/// move within what was opened, leave none.
void startJournal();

/// The lines since the start, in the order of the calls; nothing more is kept after it.
std::vector<std::string> stopJournal();

/// Refuse the n-th platform call from now on (from 1), whatever the host has to say, the way the platform refuses it: -1
/// or null with EIO, an HBA status, a handle or a count of 0. It leaves a line that ends with "refused", readdir and
/// getmntent too. A call that gives something back does so all the same, and only its answer is a failure.
void refuseCall(int n);

/// Refuse none any more. Whether the chosen one has come.
bool stopRefusing();

/// Whether the calling thread is inside of a platform call.
bool isInPlatform();

/// Whether an answer leaves 0xA5 in what it does not set, as a platform may that promises nothing of it: the rest of a
/// SCSI command's buffer, a structure or a name of the HBA library when its call fails, what stands behind the end of a
/// text in them. Off until it is asked for; members that a description leaves out are told as the format says, dirt or
/// not.
void leaveDirt(bool isLeft);

} // namespace replay
