#include "common/hba/library/LibraryGuards.h"

#include <cstring>
#include <mutex>
#include <string_view>

namespace tarn {
namespace {

// How many hold the library, loaded. Loading and freeing it are part of counting: who comes second is not to use a
// library that the first has yet to load, nor to have it freed under it.
std::mutex holdersMutex;
unsigned holders = 0;

} // namespace

WithHbaLibrary::WithHbaLibrary() : status(HBA_STATUS_OK) {
    const std::lock_guard lock(holdersMutex);
    if (holders == 0) {
        status = HBA_LoadLibrary();
    }
    holders += status == HBA_STATUS_OK ? 1 : 0; // after a failure, who comes next asks again
}

WithHbaLibrary::~WithHbaLibrary() {
    const std::lock_guard lock(holdersMutex);
    holders -= status == HBA_STATUS_OK ? 1 : 0;
    if (holders == 0) {
        HBA_FreeLibrary(); // also after a failure: what came of the load is the library's to know
    }
}

WithAdapterHandle::WithAdapterHandle(WithHbaLibrary &loadedLibrary, HBA_UINT32 adapterIndex, char *adapterName,
                                     const std::function<void()> &isNamed)
    : library(loadedLibrary), handle(0), status(HBA_STATUS_OK) {
    std::memset(adapterName, 0, adapterNameSize);
    status = HBA_GetAdapterName(adapterIndex, adapterName);
    if (status != HBA_STATUS_OK) {
        adapterName[0] = '\0';
        return;
    }
    adapterName[adapterNameSize - 1] = '\0';
    if (isNamed) {
        isNamed();
    }
    while (handle == 0 && failures < openAttempts) {
        handle = HBA_OpenAdapter(adapterName);
        failures += handle == 0 ? 1 : 0;
    }
}

WithAdapterHandle::~WithAdapterHandle() {
    if (handle != 0) {
        HBA_CloseAdapter(handle);
    }
}

bool refreshInformation(HBA_HANDLE handle, const char *adapterName) {
    if (std::string_view(adapterName).starts_with("SUNW-qlc-")) {
        return false;
    }
    HBA_RefreshInformation(handle);
    return true;
}

} // namespace tarn
