// The Fibre Channel cache and the self-test, from the native entry points to what Java gets.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <iterator>
#include <set>
#include <sstream>
#include <thread>

#include "platform/replay/Replay.h"
#include "tests/jvm/HbaTree.h"
#include "tests/jvm/JniTable.h"
#include "tests/jvm/Jvm.h"

extern "C" {
jobjectArray Java_com_kelvo_tarn_providers_hba_HbaCache_fillHbaCache(JNIEnv *, jobject, jobject);
void Java_com_kelvo_tarn_providers_hba_HbaCache_testHbaLibrary(JNIEnv *, jobject, jobject);
}

namespace {

using Lines = std::vector<std::string>;

// ---- Hosts ----------------------------------------------------------------------------------------------------------

std::string join(const Lines &parts, const std::string &separator = ", ") {
    std::string all;
    for (const std::string &part : parts) {
        all += (all.empty() ? "" : separator) + part;
    }
    return all;
}

/// A JSON list.
std::string list(const Lines &members) {
    return "[" + join(members) + "]";
}

/// A JSON object: further members may follow the first.
std::string remotePort(const std::string &wwn, const std::string &members = "") {
    return R"({"attributes": {"PortWWN": ")" + wwn + R"("})" + members + "}";
}

std::string port(const Lines &discovered, const std::string &members = "") {
    return R"({"discovered": )" + list(discovered) + members + "}";
}

std::string target(const std::string &wwn, const std::string &device = "", const std::string &numbers = "",
                   const std::string &lun = "0") {
    return R"({"ScsiId": {"OSDeviceName": ")" + device + "\"" + numbers + R"(}, "FcpId": {"PortWWN": ")" + wwn +
           R"(", "FcpLun": )" + lun + "}}";
}

std::string adapter(const std::string &name, const Lines &ports, const Lines &mapping = {},
                    const std::string &members = "") {
    return R"({"name": ")" + name + R"(", "ports": )" + list(ports) + R"(, "targetMapping": )" + list(mapping) +
           members + "}";
}

void loadAdapters(const Lines &adapters) {
    replay::loadHostText(R"({"hba": {"adapters": )" + list(adapters) + "}}");
}

const std::string wwnA = "50060e8000c3a2b1";
const std::string wwnB = "50060e8000c3a2b2";

/// Two adapters, two ports each, that see the same two remote ports; the second has things to complain about.
void loadTwoAdapters() {
    const Lines remote{remotePort(wwnA), remotePort(wwnB)};
    const Lines mapping{target(wwnA, "/dev/rdsk/c2t0d0s2"), target(wwnB, "c3t0d0"), target(wwnA, "/dev/dsk/c2t0d1s2")};
    const std::string withClasses = R"(, "attributes": {"PortSupportedClassofService": 31})";
    loadAdapters({adapter("hba-0", {port(remote, withClasses), port(remote)}, mapping),
                  adapter("SUNW-qlc-1", {port(remote, R"(, "status": {"GetPortStatistics": 2})"), port({})}, mapping)});
}

// ---- What the calls leave -------------------------------------------------------------------------------------------

constexpr const char *logMethod = "GetStaticMethodID com/kelvo/tarn/providers/solaris/SolarisNativeMethod warn";

/// The lines that went to the agent's log.
Lines logLines(const Lines &calls) {
    Lines lines;
    for (std::size_t i = 0; i + 1 < calls.size(); ++i) {
        if (calls[i].starts_with(logMethod)) {
            lines.push_back(calls[i + 1].substr(std::string("NewStringUTF ").size()));
        }
    }
    return lines;
}

Lines beginning(const Lines &lines, const Lines &starts) {
    Lines found;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(found), [&](const std::string &line) {
        return std::any_of(starts.begin(), starts.end(),
                           [&](const std::string &start) { return line.starts_with(start); });
    });
    return found;
}

/// An HbaCache and the names for it.
struct Objects {
    Objects(JNIEnv *environment, bool keep = false, bool leadville = false, bool force = false) : env(environment) {
        const auto make = [this](const char *name, const char *signature, auto... values) {
            const jclass cls = env->FindClass(name);
            const jobject made = env->NewObject(cls, env->GetMethodID(cls, "<init>", signature), values...);
            EXPECT_EQ(jvm::takeException(env), "");
            return made;
        };
        cache = make("com/kelvo/tarn/providers/hba/HbaCache", "(ZZ)V", leadville, force);
        names =
            make("com/kelvo/tarn/providers/hba/HbaClassNames", "(Lcom/kelvo/tarn/TrNamespace;Z)V",
                 make("com/kelvo/tarn/TrNamespace", "(Ljava/lang/String;)V", env->NewStringUTF("root/kelvo")), keep);
    }
    jobjectArray fill() const {
        return Java_com_kelvo_tarn_providers_hba_HbaCache_fillHbaCache(env, cache, names);
    }

    JNIEnv *env;
    jobject cache = nullptr;
    jobject names = nullptr;
};

class HbaTest : public testing::Test {
protected:
    HbaTest() {
        env->PushLocalFrame(64);
    }
    ~HbaTest() override {
        env->PopLocalFrame(nullptr);
    }

