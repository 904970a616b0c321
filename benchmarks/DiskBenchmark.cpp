// The enumerations of disks and slices against flat loops that put the same calls to the platform and to Java, and
// against themselves on a smaller host.

#include "benchmarks/Comparison.h"
#include "benchmarks/Hosts.h"
#include "native/disks/SolarisDiskDriveProvider.h"
#include "native/disks/SolarisDiskPartitionProvider.h"
#include "platform/solaris.h"
#include "tests/machine/Jvm.h"

extern "C" {
void Java_com_kelvo_tarn_providers_solaris_SolarisDiskDriveProvider_enumerateDisks(JNIEnv *, jobject, jobject);
void Java_com_kelvo_tarn_providers_solaris_SolarisDiskPartitionProvider_enumeratePartitions(JNIEnv *, jobject, jobject);
}

namespace bench {
namespace {

constexpr int manyDisks = 2000;
constexpr int fewDisks = 100;
constexpr int slicesPerDisk = 8;

/// A provider of the agent, its method that makes an instance, and a receiver that keeps what it is given.
struct Provider {
    Provider(JNIEnv *env, const char *className, const char *makerName, const char *makerSignature) {
        env->PushLocalFrame(16);
        const jclass cls = env->FindClass(className);
        object = env->NewGlobalRef(env->NewObject(cls, env->GetMethodID(cls, "<init>", "()V")));
        maker = env->GetMethodID(cls, makerName, makerSignature);
        queue = env->NewGlobalRef(jvm::newQueue(env, manyDisks * slicesPerDisk));
        clear = env->GetMethodID(env->GetObjectClass(queue), "clear", "()V");
        receiver = env->NewGlobalRef(jvm::instanceReceiver(env, queue, "add"));
        test = env->GetMethodID(env->FindClass("com/kelvo/tarn/InstanceReceiver"), "test",
                                "(Lcom/kelvo/tarn/TrInstance;)V");
        env->PopLocalFrame(nullptr);
    }

    /// Forgets what was received before.
    void begin(JNIEnv *env) const {
        env->CallVoidMethod(queue, clear);
        env->ExceptionCheck();
    }

    /// The JNI calls for one instance, its texts excepted.
    template <class... Values>
    void deliver(JNIEnv *env, jint frame, const char *firstText, const char *secondText, Values... values) const {
        env->PushLocalFrame(frame);
        const jstring first = env->NewStringUTF(firstText);
        const jstring second = env->NewStringUTF(secondText);
        const jobject made = env->CallObjectMethod(object, maker, first, second, values...);
        env->ExceptionCheck();
        const jobject instance = env->PopLocalFrame(made);
        env->CallVoidMethod(receiver, test, instance);
        env->ExceptionCheck();
        env->DeleteLocalRef(instance);
    }

