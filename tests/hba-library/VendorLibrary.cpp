// What the common HBA library asks of a vendor's: the functions that answer for its adapters.

#include <ctime>

#include <hbaapi.h> // the next needs it, and it needs ctime

#include <vendorhbaapi.h>

__attribute__((visibility("default"))) HBA_STATUS HBA_RegisterLibrary(HBA_ENTRYPOINTS *functions) {
    *functions = {};
    functions->GetVersionHandler = [] { return HBA_UINT32{1}; };
    functions->LoadLibraryHandler = HBA_LoadLibrary;
    functions->FreeLibraryHandler = HBA_FreeLibrary;
    functions->GetNumberOfAdaptersHandler = HBA_GetNumberOfAdapters;
    functions->GetAdapterNameHandler = HBA_GetAdapterName;
    functions->OpenAdapterHandler = HBA_OpenAdapter;
    functions->CloseAdapterHandler = HBA_CloseAdapter;
    functions->RefreshInformationHandler = HBA_RefreshInformation;
    functions->GetAdapterAttributesHandler = HBA_GetAdapterAttributes;
    functions->GetAdapterPortAttributesHandler = HBA_GetAdapterPortAttributes;
    functions->GetPortStatisticsHandler = HBA_GetPortStatistics;
    functions->GetDiscoveredPortAttributesHandler = HBA_GetDiscoveredPortAttributes;
    functions->GetFcpTargetMappingHandler = HBA_GetFcpTargetMapping;
    return HBA_STATUS_OK;
}
