#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "native/disks/DiskProvider.h"

// One CIM instance per raw-disk entry: a slice of a disk, or a slice of a PowerPath pseudo device.

namespace tarn {

/// The name of the disk that an entry belongs to: what stands before its first 's'. A name without one is its own disk,
/// and one that begins with "emcpower" loses the slice letter at its end.
std::string partitionDiskName(std::string_view entryName);

/// A slice as its driver and its disk's volume table of contents describe it.
struct PartitionData {
    int partition; ///< DKIOCINFO dki_partition, 0 to V_NUMPAR - 1
    long size;     ///< sectors; p_size of the table's entry
    int tag;       ///< p_tag, 16 bits unsigned
    int flag;      ///< p_flag, 16 bits unsigned
    bool mounted;  ///< ustat finds a mounted file system on the device
};

/// Asks an open device for its slice. Nothing when a request fails or the table has no such partition.
std::optional<PartitionData> readPartition(int descriptor);

struct SolarisDiskPartitionProviderMembers
    : NamedClass<"com/kelvo/tarn/providers/solaris/SolarisDiskPartitionProvider"> {
    using NamedClass::NamedClass;
    StaticField field__class{*this, "_class", "Lcom/kelvo/tarn/TrClass;"};
    InstanceMethod meth_makePartition1{*this, "makePartition1",
                                       "(Ljava/lang/String;Ljava/lang/String;IISSZ)Lcom/kelvo/tarn/TrInstance;"};
};

/// Object proxy of the provider's Java object.
class SolarisDiskPartitionProvider : JavaClass<SolarisDiskPartitionProviderMembers> {
public:
    using JavaClass::JavaClass;
    using JavaClass::Static;

    /// The finished instance, or null.
    jobject makePartition1(jstring name, jstring diskName, jint partition, jint size, jshort tag, jshort flag,
                           jboolean mounted) const {
        return jni::callObject(proxy->env, obj, proxy->meth_makePartition1(), name, diskName, partition, size, tag,
                               flag, mounted);
    }
};

/// Serves one native call of the disk-partition provider.
class DiskPartitionImpl : DiskProviderImpl {
public:
    DiskPartitionImpl(JNIEnv *environment, jobject provider);

    /// Delivers every slice of the host.
    void EnumeratePartitions(jobject receiver);

    /// The instance of the slice of that name, such as "c0t0d0s0", or null.
    jobject GetPartition(jstring name);

    /// The instance of that entry of "/dev/rdsk", or null when it cannot be opened or a request to it fails.
    jobject MakePartition(const char *entryName);

    /// Calls Java's makePartition1 in a local frame. `diskName` may be null. Java has room for the low 32 bits of the
    /// size, in sectors, and for the low 16 of tag and flags.
    jobject MakePartition1(const char *name, const char *diskName, int partition, long size, int tag, int flag,
                           bool mounted);

private:
    NamedClass<"javax/wbem/cim/UnsignedInt8"> unsignedInt8{env};
    NamedClass<"java/lang/Boolean"> booleanClass{env};
    SolarisDiskPartitionProvider::Static providerClass{env};
    HbaClassNames::Static hbaClassNamesClass{env};
    SolarisDiskPartitionProvider providerObject;
    HbaClassNames hbaClassNames;
};

} // namespace tarn
