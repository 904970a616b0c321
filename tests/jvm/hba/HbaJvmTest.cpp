// The Fibre Channel cache and the self-test, from the native entry points to what Java gets.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <future>
#include <nlohmann/json.hpp>
#include <regex>

#include "platform/replay/Replay.h"
#include "tests/Expected.h"
#include "tests/WrappedCalls.h"
#include "tests/jvm/Entries.h"
#include "tests/jvm/JniTable.h"
#include "tests/jvm/JvmTest.h"
#include "tests/jvm/hba/HbaTree.h"

namespace {

using nlohmann::json;
using tests::append;
using tests::beginning;
using tests::Lines;
using tests::only;
using tests::wrapped;

// ---- Hosts ----------------------------------------------------------------------------------------------------------

json readHost(const std::string &name) {
    return json::parse(std::ifstream(TARN_TESTS "/hosts/" + name + ".json"));
}

/// Two adapters that see the same remote ports, with one value put where the JSON pointer says: by default something to
/// complain about.
json twoAdapters(const std::string &where = "/0/ports/1/status/GetPortStatistics", const json &value = 2) {
    json adapters = readHost("two-adapters")["hba"]["adapters"];
    adapters[json::json_pointer(where)] = value;
    return adapters;
}

void loadAdapters(const json &adapters) {
    json host = readHost("two-adapters");
    host["hba"]["adapters"] = adapters;
    replay::loadHostText(host.dump());
}

void loadOneAdapter(const json &discovered, const json &mapping) {
    const json port{{"discovered", discovered}};
    loadAdapters(json::array({{{"name", "hba-0"}, {"ports", json::array({port})}, {"targetMapping", mapping}}}));
}

const std::string wwnA = "50060e8000c3a2b1";

json remotePort(const std::string &wwn) {
    return {{"attributes", {{"PortWWN", wwn}}}};
}

json target(const std::string &wwn, const json &scsiId = json::object(), const json &lun = 0) {
    return {{"ScsiId", scsiId}, {"FcpId", {{"PortWWN", wwn}, {"FcpLun", lun}}}};
}

/// So many of an adapter, each with a name of its own.
std::vector<json> manyAdapters(int count, const json &adapter) {
    std::vector<json> adapters(static_cast<std::size_t>(count), adapter);
    for (json &each : adapters) {
        each["name"] = "hba-" + std::to_string(--count);
    }
    return adapters;
}

// ---- What the calls leave -------------------------------------------------------------------------------------------

/// The lines that begin with the text, without it and one after another.
std::string joined(const Lines &lines, const std::string &start = "", const std::string &separator = ", ") {
    std::string all;
    for (const std::string &line : beginning(lines, {start})) {
        all += (all.empty() ? "" : separator) + line.substr(start.size());
    }
    return all;
}

class HbaTest : public jvm::JvmTest {
protected:
    HbaTest() {
        choose(false, false, false);
    }

    /// What the agent's objects will answer.
    void choose(bool keep, bool leadville, bool force) {
        cache = make("com/kelvo/tarn/providers/hba/HbaCache", "(ZZ)V", leadville, force);
        const jobject space =
            make("com/kelvo/tarn/TrNamespace", "(Ljava/lang/String;)V", env->NewStringUTF("root/kelvo"));
        names = make("com/kelvo/tarn/providers/hba/HbaClassNames", "(Lcom/kelvo/tarn/TrNamespace;Z)V", space, keep);
    }

    jobjectArray enterFill(JNIEnv *onThread) {
        return HBA_CACHE(fillHbaCache)(onThread, cache, names);
    }

    void enterTest(jobject lines) {
        HBA_CACHE(testHbaLibrary)(env, cache, lines);
    }

    /// Runs native code over the current host and keeps what it called.
    void watch(const std::function<void()> &native) {
        replay::startJournal();
        {
            jvm::JniTable table(env);
            native();
            calls = table.calls;
            EXPECT_EQ(table.faults(), Lines{});
        }
        journal = replay::stopJournal();
        EXPECT_EQ(jvm::unreleased(journal), neverOpened);
        EXPECT_EQ(jvm::takeException(env), "");
    }

