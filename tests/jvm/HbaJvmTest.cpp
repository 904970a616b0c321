// The Fibre Channel cache and the self-test, from the native entry points to what Java gets.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <future>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>

#include "platform/replay/Replay.h"
#include "tests/Lines.h"
#include "tests/jvm/HbaTree.h"
#include "tests/jvm/JniTable.h"
#include "tests/jvm/Jvm.h"

extern "C" {
jobjectArray Java_com_kelvo_tarn_providers_hba_HbaCache_fillHbaCache(JNIEnv *, jobject, jobject);
void Java_com_kelvo_tarn_providers_hba_HbaCache_testHbaLibrary(JNIEnv *, jobject, jobject);
}

namespace {

using nlohmann::json;
using tests::beginning;
using tests::Lines;

// ---- Hosts ----------------------------------------------------------------------------------------------------------

void loadAdapters(const json &adapters) {
    const json entry{{"path", "/dev/rdsk/c6t0d0s2"}, {"link", "../../devices/pci@1/ssd@w50,0:c,raw"}};
    replay::loadHostText(json{{"hba", {{"adapters", adapters}}}, {"entries", json::array({entry})}}.dump());
}

void loadOneAdapter(const json &discovered, const json &mapping) {
    const json port{{"discovered", discovered}};
    loadAdapters(json::array({{{"name", "hba-0"}, {"ports", json::array({port})}, {"targetMapping", mapping}}}));
}

const std::string wwnA = "50060e8000c3a2b1", wwnB = "50060e8000c3a2b2";

json remotePort(const std::string &wwn) {
    return {{"attributes", {{"PortWWN", wwn}}}};
}

json target(const std::string &wwn, const json &scsiId = json::object(), const json &lun = 0) {
    return {{"ScsiId", scsiId}, {"FcpId", {{"PortWWN", wwn}, {"FcpLun", lun}}}};
}

/// Two adapters that see the same remote ports, with one value put where the JSON pointer says: by default something to
/// complain about.
json twoAdapters(const std::string &where = "/0/ports/1/status/GetPortStatistics", const json &value = 2) {
    json adapters = json::parse(R"([{"name": "hba-0", "attributes": {"NodeWWN": "200000e08b010203",
        "VendorSpecificID": 4294967295, "Manufacturer": {"hex": "41 63 6d e9 65 09"}, "Model": "M",
        "SerialNumber": "0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef", "ModelDescription": "MD",
        "NodeSymbolicName": "N", "HardwareVersion": "H", "DriverVersion": "D", "OptionROMVersion": "O",
        "FirmwareVersion": "F", "DriverName": "qlc"}}, {"name": "SUNW-qlc-1"}])");
    json first = json::parse(R"({"attributes": {"NodeWWN": "200000e08b010203", "PortWWN": "210000e08b010203",
        "FabricName": "1000006069c01020", "PortFcId": 66048, "PortMaxFrameSize": 2048, "PortType": 5, "PortState": 6,
        "PortSupportedClassofService": 9, "PortSymbolicName": {"hex": "70 01 6f 72 74"}, "OSDeviceName": "/dev/cfg/c4",
        "PortSupportedSpeed": 3, "PortSpeed": 4}, "statistics": {"SecondsSinceLastReset": 77, "TxFrames": -1,
        "TxWords": 77, "RxFrames": 9223372036854775808, "RxWords": 77, "LIPCount": 0, "NOSCount": 1, "ErrorFrames": 2,
        "DumpedFrames": 3, "LinkFailureCount": 4, "LossOfSyncCount": 5, "LossOfSignalCount": 6,
        "PrimitiveSeqProtocolErrCount": 7, "InvalidTxWordCount": 8, "InvalidCRCCount": 255}})");
    first["discovered"] = json::array({{{"attributes", first["attributes"]}}, remotePort(wwnB)});
    first["discovered"][0]["attributes"]["PortWWN"] = wwnA;
    const json second{{"discovered", json::array({remotePort(wwnA)})}};
    adapters[0]["ports"] = json::array({first, second});
    adapters[1]["ports"] = json::array({second});
    for (json &adapter : adapters) {
        adapter["targetMapping"] = json::array({target(wwnA), target(wwnB, {{"OSDeviceName", "c3t0d0"}}),
                                                target(wwnA, {{"OSDeviceName", "/dev/dsk/c2t0d1s2"}})});
    }
    adapters[json::json_pointer(where)] = value;
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

