// Every entry over one small host and over a host that has nothing: all that it calls, JNI and platform, in order and
// with every value, against the texts in calls/; then with each of its JNI calls refused once, with each of its platform
// calls, and with each of its allocations; and over a platform that leaves dirt.

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <nlohmann/json.hpp>
#include <regex>

#include "platform/replay/Replay.h"
#include "tests/Allocations.h"
#include "tests/Expected.h"
#include "tests/jvm/Entries.h"
#include "tests/jvm/JniTable.h"
#include "tests/jvm/JvmTest.h"
#include "tests/jvm/hba/HbaTree.h"

namespace {

using tests::append;
using tests::Lines;
using tests::only;

class EntriesTest : public jvm::JvmTest {
protected:
    struct Entry {
        std::string name, arguments; // as the texts show them
        std::function<jobject(JNIEnv *)> call;
        jobject collection = nullptr; // that the entry puts its answer into, when it returns none
        bool isQuiet = false;         // tells nobody of what Java refused it
        std::string host = "small";   // that has something to tell
    };

    EntriesTest() {
        const auto add = [&](const char *name, const char *arguments, auto function, auto... values) {
            entries.push_back({name, arguments, [=](JNIEnv *e) -> jobject { return function(e, nullptr, values...); }});
        };
        const jstring none = nullptr;
        add("getComputerSystem", "", HOST_FACT(getComputerSystem));
        add("getOperatingSystem", "", HOST_FACT(getOperatingSystem));
        add("enumerateLogicalDiskNames", "", HOST_FACT(enumerateLogicalDiskNames));
        add("getLogicalDiskByName", "/", HOST_FACT(getLogicalDiskByName), newString("/"));
        add("getLogicalDiskByName", "/tmp", HOST_FACT(getLogicalDiskByName), newString("/tmp"));
        add("getLogicalDiskByName", "null", HOST_FACT(getLogicalDiskByName), none);
        add("enumerateProcessors", "", HOST_FACT(enumerateProcessors));
        add("getProcessor", "4", HOST_FACT(getProcessor), 4);
        add("getProcessor", "7", HOST_FACT(getProcessor), 7);
        add("enumerateCpuUtilizationInfo", "", HOST_FACT(enumerateCpuUtilizationInfo));
        add("getCpuUtilizationInfo", "0", HOST_FACT(getCpuUtilizationInfo), 0);
        add("getCpuUtilizationInfo", "1", HOST_FACT(getCpuUtilizationInfo), 1);
        add("getCpuUtilizationInfo", "9", HOST_FACT(getCpuUtilizationInfo), 9);
        add("enumerateDiskIOInformation", "", HOST_FACT(enumerateDiskIOInformation));
        add("getDiskIOInformation", "c0t0d0", HOST_FACT(getDiskIOInformation), newString("c0t0d0"));
        add("getDiskIOInformation", "c9t9d9", HOST_FACT(getDiskIOInformation), newString("c9t9d9"));
        add("getDiskIOInformation", "null", HOST_FACT(getDiskIOInformation), none);
        const jstring controller = newString("ctrl-B");
        add("scsiInterrogate", "ctrl-A, ctrl-B, KELVO, ARRAY 9", INTERROGATOR(scsiInterrogate), newString("ctrl-A"),
            controller, newString("KELVO"), newString("ARRAY 9"));
        add("scsiInterrogate", "ctrl-C, ctrl-B, KELVO, ARRAY 8", INTERROGATOR(scsiInterrogate), newString("ctrl-C"),
            controller, newString("KELVO"), newString("ARRAY 8"));
        add("scsiInterrogate", "null, ctrl-B, null, null", INTERROGATOR(scsiInterrogate), none, controller, none, none);
        add("getLibraryBuildDate", "", AUTHENTICATOR(getLibraryBuildDate));

        const std::tuple<const char *, const char *, bool> users[] = {
            {"des", "tide pool", true}, {"des", nullptr, false}, {"open", "any", true},
            {"locked", "*LK*", false},  {"short", "x", false},   {nullptr, "x", false}};
        for (const auto &[user, password, mayPass] : users) {
            const auto authenticate = [=, may = mayPass, name = newString(user),
                                       text = newString(password)](JNIEnv *e) {
                errno = 0;
                const bool passes = AUTHENTICATOR(authenticate)(e, nullptr, name, text) == JNI_TRUE;
                EXPECT_LE(passes, may); // whatever is refused
                return passes ? name : nullptr;
            };
            const auto shown = [](const char *text) { return text == nullptr ? std::string("null") : text; };
            entries.push_back({"authenticate", shown(user) + ", " + shown(password), authenticate, nullptr, true});
        }

        const jobject queue = jvm::newQueue(env, 10000), receiver = jvm::instanceReceiver(env, queue, "add");
        const jobject drives = make("com/kelvo/tarn/providers/solaris/SolarisDiskDriveProvider", "()V");
        const jobject slices = make("com/kelvo/tarn/providers/solaris/SolarisDiskPartitionProvider", "()V");
        const auto get = [&](const char *name, const char *argument, jobject provider, auto function) {
            entries.push_back({name, argument, [=, text = newString(argument)](JNIEnv *e) -> jobject {
                                   return function(e, provider, text);
                               }});
        };
        const auto fill = [&](const char *name, auto function, jobject self, jobject into, jobject collection) {
            // enumerateDisks describes and clears the exception.
            entries.push_back({name, "", [=](JNIEnv *e) { return function(e, self, into), jobject(); }, collection,
                               name == std::string("enumerateDisks")});
        };
        fill("enumerateDisks", DRIVES(enumerateDisks), drives, receiver, queue);
        get("getDisk", "c0t0d0", drives, DRIVES(getDisk));
        get("getDisk", "c1t0d0", drives, DRIVES(getDisk));
        fill("enumeratePartitions", PARTITIONS(enumeratePartitions), slices, receiver, queue);
        get("getPartition", "c0t0d0s0", slices, PARTITIONS(getPartition));
        get("getPartition", "c1t0d0", slices, PARTITIONS(getPartition));

        const jobject cache = make("com/kelvo/tarn/providers/hba/HbaCache", "(ZZ)V", JNI_TRUE, JNI_FALSE);
        const jobject space = make("com/kelvo/tarn/TrNamespace", "(Ljava/lang/String;)V", newString("root/kelvo"));
        const jobject names =
            make("com/kelvo/tarn/providers/hba/HbaClassNames", "(Lcom/kelvo/tarn/TrNamespace;Z)V", space, JNI_FALSE);
        entries.push_back({"fillHbaCache", "", [=](JNIEnv *e) { return HBA_CACHE(fillHbaCache)(e, cache, names); }});
        const jobject list = make("java/util/ArrayList", "()V");
        fill("testHbaLibrary", HBA_CACHE(testHbaLibrary), cache, list, list);

        const auto ofInventory = [&](const char *name, const char *arguments, const auto &call) {
            entries.push_back({name, arguments, call, nullptr, false, "inventory"});
        };
        ofInventory("readIdentities", "", [](JNIEnv *e) -> jobject { return INVENTORY(readIdentities)(e, nullptr); });
        ofInventory("readMounts", "null, 60000",
                    [](JNIEnv *e) -> jobject { return INVENTORY(readMounts)(e, nullptr, nullptr, 60000); });
        ofInventory("readMounts", "/tmp, 60000", [name = newString("/tmp")](JNIEnv *e) -> jobject {
            return INVENTORY(readMounts)(e, nullptr, name, 60000);
        });
        ofInventory("readOtherKinds", "", [](JNIEnv *e) -> jobject { return INVENTORY(readOtherKinds)(e, nullptr); });
        ofInventory("sampler", "open, read, close", [](JNIEnv *e) {
            const jlong sampler = SAMPLER(open)(e, nullptr);
            const jobject sample = sampler == 0 ? nullptr : SAMPLER(read)(e, nullptr, sampler);
            if (sampler != 0) {
                SAMPLER(close)(e, nullptr, sampler);
            }
            return sample;
        });
        tests::loadHost("inventory");
        INVENTORY(readMounts)(env, nullptr, nullptr, 60000); // what is kept for the process is made
    }

