#pragma once

#include "common/jni/Jni.h"

namespace tarn {

/// A JNI local frame, popped at scope exit. `keep` pops it early and carries one reference out.
class LocalFrame {
public:
    /// What a frame that the virtual machine refuses is to whoever asked for it.
    enum class Refusal {
        isForgiven, ///< no exception is pending; `isOpen` tells
        isFailure,  ///< JavaExceptionPending
    };

    /// Opens a frame with room for `capacity` references.
    LocalFrame(JNIEnv *environment, jint capacity, Refusal refusal = Refusal::isForgiven)
        : env(environment), open(env->PushLocalFrame(capacity) >= 0) {
        if (!open && refusal == Refusal::isFailure) {
            throw JavaExceptionPending{};
        }
        if (!open) {
            env->ExceptionClear();
        }
    }
    ~LocalFrame() {
        if (open) {
            env->PopLocalFrame(nullptr);
        }
    }
    LocalFrame(const LocalFrame &) = delete;
    LocalFrame &operator=(const LocalFrame &) = delete;

    bool isOpen() const {
        return open;
    }

    jobject keep(jobject survivor) {
        open = false;
        return env->PopLocalFrame(survivor);
    }

private:
    JNIEnv *env;
    bool open;
};

/// Passes on what an instance cannot be made without.
template <class Reference>
Reference needed(Reference reference) {
    if (reference == nullptr) {
        throw NoInstance{};
    }
    return reference;
}

/// Runs an instance maker inside a local frame of its own; of all references it makes, only the instance survives.
/// Null when the frame was refused or the maker ended with NoInstance; a pending Java exception passes through.
template <class Maker>
jobject makeInLocalFrame(JNIEnv *env, jint capacity, Maker maker) {
    LocalFrame frame(env, capacity);
    if (!frame.isOpen()) {
        return nullptr;
    }
    try {
        return frame.keep(maker());
    } catch (const NoInstance &) {
        return nullptr;
    }
}

} // namespace tarn