class HbaTest : public testing::Test {
protected:
    HbaTest() {
        env->PushLocalFrame(128);
        choose(false, false, false);
    }
    ~HbaTest() override {
        env->PopLocalFrame(nullptr);
    }

    jobject make(const char *name, const char *signature, auto... values) {
        const jclass cls = env->FindClass(name);
        return env->NewObject(cls, env->GetMethodID(cls, "<init>", signature), values...);
    }

    /// What the agent's objects will answer.
    void choose(bool keep, bool leadville, bool force) {
        cache = make("com/kelvo/tarn/providers/hba/HbaCache", "(ZZ)V", leadville, force);
        const jobject space =
            make("com/kelvo/tarn/TrNamespace", "(Ljava/lang/String;)V", env->NewStringUTF("root/kelvo"));
        names = make("com/kelvo/tarn/providers/hba/HbaClassNames", "(Lcom/kelvo/tarn/TrNamespace;Z)V", space, keep);
    }

    jobjectArray enterFill(JNIEnv *onThread) {
        return Java_com_kelvo_tarn_providers_hba_HbaCache_fillHbaCache(onThread, cache, names);
    }

    void enterTest(jobject lines) {
        Java_com_kelvo_tarn_providers_hba_HbaCache_testHbaLibrary(env, cache, lines);
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
        env->PushLocalFrame(16);
        jobjectArray filled = nullptr;
        watch([&] { filled = enterFill(env); });
        const jvm::HbaTree tree(env, filled);
        env->PopLocalFrame(nullptr);
        return tree;
    }

    Lines selfTest() {
        const jobject lines = make("java/util/ArrayList", "()V");
        watch([&] { enterTest(lines); });
        return jvm::elementTexts(env, lines);
    }

    JNIEnv *env = jvm::environment();
    jobject cache, names;
    Lines calls, journal, neverOpened; // the last: what the journal shows of attempts that failed
};

// ---- Instances ------------------------------------------------------------------------------------------------------

TEST_F(HbaTest, InstancesTellWhatTheLibrarySays) {
    json adapters = twoAdapters();
    adapters.insert(adapters.begin(), 3, json{{"name", "other"}});
    loadAdapters(adapters);
    const jvm::HbaTree tree = fill();
    const std::string system = jvm::toText(env, jvm::call(env, names, "getSystemName", "()Ljava/lang/String;"));
    EXPECT_EQ(tree.values("3/adapter"),
              "200000e08b010203:3|Kelvo_HostBusAdapter|" + system +
                  "|Kelvo_ComputerSystem|Acme|"
                  "0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcde|M|MD|200000e08b010203|N|H|D|O|F|"
                  "4294967295|qlc|Adapter 3|Adapter 3|Adapter 3");
    const auto common = [&](const std::string &wwn) {
        return "200000e08b010203|" + wwn + "|66048|10|6|[6,3]|port|/dev/cfg/c4|0|11435350430|2048|1000006069c01020|" +
               wwn + "|" + system + "|Kelvo_ComputerSystem|[6]|";
    };
    EXPECT_EQ(tree.values("3/0/port"),
              common("210000e08b010203") + "Kelvo_HbaPort|Adapter 3 Port 0|Adapter 3 Port 0|Adapter 3 Port 0|0");
    EXPECT_EQ(tree.values("3/0/0/remote"), common(wwnA) + "Kelvo_HbaDiscoveredPort|null|null|null|null");
    EXPECT_EQ(tree.values("3/0/statistics"), "210000e08b010203|210000e08b010203|18446744073709551615|"
                                             "9223372036854775808|0|1|2|3|4|5|6|7|8|255");
    // A caption, its description and its element's name are one string.
    EXPECT_EQ(joined(calls, "NewStringUTF Adapter 3"), " Port 0,  Port 1");
}

