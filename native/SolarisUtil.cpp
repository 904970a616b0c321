#include "native/SolarisUtil.h"

#include "native/SolarisDiskMap.h"

namespace tarn {

std::string getSDxName(const std::string &diskName) {
    return SolarisDiskMap().getSDxNameFromMap(diskName);
}

} // namespace tarn