    jobject object;
    jobject queue;
    jobject receiver;
    jmethodID maker;
    jmethodID clear;
    jmethodID test;
};

const Provider &drives(JNIEnv *env) {
    static const Provider provider(env, "com/kelvo/tarn/providers/solaris/SolarisDiskDriveProvider", "makeDisk1",
                                   "(Ljava/lang/String;Ljava/lang/String;Ljava/lang/String;JJJJJ)"
                                   "Lcom/kelvo/tarn/TrInstance;");
    return provider;
}

const Provider &partitions(JNIEnv *env) {
    static const Provider provider(env, "com/kelvo/tarn/providers/solaris/SolarisDiskPartitionProvider",
                                   "makePartition1",
                                   "(Ljava/lang/String;Ljava/lang/String;IISSZ)Lcom/kelvo/tarn/TrInstance;");
    return provider;
}

jobject enumerateDisks(JNIEnv *env) {
    drives(env).begin(env);
    Java_com_kelvo_tarn_providers_solaris_SolarisDiskDriveProvider_enumerateDisks(env, drives(env).object,
                                                                                  drives(env).receiver);
    return drives(env).queue;
}

jobject enumeratePartitions(JNIEnv *env) {
    partitions(env).begin(env);
    Java_com_kelvo_tarn_providers_solaris_SolarisDiskPartitionProvider_enumeratePartitions(env, partitions(env).object,
                                                                                           partitions(env).receiver);
    return partitions(env).queue;
}

/// The texts of one instance, made before anything is measured.
struct Device {
    std::string path;
    std::string name;     // of the disk; of a slice, the entry's
    std::string diskName; // of a slice
    std::string identifier;
};

std::vector<Device> devicesWith(const char *ending) {
    std::vector<Device> devices;
    tarn::Directory directory(tarn::s_dev_rdsk);
    while (const char *const entry = directory.next()) {
        std::string name = entry;
        if (name.size() > 2 && name.ends_with(ending)) {
            const std::string path = tarn::devicePath(name);
            char target[1024] = {};
            const bool isLink = solaris::readlink(path.c_str(), target, sizeof target - 1) > 0;
            devices.push_back(
                {path, name, tarn::partitionDiskName(name), isLink ? tarn::deviceIdentifier(target) : ""});
        }
    }
    return devices;
}

void readDirectory() {
    DIR *const directory = solaris::opendir(tarn::s_dev_rdsk);
    while (solaris::readdir(directory) != nullptr) {
    }
    solaris::closedir(directory);
}

jobject disksFloor(JNIEnv *env) {
    static const std::vector<Device> devices = devicesWith("s2");
    const Provider &provider = drives(env);
    provider.begin(env);
    readDirectory();
    for (const Device &device : devices) {
        const int descriptor = solaris::open(device.path.c_str(), O_RDWR | O_NDELAY);
        dk_geom geometry{};
        solaris::ioctl(descriptor, DKIOCGGEOM, &geometry);
        solaris::ioctl(descriptor, DKIOCGGEOM, &geometry);
        vtoc table{};
        solaris::ioctl(descriptor, DKIOCGVTOC, &table);
        char target[1024];
        if (solaris::readlink(device.path.c_str(), target, sizeof target) < 0) {
            break;
        }
        const jstring identifier = env->NewStringUTF(device.identifier.c_str());
        provider.deliver(env, 70, device.diskName.c_str(), "SUN72G", identifier, jlong{geometry.dkg_nhead},
                         jlong{geometry.dkg_nsect}, jlong{geometry.dkg_pcyl}, jlong{geometry.dkg_ncyl},
                         jlong{geometry.dkg_acyl});
        env->DeleteLocalRef(identifier);
        solaris::close(descriptor);
    }
    return provider.queue;
}

jobject partitionsFloor(JNIEnv *env) {
    static const std::vector<Device> devices = devicesWith("");
    const Provider &provider = partitions(env);
    provider.begin(env);
    readDirectory();
    for (const Device &device : devices) {
        const int descriptor = solaris::open(device.path.c_str(), O_RDWR | O_NDELAY);
        struct stat status = {};
        solaris::fstat(descriptor, &status);
        dk_cinfo controller{};
        solaris::ioctl(descriptor, DKIOCINFO, &controller);
        dk_geom geometry{};
        solaris::ioctl(descriptor, DKIOCGGEOM, &geometry);
        vtoc table{};
        solaris::ioctl(descriptor, DKIOCGVTOC, &table);
        struct ustat fileSystem = {};
        const bool mounted = solaris::ustat(status.st_rdev, &fileSystem) == 0;
        const partition &entry = table.v_part[controller.dki_partition];
        provider.deliver(env, 50, device.name.c_str(), device.diskName.c_str(), jint{controller.dki_partition},
                         static_cast<jint>(entry.p_size), static_cast<jshort>(entry.p_tag),
                         static_cast<jshort>(entry.p_flag), static_cast<jboolean>(mounted));
        solaris::close(descriptor);
    }
    return provider.queue;
}

/// The instances in a queue, in order.
std::vector<std::string> instanceTexts(JNIEnv *env, jobject queue) {
    const auto array = static_cast<jobjectArray>(jvm::call(env, queue, "toArray", "()[Ljava/lang/Object;"));
    std::vector<std::string> texts;
    for (jsize i = 0; i < env->GetArrayLength(array); ++i) {
        const jobject instance = env->GetObjectArrayElement(array, i);
        texts.push_back(jvm::instanceText(env, instance));
        env->DeleteLocalRef(instance);
    }
    return texts;
}

std::vector<Comparison> comparisons() {
    const std::string many = hostOf({.disks = manyDisks});
    const std::string few = hostOf({.disks = fewDisks});
    const double growth = double{manyDisks} / fewDisks;
    return {
        {"enumerateDisks, 2,000 disks", 1.15, {many, enumerateDisks}, {many, disksFloor}, 1.0, 40, instanceTexts},
        {"enumeratePartitions, 16,000 slices",
         1.15,
         {many, enumeratePartitions},
         {many, partitionsFloor},
         1.0,
         40,
         instanceTexts},
        {"enumerateDisks, per disk: 2,000 disks to 100",
         1.25,
         {many, enumerateDisks},
         {few, enumerateDisks},
         growth,
         20,
         nullptr},
        {"enumeratePartitions, per slice: 16,000 slices to 800",
         1.25,
         {many, enumeratePartitions},
         {few, enumeratePartitions},
         growth,
         20,
         nullptr},
    };
}

const Registration registration(comparisons);

} // namespace
} // namespace bench
