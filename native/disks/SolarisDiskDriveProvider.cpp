#include "native/disks/SolarisDiskDriveProvider.h"

#include <array>

#include "common/system/FieldText.h"
#include "native/JavaError.h"
#include "platform/solaris.h"

namespace tarn {
namespace {

constexpr std::string_view deviceTree = "/devices/";
constexpr std::size_t diskTypeLimit = 128;  // characters
constexpr std::size_t linkTextLimit = 1023; // characters
constexpr jint driveFrameCapacity = 70;

} // namespace

std::string deviceIdentifier(std::string_view linkTarget) {
    const std::size_t tree = linkTarget.find(deviceTree);
    if (tree == std::string_view::npos) {
        return {};
    }
    const std::string_view physicalPath = linkTarget.substr(tree + deviceTree.size() - 1);
    return std::string(physicalPath.substr(0, physicalPath.rfind(':')));
}

std::string diskType(std::string_view label) {
    const std::string_view type = label.substr(0, label.find(' '));
    return type.size() > diskTypeLimit ? " " : std::string(type);
}

DiskDriveImpl::DiskDriveImpl(JNIEnv *environment, jobject provider)
    : DiskProviderImpl(environment), providerObject(providerClass, provider),
      hbaClassNames(hbaClassNamesClass, findHbaClassNames(providerClass.field__class, hbaClassNamesClass)) {
}

void DiskDriveImpl::EnumerateDisks(jobject receiver) {
    enumerateInstances(receiver, isWholeDisk, [this](const char *entryName) { return MakeDisk(entryName); });
}

jobject DiskDriveImpl::GetDisk(jstring name) {
    return MakeDisk(copyCharacters(env, name).append(wholeDiskSlice).c_str());
}

jobject DiskDriveImpl::MakeDisk(const char *entryName) {
    if (!fitsNameField(entryName)) {
        return nullptr;
    }
    std::string name(entryName);
    name.resize(name.size() - wholeDiskSlice.size());
    const std::string path = devicePath(entryName);

    const FileDescriptor device = OpenDeviceForIoctl(path.c_str());
    if (!device.isOpen()) {
        return nullptr;
    }
    bool isValid = true;
    const auto request = [&](int code, void *record, const char *complaint) {
        if (solaris::ioctl(device.get(), code, record) < 0) {
            LogMessage(env, complaint, "warn");
            isValid = false;
        }
    };
    dk_geom geometry{};
    request(DKIOCGGEOM, &geometry, "SolarisDiskDrive DKIOCGGEOM");
    vtoc table{};
    request(DKIOCGVTOC, &table, "SolarisDiskDrive DKIOCGVTOC");

    const jni::LocalRef<jstring> deviceId(env, readDeviceIdentifier(path.c_str()));
    if (!isValid) {
        return MakeDisk1(name.c_str(), nullptr, deviceId.get(), 0, 0, 0, 0, 0);
    }
    return MakeDisk1(name.c_str(), diskType(fieldText(table.v_asciilabel)).c_str(), deviceId.get(), geometry.dkg_nhead,
                     geometry.dkg_nsect, geometry.dkg_pcyl, geometry.dkg_ncyl, geometry.dkg_acyl);
}

/// Null when the entry is no link that can be read, or leads elsewhere. A target that does not fit is cut.
jstring DiskDriveImpl::readDeviceIdentifier(const char *path) {
    std::array<char, linkTextLimit> target;
    const ssize_t length = solaris::readlink(path, target.data(), target.size());
    if (length < 0) {
        return nullptr;
    }
    const std::string identifier = deviceIdentifier({target.data(), static_cast<std::size_t>(length)});
    return newStringOrNull(env, identifier.empty() ? nullptr : identifier.c_str());
}

jobject DiskDriveImpl::MakeDisk1(const char *name, const char *diskType, jstring deviceId, long long heads,
                                 long long sectors, long long physicalCylinders, long long dataCylinders,
                                 long long alternateCylinders) {
    LocalFrame frame(env, driveFrameCapacity, LocalFrame::Refusal::isFailure);
    const jstring nameString = newStringOrNull(env, name);
    const jstring typeString = newStringOrNull(env, diskType);
    return frame.keep(providerObject.makeDisk1(nameString, typeString, deviceId, heads, sectors, physicalCylinders,
                                               dataCylinders, alternateCylinders));
}

} // namespace tarn

TARN_EXPORTED_ENTRY void JNICALL Java_com_kelvo_tarn_providers_solaris_SolarisDiskDriveProvider_enumerateDisks(
    JNIEnv *env, jobject provider, jobject receiver) {
    using namespace tarn;
    runProviderEntry<DiskDriveImpl>(env, enumerateCapacity, provider, [&](DiskDriveImpl &impl) {
        try {
            impl.EnumerateDisks(receiver);
        } catch (const JavaExceptionPending &) {
            // The caller is not to be stopped by one disk or its own receiver: see below.
        }
        if (env->ExceptionCheck() == JNI_TRUE) {
            env->ExceptionDescribe(); // which clears it
        }
    });
}

TARN_EXPORTED_ENTRY jobject JNICALL
Java_com_kelvo_tarn_providers_solaris_SolarisDiskDriveProvider_getDisk(JNIEnv *env, jobject provider, jstring name) {
    using namespace tarn;
    return runProviderEntry<DiskDriveImpl>(env, getCapacity, provider,
                                           [&](DiskDriveImpl &impl) { return impl.GetDisk(name); });
}
