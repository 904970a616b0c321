// Disks and slices, from the native entry points through the agent's providers to the receiver.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "platform/replay/Replay.h"
#include "tests/jvm/JniTable.h"
#include "tests/jvm/Jvm.h"

extern "C" {
void Java_com_kelvo_tarn_providers_solaris_SolarisDiskDriveProvider_enumerateDisks(JNIEnv *, jobject, jobject);
jobject Java_com_kelvo_tarn_providers_solaris_SolarisDiskDriveProvider_getDisk(JNIEnv *, jobject, jstring);
void Java_com_kelvo_tarn_providers_solaris_SolarisDiskPartitionProvider_enumeratePartitions(JNIEnv *, jobject, jobject);
jobject Java_com_kelvo_tarn_providers_solaris_SolarisDiskPartitionProvider_getPartition(JNIEnv *, jobject, jstring);
}

namespace {

using Lines = std::vector<std::string>;

const std::string driveClass = "com/kelvo/tarn/providers/solaris/SolarisDiskDriveProvider";
const std::string partitionClass = "com/kelvo/tarn/providers/solaris/SolarisDiskPartitionProvider";

void loadDisks(const std::string &disks, const std::string &entries = "") {
    replay::loadHostText(R"({"disks": [)" + disks + R"(], "entries": [)" + entries + "]}");
}

/// A disk under "/NAME@0,0", unless its members say another path.
std::string disk(const std::string &name, const std::string &members, int major = 32) {
    const bool hasPath = members.find(R"("path")") != std::string::npos;
    return R"({"name": ")" + name + R"(", "major": )" + std::to_string(major) + R"(, "minor": 8, )" +
           (hasPath ? "" : R"("path": "/)" + name + R"(@0,0", )") + members + "}";
}

const std::string geometry =
    R"("geometry": {"dkg_nhead": 24, "dkg_nsect": 424, "dkg_pcyl": 65535, "dkg_ncyl": 14087, "dkg_acyl": 2})";

std::string labelled(const std::string &label) {
    return geometry + R"(, "vtoc": {"v_asciilabel": ")" + label + R"(", "v_part": [
        {"p_tag": 2, "p_size": 20972736}, {"p_tag": 65535, "p_flag": 65534, "p_size": 4294967297}]})";
}

const std::string twoDisks = disk("c0t0d0", labelled("SUN72G cyl 14087 alt 2 hd 24 sec 424")) + ", " +
                             disk("c1t0d0", geometry + R"(, "slices": ["s2"])");

/// Lines of the calls or of the journal that begin so.
Lines beginning(const Lines &lines, const std::string &start) {
    Lines found;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(found),
                 [&](const std::string &line) { return line.rfind(start, 0) == 0; });
    return found;
}

class DiskProvidersTest : public testing::Test {
protected:
    DiskProvidersTest() {
        env->PushLocalFrame(128);
        drives = newProvider(driveClass);
        partitions = newProvider(partitionClass);
    }
    ~DiskProvidersTest() override {
        env->PopLocalFrame(nullptr);
    }

    jobject newProvider(const std::string &className) {
        const jclass cls = env->FindClass(className.c_str());
        return env->NewObject(cls, env->GetMethodID(cls, "<init>", "()V"));
    }

    /// A receiver that throws once it has been given that many instances.
    jobject receiverOf(jint capacity) {
        queue = jvm::newQueue(env, capacity);
        return jvm::instanceReceiver(env, queue, "add");
    }

    jobjectArray instances() {
        return static_cast<jobjectArray>(jvm::call(env, queue, "toArray", "()[Ljava/lang/Object;"));
    }

    Lines received() {
        env->PushLocalFrame(16);
        const jobjectArray array = instances();
        Lines all;
        for (jsize i = 0; i < env->GetArrayLength(array); ++i) {
            const jobject instance = env->GetObjectArrayElement(array, i);
            all.push_back(jvm::instanceText(env, instance));
            env->DeleteLocalRef(instance);
        }
        env->PopLocalFrame(nullptr);
        return all;
    }

