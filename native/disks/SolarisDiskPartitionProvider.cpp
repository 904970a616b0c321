#include "native/disks/SolarisDiskPartitionProvider.h"

#include "common/system/FileDescriptor.h"
#include "platform/solaris.h"

namespace tarn {
namespace {

constexpr jint partitionFrameCapacity = 50;

} // namespace

std::string partitionDiskName(std::string_view entryName) {
    std::string_view name = entryName.substr(0, entryName.find('s'));
    if (name.size() == entryName.size() && name.starts_with(powerPathPrefix)) {
        name.remove_suffix(1);
    }
    return std::string(name);
}

std::optional<PartitionData> readPartition(int descriptor) {
    struct stat status = {};
    dk_cinfo controller{};
    dk_geom geometry{}; // only that the device answers the request matters
    vtoc table{};
    if (solaris::fstat(descriptor, &status) < 0 || solaris::ioctl(descriptor, DKIOCINFO, &controller) < 0 ||
        solaris::ioctl(descriptor, DKIOCGGEOM, &geometry) < 0 || solaris::ioctl(descriptor, DKIOCGVTOC, &table) < 0 ||
        controller.dki_partition >= V_NUMPAR) {
        return std::nullopt;
    }
    const partition &entry = table.v_part[controller.dki_partition];
    struct ustat fileSystem = {};
    const bool mounted = solaris::ustat(status.st_rdev, &fileSystem) >= 0;
    return PartitionData{controller.dki_partition, entry.p_size, entry.p_tag, entry.p_flag, mounted};
}

DiskPartitionImpl::DiskPartitionImpl(JNIEnv *environment, jobject provider)
    : DiskProviderImpl(environment), providerObject(providerClass, provider),
      hbaClassNames(hbaClassNamesClass, findHbaClassNames(providerClass.field__class, hbaClassNamesClass)) {
}

void DiskPartitionImpl::EnumeratePartitions(jobject receiver) {
    enumerateInstances(receiver, namesDevice, [this](const char *entryName) { return MakePartition(entryName); });
}

jobject DiskPartitionImpl::GetPartition(jstring name) {
    return MakePartition(copyCharacters(env, name).c_str());
}

jobject DiskPartitionImpl::MakePartition(const char *entryName) {
    if (!fitsNameField(entryName)) {
        return nullptr;
    }
    const std::string diskName = partitionDiskName(entryName);
    const FileDescriptor device(solaris::open(devicePath(entryName).c_str(), openForRequests));
    if (!device.isOpen()) {
        return nullptr;
    }
    const std::optional<PartitionData> data = readPartition(device.get());
    if (!data) {
        return nullptr;
    }
    return MakePartition1(entryName, diskName.c_str(), data->partition, data->size, data->tag, data->flag,
                          data->mounted);
}

jobject DiskPartitionImpl::MakePartition1(const char *name, const char *diskName, int partition, long size, int tag,
                                          int flag, bool mounted) {
    LocalFrame frame(env, partitionFrameCapacity, LocalFrame::Refusal::isFailure);
    const jstring nameString = newStringOrNull(env, name);
    const jstring diskNameString = newStringOrNull(env, diskName);
    return frame.keep(providerObject.makePartition1(nameString, diskNameString, partition, static_cast<jint>(size),
                                                    static_cast<jshort>(tag), static_cast<jshort>(flag),
                                                    mounted ? JNI_TRUE : JNI_FALSE));
}

} // namespace tarn

TARN_EXPORTED_ENTRY void JNICALL Java_com_kelvo_tarn_providers_solaris_SolarisDiskPartitionProvider_enumeratePartitions(
    JNIEnv *env, jobject provider, jobject receiver) {
    using namespace tarn;
    runProviderEntry<DiskPartitionImpl>(env, enumerateCapacity, provider,
                                        [&](DiskPartitionImpl &impl) { impl.EnumeratePartitions(receiver); });
}

TARN_EXPORTED_ENTRY jobject JNICALL Java_com_kelvo_tarn_providers_solaris_SolarisDiskPartitionProvider_getPartition(
    JNIEnv *env, jobject provider, jstring name) {
    using namespace tarn;
    return runProviderEntry<DiskPartitionImpl>(env, getCapacity, provider,
                                               [&](DiskPartitionImpl &impl) { return impl.GetPartition(name); });
}
