#pragma once

#include "common/Jni.h"
#include "platform/ExportedEntry.h"

namespace tarn {

/// Runs the body of an entry point that raises no Java exception of its own. Returns the body's result, or null when it
/// could not end: either a Java exception is pending then, or the process is out of memory. No native exception passes.
template <class Body>
auto runEntry(Body body) -> decltype(body()) {
    try {
        return body();
    } catch (...) {
        return decltype(body())();
    }
}

} // namespace tarn
