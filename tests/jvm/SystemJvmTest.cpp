// The computer system and the operating system, from the native entry points to their Java objects.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <new>

#include "native/HostInformation.h"
#include "platform/replay/Replay.h"
#include "tests/jvm/JniTable.h"
#include "tests/jvm/Jvm.h"

extern "C" {
jobject Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_getComputerSystem(JNIEnv *, jobject);
jobject Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_getOperatingSystem(JNIEnv *, jobject);
}

namespace {

using Texts = std::vector<std::string>;

jobject getComputerSystem(JNIEnv *env) {
    return Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_getComputerSystem(env, nullptr);
}

jobject getOperatingSystem(JNIEnv *env) {
    return Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_getOperatingSystem(env, nullptr);
}

/// What the Java object says of one of its components.
std::string component(JNIEnv *env, jobject object, const char *name) {
    return jvm::toText(env, jvm::call(env, object, name, "()Ljava/lang/String;"));
}

jlong number(JNIEnv *env, jobject object, const char *name) {
    const jlong value = env->CallLongMethod(object, env->GetMethodID(env->GetObjectClass(object), name, "()J"));
    env->ExceptionCheck();
    return value;
}

class SystemTest : public testing::Test {
protected:
    SystemTest() {
        env->PushLocalFrame(64);
    }
    ~SystemTest() override {
        env->PopLocalFrame(nullptr);
    }

    Texts computerSystem() {
        const jobject system = getComputerSystem(env);
        return {component(env, system, "systemName"), component(env, system, "hostName"),
                component(env, system, "serialNumber"), component(env, system, "platform"),
                component(env, system, "version")};
    }

    JNIEnv *env = jvm::environment();
};

const char *const wholeHost = R"({
    "sysinfo": {"SI_SYSNAME": "SunOS", "SI_HOSTNAME": "rill", "SI_PLATFORM": "SUNW,Sun-Fire-V440", "SI_VERSION": "Generic"},
    "uname": {"sysname": "SunOS", "nodename": "rill", "release": "5.9", "version": "Generic_118558-21"},
    "sysconf": {"_SC_PAGESIZE": 8192, "_SC_PHYS_PAGES": 100, "_SC_AVPHYS_PAGES": 50},
    "kstat": [{"ks_module": "unix", "ks_instance": 0, "ks_name": "vminfo", "ks_class": "vm", "ks_type": "KSTAT_TYPE_RAW",
               "samples": [{"freemem": 7, "swap_resv": 0, "swap_avail": 100},
                           {"freemem": 10, "swap_resv": 5, "swap_avail": 110}]}]})";

TEST_F(SystemTest, ComputerSystemTellsWhatIsKnownAndBlanksForTheRest) {
    replay::loadHostText("{}");
    EXPECT_EQ(computerSystem(), (Texts{" ", " ", "unknown", " ", " "}));
    replay::loadHostText(R"({"sysinfo": {"SI_HOSTNAME": "rill", "SI_VERSION": "Generic"}})");
    EXPECT_EQ(computerSystem(), (Texts{" ", "rill", "unknown", " ", "Generic"}));
    replay::loadHostText(wholeHost);
    EXPECT_EQ(computerSystem(), (Texts{"SunOS", "rill", "unknown", "SUNW,Sun-Fire-V440", "Generic"}));
    replay::loadHostText(R"({"sysinfo": {"SI_PLATFORM": ")" + std::string(200, 'p') + R"("}})");
    EXPECT_EQ(computerSystem()[3], std::string(127, 'p'));
}

TEST_F(SystemTest, OperatingSystemTellsNamesAndMemory) {
    replay::loadHostText(wholeHost);
    const jobject system = getOperatingSystem(env);
    EXPECT_EQ(component(env, system, "name"), "SunOS");
    EXPECT_EQ(component(env, system, "hostName"), "rill");
    EXPECT_EQ(component(env, system, "version"), "Generic_118558-21.5.9");
    EXPECT_EQ(number(env, system, "totalPhysicalKB"), 800);
    EXPECT_EQ(number(env, system, "freePhysicalKB"), 24);
    EXPECT_EQ(number(env, system, "totalSwapKB"), 120);
    EXPECT_EQ(number(env, system, "freeSwapKB"), 80);

    const std::string longText(120, 'v');
    replay::loadHostText(R"({"uname": {"sysname": ")" + longText + R"(", "nodename": "", "release": "5.9", "version": ")" +
                         longText + R"("}, "kstat": []})");
    const jobject cut = getOperatingSystem(env);
    EXPECT_EQ(component(env, cut, "name"), std::string(99, 'v'));
    EXPECT_EQ(component(env, cut, "version"), std::string(99, 'v'));
}

