#include "native/array/SolarisScsiInterrogatorC.h"

#include <jni.h>

#include <cstring>

#include "common/jni/EntryPoint.h"
#include "common/jni/JniString.h"
#include "common/jni/StackRoom.h"

namespace tarn {
namespace {

/// Java is asked for its strings before the scan and for the report's after it: no scan waits for one that waits for
/// Java. Never part of the entry's own frame, which has to fit where the report does not.
[[gnu::noinline]] jstring interrogate(JNIEnv *env, jstring controller1Id, jstring controller2Id, jstring vendorId,
                                      jstring productId) {
    char returnString[returnStringSize] = {};
    const JniString controller1(env, controller1Id);
    const JniString controller2(env, controller2Id);
    const JniString vendor(env, vendorId);
    const JniString product(env, productId);
    const char *const controller1Text = controller1.utf8();
    const char *const controller2Text = controller2.utf8();
    const char *const vendorText = vendor.utf8();
    const char *const productText = product.utf8();
    scsiInterrogatorC(returnString, controller1Text, controller2Text, vendorText, productText);
    if (returnString[0] == '\0') {
        std::memcpy(returnString, noDataReport, sizeof noDataReport);
    }
    return env->NewStringUTF(returnString);
}

} // namespace
} // namespace tarn

TARN_EXPORTED_ENTRY jstring JNICALL Java_com_kelvo_tarn_providers_solaris_SolarisScsiInterrogator_scsiInterrogate(
    JNIEnv *env, jobject, jstring controller1Id, jstring controller2Id, jstring vendorId, jstring productId) {
    using namespace tarn;
    return runEntry(env, [&]() -> jstring {
        requireStack(env, returnStringSize + scanStack);
        return interrogate(env, controller1Id, controller2Id, vendorId, productId);
    });
}
