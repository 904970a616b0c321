#include "common/EntryPoint.h"
#include "common/hba/HbaCacheImpl.h"

extern "C" JNIEXPORT jobjectArray JNICALL
Java_com_kelvo_tarn_providers_hba_HbaCache_fillHbaCache(JNIEnv *env, jobject self, jobject hbaClassNames) {
    using namespace tarn;
    return runEntry([&]() -> jobjectArray {
        if (env->EnsureLocalCapacity(HbaCacheImpl::entryCapacity) < 0) {
            return nullptr;
        }
        return HbaCacheImpl(env, self, hbaClassNames).FillCache();
    });
}

extern "C" JNIEXPORT void JNICALL Java_com_kelvo_tarn_providers_hba_HbaCache_testHbaLibrary(JNIEnv *env, jobject self,
                                                                                            jobject list) {
    using namespace tarn;
    runEntry([&] {
        constexpr jint references = 32; // the classes, the list's own, and a line
        if (env->EnsureLocalCapacity(references) >= 0) {
            HbaCacheImpl(env, self, nullptr).TestHbaLibrary(list);
        }
    });
}
