#pragma once

#include <jni.h>

#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace tarn {

/// A failure of the host-information modules. Thrown and caught by value; its message is what reaches Java.
class NativeError {
public:
    explicit NativeError(std::string text) : message(std::make_shared<const std::string>(std::move(text))) {
    }
    std::string getMessage() const {
        return *message;
    }

private:
    std::shared_ptr<const std::string> message; // which copies share, so that none can lack the memory for it
};

// A copy that throws while it is caught would end the process.
static_assert(std::is_nothrow_copy_constructible_v<NativeError>);

/// The mount table at `path` cannot be opened.
class MountTableError : public NativeError {
public:
    explicit MountTableError(std::string path) : NativeError("Unable to open mount table file: " + std::move(path)) {
    }
};

/// No UFS or NFS file system is mounted at `mountPoint`.
class LogicalDiskNotFound : public NativeError {
public:
    explicit LogicalDiskNotFound(std::string mountPoint)
        : NativeError("Logical Disk Not Found: " + std::move(mountPoint)) {
    }
};

/// The kernel keeps no I/O statistics for the disk `name`.
class DiskIONameNotFound : public NativeError {
public:
    explicit DiskIONameNotFound(std::string name)
        : NativeError("Unable to find Disk IO Information name: " + std::move(name)) {
    }
};

/// Leaves a java.lang.RuntimeException with this message pending; the caller returns to Java at once. When Java cannot
/// make it, the exception that says so is pending instead.
void ThrowJavaError(JNIEnv *env, const std::string &message);
void ThrowJavaError(JNIEnv *env, const char *message); // for when there may be no memory for a string

/// Hands one line to the agent's log. `level` ("info", "warn") names a static method of SolarisNativeMethod. A line
/// that cannot be delivered is dropped: no exception is pending afterwards, except for an error of the virtual machine
/// itself, which is JavaExceptionPending.
void LogMessage(JNIEnv *env, const std::string &message, const std::string &level);
void LogMessage(JNIEnv *env, const char *message, const char *level); // likewise

} // namespace tarn
