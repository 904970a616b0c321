#pragma once

#include "common/jni/ClassProxy.h"
#include "common/jni/LocalFrame.h"

// The agent's and the JSR-48 classes that more than one subsystem calls. A proxy has a slot for every member that
// native code uses, and no other.

namespace tarn {

struct TrClassMembers : NamedClass<"com/kelvo/tarn/TrClass"> {
    using NamedClass::NamedClass;
    InstanceMethod meth_getDefaultValues{*this, "getDefaultValues", "()[Ljava/lang/Object;"};
    InstanceMethod meth_getName{*this, "getName", "()Ljava/lang/String;"};
    InstanceMethod meth_getNamespace{*this, "getNamespace", "()Lcom/kelvo/tarn/TrNamespace;"};
};
using TrClass = JavaClass<TrClassMembers>;

struct TrPropertyMembers : NamedClass<"com/kelvo/tarn/TrProperty"> {
    using NamedClass::NamedClass;
    InstanceMethod meth_set{*this, "set", "([Ljava/lang/Object;Ljava/lang/Object;)V"};
};
using TrProperty = JavaClass<TrPropertyMembers>;

struct InstanceReceiverMembers : NamedClass<"com/kelvo/tarn/InstanceReceiver"> {
    using NamedClass::NamedClass;
    InstanceMethod meth_test{*this, "test", "(Lcom/kelvo/tarn/TrInstance;)V"};
};
using InstanceReceiver = JavaClass<InstanceReceiverMembers>;

using TrInstance =
    JavaClass<NamedMadeClass<"com/kelvo/tarn/TrInstance", "(Lcom/kelvo/tarn/TrClass;[Ljava/lang/Object;)V">>;
using UnsignedInt64 = JavaClass<NamedMadeClass<"javax/wbem/cim/UnsignedInt64", "([B)V">>;
using UnsignedInt32 = JavaClass<NamedMadeClass<"javax/wbem/cim/UnsignedInt32", "(J)V">>;
using UnsignedInt16 = JavaClass<NamedMadeClass<"javax/wbem/cim/UnsignedInt16", "(I)V">>;

struct HbaClassNamesMembers : NamedClass<"com/kelvo/tarn/providers/hba/HbaClassNames"> {
    using NamedClass::NamedClass;
    InstanceMethod meth_getHostBusAdapterClass{*this, "getHostBusAdapterClass", "()Lcom/kelvo/tarn/TrClass;"};
    InstanceMethod meth_getHbaPortClass{*this, "getHbaPortClass", "()Lcom/kelvo/tarn/TrClass;"};
    InstanceMethod meth_getHbaDiscoveredPortClass{*this, "getHbaDiscoveredPortClass", "()Lcom/kelvo/tarn/TrClass;"};
    InstanceMethod meth_getFCPortStatisticsClass{*this, "getFCPortStatisticsClass", "()Lcom/kelvo/tarn/TrClass;"};
    InstanceMethod meth_getTargetMappingClass{*this, "getTargetMappingClass", "()Lcom/kelvo/tarn/TrClass;"};
    InstanceMethod meth_getComputerSystemClass{*this, "getComputerSystemClass", "()Lcom/kelvo/tarn/TrClass;"};
    InstanceMethod meth_getSystemName{*this, "getSystemName", "()Ljava/lang/String;"};
    InstanceMethod meth_isKeepOsDeviceName{*this, "isKeepOsDeviceName", "()Z"};
    InstanceMethod meth_getNativeMethodClassName{*this, "getNativeMethodClassName", "()Ljava/lang/String;"};
    StaticMethod meth_get{*this, "get", "(Lcom/kelvo/tarn/TrNamespace;)Lcom/kelvo/tarn/providers/hba/HbaClassNames;"};

    /// The class names of that namespace's schema, or null.
    jobject get(jobject nameSpace) const {
        const jmethodID method = meth_get();
        const jobject result = env->CallStaticObjectMethod(cls, method, nameSpace);
        jni::check(env);
        return result;
    }
};

/// Object proxy of the agent's class-name provider; its member functions are named after the Java methods. Without an
/// object they end with NoInstance.
class HbaClassNames : JavaClass<HbaClassNamesMembers> {
public:
    using JavaClass::JavaClass;
    using JavaClass::Static;

    /// CIM classes (TrClass).
    jobject getHostBusAdapterClass() const {
        return call(proxy->meth_getHostBusAdapterClass);
    }
    jobject getHbaPortClass() const {
        return call(proxy->meth_getHbaPortClass);
    }
    jobject getHbaDiscoveredPortClass() const {
        return call(proxy->meth_getHbaDiscoveredPortClass);
    }
    jobject getFCPortStatisticsClass() const {
        return call(proxy->meth_getFCPortStatisticsClass);
    }
    jobject getTargetMappingClass() const {
        return call(proxy->meth_getTargetMappingClass);
    }
    jobject getComputerSystemClass() const {
        return call(proxy->meth_getComputerSystemClass);
    }

    /// Value of the systemName properties (String).
    jobject getSystemName() const {
        return call(proxy->meth_getSystemName);
    }
    /// Whether device names are to stay as the HBA library gives them.
    bool isKeepOsDeviceName() const {
        return jni::callBoolean(proxy->env, needed(obj), proxy->meth_isKeepOsDeviceName());
    }
    /// Slash-separated name of the class whose static info and warn take log lines.
    jstring getNativeMethodClassName() const {
        return static_cast<jstring>(call(proxy->meth_getNativeMethodClassName));
    }

private:
    jobject call(const InstanceMethod &method) const {
        return jni::callObject(proxy->env, needed(obj), method());
    }
};

} // namespace tarn
