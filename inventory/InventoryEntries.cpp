#include <algorithm>
#include <limits>
#include <memory>

#include "common/jni/ClassProxy.h"
#include "common/jni/EntryPoint.h"
#include "common/jni/JniString.h"
#include "common/system/Hexadecimal.h"
#include "inventory/Activity.h"
#include "inventory/Identities.h"
#include "inventory/InventoryError.h"
#include "inventory/Mounts.h"

// The native methods of com.kelvo.tarn.inventory.

namespace tarn {
namespace {

using Identity = NamedMadeClass<"com/kelvo/tarn/inventory/Identity",
                                "(Ljava/lang/String;Ljava/lang/String;Ljava/lang/String;Ljava/lang/String;"
                                "Ljava/lang/String;Ljava/lang/String;JLjava/lang/String;)V">;
using Mount =
    NamedMadeClass<"com/kelvo/tarn/inventory/Mount", "(Ljava/lang/String;Ljava/lang/String;Ljava/lang/String;ZJJJ)V">;
using Sample = NamedMadeClass<"com/kelvo/tarn/inventory/Sample",
                              "([Lcom/kelvo/tarn/inventory/DiskActivity;[Lcom/kelvo/tarn/inventory/PortTraffic;)V">;
using Activity =
    NamedMadeClass<"com/kelvo/tarn/inventory/DiskActivity", "(Ljava/lang/String;Ljava/lang/String;JJJJJJJJJJJJJJ"
                                                            "Lcom/kelvo/tarn/inventory/DiskActivity$Errors;)V">;
using Errors = NamedMadeClass<"com/kelvo/tarn/inventory/DiskActivity$Errors", "(JJJJJJJJJ)V">;
using Traffic = NamedMadeClass<"com/kelvo/tarn/inventory/PortTraffic", "(IILjava/lang/String;[J)V">;

/// Runs an entry whose failures reach Java as a RuntimeException.
template <class Body>
auto runInventoryEntry(JNIEnv *env, Body body) -> decltype(body()) {
    return runEntry(env, [&]() -> decltype(body()) {
        try {
            return body();
        } catch (const InventoryError &error) {
            ClassProxy(env, "java/lang/RuntimeException").throwNew(error.what());
        }
        return decltype(body())();
    });
}

/// One object per record, made by `make` in a frame of its own.
template <class Records, class Make>
jobjectArray makeArray(const ClassProxy &elements, const Records &records, Make make) {
    constexpr jint references = 12;
    JNIEnv *const env = elements.env;
    const jobjectArray array = jni::newObjectArray(env, static_cast<jsize>(records.size()), elements.cls);
    jsize index = 0;
    for (const auto &record : records) {
        const LocalFrame frame(env, references, LocalFrame::Refusal::isFailure);
        jni::setElement(env, array, index++, make(record));
    }
    return array;
}

/// Null for an empty text, which says nothing.
jstring known(JNIEnv *env, const std::string &text) {
    return text.empty() ? nullptr : jni::newString(env, text.c_str());
}

/// What does not fit Java's type is as much as does.
jlong bytes(std::uint64_t size) {
    return static_cast<jlong>(std::min<std::uint64_t>(size, std::numeric_limits<jlong>::max()));
}

jobjectArray makeIdentities(JNIEnv *env) {
    const Identity made(env);
    return makeArray(made, readIdentities(), [&](const DiskIdentity &disk) {
        return made.make(jni::newString(env, disk.disk.c_str()), known(env, disk.vendor), known(env, disk.product),
                         known(env, disk.revision), known(env, disk.serial), known(env, disk.designator),
                         disk.size == 0 ? jlong{-1} : bytes(disk.size),
                         disk.from == nullptr ? nullptr : jni::newString(env, disk.from));
    });
}

jobjectArray makeMounts(JNIEnv *env, jstring mountPoint, std::chrono::milliseconds limit) {
    const Mount made(env);
    const JniString wanted(env, mountPoint);
    return makeArray(made, readMounts(limit, wanted.utf8()), [&](const InventoryMount &mount) {
        const auto size = [&](std::uint64_t MountSizes::*of) { return mount.sizes ? bytes(*mount.sizes.*of) : -1; };
        // More than any file system has are blocks overdrawn from a reserve.
        const bool isOverdrawn = mount.sizes && mount.sizes->available > std::numeric_limits<jlong>::max();
        return made.make(jni::newString(env, mount.mountPoint.c_str()), jni::newString(env, mount.device.c_str()),
                         jni::newString(env, mount.fileSystemType.c_str()), jboolean{mount.isAnswered},
                         size(&MountSizes::total), size(&MountSizes::free),
                         isOverdrawn ? jlong{0} : size(&MountSizes::available));
    });
}

jobjectArray makeOtherKinds(JNIEnv *env) {
    return makeArray(ClassProxy(env, "java/lang/String"), readOtherKinds(),
                     [&](const std::string &kind) { return jni::newString(env, kind.c_str()); });
}

jobject makeErrors(const Errors &made, const ErrorCounts &counts) {
    return std::apply([&](auto... count) { return made.make(jlong{count}...); }, counts);
}

jobjectArray makeDisks(JNIEnv *env, const std::vector<DiskActivity> &disks) {
    const Activity made(env);
    const Errors errors(env);
    return makeArray(made, disks, [&](const DiskActivity &disk) {
        const kstat_io_t &io = disk.counters;
        return made.make(jni::newString(env, disk.instance.c_str()), known(env, disk.disk), jlong{disk.crtime},
                         jlong{disk.snaptime}, jlong{io.reads}, jlong{io.writes}, static_cast<jlong>(io.nread),
                         static_cast<jlong>(io.nwritten), jlong{io.wtime}, jlong{io.wlentime}, jlong{io.wlastupdate},
                         jlong{io.rtime}, jlong{io.rlentime}, jlong{io.rlastupdate}, jlong{io.wcnt}, jlong{io.rcnt},
                         disk.errors ? makeErrors(errors, *disk.errors) : nullptr);
    });
}

jobjectArray makePorts(JNIEnv *env, const std::vector<PortTraffic> &ports) {
    const Traffic made(env);
    return makeArray(made, ports, [&](const PortTraffic &port) {
        const HBA_PORTSTATISTICS &of = port.counters;
        const jlong counters[] = {of.SecondsSinceLastReset,
                                  of.TxFrames,
                                  of.TxWords,
                                  of.RxFrames,
                                  of.RxWords,
                                  of.LIPCount,
                                  of.NOSCount,
                                  of.ErrorFrames,
                                  of.DumpedFrames,
                                  of.LinkFailureCount,
                                  of.LossOfSyncCount,
                                  of.LossOfSignalCount,
                                  of.PrimitiveSeqProtocolErrCount,
                                  of.InvalidTxWordCount,
                                  of.InvalidCRCCount};
        const jlongArray array = jni::required(env->NewLongArray(static_cast<jsize>(std::size(counters))));
        env->SetLongArrayRegion(array, 0, static_cast<jsize>(std::size(counters)), counters);
        return made.make(static_cast<jint>(port.adapter), static_cast<jint>(port.port),
                         jni::newString(env, hexText(port.wwn.wwn).c_str()), array);
    });
}

jobject makeSample(JNIEnv *env, ActivitySampler &sampler) {
    const std::vector<DiskActivity> disks = sampler.readDisks();
    const std::vector<PortTraffic> ports = readPorts();
    const Sample made(env);
    const jobjectArray ofDisks = makeDisks(env, disks);
    return made.make(ofDisks, makePorts(env, ports));
}

/// A sampler is Java's own from open to close; it calls nothing in between on two threads at once.
ActivitySampler *samplerOf(jlong handle) {
    return reinterpret_cast<ActivitySampler *>(static_cast<std::intptr_t>(handle)); // NOLINT(performance-no-int-to-ptr)
}

} // namespace
} // namespace tarn

