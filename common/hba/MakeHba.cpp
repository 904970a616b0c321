#include <string>

#include "common/hba/Conversions.h"
#include "common/hba/HbaCacheImpl.h"
#include "common/jni/LocalFrame.h"

namespace tarn {

jobject HbaCacheImpl::MakeHba(int adapterIndex, hba_AdapterAttributes &attributes) {
    const WithTracing tracing("MakeHba");
    return makeInLocalFrame(env, 48, [&] {
        const jobject cimClass = hbaClassNames.getHostBusAdapterClass();
        const Values values = defaultValues(cimClass);
        HostBusAdapterProvider::Static &of = hostBusAdapterProvider;
        const std::string deviceID = toString(attributes.NodeWWN) + (":" + std::to_string(adapterIndex));
        values.at(of.field_deviceID).set(jni::newString(env, deviceID.c_str()));
        values.at(of.field_creationClassName).set(nameOf(cimClass));
        values.at(of.field_systemName).set(hbaClassNames.getSystemName());
        values.at(of.field_systemCreationClassName).set(nameOf(hbaClassNames.getComputerSystemClass()));
        values.at(of.field_manufacturer).set(string(attributes.Manufacturer, 64));
        values.at(of.field_serialNumber).set(string(attributes.SerialNumber, 64));
        values.at(of.field_model).set(string(attributes.Model, 256));
        values.at(of.field_modelDescription).set(string(attributes.ModelDescription, 256));
        values.at(of.field_name).set(wwnText(attributes.NodeWWN));
        values.at(of.field_nodeSymbolicName).set(string(attributes.NodeSymbolicName, 256));
        values.at(of.field_hardwareVersion).set(string(attributes.HardwareVersion, 256));
        values.at(of.field_driverVersion).set(string(attributes.DriverVersion, 256));
        values.at(of.field_optionRomVersion).set(string(attributes.OptionROMVersion, 256));
        values.at(of.field_firmwareVersion).set(string(attributes.FirmwareVersion, 256));
        values.at(of.field_vendorSpecificID).set(uint32(attributes.VendorSpecificID));
        values.at(of.field_driverName).set(string(attributes.DriverName, 256));

        const jobject caption = jni::newString(env, ("Adapter " + std::to_string(adapterIndex)).c_str());
        values.at(of.field_caption).set(caption);
        values.at(of.field_description).set(caption);
        values.at(of.field_elementName).set(caption);

        return makeInstance(hbaClassNames.getHostBusAdapterClass(), values);
    });
}

} // namespace tarn
