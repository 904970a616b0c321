// Every entry over one small host and over a host that has nothing: all that it calls, JNI and platform, in order and
// with every value, against the texts in calls/. Then the same with each of its JNI calls refused once.

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <regex>

#include "platform/replay/Replay.h"
#include "tests/Expected.h"
#include "tests/jvm/Entries.h"
#include "tests/jvm/JniTable.h"
#include "tests/jvm/JvmTest.h"

namespace {

using tests::Lines;

class CallsTest : public jvm::JvmTest {
protected:
    struct Call {
        std::string arguments; // as the text shows them
        std::function<jobject(JNIEnv *)> make;
    };

    /// Holds an entry to the text of its name. An entry that ends `quietly` tells nobody of what Java refused it.
    void holdEntry(const std::string &name, const std::vector<Call> &entryCalls, bool quietly = false) {
        Lines text;
        for (const Call &call : entryCalls) {
            for (const std::string host : {"small", "bare"}) {
                SCOPED_TRACE(name + "(" + call.arguments + ") on the host " + host);
                tests::loadHost(host);
                call.make(env); // classes are initialised, the agent learns the system's name
                jvm::takeException(env);
                text.push_back((text.empty() ? "" : "\n") + name + "(" + call.arguments + ") on the host " + host +
                               ":");
                const std::string thrown = record(call, text);
                EXPECT_GT(jvm::refuseEveryCall(env, jvm::Refusal::withException, call.make, thrown, quietly), 0);
                jvm::refuseEveryCall(env, jvm::Refusal::withNull, call.make, thrown, quietly);
            }
        }
        tests::expectFile("jvm/calls/" + name + ".txt", text);
    }

    /// Adds what the entry calls and how it ends. Answers what it throws.
    std::string record(const Call &call, Lines &text) {
        env->PushLocalFrame(16);
        jobject result = nullptr;
        {
            jvm::JniTable table(env, true);
            result = call.make(env);
            table.takeJournal();
            EXPECT_EQ(table.faults(), Lines{});
            text.insert(text.end(), table.calls.begin(), table.calls.end());
        }
        const std::string thrown = jvm::takeException(env);
        const std::string returned = std::regex_replace(jvm::toText(env, result), std::regex("@[0-9a-f]+"), "");
        text.push_back(thrown.empty() ? "returns " + returned : "throws " + thrown);
        env->PopLocalFrame(nullptr);
        return thrown;
    }

