#pragma once

#include <new>
#include <optional>
#include <string>

#include "common/jni/Jni.h"
#include "common/system/Utf8.h"

namespace tarn {

/// Scoped holder of a Java string argument's characters.
///
///     const JniString name(env, javaName);
///     use(name.get());       // fetched on first use, the same pointer from then on
///                            // given back at scope exit, if they were fetched
class JniString {
public:
    JniString(JNIEnv *environment, jstring string) : env(environment), str(string), chars(nullptr) {
    }
    ~JniString() {
        if (chars != nullptr) {
            env->ReleaseStringUTFChars(str, chars);
        }
    }
    JniString(const JniString &) = delete;
    JniString &operator=(const JniString &) = delete;

    /// Modified UTF-8, NUL-terminated, never null; a null Java string counts as an empty one. Throws
    /// JavaExceptionPending, or std::bad_alloc, when the virtual machine has no memory for the characters.
    const char *get() const {
        if (str == nullptr) {
            return "";
        }
        if (chars == nullptr) {
            chars = env->GetStringUTFChars(str, nullptr);
            if (chars == nullptr) {
                jni::check(env);
                throw std::bad_alloc(); // not every virtual machine leaves an exception for it
            }
        }
        return chars;
    }

    /// The same in plain UTF-8, as the system writes names.
    const char *utf8() const {
        if (!plain) {
            plain = fromModifiedUtf8(get());
        }
        return plain ? plain->c_str() : get();
    }

private:
    JNIEnv *env;
    jstring str;
    mutable const char *chars;
    mutable std::optional<std::string> plain; // when it differs
};

} // namespace tarn
