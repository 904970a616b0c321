#pragma once

#include "common/jni/Jni.h"

// A class proxy stands for one Java class during one native call and owns the lookups of its members:
//
//     struct TrClass {
//         struct Static : ClassProxy {
//             explicit Static(JNIEnv *env) : ClassProxy(env, "com/kelvo/tarn/TrClass") {}
//             InstanceMethod meth_getName{*this, "getName", "()Ljava/lang/String;"};
//         };
//     };
//
//     TrClass::Static trClass(env);                                      // FindClass, once
//     jni::callObject(env, object, trClass.meth_getName());              // GetMethodID at the first use only
//
// Nothing is kept beyond the call: class references are local, and identifiers go with the proxy.

namespace tarn {

class ClassProxy {
public:
    /// `name` is slash-separated. Throws JavaExceptionPending when the virtual machine does not find the class.
    ClassProxy(JNIEnv *environment, const char *name) : env(environment), cls(jni::findClass(environment, name)) {
    }
    ClassProxy(const ClassProxy &) = delete;
    ClassProxy &operator=(const ClassProxy &) = delete;

    JNIEnv *const env;
    const jclass cls;
};

/// The identifier slot of one member: empty at first, looked up at most once.
template <class Id, Id (JNIEnv::*lookUp)(jclass, const char *, const char *)>
class MemberSlot {
public:
    constexpr MemberSlot(const ClassProxy &ownerProxy, const char *memberName, const char *memberSignature)
        : owner(ownerProxy), name(memberName), signature(memberSignature) {
    }
    MemberSlot(const MemberSlot &) = delete;
    MemberSlot &operator=(const MemberSlot &) = delete;

    /// Throws JavaExceptionPending when the class has no such member.
    Id operator()() {
        if (id == nullptr) {
            id = jni::required((owner.env->*lookUp)(owner.cls, name, signature));
        }
        return id;
    }

protected:
    const ClassProxy &owner;

private:
    const char *name;
    const char *signature;
    Id id = nullptr;
};

using InstanceMethod = MemberSlot<jmethodID, &JNIEnv::GetMethodID>;
using StaticMethod = MemberSlot<jmethodID, &JNIEnv::GetStaticMethodID>;

/// A static field of a reference type. Its identifier is kept, its value never: it is read at every use.
class StaticField : public MemberSlot<jfieldID, &JNIEnv::GetStaticFieldID> {
public:
    using MemberSlot::MemberSlot;

    /// Null when Java holds null there.
    jobject value() {
        const jfieldID field = (*this)();
        return owner.env->GetStaticObjectField(owner.cls, field);
    }
};

/// A constructor with the class it makes.
class Constructor : public InstanceMethod {
public:
    constexpr Constructor(const ClassProxy &ownerProxy, const char *constructorSignature)
        : MemberSlot(ownerProxy, "<init>", constructorSignature) {
    }

    template <class... Values>
    jobject make(Values... values) {
        const jmethodID constructor = (*this)();
        return jni::newObject(owner.env, owner.cls, constructor, values...);
    }
};

} // namespace tarn
