// Every entry over one small host, once for each of its platform calls with that call refused. The text beside this has
// what each entry tells, and after each refused call what of it is gone (-) and what stands there instead (+).

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "platform/replay/Replay.h"
#include "tests/Expected.h"
#include "tests/jvm/Entries.h"
#include "tests/jvm/HbaTree.h"
#include "tests/jvm/JniTable.h"
#include "tests/jvm/JvmTest.h"

namespace {

using tests::Lines;

/// The lines that stand more often here than there, each after the sign.
Lines only(const std::string &sign, const Lines &here, Lines there) {
    Lines all;
    for (const std::string &line : here) {
        if (const auto same = std::ranges::find(there, line); same != there.end()) {
            there.erase(same);
        } else {
            all.push_back(sign + line);
        }
    }
    return all;
}

class PlatformRefusalsTest : public jvm::JvmTest {
protected:
    using Enter = std::function<jobject()>;
    using Tell = std::function<Lines(jobject)>; // what the entry answered

    /// The elements of a collection, which is empty afterwards.
    Lines taken(jobject collection) const {
        Lines all;
        const auto array = static_cast<jobjectArray>(jvm::call(env, collection, "toArray", "()[Ljava/lang/Object;"));
        const jclass instance = env->FindClass("com/kelvo/tarn/TrInstance");
        for (jsize i = 0; i < env->GetArrayLength(array); ++i) {
            const jobject element = env->GetObjectArrayElement(array, i);
            all.push_back(env->IsInstanceOf(element, instance) == JNI_TRUE ? jvm::instanceText(env, element)
                                                                           : jvm::toText(env, element));
        }
        env->CallVoidMethod(collection, env->GetMethodID(env->GetObjectClass(collection), "clear", "()V"));
        return all;
    }

    /// Runs the entry with the n-th platform call refused, or none, and answers with what it tells, throws and logs.
    /// Nothing may be leaked. `refused` becomes the call's line in the journal; empty when there were fewer calls.
    Lines run(const Enter &enter, const Tell &tell, int n, std::string &refused) const {
        env->PushLocalFrame(128);
        jobject result = nullptr;
        Lines log;
        replay::startJournal();
        replay::refuseCall(n);
        {
            jvm::JniTable table(env);
            result = enter();
            log = tests::beginning(table.calls, {"CallStaticVoidMethod "});
            EXPECT_EQ(table.faults(), Lines{});
        }
        const bool hasRefused = replay::stopRefusing() && n > 0;
        const Lines journal = replay::stopJournal();
        const auto line = std::ranges::find_if(journal, [](auto &each) { return each.ends_with(" refused"); });
        refused = line == journal.end() ? "" : *line;
        EXPECT_EQ(!refused.empty(), hasRefused);
        EXPECT_EQ(jvm::unreleased(journal), Lines{});
        const std::string thrown = jvm::takeException(env);
        Lines told = tell(result);
        told.resize(told.size() + (thrown.empty() ? 0 : 1), "throws " + thrown);
        for (const std::string &logged : log) {
            told.push_back("logs " + logged.substr(logged.find(' ', logged.find(' ') + 1) + 1));
        }
        env->PopLocalFrame(nullptr);
        return told;
    }

    void refuseEach(const std::string &name, const Enter &enter, const Tell &tell) {
        SCOPED_TRACE(name);
        std::string refused;
        const Lines whole = run(enter, tell, 0, refused);
        text.push_back((text.empty() ? "" : "\n") + name + ":");
        text.insert(text.end(), whole.begin(), whole.end());
        for (int n = 1;; ++n) {
            const Lines told = run(enter, tell, n, refused);
            if (refused.empty()) {
                EXPECT_EQ(told, whole) << "after each call was refused once";
                return;
            }
            text.push_back("  " + refused);
            for (const Lines &changed : {only("  - ", whole, told), only("  + ", told, whole)}) {
                text.insert(text.end(), changed.begin(), changed.end());
            }
        }
    }

