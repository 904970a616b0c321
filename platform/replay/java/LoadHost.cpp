#include "platform/replay/java/LoadHost.h"

#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "platform/replay/Replay.h"

// How Java chooses the host. Paths and messages are UTF-8, which the JNI's own texts
// are not beyond the first plane, so Java converts them. Whatever answers null leaves an exception pending.

namespace replay {
namespace {

/// A class of java.lang and one of its methods, or "<init>".
struct JavaMethod {
    JavaMethod(JNIEnv *env, const char *className, const char *name, const char *signature)
        : cls(env->FindClass(className)), id(cls == nullptr ? nullptr : env->GetMethodID(cls, name, signature)) {
    }
    const jclass cls;
    const jmethodID id;
};

std::optional<std::string> toUtf8(JNIEnv *env, jstring text) {
    const JavaMethod getBytes(env, "java/lang/String", "getBytes", "(Ljava/lang/String;)[B");
    const jstring charset = getBytes.id == nullptr ? nullptr : env->NewStringUTF("UTF-8");
    if (charset == nullptr) {
        return std::nullopt;
    }
    const auto bytes = static_cast<jbyteArray>(env->CallObjectMethod(text, getBytes.id, charset));
    if (env->ExceptionCheck() == JNI_TRUE) {
        return std::nullopt;
    }
    const jsize size = env->GetArrayLength(bytes);
    std::string characters(static_cast<std::size_t>(size), '\0');
    env->GetByteArrayRegion(bytes, 0, size, reinterpret_cast<jbyte *>(characters.data()));
    return characters;
}

jstring toJava(JNIEnv *env, std::string_view text) {
    const auto size = static_cast<jsize>(text.size());
    const JavaMethod string(env, "java/lang/String", "<init>", "([BLjava/lang/String;)V");
    const jstring charset = string.id == nullptr ? nullptr : env->NewStringUTF("UTF-8");
    const jbyteArray bytes = charset == nullptr ? nullptr : env->NewByteArray(size);
    if (bytes == nullptr) {
        return nullptr;
    }
    env->SetByteArrayRegion(bytes, 0, size, reinterpret_cast<const jbyte *>(text.data()));
    return static_cast<jstring>(env->NewObject(string.cls, string.id, bytes, charset));
}

void throwIllegalArgument(JNIEnv *env, std::string_view message) {
    const jstring text = toJava(env, message);
    if (text == nullptr) {
        return;
    }
    const JavaMethod exception(env, "java/lang/IllegalArgumentException", "<init>", "(Ljava/lang/String;)V");
    if (exception.id == nullptr) {
        return;
    }
    if (const jobject made = env->NewObject(exception.cls, exception.id, text); made != nullptr) {
        env->Throw(static_cast<jthrowable>(made));
    }
}

} // namespace

jstring loadHost(JNIEnv *env, jstring path) {
    if (path == nullptr) {
        throwIllegalArgument(env, "no path of a host description");
        return nullptr;
    }
    try {
        const std::optional<std::string> characters = toUtf8(env, path);
        if (characters && characters->find('\0') != std::string::npos) {
            throwIllegalArgument(env, "a path with a NUL character names no host description");
        } else if (characters) {
            const std::string recordedAt = loadHostFile(*characters);
            return recordedAt.empty() ? nullptr : toJava(env, recordedAt);
        }
    } catch (const std::exception &error) {
        throwIllegalArgument(env, error.what());
    }
    return nullptr;
}

} // namespace replay
