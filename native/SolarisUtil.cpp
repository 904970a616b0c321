#include "native/SolarisUtil.h"

#include "native/SolarisDiskMap.h"

namespace tarn {

std::string getSDxName(const std::string &diskName) {
    return std::string(SolarisDiskMap(SolarisDiskMap::Key::diskName).find(diskName));
}

} // namespace tarn
