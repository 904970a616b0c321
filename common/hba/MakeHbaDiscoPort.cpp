#include "common/hba/HbaCacheImpl.h"
#include "common/jni/LocalFrame.h"

namespace tarn {

jobject HbaCacheImpl::MakeHbaDiscoPort(int, int, HBA_PortAttributes &attributes) {
    const WithTracing tracing("MakeHbaDiscoPort");
    return makeInLocalFrame(env, 9, [&] {
        const jobject cimClass = hbaClassNames.getHbaDiscoveredPortClass();
        const Values values = defaultValues(cimClass);
        PopulateHbaPortValues(values.object(), attributes);
        const jobject className = nameOf(cimClass);
        values.at(hbaPortProvider.field_creationClassName).set(className);

        return makeInstance(hbaClassNames.getHbaDiscoveredPortClass(), values);
    });
}

} // namespace tarn
