#include <string>

#include "common/hba/Conversions.h"
#include "common/hba/HbaProperties.h"

namespace tarn {

jobject HbaCacheImpl::MakeHba(int adapterIndex, hba_AdapterAttributes &attributes) {
    const WithTracing tracing("MakeHba");
    using Record = hba_AdapterAttributes;
    struct Adapter {
        Record &record;
        int index;
        jobject cimClass;
    };
    static constexpr auto table = std::to_array<Property<Adapter>>({
        {"deviceID",
         [](HbaCacheImpl &hba, Adapter &adapter) -> jobject {
             const std::string text = toString(adapter.record.NodeWWN) + (":" + std::to_string(adapter.index));
             return jni::newString(hba.env, text.c_str());
         }},
        {"creationClassName", Kind::className},
        {"systemName", Kind::systemName},
        {"systemCreationClassName", Kind::systemClassName},
        {"manufacturer", Kind::text<&Record::Manufacturer>},
        {"serialNumber", Kind::text<&Record::SerialNumber>},
        {"model", Kind::text<&Record::Model>},
        {"modelDescription", Kind::text<&Record::ModelDescription>},
        {"name", Kind::wwn<&Record::NodeWWN>},
        {"nodeSymbolicName", Kind::text<&Record::NodeSymbolicName>},
        {"hardwareVersion", Kind::text<&Record::HardwareVersion>},
        {"driverVersion", Kind::text<&Record::DriverVersion>},
        {"optionRomVersion", Kind::text<&Record::OptionROMVersion>},
        {"firmwareVersion", Kind::text<&Record::FirmwareVersion>},
        {"vendorSpecificID", Kind::number<&Record::VendorSpecificID>},
        {"driverName", Kind::text<&Record::DriverName>},
    });
    return makeInstance(48, &HbaClassNames::getHostBusAdapterClass, [&](jobject cimClass, const Values &values) {
        Adapter adapter{attributes, adapterIndex, cimClass};
        values.set(hostBusAdapterProvider.field_properties, table, adapter);
        values.setCaptions(hostBusAdapterProvider.field_captions, "Adapter " + std::to_string(adapterIndex));
    });
}

} // namespace tarn
