#pragma once

#include <string>
#include <string_view>

#include "common/system/FileDescriptor.h"
#include "native/disks/DiskProvider.h"

// One CIM instance per whole disk, found through its slice 2, which covers the whole disk by convention.

namespace tarn {

/// The disk's physical device path: what a link target holds from the slash that ends its first "/devices" to before
/// the last ':' (or to its end), so "/PATH" of "../../devices/PATH:c,raw". Empty when the target is not in "/devices/".
std::string deviceIdentifier(std::string_view linkTarget);

/// The disk's type: the first word of its label, which reads "TYPE cyl N alt N hd N sec N". A blank when that is longer
/// than 128 characters.
std::string diskType(std::string_view label);

struct SolarisDiskDriveProviderMembers : NamedClass<"com/kelvo/tarn/providers/solaris/SolarisDiskDriveProvider"> {
    using NamedClass::NamedClass;
    StaticField field__class{*this, "_class", "Lcom/kelvo/tarn/TrClass;"};
    InstanceMethod meth_makeDisk1{*this, "makeDisk1",
                                  "(Ljava/lang/String;Ljava/lang/String;Ljava/lang/String;JJJJJ)"
                                  "Lcom/kelvo/tarn/TrInstance;"};
};

/// Object proxy of the provider's Java object.
class SolarisDiskDriveProvider : JavaClass<SolarisDiskDriveProviderMembers> {
public:
    using JavaClass::JavaClass;
    using JavaClass::Static;

    /// The finished instance, or null.
    jobject makeDisk1(jstring name, jstring diskType, jstring deviceId, long long heads, long long sectors,
                      long long physicalCylinders, long long dataCylinders, long long alternateCylinders) const {
        return jni::callObject(proxy->env, obj, proxy->meth_makeDisk1(), name, diskType, deviceId, jlong{heads},
                               jlong{sectors}, jlong{physicalCylinders}, jlong{dataCylinders},
                               jlong{alternateCylinders});
    }
};

/// Serves one native call of the disk-drive provider.
class DiskDriveImpl : DiskProviderImpl {
public:
    DiskDriveImpl(JNIEnv *environment, jobject provider);

    /// Delivers every whole disk of the host.
    void EnumerateDisks(jobject receiver);

    /// The instance of the disk of that name, such as "c0t0d0", or null.
    jobject GetDisk(jstring name);

    /// The instance of the disk with that slice-2 entry in "/dev/rdsk", or null when it cannot be opened. A request
    /// that fails is a warn line, and the instance is made without type and geometry.
    jobject MakeDisk(const char *entryName);

    /// Calls Java's makeDisk1 in a local frame. `diskType` and `deviceId` may be null; the geometry is in the units of
    /// the kernel's dk_geom: heads, sectors per track, cylinders.
    jobject MakeDisk1(const char *name, const char *diskType, jstring deviceId, long long heads, long long sectors,
                      long long physicalCylinders, long long dataCylinders, long long alternateCylinders);

private:
    jstring readDeviceIdentifier(const char *path);

    SolarisDiskDriveProvider::Static providerClass{env};
    HbaClassNames::Static hbaClassNamesClass{env};
    SolarisDiskDriveProvider providerObject;
    HbaClassNames hbaClassNames;
};

} // namespace tarn
