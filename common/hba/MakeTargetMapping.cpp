#include "common/hba/DeviceNames.h"
#include "common/hba/HbaProperties.h"
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
    struct Mapping {
        HBA_SCSIID &record;
        HBA_FCPID &fcp;
        HBA_UINT32 bus;
    };
    static constexpr auto table = std::to_array<Property<Mapping>>({
        {"scsiBus", [](HbaCacheImpl &hba, Mapping &of) { return hba.uint32(of.bus); }},
        {"targetId", Kind::number<&HBA_SCSIID::ScsiTargetNumber>},
        {"scsiLun", Kind::number<&HBA_SCSIID::ScsiOSLun>},
        {"osDeviceName", [](HbaCacheImpl &hba, Mapping &of) { return hba.osDeviceName(of.record, of.bus); }},
        {"exportedLUN", [](HbaCacheImpl &hba, Mapping &of) { return hba.uint64(firstLevelLun(of.fcp.FcpLun)); }},
        {"discoveredPortWWN", [](HbaCacheImpl &hba, Mapping &of) { return hba.wwnText(of.fcp.PortWWN); }},
    });
    return makeInstance(26, &HbaClassNames::getTargetMappingClass, [&](jobject, const Values &values) {
        values.set(needed(targetMappingProvider.field_antecedent.value()), hbaPort);
        values.set(needed(targetMappingProvider.field_dependent.value()), discoveredPort);
        Mapping mapping{entry.ScsiId, entry.FcpId, divineScsiBusNumber(entry)};
        values.set(targetMappingProvider.field_properties, table, mapping);
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