TEST_F(SystemTest, OperatingSystemLogsWhatFailedAndAnswersABlankObject) {
    const struct {
        const char *host;
        const char *line;
    } cases[] = {
        {R"({"kstat": []})", "NewStringUTF uname failed in getOperatingSystem"},
        {R"({"uname": {"sysname": "SunOS"}})", "NewStringUTF kstat open failed"},
    };
    for (const auto &[host, line] : cases) {
        replay::loadHostText(host);
        jvm::JniTable table(env);
        const jobject system = getOperatingSystem(env);
        const auto at = std::find(table.calls.begin(), table.calls.end(), line);
        ASSERT_NE(at, table.calls.end()) << line;
        EXPECT_EQ(*std::prev(at), "GetStaticMethodID com/kelvo/tarn/providers/solaris/SolarisNativeMethod warn "
                                  "(Ljava/lang/String;)V");
        EXPECT_EQ(component(env, system, "name"), " ");
        EXPECT_EQ(number(env, system, "totalPhysicalKB"), 0);
    }
}

TEST_F(SystemTest, CallsComeInTheirOrder) {
    replay::loadHostText(R"({"sysinfo": {"SI_SYSNAME": "SunOS", "SI_HOSTNAME": "rill"}})");
    const Texts expected{
        "NewStringUTF  ", "NewStringUTF  ", "NewStringUTF  ", "NewStringUTF  ", "NewStringUTF unknown",
        "FindClass com/kelvo/tarn/providers/solaris/SolarisComputerSystemProvider$SolarisComputerSystem",
        "GetMethodID com/kelvo/tarn/providers/solaris/SolarisComputerSystemProvider$SolarisComputerSystem <init> "
        "(Ljava/lang/String;Ljava/lang/String;Ljava/lang/String;Ljava/lang/String;Ljava/lang/String;)V",
        "NewStringUTF SunOS", "NewStringUTF rill",
        "NewObject com/kelvo/tarn/providers/solaris/SolarisComputerSystemProvider$SolarisComputerSystem"};
    replay::startJournal();
    jvm::JniTable table(env);
    getComputerSystem(env);
    EXPECT_EQ(table.calls, expected);
    EXPECT_EQ(replay::stopJournal(), (Texts{"sysinfo SI_SYSNAME", "sysinfo SI_HOSTNAME", "sysinfo SI_PLATFORM EINVAL",
                                            "sysinfo SI_VERSION EINVAL"}));
}

TEST_F(SystemTest, NativeFailuresReachJavaAsRuntimeExceptions) {
    const struct {
        std::function<jobject()> fail;
        const char *exception;
    } cases[] = {
        {[]() -> jobject { throw std::bad_alloc(); }, "java.lang.RuntimeException: UNKNOWN EXCEPTION"},
        {[]() -> jobject { throw tarn::DiskIONameNotFound(""); },
         "java.lang.RuntimeException: Unable to find Disk IO Information name: "},
    };
    for (const auto &[fail, exception] : cases) {
        EXPECT_EQ(tarn::runThrowingEntry(env, fail), nullptr);
        EXPECT_EQ(jvm::takeException(env), exception);
    }
}

TEST_F(SystemTest, EveryRefusedCallEndsCleanly) {
    for (const char *host : {wholeHost, "{}"}) {
        replay::loadHostText(host);
        for (const auto entry : {getComputerSystem, getOperatingSystem}) {
            EXPECT_GT(jvm::refuseEveryCall(env, jvm::Refusal::withException, entry), 5);
        }
    }
}

} // namespace
