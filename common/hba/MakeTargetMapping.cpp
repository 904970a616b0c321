#include "common/hba/DeviceNames.h"
#include "common/hba/HbaCacheImpl.h"
#include "common/jni/LocalFrame.h"
#include "common/system/FieldText.h"

namespace tarn {
namespace {

/// Bits 63 to 48, with the top bit copied upwards: the LUN as the array exports it, its addressing method included.
long long firstLevelLun(HBA_UINT64 fcpLun) {
    return static_cast<long long>(fcpLun) >> 48;
}

} // namespace

jobject HbaCacheImpl::MakeTargetMapping(jobject hbaPort, jobject discoveredPort, HBA_FcpScsiEntry &entry,
                                        hba_AdapterAttributes &) {
    const WithTracing tracing("MakeTargetMapping");
    return makeInLocalFrame(env, 26, [&] {
        const Values values = defaultValues(hbaClassNames.getTargetMappingClass());
        HBA_SCSIID &scsi = entry.ScsiId;

        TargetMappingProvider::Static &of = targetMappingProvider;
        values.at(of.field_antecedent).set(hbaPort);
        values.at(of.field_dependent).set(discoveredPort);
        const HBA_UINT32 bus = divineScsiBusNumber(entry);
        values.at(of.field_scsiBus).set(uint32(bus));
        values.at(of.field_targetId).set(uint32(scsi.ScsiTargetNumber));
        values.at(of.field_scsiLun).set(uint32(scsi.ScsiOSLun));
        values.at(of.field_osDeviceName).set(osDeviceName(scsi, bus));
        values.at(of.field_exportedLUN).set(uint64(firstLevelLun(entry.FcpId.FcpLun)));
        values.at(of.field_discoveredPortWWN).set(wwnText(entry.FcpId.PortWWN));

        return makeInstance(hbaClassNames.getTargetMappingClass(), values);
    });
}

/// Java is asked anew for every entry, and only as far as its answers matter.
jobject HbaCacheImpl::osDeviceName(HBA_SCSIID &scsi, HBA_UINT32 bus) {
    if (hbaClassNames.isKeepOsDeviceName()) {
        return string(scsi.OSDeviceName, deviceNameSize);
    }
    const std::string_view name = fieldText(scsi.OSDeviceName);
    char buffer[deviceNameSize];
    if ((hbaCache.usingLeadvilleHeuristicForTargetMappings() && name.starts_with("/dev/rdsk/")) ||
        hbaCache.forceLeadvilleHeuristicForTargetMappings()) {
        leadvilleName(name, buffer);
    } else {
        numberedName(bus, scsi.ScsiTargetNumber, scsi.ScsiOSLun, buffer);
    }
    return string(buffer, deviceNameSize);
}

} // namespace tarn
