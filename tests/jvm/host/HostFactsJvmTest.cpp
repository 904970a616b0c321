// What the entries of SolarisNativeMethod and the interrogator's make of hosts that are not as usual.

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <nlohmann/json.hpp>
#include <utility>

#include "common/jni/JniString.h"
#include "native/host/HostInformation.h"
#include "platform/replay/Replay.h"
#include "tests/jvm/Entries.h"
#include "tests/jvm/JniTable.h"
#include "tests/jvm/JvmTest.h"
#include "tests/native/array/ArrayPages.h"

namespace {

using nlohmann::json;
using tests::Lines;

class HostFactsTest : public jvm::JvmTest {};

TEST_F(HostFactsTest, WhatTheSystemDoesNotTellIsBlankAndWhatIsTooLongIsCut) {
    const std::string p(200, 'p'), v(257, 'v'); // longer than what is read of it, and filling its field
    const std::string noMemory = "totalPhysicalKB=0, freePhysicalKB=0, totalSwapKB=0, freeSwapKB=0]";
    const json uname = {{"sysname", v}, {"nodename", v}, {"release", v}, {"version", v}};
    const std::string cut = v.substr(0, 99);
    const struct {
        json host;
        std::string computerSystem, operatingSystem;
    } cases[] = {
        {{{"uname", json::object()}, {"sysinfo", {{"SI_HOSTNAME", "rill"}, {"SI_VERSION", "G"}}}},
         "systemName= , hostName=rill, serialNumber=unknown, platform= , version=G]",
         "name= , hostName= , version= , " + noMemory},
        {{{"kstat", json::array()}, {"sysinfo", {{"SI_PLATFORM", p}}}, {"uname", uname}},
         "systemName= , hostName= , serialNumber=unknown, platform=" + p.substr(0, 127) + ", version= ]",
         "name=" + cut + ", hostName=" + cut + ", version=" + cut + ", " + noMemory},
    };
    for (const auto &[host, computerSystem, operatingSystem] : cases) {
        replay::loadHostText(host.dump());
        EXPECT_EQ(jvm::toText(env, HOST_FACT(getComputerSystem)(env, nullptr)),
                  "SolarisComputerSystem[" + computerSystem);
        EXPECT_EQ(jvm::toText(env, HOST_FACT(getOperatingSystem)(env, nullptr)),
                  "SolarisOperatingSystem[" + operatingSystem);
    }
}

TEST_F(HostFactsTest, NativeFailuresReachJavaAsRuntimeExceptions) {
    const std::pair<std::function<jobject()>, std::string> failures[] = {
        {[]() -> jobject { throw std::bad_alloc(); }, "UNKNOWN EXCEPTION"},
        {[]() -> jobject { throw 42; }, "UNKNOWN EXCEPTION"},
        {[]() -> jobject { throw tarn::DiskIONameNotFound(""); }, "Unable to find Disk IO Information name: "},
    };
    for (const auto &[fail, message] : failures) {
        EXPECT_EQ(tarn::runThrowingEntry(env, fail), nullptr);
        EXPECT_EQ(jvm::takeException(env), "java.lang.RuntimeException: " + message);
    }
}

TEST_F(HostFactsTest, TextReachesJavaAndComesBack) {
    const std::pair<std::string, std::string> texts[] = {
        // with the modified UTF-8 of it
        {"/\x7f\u00e9\u07ff\u0800\ud7ff\uffff", "/\x7f\u00e9\u07ff\u0800\ud7ff\uffff"},
        {"/\U0001f600 data", "/\xed\xa0\xbd\xed\xb8\x80 data"},
        {"\U00010000\U0010ffff", "\xed\xa0\x80\xed\xb0\x80\xed\xaf\xbf\xed\xbf\xbf"},
        {"\xed\xa0\xbdx\xed\xb8\x80", "\xed\xa0\xbdx\xed\xb8\x80"}, // halves of a pair
    };
    for (const auto &[text, inJava] : texts) {
        const jstring string = tarn::jni::newString(env, text.c_str());
        EXPECT_EQ(jvm::toText(env, string), inJava);
        EXPECT_EQ(tarn::JniString(env, string).utf8(), text);
    }
    // Of what is no UTF-8 Java has what the virtual machine makes of it.
    EXPECT_EQ(jvm::toText(env, tarn::jni::newString(env, "/caf\xe9")), "/caf\u00e9");
    for (const char *text :
         {"\U0001f600\xff", "\xf0\x9f\x98", "\xf0\x9f\x98x\x80", "\xf0\x8f\xbf\xbf", "\xf4\x90\x80\x80",
          "\xed\xa0\xbd\U0001f600", "\xc1\xbf\U0001f600", "\xe0\x9f\xbf\U0001f600", "\x80\U0001f600"}) {
        EXPECT_EQ(jvm::toText(env, tarn::jni::newString(env, text)), jvm::toText(env, newString(text)));
    }
    replay::loadHostText(json{{"mnttab", json::array({"d\t/\U0001f600\tufs\trw\t1"})}}.dump());
    const std::string there =
        jvm::toText(env, HOST_FACT(getLogicalDiskByName)(env, nullptr, newString("/\xed\xa0\xbd\xed\xb8\x80")));
    EXPECT_NE(there.find("mountPoint=/\xed\xa0\xbd\xed\xb8\x80,"), std::string::npos) << there;
}

TEST_F(HostFactsTest, AMountThatVanishesIsOneWarning) {
    static std::string hostAfterwards;
    static const JNINativeInterface_ *const real = env->functions;
    JNINativeInterface_ unmounting = *real; // with the first object that is added to a list, another host answers
    unmounting.CallVoidMethodV = [](JNIEnv *e, jobject list, jmethodID method, va_list arguments) {
        replay::loadHostText(hostAfterwards);
        real->CallVoidMethodV(e, list, method, arguments);
    };
    const auto hostWithGone = [](std::size_t gone) {
        Lines mounted(gone + 2, "far:/\t/gone\tnfs\trw\t1");
        mounted.front() = "d0\t/\tufs\trw\t1";
        mounted.back() = "d1\t/var\tufs\trw\t1";
        return json{{"mnttab", mounted}}.dump();
    };
    hostAfterwards = hostWithGone(0);
    replay::loadHostText(hostWithGone(100));
    env->functions = &unmounting;
    {
        const jvm::LocalFrame frame(env);
        const jvm::JniTable table(env);
        const jobject disks = HOST_FACT(enumerateLogicalDiskNames)(env, nullptr);
        EXPECT_EQ(logLines(table.calls), Lines(100, R"(warn "Logical Disk Not Found: /gone")"));
        EXPECT_EQ(table.faults(), Lines{});
        EXPECT_EQ(jvm::elementTexts(env, disks).size(), 2U);
    }
    jvm::refuseEveryCall(env, jvm::Refusal::withException, [&](JNIEnv *e) {
        replay::loadHostText(hostWithGone(1));
        return HOST_FACT(enumerateLogicalDiskNames)(e, nullptr);
    });
    env->functions = real;
}

TEST_F(HostFactsTest, LongListsNeedNoRoomForReferences) {
    json host = {{"sysconf", {{"_SC_NPROCESSORS_CONF", 128}, {"_SC_CPUID_MAX", 127}}}};
    for (int i = 0; i < 128; ++i) {
        const std::string number = std::to_string(i);
        host["processors"].push_back({{"id", i}});
        host["mnttab"].push_back("d\t/" + number + "\tufs\trw\t1");
        host["kstat"].push_back({{"ks_name", "cpu_stat" + number}, {"data", json::object()}});
        host["kstat"].push_back(
            {{"ks_name", "sd"}, {"ks_class", "disk"}, {"ks_type", "KSTAT_TYPE_IO"}, {"data", json::object()}});
    }
    replay::loadHostText(host.dump());
    for (const auto enumerate : {HOST_FACT(enumerateLogicalDiskNames), HOST_FACT(enumerateProcessors),
                                 HOST_FACT(enumerateCpuUtilizationInfo), HOST_FACT(enumerateDiskIOInformation)}) {
        const jvm::LocalFrame frame(env);
        const jvm::JniTable table(env);
        const jobject list = enumerate(env, nullptr);
        EXPECT_EQ(table.faults(), Lines{});
        EXPECT_EQ(jvm::elementTexts(env, list).size(), 128U);
    }
}

TEST_F(HostFactsTest, TheLargestReportFits) {
    const pages::ControllerPages most(448, 100);
    replay::loadHostText(
        pages::describeHost({pages::arrayLun("c3", "ctrl-C", most), pages::arrayLun("c4", "ctrl-D", most)}));
    const std::string report =
        jvm::toText(env, INTERROGATOR(scsiInterrogate)(env, nullptr, newString("ctrl-C"), newString("ctrl-D"),
                                                       newString("KELVO"), newString("ARRAY 9")));
    EXPECT_EQ(report.size(), 74378U);
    EXPECT_EQ(report.substr(report.size() - 10), "     54708");
}

} // namespace