    jstring newString(const char *text) {
        return text == nullptr ? nullptr : env->NewStringUTF(text);
    }
    void enumerateDisks(jobject receiver) {
        Java_com_kelvo_tarn_providers_solaris_SolarisDiskDriveProvider_enumerateDisks(env, drives, receiver);
    }
    void enumeratePartitions(jobject receiver) {
        Java_com_kelvo_tarn_providers_solaris_SolarisDiskPartitionProvider_enumeratePartitions(env, partitions,
                                                                                               receiver);
    }
    jobject getDisk(jstring name) {
        return Java_com_kelvo_tarn_providers_solaris_SolarisDiskDriveProvider_getDisk(env, drives, name);
    }
    jobject getPartition(jstring name) {
        return Java_com_kelvo_tarn_providers_solaris_SolarisDiskPartitionProvider_getPartition(env, partitions, name);
    }

    JNIEnv *env = jvm::environment();
    jobject drives = nullptr;
    jobject partitions = nullptr;
    jobject queue = nullptr;
};

TEST_F(DiskProvidersTest, DisksTellWhatCouldBeRead) {
    const std::string longPath(1100, 'p');
    const struct {
        std::string name;
        std::string members;
        std::string values; // empty: no instance
        Lines log;
    } cases[] = {
        {"c0t0d0", labelled("SUN72G cyl 14087 alt 2"), "SUN72G|/c0t0d0@0,0|24|424|65535|14087|2", {}},
        {"toRead",
         labelled("NoBlank") + R"(, "fails": {"DKIOCGGEOM O_RDWR": "ENOTTY"})",
         "NoBlank|/toRead@0,0|24|424|65535|14087|2",
         {}},
        {"full", labelled(std::string(128, 'L')), std::string(128, 'L') + "|/full@0,0|24|424|65535|14087|2", {}},
        {"noTable", geometry, "null|/noTable@0,0|0|0|0|0|0", {"SolarisDiskDrive DKIOCGVTOC"}},
        {"noGeometry",
         labelled("T") + R"(, "fails": {"DKIOCGGEOM": "EIO"})",
         "null|/noGeometry@0,0|0|0|0|0|0",
         {"SolarisDiskDrive DKIOCGGEOM"}},
        {"neither",
         R"("slices": ["s2"])",
         "null|/neither@0,0|0|0|0|0|0",
         {"SolarisDiskDrive DKIOCGGEOM", "SolarisDiskDrive DKIOCGVTOC"}},
        {"noOpen", labelled("T") + R"(, "fails": {"open": "EBUSY"})", "", {}},
        {"noLink", labelled("T") + R"(, "fails": {"readlink": "EINVAL"})", "T|null|24|424|65535|14087|2", {}},
        {"noSlice2", labelled("T") + R"(, "slices": ["s0", "s1"])", "", {}},
        {"far",
         labelled("T") + R"(, "path": "/)" + longPath + "\"",
         "T|/" + longPath.substr(0, 1023 - std::string("../../devices/").size()) + "|24|424|65535|14087|2",
         {}},
    };
    Lines expected;
    Lines log;
    std::string disks;
    for (const auto &[name, members, values, lines] : cases) {
        disks += (disks.empty() ? "" : ", ") + disk(name, members);
        if (!values.empty()) {
            expected.push_back(name + "|" + values);
        }
        log.insert(log.end(), lines.begin(), lines.end());
    }
    loadDisks(disks, R"({"path": "/dev/rdsk/s2"}, {"path": "/dev/rdsk/c9t9d9s2", "link": "../../devices/none:c,raw"})");

    const jobject receiver = receiverOf(100);
    replay::startJournal();
    jvm::JniTable table(env);
    enumerateDisks(receiver);
    const Lines journal = replay::stopJournal();
    EXPECT_EQ(jvm::takeException(env), "");
    EXPECT_EQ(received(), expected);
    std::transform(log.begin(), log.end(), log.begin(), [](const std::string &line) { return "NewStringUTF " + line; });
    EXPECT_EQ(beginning(table.calls, "NewStringUTF SolarisDiskDrive"), log);
    EXPECT_EQ(
        beginning(table.calls, "GetStaticMethodID com/kelvo/tarn/providers/solaris/SolarisNativeMethod warn").size(),
        log.size());
    EXPECT_EQ(jvm::unreleased(journal), Lines{});
    for (const std::string &line : beginning(journal, "open ")) {
        EXPECT_NE(line.find("s2 O_RD"), std::string::npos) << line;
        EXPECT_EQ(line.find("/s2 "), std::string::npos) << line;
    }
    for (const std::string &line : expected) { // one by one they are the same
        EXPECT_EQ(jvm::instanceText(env, getDisk(newString(line.substr(0, line.find('|')).c_str()))), line);
    }
}

