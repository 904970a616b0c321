#pragma once

#include <jni.h>

#include <vector>

#include "common/jni/EntryPoint.h"
#include "common/jni/Jni.h"
#include "native/JavaError.h"

// What every entry point of SolarisNativeMethod does around its gathering code.

namespace tarn {

/// A result class and its constructor, looked up anew for every call.
struct ResultClass {
    jclass cls;
    jmethodID constructor;
};

/// `name` is slash-separated. Throws JavaExceptionPending when Java has no such class or constructor.
inline ResultClass bindResultClass(JNIEnv *env, const char *name, const char *constructorSignature) {
    const jclass cls = jni::findClass(env, name);
    return {cls, jni::methodId(env, cls, "<init>", constructorSignature)};
}

/// A java.util.Vector under construction.
class JavaVector {
public:
    explicit JavaVector(JNIEnv *environment) : env(environment) {
        const jclass vectorClass = jni::findClass(env, "java/util/Vector");
        list = jni::newObject(env, vectorClass, jni::methodId(env, vectorClass, "<init>", "()V"));
        addElement = jni::methodId(env, vectorClass, "addElement", "(Ljava/lang/Object;)V");
    }

    /// Adds the object and gives its local reference back, so that a list may be of any length.
    void add(jobject object) {
        const jni::LocalRef<jobject> element(env, object);
        jni::callVoid(env, list, addElement, object);
    }

    jobject get() const {
        return list;
    }

private:
    JNIEnv *env;
    jobject list = nullptr;
    jmethodID addElement = nullptr;
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

/// The body of an enumerate entry: the vector, then the whole native list, then one object per record.
template <class Gather, class Make>
jobject enumerateRecords(JNIEnv *env, Gather gather, Make make) {
    JavaVector list(env);
    for (const auto &record : gather()) {
        list.add(make(record));
    }
    return list.get();
}

} // namespace tarn
