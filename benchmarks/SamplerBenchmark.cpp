// A sampler's reading against a loop that reads the same statistics and makes the same Java objects of values that were
// gathered beforehand.

#include <tuple>

#include "benchmarks/Comparison.h"
#include "benchmarks/Hosts.h"
#include "inventory/Activity.h"
#include "platform/solaris.h"
#include "tests/machine/Jvm.h"

#define SAMPLER(method) Java_com_kelvo_tarn_inventory_Sampler_##method

extern "C" {
jlong SAMPLER(open)(JNIEnv *, jclass);
jobject SAMPLER(read)(JNIEnv *, jclass, jlong);
}

namespace bench {
namespace {

constexpr int manyDisks = 2000;

/// The driver's record of one disk, in its own order.
std::string diskErrors(int index) {
    const std::string number = std::to_string(index);
    return R"({"ks_module": "sderr", "ks_instance": )" + number + R"(, "ks_name": "sd)" + number +
           R"(,err", "ks_class": "device_error", "ks_type": "KSTAT_TYPE_NAMED",
              "data": {"Soft Errors": 1, "Hard Errors": 2, "Transport Errors": 3, "Vendor": "SEAGATE",
                       "Product": "ST373207LSUN72G", "Revision": "045A", "Serial No": "0545B1A0C2",
                       "Size": 73400057856, "Media Error": 4, "Device Not Ready": 5, "No Device": 6,
                       "Recoverable": 7, "Illegal Request": 8, "Predictive Failure Analysis": 9}})";
}

std::string host() {
    return R"({"disks": )" + listOf(manyDisks, [](int i) { return disk(i); }) + R"(, "kstat": )" +
           listOf(2 * manyDisks, [](int i) { return i < manyDisks ? diskCounters(i) : diskErrors(i - manyDisks); }) +
           R"(, "hba": {"adapters": []}})";
}

/// What is read is the latest, as often as it is: the sampler is open all the while.
jobject readSampler(JNIEnv *env) {
    static const jlong sampler = SAMPLER(open)(env, nullptr);
    return SAMPLER(read)(env, nullptr, sampler);
}

/// The chain and, of each disk, its two records.
struct Records {
    kstat_ctl_t *const chain = kstat_open();
    std::vector<std::pair<kstat_t *, kstat_t *>> ofDisks;

    Records() {
        std::vector<kstat_t *> counters, errors;
        for (kstat_t *record = chain->kc_chain; record != nullptr; record = record->ks_next) {
            (record->ks_type == KSTAT_TYPE_IO ? counters : errors).push_back(record);
        }
        for (std::size_t i = 0; i < counters.size(); ++i) {
            ofDisks.emplace_back(counters[i], errors[i]);
        }
    }
};

jobject readFloor(JNIEnv *env) {
    static const std::vector<tarn::DiskActivity> disks = tarn::ActivitySampler().readDisks();
    static const Records records;
    kstat_chain_update(records.chain);
    for (const auto &[counters, errors] : records.ofDisks) {
        kstat_io_t io{};
        kstat_read(records.chain, counters, &io);
        kstat_read(records.chain, errors, nullptr);
    }
    HBA_LoadLibrary();
    HBA_GetNumberOfAdapters();
    HBA_FreeLibrary();

    const auto made = [env](const char *name, const char *signature) {
        const jclass cls = env->FindClass(name);
        return std::pair(cls, env->GetMethodID(cls, "<init>", signature));
    };
    const auto [activity, newActivity] =
        made("com/kelvo/tarn/inventory/DiskActivity", "(Ljava/lang/String;Ljava/lang/String;JJJJJJJJJJJJJJ"
                                                      "Lcom/kelvo/tarn/inventory/DiskActivity$Errors;)V");
    const auto [errors, newErrors] = made("com/kelvo/tarn/inventory/DiskActivity$Errors", "(JJJJJJJJJ)V");
    const auto [sample, newSample] =
        made("com/kelvo/tarn/inventory/Sample",
             "([Lcom/kelvo/tarn/inventory/DiskActivity;[Lcom/kelvo/tarn/inventory/PortTraffic;)V");
    const jobjectArray all = env->NewObjectArray(static_cast<jsize>(disks.size()), activity, nullptr);
    jsize index = 0;
    for (const tarn::DiskActivity &disk : disks) {
        const kstat_io_t &io = disk.counters;
        const jobject counts =
            std::apply([&](auto... count) { return env->NewObject(errors, newErrors, jlong{count}...); }, *disk.errors);
        env->SetObjectArrayElement(all, index++,
                                   env->NewObject(activity, newActivity, env->NewStringUTF(disk.instance.c_str()),
                                                  env->NewStringUTF(disk.disk.c_str()), jlong{disk.crtime},
                                                  jlong{disk.snaptime}, jlong{io.reads}, jlong{io.writes},
                                                  static_cast<jlong>(io.nread), static_cast<jlong>(io.nwritten),
                                                  jlong{io.wtime}, jlong{io.wlentime}, jlong{io.wlastupdate},
                                                  jlong{io.rtime}, jlong{io.rlentime}, jlong{io.rlastupdate},
                                                  jlong{io.wcnt}, jlong{io.rcnt}, counts));
    }
    const jobjectArray none = env->NewObjectArray(0, env->FindClass("com/kelvo/tarn/inventory/PortTraffic"), nullptr);
    return env->NewObject(sample, newSample, all, none);
}

/// All of a sample, as JSON.
std::vector<std::string> sampleText(JNIEnv *env, jobject sample) {
    const jclass cls = env->FindClass("com/google/gson/Gson");
    const jobject gson = env->NewObject(cls, env->GetMethodID(cls, "<init>", "()V"));
    const jmethodID toJson = env->GetMethodID(cls, "toJson", "(Ljava/lang/Object;)Ljava/lang/String;");
    return {jvm::toText(env, env->CallObjectMethod(gson, toJson, sample))};
}

std::vector<Comparison> comparisons() {
    const std::string described = host();
    return {{"Sampler.read, 2,000 disks", 1.25, {described, readSampler}, {described, readFloor}, 1.0, 60, sampleText}};
}

const Registration registration(comparisons);

} // namespace
} // namespace bench
