#include "common/jni/StackRoom.h"

#include <cstdint>
#include <limits>

#include "common/jni/ClassProxy.h"
#include "platform/solaris.h"

namespace tarn {

std::size_t stackLeft() {
    stack_t segment{};
    if (solaris::thr_stksegment(&segment) != 0) {
        return std::numeric_limits<std::size_t>::max();
    }
    const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    const auto base = reinterpret_cast<std::uintptr_t>(segment.ss_sp);
    const std::uintptr_t lowest = segment.ss_size < base ? base - segment.ss_size : 0; // a stack may be unlimited
    return here > lowest ? here - lowest : 0;
}

void requireStack(JNIEnv *env, std::size_t buffers) {
    if (stackLeft() < buffers + stackReserve) {
        ClassProxy(env, "java/lang/StackOverflowError").throwNew("too little stack for the native buffers");
        throw JavaExceptionPending{};
    }
}

} // namespace tarn
