#pragma once

#include "common/jni/AgentClasses.h"

// The Java classes that only the HBA cache touches.

namespace tarn {

/// A provider's static field that holds the descriptor of a CIM property (TrProperty).
struct PropertyField : StaticField {
    constexpr PropertyField(const ClassProxy &ownerProxy, const char *property)
        : StaticField(ownerProxy, property, "Lcom/kelvo/tarn/TrProperty;") {
    }
};

/// A provider's static field that holds a value of a CIM enumeration (UnsignedInt16).
struct EnumerationField : StaticField {
    constexpr EnumerationField(const ClassProxy &ownerProxy, const char *value)
        : StaticField(ownerProxy, value, "Ljavax/wbem/cim/UnsignedInt16;") {
    }
};

struct HostBusAdapterProvider {
    struct Static : ClassProxy {
        explicit Static(JNIEnv *environment)
            : ClassProxy(environment, "com/kelvo/tarn/providers/hba/HostBusAdapterProvider") {
        }
        PropertyField field_deviceID{*this, "deviceID"};
        PropertyField field_creationClassName{*this, "creationClassName"};
        PropertyField field_systemName{*this, "systemName"};
        PropertyField field_systemCreationClassName{*this, "systemCreationClassName"};
        PropertyField field_manufacturer{*this, "manufacturer"};
        PropertyField field_serialNumber{*this, "serialNumber"};
        PropertyField field_model{*this, "model"};
        PropertyField field_modelDescription{*this, "modelDescription"};
        PropertyField field_name{*this, "name"};
        PropertyField field_nodeSymbolicName{*this, "nodeSymbolicName"};
        PropertyField field_hardwareVersion{*this, "hardwareVersion"};
        PropertyField field_driverVersion{*this, "driverVersion"};
        PropertyField field_optionRomVersion{*this, "optionRomVersion"};
        PropertyField field_firmwareVersion{*this, "firmwareVersion"};
        PropertyField field_vendorSpecificID{*this, "vendorSpecificID"};
        PropertyField field_driverName{*this, "driverName"};
        PropertyField field_caption{*this, "caption"};
        PropertyField field_description{*this, "description"};
        PropertyField field_elementName{*this, "elementName"};
    };
};

/// Its descriptors serve local and discovered ports alike.
struct HbaPortProvider {
    struct Static : ClassProxy {
        explicit Static(JNIEnv *environment) : ClassProxy(environment, "com/kelvo/tarn/providers/hba/HbaPortProvider") {
        }
        PropertyField field_nodeWWN{*this, "nodeWWN"};
        PropertyField field_permanentAddress{*this, "permanentAddress"};
        PropertyField field_portFcId{*this, "portFcId"};
        PropertyField field_portType{*this, "portType"};
        PropertyField field_portState{*this, "portState"};
        PropertyField field_supportedCOS{*this, "supportedCOS"};
        PropertyField field_name{*this, "name"};
        PropertyField field_osDeviceName{*this, "osDeviceName"};
        PropertyField field_maxSpeed{*this, "maxSpeed"};
        PropertyField field_speed{*this, "speed"};
        PropertyField field_supportedMaximumTransmissionUnit{*this, "supportedMaximumTransmissionUnit"};
        PropertyField field_fabricName{*this, "fabricName"};
        PropertyField field_deviceID{*this, "deviceID"};
        PropertyField field_systemName{*this, "systemName"};
        PropertyField field_systemCreationClassName{*this, "systemCreationClassName"};
        PropertyField field_operationalStatus{*this, "operationalStatus"};
        PropertyField field_creationClassName{*this, "creationClassName"};
        PropertyField field_caption{*this, "caption"};
        PropertyField field_description{*this, "description"};
        PropertyField field_elementName{*this, "elementName"};
        PropertyField field_portNumber{*this, "portNumber"};