TEST_F(HbaTest, PortCodesBecomeCimValues) {
    const struct {
        unsigned type, state, classes, speed;
        std::string codes, status;
    } cases[] = {
        {0, 0, 0, 0, "0|1|[]|||0|0|0|", "0"},
        {1, 1, 1, 1, "0|1|[6]|||1143535043|1143535043|0|", "0"},
        {2, 2, 2, 2, "1|2|[1]|||2287070085|2287070085|0|", "2"},
        {3, 3, 4, 3, "0|3|[2]|||0|0|0|", "11"},
        {4, 4, 8, 4, "0|4|[3]|||11435350430|11435350430|0|", "11"},
        {5, 5, 16, 5, "10|5|[4]|||0|0|0|", "11"},
        {6, 6, 32, 6, "11|6|[0]|||0|0|0|", "6"},
        {7, 7, 64, 7, "16|7|[5]|||0|0|0|", "6"},
        {8, 8, 160, 8, "15|8|[0,0]|||0|0|0|", "11"},
        {9, 9, 12, 16, "14|1|[2,3]|||0|0|0|", "0"},
        {10, 4294967295, 0x80000000, 4294967295, "0|1|[0]|||0|0|0|", "0"},
        {21, 2, 4294967295, 0, "0|2|[6,1,2,3,4,0,5" + joined(Lines(25, ",0"), "", "") + "]|||0|0|0|", "2"},
    };
    json remote;
    for (const auto &row : cases) {
        remote.push_back({{"attributes",
                           {{"PortType", row.type},
                            {"PortState", row.state},
                            {"PortSupportedClassofService", row.classes},
                            {"PortSupportedSpeed", row.speed},
                            {"PortSpeed", row.speed}}}});
    }
    loadAdapters(twoAdapters("/0/ports/0/discovered", remote));
    const jvm::HbaTree tree = fill();
    int index = 0;
    for (const auto &row : cases) {
        const std::string values = tree.values("0/0/" + std::to_string(index++) + "/remote");
        EXPECT_EQ(values.find(row.codes), 36U) << values; // behind two names and an address
        EXPECT_NE(values.find("|[" + row.status + "]|Kelvo_HbaDiscoveredPort|"), std::string::npos) << values;
    }
}

