#include "native/host/SolarisUtil.h"

#include "common/system/SolarisDiskMap.h"

namespace tarn {

std::string getSDxName(const std::string &diskName) {
    return SolarisDiskMap().getSDxNameFromMap(diskName);
}

} // namespace tarn