    jvm::HbaTree fill() {
        const jvm::LocalFrame frame(env);
        jobjectArray filled = nullptr;
        watch([&] { filled = enterFill(env); });
        return jvm::HbaTree(env, filled);
    }

    Lines selfTest() {
        const jvm::LocalFrame frame(env);
        const jobject lines = make("java/util/ArrayList", "()V");
        watch([&] { enterTest(lines); });
        return jvm::elementTexts(env, lines);
    }

    jobject cache, names;
    Lines calls, journal, neverOpened; // the last: what the journal shows of attempts that failed
};

// ---- Instances ------------------------------------------------------------------------------------------------------

TEST_F(HbaTest, InstancesTellWhatTheLibrarySays) {
    loadAdapters(twoAdapters());
    tests::expectFile("jvm/hba/two-adapters.txt", fill().lines);
}

TEST_F(HbaTest, FieldsFullToTheirLastByteLoseIt) {
    const Lines fields{"Manufacturer",     "SerialNumber",    "Model",         "ModelDescription",
                       "NodeSymbolicName", "HardwareVersion", "DriverVersion", "OptionROMVersion",
                       "FirmwareVersion",  "DriverName"};
    json full{{"name", "hba-100"}};
    std::string expected = "0000000000000000:100|Kelvo_HostBusAdapter|rill|Kelvo_ComputerSystem";
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const std::string text(i < 2 ? 64 : 256, static_cast<char>('a' + i));
        full["attributes"][fields[i]] = text;
        expected += (i == 4 ? "|0000000000000000|" : i == 9 ? "|0|" : "|") + text.substr(1);
    }
    full["ports"] = std::vector<json>(10, json::object());
    const std::string symbolicName(256, 's'), device(256, 'd');
    full["ports"][9]["attributes"] = {{"PortSymbolicName", symbolicName}, {"OSDeviceName", device}};
    std::vector<json> adapters = manyAdapters(100, json::object());
    adapters.push_back(full);
    loadAdapters(adapters);
    const jvm::HbaTree tree = fill();
    EXPECT_EQ(tree.values("100/adapter"), expected + "|Adapter 100|Adapter 100|Adapter 100");
    const std::string port = tree.values("100/9/port");
    EXPECT_NE(port.find("|" + symbolicName.substr(1) + "|" + device.substr(1) + "|"), std::string::npos) << port;
    EXPECT_TRUE(port.ends_with("|Kelvo_HbaPort|Adapter 100 Port 9|Adapter 100 Port 9|Adapter 100 Port 9|9")) << port;
    choose(false, true, false);
    const std::string disk(244, 'n');
    loadOneAdapter(json::array({remotePort(wwnA)}),
                   json::array({target(wwnA, {{"OSDeviceName", "/dev/rdsk/" + disk + "s2"}})}));
    const std::string mapping = fill().values("0/0/0/0/mapping");
    EXPECT_NE(mapping.find("|" + disk + "|"), std::string::npos) << mapping;
}

TEST_F(HbaTest, CodesAndNamesBecomeWhatJavaKnows) {
    tests::loadHost("port-codes");
    tests::expectFile("jvm/hba/port-codes.txt", fill().lines);
    // As the agent answers: keep the device's name, cut it by the heuristic where it fits, or everywhere. The agent is
    // asked anew for every entry, and only as far as its answers matter.
    Lines text;
    tests::loadHost("target-mappings");
    for (const auto &[keep, leadville, force] :
         {std::tuple(true, true, true), {false, true, false}, {false, false, true}, {false, false, false}}) {
        choose(keep, leadville, force);
        text.push_back("keep " + std::to_string(keep) + " heuristic " + std::to_string(leadville) + " forced " +
                       std::to_string(force));
        for (const std::string &line : beginning(fill().lines, {"0/0/0/"})) {
            text.push_back(line);
        }
        text.push_back(std::to_string(beginning(calls, {"CallBooleanMethod"}).size()) + " questions");
    }
    tests::expectFile("jvm/hba/target-mappings.txt", text);
}