    /// Fills over the current host; what was called and logged is kept beside.
    jvm::HbaTree fill(const Objects &objects) {
        replay::startJournal();
        env->PushLocalFrame(16);
        jobjectArray cache = nullptr;
        {
            jvm::JniTable table(env);
            cache = objects.fill();
            calls = table.calls;
            EXPECT_EQ(table.faults(), Lines{});
        }
        journal = replay::stopJournal();
        EXPECT_EQ(jvm::unreleased(journal), neverOpened);
        EXPECT_EQ(jvm::takeException(env), "");
        const jvm::HbaTree tree(env, cache);
        env->PopLocalFrame(nullptr);
        return tree;
    }
    jvm::HbaTree fill() {
        env->PushLocalFrame(16);
        const jvm::HbaTree tree = fill(Objects(env));
        env->PopLocalFrame(nullptr);
        return tree;
    }

    jobject newList() {
        const jclass listClass = env->FindClass("java/util/ArrayList");
        return env->NewObject(listClass, env->GetMethodID(listClass, "<init>", "()V"));
    }

    Lines selfTest() {
        const Objects objects(env);
        const jobject lines = newList();
        replay::startJournal();
        {
            jvm::JniTable table(env);
            Java_com_kelvo_tarn_providers_hba_HbaCache_testHbaLibrary(env, objects.cache, lines);
            EXPECT_EQ(table.faults(), Lines{});
            EXPECT_LT(table.peakLocalReferences, 32);
        }
        journal = replay::stopJournal();
        EXPECT_EQ(jvm::unreleased(journal), neverOpened);
        EXPECT_EQ(jvm::takeException(env), "");
        return jvm::elementTexts(env, lines);
    }

    std::string systemName() {
        return jvm::toText(env, jvm::call(env, Objects(env).names, "getSystemName", "()Ljava/lang/String;"));
    }

    JNIEnv *env = jvm::environment();
    Lines calls;
    Lines journal;
    Lines neverOpened; // what the journal shows of attempts that failed
};

// ---- Instances ------------------------------------------------------------------------------------------------------

TEST_F(HbaTest, AdaptersTellWhatTheirAttributesSay) {
    const std::string attributes = R"(, "attributes": {"NodeWWN": "200000e08b010203", "VendorSpecificID": 4294967295,
        "Manufacturer": {"hex": "41 63 6d e9 65 09"}, "SerialNumber": ")" +
                                   std::string(64, 'S') + R"(", "Model": "M",
        "ModelDescription": "MD", "NodeSymbolicName": "N", "HardwareVersion": "H", "DriverVersion": "D",
        "OptionROMVersion": "O", "FirmwareVersion": "F", "DriverName": "qlc"})";
    loadAdapters(
        {adapter("hba-0", {}), adapter("hba-1", {}), adapter("hba-2", {}), adapter("hba-3", {}, {}, attributes)});
    const jvm::HbaTree cache = fill();
    EXPECT_EQ(cache.shape(), (Lines{"0/adapter", "1/adapter", "2/adapter", "3/adapter"}));
    EXPECT_EQ(cache.values("3/adapter"), "200000e08b010203:3|Kelvo_HostBusAdapter|" + systemName() +
                                             "|Kelvo_ComputerSystem|Acme|" + std::string(63, 'S') +
                                             "|M|MD|200000e08b010203|N|H|D|O|F|4294967295|qlc|Adapter 3|Adapter 3|"
                                             "Adapter 3");
}

TEST_F(HbaTest, PortsTellWhatTheirAttributesSay) {
    const std::string attributes = R"("attributes": {"NodeWWN": "200000e08b010203", "PortWWN": "210000e08b010203",
        "FabricName": "1000006069c01020", "PortFcId": 66048, "PortMaxFrameSize": 2048, "PortType": 5, "PortState": 6,
        "PortSupportedClassofService": 9, "PortSymbolicName": {"hex": "70 01 6f 72 74"}, "OSDeviceName": "/dev/cfg/c4",
        "PortSupportedSpeed": 3, "PortSpeed": 4)";
    loadAdapters({adapter("hba-0", {port({}), "{" + attributes + R"(}, "discovered": [{)" + attributes + "}}]}"})});
    const jvm::HbaTree cache = fill();
    const std::string common = "200000e08b010203|210000e08b010203|66048|10|6|[6,3]|port|/dev/cfg/c4|0|11435350430|2048|"
                               "1000006069c01020|210000e08b010203|" +
                               systemName() + "|Kelvo_ComputerSystem|[6]|";
    EXPECT_EQ(cache.values("0/1/port"), common + "Kelvo_HbaPort|Adapter 0 Port 1|Adapter 0 Port 1|Adapter 0 Port 1|1");
    EXPECT_EQ(cache.values("0/1/0/remote"), common + "Kelvo_HbaDiscoveredPort|null|null|null|null");
}

