#pragma once

#include <algorithm>
#include <cstdint>

#include "common/jni/Jni.h"

namespace tarn {

/// Keeps account of the room for local references in the current frame. The references stay until the native call ends,
/// so a walk that leaves one for everything it finds asks for room as it goes, and ahead for a whole array. Requests grow
/// by doubling, and count what was used before: some virtual machines take a capacity as what is to come, others, when
/// they check it, as the whole of the frame.
class LocalRoom {
public:
    /// So many references have been granted in this frame, and made.
    LocalRoom(JNIEnv *environment, std::int64_t grantedReferences, std::int64_t madeReferences)
        : env(environment), granted(grantedReferences), made(madeReferences) {
    }

    /// Makes sure of room for so many references more, or for as many as can be had at once. Throws NoLocalRoom.
    void reserve(std::int64_t references) {
        if (made + references > granted) {
            const std::int64_t capacity = std::min(std::max(made + references, 2 * granted), largestCapacity);
            if (env->EnsureLocalCapacity(static_cast<jint>(capacity)) < 0) {
                throw NoLocalRoom{};
            }
            granted = made + capacity;
        }
    }

    /// To be called before so many references are made. Throws NoLocalRoom.
    void take(jint references) {
        reserve(references);
        made += references;
    }

private:
    static constexpr std::int64_t largestCapacity = 65536; // of one request to HotSpot, unless it is told otherwise

    JNIEnv *env;
    std::int64_t granted;
    std::int64_t made;
};

} // namespace tarn
