#include <string>

#include "common/hba/HbaProperties.h"

namespace tarn {

void HbaCacheImpl::PopulateHbaPortValues(jobject valuesArray, HBA_PortAttributes &attributes) {
    const WithTracing tracing("PopulateHbaPortValues");
    using Record = HBA_PortAttributes;
    struct Port {
        Record &record;
    } port{attributes};
    static constexpr auto table = std::to_array<Property<Port>>({
        {"nodeWWN", Kind::wwn<&Record::NodeWWN>},
        {"permanentAddress", Kind::wwn<&Record::PortWWN>},
        {"portFcId", Kind::number<&Record::PortFcId>},
        {"portType", Kind::code<&HbaCacheImpl::GetPortType, &Record::PortType>},
        {"portState", Kind::code<&HbaCacheImpl::GetPortState, &Record::PortState>},
        {"supportedCOS", Kind::code<&HbaCacheImpl::GetCOS, &Record::PortSupportedClassofService>},
        {"name", Kind::text<&Record::PortSymbolicName>},
        {"osDeviceName", Kind::text<&Record::OSDeviceName>},
        {"maxSpeed", Kind::code<&HbaCacheImpl::GetPortSpeed, &Record::PortSupportedSpeed>},
        {"speed", Kind::code<&HbaCacheImpl::GetPortSpeed, &Record::PortSpeed>},
        {"supportedMaximumTransmissionUnit", Kind::counter<&Record::PortMaxFrameSize>},
        {"fabricName", Kind::wwn<&Record::FabricName>},
        {"deviceID", Kind::wwn<&Record::PortWWN>},
        {"systemName", Kind::systemName},
        {"systemCreationClassName", Kind::systemClassName},
        {"operationalStatus",
         [](HbaCacheImpl &hba, Port &of) -> jobject {
             const jobjectArray statuses = jni::newObjectArray(hba.env, 1, hba.unsignedInt16.cls);
             jni::setElement(hba.env, statuses, 0, hba.GetOperationalStatus(of.record.PortState));
             return statuses;
         }},
    });
    const LocalFrame frame(env, portValuesCapacity);
    if (frame.isOpen()) {
        Values(*this, valuesArray).set(hbaPortProvider.field_properties, table, port);
    }
}

jobject HbaCacheImpl::MakeHbaPort(int adapterIndex, int portIndex, HBA_PortAttributes &attributes) {
    const WithTracing tracing("MakeHbaPort");
    return makeInstance(20, &HbaClassNames::getHbaPortClass, [&](jobject cimClass, const Values &values) {
        PopulateHbaPortValues(values.object(), attributes);
        const jobject creationClassName = needed(hbaPortProvider.field_creationClassName.value());
        values.set(creationClassName, nameOf(cimClass));
        values.setCaptions(hbaPortProvider.field_captions,
                           "Adapter " + std::to_string(adapterIndex) + " Port " + std::to_string(portIndex));
        const jobject portNumber = needed(hbaPortProvider.field_portNumber.value());
        values.set(portNumber, unsignedInt16.make(jint{portIndex}));
    });
}

jobject HbaCacheImpl::MakeHbaDiscoPort(int, int, HBA_PortAttributes &attributes) {
    const WithTracing tracing("MakeHbaDiscoPort");
    return makeInstance(9, &HbaClassNames::getHbaDiscoveredPortClass, [&](jobject cimClass, const Values &values) {
        PopulateHbaPortValues(values.object(), attributes);
        const jobject className = nameOf(cimClass);
        values.set(needed(hbaPortProvider.field_creationClassName.value()), className);
    });
}

} // namespace tarn