    static auto entry(auto function, auto... arguments) {
        return [=](JNIEnv *e) -> jobject { return function(e, nullptr, arguments...); };
    }
};

TEST_F(CallsTest, HostInformation) {
    holdEntry("getComputerSystem", {{"", entry(HOST_FACT(getComputerSystem))}});
    holdEntry("getOperatingSystem", {{"", entry(HOST_FACT(getOperatingSystem))}});
    holdEntry("enumerateLogicalDiskNames", {{"", entry(HOST_FACT(enumerateLogicalDiskNames))}});
    holdEntry("getLogicalDiskByName", {{"/", entry(HOST_FACT(getLogicalDiskByName), newString("/"))},
                                       {"/tmp", entry(HOST_FACT(getLogicalDiskByName), newString("/tmp"))},
                                       {"null", entry(HOST_FACT(getLogicalDiskByName), newString(nullptr))}});
    holdEntry("enumerateProcessors", {{"", entry(HOST_FACT(enumerateProcessors))}});
    holdEntry("getProcessor", {{"4", entry(HOST_FACT(getProcessor), 4)}, {"7", entry(HOST_FACT(getProcessor), 7)}});
    holdEntry("enumerateCpuUtilizationInfo", {{"", entry(HOST_FACT(enumerateCpuUtilizationInfo))}});
    holdEntry("getCpuUtilizationInfo", {{"0", entry(HOST_FACT(getCpuUtilizationInfo), 0)},
                                        {"1", entry(HOST_FACT(getCpuUtilizationInfo), 1)},
                                        {"9", entry(HOST_FACT(getCpuUtilizationInfo), 9)}});
    holdEntry("enumerateDiskIOInformation", {{"", entry(HOST_FACT(enumerateDiskIOInformation))}});
    holdEntry("getDiskIOInformation", {{"c0t0d0", entry(HOST_FACT(getDiskIOInformation), newString("c0t0d0"))},
                                       {"c9t9d9", entry(HOST_FACT(getDiskIOInformation), newString("c9t9d9"))},
                                       {"null", entry(HOST_FACT(getDiskIOInformation), newString(nullptr))}});
}

TEST_F(CallsTest, Authentication) {
    std::vector<Call> calls;
    const std::tuple<const char *, const char *, bool> cases[] = {{"des", "tide pool", true}, {"des", nullptr, false},
                                                                  {"open", "any", true},      {"locked", "*LK*", false},
                                                                  {"short", "x", false},      {nullptr, "x", false}};
    for (const auto &[user, password, mayPass] : cases) {
        const std::string arguments =
            std::string(user == nullptr ? "null" : user) + ", " + (password == nullptr ? "null" : password);
        calls.push_back({arguments, [=, may = mayPass, name = newString(user), text = newString(password)](JNIEnv *e) {
                             errno = 0;
                             const bool passes = AUTHENTICATOR(authenticate)(e, nullptr, name, text) == JNI_TRUE;
                             EXPECT_LE(passes, may); // whatever is refused
                             return passes ? name : nullptr;
                         }});
    }
    holdEntry("authenticate", calls, true);
    holdEntry("getLibraryBuildDate", {{"", entry(AUTHENTICATOR(getLibraryBuildDate))}});
}

TEST_F(CallsTest, Disks) {
    const jobject receiver = jvm::instanceReceiver(env, jvm::newQueue(env, 10000), "add");
    const jobject drives = make("com/kelvo/tarn/providers/solaris/SolarisDiskDriveProvider", "()V");
    const jobject slices = make("com/kelvo/tarn/providers/solaris/SolarisDiskPartitionProvider", "()V");
    const jstring names[] = {newString("c0t0d0"), newString("c1t0d0"), newString("c0t0d0s2")};
    // enumerateDisks describes and clears the exception.
    holdEntry("enumerateDisks",
              {{"receiver", [&](JNIEnv *e) { return DRIVES(enumerateDisks)(e, drives, receiver), jobject(); }}}, true);
    holdEntry("getDisk", {{"c0t0d0", [&](JNIEnv *e) { return DRIVES(getDisk)(e, drives, names[0]); }},
                          {"c1t0d0", [&](JNIEnv *e) { return DRIVES(getDisk)(e, drives, names[1]); }}});
    holdEntry("enumeratePartitions", {{"receiver", [&](JNIEnv *e) {
                                           return PARTITIONS(enumeratePartitions)(e, slices, receiver), jobject();
                                       }}});
    holdEntry("getPartition", {{"c0t0d0s2", [&](JNIEnv *e) { return PARTITIONS(getPartition)(e, slices, names[2]); }},
                               {"c1t0d0", [&](JNIEnv *e) { return PARTITIONS(getPartition)(e, slices, names[1]); }}});
}

TEST_F(CallsTest, Adapters) {
    const jobject cache = make("com/kelvo/tarn/providers/hba/HbaCache", "(ZZ)V", JNI_TRUE, JNI_FALSE);
    const jobject space = make("com/kelvo/tarn/TrNamespace", "(Ljava/lang/String;)V", newString("root/kelvo"));
    const jobject names =
        make("com/kelvo/tarn/providers/hba/HbaClassNames", "(Lcom/kelvo/tarn/TrNamespace;Z)V", space, JNI_FALSE);
    const jobject lines = make("java/util/ArrayList", "()V");
    holdEntry("fillHbaCache", {{"names", [&](JNIEnv *e) { return HBA_CACHE(fillHbaCache)(e, cache, names); }}});
    holdEntry("testHbaLibrary",
              {{"list", [&](JNIEnv *e) { return HBA_CACHE(testHbaLibrary)(e, cache, lines), jobject(); }}});
}

TEST_F(CallsTest, Arrays) {
    const jstring texts[] = {newString("ctrl-A"), newString("ctrl-B"), newString("KELVO"), newString("ARRAY 9")};
    const jstring none = nullptr;
    holdEntry("scsiInterrogate",
              {{"ctrl-A, ctrl-B, KELVO, ARRAY 9",
                entry(INTERROGATOR(scsiInterrogate), texts[0], texts[1], texts[2], texts[3])},
               {"null, ctrl-B, null, null", entry(INTERROGATOR(scsiInterrogate), none, texts[1], none, none)}});
}

} // namespace
