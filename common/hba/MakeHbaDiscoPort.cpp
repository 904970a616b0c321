#include "common/hba/HbaProperties.h"

namespace tarn {

jobject HbaCacheImpl::MakeHbaDiscoPort(int, int, HBA_PortAttributes &attributes) {
    const WithTracing tracing("MakeHbaDiscoPort");
    return makeInstance(9, &HbaClassNames::getHbaDiscoveredPortClass, [&](jobject cimClass, const Values &values) {
        PopulateHbaPortValues(values.object(), attributes);
        const jobject className = nameOf(cimClass);
        values.set(needed(hbaPortProvider.field_creationClassName.value()), className);
    });
}

} // namespace tarn
