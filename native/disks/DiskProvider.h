#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "common/jni/AgentClasses.h"
#include "common/jni/EntryPoint.h"
#include "common/jni/Jni.h"
#include "common/jni/JniString.h"
#include "common/jni/LocalFrame.h"
#include "common/system/Directory.h"
#include "common/system/DiskDevices.h"

// What the disk-drive and the disk-partition provider share. Neither builds a CIM instance itself: native code gathers
// what the drivers tell, and the Java provider's own method makes the instance of it.

namespace tarn {

inline std::string copyCharacters(JNIEnv *env, jstring string) {
    return JniString(env, string).utf8();
}

/// A null text gives a null string.
inline jstring newStringOrNull(JNIEnv *env, const char *text) {
    return text == nullptr ? nullptr : jni::newString(env, text);
}

/// The per-call object of a provider, as far as the two agree. It lives for one native call: identifiers are looked up
/// at most once, and nothing outlasts it. Every member may throw JavaExceptionPending.
class DiskProviderImpl {
protected:
    /// Binds the classes with which both lists begin, in their order.
    explicit DiskProviderImpl(JNIEnv *environment) : env(environment) {
    }

    /// The class names that go with the namespace of the provider's CIM class; ends with NoInstance when the provider
    /// has no CIM class. `cimClass` is the provider's static field "_class".
    jobject findHbaClassNames(StaticField &cimClass, HbaClassNames::Static &classNames) {
        const jobject trClassObject = needed(cimClass.value());
        return classNames.get(jni::callObject(env, trClassObject, trClass.meth_getNamespace()));
    }

    /// Hands to the receiver an instance for each directory entry that passes, in the directory's order. `make` takes
    /// the entry's name and answers an instance, which is given back once delivered, or null to skip the device. The
    /// first Java exception ends the walk. Without a receiver no device is opened.
    template <class Passes, class Make>
    void enumerateInstances(jobject receiver, Passes passes, Make make) {
        if (receiver == nullptr) {
            return;
        }
        Directory directory(s_dev_rdsk);
        while (const char *const entryName = directory.next()) {
            if (!passes(entryName)) {
                continue;
            }
            if (const jobject made = make(entryName); made != nullptr) {
                const jni::LocalRef<jobject> instance(env, made);
                jni::callVoid(env, receiver, instanceReceiver.meth_test(), made);
            }
        }
    }

    JNIEnv *const env;
    TrClass::Static trClass{env};
    TrProperty::Static trProperty{env};
    TrInstance::Static trInstance{env};
    InstanceReceiver::Static instanceReceiver{env};
    UnsignedInt64::Static unsignedInt64{env};
    UnsignedInt32::Static unsignedInt32{env};
    UnsignedInt16::Static unsignedInt16{env};
};

/// Runs an entry point of the provider that `Impl` serves: asks for room for `capacity` local references, makes the
/// per-call object and hands it to the operation. Answers null, or nothing, when one of the three is refused.
template <class Impl, class Operation>
auto runProviderEntry(JNIEnv *env, jint capacity, jobject provider, Operation operation) {
    using Result = decltype(operation(std::declval<Impl &>()));
    return runEntry(env, [&]() -> Result {
        if (env->EnsureLocalCapacity(capacity) < 0) {
            return Result();
        }
        try {
            Impl impl(env, provider);
            return operation(impl);
        } catch (const NoInstance &) {
            return Result();
        }
    });
}

inline constexpr jint enumerateCapacity = 2000; // local references of an enumerate entry
inline constexpr jint getCapacity = 1000;       // and of a get entry

} // namespace tarn