    /// What the entry has answered, in lines. A collection is empty afterwards.
    Lines told(const Entry &entry, jobject result) const {
        const jvm::LocalFrame frame(env);
        if (entry.collection != nullptr) {
            result = jvm::call(env, entry.collection, "toArray", "()[Ljava/lang/Object;");
            const jclass cls = env->GetObjectClass(entry.collection);
            env->CallVoidMethod(entry.collection, env->GetMethodID(cls, "clear", "()V"));
            env->ExceptionCheck();
        }
        const auto isA = [&](jobject object, const char *name) {
            return env->IsInstanceOf(object, env->FindClass(name)) == JNI_TRUE;
        };
        if (result != nullptr && isA(result, "[Lcom/kelvo/tarn/providers/hba/HbaCache$Hba;")) {
            return jvm::HbaTree(env, static_cast<jobjectArray>(result)).lines;
        }
        if (result != nullptr && isA(result, "java/util/Vector")) {
            return jvm::elementTexts(env, result);
        }
        const bool isArray = result != nullptr && isA(result, "[Ljava/lang/Object;");
        Lines all;
        for (jsize i = 0; i < (isArray ? env->GetArrayLength(static_cast<jobjectArray>(result)) : 1); ++i) {
            const jvm::LocalFrame ofOne(env);
            const jobject one = isArray ? env->GetObjectArrayElement(static_cast<jobjectArray>(result), i) : result;
            const bool isInstance = one != nullptr && isA(one, "com/kelvo/tarn/TrInstance");
            if (entry.host == "inventory") {
                append(all, fieldsOf(one));
            } else {
                all.push_back(isInstance ? jvm::instanceText(env, one) : jvm::toText(env, one));
            }
        }
        return all;
    }