TEST_F(HbaTest, TargetMappingsTellWhichDeviceLeadsWhere) {
    // The last four are the device's name as it is kept, by the heuristic, by the heuristic forced, and formatted.
    const struct {
        json::object_t scsiId;
        json lun;
        std::string values, exported, kept, leadville, forced, formatted;
    } cases[] = {
        {{{"OSDeviceName", "/dev/rdsk/c2t50060E8000C3A2B1d0s2"}, {"ScsiBusNumber", 2}},
         1407374883553280,
         "2|0|0|",
         "5",
         "/dev/rdsk/c2t50060E8000C3A2B1d0s2",
         "c2t50060E8000C3A2B1d0",
         "c2t50060E8000C3A2B1d0",
         "c2t0d0"},
        {{{"OSDeviceName", "/dev/dsk/c4t1d0s2"}, {"ScsiTargetNumber", 4294967295}, {"ScsiOSLun", 2147483648}},
         4613093393310941184,
         "4|4294967295|2147483648|",
         "16389",
         "/dev/dsk/c4t1d0s2",
         "c4t-1d-2147483648",
         "c4t1d0",
         "c4t-1d-2147483648"},
        {{{"OSDeviceName", "c7t0d0s2"}, {"ScsiOSLun", 5}},
         9223372036854775808U,
         "7|0|5|",
         "18446744073709518848",
         "c7t0d0s2",
         "c7t0d5",
         "c7t0d0",
         "c7t0d5"},
        {{{"OSDeviceName", "tab\there"}, {"ScsiBusNumber", 4294967295}},
         -1,
         "4294967295|0|0|",
         "18446744073709551615",
         "tabhere",
         "c-1t0d0",
         "tabhere",
         "c-1t0d0"},
        {{{"OSDeviceName", "/devices/pci@1/ssd@w50,0"}},
         281474976710655,
         "6|0|0|",
         "0",
         "/devices/pci@1/ssd@w50,0",
         "c6t0d0",
         "ssd@w50,0",
         "c6t0d0"},
    };
    json mapping;
    for (const auto &row : cases) {
        mapping.push_back(target(wwnA, row.scsiId, row.lun));
    }
    loadOneAdapter(json::array({remotePort(wwnA)}), mapping);
    // With how many of the agent's three answers are asked for: for the name in "/dev/rdsk/" and for the four others.
    const std::tuple<bool, bool, bool, int> answers[] = {
        {true, true, true, 5}, {false, true, false, 14}, {false, false, true, 15}, {false, false, false, 15}};
    for (const auto &[keep, leadville, force, questions] : answers) {
        choose(keep, leadville, force);
        const jvm::HbaTree tree = fill();
        int index = 0;
        for (const auto &row : cases) {
            const std::string name = keep ? row.kept : leadville ? row.leadville : force ? row.forced : row.formatted;
            EXPECT_EQ(tree.values("0/0/0/" + std::to_string(index++) + "/mapping"),
                      "=|=|" + row.values + name + "|" + row.exported + "|" + wwnA);
        }
        EXPECT_EQ(std::ranges::count(calls, "CallBooleanMethod"), questions);
    }
}

// ---- The walk -------------------------------------------------------------------------------------------------------

TEST_F(HbaTest, EveryFailureLeavesItsLineAndItsHole) {
    replay::loadHostText("{}"); // no library
    EXPECT_EQ(fill().lines, Lines{});
    loadAdapters(twoAdapters("/0/openFailures", 0));
    const Lines whole = fill().shape();
    ASSERT_EQ(whole.size(), 19U);
    const struct {
        std::string where; // in the description
        json value;
        std::string log, missing, hole; // the line or what it tells of the failed call; a regular expression; its place
    } cases[] = {
        {"/0/openFailures", 1, "", "", ""},
        {"/0/openFailures", 2, "Unable to open HBA adapter 0 (hba-0) -- status is 0 (OK) (check ownership)", "0/.*",
         "0 null"},
        {"/0/status/GetAdapterName", 3,
         "Unable to open HBA adapter 0 () -- status is 3 (Invalid handle) (check ownership)", "0/.*", "0 null"},
        {"/0/status/GetAdapterAttributes", 99, "99 ()", "0/.*", "0 null"},
        {"/0/status/GetFcpTargetMapping", 2, "2 (Not supported)", "0/.*/mapping", ""},
        {"/0/status/GetFcpTargetMapping", {7, 7}, "7 (More data available)", "0/.*/mapping", ""},
        {"/0/NumberOfEntries", 4294967295,
         "HBA_GetFcpTargetMapping call returned 7 (More data available) for adapter 0 (hba-0)", "0/.*/mapping", ""},
        {"/0/attributes/NumberOfPorts", 4294967295,
         "Ignoring the 4294967295 ports that HBA adapter 0 (hba-0) reports -- more than 4096 cannot be right", "0/./.*",
         ""},
        {"/0/ports/0/status/GetAdapterPortAttributes", 1, "1 (Error)", "0/0/.*", "0/0 null"},
        {"/0/ports/0/status/GetPortStatistics", 2, "2 (Not supported)", "0/0/statistics", "0/0/statistics null"},
        {"/0/ports/0/attributes/NumberofDiscoveredPorts", 2147483648,
         "Ignoring the 2147483648 discovered ports of port 0 that HBA adapter 0 (hba-0) reports -- more than 65536 "
         "cannot be right",
         "0/0/./.*", ""},
        {"/0/ports/0/discovered/0/status/GetDiscoveredPortAttributes", 8, "8 (Stale data)", "0/0/0/.*", "0/0/0 null"},
    };
    for (const auto &[where, value, log, missing, hole] : cases) {
        SCOPED_TRACE(where + " " + value.dump());
        loadAdapters(twoAdapters(where, value));
        neverOpened = Lines(where.ends_with("openFailures") && value > 0 ? 1 : 0, "HBA_OpenAdapter hba-0 left open");
        Lines expected, shape = fill().shape();
        std::ranges::copy_if(whole, std::back_inserter(expected),
                             [gone = std::regex(missing)](auto &line) { return !std::regex_match(line, gone); });
        expected.resize(expected.size() + (hole.empty() ? 0 : 1), hole);
        EXPECT_TRUE(std::ranges::is_permutation(shape, expected)) << joined(shape);
        const std::string made = "NewStringUTF ", call = where.substr(where.rfind('/') + 1) + " call returned ";
        EXPECT_EQ(joined(beginning(calls, {made + "HBA_", made + "Unable", made + "Ignoring"}), made),
                  std::isdigit(log[0]) ? "HBA_" + call + log + " for adapter 0 (hba-0)" : log);
    }
}

