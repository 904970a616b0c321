// The fill of the Fibre Channel cache: against a flat loop that makes the same JNI calls of values already gathered,
// against itself on a smaller fabric, and against plain Java that builds the same objects.

#include <array>
#include <fstream>
#include <iterator>

#include "benchmarks/Comparison.h"
#include "benchmarks/Fabric.h"
#include "tests/jvm/hba/HbaTree.h"

extern "C" jobjectArray Java_com_kelvo_tarn_providers_hba_HbaCache_fillHbaCache(JNIEnv *, jobject, jobject);

namespace bench {
namespace {

constexpr Fabric usualFabric{2, 2, 64, 4};
constexpr Fabric smallFabric{1, 1, 32, 32};
constexpr Fabric largeFabric{1, 1, 2048, 32};

std::string describe(const Fabric &fabric) {
    return "{" + hbaOf(fabric) + "}";
}

// ---- What is called in Java, looked up once -------------------------------------------------------------------------

using Fields = std::vector<jfieldID>;

struct Java {
    explicit Java(JNIEnv *environment) : env(environment) {
        env->PushLocalFrame(64);
        const jclass nameSpace = find("com/kelvo/tarn/TrNamespace");
        const jobject kelvo =
            env->NewObject(nameSpace, constructor(nameSpace, "(Ljava/lang/String;)V"), env->NewStringUTF("root/kelvo"));
        cache = env->NewGlobalRef(env->NewObject(cacheClass, constructor(cacheClass, "(ZZ)V"), JNI_FALSE, JNI_FALSE));
        names = env->NewGlobalRef(
            env->NewObject(namesClass, constructor(namesClass, "(Lcom/kelvo/tarn/TrNamespace;Z)V"), kelvo, JNI_FALSE));
        env->PopLocalFrame(nullptr);
    }

    jclass find(const std::string &name) const {
        return static_cast<jclass>(env->NewGlobalRef(env->FindClass(name.c_str())));
    }
    jclass findHba(const std::string &name) const {
        return find("com/kelvo/tarn/providers/hba/" + name);
    }
    jmethodID constructor(jclass cls, const char *signature) const {
        return env->GetMethodID(cls, "<init>", signature);
    }
    jmethodID cimClass(const char *name) const {
        return env->GetMethodID(namesClass, name, "()Lcom/kelvo/tarn/TrClass;");
    }
    Fields fields(jclass provider, const std::vector<const char *> &properties) const {
        Fields found;
        for (const char *name : properties) {
            found.push_back(env->GetStaticFieldID(provider, name, "Lcom/kelvo/tarn/TrProperty;"));
        }
        return found;
    }
    jfieldID portValue(const char *name) const {
        return env->GetStaticFieldID(portProvider, name, "Ljavax/wbem/cim/UnsignedInt16;");
    }

    JNIEnv *env;
    jclass cacheClass = findHba("HbaCache");
    jclass namesClass = findHba("HbaClassNames");
    jclass adapterProvider = findHba("HostBusAdapterProvider");
    jclass portProvider = findHba("HbaPortProvider");
    jclass statisticsProvider = findHba("FCPortStatisticsProvider");
    jclass mappingProvider = findHba("TargetMappingProvider");
    jclass adapterRecord = findHba("HbaCache$Hba");
    jclass portRecord = findHba("HbaCache$HbaPort");
    jclass remoteRecord = findHba("HbaCache$HbaDiscoveredPort");
    jclass trClass = find("com/kelvo/tarn/TrClass");
    jclass instance = find("com/kelvo/tarn/TrInstance");
    jclass uint64 = find("javax/wbem/cim/UnsignedInt64");
    jclass uint32 = find("javax/wbem/cim/UnsignedInt32");
    jclass uint16 = find("javax/wbem/cim/UnsignedInt16");