// ---- The walk -------------------------------------------------------------------------------------------------------

/// The text has what is gone (-) and stands there instead (+) when something of the host is as it should not be.
TEST_F(HbaTest, EveryFailureLeavesItsLineAndItsHole) {
    replay::loadHostText("{}"); // no library
    EXPECT_EQ(jvm::HbaTree(env, enterFill(env)).lines, Lines{});
    loadAdapters(twoAdapters("/0/openFailures", 0));
    const Lines whole = fill().shape();
    const std::pair<std::string, json> faults[] = {
        {"/0/openFailures", 1},
        {"/0/openFailures", 2},
        {"/0", {{"name", "h\tba\u0001"}, {"openFailures", 2}}},
        {"/0/status/GetAdapterName", 3},
        {"/0/status/GetAdapterAttributes", 99},
        {"/0/status/GetFcpTargetMapping", 2},
        {"/0/status/GetFcpTargetMapping", {7, 7}},
        {"/0/NumberOfEntries", 4294967295},
        {"/0/attributes/NumberOfPorts", 4097},
        {"/0/ports/0/status/GetAdapterPortAttributes", 1},
        {"/0/ports/0/status/GetPortStatistics", 2},
        {"/0/ports/1/attributes/NumberofDiscoveredPorts", 65537},
        {"/0/ports/0/discovered/0/status/GetDiscoveredPortAttributes", 8},
        {"", std::vector<json>(4096, {{"status", {{"GetAdapterName", 1}}}})},
    };
    Lines text;
    for (const auto &[where, value] : faults) {
        loadAdapters(twoAdapters(where, value));
        neverOpened = where == "/0"                     ? Lines{"HBA_OpenAdapter h left open"}
                      : where.ends_with("openFailures") ? Lines{"HBA_OpenAdapter hba-0 left open"}
                                                        : Lines{};
        wrapped.moreAdapters = where.empty() ? 1 : 0; // than a description may have
        const Lines shape = fill().shape();
        wrapped.moreAdapters = 0;
        append(text, {where + " " + value.dump().substr(0, 80)});
        append(text, only("  - ", whole, shape));
        append(text, only("  + ", shape, whole));
        append(text, only("  ", logLines(calls), {}));
    }
    tests::expectFile("jvm/hba/adapters-that-fail.txt", text);
}

// ---- Refusals -------------------------------------------------------------------------------------------------------

TEST_F(HbaTest, WhatJavaRefusesIsLeftOut) {
    json adapter = twoAdapters("/1/targetMapping", json::array({target(wwnA)}))[1];
    adapter["ports"].insert(adapter["ports"].begin(), json{{"status", {{"GetAdapterPortAttributes", 1}}}});
    loadAdapters(json::array({adapter}));
    const Lines whole = fill().lines;
    Lines survived; // the refusals, with what they change
    std::string refused = "none";
    for (int n = 1; !refused.empty(); ++n) {
        const jvm::LocalFrame frame(env);
        jobjectArray filled = nullptr;
        {
            jvm::JniTable table(env);
            table.refuse(n);
            filled = enterFill(env);
            refused = table.refusedLine();
        }
        if (jvm::takeException(env).empty() && !refused.empty()) {
            survived.push_back(refused.substr(0, refused.find(' ', refused.starts_with("Push") ? 15 : 0)));
            for (const std::string &line : jvm::HbaTree(env, filled).lines) {
                survived.back() += std::ranges::count(whole, line) == 0 ? " -> " + line : "";
            }
        }
    }
    EXPECT_EQ(std::regex_replace(joined(survived), std::regex("(null\\|){16}"), "nulls|"),
              "PushLocalFrame 48 -> 0/adapter null, GetMethodID, CallObjectMethod, FindClass, "
              "GetStaticMethodID, CallStaticVoidMethod, PushLocalFrame 20 -> 0/1/port null, "
              "PushLocalFrame 44 -> 0/1/port nulls|Kelvo_HbaPort|Adapter 0 Port 1|Adapter 0 Port 1|Adapter 0 Port 1|1, "
              "PushLocalFrame 44 -> 0/1/statistics null, PushLocalFrame 9 -> 0/1/0/remote null, PushLocalFrame 44 -> "
              "0/1/0/remote nulls|Kelvo_HbaDiscoveredPort|null|null|null|null, PushLocalFrame 26 -> 0/1/0/0 null");
}

