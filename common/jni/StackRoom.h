#pragma once

#include <jni.h>

#include <cstddef>

namespace tarn {

/// What a virtual machine keeps to itself at the lower end of a Java thread's stack, in bytes, and what lies below the
/// buffers when the deepest call is under way: this library's own frames, the virtual machine's, those of Java methods
/// that are called back, the HBA library's. HotSpot guards 16 to 32 KB and enters no method with less than 80 KB above
/// them.
inline constexpr std::size_t stackReserve = std::size_t{144} * 1024;

/// Bytes of the calling thread's stack below the caller's frame; the largest number when the system does not tell.
std::size_t stackLeft();

/// For entries that work in large buffers on the stack, before they do anything. Throws JavaExceptionPending, with a
/// java.lang.StackOverflowError pending, unless `buffers` bytes and the reserve are left.
void requireStack(JNIEnv *env, std::size_t buffers);

} // namespace tarn