    jmethodID newAdapter =
        constructor(adapterRecord, "(Lcom/kelvo/tarn/TrInstance;[Lcom/kelvo/tarn/providers/hba/HbaCache$HbaPort;)V");
    jmethodID newPort = constructor(portRecord, "(Lcom/kelvo/tarn/TrInstance;Lcom/kelvo/tarn/TrInstance;"
                                                "[Lcom/kelvo/tarn/providers/hba/HbaCache$HbaDiscoveredPort;)V");
    jmethodID newRemote = constructor(remoteRecord, "(Lcom/kelvo/tarn/TrInstance;[Lcom/kelvo/tarn/TrInstance;)V");
    jmethodID newInstance = constructor(instance, "(Lcom/kelvo/tarn/TrClass;[Ljava/lang/Object;)V");
    jmethodID newUint64 = constructor(uint64, "([B)V");
    jmethodID newUint32 = constructor(uint32, "(J)V");
    jmethodID newUint16 = constructor(uint16, "(I)V");
    jmethodID adapterClass = cimClass("getHostBusAdapterClass");
    jmethodID portClass = cimClass("getHbaPortClass");
    jmethodID remoteClass = cimClass("getHbaDiscoveredPortClass");
    jmethodID statisticsClass = cimClass("getFCPortStatisticsClass");
    jmethodID mappingClass = cimClass("getTargetMappingClass");
    jmethodID systemClass = cimClass("getComputerSystemClass");
    jmethodID systemName = env->GetMethodID(namesClass, "getSystemName", "()Ljava/lang/String;");
    jmethodID keep = env->GetMethodID(namesClass, "isKeepOsDeviceName", "()Z");
    jmethodID leadville = env->GetMethodID(cacheClass, "usingLeadvilleHeuristicForTargetMappings", "()Z");
    jmethodID force = env->GetMethodID(cacheClass, "forceLeadvilleHeuristicForTargetMappings", "()Z");
    jmethodID defaultValues = env->GetMethodID(trClass, "getDefaultValues", "()[Ljava/lang/Object;");
    jmethodID getName = env->GetMethodID(trClass, "getName", "()Ljava/lang/String;");
    jmethodID set =
        env->GetMethodID(find("com/kelvo/tarn/TrProperty"), "set", "([Ljava/lang/Object;Ljava/lang/Object;)V");

    Fields adapterFields = fields(
        adapterProvider, {"deviceID", "creationClassName", "systemName", "systemCreationClassName", "manufacturer",
                          "serialNumber", "model", "modelDescription", "name", "nodeSymbolicName", "hardwareVersion",
                          "driverVersion", "optionRomVersion", "firmwareVersion", "vendorSpecificID", "driverName",
                          "caption", "description", "elementName"});
    Fields portFields = fields(portProvider, {"nodeWWN",
                                              "permanentAddress",
                                              "portFcId",
                                              "portType",
                                              "portState",
                                              "supportedCOS",
                                              "name",
                                              "osDeviceName",
                                              "maxSpeed",
                                              "speed",
                                              "supportedMaximumTransmissionUnit",
                                              "fabricName",
                                              "deviceID",
                                              "systemName",
                                              "systemCreationClassName",
                                              "operationalStatus",
                                              "creationClassName",
                                              "caption",
                                              "description",
                                              "elementName",
                                              "portNumber"});
    Fields statisticsFields =
        fields(statisticsProvider,
               {"elementName", "instanceID", "packetsTransmitted", "packetsReceived", "lipCount", "nosCount",
                "errorFrames", "dumpedFrames", "linkFailures", "lossOfSyncCounter", "lossOfSignalCounter",
                "primitiveSeqProtocolErrCount", "invalidTransmissionWords", "crcErrors"});
    Fields mappingFields = fields(mappingProvider, {"antecedent", "dependent", "scsiBus", "targetId", "scsiLun",
                                                    "osDeviceName", "exportedLUN", "discoveredPortWWN"});
    jfieldID typeN = portValue("PORT_TYPE_N");
    jfieldID online = portValue("PORT_STATE_ONLINE");
    jfieldID class3 = portValue("SUPPORTED_COS_3");
    jfieldID ok = portValue("OPERATIONAL_STATUS_OK");

