#include "common/hba/LibraryGuards.h"

#include <cstring>
#include <string_view>

namespace tarn {
namespace {

std::mutex libraryMutex;

} // namespace

WithHbaLibrary::WithHbaLibrary() : lock(libraryMutex) {
    HBA_LoadLibrary();
}

WithHbaLibrary::~WithHbaLibrary() {
    HBA_FreeLibrary();
}

WithAdapterHandle::WithAdapterHandle(WithHbaLibrary &loadedLibrary, HBA_UINT32 adapterIndex, char *adapterName)
    : library(loadedLibrary), handle(0), status(HBA_STATUS_OK) {
    std::memset(adapterName, 0, adapterNameSize);
    status = HBA_GetAdapterName(adapterIndex, adapterName);
    if (status != HBA_STATUS_OK) {
        adapterName[0] = '\0';
        return;
    }
    adapterName[adapterNameSize - 1] = '\0';
    handle = HBA_OpenAdapter(adapterName);
    if (handle == 0) {
        handle = HBA_OpenAdapter(adapterName);
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
