#pragma once

#include <jni.h>

// The libraries' entry points, each under the name of its Java method.

#define HOST_FACT(method) Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_##method
#define AUTHENTICATOR(method) Java_com_kelvo_tarn_providers_solaris_SolarisAuthenticator_##method
#define DRIVES(method) Java_com_kelvo_tarn_providers_solaris_SolarisDiskDriveProvider_##method
#define PARTITIONS(method) Java_com_kelvo_tarn_providers_solaris_SolarisDiskPartitionProvider_##method
#define INTERROGATOR(method) Java_com_kelvo_tarn_providers_solaris_SolarisScsiInterrogator_##method
#define HBA_CACHE(method) Java_com_kelvo_tarn_providers_hba_HbaCache_##method
#define INVENTORY(method) Java_com_kelvo_tarn_inventory_Inventory_##method
#define SAMPLER(method) Java_com_kelvo_tarn_inventory_Sampler_##method

extern "C" {
jobject HOST_FACT(getComputerSystem)(JNIEnv *, jobject);
jobject HOST_FACT(getOperatingSystem)(JNIEnv *, jobject);
jobject HOST_FACT(enumerateLogicalDiskNames)(JNIEnv *, jobject);
jobject HOST_FACT(getLogicalDiskByName)(JNIEnv *, jobject, jstring);
jobject HOST_FACT(enumerateProcessors)(JNIEnv *, jobject);
jobject HOST_FACT(getProcessor)(JNIEnv *, jobject, jint);
jobject HOST_FACT(enumerateCpuUtilizationInfo)(JNIEnv *, jobject);
jobject HOST_FACT(getCpuUtilizationInfo)(JNIEnv *, jobject, jint);
jobject HOST_FACT(enumerateDiskIOInformation)(JNIEnv *, jobject);
jobject HOST_FACT(getDiskIOInformation)(JNIEnv *, jobject, jstring);
jboolean AUTHENTICATOR(authenticate)(JNIEnv *, jobject, jstring, jstring);
jstring AUTHENTICATOR(getLibraryBuildDate)(JNIEnv *, jobject);
void DRIVES(enumerateDisks)(JNIEnv *, jobject, jobject);
jobject DRIVES(getDisk)(JNIEnv *, jobject, jstring);
void PARTITIONS(enumeratePartitions)(JNIEnv *, jobject, jobject);
jobject PARTITIONS(getPartition)(JNIEnv *, jobject, jstring);
jstring INTERROGATOR(scsiInterrogate)(JNIEnv *, jobject, jstring, jstring, jstring, jstring);
jobjectArray HBA_CACHE(fillHbaCache)(JNIEnv *, jobject, jobject);
void HBA_CACHE(testHbaLibrary)(JNIEnv *, jobject, jobject);
jobjectArray INVENTORY(readIdentities)(JNIEnv *, jclass);
jobjectArray INVENTORY(readMounts)(JNIEnv *, jclass, jstring, jlong);
jobjectArray INVENTORY(readOtherKinds)(JNIEnv *, jclass);
jlong SAMPLER(open)(JNIEnv *, jclass);
jobject SAMPLER(read)(JNIEnv *, jclass, jlong);
void SAMPLER(close)(JNIEnv *, jclass, jlong);
}