TEST_F(HbaTest, TheWalkGoesInOrder) {
    loadAdapters(twoAdapters());
    const jvm::HbaTree tree = fill();
    EXPECT_EQ(joined(journal, "HBA_"),
              "LoadLibrary, GetNumberOfAdapters, GetAdapterName 0, OpenAdapter hba-0, RefreshInformation hba-0, "
              "GetAdapterAttributes hba-0, GetFcpTargetMapping hba-0 512, GetAdapterPortAttributes hba-0 0, "
              "GetPortStatistics hba-0 0, GetDiscoveredPortAttributes hba-0 0 0, GetDiscoveredPortAttributes hba-0 0 "
              "1, GetAdapterPortAttributes hba-0 1, GetPortStatistics hba-0 1, GetDiscoveredPortAttributes hba-0 1 0, "
              "CloseAdapter hba-0, GetAdapterName 1, OpenAdapter SUNW-qlc-1, GetAdapterAttributes SUNW-qlc-1, "
              "GetFcpTargetMapping SUNW-qlc-1 512, GetAdapterPortAttributes SUNW-qlc-1 0, GetPortStatistics SUNW-qlc-1 "
              "0, GetDiscoveredPortAttributes SUNW-qlc-1 0 0, CloseAdapter SUNW-qlc-1, FreeLibrary");
    // Both local ports get the remote port's entries, in the table's order.
    for (const std::string at : {"0/0/0", "0/1/0", "1/0/0"}) {
        EXPECT_EQ(tree.values(at + "/0/mapping"), "=|=|0|0|0|c0t0d0|0|" + wwnA);
        EXPECT_EQ(tree.values(at + "/1/mapping"), "=|=|2|0|0|c2t0d0|0|" + wwnA);
    }

    EXPECT_EQ(joined(calls, "EnsureLocalCapacity ") + ", " + joined(calls, "PushLocalFrame ", " "),
              "1000, 20, 48 20 44 44 9 44 26 26 9 44 26 20 44 9 44 26 26 48 20 44 44 9 44 26 26");
    std::set<std::string> lookUps;
    for (const std::string &call : beginning(calls, {"FindClass", "GetMethodID", "GetStaticFieldID"})) {
        EXPECT_TRUE(lookUps.insert(call).second) << "again: " << call;
    }
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
        env->PushLocalFrame(16);
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
        env->PopLocalFrame(nullptr);
    }
    EXPECT_EQ(std::regex_replace(joined(survived), std::regex("(null\\|){16}"), "nulls|"),
              "PushLocalFrame 48 -> 0/adapter null, GetMethodID, CallObjectMethod, GetStringUTFChars, FindClass, "
              "GetStaticMethodID, NewStringUTF, CallStaticVoidMethod, PushLocalFrame 20 -> 0/1/port null, "
              "PushLocalFrame 44 -> 0/1/port nulls|Kelvo_HbaPort|Adapter 0 Port 1|Adapter 0 Port 1|Adapter 0 Port 1|1, "
              "PushLocalFrame 44 -> 0/1/statistics null, PushLocalFrame 9 -> 0/1/0/remote null, PushLocalFrame 44 -> "
              "0/1/0/remote nulls|Kelvo_HbaDiscoveredPort|null|null|null|null, PushLocalFrame 26 -> 0/1/0/0 null");
}

