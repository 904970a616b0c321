// Logical disks, processors, CPU ticks, disk I/O and passwords, from the native entry points to their Java objects.

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <string>
#include <utility>

#include "platform/replay/Replay.h"
#include "tests/jvm/JniTable.h"
#include "tests/jvm/JvmTest.h"

#define HOST_FACT(method) Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_##method
#define AUTHENTICATOR(method) Java_com_kelvo_tarn_providers_solaris_SolarisAuthenticator_##method

extern "C" {
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
}

namespace {

using tests::Lines;

const char *const wholeHost = R"({
    "mnttab": ["/dev/dsk/c0t0d0s0\t/\tufs\trw\t1", "swap\t/tmp\ttmpfs\trw\t1", "shore:/home\t/home\tnfs\trw\t1"],
    "statvfs": {"/": {"f_bsize": 8192, "f_frsize": 1024, "f_blocks": 1000, "f_bfree": 500, "f_bavail": 400}},
    "sysconf": {"_SC_NPROCESSORS_CONF": 2}, "disks": [{"name": "c0t0d0", "path": "/sd@0,0", "minor": 8}],
    "processors": [{"id": 0, "pi_state": "P_ONLINE", "pi_processor_type": "sparcv9", "pi_clock": 1281},
                   {"id": 4, "pi_state": "P_SPARE", "pi_processor_type": "sparcv9", "pi_clock": -1}],
    "kstat": [{"ks_module": "cpu_stat", "ks_name": "cpu_stat0",
               "data": {"idle": 2147483648, "user": 1, "kernel": 2, "wait": 3}},
              {"ks_module": "cpu_stat", "ks_instance": 1, "ks_name": "cpu_stat1"},
              {"ks_name": "sd1", "ks_class": "disk", "ks_type": "KSTAT_TYPE_IO",
               "data": {"nread": 18446744073709551615, "nwritten": 2, "wlastupdate": 9, "rtime": 7}},
              {"ks_name": "sd2", "ks_class": "disk", "ks_type": "KSTAT_TYPE_IO", "data": {}}],
    "shadow": {"open": "", "short": "x", "locked": "*LK*", "des": "abhlIbcleqfIM"}})";

class HostFactsTest : public jvm::JvmTest {};

