#pragma once

#include <jni.h>

#include <vector>

#include "common/jni/ClassProxy.h"
#include "common/jni/EntryPoint.h"
#include "common/jni/Jni.h"
#include "native/JavaError.h"

// What every entry point of SolarisNativeMethod does around its gathering code.

namespace tarn {

/// A java.util.Vector under construction.
class JavaVector : MadeClass {
public:
    explicit JavaVector(JNIEnv *environment) : MadeClass(environment, "java/util/Vector", "()V") {
    }

    /// Adds the object and gives its local reference back, so that a list may be of any length.
    void add(jobject object) {
        const jni::LocalRef<jobject> element(env, object);
        jni::callVoid(env, list, meth_addElement(), object);
    }

    jobject get() const {
        return list;
    }

private:
    const jobject list = make();
    const InstanceMethod meth_addElement{*this, "addElement", "(Ljava/lang/Object;)V", Binding::atOnce};
};

/// Runs an entry point whose failures reach Java: a NativeError as a RuntimeException with its message, any other native
/// exception as one with "UNKNOWN EXCEPTION", also one that comes of telling the first. Returns null then.
template <class Body>
jobject runThrowingEntry(JNIEnv *env, Body body) {
    return runEntry(env, [&]() -> jobject {
        try {
            try {
                return body();
            } catch (
                NativeError error) { // NOLINT(cert-err09-cpp,cert-err61-cpp): by value, a subclass arrives as its base
                ThrowJavaError(env, error.getMessage());
            }
        } catch (const JavaExceptionPending &) {
            throw;
        } catch (...) {
            ThrowJavaError(env, "UNKNOWN EXCEPTION");
        }
        return nullptr;
    });
}

/// An enumerate entry: the result class and the vector, then the whole native list, then one object per record.
template <class Bind, class Gather, class Make>
jobject enumerateRecords(JNIEnv *env, Bind bind, Gather gather, Make make) {
    return runThrowingEntry(env, [&] {
        const MadeClass result = bind(env);
        JavaVector list(env);
        for (const auto &record : gather()) {
            list.add(make(record, result));
        }
        return list.get();
    });
}

} // namespace tarn