TEST_F(DiskProvidersTest, SlicesAreDescribedOrPassedOver) {
    loadDisks(
        disk("c0t0d0", labelled("T") + R"(, "slices": ["s0", "s1"], "mounted": ["s1"])") + ", " +
            disk("emcpower0", labelled("T") + R"(, "slices": ["a"])") + ", " + disk("noTable", geometry) + ", " +
            disk("c3", labelled("T") + R"(, "fails": {"fstat": "EIO"})") + ", " +
            disk("c4", labelled("T") + R"(, "fails": {"DKIOCINFO": "ENOTTY"})") + ", " +
            disk("c5", labelled("T") + R"(, "fails": {"open O_RDWR": "EROFS"})") + ", " +
            disk("n", labelled("T") + R"(, "slices": ["00", "01", "02", "03", "04", "05", "06", "07", "08"])", 33),
        R"({"path": "/dev/rdsk/ab"})");
    Lines expected{"c0t0d0s0|c0t0d0|0|20972736|2|0|false",
                   "c0t0d0s1|c0t0d0|1|1|65535|65534|true", // the low 32 bits of the size
                   "emcpower0a|emcpower0|0|20972736|2|0|false", "n00|n00|0|20972736|2|0|false",
                   "n01|n01|1|1|65535|65534|false"};
    for (const std::string number : {"2", "3", "4", "5", "6", "7"}) { // the ninth is beyond the table
        expected.push_back("n0" + number + "|n0" + number + "|" + number + "|0|0|0|false");
    }
    const jobject receiver = receiverOf(100);
    replay::startJournal();
    jvm::JniTable table(env);
    enumeratePartitions(receiver);
    const Lines journal = replay::stopJournal();
    EXPECT_EQ(jvm::takeException(env), "");
    EXPECT_EQ(received(), expected);
    EXPECT_EQ(beginning(table.calls, "CallStaticVoidMethod"), Lines{}) << "nothing is logged";
    EXPECT_EQ(jvm::unreleased(journal), Lines{});
    EXPECT_EQ(beginning(journal, "open ").size(), 2u + 1 + 8 * 4 + 9);
    EXPECT_EQ(jvm::instanceText(env, getPartition(newString("c0t0d0s1"))), expected[1]);
    for (const char *none : {"c0t0d0", "noTables0", "n08", "absent", "", static_cast<const char *>(nullptr)}) {
        EXPECT_EQ(getPartition(newString(none)), nullptr);
        EXPECT_EQ(getDisk(newString(none)), nullptr);
    }
}

TEST_F(DiskProvidersTest, NamesThatDoNotFitAreNotOpened) {
    for (const std::size_t length : {97u, 98u, 99u, 100u, 1100u}) {
        const std::string name(length, 'd');
        loadDisks(disk(name, labelled("T") + R"(, "slices": ["", "s2"])"));
        replay::startJournal();
        EXPECT_EQ(getDisk(newString(name.c_str())) != nullptr, length <= 97) << length;
        EXPECT_EQ(getPartition(newString(name.c_str())) != nullptr, length <= 99) << length;
        EXPECT_EQ(beginning(replay::stopJournal(), "open ").size(),
                  (length <= 97 ? 1u : 0u) + (length <= 99 ? 1u : 0u));
    }
}

