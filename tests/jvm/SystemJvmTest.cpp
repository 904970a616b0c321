// The computer system and the operating system, from the native entry points to their Java objects.

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <utility>

#include "native/HostInformation.h"
#include "platform/replay/Replay.h"
#include "tests/jvm/JniTable.h"
#include "tests/jvm/JvmTest.h"

extern "C" {
jobject Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_getComputerSystem(JNIEnv *, jobject);
jobject Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_getOperatingSystem(JNIEnv *, jobject);
}

namespace {

using tests::Lines;

jobject getComputerSystem(JNIEnv *env) {
    return Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_getComputerSystem(env, nullptr);
}

jobject getOperatingSystem(JNIEnv *env) {
    return Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_getOperatingSystem(env, nullptr);
}

class SystemTest : public jvm::JvmTest {};

const std::string wholeHost = R"({
    "sysinfo": {"SI_SYSNAME": "SunOS", "SI_HOSTNAME": "rill", "SI_PLATFORM": "SUNW,Sun-Fire-V440", "SI_VERSION": "G"},
    "uname": {"sysname": "SunOS", "nodename": "rill", "release": "5.9", "version": "Generic_118558-21"},
    "sysconf": {"_SC_PAGESIZE": 8192, "_SC_PHYS_PAGES": 100, "_SC_AVPHYS_PAGES": 50},
    "kstat": [{"ks_module": "unix", "ks_name": "vminfo", "samples": [
        {"freemem": 7, "swap_resv": 0, "swap_avail": 100}, {"freemem": 10, "swap_resv": 5, "swap_avail": 110}]}]})";

TEST_F(SystemTest, EachTellsWhatIsKnownAndBlanksForTheRest) {
    const std::string p(200, 'p'), v(257, 'v'); // longer than what is read of it, and filling its field
    const std::string noMemory = "totalPhysicalKB=0, freePhysicalKB=0, totalSwapKB=0, freeSwapKB=0]";
    const std::string blank = "SolarisOperatingSystem[name= , hostName= , version= , " + noMemory;
    const struct {
        std::string host, computerSystem, operatingSystem;
        Lines log;
    } cases[] = {
        {wholeHost,
         "systemName=SunOS, hostName=rill, serialNumber=unknown, platform=SUNW,Sun-Fire-V440, version=G]",
         "SolarisOperatingSystem[name=SunOS, hostName=rill, version=Generic_118558-21.5.9, "
         "totalPhysicalKB=800, freePhysicalKB=24, totalSwapKB=120, freeSwapKB=80]",
         {}},
        {R"({"kstat": []})",
         "systemName= , hostName= , serialNumber=unknown, platform= , version= ]",
         blank,
         {"warn uname failed in getOperatingSystem"}},
        {R"({"uname": {}, "sysinfo": {"SI_HOSTNAME": "rill", "SI_VERSION": "G"}})",
         "systemName= , hostName=rill, serialNumber=unknown, platform= , version=G]",
         blank,
         {"warn kstat open failed"}},
        {R"({"kstat": [], "sysinfo": {"SI_PLATFORM": ")" + p + R"("}, "uname": {"sysname": ")" + v +
             R"(", "nodename": ")" + v + R"(", "release": ")" + v + R"(", "version": ")" + v + R"("}})",
         "systemName= , hostName= , serialNumber=unknown, platform=" + p.substr(0, 127) + ", version= ]",
         "SolarisOperatingSystem[name=" + v.substr(0, 99) + ", hostName=" + v.substr(0, 99) +
             ", version=" + v.substr(0, 99) + ", " + noMemory,
         {}},
    };
    for (const auto &[host, computerSystem, operatingSystem, log] : cases) {
        replay::loadHostText(host);
        EXPECT_EQ(jvm::toText(env, getComputerSystem(env)), "SolarisComputerSystem[" + computerSystem);
        const jvm::JniTable table(env);
        const jobject system = getOperatingSystem(env);
        EXPECT_EQ(logLines(table.calls), log);
        EXPECT_EQ(jvm::toText(env, system), operatingSystem);
    }
}

TEST_F(SystemTest, CallsComeInTheirOrder) {
    replay::loadHostText(R"({"sysinfo": {"SI_SYSNAME": "SunOS", "SI_HOSTNAME": "rill"}})");
    const std::string className =
        "com/kelvo/tarn/providers/solaris/SolarisComputerSystemProvider$SolarisComputerSystem";
    const Lines expected{"NewStringUTF  ",
                         "NewStringUTF  ",
                         "NewStringUTF  ",
                         "NewStringUTF  ",
                         "NewStringUTF unknown",
                         "FindClass " + className,
                         "GetMethodID " + className +
                             " <init> (Ljava/lang/String;Ljava/lang/String;"
                             "Ljava/lang/String;Ljava/lang/String;Ljava/lang/String;)V",
                         "NewStringUTF SunOS",
                         "NewStringUTF rill",
                         "NewObject " + className};
    replay::startJournal();
    const jvm::JniTable table(env);
    getComputerSystem(env);
    EXPECT_EQ(table.calls, expected);
    EXPECT_EQ(replay::stopJournal(), (Lines{"sysinfo SI_SYSNAME", "sysinfo SI_HOSTNAME", "sysinfo SI_PLATFORM EINVAL",
                                            "sysinfo SI_VERSION EINVAL"}));
}

TEST_F(SystemTest, NativeFailuresReachJavaAsRuntimeExceptions) {
    const std::pair<std::function<jobject()>, std::string> failures[] = {
        {[]() -> jobject { throw std::bad_alloc(); }, "UNKNOWN EXCEPTION"},
        {[]() -> jobject { throw tarn::DiskIONameNotFound(""); }, "Unable to find Disk IO Information name: "},
    };
    for (const auto &[fail, message] : failures) {
        EXPECT_EQ(tarn::runThrowingEntry(env, fail), nullptr);
        EXPECT_EQ(jvm::takeException(env), "java.lang.RuntimeException: " + message);
    }
}

TEST_F(SystemTest, EveryRefusedCallEndsCleanly) {
    for (const std::string &host : {wholeHost, std::string("{}")}) {
        replay::loadHostText(host);
        for (const auto entry : {getComputerSystem, getOperatingSystem}) {
            EXPECT_GT(jvm::refuseEveryCall(env, jvm::Refusal::withException, entry), 5);
        }
    }
}

} // namespace