TEST_F(HbaTest, PortCodesBecomeCimValues) {
    // Columns of the values: type, state, classes of service, fastest and present speed, operational status.
    const std::string unknownClasses = "," + join(Lines(24, "0"), ",") + ",0";
    const struct {
        unsigned type, state, classes, speed;
        std::string values;
    } cases[] = {
        {0, 0, 0, 0, "0|1|[]|0|0"},
        {1, 1, 1, 1, "0|1|[6]|1143535043|0"},
        {2, 2, 2, 2, "1|2|[1]|2287070085|2"},
        {3, 3, 4, 3, "0|3|[2]|0|11"},
        {4, 4, 8, 4, "0|4|[3]|11435350430|11"},
        {5, 5, 16, 5, "10|5|[4]|0|11"},
        {6, 6, 32, 6, "11|6|[0]|0|6"},
        {7, 7, 64, 7, "16|7|[5]|0|6"},
        {8, 8, 160, 8, "15|8|[0,0]|0|11"},
        {9, 9, 12, 16, "14|1|[2,3]|0|0"},
        {10, 10, 9, 32, "0|1|[6,3]|0|0"},
        {20, 4294967295, 4294967295, 4294967295, "0|1|[6,1,2,3,4,0,5" + unknownClasses + "]|0|0"},
        {21, 2, 0x80000000, 1, "0|2|[0]|1143535043|2"},
        {4294967295, 2, 0, 1, "0|2|[]|1143535043|2"},
    };
    Lines ports;
    for (const auto &[type, state, classes, speed, values] : cases) {
        ports.push_back(R"({"attributes": {"PortType": )" + std::to_string(type) + R"(, "PortState": )" +
                        std::to_string(state) + R"(, "PortSupportedClassofService": )" + std::to_string(classes) +
                        R"(, "PortSupportedSpeed": )" + std::to_string(speed) + R"(, "PortSpeed": )" +
                        std::to_string(speed) + "}}");
    }
    loadAdapters({adapter("hba-0", ports)});
    const jvm::HbaTree cache = fill();
    int index = 0;
    for (const auto &[type, state, classes, speed, values] : cases) {
        Lines columns;
        std::istringstream text(cache.values("0/" + std::to_string(index++) + "/port"));
        for (std::string column; std::getline(text, column, '|');) {
            columns.push_back(column);
        }
        ASSERT_EQ(columns.size(), 21U);
        EXPECT_EQ(columns[3] + "|" + columns[4] + "|" + columns[5] + "|" + columns[8] + "|" +
                      columns[15].substr(1, columns[15].size() - 2),
                  values);
        EXPECT_EQ(columns[9], columns[8]);
    }
}

