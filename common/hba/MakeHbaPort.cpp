#include <string>

#include "common/hba/HbaCacheImpl.h"
#include "common/jni/LocalFrame.h"

namespace tarn {

void HbaCacheImpl::PopulateHbaPortValues(jobject valuesArray, HBA_PortAttributes &attributes) {
    const WithTracing tracing("PopulateHbaPortValues");
    const LocalFrame frame(env, portValuesCapacity);
    if (!frame.isOpen()) {
        return;
    }
    const auto operationalStatus = [&] {
        const jobjectArray statuses = jni::newObjectArray(env, 1, unsignedInt16.cls);
        jni::setElement(env, statuses, 0, GetOperationalStatus(attributes.PortState));
        return statuses;
    };

    const Values values(trProperty, valuesArray);
    HbaPortProvider::Static &of = hbaPortProvider;
    values.at(of.field_nodeWWN).set(wwnText(attributes.NodeWWN));
    values.at(of.field_permanentAddress).set(wwnText(attributes.PortWWN));
    values.at(of.field_portFcId).set(uint32(attributes.PortFcId));
    values.at(of.field_portType).set(GetPortType(attributes.PortType));
    values.at(of.field_portState).set(GetPortState(attributes.PortState));
    values.at(of.field_supportedCOS).set(GetCOS(attributes.PortSupportedClassofService));
    values.at(of.field_name).set(string(attributes.PortSymbolicName, 256));
    values.at(of.field_osDeviceName).set(string(attributes.OSDeviceName, 256));
    values.at(of.field_maxSpeed).set(GetPortSpeed(attributes.PortSupportedSpeed));
    values.at(of.field_speed).set(GetPortSpeed(attributes.PortSpeed));
    values.at(of.field_supportedMaximumTransmissionUnit).set(uint64(attributes.PortMaxFrameSize));
    values.at(of.field_fabricName).set(wwnText(attributes.FabricName));
    values.at(of.field_deviceID).set(wwnText(attributes.PortWWN));
    values.at(of.field_systemName).set(hbaClassNames.getSystemName());
    values.at(of.field_systemCreationClassName).set(nameOf(hbaClassNames.getComputerSystemClass()));
    values.at(of.field_operationalStatus).set(operationalStatus());
}

jobject HbaCacheImpl::MakeHbaPort(int adapterIndex, int portIndex, HBA_PortAttributes &attributes) {
    const WithTracing tracing("MakeHbaPort");
    return makeInLocalFrame(env, 20, [&] {
        const jobject cimClass = hbaClassNames.getHbaPortClass();
        const Values values = defaultValues(cimClass);
        PopulateHbaPortValues(values.object(), attributes);

        HbaPortProvider::Static &of = hbaPortProvider;
        values.at(of.field_creationClassName).set(nameOf(cimClass));
        const std::string text = "Adapter " + std::to_string(adapterIndex) + " Port " + std::to_string(portIndex);
        const jobject caption = jni::newString(env, text.c_str());
        values.at(of.field_caption).set(caption);
        values.at(of.field_description).set(caption);
        values.at(of.field_elementName).set(caption);
        values.at(of.field_portNumber).set(unsignedInt16.constructor.make(jint{portIndex}));

        return makeInstance(hbaClassNames.getHbaPortClass(), values);
    });
}

} // namespace tarn