TEST_F(DiskProvidersTest, CallsComeInTheirOrder) {
    const auto setUpOf = [](const std::string &provider, const Lines &classes, const std::string &name) {
        Lines calls{"EnsureLocalCapacity 1000"};
        for (const char *first : {"com/kelvo/tarn/TrClass", "com/kelvo/tarn/TrProperty", "com/kelvo/tarn/TrInstance",
                                  "com/kelvo/tarn/InstanceReceiver", "javax/wbem/cim/UnsignedInt64",
                                  "javax/wbem/cim/UnsignedInt32", "javax/wbem/cim/UnsignedInt16"}) {
            calls.push_back(std::string("FindClass ") + first);
        }
        calls.insert(calls.end(), classes.begin(), classes.end());
        const std::string classNames = "com/kelvo/tarn/providers/hba/HbaClassNames";
        calls.insert(calls.end(),
                     {"FindClass " + provider, "FindClass " + classNames,
                      "GetStaticFieldID " + provider + " _class Lcom/kelvo/tarn/TrClass;",
                      "GetStaticObjectField " + provider,
                      "GetMethodID com/kelvo/tarn/TrClass getNamespace ()Lcom/kelvo/tarn/TrNamespace;",
                      "CallObjectMethod", "ExceptionCheck",
                      "GetStaticMethodID " + classNames + " get (Lcom/kelvo/tarn/TrNamespace;)L" + classNames + ";",
                      "CallStaticObjectMethod " + classNames, "ExceptionCheck", "GetStringUTFChars",
                      "ReleaseStringUTFChars " + name});
        return calls;
    };
    loadDisks(twoDisks);
    const jstring diskName = newString("c0t0d0");
    const jstring sliceName = newString("c0t0d0s0");
    {
        jvm::JniTable table(env);
        replay::startJournal();
        getDisk(diskName);
        Lines expected = setUpOf(driveClass, {}, "c0t0d0");
        expected.insert(expected.end(),
                        {"NewStringUTF /c0t0d0@0,0", "PushLocalFrame 70", "NewStringUTF c0t0d0", "NewStringUTF SUN72G",
                         "GetMethodID " + driveClass +
                             " makeDisk1 (Ljava/lang/String;Ljava/lang/String;Ljava/lang/String;JJJJJ)"
                             "Lcom/kelvo/tarn/TrInstance;",
                         "CallObjectMethod", "ExceptionCheck", "PopLocalFrame", "DeleteLocalRef"});
        EXPECT_EQ(table.calls, expected);
        const std::string path = "/dev/rdsk/c0t0d0s2";
        EXPECT_EQ(replay::stopJournal(),
                  (Lines{"open " + path + " O_RDWR|O_NDELAY", "ioctl DKIOCGGEOM " + path, "ioctl DKIOCGGEOM " + path,
                         "ioctl DKIOCGVTOC " + path, "readlink " + path, "close " + path}));
    }
    {
        jvm::JniTable table(env);
        getPartition(sliceName);
        Lines expected = setUpOf(partitionClass,
                                 {"FindClass javax/wbem/cim/UnsignedInt8", "FindClass java/lang/Boolean"}, "c0t0d0s0");
        expected.insert(expected.end(),
                        {"PushLocalFrame 50", "NewStringUTF c0t0d0s0", "NewStringUTF c0t0d0",
                         "GetMethodID " + partitionClass +
                             " makePartition1 (Ljava/lang/String;Ljava/lang/String;IISSZ)Lcom/kelvo/tarn/TrInstance;",
                         "CallObjectMethod", "ExceptionCheck", "PopLocalFrame"});
        EXPECT_EQ(table.calls, expected);
    }
    const jobject receiver = receiverOf(100);
    for (const bool ofDisks : {true, false}) {
        jvm::JniTable table(env);
        ofDisks ? enumerateDisks(receiver) : enumeratePartitions(receiver);
        EXPECT_EQ(table.calls.front(), "EnsureLocalCapacity 2000");
        const Lines lookups = beginning(table.calls, "Get");
        EXPECT_EQ(std::set(lookups.begin(), lookups.end()).size(), lookups.size()) << "looked up twice";
    }
}