TEST_F(HbaTest, StatisticsPassCountersOnAsTheyAre) {
    loadAdapters({adapter("hba-0", {R"({"attributes": {"PortWWN": "210000e08b010203", "NodeWWN": "ffffffffffffffff"},
        "statistics": {"SecondsSinceLastReset": 77, "TxFrames": -1, "TxWords": 77, "RxFrames": 9223372036854775808,
        "RxWords": 77, "LIPCount": 0, "NOSCount": 1, "ErrorFrames": 2, "DumpedFrames": 3, "LinkFailureCount": 4,
        "LossOfSyncCount": 5, "LossOfSignalCount": 6, "PrimitiveSeqProtocolErrCount": 7, "InvalidTxWordCount": 8,
        "InvalidCRCCount": 255}})"})});
    EXPECT_EQ(fill().values("0/0/statistics"), "210000e08b010203|210000e08b010203|18446744073709551615|"
                                               "9223372036854775808|0|1|2|3|4|5|6|7|8|255");
}

TEST_F(HbaTest, TargetMappingsTellWhichDeviceLeadsWhere) {
    const std::string unterminated(256, 'u');
    // The last four are the device's name as it is kept, by the heuristic, by the heuristic forced, and formatted.
    const struct {
        const char *device;
        const char *numbers;
        const char *lun;
        const char *values;
        const char *exported;
        const char *kept, *leadville, *forced, *formatted;
    } cases[] = {
        {"/dev/rdsk/c2t50060E8000C3A2B1d0s2", R"(, "ScsiBusNumber": 2, "ScsiTargetNumber": 0, "ScsiOSLun": 0)",
         "1407374883553280", "2|0|0|", "5", "/dev/rdsk/c2t50060E8000C3A2B1d0s2", "c2t50060E8000C3A2B1d0",
         "c2t50060E8000C3A2B1d0", "c2t0d0"},
        {"/dev/rdsk/c1t0d0s0", "", "4613093393310941184", "0|0|0|", "16389", "/dev/rdsk/c1t0d0s0", "c1t0d0s0",
         "c1t0d0s0", "c0t0d0"},
        {"/dev/dsk/c4t1d0s2", R"(, "ScsiTargetNumber": 4294967295, "ScsiOSLun": 2147483648)", "281474976710655",
         "4|4294967295|2147483648|", "0", "/dev/dsk/c4t1d0s2", "c4t-1d-2147483648", "c4t1d0", "c4t-1d-2147483648"},
        {"c7t0d0s2", R"(, "ScsiOSLun": 5)", "9223372036854775808", "7|0|5|", "18446744073709518848", "c7t0d0s2",
         "c7t0d5", "c7t0d0", "c7t0d5"},
        {"tab\\there", R"(, "ScsiBusNumber": 4294967295)", "-1", "4294967295|0|0|", "18446744073709551615", "tabhere",
         "c-1t0d0", "tabhere", "c-1t0d0"},
        {"c3d0", "", "0", "0|0|0|", "0", "c3d0", "c0t0d0", "c3d0", "c0t0d0"},
        {"/devices/pci@1/ssd@w50,0", "", "0", "6|0|0|", "0", "/devices/pci@1/ssd@w50,0", "c6t0d0", "ssd@w50,0",
         "c6t0d0"},
        {unterminated.c_str(), "", "0", "0|0|0|", "0", unterminated.c_str() + 1, "c0t0d0", unterminated.c_str() + 1,
         "c0t0d0"},
    };
    Lines mapping;
    for (const auto &row : cases) {
        mapping.push_back(target(wwnA, row.device, row.numbers, row.lun));
    }
    replay::loadHostText(R"({"entries": [{"path": "/dev/rdsk/c6t0d0s2", "link": "../../devices/pci@1/ssd@w50,0:c,raw"}],
        "hba": {"adapters": )" +
                         list({adapter("hba-0", {port({remotePort(wwnA)})}, mapping)}) + "}}");

    const struct {
        bool keep, leadville, force;
        int question; // how many of the agent's answers are asked for an entry under "/dev/rdsk/" and another
        int otherQuestions;
    } answers[] = {
        {true, true, true, 1, 1}, {false, true, false, 2, 3}, {false, false, true, 3, 3}, {false, false, false, 3, 3}};
    for (const auto &[keep, leadville, force, questions, otherQuestions] : answers) {
        const jvm::HbaTree cache = fill(Objects(env, keep, leadville, force));
        int index = 0;
        long asked = 0;
        for (const auto &row : cases) {
            const std::string name = keep ? row.kept : leadville ? row.leadville : force ? row.forced : row.formatted;
            EXPECT_EQ(cache.values("0/0/0/" + std::to_string(index++) + "/mapping"),
                      std::string("=|=|") + row.values + name + "|" + row.exported + "|" + wwnA);
            asked += std::string(row.device).starts_with("/dev/rdsk/") ? questions : otherQuestions;
        }
        EXPECT_EQ(std::count(calls.begin(), calls.end(), "CallBooleanMethod"), asked);
    }
}

// ---- The walk -------------------------------------------------------------------------------------------------------

TEST_F(HbaTest, EveryFailureLeavesItsLineAndItsHole) {
    const Lines remote{remotePort(wwnA)};
    const Lines mapping{target(wwnA), target(wwnB), target(wwnA)};
    const auto failing = [&](const std::string &members) { return adapter("hba-0", {port(remote)}, mapping, members); };
    const Lines whole{"0/adapter", "0/0/port", "0/0/statistics", "0/0/0/remote", "0/0/0/0/mapping", "0/0/0/1/mapping"};
    const Lines unmapped(whole.begin(), whole.end() - 2);
    const struct {
        std::string adapters; // before a last one that is whole
        Lines log;
        Lines shape; // before the last one
    } cases[] = {
        {failing(""), {}, whole},
        {failing(R"(, "status": {"GetAdapterName": 3})"),
         {"Unable to open HBA adapter 0 () -- status is 3 (Invalid handle) (check ownership)"},
         {"0 null"}},
        {failing(R"(, "openFailures": 2)"),
         {"Unable to open HBA adapter 0 (hba-0) -- status is 0 (OK) (check ownership)"},
         {"0 null"}},
        {failing(R"(, "openFailures": 1)"), {}, whole},
        {failing(R"(, "status": {"GetAdapterAttributes": 99})"),
         {"HBA_GetAdapterAttributes call returned 99 () for adapter 0 (hba-0)"},
         {"0 null"}},
        {failing(R"(, "status": {"GetFcpTargetMapping": 2})"),
         {"HBA_GetFcpTargetMapping call returned 2 (Not supported) for adapter 0 (hba-0)"},
         unmapped},
        {failing(R"(, "status": {"GetFcpTargetMapping": [7]})"), {}, whole},
        {failing(R"(, "status": {"GetFcpTargetMapping": [7, 7]})"),
         {"HBA_GetFcpTargetMapping call returned 7 (More data available) for adapter 0 (hba-0)"},
         unmapped},
        {failing(R"(, "NumberOfEntries": 4294967295)"),
         {"HBA_GetFcpTargetMapping call returned 7 (More data available) for adapter 0 (hba-0)"},
         unmapped},
        {failing(R"(, "NumberOfEntries": 1000)"), {}, whole},
        {failing(R"(, "attributes": {"NumberOfPorts": 4294967295})"),
         {"Ignoring the 4294967295 ports that HBA adapter 0 (hba-0) reports -- more than 4096 cannot be right"},
         {"0/adapter"}},
        {failing(R"(, "attributes": {"NumberOfPorts": 2})"),
         {"HBA_GetAdapterPortAttributes call returned 6 (Illegal index) for adapter 0 (hba-0)"},
         {"0/adapter", "0/0/port", "0/0/statistics", "0/0/0/remote", "0/0/0/0/mapping", "0/0/0/1/mapping", "0/1 null"}},
        {adapter("hba-0", {port(remote, R"(, "status": {"GetAdapterPortAttributes": 1})"), port({})}),
         {"HBA_GetAdapterPortAttributes call returned 1 (Error) for adapter 0 (hba-0)"},
         {"0/adapter", "0/0 null", "0/1/port", "0/1/statistics"}},
        {adapter("hba-0", {port(remote, R"(, "status": {"GetPortStatistics": 2})")}, mapping),
         {"HBA_GetPortStatistics call returned 2 (Not supported) for adapter 0 (hba-0)"},
         {"0/adapter", "0/0/port", "0/0/statistics null", "0/0/0/remote", "0/0/0/0/mapping", "0/0/0/1/mapping"}},
        {adapter("hba-0", {port(remote, R"(, "attributes": {"NumberofDiscoveredPorts": 2147483648})")}, mapping),
         {"Ignoring the 2147483648 discovered ports of port 0 that HBA adapter 0 (hba-0) reports -- more than 65536 "
          "cannot be right"},
         {"0/adapter", "0/0/port", "0/0/statistics"}},
        {adapter("hba-0",
                 {port({remotePort(wwnA, R"(, "status": {"GetDiscoveredPortAttributes": 8})"), remotePort(wwnB)})},
                 mapping),
         {"HBA_GetDiscoveredPortAttributes call returned 8 (Stale data) for adapter 0 (hba-0)"},
         {"0/adapter", "0/0/port", "0/0/statistics", "0/0/0 null", "0/0/1/remote", "0/0/1/0/mapping"}},
    };
    for (const auto &[adapters, log, shape] : cases) {
        loadAdapters({adapters, adapter("SUNW-qlc-1", {port({remotePort(wwnB)})}, {target(wwnB)})});
        Lines expected = shape;
        for (const char *line : {"1/adapter", "1/0/port", "1/0/statistics", "1/0/0/remote", "1/0/0/0/mapping"}) {
            expected.emplace_back(line);
        }
        neverOpened =
            adapters.find("openFailures") == std::string::npos ? Lines{} : Lines{"HBA_OpenAdapter hba-0 left open"};
        EXPECT_EQ(fill().shape(), expected) << adapters;
        EXPECT_EQ(logLines(calls), log) << adapters;
        EXPECT_EQ(beginning(journal, {"HBA_RefreshInformation SUNW"}), Lines{});
    }

    neverOpened.clear();
    loadAdapters({});
    EXPECT_EQ(fill().lines, Lines{});
    replay::loadHostText("{}"); // the library does not load
    EXPECT_EQ(fill().lines, Lines{});
    EXPECT_EQ(logLines(calls), Lines{});
}

TEST_F(HbaTest, TheLibraryIsWalkedInOrder) {
    loadTwoAdapters();
    const jvm::HbaTree cache = fill();
    EXPECT_EQ(journal, (Lines{"HBA_LoadLibrary",
                              "HBA_GetNumberOfAdapters",
                              "HBA_GetAdapterName 0",
                              "HBA_OpenAdapter hba-0",
                              "HBA_RefreshInformation hba-0",
                              "HBA_GetAdapterAttributes hba-0",
                              "HBA_GetFcpTargetMapping hba-0 512",
                              "HBA_GetAdapterPortAttributes hba-0 0",
                              "HBA_GetPortStatistics hba-0 0",
                              "HBA_GetDiscoveredPortAttributes hba-0 0 0",
                              "HBA_GetDiscoveredPortAttributes hba-0 0 1",
                              "HBA_GetAdapterPortAttributes hba-0 1",
                              "HBA_GetPortStatistics hba-0 1",
                              "HBA_GetDiscoveredPortAttributes hba-0 1 0",
                              "HBA_GetDiscoveredPortAttributes hba-0 1 1",
                              "HBA_CloseAdapter hba-0",
                              "HBA_GetAdapterName 1",
                              "HBA_OpenAdapter SUNW-qlc-1",
                              "HBA_GetAdapterAttributes SUNW-qlc-1",
                              "HBA_GetFcpTargetMapping SUNW-qlc-1 512",
                              "HBA_GetAdapterPortAttributes SUNW-qlc-1 0",
                              "HBA_GetPortStatistics SUNW-qlc-1 0",
                              "HBA_GetDiscoveredPortAttributes SUNW-qlc-1 0 0",
                              "HBA_GetDiscoveredPortAttributes SUNW-qlc-1 0 1",
                              "HBA_GetAdapterPortAttributes SUNW-qlc-1 1",
                              "HBA_GetPortStatistics SUNW-qlc-1 1",
                              "HBA_CloseAdapter SUNW-qlc-1",
                              "HBA_FreeLibrary"}));
    // Both local ports get the remote port's entries, in the table's order.
    for (const char *at : {"0/0/0", "0/1/0", "1/0/0"}) {
        EXPECT_EQ(cache.values(std::string(at) + "/0/mapping"), "=|=|0|0|0|c0t0d0|0|" + wwnA);
        EXPECT_EQ(cache.values(std::string(at) + "/1/mapping"), "=|=|2|0|0|c2t0d0|0|" + wwnA);
    }
}

TEST_F(HbaTest, JavaIsReachedInOrder) {
    loadAdapters({adapter("hba-0", {port({remotePort(wwnA)})}, {target(wwnA)})});
    fill();
    const std::string hba = "FindClass com/kelvo/tarn/providers/hba/";
    EXPECT_EQ(beginning(calls, {"FindClass"}),
              (Lines{"FindClass com/kelvo/tarn/TrClass", "FindClass com/kelvo/tarn/TrProperty",
                     "FindClass com/kelvo/tarn/TrInstance", hba + "HostBusAdapterProvider", hba + "HbaPortProvider",
                     hba + "HbaDiscoveredPortProvider", hba + "FCPortStatisticsProvider", hba + "TargetMappingProvider",
                     hba + "HbaClassNames", hba + "HbaCache$Hba", hba + "HbaCache$HbaPort",
                     hba + "HbaCache$HbaDiscoveredPort", "FindClass javax/wbem/cim/UnsignedInt64",
                     "FindClass javax/wbem/cim/UnsignedInt32", "FindClass javax/wbem/cim/UnsignedInt16",
                     "FindClass com/kelvo/log/KelvoLogger", "FindClass org/apache/log4j/Logger", hba + "HbaCache"}));
    EXPECT_EQ(beginning(calls, {"EnsureLocalCapacity", "PushLocalFrame", "HBA"}),
              (Lines{"EnsureLocalCapacity 1000", "EnsureLocalCapacity 10", "PushLocalFrame 48", "PushLocalFrame 20",
                     "PushLocalFrame 44", "PushLocalFrame 44", "PushLocalFrame 9", "PushLocalFrame 44",
                     "PushLocalFrame 26"}));

    const std::string propertyType = " Lcom/kelvo/tarn/TrProperty;";
    std::string properties;
    for (const std::string &call : beginning(calls, {"GetStaticFieldID"})) {
        if (call.ends_with(propertyType)) {
            const std::string name = call.substr(0, call.size() - propertyType.size());
            properties += name.substr(name.rfind(' '));
        }
    }
    EXPECT_EQ(properties,
              " deviceID creationClassName systemName systemCreationClassName manufacturer serialNumber model"
              " modelDescription name nodeSymbolicName hardwareVersion driverVersion optionRomVersion firmwareVersion"
              " vendorSpecificID driverName caption description elementName"
              " nodeWWN permanentAddress portFcId portType portState supportedCOS name osDeviceName maxSpeed speed"
              " supportedMaximumTransmissionUnit fabricName deviceID systemName systemCreationClassName"
              " operationalStatus creationClassName caption description elementName portNumber"
              " elementName instanceID packetsTransmitted packetsReceived lipCount nosCount errorFrames dumpedFrames"
              " linkFailures lossOfSyncCounter lossOfSignalCounter primitiveSeqProtocolErrCount"
              " invalidTransmissionWords crcErrors"
              " antecedent dependent scsiBus targetId scsiLun osDeviceName exportedLUN discoveredPortWWN");

    loadTwoAdapters();
    fill();
    std::set<std::string> lookUps;
    for (const std::string &call : beginning(calls, {"FindClass", "GetMethodID", "GetStaticFieldID"})) {
        EXPECT_TRUE(lookUps.insert(call).second || call.ends_with("SolarisNativeMethod")) << "again: " << call;
    }
}

TEST_F(HbaTest, CaptionsAreOneString) {
    loadAdapters({adapter("hba-0", {port({})})});
    const jobjectArray cache = Objects(env).fill();
    const jobject hba = env->GetObjectArrayElement(cache, 0);
    const auto ports =
        static_cast<jobjectArray>(jvm::call(env, hba, "ports", "()[Lcom/kelvo/tarn/providers/hba/HbaCache$HbaPort;"));
    for (const jobject record : {hba, env->GetObjectArrayElement(ports, 0)}) {
        const jobject instance = jvm::call(env, record, "instance", "()Lcom/kelvo/tarn/TrInstance;");
        const auto values = static_cast<jobjectArray>(env->GetObjectField(
            instance, env->GetFieldID(env->GetObjectClass(instance), "values", "[Ljava/lang/Object;")));
        const jsize caption = record == hba ? 16 : 17;
        for (const jsize other : {1, 2}) {
            EXPECT_TRUE(env->IsSameObject(env->GetObjectArrayElement(values, caption),
                                          env->GetObjectArrayElement(values, caption + other)));
        }
    }
}

// ---- Refusals -------------------------------------------------------------------------------------------------------

/// The number of that call among those that can be refused with an exception.
int refusableNumber(const Lines &calls, std::size_t position) {
    const Lines neverRefused{"GetStaticObjectField", "SetByteArrayRegion", "ReleaseStringUTFChars", "DeleteLocalRef",
                             "PopLocalFrame",        "ExceptionCheck",     "ExceptionClear"};
    const Lines before(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(position) + 1);
    return static_cast<int>(before.size() - beginning(before, neverRefused).size());
}

TEST_F(HbaTest, WhatJavaRefusesIsLeftOut) {
    loadAdapters({adapter(
        "hba-0",
        {port({remotePort(wwnA)}, R"(, "status": {"GetAdapterPortAttributes": [1]})"), port({remotePort(wwnA)})},
        {target(wwnA)})});
    const Objects objects(env);
    fill(objects);
    const Lines undisturbed = calls;
    const std::string empty = "null|null|null|null|null|null|null|null|null|null|null|null|null|null|null|null|";
    const struct {
        std::string refused;
        int occurrence;
        std::size_t before; // that the refused call is
        std::string where;
        std::string values;
    } cases[] = {
        {"PushLocalFrame 48", 1, 0, "0/adapter", "null"},
        {"PushLocalFrame 20", 1, 0, "0/1/port", "null"},
        {"PushLocalFrame 44", 1, 0, "0/1/port",
         empty + "Kelvo_HbaPort|Adapter 0 Port 1|Adapter 0 Port 1|Adapter 0 Port 1|1"},
        {"PushLocalFrame 44", 2, 0, "0/1/statistics", "null"},
        {"PushLocalFrame 9", 1, 0, "0/1/0/remote", "null"},
        {"PushLocalFrame 44", 3, 0, "0/1/0/remote", empty + "Kelvo_HbaDiscoveredPort|null|null|null|null"},
        {"PushLocalFrame 26", 1, 0, "0/1/0/0", "null"},
        // A log line is lost, and the walk goes on: of the Java call for the log's class, and all that follows it.
        {"GetStringUTFChars", 1, 2, "0/0", "null"},
        {"GetStringUTFChars", 1, 0, "0/0", "null"},
        {logMethod, 1, 1, "0/0", "null"},
        {logMethod, 1, 0, "0/0", "null"},
        {"NewStringUTF HBA_", 1, 0, "0/0", "null"},
        {"CallStaticVoidMethod", 1, 0, "0/0", "null"},
    };
    for (const auto &[refused, occurrence, before, where, values] : cases) {
        std::size_t position = 0;
        for (int seen = 0; position < undisturbed.size(); ++position) {
            seen += undisturbed[position].starts_with(refused) ? 1 : 0;
            if (seen == occurrence) {
                break;
            }
        }
        jobjectArray cache = nullptr;
        {
            jvm::JniTable table(env);
            table.refuse(refusableNumber(undisturbed, position - before));
            cache = objects.fill();
            ASSERT_TRUE(table.hasRefused()) << refused;
            const auto cleared = std::find(table.calls.begin(), table.calls.end(), "ExceptionClear");
            ASSERT_NE(cleared, table.calls.end()) << refused;
        }
        EXPECT_EQ(jvm::takeException(env), "");
        const jvm::HbaTree tree(env, cache);
        EXPECT_EQ(tree.values(where), values) << refused;
        EXPECT_EQ(tree.lines.size(), 6U);
    }
}

TEST_F(HbaTest, EveryRefusedCallEndsCleanly) {
    loadTwoAdapters();
    const Objects objects(env);
    fill(objects); // the agent learns the system's name now, and not in a run of its own
    const auto fillOnce = [&](JNIEnv *) { return objects.fill(); };
    EXPECT_GT(jvm::refuseEveryCall(env, jvm::Refusal::withException, fillOnce), 700);
    EXPECT_GT(jvm::refuseEveryCall(env, jvm::Refusal::withNull, fillOnce), 200);

    const jobject lines = newList();
    const auto testOnce = [&](JNIEnv *) -> jobject {
        Java_com_kelvo_tarn_providers_hba_HbaCache_testHbaLibrary(env, objects.cache, lines);
        return nullptr;
    };
    EXPECT_GT(jvm::refuseEveryCall(env, jvm::Refusal::withException, testOnce), 40);
}

TEST_F(HbaTest, NullArgumentsGiveWhatCanBeGiven) {
    loadTwoAdapters();
    Objects objects(env);
    objects.names = nullptr;
    const jvm::HbaTree cache = fill(objects);
    EXPECT_EQ(beginning(cache.lines, {"0/adapter", "0/0/", "1/1/"}),
              (Lines{"0/adapter null", "0/0/port null", "0/0/statistics null", "0/0/0/remote null", "0/0/0/0 null",
                     "0/0/0/1 null", "0/0/1/remote null", "0/0/1/0 null", "1/1/port null", "1/1/statistics null"}));
    Java_com_kelvo_tarn_providers_hba_HbaCache_testHbaLibrary(env, objects.cache, nullptr);
    EXPECT_EQ(jvm::takeException(env), "");
}

// ---- Large fabrics and many threads ---------------------------------------------------------------------------------

TEST_F(HbaTest, LargeMappingsAreMatchedWhole) {
    const struct {
        int remotePorts;
        int entriesEach;
    } cases[] = {{1, 512}, {1, 513}, {7, 100}, {50, 100}};
    for (const auto &[remotePorts, entriesEach] : cases) {
        const int entries = entriesEach * remotePorts;
        const auto wwn = [](int r) { return "50060e8000c3" + std::to_string(1000 + r); };
        Lines remote;
        Lines mapping;
        for (int r = 0; r < remotePorts; ++r) {
            remote.push_back(remotePort(wwn(r)));
        }
        for (int e = 0; e < entries; ++e) {
            mapping.push_back(target(wwn(e % remotePorts), "", R"(, "ScsiOSLun": )" + std::to_string(e / remotePorts)));
        }
        loadAdapters({adapter("hba-0", {port(remote)}, mapping)});
        const Objects objects(env);
        replay::startJournal();
        env->PushLocalFrame(16);
        const jvm::HbaTree cache(env, static_cast<jobjectArray>(env->PopLocalFrame(objects.fill())));
        Lines rooms{"HBA_GetFcpTargetMapping hba-0 512"};
        if (entries > 512) {
            rooms.push_back("HBA_GetFcpTargetMapping hba-0 " + std::to_string(entries));
        }
        EXPECT_EQ(beginning(replay::stopJournal(), {"HBA_GetFcpTargetMapping"}), rooms);
        for (int r = 0; r < remotePorts; r += 49) {
            for (int k = 0; k < entriesEach; ++k) {
                const std::string lun = std::to_string(k);
                ASSERT_EQ(cache.values("0/0/" + std::to_string(r) + "/" + lun + "/mapping"),
                          "=|=|0|0|" + lun + "|c0t0d" + lun + "|0|" + wwn(r));
            }
        }
        EXPECT_EQ(cache.lines.size(), 3U + static_cast<std::size_t>(remotePorts + entries));
    }
}

TEST_F(HbaTest, ThreadsThatFillAtOnceAllGetTheWholeCache) {
    loadTwoAdapters();
    const Lines whole = fill().lines;
    std::atomic<int> equal = 0;
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&] {
                const jvm::AttachedThread thread;
                for (int round = 0; round < 10; ++round) {
                    thread.env->PushLocalFrame(64);
                    const Objects objects(thread.env);
                    equal += jvm::HbaTree(thread.env, objects.fill()).lines == whole ? 1 : 0;
                    thread.env->PopLocalFrame(nullptr);
                }
            });
        }
    }
    EXPECT_EQ(equal, 40);
}