TEST_F(HostFactsTest, EntriesAnswerOrFailCleanly) {
    const auto callOf = [](auto entry, auto... arguments) {
        return [=](JNIEnv *e) { return entry(e, nullptr, arguments...); };
    };
    const std::string root = "SolarisLogicalDisk[device=/dev/dsk/c0t0d0s0, mountPoint=/, fileSystemType=ufs, ";
    const std::string home = "SolarisLogicalDisk[device=shore:/home, mountPoint=/home, fileSystemType=nfs, ";
    const std::string unsized = "totalBytes=0, availableBytes=0, freeBytes=0, blockSize=0]";
    const std::string cpu0 = "SolarisProcessorData[processorId=0, processorType=sparcv9, state=online, clockMHz=1281]";
    const std::string cpu4 = "SolarisProcessorData[processorId=4, processorType=sparcv9, state=offline, clockMHz=-1]";
    const std::string ticks0 =
        "SolarisCpuUtilizationData[cpuId=0, userTicks=1, kernelTicks=2, waitTicks=3, idleTicks=-2147483648]";
    const std::string disk = "SolarisDiskIOInformation[instanceName=";
    const std::string sd1 = disk + "sd1, diskName=c0t0d0, bytesRead=-1, bytesWritten=2, waitLastUpdate=9, runTime=7]";
    const std::string sd2 = disk + "sd2, diskName=, bytesRead=0, bytesWritten=0, waitLastUpdate=0, runTime=0]";
    const std::string error = "java.lang.RuntimeException: ";
    const std::string noTable = error + "Unable to open mount table file: /etc/mnttab";
    const std::string noStatistics = error + "kstat open failed.";
    const struct {
        std::function<jobject(JNIEnv *)> call;
        std::string answer, answerOfBareHost;
    } entries[] = {
        {callOf(HOST_FACT(enumerateLogicalDiskNames)), "[" + root + unsized + ", " + home + unsized + "]", "[]"},
        {callOf(HOST_FACT(getLogicalDiskByName), newString("/")),
         root + "totalBytes=1024000, availableBytes=409600, freeBytes=512000, blockSize=8192]", noTable},
        {callOf(HOST_FACT(getLogicalDiskByName), newString("/tmp")), error + "Logical Disk Not Found: /tmp", noTable},
        {callOf(HOST_FACT(getLogicalDiskByName), newString(nullptr)), error + "Logical Disk Not Found: ", noTable},
        {callOf(HOST_FACT(enumerateProcessors)), "[" + cpu0 + ", " + cpu4 + "]", "[]"},
        {callOf(HOST_FACT(getProcessor), 4), cpu4, "null"},
        {callOf(HOST_FACT(getProcessor), 7), "null", "null"},
        {callOf(HOST_FACT(enumerateCpuUtilizationInfo)), "[" + ticks0 + "]", noStatistics},
        {callOf(HOST_FACT(getCpuUtilizationInfo), 0), ticks0, noStatistics},
        {callOf(HOST_FACT(getCpuUtilizationInfo), 1), error + "kstat_read failed.", noStatistics},
        {callOf(HOST_FACT(getCpuUtilizationInfo), 9), error + "kstat_lookup failed.", noStatistics},
        {callOf(HOST_FACT(enumerateDiskIOInformation)), "[" + sd1 + ", " + sd2 + "]", noStatistics},
        {callOf(HOST_FACT(getDiskIOInformation), newString("c0t0d0")), sd1, noStatistics},
        {callOf(HOST_FACT(getDiskIOInformation), newString("c9t9d9")), "null", noStatistics},
        {callOf(HOST_FACT(getDiskIOInformation), newString(nullptr)), "null", noStatistics},
        {callOf(AUTHENTICATOR(getLibraryBuildDate)), "Jan 18 2006", "Jan 18 2006"},
    };
    for (const auto &[call, answer, answerOfBareHost] : entries) {
        for (const auto &[host, expected] : {std::pair{wholeHost, answer}, {"{}", answerOfBareHost}}) {
            replay::loadHostText(host);
            env->PushLocalFrame(16);
            const jobject result = call(env);
            const std::string thrown = jvm::takeException(env);
            EXPECT_EQ(thrown.empty() ? jvm::toText(env, result) : thrown, expected);
            env->PopLocalFrame(nullptr);
            EXPECT_GE(jvm::refuseEveryCall(env, jvm::Refusal::withException, call, thrown), 1) << expected;
        }
    }
    replay::loadHostText(wholeHost);
    const jstring own = newString("c0t0d0");
    const jobject named = HOST_FACT(getDiskIOInformation)(env, nullptr, own);
    EXPECT_TRUE(env->IsSameObject(jvm::call(env, named, "diskName", "()Ljava/lang/String;"), own));
}

TEST_F(HostFactsTest, AMountThatVanishesIsOneWarning) {
    static std::string hostAfterwards;
    static const JNINativeInterface_ *const real = env->functions;
    JNINativeInterface_ unmounting = *real; // with the first object that is added to a list, another host answers
    unmounting.CallVoidMethodV = [](JNIEnv *e, jobject list, jmethodID method, va_list arguments) {
        replay::loadHostText(hostAfterwards);
        real->CallVoidMethodV(e, list, method, arguments);
    };
    const std::string first = R"({"mnttab": ["d0\t/\tufs\trw\t1")";
    const std::string last = R"(, "d1\t/var\tufs\trw\t1"]})";
    const std::string gone = R"(, "far:/\t/gone\tnfs\trw\t1")";
    std::string manyGone;
    for (int i = 0; i < 100; ++i) {
        manyGone += gone;
    }
    hostAfterwards = first + last;
    replay::loadHostText(first + manyGone + last);
    env->functions = &unmounting;
    {
        const jvm::JniTable table(env);
        const jobject disks = HOST_FACT(enumerateLogicalDiskNames)(env, nullptr);
        EXPECT_EQ(logLines(table.calls), Lines(100, "warn Logical Disk Not Found: /gone"));
        EXPECT_LE(table.peakLocalReferences, 16);
        EXPECT_EQ(jvm::elementTexts(env, disks).size(), 2U);
    }
    jvm::refuseEveryCall(env, jvm::Refusal::withException, [&](JNIEnv *e) {
        replay::loadHostText(first + gone + last);
        return HOST_FACT(enumerateLogicalDiskNames)(e, nullptr);
    });
    env->functions = real;
}