    /// Its fields that are not null, as JSON, with a line for each element of a list.
    Lines fieldsOf(jobject object) const {
        const jobject gson = make("com/google/gson/Gson", "()V");
        const jmethodID toJson =
            env->GetMethodID(env->GetObjectClass(gson), "toJson", "(Ljava/lang/Object;)Ljava/lang/String;");
        const jobject text = env->CallObjectMethod(gson, toJson, object);
        env->ExceptionCheck();
        static const std::regex begins(R"(([\[,])(?=\{|"ports"))");
        return tests::linesOf(std::istringstream(std::regex_replace(jvm::toText(env, text), begins, "$1\n")));
    }

    /// Runs the entry with the n-th platform call refused, or the n-th allocation, or none. Nothing may be leaked. Answers
    /// with what it tells, throws and, when it is to be noted, logs; its calls, with the platform's, are in `calls` then.
    Lines run(const Entry &entry, int refusedCall, bool noteLog, int refusedAllocation = 0) {
        const jvm::LocalFrame frame(env);
        jobject result = nullptr;
        replay::refuseCall(refusedCall);
        {
            jvm::JniTable table(env, true);
            {
                const tests::RefusedAllocation allocation(refusedAllocation);
                result = entry.call(env);
                allocations = allocation.made();
                EXPECT_EQ(allocation.kept(), 0);
            }
            table.takeJournal();
            EXPECT_EQ(table.faults(), Lines{});
            calls = table.calls;
        }
        EXPECT_TRUE(replay::stopRefusing() || refusedCall > 0);
        const std::string thrown = jvm::takeException(env);
        EXPECT_TRUE(thrown.empty() || result == nullptr);
        Lines all = told(entry, result);
        all.resize(all.size() + (thrown.empty() ? 0 : 1), "throws " + thrown);
        for (const std::string &line : noteLog ? logLines(calls) : Lines{}) {
            all.push_back("logs " + line);
        }
        Lines journal = tests::beginning(calls, {"    "});
        std::ranges::for_each(journal, [](std::string &line) { line.erase(0, 4); });
        EXPECT_EQ(jvm::unreleased(journal), Lines{});
        return all;
    }

    std::vector<Entry> entries;
    Lines calls;         // of the latest run
    int allocations = 0; // that it made, the refused one included
};

TEST_F(EntriesTest, CallInOrderAndSurviveWhateverJavaRefuses) {
    Lines text;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const Entry &entry = entries[i];
        for (const std::string &host : {entry.host, std::string("bare")}) {
            const std::string title = entry.name + "(" + entry.arguments + ") on the host " + host + ":";
            SCOPED_TRACE(title);
            tests::loadHost(host);
            run(entry, 0, false); // classes are initialised, the agent learns the system's name
            const Lines answer = run(entry, 0, false);
            append(text, {(text.empty() ? "" : "\n") + title});
            append(text, calls);
            append(text, {"answers:"});
            append(text, answer);
            const bool throws = !answer.empty() && answer.back().starts_with("throws ");
            const std::string thrown = throws ? answer.back().substr(7) : "";
            for (const auto refusal : {jvm::Refusal::withException, jvm::Refusal::withNull}) {
                const int refusals = jvm::refuseEveryCall(env, refusal, entry.call, thrown, entry.isQuiet);
                EXPECT_TRUE(refusals > 0 || refusal == jvm::Refusal::withNull);
            }
        }
        if (i + 1 == entries.size() || entries[i + 1].name != entry.name) {
            tests::expectFile("jvm/entries/calls/" + entry.name + ".txt", std::exchange(text, {}));
        }
    }
}