TEST_F(DiskProvidersTest, AThrowingReceiverEndsTheWalk) {
    std::string disks;
    for (const char *name : {"a", "b", "c", "d"}) {
        disks += (disks.empty() ? "" : ", ") + disk(name, labelled("T") + R"(, "slices": ["s2"])");
    }
    loadDisks(disks);
    for (const bool ofDisks : {true, false}) {
        const jobject receiver = receiverOf(2);
        replay::startJournal();
        {
            jvm::JniTable table(env);
            ofDisks ? enumerateDisks(receiver) : enumeratePartitions(receiver);
            EXPECT_EQ(table.faults(), Lines{});
            EXPECT_EQ(beginning(table.calls, "ExceptionDescribe").size(), ofDisks ? 1u : 0u);
        }
        const Lines journal = replay::stopJournal();
        EXPECT_EQ(jvm::takeException(env), ofDisks ? "" : "java.lang.IllegalStateException: Queue full");
        EXPECT_EQ(env->GetArrayLength(instances()), 2);
        EXPECT_EQ(beginning(journal, "open ").size(), 3u);
        EXPECT_EQ(jvm::unreleased(journal), Lines{});
    }
}

TEST_F(DiskProvidersTest, WithoutDevicesOrReceiverNothingIsDone) {
    const jobject receiver = receiverOf(1);
    const struct {
        const char *what;
        std::string disks;
        std::string entries;
        jobject receiver;
    } cases[] = {
        {"no directory", "", "", receiver},
        {"an empty directory", "", R"({"path": "/dev/rdsk/ab"})", receiver},
        {"no receiver", twoDisks, "", nullptr},
    };
    for (const auto &[what, disks, entries, given] : cases) {
        loadDisks(disks, entries);
        replay::startJournal();
        enumerateDisks(given);
        enumeratePartitions(given);
        const Lines journal = replay::stopJournal();
        EXPECT_EQ(jvm::takeException(env), "") << what;
        EXPECT_EQ(beginning(journal, "open "), Lines{}) << what;
        EXPECT_EQ(jvm::unreleased(journal), Lines{}) << what;
    }
}

TEST_F(DiskProvidersTest, EveryRefusedCallEndsCleanly) {
    loadDisks(twoDisks);
    const jobject receiver = receiverOf(10000);
    const jstring names[] = {newString("c0t0d0"), newString("c1t0d0"), newString("c0t0d0s1")};
    const struct {
        std::function<jobject(JNIEnv *)> entry;
        bool quietly;
    } entries[] = {
        {[&](JNIEnv *) -> jobject { return enumerateDisks(receiver), nullptr; }, true},
        {[&](JNIEnv *) -> jobject { return enumeratePartitions(receiver), nullptr; }, false},
        {[&](JNIEnv *) { return getDisk(names[0]); }, false},
        {[&](JNIEnv *) { return getDisk(names[1]); }, false},
        {[&](JNIEnv *) { return getPartition(names[2]); }, false},
    };
    for (const auto &[entry, quietly] : entries) {
        EXPECT_GT(jvm::refuseEveryCall(env, jvm::Refusal::withException, entry, "", quietly), 20);
        EXPECT_GE(jvm::refuseEveryCall(env, jvm::Refusal::withNull, entry), 4);
    }
}

TEST_F(DiskProvidersTest, LiveReferencesDoNotGrowWithTheHost) {
    std::string disks;
    for (int i = 0; i < 2600; ++i) {
        // The last have no table, which is a log line for each.
        disks += (i == 0 ? "" : ", ") + disk("c0t" + std::to_string(i) + "d0", i < 2500 ? labelled("T") : geometry);
    }
    loadDisks(disks);
    for (const bool ofDisks : {true, false}) {
        const jobject receiver = receiverOf(20000);
        jvm::JniTable table(env);
        ofDisks ? enumerateDisks(receiver) : enumeratePartitions(receiver);
        EXPECT_EQ(jvm::takeException(env), "");
        EXPECT_EQ(env->GetArrayLength(instances()), ofDisks ? 2600 : 20000);
        EXPECT_LT(table.peakLocalReferences, 30);
        EXPECT_EQ(table.faults(), Lines{});
    }
}

} // namespace
