#include <array>

#include "native/host/HostInformation.h"
#include "platform/solaris.h"

namespace tarn {
namespace {

constexpr const char *computerSystemClassName =
    "com/kelvo/tarn/providers/solaris/SolarisComputerSystemProvider$SolarisComputerSystem";

constexpr std::size_t infoSize = 128; // of the buffer that receives one system-information text

MadeClass GetClassAndMethod(JNIEnv *env) {
    return {env, computerSystemClassName,
            "(Ljava/lang/String;Ljava/lang/String;Ljava/lang/String;Ljava/lang/String;"
            "Ljava/lang/String;)V",
            Binding::atOnce};
}

/// The five texts of the result. A value that the system does not tell stays a blank; no host tells its serial number.
class ComputerSystem {
public:
    explicit ComputerSystem(JNIEnv *env)
        : systemName(jni::newString(env, " ")), hostName(jni::newString(env, " ")), platform(jni::newString(env, " ")),
          version(jni::newString(env, " ")), serialNumber(jni::newString(env, "unknown")) {
    }

    void readFrom(JNIEnv *env) {
        readInfo(env, SI_SYSNAME, systemName);
        readInfo(env, SI_HOSTNAME, hostName);
        readInfo(env, SI_PLATFORM, platform);
        readInfo(env, SI_VERSION, version);
    }

    jobject makeObject(const MadeClass &result) const {
        return result.make(systemName, hostName, serialNumber, platform, version);
    }

private:
    void readInfo(JNIEnv *env, int command, jstring &value) {
        if (solaris::sysinfo(command, info.data(), static_cast<long>(info.size())) > -1) {
            info.back() = '\0'; // a text longer than the buffer is cut
            value = jni::newString(env, info.data());
        }
    }

    jstring systemName;
    jstring hostName;
    jstring platform;
    jstring version;
    jstring serialNumber;
    std::array<char, infoSize> info{};
};

} // namespace
} // namespace tarn

TARN_EXPORTED_ENTRY jobject JNICALL
Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_getComputerSystem(JNIEnv *env, jobject) {
    using namespace tarn;
    return runEntry(env, [&]() -> jobject {
        ComputerSystem computerSystem(env);
        const MadeClass result = GetClassAndMethod(env);
        try {
            computerSystem.readFrom(env);
        } catch (const JavaExceptionPending &) {
            throw;
        } catch (...) {
            // What was learned so far is still true.
        }
        return computerSystem.makeObject(result);
    });
}
