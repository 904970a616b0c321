#pragma once

#include <string>

namespace tarn {

/// The driver's instance name, such as "sd0", of the disk `diskName`, such as "c0t0d0". Empty when "/dev/dsk" has no
/// such disk. Reads the whole directory.
std::string getSDxName(const std::string &diskName);

} // namespace tarn
