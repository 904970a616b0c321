#include "common/hba/HbaCacheImpl.h"
#include "common/jni/EntryPoint.h"
#include "common/jni/StackRoom.h"

TARN_EXPORTED_ENTRY jobjectArray JNICALL
Java_com_kelvo_tarn_providers_hba_HbaCache_fillHbaCache(JNIEnv *env, jobject self, jobject hbaClassNames) {
    using namespace tarn;
    return runEntry(env, [&]() -> jobjectArray {
        requireStack(env, HbaCacheImpl::fillStack);
        if (env->EnsureLocalCapacity(HbaCacheImpl::entryCapacity) < 0) {
            return nullptr;
        }
        return HbaCacheImpl(env, self, hbaClassNames).FillCache();
    });
}

TARN_EXPORTED_ENTRY void JNICALL Java_com_kelvo_tarn_providers_hba_HbaCache_testHbaLibrary(JNIEnv *env, jobject self,
                                                                                           jobject list) {
    using namespace tarn;
    runEntry(env, [&] {
        requireStack(env, HbaCacheImpl::selfTestStack);
        constexpr jint references = 32; // the classes, the list's own, and a line
        if (env->EnsureLocalCapacity(references) >= 0) {
            HbaCacheImpl(env, self, nullptr).TestHbaLibrary(list);
        }
    });
}
