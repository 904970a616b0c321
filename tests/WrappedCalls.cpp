#include "tests/WrappedCalls.h"

#include <algorithm>
#include <cstring>

using tests::wrapped;

tests::WrappedCalls tests::wrapped;

extern "C" {

HBA_UINT32 __real_HBA_GetNumberOfAdapters();
HBA_STATUS __real_HBA_GetAdapterName(HBA_UINT32 index, char *name);
HBA_HANDLE __real_HBA_OpenAdapter(char *name);

HBA_UINT32 __wrap_HBA_GetNumberOfAdapters() {
    return __real_HBA_GetNumberOfAdapters() + wrapped.moreAdapters;
}

HBA_STATUS __wrap_HBA_GetAdapterName(HBA_UINT32 index, char *name) {
    const HBA_STATUS status = __real_HBA_GetAdapterName(index, name);
    if (const std::string &text = wrapped.adapterName; !text.empty()) {
        std::memcpy(name, text.c_str(), std::min(text.size() + 1, std::size_t{256}));
    }
    return status;
}

HBA_HANDLE __wrap_HBA_OpenAdapter(char *name) {
    if (wrapped.mapping != nullptr) {
        wrapped.isHeldAtNextAdapter = true;
    }
    return __real_HBA_OpenAdapter(name);
}
}
