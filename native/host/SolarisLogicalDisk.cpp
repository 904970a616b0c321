#include "native/host/SolarisLogicalDisk.h"

#include "common/jni/JniString.h"
#include "common/system/MountTable.h"
#include "native/host/HostInformation.h"
#include "platform/solaris.h"

namespace tarn {
namespace {

constexpr const char *logicalDiskClassName =
    "com/kelvo/tarn/providers/solaris/SolarisLogicalDiskProvider$SolarisLogicalDisk";

void readSizes(const char *mountPoint, LogicalDisk &disk) {
    struct statvfs64 status {};
    if (solaris::statvfs64(mountPoint, &status) != 0) {
        return;
    }
    const std::uint64_t fragmentSize = status.f_frsize;
    disk.totalBytes = status.f_blocks * fragmentSize;
    disk.availableBytes = status.f_bavail * fragmentSize;
    disk.freeBytes = status.f_bfree * fragmentSize;
    disk.blockSize = status.f_bsize;
}

MadeClass GetClassAndMethod(JNIEnv *env) {
    return {env, logicalDiskClassName, "(Ljava/lang/String;Ljava/lang/String;Ljava/lang/String;JJJJ)V",
            Binding::atOnce};
}

jobject makeDisk(const char *name, const MadeClass &result, bool withSizes) {
    const LogicalDisk disk = GetLogicalDisk(name, withSizes);
    const jni::LocalString device(result.env, disk.device);
    const jni::LocalString mountPoint(result.env, disk.mountPoint);
    const jni::LocalString fileSystemType(result.env, disk.fileSystemType);
    return result.make(device.get(), mountPoint.get(), fileSystemType.get(), static_cast<jlong>(disk.totalBytes),
                       static_cast<jlong>(disk.availableBytes), static_cast<jlong>(disk.freeBytes),
                       static_cast<jlong>(disk.blockSize));
}

} // namespace

std::vector<std::string> ListLogicalDisks() {
    std::vector<std::string> mountPoints;
    MountTable table;
    if (!table.isOpen()) {
        return mountPoints;
    }
    while (const mnttab *const entry = table.nextLogicalDisk()) {
        mountPoints.emplace_back(entry->mnt_mountp);
    }
    return mountPoints;
}

LogicalDisk GetLogicalDisk(const std::string &name, bool withSizes) {
    MountTable table;
    if (!table.isOpen()) {
        throw MountTableError(mountTablePath);
    }
    while (const mnttab *const entry = table.nextLogicalDisk()) {
        if (name != entry->mnt_mountp) {
            continue;
        }
        LogicalDisk disk;
        disk.device = entry->mnt_special;
        disk.mountPoint = name;
        disk.fileSystemType = entry->mnt_fstype;
        if (withSizes) {
            readSizes(entry->mnt_mountp, disk);
        }
        return disk;
    }
    throw LogicalDiskNotFound(name);
}

} // namespace tarn

TARN_EXPORTED_ENTRY jobject JNICALL
Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_enumerateLogicalDiskNames(JNIEnv *env, jobject) {
    using namespace tarn;
    return runThrowingEntry(env, [&] {
        const MadeClass result = GetClassAndMethod(env);
        JavaVector list(env);
        for (const std::string &mountPoint : ListLogicalDisks()) {
            try {
                list.add(makeDisk(mountPoint.c_str(), result, false));
                // NOLINTNEXTLINE(cert-err09-cpp,cert-err61-cpp): by value, a subclass arrives as its base
            } catch (NativeError error) {
                // Unmounted since it was listed; the others are still there.
                LogMessage(env, error.getMessage(), "warn");
            }
        }
        return list.get();
    });
}

TARN_EXPORTED_ENTRY jobject JNICALL Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_getLogicalDiskByName(
    JNIEnv *env, jobject, jstring mountPoint) {
    using namespace tarn;
    return runThrowingEntry(env, [&] {
        const MadeClass result = GetClassAndMethod(env);
        const JniString name(env, mountPoint);
        return makeDisk(name.utf8(), result, true);
    });
}