/// The text has what each entry tells, and after each refused call what of it is gone (-) and stands there instead (+).
TEST_F(EntriesTest, LackOneThingForEachCallThatThePlatformRefuses) {
    Lines text;
    for (const Entry &entry : entries) {
        tests::loadHost(entry.host);
        const std::string title = entry.name + "(" + entry.arguments + "):";
        SCOPED_TRACE(title);
        const Lines whole = run(entry, 0, true);
        append(text, {(text.empty() ? "" : "\n") + title});
        append(text, whole);
        for (int n = 1;; ++n) {
            const Lines all = run(entry, n, true);
            const auto refused = std::ranges::find_if(calls, [](auto &line) { return line.ends_with(" refused"); });
            if (refused == calls.end()) {
                EXPECT_EQ(all, whole) << "after each call was refused once";
                break;
            }
            append(text, {refused->substr(2)});
            append(text, only("  - ", whole, all));
            append(text, only("  + ", all, whole));
        }
    }
    tests::expectFile("jvm/entries/platform-refusals.txt", text);
}

/// The text has, for each entry, what may become of its answer: what it throws, or what is gone (-) and what stands there
/// instead (+).
TEST_F(EntriesTest, ThrowOrLackSomethingForEachAllocationThatIsRefused) {
    Lines text;
    const auto refuseEach = [&](const Entry &entry, const std::string &host) {
        const std::string title = entry.name + "(" + entry.arguments + ") on the host " + host + ":";
        SCOPED_TRACE(title);
        run(entry, 0, true);
        const Lines whole = run(entry, 0, true);
        const int all = allocations;
        Lines ways;
        for (int n = 1; n <= all; ++n) {
            SCOPED_TRACE("with allocation " + std::to_string(n) + " refused");
            const Lines told = run(entry, 0, true, n);
            EXPECT_GE(allocations, n);
            const bool onlyThrows = told.size() > 1 && told[0] == "null" && told[1].starts_with("throws ");
            Lines way = onlyThrows ? Lines{} : only("  - ", whole, told);
            append(way, onlyThrows ? Lines{"  " + told[1]} : only("  + ", told, whole));
            if (std::ranges::count(ways, tests::joined(way, "\n")) == 0) {
                ways.push_back(tests::joined(way, "\n"));
            }
            EXPECT_EQ(run(entry, 0, true), whole);
        }
        append(text, all == 0 ? Lines{} : Lines{title, tests::joined(ways, "\n  or\n")});
    };
    for (const bool isBare : {false, true}) {
        for (const Entry &entry : entries) {
            const std::string host = isBare ? "bare" : entry.host;
            tests::loadHost(host);
            refuseEach(entry, host);
        }
    }
    nlohmann::json adapter = {{"name", "a"}};
    adapter["targetMapping"] =
        nlohmann::json(513, nlohmann::json::object()); // more than there is room for without an allocation
    replay::loadHostText(nlohmann::json{{"hba", {{"adapters", nlohmann::json::array({adapter})}}}}.dump());
    refuseEach(*std::ranges::find(entries, "fillHbaCache", &Entry::name), "with 513 mappings");
    tests::expectFile("jvm/entries/allocation-refusals.txt", text);
}

TEST_F(EntriesTest, TellTheSameOverAPlatformThatLeavesDirt) {
    const auto interrogate = [names = std::vector{newString("1T54412345"), newString("1T54412346"), newString("SUN"),
                                                  newString("CSM200_R")}](JNIEnv *e) {
        return INTERROGATOR(scsiInterrogate)(e, nullptr, names[0], names[1], names[2], names[3]);
    };
    entries.push_back({"scsiInterrogate", "the array of rill", interrogate});
    for (const std::string host :
         {"small", "inventory", "bare", "two-adapters", "target-mappings", "../../hosts/rill"}) {
        tests::loadHost(host);
        for (const Entry &entry : entries) {
            SCOPED_TRACE(entry.name + "(" + entry.arguments + ") on the host " + host);
            const Lines clean = run(entry, 0, true);
            replay::leaveDirt(true);
            EXPECT_EQ(run(entry, 0, true), clean);
            replay::leaveDirt(false);
        }
    }
}

} // namespace