TEST_F(HbaTest, TheVirtualMachinesOwnErrorsEndTheWalk) {
    const json port{{"status", {{"GetPortStatistics", 2}}}};
    loadAdapters(manyAdapters(100, {{"ports", {port, port}}}));
    // Where room for references is refused, or what a line needs. No number of lines takes any room.
    for (const auto &[start, n, opened] : {std::tuple("EnsureLocalCapacity 2000", 1, 90U),
                                           {"PushLocalFrame 5", 150, 75U},
                                           {"GetStringUTFChars", 1, 1U},
                                           {"NewStringUTF \"HBA_GetPortStatistics", 3, 2U}}) {
        SCOPED_TRACE(start);
        const jvm::LocalFrame frame(env);
        replay::startJournal();
        {
            jvm::JniTable table(env);
            table.refuse(n, jvm::Refusal::withException, start);
            EXPECT_EQ(enterFill(env), nullptr);
            EXPECT_TRUE(table.refusedLine().starts_with(start)) << table.refusedLine();
            EXPECT_EQ(table.faults(), Lines{});
        }
        const Lines journalled = replay::stopJournal();
        EXPECT_EQ(jvm::unreleased(journalled), Lines{});
        EXPECT_EQ(beginning(journalled, {"HBA_OpenAdapter"}).size(), opened);
        EXPECT_EQ(jvm::takeException(env), "java.lang.OutOfMemoryError: refused");
    }
}

TEST_F(HbaTest, NullArgumentsGiveWhatCanBeGiven) {
    loadAdapters(twoAdapters());
    names = nullptr;
    EXPECT_EQ(joined(beginning(fill().lines, {"0/adapter", "0/0/port", "0/0/s", "0/0/0/"})),
              "0/adapter null, 0/0/port null, 0/0/statistics null, 0/0/0/remote null, 0/0/0/0 null, 0/0/0/1 null");
    watch([&] { enterTest(nullptr); });
}

// ---- Large fabrics --------------------------------------------------------------------------------------------------

TEST_F(HbaTest, LargeMappingsAreMatchedWhole) {
    json remote, mapping;
    for (int entry = 0; entry < 5000; ++entry) {
        const std::string wwn = std::to_string(5006000000001000 + entry % 50);
        mapping.push_back(target(wwn, {{"ScsiOSLun", entry / 50}}));
        if (entry < 50) {
            remote.push_back(remotePort(wwn));
        }
    }
    loadOneAdapter(remote, mapping);
    const jvm::HbaTree tree = fill();
    EXPECT_EQ(tree.lines.size(), 3U + 50 + 5000);
    for (const std::string lun : {"0", "1", "98", "99"}) {
        const std::string where = "0/0/6/" + lun + "/mapping";
        EXPECT_EQ(tree.values(where), "=|=|0|0|" + lun + "|c0t0d" + lun + "|0|5006000000001006");
    }
}

TEST_F(HbaTest, MappingsAreGivenBackWithTheirAdapters) {
    loadAdapters(manyAdapters(2, {{"targetMapping", std::vector<json>(513, target(wwnA))}}));
    for (const bool isRefused : {false, true}) {
        wrapped.refusesMemory = isRefused;
        EXPECT_EQ(fill().lines.size(), 2U);
        const std::string failure = "HBA_GetFcpTargetMapping call returned 7 (More data available) for adapter ";
        EXPECT_EQ(logLines(calls),
                  isRefused ? Lines({"warn \"" + failure + "0 (hba-1)\"", "warn \"" + failure + "1 (hba-0)\""})
                            : Lines());
        EXPECT_EQ(beginning(selfTest(), {failure}).size(), isRefused ? 2U : 0U);
        EXPECT_FALSE(wrapped.isHeldAtNextAdapter);
    }
    wrapped.refusesMemory = false;
}

