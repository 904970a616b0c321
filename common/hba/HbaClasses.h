#pragma once

#include "common/jni/AgentClasses.h"

// The Java classes that only the HBA cache touches. The names of most properties and of all enumeration values stand in
// the tables of those who read them, and the slots of a class have the tables' lengths.

namespace tarn {

inline constexpr const char *propertySignature = "Lcom/kelvo/tarn/TrProperty;";
inline constexpr const char *enumerationSignature = "Ljavax/wbem/cim/UnsignedInt16;";

using HbaDiscoveredPortProvider = JavaClass<NamedClass<"com/kelvo/tarn/providers/hba/HbaDiscoveredPortProvider">>;

struct HostBusAdapterProviderMembers : NamedClass<"com/kelvo/tarn/providers/hba/HostBusAdapterProvider"> {
    using NamedClass::NamedClass;
    StaticFields<16> field_properties{*this, propertySignature};
    StaticFields<3> field_captions{*this, propertySignature};
};
using HostBusAdapterProvider = JavaClass<HostBusAdapterProviderMembers>;

/// Its descriptors serve local and discovered ports alike.
struct HbaPortProviderMembers : NamedClass<"com/kelvo/tarn/providers/hba/HbaPortProvider"> {
    using NamedClass::NamedClass;
    StaticFields<16> field_properties{*this, propertySignature};
    StaticFields<3> field_captions{*this, propertySignature};
    StaticField field_creationClassName{*this, "creationClassName", propertySignature};
    StaticField field_portNumber{*this, "portNumber", propertySignature};

    StaticFields<7> field_PORT_TYPE{*this, enumerationSignature};
    StaticFields<8> field_PORT_STATE{*this, enumerationSignature};
    StaticFields<4> field_OPERATIONAL_STATUS{*this, enumerationSignature};
    StaticFields<7> field_SUPPORTED_COS{*this, enumerationSignature};
};
using HbaPortProvider = JavaClass<HbaPortProviderMembers>;

struct FCPortStatisticsProviderMembers : NamedClass<"com/kelvo/tarn/providers/hba/FCPortStatisticsProvider"> {
    using NamedClass::NamedClass;
    StaticFields<14> field_properties{*this, propertySignature};
};
using FCPortStatisticsProvider = JavaClass<FCPortStatisticsProviderMembers>;

struct TargetMappingProviderMembers : NamedClass<"com/kelvo/tarn/providers/hba/TargetMappingProvider"> {
    using NamedClass::NamedClass;
    StaticField field_antecedent{*this, "antecedent", propertySignature};
    StaticField field_dependent{*this, "dependent", propertySignature};
    StaticFields<6> field_properties{*this, propertySignature};
};
using TargetMappingProvider = JavaClass<TargetMappingProviderMembers>;

// The cache records.

using HbaRecord =
    JavaClass<NamedMadeClass<"com/kelvo/tarn/providers/hba/HbaCache$Hba",
                             "(Lcom/kelvo/tarn/TrInstance;[Lcom/kelvo/tarn/providers/hba/HbaCache$HbaPort;)V">>;
using HbaPortRecord = JavaClass<NamedMadeClass<"com/kelvo/tarn/providers/hba/HbaCache$HbaPort",
                                               "(Lcom/kelvo/tarn/TrInstance;Lcom/kelvo/tarn/TrInstance;"
                                               "[Lcom/kelvo/tarn/providers/hba/HbaCache$HbaDiscoveredPort;)V">>;
using HbaDiscoveredPortRecord = JavaClass<NamedMadeClass<"com/kelvo/tarn/providers/hba/HbaCache$HbaDiscoveredPort",
                                                         "(Lcom/kelvo/tarn/TrInstance;[Lcom/kelvo/tarn/TrInstance;)V">>;

// The agent's log, which only has to be there.

using KelvoLogger = JavaClass<NamedClass<"com/kelvo/log/KelvoLogger">>;
using Logger = JavaClass<NamedClass<"org/apache/log4j/Logger">>;

struct HbaCacheMembers : NamedClass<"com/kelvo/tarn/providers/hba/HbaCache"> {
    using NamedClass::NamedClass;
    InstanceMethod meth_forceLeadvilleHeuristicForTargetMappings{*this, "forceLeadvilleHeuristicForTargetMappings",
                                                                 "()Z"};
    InstanceMethod meth_usingLeadvilleHeuristicForTargetMappings{*this, "usingLeadvilleHeuristicForTargetMappings",
                                                                 "()Z"};
};

/// Object proxy of the Java object that the native method was called on.
class HbaCache : JavaClass<HbaCacheMembers> {
public:
    using JavaClass::JavaClass;
    using JavaClass::Static;

    /// Whether the Leadville heuristic makes every device name.
    bool forceLeadvilleHeuristicForTargetMappings() const {
        return jni::callBoolean(proxy->env, obj, proxy->meth_forceLeadvilleHeuristicForTargetMappings());
    }
    /// Whether it makes those in "/dev/rdsk/".
    bool usingLeadvilleHeuristicForTargetMappings() const {
        return jni::callBoolean(proxy->env, obj, proxy->meth_usingLeadvilleHeuristicForTargetMappings());
    }
};

} // namespace tarn