TEST_F(HbaTest, EveryRefusedCallEndsCleanly) {
    loadAdapters(twoAdapters());
    fill(); // the agent learns the system's name now, and not in a run of its own
    const auto fillOnce = [&](JNIEnv *) { return enterFill(env); };
    EXPECT_GT(jvm::refuseEveryCall(env, jvm::Refusal::withException, fillOnce), 700);
    EXPECT_GT(jvm::refuseEveryCall(env, jvm::Refusal::withNull, fillOnce), 200);
    const jobject lines = make("java/util/ArrayList", "()V");
    const auto testOnce = [&](JNIEnv *) { return enterTest(lines), jobject(); };
    EXPECT_GT(jvm::refuseEveryCall(env, jvm::Refusal::withException, testOnce), 40);
}

TEST_F(HbaTest, NullArgumentsGiveWhatCanBeGiven) {
    loadAdapters(twoAdapters());
    names = nullptr;
    EXPECT_EQ(joined(beginning(fill().lines, {"0/adapter", "0/0/port", "0/0/s", "0/0/0/"})),
              "0/adapter null, 0/0/port null, 0/0/statistics null, 0/0/0/remote null, 0/0/0/0 null, 0/0/0/1 null");
    watch([&] { enterTest(nullptr); });
}

// ---- Large fabrics and many threads ---------------------------------------------------------------------------------

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
    env->PushLocalFrame(16);
    const jvm::HbaTree tree(env, static_cast<jobjectArray>(env->PopLocalFrame(enterFill(env))));
    EXPECT_EQ(tree.lines.size(), 3U + 50 + 5000);
    for (const std::string lun : {"0", "1", "98", "99"}) {
        const std::string where = "0/0/6/" + lun + "/mapping";
        EXPECT_EQ(tree.values(where), "=|=|0|0|" + lun + "|c0t0d" + lun + "|0|5006000000001006");
    }
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
            thread.env->PushLocalFrame(16);
            equal += jvm::HbaTree(thread.env, enterFill(thread.env)).lines == whole ? 1 : 0;
            thread.env->PopLocalFrame(nullptr);
        }
        return equal;
    };
    std::vector<std::future<int>> threads(4);
    std::ranges::generate(threads, [&] { return std::async(std::launch::async, fillOften); });
    EXPECT_TRUE(std::ranges::all_of(threads, [](auto &thread) { return thread.get() == 10; }));
    env->DeleteGlobalRef(cache);
    env->DeleteGlobalRef(names);
}

// ---- The self-test --------------------------------------------------------------------------------------------------