    jobject cache = nullptr;
    jobject names = nullptr;
};

const Java &java(JNIEnv *env) {
    static const Java identifiers(env);
    return identifiers;
}

// ---- The flat loop --------------------------------------------------------------------------------------------------

using Number = std::array<jbyte, 9>;
constexpr Number zero{};
constexpr Number one{0, 0, 0, 0, 0, 0, 0, 0, 1};
constexpr Number frameSize{0, 0, 0, 0, 0, 0, 0, 8, 0};
constexpr Number twoGigabit{
    0, 0, 0, 0, 0, static_cast<jbyte>(0x88), 0x51, static_cast<jbyte>(0xeb), static_cast<jbyte>(0x85)};

/// A fabric's values that differ from instance to instance.
struct Prepared {
    explicit Prepared(const Fabric &whole) : fabric(whole) {
        for (int r = 0; r < fabric.remotePorts; ++r) {
            remoteNames.push_back(remotePortName(r));
            for (int l = 0; l < fabric.luns; ++l) {
                deviceNames.push_back("c2t" + std::to_string(r) + "d" + std::to_string(l));
            }
        }
        for (int a = 0; a < fabric.adapters; ++a) {
            const std::string number = std::to_string(a);
            adapterIds.push_back(nodeName + (":" + number));
            adapterCaptions.push_back("Adapter " + number);
            for (int p = 0; p < fabric.ports; ++p) {
                portCaptions.push_back("Adapter " + number + " Port " + std::to_string(p));
            }
        }
    }
    Fabric fabric;
    std::vector<std::string> adapterIds, adapterCaptions, portCaptions, remoteNames, deviceNames;
};

/// The JNI calls that the fabric's cache needs, in their order.
class Floor {
public:
    Floor(JNIEnv *environment, const Prepared &values) : env(environment), java(bench::java(env)), prepared(values) {
    }

    jobjectArray fill() {
        const Fabric &fabric = prepared.fabric;
        env->EnsureLocalCapacity(1000);
        env->EnsureLocalCapacity(10 * fabric.adapters);
        const jobjectArray result = env->NewObjectArray(fabric.adapters, java.adapterRecord, nullptr);
        for (jsize a = 0; a < fabric.adapters; ++a) {
            const jobject adapter = makeAdapter(static_cast<std::size_t>(a));
            const jobjectArray ports = env->NewObjectArray(fabric.ports, java.portRecord, nullptr);
            store(result, a, env->NewObject(java.adapterRecord, java.newAdapter, adapter, ports));
            for (jsize p = 0; p < fabric.ports; ++p) {
                const jobject port = makePort(static_cast<std::size_t>(a * fabric.ports + p), p);
                const jobject statistics = makeStatistics();
                const jobjectArray remotes = env->NewObjectArray(fabric.remotePorts, java.remoteRecord, nullptr);
                store(ports, p, env->NewObject(java.portRecord, java.newPort, port, statistics, remotes));
                for (jsize r = 0; r < fabric.remotePorts; ++r) {
                    const char *const name = prepared.remoteNames[static_cast<std::size_t>(r)].c_str();
                    const jobject remote = makeRemotePort(name);
                    const jobjectArray targets = env->NewObjectArray(fabric.luns, java.instance, nullptr);
                    store(remotes, r, env->NewObject(java.remoteRecord, java.newRemote, remote, targets));
                    for (jsize l = 0; l < fabric.luns; ++l) {
                        store(targets, l, makeMapping(port, remote, name, r, l));
                    }
                }
            }
        }
        return result;
    }

private:
    void store(jobjectArray array, jsize index, jobject element) {
        env->SetObjectArrayElement(array, index, element);
        env->ExceptionCheck();
    }
    jobject call(jobject receiver, jmethodID method) {
        const jobject result = env->CallObjectMethod(receiver, method);
        env->ExceptionCheck();
        return result;
    }
    bool ask(jobject receiver, jmethodID method) {
        const bool answer = env->CallBooleanMethod(receiver, method) == JNI_TRUE;
        env->ExceptionCheck();
        return answer;
    }
    jobject text(const char *characters) {
        return env->NewStringUTF(characters);
    }
    jobject uint32(jlong value) {
        return env->NewObject(java.uint32, java.newUint32, value);
    }
    jobject uint64(const Number &value) {
        const jbyteArray bytes = env->NewByteArray(9);
        env->SetByteArrayRegion(bytes, 0, 9, value.data());
        return env->NewObject(java.uint64, java.newUint64, bytes);
    }
    jobject portValue(jfieldID field) {
        return env->GetStaticObjectField(java.portProvider, field);
    }
    jobject portValues(jfieldID field) {
        const jobjectArray array = env->NewObjectArray(1, java.uint16, nullptr);
        store(array, 0, portValue(field));
        return array;
    }
    jobject systemClassName() {
        return call(call(java.names, java.systemClass), java.getName);
    }