        EnumerationField field_PORT_TYPE_UNKNOWN{*this, "PORT_TYPE_UNKNOWN"};
        EnumerationField field_PORT_TYPE_OTHER{*this, "PORT_TYPE_OTHER"};
        EnumerationField field_PORT_TYPE_N{*this, "PORT_TYPE_N"};
        EnumerationField field_PORT_TYPE_NL{*this, "PORT_TYPE_NL"};
        EnumerationField field_PORT_TYPE_FL{*this, "PORT_TYPE_FL"};
        EnumerationField field_PORT_TYPE_F{*this, "PORT_TYPE_F"};
        EnumerationField field_PORT_TYPE_E{*this, "PORT_TYPE_E"};
        EnumerationField field_PORT_STATE_UNKNOWN{*this, "PORT_STATE_UNKNOWN"};
        EnumerationField field_PORT_STATE_ONLINE{*this, "PORT_STATE_ONLINE"};
        EnumerationField field_PORT_STATE_OFFLINE{*this, "PORT_STATE_OFFLINE"};
        EnumerationField field_PORT_STATE_BYPASSED{*this, "PORT_STATE_BYPASSED"};
        EnumerationField field_PORT_STATE_DIAGNOSTICS{*this, "PORT_STATE_DIAGNOSTICS"};
        EnumerationField field_PORT_STATE_LINK_DOWN{*this, "PORT_STATE_LINK_DOWN"};
        EnumerationField field_PORT_STATE_ERROR{*this, "PORT_STATE_ERROR"};
        EnumerationField field_PORT_STATE_LOOPBACK{*this, "PORT_STATE_LOOPBACK"};
        EnumerationField field_OPERATIONAL_STATUS_UNKNOWN{*this, "OPERATIONAL_STATUS_UNKNOWN"};
        EnumerationField field_OPERATIONAL_STATUS_OK{*this, "OPERATIONAL_STATUS_OK"};
        EnumerationField field_OPERATIONAL_STATUS_IN_SERVICE{*this, "OPERATIONAL_STATUS_IN_SERVICE"};
        EnumerationField field_OPERATIONAL_STATUS_ERROR{*this, "OPERATIONAL_STATUS_ERROR"};
        EnumerationField field_SUPPORTED_COS_UNKNOWN{*this, "SUPPORTED_COS_UNKNOWN"};
        EnumerationField field_SUPPORTED_COS_F{*this, "SUPPORTED_COS_F"};
        EnumerationField field_SUPPORTED_COS_1{*this, "SUPPORTED_COS_1"};
        EnumerationField field_SUPPORTED_COS_2{*this, "SUPPORTED_COS_2"};
        EnumerationField field_SUPPORTED_COS_3{*this, "SUPPORTED_COS_3"};
        EnumerationField field_SUPPORTED_COS_4{*this, "SUPPORTED_COS_4"};
        EnumerationField field_SUPPORTED_COS_6{*this, "SUPPORTED_COS_6"};
    };
};

struct HbaDiscoveredPortProvider {
    struct Static : ClassProxy {
        explicit Static(JNIEnv *environment)
            : ClassProxy(environment, "com/kelvo/tarn/providers/hba/HbaDiscoveredPortProvider") {
        }
    };
};

struct FCPortStatisticsProvider {
    struct Static : ClassProxy {
        explicit Static(JNIEnv *environment)
            : ClassProxy(environment, "com/kelvo/tarn/providers/hba/FCPortStatisticsProvider") {
        }
        PropertyField field_elementName{*this, "elementName"};
        PropertyField field_instanceID{*this, "instanceID"};
        PropertyField field_packetsTransmitted{*this, "packetsTransmitted"};
        PropertyField field_packetsReceived{*this, "packetsReceived"};
        PropertyField field_lipCount{*this, "lipCount"};
        PropertyField field_nosCount{*this, "nosCount"};
        PropertyField field_errorFrames{*this, "errorFrames"};
        PropertyField field_dumpedFrames{*this, "dumpedFrames"};
        PropertyField field_linkFailures{*this, "linkFailures"};
        PropertyField field_lossOfSyncCounter{*this, "lossOfSyncCounter"};
        PropertyField field_lossOfSignalCounter{*this, "lossOfSignalCounter"};
        PropertyField field_primitiveSeqProtocolErrCount{*this, "primitiveSeqProtocolErrCount"};
        PropertyField field_invalidTransmissionWords{*this, "invalidTransmissionWords"};
        PropertyField field_crcErrors{*this, "crcErrors"};
    };
};

struct TargetMappingProvider {
    struct Static : ClassProxy {
        explicit Static(JNIEnv *environment)
            : ClassProxy(environment, "com/kelvo/tarn/providers/hba/TargetMappingProvider") {
        }
        PropertyField field_antecedent{*this, "antecedent"};
        PropertyField field_dependent{*this, "dependent"};
        PropertyField field_scsiBus{*this, "scsiBus"};
        PropertyField field_targetId{*this, "targetId"};
        PropertyField field_scsiLun{*this, "scsiLun"};
        PropertyField field_osDeviceName{*this, "osDeviceName"};
        PropertyField field_exportedLUN{*this, "exportedLUN"};
        PropertyField field_discoveredPortWWN{*this, "discoveredPortWWN"};
    };
};

// The cache records.

struct HbaRecord {
    struct Static : ClassProxy {
        explicit Static(JNIEnv *environment) : ClassProxy(environment, "com/kelvo/tarn/providers/hba/HbaCache$Hba") {
        }
        Constructor constructor{*this,
                                "(Lcom/kelvo/tarn/TrInstance;[Lcom/kelvo/tarn/providers/hba/HbaCache$HbaPort;)V"};
    };
};

struct HbaPortRecord {
    struct Static : ClassProxy {
        explicit Static(JNIEnv *environment)
            : ClassProxy(environment, "com/kelvo/tarn/providers/hba/HbaCache$HbaPort") {
        }
        Constructor constructor{*this, "(Lcom/kelvo/tarn/TrInstance;Lcom/kelvo/tarn/TrInstance;"
                                       "[Lcom/kelvo/tarn/providers/hba/HbaCache$HbaDiscoveredPort;)V"};
    };
};

struct HbaDiscoveredPortRecord {
    struct Static : ClassProxy {
        explicit Static(JNIEnv *environment)
            : ClassProxy(environment, "com/kelvo/tarn/providers/hba/HbaCache$HbaDiscoveredPort") {
        }
        Constructor constructor{*this, "(Lcom/kelvo/tarn/TrInstance;[Lcom/kelvo/tarn/TrInstance;)V"};
    };
};

// The agent's log, which only has to be there.

struct KelvoLogger {
    struct Static : ClassProxy {
        explicit Static(JNIEnv *environment) : ClassProxy(environment, "com/kelvo/log/KelvoLogger") {
        }
    };
};

struct Logger {
    struct Static : ClassProxy {
        explicit Static(JNIEnv *environment) : ClassProxy(environment, "org/apache/log4j/Logger") {
        }
    };
};

/// Object proxy of the Java object that the native method was called on.
class HbaCache {
public:
    struct Static : ClassProxy {
        explicit Static(JNIEnv *environment) : ClassProxy(environment, "com/kelvo/tarn/providers/hba/HbaCache") {
        }
        InstanceMethod meth_forceLeadvilleHeuristicForTargetMappings{*this, "forceLeadvilleHeuristicForTargetMappings",
                                                                     "()Z"};
        InstanceMethod meth_usingLeadvilleHeuristicForTargetMappings{*this, "usingLeadvilleHeuristicForTargetMappings",
                                                                     "()Z"};
    };

    HbaCache(Static &classProxy, jobject object) : proxy(&classProxy), obj(object) {
    }

    /// Whether the Leadville heuristic makes every device name.
    bool forceLeadvilleHeuristicForTargetMappings() const {
        return jni::callBoolean(proxy->env, obj, proxy->meth_forceLeadvilleHeuristicForTargetMappings());
    }
    /// Whether it makes those in "/dev/rdsk/".
    bool usingLeadvilleHeuristicForTargetMappings() const {
        return jni::callBoolean(proxy->env, obj, proxy->meth_usingLeadvilleHeuristicForTargetMappings());
    }

private:
    Static *proxy;
    jobject obj;
};

} // namespace tarn
