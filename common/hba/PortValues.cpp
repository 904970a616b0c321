#include <array>
#include <bit>
#include <cstddef>

#include "common/hba/HbaCacheImpl.h"
#include "common/jni/LocalFrame.h"

namespace tarn {
namespace {

constexpr unsigned int anyOther = ~0U; // code of a table's last row

/// A code of the HBA API, and the static field of HbaPortProvider with the CIM value.
struct Code {
    unsigned int code;
    const char *field;
    unsigned int status = anyOther; ///< operational, of a port in that state
};

constexpr unsigned int portTypeEPort = 9; // which some releases of the published header leave unnamed

constexpr auto portTypes = std::to_array<Code>({
    {HBA_PORTTYPE_OTHER, "PORT_TYPE_OTHER"},
    {HBA_PORTTYPE_NPORT, "PORT_TYPE_N"},
    {HBA_PORTTYPE_NLPORT, "PORT_TYPE_NL"},
    {HBA_PORTTYPE_FLPORT, "PORT_TYPE_FL"},
    {HBA_PORTTYPE_FPORT, "PORT_TYPE_F"},
    {portTypeEPort, "PORT_TYPE_E"},
    {anyOther, "PORT_TYPE_UNKNOWN"},
});

enum Status : unsigned int { ok, inService, error };

constexpr auto statuses = std::to_array<Code>({
    {ok, "OPERATIONAL_STATUS_OK"},
    {inService, "OPERATIONAL_STATUS_IN_SERVICE"},
    {error, "OPERATIONAL_STATUS_ERROR"},
    {anyOther, "OPERATIONAL_STATUS_UNKNOWN"},
});

constexpr auto portStates = std::to_array<Code>({
    {HBA_PORTSTATE_ONLINE, "PORT_STATE_ONLINE", ok},
    {HBA_PORTSTATE_OFFLINE, "PORT_STATE_OFFLINE", inService},
    {HBA_PORTSTATE_BYPASSED, "PORT_STATE_BYPASSED", inService},
    {HBA_PORTSTATE_DIAGNOSTICS, "PORT_STATE_DIAGNOSTICS", inService},
    {HBA_PORTSTATE_LINKDOWN, "PORT_STATE_LINK_DOWN", error},
    {HBA_PORTSTATE_ERROR, "PORT_STATE_ERROR", error},
    {HBA_PORTSTATE_LOOPBACK, "PORT_STATE_LOOPBACK", inService},
    {anyOther, "PORT_STATE_UNKNOWN"},
});

/// By the number of the bit.
constexpr auto classesOfBits = std::to_array<Code>({
    {0, "SUPPORTED_COS_F"},
    {1, "SUPPORTED_COS_1"},
    {2, "SUPPORTED_COS_2"},
    {3, "SUPPORTED_COS_3"},
    {4, "SUPPORTED_COS_4"},
    {6, "SUPPORTED_COS_6"},
    {anyOther, "SUPPORTED_COS_UNKNOWN"},
});

// Classes of service that the API names are provided for in the frame of the port's values; a mask of undefined bits
// brings up to 32 elements.
constexpr jsize namedClasses = 6;

template <std::size_t rows>
std::size_t rowOf(const std::array<Code, rows> &table, unsigned int code) {
    std::size_t row = 0;
    while (row < rows - 1 && table[row].code != code) {
        ++row;
    }
    return row;
}

/// The CIM value of a code; `fields` has a slot for each row of the table.
template <std::size_t rows>
jobject valueOf(const StaticFields<rows> &fields, const std::array<Code, rows> &table, unsigned int code) {
    const std::size_t row = rowOf(table, code);
    return fields.value(row, table[row].field);
}

} // namespace

jobject HbaCacheImpl::GetPortType(unsigned int portType) {
    const WithTracing tracing("GetPortType");
    return valueOf(hbaPortProvider.field_PORT_TYPE, portTypes, portType);
}

jobject HbaCacheImpl::GetPortState(unsigned int portState) {
    const WithTracing tracing("GetPortState");
    return valueOf(hbaPortProvider.field_PORT_STATE, portStates, portState);
}

jobject HbaCacheImpl::GetOperationalStatus(unsigned int portState) {
    const WithTracing tracing("GetOperationalStatus");
    const Code &state = portStates[rowOf(portStates, portState)];
    return valueOf(hbaPortProvider.field_OPERATIONAL_STATUS, statuses, state.status);
}

jobject HbaCacheImpl::GetCOS(unsigned int classesOfService) {
    const WithTracing tracing("GetCOS");
    const jsize count = std::popcount(classesOfService);
    if (count > namedClasses && env->EnsureLocalCapacity(count + portValuesCapacity) < 0) {
        env->ExceptionClear();
        return nullptr; // the instance goes without them
    }
    const jobjectArray classes = jni::newObjectArray(env, count, unsignedInt16.cls);
    jsize next = 0;
    for (int bit = 0; bit < 32; ++bit) {
        if ((classesOfService >> bit & 1U) != 0) {
            jni::setElement(
                env, classes, next++,
                valueOf(hbaPortProvider.field_SUPPORTED_COS, classesOfBits, static_cast<unsigned int>(bit)));
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