TEST_F(HostFactsTest, LongListsNeedFewReferences) {
    const auto listOf128 = [](const std::string &beforeNumber, const std::string &afterNumber) {
        std::string list;
        for (int i = 0; i < 128; ++i) {
            list += (i == 0 ? "[" : ", ") + beforeNumber + std::to_string(i) + afterNumber;
        }
        return list + "]";
    };
    replay::loadHostText(R"({"sysconf": {"_SC_NPROCESSORS_CONF": 128, "_SC_CPUID_MAX": 127}, "processors": )" +
                         listOf128(R"({"id": )", "}") + R"(, "mnttab": )" + listOf128(R"("d\t/)", R"(\tufs\trw\t1")") +
                         R"(, "kstat": )" +
                         listOf128(R"({"ks_name": "cpu_stat)", R"(", "data": {}}, {"ks_name": "sd", "ks_class": "disk",
                                                                  "ks_type": "KSTAT_TYPE_IO", "data": {}})") +
                         "}");
    for (const auto enumerate : {HOST_FACT(enumerateLogicalDiskNames), HOST_FACT(enumerateProcessors),
                                 HOST_FACT(enumerateCpuUtilizationInfo), HOST_FACT(enumerateDiskIOInformation)}) {
        const jvm::JniTable table(env);
        const jobject list = enumerate(env, nullptr);
        EXPECT_LE(table.peakLocalReferences, 16); // what a native method may hold without asking for room
        EXPECT_EQ(jvm::elementTexts(env, list).size(), 128U);
    }
}

TEST_F(HostFactsTest, PasswordsAreFetchedOnlyToBeCompared) {
    replay::loadHostText(wholeHost);
    const struct {
        const char *user, *password;
        bool accepted;
        std::size_t fetches;
        Lines log;
    } cases[] = {
        {"des", "tide pool", true, 2, {}},
        {"des", nullptr, false, 1, {}},
        {"open", "anything", true, 1, {}},
        {"locked", "*LK*", false, 2, {}},
        {"short", "x", false, 1, {"info Salted password is too short"}},
        {nullptr, "x", false, 0, {"info No password entry for user  found"}},
    };
    for (const auto &[user, password, accepted, fetches, log] : cases) {
        SCOPED_TRACE(user == nullptr ? "null" : user);
        const auto authenticate = [userText = newString(user), passwordText = newString(password)](JNIEnv *e) {
            errno = 0;
            return AUTHENTICATOR(authenticate)(e, nullptr, userText, passwordText) == JNI_TRUE;
        };
        {
            const jvm::JniTable table(env);
            EXPECT_EQ(authenticate(env), accepted);
            EXPECT_EQ(logLines(table.calls), log);
            EXPECT_EQ(tests::beginning(table.calls, {"GetStringUTFChars"}).size(), fetches);
        }
        const auto accepts = [&, may = accepted](JNIEnv *e) -> jobject {
            EXPECT_LE(authenticate(e), may);
            return nullptr;
        };
        jvm::refuseEveryCall(env, jvm::Refusal::withException, accepts, "", true); // a lost log line changes nothing
    }
}

} // namespace