    Lines text;
};

TEST_F(PlatformRefusalsTest, EachIsOneThingThatCannotBeHad) {
    tests::loadHost("small");
    const Tell object = [&](jobject told) { return Lines{jvm::toText(env, told)}; };
    const Tell instance = [&](jobject told) { return Lines{jvm::instanceText(env, told)}; };
    const Tell elements = [&](jobject told) { return told == nullptr ? Lines{"null"} : jvm::elementTexts(env, told); };
    const auto hold = [&](const std::string &name, const Tell &tell, auto entry, auto... arguments) {
        refuseEach(
            name, [&]() -> jobject { return entry(env, nullptr, arguments...); }, tell);
    };
    hold("getComputerSystem", object, HOST_FACT(getComputerSystem));
    hold("getOperatingSystem", object, HOST_FACT(getOperatingSystem));
    hold("enumerateLogicalDiskNames", elements, HOST_FACT(enumerateLogicalDiskNames));
    hold("getLogicalDiskByName", object, HOST_FACT(getLogicalDiskByName), newString("/"));
    hold("enumerateProcessors", elements, HOST_FACT(enumerateProcessors));
    hold("getProcessor", object, HOST_FACT(getProcessor), 4);
    hold("enumerateCpuUtilizationInfo", elements, HOST_FACT(enumerateCpuUtilizationInfo));
    hold("getCpuUtilizationInfo", object, HOST_FACT(getCpuUtilizationInfo), 0);
    hold("enumerateDiskIOInformation", elements, HOST_FACT(enumerateDiskIOInformation));
    hold("getDiskIOInformation", object, HOST_FACT(getDiskIOInformation), newString("c0t0d0"));
    hold("scsiInterrogate", object, INTERROGATOR(scsiInterrogate), newString("ctrl-A"), newString("ctrl-B"),
         newString("KELVO"), newString("ARRAY 9"));

    const jstring user = newString("des"), password = newString("tide pool");
    const auto authenticate = [&] {
        return AUTHENTICATOR(authenticate)(env, nullptr, user, password) ? user : nullptr;
    };
    refuseEach("authenticate", authenticate, object);

    const jobject queue = jvm::newQueue(env, 100), receiver = jvm::instanceReceiver(env, queue, "add");
    const Tell received = [&](jobject) { return taken(queue); };
    const jobject drives = make("com/kelvo/tarn/providers/solaris/SolarisDiskDriveProvider", "()V");
    const jobject slices = make("com/kelvo/tarn/providers/solaris/SolarisDiskPartitionProvider", "()V");
    const jstring disk = newString("c0t0d0"), slice = newString("c0t0d0s0");
    refuseEach(
        "enumerateDisks", [&] { return DRIVES(enumerateDisks)(env, drives, receiver), nullptr; }, received);
    refuseEach(
        "getDisk", [&] { return DRIVES(getDisk)(env, drives, disk); }, instance);
    refuseEach(
        "enumeratePartitions", [&] { return PARTITIONS(enumeratePartitions)(env, slices, receiver), nullptr; },
        received);
    refuseEach(
        "getPartition", [&] { return PARTITIONS(getPartition)(env, slices, slice); }, instance);

    const jobject cache = make("com/kelvo/tarn/providers/hba/HbaCache", "(ZZ)V", JNI_FALSE, JNI_FALSE);
    const jobject space = make("com/kelvo/tarn/TrNamespace", "(Ljava/lang/String;)V", newString("root/kelvo"));
    const jobject names =
        make("com/kelvo/tarn/providers/hba/HbaClassNames", "(Lcom/kelvo/tarn/TrNamespace;Z)V", space, JNI_FALSE);
    const jobject list = make("java/util/ArrayList", "()V");
    const Tell tree = [&](jobject filled) { return jvm::HbaTree(env, static_cast<jobjectArray>(filled)).lines; };
    refuseEach(
        "fillHbaCache", [&] { return HBA_CACHE(fillHbaCache)(env, cache, names); }, tree);
    refuseEach(
        "testHbaLibrary", [&] { return HBA_CACHE(testHbaLibrary)(env, cache, list), nullptr; },
        [&](jobject) { return taken(list); });
    tests::expectFile("jvm/platform-refusals.txt", text);
}

} // namespace