TEST_F(HbaTest, ThreadsThatFillAtOnceAllGetTheWholeCache) {
    loadAdapters(twoAdapters());
    const Lines whole = fill().lines;
    cache = env->NewGlobalRef(cache);
    names = env->NewGlobalRef(names);
    const auto fillOften = [&] {
        const jvm::AttachedThread thread;
        int equal = 0;
        for (int round = 0; round < 10; ++round) {
            const jvm::LocalFrame frame(thread.env);
            equal += jvm::HbaTree(thread.env, enterFill(thread.env)).lines == whole ? 1 : 0;
        }
        return equal;
    };
    std::vector<std::future<int>> threads(8);
    std::ranges::generate(threads, [&] { return std::async(std::launch::async, fillOften); });
    EXPECT_EQ(std::ranges::count(threads, 10, &std::future<int>::get), 8);
    env->DeleteGlobalRef(cache);
    env->DeleteGlobalRef(names);
}

// ---- The self-test --------------------------------------------------------------------------------------------------

TEST_F(HbaTest, SelfTestTellsWhatTheLibrarySays) {
    tests::loadHost("self-test");
    neverOpened = {"HBA_OpenAdapter go left open"};
    tests::expectFile("jvm/hba/self-test.txt", selfTest());
    EXPECT_EQ(beginning(journal, {"HBA_RefreshInformation "}).size(), 3U); // all that open but SUNW-qlc-3
    EXPECT_EQ(beginning(journal, {"HBA_GetPortStatistics"}), Lines{});
    EXPECT_EQ(beginning(calls, {"GetStaticMethodID"}), Lines{}); // no log
}

TEST_F(HbaTest, HostsAreToldLetterForLetter) {
    Lines text;
    for (const std::string host : {"../../hosts/rill", "refusals"}) {
        tests::loadHost(host);
        neverOpened =
            host == "refusals" ? Lines{"HBA_OpenAdapter busy left open", "HBA_OpenAdapter late left open"} : Lines{};
        text.push_back(host + ", filled:");
        std::ranges::copy(fill().lines, std::back_inserter(text));
        std::ranges::copy(logLines(calls), std::back_inserter(text));
        text.push_back(host + ", tested:");
        std::ranges::copy(selfTest(), std::back_inserter(text));
    }
    tests::expectFile("jvm/hba/hba-hosts.txt", text);
}

TEST_F(HbaTest, CountsThatMayBeAreBelieved) {
    const auto linesOf = [&](const json &adapters) {
        loadAdapters(adapters);
        return selfTest();
    };
    const auto fillIgnores = [&] {
        fill();
        return beginning(logLines(calls), {"warn \"Ignoring"});
    };
    const json nameless{{"status", {{"GetAdapterName", 1}}}};
    EXPECT_EQ(linesOf(std::vector<json>(4096, nameless)).size(), 4096U);
    EXPECT_EQ(fillIgnores(), Lines());
    wrapped.moreAdapters = 1;
    EXPECT_EQ(linesOf(std::vector<json>(4096, nameless)),
              Lines{"Ignoring the 4097 adapters that the HBA library reports -- more than 4096 cannot be right"});
    wrapped.moreAdapters = 0;
    // Two lines of the adapter, two of each port that is there, one of each that is not, two of each mapping entry.
    EXPECT_EQ(linesOf(twoAdapters("/0/attributes/NumberOfPorts", 4096)).size(), 2 + 8 + 2 + 4094 + 6 + 3 + 4U + 6);
    EXPECT_EQ(fillIgnores(), Lines());
    EXPECT_EQ(beginning(calls, {"EnsureLocalCapacity 16406"}).size(), 1U); // before the first of them: 19, 3 and 4 each
    EXPECT_EQ(linesOf(twoAdapters("/0/ports/1/attributes/NumberofDiscoveredPorts", 65536)).size(),
              2 + 6 + 4 + 65535 + 6 + 3 + 4U + 6);
    loadOneAdapter(json::array(), std::vector<json>(700, target(wwnA)));
    EXPECT_EQ(selfTest().size(), 4U + 2 * 700);
}

} // namespace
