#include <bit>

#include "common/hba/HbaCacheImpl.h"
#include "common/jni/LocalFrame.h"

namespace tarn {
namespace {

constexpr unsigned int portTypeEPort = 9; // which some releases of the published header leave unnamed

// Classes of service that the API names are provided for in the frame of the port's values; a mask of undefined bits
// brings up to 32 elements.
constexpr jsize namedClasses = 6;

} // namespace

jobject HbaCacheImpl::GetPortType(unsigned int portType) {
    const WithTracing tracing("GetPortType");
    HbaPortProvider::Static &of = hbaPortProvider;
    switch (portType) {
    case HBA_PORTTYPE_OTHER:
        return of.field_PORT_TYPE_OTHER.value();
    case HBA_PORTTYPE_NPORT:
        return of.field_PORT_TYPE_N.value();
    case HBA_PORTTYPE_NLPORT:
        return of.field_PORT_TYPE_NL.value();
    case HBA_PORTTYPE_FLPORT:
        return of.field_PORT_TYPE_FL.value();
    case HBA_PORTTYPE_FPORT:
        return of.field_PORT_TYPE_F.value();
    case portTypeEPort:
        return of.field_PORT_TYPE_E.value();
    default:
        return of.field_PORT_TYPE_UNKNOWN.value();
    }
}

jobject HbaCacheImpl::GetPortState(unsigned int portState) {
    const WithTracing tracing("GetPortState");
    HbaPortProvider::Static &of = hbaPortProvider;
    switch (portState) {
    case HBA_PORTSTATE_ONLINE:
        return of.field_PORT_STATE_ONLINE.value();
    case HBA_PORTSTATE_OFFLINE:
        return of.field_PORT_STATE_OFFLINE.value();
    case HBA_PORTSTATE_BYPASSED:
        return of.field_PORT_STATE_BYPASSED.value();
    case HBA_PORTSTATE_DIAGNOSTICS:
        return of.field_PORT_STATE_DIAGNOSTICS.value();
    case HBA_PORTSTATE_LINKDOWN:
        return of.field_PORT_STATE_LINK_DOWN.value();
    case HBA_PORTSTATE_ERROR:
        return of.field_PORT_STATE_ERROR.value();
    case HBA_PORTSTATE_LOOPBACK:
        return of.field_PORT_STATE_LOOPBACK.value();
    default:
        return of.field_PORT_STATE_UNKNOWN.value();
    }
}

jobject HbaCacheImpl::GetOperationalStatus(unsigned int portState) {
    const WithTracing tracing("GetOperationalStatus");
    HbaPortProvider::Static &of = hbaPortProvider;
    switch (portState) {
    case HBA_PORTSTATE_ONLINE:
        return of.field_OPERATIONAL_STATUS_OK.value();
    case HBA_PORTSTATE_OFFLINE:
    case HBA_PORTSTATE_BYPASSED:
    case HBA_PORTSTATE_DIAGNOSTICS:
    case HBA_PORTSTATE_LOOPBACK:
        return of.field_OPERATIONAL_STATUS_IN_SERVICE.value();
    case HBA_PORTSTATE_LINKDOWN:
    case HBA_PORTSTATE_ERROR:
        return of.field_OPERATIONAL_STATUS_ERROR.value();
    default:
        return of.field_OPERATIONAL_STATUS_UNKNOWN.value();
    }
}

jobject HbaCacheImpl::GetCOS(unsigned int classesOfService) {
    const WithTracing tracing("GetCOS");
    HbaPortProvider::Static &of = hbaPortProvider;
    const auto classOfBit = [&](int bit) -> EnumerationField & {
        switch (bit) {
        case 0:
            return of.field_SUPPORTED_COS_F;
        case 1:
            return of.field_SUPPORTED_COS_1;
        case 2:
            return of.field_SUPPORTED_COS_2;
        case 3:
            return of.field_SUPPORTED_COS_3;
        case 4:
            return of.field_SUPPORTED_COS_4;
        case 6:
            return of.field_SUPPORTED_COS_6;
        default:
            return of.field_SUPPORTED_COS_UNKNOWN;
        }
    };
    const jsize count = std::popcount(classesOfService);
    if (count > namedClasses && env->EnsureLocalCapacity(count + portValuesCapacity) < 0) {
        env->ExceptionClear();
        return nullptr; // the instance goes without them
    }
    const jobjectArray classes = jni::newObjectArray(env, count, unsignedInt16.cls);
    jsize next = 0;
    for (int bit = 0; bit < 32; ++bit) {
        if ((classesOfService >> bit & 1U) != 0) {
            jni::setElement(env, classes, next++, classOfBit(bit).value());
        }
    }
    return classes;
}

jobject HbaCacheImpl::GetPortSpeed(unsigned int speed) {
    const WithTracing tracing("GetPortSpeed");
    switch (speed) {
    case HBA_PORTSPEED_1GBIT:
        return uint64(1143535043);
    case HBA_PORTSPEED_2GBIT:
        return uint64(2287070085);
    case HBA_PORTSPEED_10GBIT:
        return uint64(11435350430);
    default:
        return uint64(0);
    }
}

} // namespace tarn