    /// Sets properties one after another: reads the descriptor, makes the value, hands both to Java.
    struct Setter {
        template <class Value>
        void operator()(const Value &value) {
            const jobject descriptor = env->GetStaticObjectField(provider, *field++);
            env->CallVoidMethod(descriptor, set, values, value());
            env->ExceptionCheck();
        }
        JNIEnv *env;
        jclass provider;
        Fields::const_iterator field;
        jmethodID set;
        jobject values;
    };

    template <class Fill>
    jobject make(jint capacity, jmethodID cimClassOf, jclass provider, Fields::const_iterator field, const Fill &fill) {
        env->PushLocalFrame(capacity);
        const jobject cimClass = call(java.names, cimClassOf);
        const jobject values = call(cimClass, java.defaultValues);
        fill(cimClass, Setter{env, provider, field, java.set, values});
        return env->PopLocalFrame(
            env->NewObject(java.instance, java.newInstance, call(java.names, cimClassOf), values));
    }

    void setCaption(const std::string &characters, Setter &set) {
        const jobject caption = text(characters.c_str());
        for (int i = 0; i < 3; ++i) {
            set([&] { return caption; });
        }
    }

    jobject makeAdapter(std::size_t a) {
        const auto fill = [&](jobject cimClass, Setter set) {
            const auto anyText = [&] { return text("text"); };
            set([&] { return text(prepared.adapterIds[a].c_str()); });
            set([&] { return call(cimClass, java.getName); });
            set([&] { return call(java.names, java.systemName); });
            set([&] { return systemClassName(); });
            set(anyText);
            set(anyText);
            set(anyText);
            set(anyText);
            set([&] { return text(nodeName); });
            set(anyText);
            set(anyText);
            set(anyText);
            set(anyText);
            set(anyText);
            set([&] { return uint32(1); });
            set(anyText);
            setCaption(prepared.adapterCaptions[a], set);
        };
        return make(48, java.adapterClass, java.adapterProvider, java.adapterFields.begin(), fill);
    }

    void populate(Setter set, const char *name) {
        env->PushLocalFrame(44);
        set([&] { return text(nodeName); });
        set([&] { return text(name); });
        set([&] { return uint32(66048); });
        set([&] { return portValue(java.typeN); });
        set([&] { return portValue(java.online); });
        set([&] { return portValues(java.class3); });
        set([&] { return text(symbolicName); });
        set([&] { return text(portDevice); });
        set([&] { return uint64(twoGigabit); });
        set([&] { return uint64(twoGigabit); });
        set([&] { return uint64(frameSize); });
        set([&] { return text(fabricName); });
        set([&] { return text(name); });
        set([&] { return call(java.names, java.systemName); });
        set([&] { return systemClassName(); });
        set([&] { return portValues(java.ok); });
        env->PopLocalFrame(nullptr);
    }

    jobject makePort(std::size_t caption, jint p) {
        const auto fill = [&](jobject cimClass, Setter set) {
            populate(set, portName);
            set.field += 16;
            set([&] { return call(cimClass, java.getName); });
            setCaption(prepared.portCaptions[caption], set);
            set([&] { return env->NewObject(java.uint16, java.newUint16, p); });
        };
        return make(20, java.portClass, java.portProvider, java.portFields.begin(), fill);
    }

    jobject makeRemotePort(const char *name) {
        const auto fill = [&](jobject cimClass, Setter set) {
            populate(set, name);
            set.field += 16;
            set([&] { return call(cimClass, java.getName); });
        };
        return make(9, java.remoteClass, java.portProvider, java.portFields.begin(), fill);
    }

