#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

#include "common/jni/Jni.h"

// A class proxy stands for one Java class during one native call and owns the lookups of its members. This is the one
// way in which native code comes by a Java class, method, field or constructor:
//
//     struct TrClassMembers : NamedClass<"com/kelvo/tarn/TrClass"> {
//         using NamedClass::NamedClass;
//         InstanceMethod meth_getName{*this, "getName", "()Ljava/lang/String;"};
//     };
//     using TrClass = JavaClass<TrClassMembers>;
//
//     TrClass::Static trClass(env);                                      // FindClass, once
//     jni::callObject(env, object, trClass.meth_getName());              // GetMethodID at the first use only
//
// Nothing is kept beyond the call: class references are local, and identifiers go with the proxy.

namespace tarn {

class ClassProxy {
public:
    /// `name` is slash-separated. Throws JavaExceptionPending when the virtual machine does not find the class.
    ClassProxy(JNIEnv *environment, const char *name) : env(environment), cls(jni::required(env->FindClass(name))) {
    }
    ClassProxy(const ClassProxy &) = delete;
    ClassProxy &operator=(const ClassProxy &) = delete;

    /// Leaves an exception of this class pending, or that of a virtual machine which refuses to make it.
    void throwNew(const char *message) const {
        env->ThrowNew(cls, message);
    }

    JNIEnv *const env;
    const jclass cls;
};

/// When a member is looked up.
enum class Binding {
    atFirstUse,
    atOnce, ///< with the slot, for members that Java is to be asked for before other work begins
};

/// The identifier slot of one member: looked up at most once.
template <class Id, Id (JNIEnv::*lookUp)(jclass, const char *, const char *)>
class MemberSlot {
public:
    /// Throws JavaExceptionPending when the member is bound at once and the class has none such.
    MemberSlot(const ClassProxy &ownerProxy, const char *memberName, const char *memberSignature,
               Binding binding = Binding::atFirstUse)
        : owner(ownerProxy), name(memberName), signature(memberSignature) {
        if (binding == Binding::atOnce) {
            (*this)();
        }
    }
    MemberSlot(const MemberSlot &) = delete;
    MemberSlot &operator=(const MemberSlot &) = delete;

    /// Throws JavaExceptionPending when the class has no such member.
    Id operator()() const {
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
    mutable Id id = nullptr;
};

using InstanceMethod = MemberSlot<jmethodID, &JNIEnv::GetMethodID>;
using StaticMethod = MemberSlot<jmethodID, &JNIEnv::GetStaticMethodID>;

/// A static field of a reference type. Its identifier is kept, its value never: it is read at every use.
class StaticField : public MemberSlot<jfieldID, &JNIEnv::GetStaticFieldID> {
public:
    using MemberSlot::MemberSlot;

    /// Null when Java holds null there.
    jobject value() const {
        const jfieldID field = (*this)();
        return owner.env->GetStaticObjectField(owner.cls, field);
    }
};

/// Static fields of one reference type, with a slot for each row of the table that names them.
template <std::size_t rows>
class StaticFields {
public:
    StaticFields(const ClassProxy &ownerProxy, const char *fieldSignature)
        : owner(ownerProxy), signature(fieldSignature) {
    }
    StaticFields(const StaticFields &) = delete;
    StaticFields &operator=(const StaticFields &) = delete;

    /// That of the field which the row names. Null when Java holds null there.
    jobject value(std::size_t row, const char *name) const {
        jfieldID &id = ids[row];
        if (id == nullptr) {
            id = jni::required(owner.env->GetStaticFieldID(owner.cls, name, signature));
        }
        return owner.env->GetStaticObjectField(owner.cls, id);
    }

private:
    const ClassProxy &owner;
    const char *signature;
    mutable std::array<jfieldID, rows> ids{};
};

/// A class of which native code makes objects.
struct MadeClass : ClassProxy {
    MadeClass(JNIEnv *environment, const char *name, const char *constructorSignature,
              Binding binding = Binding::atFirstUse)
        : ClassProxy(environment, name), constructor(*this, "<init>", constructorSignature, binding) {
    }

    template <class... Values>
    jobject make(Values... values) const {
        const jmethodID id = constructor();
        return jni::required(env->NewObject(cls, id, values...));
    }

    const InstanceMethod constructor;
};

/// A name or a signature as a template's argument.
template <std::size_t size>
struct Literal {
    consteval Literal(const char (&literal)[size]) {
        std::copy_n(literal, size, text);
    }
    char text[size];
};

/// The proxy of the class of that name; those with members derive from it.
template <Literal name>
struct NamedClass : ClassProxy {
    explicit NamedClass(JNIEnv *environment) : ClassProxy(environment, name.text) {
    }
};

template <Literal name, Literal constructorSignature>
struct NamedMadeClass : MadeClass {
    explicit NamedMadeClass(JNIEnv *environment) : MadeClass(environment, name.text, constructorSignature.text) {
    }
};

/// What goes in C++ by the name of a Java class: its class proxy, `Static`, and, as an object of this type, the object
/// proxy, one Java object of the class with that class proxy.
template <class Members>
class JavaClass {
public:
    using Static = Members;

    JavaClass(Static &classProxy, jobject object) : proxy(&classProxy), obj(object) {
    }

protected:
    Static *proxy;
    jobject obj;
};

} // namespace tarn
