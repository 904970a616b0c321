#pragma once

typedef unsigned char HBA_UINT8;
typedef unsigned int HBA_UINT32;
typedef long long HBA_INT64;
typedef long long HBA_UINT64; // signed in the published C header, whatever its name says

typedef HBA_UINT32 HBA_HANDLE;
typedef HBA_UINT32 HBA_STATUS;
typedef HBA_UINT32 HBA_COS;
typedef HBA_UINT32 HBA_PORTTYPE;
typedef HBA_UINT32 HBA_PORTSTATE;
typedef HBA_UINT32 HBA_PORTSPEED;

#define HBA_STATUS_OK 0
#define HBA_STATUS_ERROR 1
#define HBA_STATUS_ERROR_NOT_SUPPORTED 2
#define HBA_STATUS_ERROR_INVALID_HANDLE 3
#define HBA_STATUS_ERROR_ARG 4
#define HBA_STATUS_ERROR_ILLEGAL_WWN 5
#define HBA_STATUS_ERROR_ILLEGAL_INDEX 6
#define HBA_STATUS_ERROR_MORE_DATA 7
#define HBA_STATUS_ERROR_STALE_DATA 8
#define HBA_STATUS_SCSI_CHECK_CONDITION 9
#define HBA_STATUS_ERROR_BUSY 10
#define HBA_STATUS_ERROR_TRY_AGAIN 11
#define HBA_STATUS_ERROR_UNAVAILABLE 12

#define HBA_PORTTYPE_UNKNOWN 1
#define HBA_PORTTYPE_OTHER 2
#define HBA_PORTTYPE_NOTPRESENT 3
#define HBA_PORTTYPE_NPORT 5
#define HBA_PORTTYPE_NLPORT 6
#define HBA_PORTTYPE_FLPORT 7
#define HBA_PORTTYPE_FPORT 8
#define HBA_PORTTYPE_LPORT 20
#define HBA_PORTTYPE_PTP 21

#define HBA_PORTSTATE_UNKNOWN 1
#define HBA_PORTSTATE_ONLINE 2
#define HBA_PORTSTATE_OFFLINE 3
#define HBA_PORTSTATE_BYPASSED 4
#define HBA_PORTSTATE_DIAGNOSTICS 5
#define HBA_PORTSTATE_LINKDOWN 6
#define HBA_PORTSTATE_ERROR 7
#define HBA_PORTSTATE_LOOPBACK 8

#define HBA_PORTSPEED_1GBIT 1
#define HBA_PORTSPEED_2GBIT 2
#define HBA_PORTSPEED_10GBIT 4

typedef struct HBA_wwn {
    HBA_UINT8 wwn[8];
} HBA_WWN, *PHBA_WWN;

typedef struct HBA_fc4types {
    HBA_UINT8 bits[32];
} HBA_FC4TYPES, *PHBA_FC4TYPES;

typedef struct hba_AdapterAttributes {
    char Manufacturer[64];
    char SerialNumber[64];
    char Model[256];
    char ModelDescription[256];
    HBA_WWN NodeWWN;
    char NodeSymbolicName[256];
    char HardwareVersion[256];
    char DriverVersion[256];
    char OptionROMVersion[256];
    char FirmwareVersion[256];
    HBA_UINT32 VendorSpecificID;
    HBA_UINT32 NumberOfPorts;
    char DriverName[256];
} HBA_ADAPTERATTRIBUTES, *PHBA_ADAPTERATTRIBUTES;

typedef struct HBA_PortAttributes {
    HBA_WWN NodeWWN;
    HBA_WWN PortWWN;
    HBA_UINT32 PortFcId;
    HBA_PORTTYPE PortType;
    HBA_PORTSTATE PortState;
    HBA_COS PortSupportedClassofService;
    HBA_FC4TYPES PortSupportedFc4Types;
    HBA_FC4TYPES PortActiveFc4Types;
    char PortSymbolicName[256];
    char OSDeviceName[256];
    HBA_PORTSPEED PortSupportedSpeed;
    HBA_PORTSPEED PortSpeed;
    HBA_UINT32 PortMaxFrameSize;
    HBA_WWN FabricName;
    HBA_UINT32 NumberofDiscoveredPorts;
} HBA_PORTATTRIBUTES, *PHBA_PORTATTRIBUTES;

typedef struct HBA_PortStatistics {
    HBA_INT64 SecondsSinceLastReset;
    HBA_INT64 TxFrames;
    HBA_INT64 TxWords;
    HBA_INT64 RxFrames;
    HBA_INT64 RxWords;
    HBA_INT64 LIPCount;
    HBA_INT64 NOSCount;
    HBA_INT64 ErrorFrames;
    HBA_INT64 DumpedFrames;
    HBA_INT64 LinkFailureCount;
    HBA_INT64 LossOfSyncCount;
    HBA_INT64 LossOfSignalCount;
    HBA_INT64 PrimitiveSeqProtocolErrCount;
    HBA_INT64 InvalidTxWordCount;
    HBA_INT64 InvalidCRCCount;
} HBA_PORTSTATISTICS, *PHBA_PORTSTATISTICS;

typedef struct HBA_ScsiId {
    char OSDeviceName[256];
    HBA_UINT32 ScsiBusNumber;
    HBA_UINT32 ScsiTargetNumber;
    HBA_UINT32 ScsiOSLun;
} HBA_SCSIID, *PHBA_SCSIID;

typedef struct HBA_FcpId {
    HBA_UINT32 FcId;
    HBA_WWN NodeWWN;
    HBA_WWN PortWWN;
    HBA_UINT64 FcpLun;
} HBA_FCPID, *PHBA_FCPID;

typedef struct HBA_FcpScsiEntry {
    HBA_SCSIID ScsiId;
    HBA_FCPID FcpId;
} HBA_FCPSCSIENTRY, *PHBA_FCPSCSIENTRY;

typedef struct HBA_FCPTargetMapping {
    HBA_UINT32 NumberOfEntries;
    HBA_FCPSCSIENTRY entry[1]; // as many as there is room for
} HBA_FCPTARGETMAPPING, *PHBA_FCPTARGETMAPPING;

extern "C" {
HBA_STATUS HBA_LoadLibrary(void);
HBA_STATUS HBA_FreeLibrary(void);
HBA_UINT32 HBA_GetNumberOfAdapters(void);
HBA_STATUS HBA_GetAdapterName(HBA_UINT32 index, char *name);
HBA_HANDLE HBA_OpenAdapter(char *name);
void HBA_CloseAdapter(HBA_HANDLE handle);
void HBA_RefreshInformation(HBA_HANDLE handle);
HBA_STATUS HBA_GetAdapterAttributes(HBA_HANDLE handle, HBA_ADAPTERATTRIBUTES *attributes);
HBA_STATUS HBA_GetAdapterPortAttributes(HBA_HANDLE handle, HBA_UINT32 port, HBA_PORTATTRIBUTES *attributes);
HBA_STATUS HBA_GetPortStatistics(HBA_HANDLE handle, HBA_UINT32 port, HBA_PORTSTATISTICS *statistics);
HBA_STATUS HBA_GetDiscoveredPortAttributes(HBA_HANDLE handle, HBA_UINT32 port, HBA_UINT32 discovered,
                                           HBA_PORTATTRIBUTES *attributes);
HBA_STATUS HBA_GetFcpTargetMapping(HBA_HANDLE handle, HBA_FCPTARGETMAPPING *mapping);
}