    jobject makeStatistics() {
        const auto fill = [&](jobject, Setter set) {
            set([&] { return text(portName); });
            set([&] { return text(portName); });
            set([&] { return uint64(one); });
            for (int i = 1; i < 12; ++i) {
                set([&] { return uint64(zero); });
            }
        };
        return make(44, java.statisticsClass, java.statisticsProvider, java.statisticsFields.begin(), fill);
    }

    jobject makeMapping(jobject port, jobject remote, const char *name, jsize r, jsize l) {
        const auto fill = [&](jobject, Setter set) {
            set([&] { return port; });
            set([&] { return remote; });
            set([&] { return uint32(2); });
            set([&] { return uint32(r); });
            set([&] { return uint32(l); });
            set([&] {
                const bool kept =
                    ask(java.names, java.keep) || ask(java.cache, java.leadville) || ask(java.cache, java.force);
                const auto device = static_cast<std::size_t>(r * prepared.fabric.luns + l);
                return text(kept ? "" : prepared.deviceNames[device].c_str());
            });
            set([&] { return uint64(one); });
            set([&] { return text(name); });
        };
        return make(26, java.mappingClass, java.mappingProvider, java.mappingFields.begin(), fill);
    }

    JNIEnv *env;
    const Java &java;
    const Prepared &prepared;
};

// ---- The comparisons ------------------------------------------------------------------------------------------------

jobject fillHbaCache(JNIEnv *env) {
    return Java_com_kelvo_tarn_providers_hba_HbaCache_fillHbaCache(env, java(env).cache, java(env).names);
}

jobject fillByFloor(JNIEnv *env) {
    static const Prepared prepared(usualFabric);
    return Floor(env, prepared).fill();
}

/// The same cache, built by the Java class of that name.
jobject fillByPlainJava(JNIEnv *env) {
    static const jclass builder = [env] {
        std::ifstream file(TARN_PLAIN_JAVA_CLASS, std::ios::binary);
        const std::vector<jbyte> bytes{std::istreambuf_iterator<char>(file), {}};
        const jobject cacheClass = java(env).cacheClass;
        const jobject loader = jvm::call(env, cacheClass, "getClassLoader", "()Ljava/lang/ClassLoader;");
        return static_cast<jclass>(env->NewGlobalRef(
            env->DefineClass("PlainHbaCache", loader, bytes.data(), static_cast<jsize>(bytes.size()))));
    }();
    static const jmethodID build = env->GetStaticMethodID(
        builder, "build",
        "(Lcom/kelvo/tarn/providers/hba/HbaClassNames;IIII)[Lcom/kelvo/tarn/providers/hba/HbaCache$Hba;");
    return env->CallStaticObjectMethod(builder, build, java(env).names, jint{usualFabric.adapters},
                                       jint{usualFabric.ports}, jint{usualFabric.remotePorts}, jint{usualFabric.luns});
}

std::vector<std::string> treeOf(JNIEnv *env, jobject cache) {
    return jvm::HbaTree(env, static_cast<jobjectArray>(cache)).lines;
}

std::vector<Comparison> comparisons() {
    const std::string usual = describe(usualFabric);
    const std::string small = describe(smallFabric);
    const std::string large = describe(largeFabric);
    const double growth = largeFabric.instances() / smallFabric.instances();
    return {
        {"fillHbaCache, 2 adapters x 2 ports x 64 remote ports x 4 LUNs",
         1.15,
         {usual, fillHbaCache},
         {usual, fillByFloor},
         1.0,
         60,
         treeOf},
        {"fillHbaCache, per instance: 65,536 mappings to 1,024",
         1.25,
         {large, fillHbaCache},
         {small, fillHbaCache},
         growth,
         20,
         nullptr},
        {"fillHbaCache, to the same objects built by plain Java",
         noBound,
         {usual, fillHbaCache},
         {usual, fillByPlainJava},
         1.0,
         60,
         treeOf},
    };
}

const Registration registration(comparisons);

} // namespace
} // namespace bench
