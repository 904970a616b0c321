#pragma once

#include <jni.h>

#include <optional>
#include <string>

#include "common/jni/ControlExceptions.h"
#include "common/system/Utf8.h"

namespace tarn {

/// JNI calls whose failure cannot be overlooked: each throws JavaExceptionPending when the virtual machine refuses.
namespace jni {

/// Passes on what a JNI function returned; null is that function's way to say that it left an exception pending.
template <class Reference>
Reference required(Reference reference) {
    if (reference == nullptr) {
        throw JavaExceptionPending{};
    }
    return reference;
}

/// To be called after every JNI function whose result does not tell whether Java threw.
inline void check(JNIEnv *env) {
    if (env->ExceptionCheck() == JNI_TRUE) {
        throw JavaExceptionPending{};
    }
}

/// Of a text in UTF-8; of one that is not, what the virtual machine makes of it.
inline jstring newString(JNIEnv *env, const char *text) {
    const std::optional<std::string> modified = toModifiedUtf8(text);
    return required(env->NewStringUTF(modified ? modified->c_str() : text));
}

inline jobjectArray newObjectArray(JNIEnv *env, jsize length, jclass elementClass) {
    return required(env->NewObjectArray(length, elementClass, nullptr));
}

inline void setElement(JNIEnv *env, jobjectArray array, jsize index, jobject element) {
    env->SetObjectArrayElement(array, index, element);
    check(env);
}

/// Null when the Java method returned null.
template <class... Values>
jobject callObject(JNIEnv *env, jobject receiver, jmethodID method, Values... values) {
    const jobject result = env->CallObjectMethod(receiver, method, values...);
    check(env);
    return result;
}

template <class... Values>
bool callBoolean(JNIEnv *env, jobject receiver, jmethodID method, Values... values) {
    const jboolean result = env->CallBooleanMethod(receiver, method, values...);
    check(env);
    return result == JNI_TRUE;
}

template <class... Values>
void callVoid(JNIEnv *env, jobject receiver, jmethodID method, Values... values) {
    env->CallVoidMethod(receiver, method, values...);
    check(env);
}

/// A local reference that is given back at scope exit, for loops that would otherwise pile them up.
template <class Reference>
class LocalRef {
public:
    LocalRef(JNIEnv *environment, Reference reference) : env(environment), ref(reference) {
    }
    ~LocalRef() {
        env->DeleteLocalRef(ref);
    }
    LocalRef(const LocalRef &) = delete;
    LocalRef &operator=(const LocalRef &) = delete;

    Reference get() const {
        return ref;
    }

private:
    JNIEnv *env;
    Reference ref;
};

/// The like of newString.
struct LocalString : LocalRef<jstring> {
    LocalString(JNIEnv *environment, const char *text) : LocalRef(environment, newString(environment, text)) {
    }
    LocalString(JNIEnv *environment, const std::string &text) : LocalString(environment, text.c_str()) {
    }
};

} // namespace jni
} // namespace tarn
