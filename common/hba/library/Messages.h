#pragma once

#include <string>

#include "platform/solaris.h"

// The wording of what the HBA library refuses, the same in the agent's log and in the self-test's lines.

namespace tarn {

/// The text of a status of the HBA API; empty for a value that the API does not name.
const char *StatusString(HBA_STATUS status);

/// The line for a failed call; `callName` lacks its "HBA_". One buffer per thread: the line is valid until the thread's
/// next call.
const char *BadStatus(const char *callName, HBA_STATUS status, HBA_UINT32 adapterIndex, const char *adapterName);

/// The line for an adapter that gave no handle; `status` is that of the lookup of its name.
std::string unableToOpen(HBA_UINT32 adapterIndex, const char *adapterName, HBA_STATUS status);

/// The line for a count above its maximum: "ports", 4294967295 of them, reported by "HBA adapter 0 (hba-0)".
std::string tooMany(const std::string &what, HBA_UINT32 count, const std::string &reporter, HBA_UINT32 maximum);

/// The discovered ports of port 0, as `tooMany` names them.
std::string discoveredPortsOf(HBA_UINT32 port);

/// The line for the first port whose discovered ports are too many together with those of the ports before it.
std::string tooManyTogether(HBA_UINT32 port, HBA_UINT32 count, const std::string &reporter);

/// An adapter as `tooMany` names it.
std::string adapterText(HBA_UINT32 adapterIndex, const char *adapterName);

} // namespace tarn