TEST_F(HbaTest, SelfTestTellsWhatTheLibrarySays) {
    loadOneAdapter(json::array(), std::vector<json>(700, target(wwnA)));
    EXPECT_EQ(selfTest().size(), 4U + 2 * 700);

    const std::string name(255, 'n'), none(16, '0'), m(64, 'M'), o(256, 'O');
    json adapters = json::parse(R"([
        {"name": "gone", "openFailures": 2}, {"name": "nameless", "status": {"GetAdapterName": 1}},
        {"name": "hba-2", "attributes": {"NodeWWN": "200000e08b010203", "NumberOfPorts": 3}, "ports": [
            {"attributes": {"NodeWWN": "2000000000000001", "PortWWN": "2100000000000001", "PortFcId": 66048},
             "discovered": [{"attributes": {"PortWWN": "50060e8000c3a2b1"}},
                            {"status": {"GetDiscoveredPortAttributes": 3}}, {}]},
            {"attributes": {"NumberofDiscoveredPorts": 4294967295}}]},
        {"name": "SUNW-qlc-3", "attributes": {"NumberOfPorts": 4294967295}, "status": {"GetFcpTargetMapping": [7, 7]}},
        {"status": {"GetAdapterAttributes": 12}}])");
    adapters[2]["attributes"].update({{"Manufacturer", m}, {"SerialNumber", m}, {"Model", o}, {"ModelDescription", o}});
    const json scsi{{"OSDeviceName", "/dev/rdsk/c2t0d0s2"}, {"ScsiTargetNumber", 4294967295}, {"ScsiOSLun", 7}};
    adapters[2]["targetMapping"] = json::array({target(wwnA, scsi, 4611967493404098567)});
    adapters[4]["name"] = name;
    loadAdapters(adapters);
    neverOpened = {"HBA_OpenAdapter gone left open"};
    const Lines expected{
        "Unable to open HBA adapter 0 (gone) -- status is 0 (OK) (check ownership)",
        "Unable to open HBA adapter 1 () -- status is 1 (Error) (check ownership)",
        "HBA 2 name(hba-2) NWWN=200000e08b010203",
        "  manufacturer(" + m.substr(1) + ") serial(" + m.substr(1) + ") model(" + o.substr(1) + ") descr(" +
            o.substr(1) + ")",
        "  Port index 0 NWWN=2000000000000001\n    PWWN=2100000000000001 FcId=0x10200",
        "    Discovered port 0 NWWN=" + none + "\n      PWWN=" + wwnA + " FcId=0x0",
        "HBA_GetDiscoveredPortAttributes call returned 3 (Invalid handle) for adapter 2 (hba-2)",
        "    Discovered port 2 NWWN=" + none + "\n      PWWN=" + none + " FcId=0x0",
        "  Port index 1 NWWN=" + none + "\n    PWWN=" + none + " FcId=0x0",
        "Ignoring the 4294967295 discovered ports of port 1 that HBA adapter 2 (hba-2) reports -- more than 65536 "
        "cannot be right",
        "HBA_GetAdapterPortAttributes call returned 6 (Illegal index) for adapter 2 (hba-2)",
        "  SCSI c0t-1d7 OsDeviceName(/dev/rdsk/c2t0d0s2) NWWN=" + none + "\n    PWWN=" + wwnA +
            " FcId=0x0 Lun=0x4001000000000007",
        "HBA 3 name(SUNW-qlc-3) NWWN=" + none + "\n  manufacturer() serial() model() descr()",
        "  (HBA_RefreshInformation not called.)",
        "Ignoring the 4294967295 ports that HBA adapter 3 (SUNW-qlc-3) reports -- more than 4096 cannot be right",
        "HBA_GetFcpTargetMapping call returned 7 (More data available) for adapter 3 (SUNW-qlc-3)",
        "HBA_GetAdapterAttributes call returned 12 (HBA has been removed or deactivated) for adapter 4 (" + name + ")",
    };
    EXPECT_EQ(joined(selfTest(), "", "\n"), joined(expected, "", "\n"));
    EXPECT_EQ(joined(journal, "HBA_RefreshInformation "), "hba-2, " + name);
    EXPECT_EQ(joined(journal, "HBA_GetPortStatistics") + joined(calls, "GetStaticMethodID"), "");
}

} // namespace
