#pragma once

#include "platform/replay/Host.h"
#include "platform/replay/JsonReader.h"

namespace replay {

/// The sections of a host description, each read into its member of Host.
void readSysinfo(const Json &value, const Place &place, Host &host);
void readUname(const Json &value, const Place &place, Host &host);
void readSysconf(const Json &value, const Place &place, Host &host);
void readProcessors(const Json &value, const Place &place, Host &host);
void readKstat(const Json &value, const Place &place, Host &host);
void readMnttab(const Json &value, const Place &place, Host &host);
void readStatvfs(const Json &value, const Place &place, Host &host);
void readShadow(const Json &value, const Place &place, Host &host);
void readDisks(const Json &value, const Place &place, Host &host);
void readEntries(const Json &value, const Place &place, Host &host);
void readHba(const Json &value, const Place &place, Host &host);

/// Makes the device files of the disks and entries, once both are read.
void makeFiles(const Place &place, Host &host);

} // namespace replay