// ---- The self-test --------------------------------------------------------------------------------------------------

TEST_F(HbaTest, SelfTestTellsWhatTheLibrarySays) {
    const std::string longName(255, 'n');
    const std::string attributes = R"(, "attributes": {"NodeWWN": "200000e08b010203", "Manufacturer": ")" +
                                   std::string(64, 'M') + R"(", "SerialNumber": ")" + std::string(64, 'S') +
                                   R"(", "Model": ")" + std::string(256, 'O') + R"(", "ModelDescription": ")" +
                                   std::string(256, 'D') + "\"}";
    const std::string localPort = R"({"attributes": {"NodeWWN": "2000000000000001", "PortWWN": "2100000000000001",
        "PortFcId": 66048}, "discovered": [)" +
                                  remotePort(wwnA) + ", " +
                                  remotePort(wwnB, R"(, "status": {"GetDiscoveredPortAttributes": 3})") + ", " +
                                  remotePort(wwnB) + "]}";
    loadAdapters({
        adapter("gone", {}, {}, R"(, "openFailures": 2)"),
        adapter("nameless", {}, {}, R"(, "status": {"GetAdapterName": 1})"),
        adapter("hba-2", {localPort, port({}, R"(, "status": {"GetAdapterPortAttributes": 6})")},
                {target(wwnA, "/dev/rdsk/c2t0d0s2", R"(, "ScsiTargetNumber": 4294967295, "ScsiOSLun": 7)",
                        "4611967493404098567")},
                attributes),
        adapter("SUNW-qlc-3", {}, {}, R"(, "status": {"GetFcpTargetMapping": [7, 7]})"),
        adapter(longName, {}, {}, R"(, "status": {"GetAdapterAttributes": 12})"),
        adapter("hba-5", {}, {}, R"(, "attributes": {"NumberOfPorts": 4294967295}, "NumberOfEntries": 4294967295)"),
        adapter("hba-6", {port({}, R"(, "attributes": {"NumberofDiscoveredPorts": 4294967295})")}, {},
                R"(, "status": {"GetFcpTargetMapping": 4})"),
    });
    const std::string none = "0000000000000000";
    neverOpened = {"HBA_OpenAdapter gone left open"};
    EXPECT_EQ(selfTest(),
              (Lines{
                  "Unable to open HBA adapter 0 (gone) -- status is 0 (OK) (check ownership)",
                  "Unable to open HBA adapter 1 () -- status is 1 (Error) (check ownership)",
                  "HBA 2 name(hba-2) NWWN=200000e08b010203",
                  "  manufacturer(" + std::string(63, 'M') + ") serial(" + std::string(63, 'S') + ") model(" +
                      std::string(255, 'O') + ") descr(" + std::string(255, 'D') + ")",
                  "  Port index 0 NWWN=2000000000000001",
                  "    PWWN=2100000000000001 FcId=0x10200",
                  "    Discovered port 0 NWWN=" + none,
                  "      PWWN=" + wwnA + " FcId=0x0",
                  "HBA_GetDiscoveredPortAttributes call returned 3 (Invalid handle) for adapter 2 (hba-2)",
                  "    Discovered port 2 NWWN=" + none,
                  "      PWWN=" + wwnB + " FcId=0x0",
                  "HBA_GetAdapterPortAttributes call returned 6 (Illegal index) for adapter 2 (hba-2)",
                  "  SCSI c0t-1d7 OsDeviceName(/dev/rdsk/c2t0d0s2) NWWN=" + none,
                  "    PWWN=" + wwnA + " FcId=0x0 Lun=0x4001000000000007",
                  "HBA 3 name(SUNW-qlc-3) NWWN=" + none,
                  "  manufacturer() serial() model() descr()",
                  "  (HBA_RefreshInformation not called.)",
                  "HBA_GetFcpTargetMapping call returned 7 (More data available) for adapter 3 (SUNW-qlc-3)",
                  "HBA_GetAdapterAttributes call returned 12 (HBA has been removed or deactivated) for adapter 4 (" +
                      longName + ")",
                  "HBA 5 name(hba-5) NWWN=" + none,
                  "  manufacturer() serial() model() descr()",
                  "Ignoring the 4294967295 ports that HBA adapter 5 (hba-5) reports -- more than 4096 cannot be right",
                  "HBA_GetFcpTargetMapping call returned 7 (More data available) for adapter 5 (hba-5)",
                  "HBA 6 name(hba-6) NWWN=" + none,
                  "  manufacturer() serial() model() descr()",
                  "  Port index 0 NWWN=" + none,
                  "    PWWN=" + none + " FcId=0x0",
                  "Ignoring the 4294967295 discovered ports of port 0 that HBA adapter 6 (hba-6) reports -- more than "
                  "65536 cannot be right",
                  "HBA_GetFcpTargetMapping call returned 4 (Invalid argument) for adapter 6 (hba-6)",
              }));
    EXPECT_EQ(beginning(journal, {"HBA_RefreshInformation", "HBA_GetPortStatistics"}),
              (Lines{"HBA_RefreshInformation hba-2", "HBA_RefreshInformation " + longName,
                     "HBA_RefreshInformation hba-5", "HBA_RefreshInformation hba-6"}));
    EXPECT_EQ(logLines(calls), Lines{});

    neverOpened.clear();
    loadAdapters({adapter("hba-0", {}, Lines(700, target(wwnA)))});
    EXPECT_EQ(selfTest().size(), 2U + 2 * 700);
    EXPECT_EQ(beginning(journal, {"HBA_GetFcpTargetMapping"}),
              (Lines{"HBA_GetFcpTargetMapping hba-0 512", "HBA_GetFcpTargetMapping hba-0 700"}));
    loadAdapters({});
    EXPECT_EQ(selfTest(), Lines{});
}

TEST_F(HbaTest, AListThatTakesNoLinesEndsTheSelfTest) {
    loadTwoAdapters();
    const Objects objects(env);
    const jclass collections = env->FindClass("java/util/Collections");
    const jobject immutable = env->CallStaticObjectMethod(
        collections, env->GetStaticMethodID(collections, "emptyList", "()Ljava/util/List;"));
    ASSERT_EQ(jvm::takeException(env), "");
    replay::startJournal();
    Java_com_kelvo_tarn_providers_hba_HbaCache_testHbaLibrary(env, objects.cache, immutable);
    EXPECT_EQ(jvm::unreleased(replay::stopJournal()), Lines{});
    EXPECT_EQ(jvm::takeException(env), "java.lang.UnsupportedOperationException");
}

} // namespace
