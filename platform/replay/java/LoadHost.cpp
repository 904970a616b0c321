#include "platform/replay/java/LoadHost.h"

#include <algorithm>
#include <array>
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

jbyteArray toBytes(JNIEnv *env, std::string_view text) {
    const auto size = static_cast<jsize>(text.size());
    const jbyteArray bytes = env->NewByteArray(size);
    if (bytes != nullptr) {
        env->SetByteArrayRegion(bytes, 0, size, reinterpret_cast<const jbyte *>(text.data()));
    }
    return bytes;
}

jstring toJava(JNIEnv *env, std::string_view text) {
    const JavaMethod string(env, "java/lang/String", "<init>", "([BLjava/lang/String;)V");
    const jstring charset = string.id == nullptr ? nullptr : env->NewStringUTF("UTF-8");
    const jbyteArray bytes = charset == nullptr ? nullptr : toBytes(env, text);
    return bytes == nullptr ? nullptr : static_cast<jstring>(env->NewObject(string.cls, string.id, bytes, charset));
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

/// What `use` makes of a description's path, or of the name of its text.
template <class Use>
auto withPath(JNIEnv *env, jstring path, const Use &use) -> decltype(use(std::string())) {
    if (path == nullptr) {
        throwIllegalArgument(env, "no path of a host description");
        return nullptr;
    }
    try {
        const std::optional<std::string> characters = toUtf8(env, path);
        if (characters && characters->find('\0') != std::string::npos) {
            throwIllegalArgument(env, "a path with a NUL character names no host description");
        } else if (characters) {
            return use(*characters);
        }
    } catch (const std::exception &error) {
        throwIllegalArgument(env, error.what());
    }
    return nullptr;
}

/// When the host was recorded.
jstring told(JNIEnv *env, const std::string &recordedAt) {
    return recordedAt.empty() ? nullptr : toJava(env, recordedAt);
}

} // namespace

jstring loadHost(JNIEnv *env, jstring path) {
    return withPath(env, path, [&](const std::string &file) { return told(env, loadHostFile(file)); });
}

jstring loadHost(JNIEnv *env, jbyteArray text, jstring name) {
    if (text == nullptr) {
        throwIllegalArgument(env, "no text of a host description");
        return nullptr;
    }
    return withPath(env, name, [&](const std::string &called) {
        const jsize size = env->GetArrayLength(text);
        jsize taken = 0;
        std::array<char, 65536> part;
        const auto nextPart = [&]() -> std::string_view {
            const jsize count = std::min(size - taken, static_cast<jsize>(part.size()));
            env->GetByteArrayRegion(text, taken, count, reinterpret_cast<jbyte *>(part.data()));
            taken += count;
            return {part.data(), static_cast<std::size_t>(count)};
        };
        return told(env, loadHostText(nextPart, called));
    });
}

jbyteArray readHost(JNIEnv *env, jstring path) {
    return withPath(env, path, [&](const std::string &file) { return toBytes(env, readHostFileText(file)); });
}

} // namespace replay