TARN_EXPORTED_ENTRY jobjectArray JNICALL Java_com_kelvo_tarn_inventory_Inventory_readIdentities(JNIEnv *env, jclass) {
    return tarn::runInventoryEntry(env, [&] { return tarn::makeIdentities(env); });
}

TARN_EXPORTED_ENTRY jobjectArray JNICALL Java_com_kelvo_tarn_inventory_Inventory_readMounts(JNIEnv *env, jclass,
                                                                                            jstring mountPoint,
                                                                                            jlong milliseconds) {
    return tarn::runInventoryEntry(
        env, [&] { return tarn::makeMounts(env, mountPoint, std::chrono::milliseconds(milliseconds)); });
}

TARN_EXPORTED_ENTRY jobjectArray JNICALL Java_com_kelvo_tarn_inventory_Inventory_readOtherKinds(JNIEnv *env, jclass) {
    return tarn::runInventoryEntry(env, [&] { return tarn::makeOtherKinds(env); });
}

TARN_EXPORTED_ENTRY jlong JNICALL Java_com_kelvo_tarn_inventory_Sampler_open(JNIEnv *env, jclass) {
    return tarn::runInventoryEntry(env, [&] {
        auto sampler = std::make_unique<tarn::ActivitySampler>();
        return static_cast<jlong>(reinterpret_cast<std::intptr_t>(sampler.release()));
    });
}

TARN_EXPORTED_ENTRY jobject JNICALL Java_com_kelvo_tarn_inventory_Sampler_read(JNIEnv *env, jclass, jlong handle) {
    return tarn::runInventoryEntry(env, [&] { return tarn::makeSample(env, *tarn::samplerOf(handle)); });
}

TARN_EXPORTED_ENTRY void JNICALL Java_com_kelvo_tarn_inventory_Sampler_close(JNIEnv *, jclass, jlong handle) {
    const std::unique_ptr<tarn::ActivitySampler> closed(tarn::samplerOf(handle));
}
