// Disks and slices, from the native entry points through the agent's providers to the receiver.

#include <gtest/gtest.h>

#include "platform/replay/Replay.h"
#include "tests/jvm/Entries.h"
#include "tests/jvm/JniTable.h"
#include "tests/jvm/JvmTest.h"

namespace {

using namespace tests;

const std::string driveClass = "com/kelvo/tarn/providers/solaris/SolarisDiskDriveProvider";
const std::string partitionClass = "com/kelvo/tarn/providers/solaris/SolarisDiskPartitionProvider";

/// A disk under "/NAME@0,0", unless its members say another path.
std::string disk(const std::string &name, const std::string &members) {
    const bool hasPath = members.find(R"("path")") != std::string::npos;
    return R"({"name": ")" + name + (hasPath ? "" : R"(", "path": "/)" + name + "@0,0") + R"(", )" + members + "}";
}

const std::string geometry =
    R"("geometry": {"dkg_nhead": 24, "dkg_nsect": 424, "dkg_pcyl": 65535, "dkg_ncyl": 14087, "dkg_acyl": 2})";

std::string labelled(const std::string &label) {
    return geometry + R"(, "vtoc": {"v_asciilabel": ")" + label + R"(", "v_part": [
        {"p_tag": 2, "p_size": 20972736}, {"p_tag": 65535, "p_flag": 65534, "p_size": 4294967297}]})";
}

void loadDisks(const Lines &disks, const std::string &entries = "") {
    replay::loadHostText(R"({"disks": [)" + joined(disks, ", ") + R"(], "entries": [)" + entries + "]}");
}

class DiskProvidersTest : public jvm::JvmTest {
protected:
    jobject newProvider(const std::string &className) {
        const jclass cls = env->FindClass(className.c_str());
        return env->NewObject(cls, env->GetMethodID(cls, "<init>", "()V"));
    }

    void enumerate(bool ofDisks, jobject receiver) {
        (ofDisks ? DRIVES(enumerateDisks) : PARTITIONS(enumeratePartitions))(env, ofDisks ? drives : partitions,
                                                                             receiver);
    }
    jobject get(bool ofDisks, jstring name) {
        return (ofDisks ? DRIVES(getDisk) : PARTITIONS(getPartition))(env, ofDisks ? drives : partitions, name);
    }

    /// Enumerates to a receiver that throws when it is given more than `room` instances. Answers what it was given.
    Lines received(bool ofDisks, jint room) {
        const jobject queue = jvm::newQueue(env, room);
        const jobject receiver = jvm::instanceReceiver(env, queue, "add");
        replay::startJournal();
        {
            jvm::JniTable table(env);
            enumerate(ofDisks, receiver);
            EXPECT_EQ(table.faults(), Lines{});
            calls = table.calls;
        }
        journal = replay::stopJournal();
        EXPECT_EQ(jvm::unreleased(journal), Lines{});
        exception = jvm::takeException(env);
        Lines all;
        const auto array = static_cast<jobjectArray>(jvm::call(env, queue, "toArray", "()[Ljava/lang/Object;"));
        for (jsize i = 0; i < env->GetArrayLength(array); ++i) {
            env->PushLocalFrame(16);
            all.push_back(jvm::instanceText(env, env->GetObjectArrayElement(array, i)));
            env->PopLocalFrame(nullptr);
        }
        return all;
    }

    const jobject drives = newProvider(driveClass);
    const jobject partitions = newProvider(partitionClass);
    // Of the latest enumeration.
    Lines calls;
    Lines journal;
    std::string exception;
};

TEST_F(DiskProvidersTest, DisksTellWhatCouldBeRead) {
    Lines disks;
    Lines expected;
    const auto add = [&](const std::string &name, const std::string &members, const std::string &values) {
        disks.push_back(disk(name, members));
        if (!values.empty()) {
            expected.push_back(name + "|" + values);
        }
    };
    const std::string figures = "|24|424|65535|14087|2";
    const std::string full(128, 'L');
    const std::string path(1100, 'p');
    add("c0t0d0", labelled("SUN72G cyl 1 alt 2"), "SUN72G|/c0t0d0@0,0" + figures);
    add("toRead", labelled("T") + R"(, "fails": {"DKIOCGGEOM O_RDWR": "EIO"})", "T|/toRead@0,0" + figures);
    add("full", labelled(full), full + "|/full@0,0" + figures);
    add("noTable", geometry, "null|/noTable@0,0|0|0|0|0|0");
    add("noGeometry", labelled("T") + R"(, "fails": {"DKIOCGGEOM": "EIO"})", "null|/noGeometry@0,0|0|0|0|0|0");
    add("neither", R"("slices": ["s2"])", "null|/neither@0,0|0|0|0|0|0");
    add("noOpen", labelled("T") + R"(, "fails": {"open": "EBUSY"})", "");
    add("noLink", labelled("T") + R"(, "fails": {"readlink": "EINVAL"})", "T|null" + figures);
    add("noSlice2", labelled("T") + R"(, "slices": ["s0", "s1"])", "");
    // The link of this one is cut.
    add("far", labelled("T") + R"(, "path": "/)" + path + '"', "T|/" + path.substr(0, 1009) + figures);
    loadDisks(disks, R"({"path": "/dev/rdsk/s2"}, {"path": "/dev/rdsk/c9t9d9s2", "link": "../../devices/none:c,raw"})");
    EXPECT_EQ(received(true, 100), expected);
    const Lines complaints{R"(warn "SolarisDiskDrive DKIOCGVTOC")", R"(warn "SolarisDiskDrive DKIOCGGEOM")"};
    EXPECT_EQ(logLines(calls), (Lines{complaints[0], complaints[1], complaints[1], complaints[0]}));
    EXPECT_EQ(beginning(journal, {"open /dev/rdsk/s2", "open /dev/rdsk/noSlice2"}), Lines{});
    for (const std::string &line : expected) { // one by one they are the same
        EXPECT_EQ(jvm::instanceText(env, get(true, newString(line.substr(0, line.find('|')).c_str()))), line);
    }
}

TEST_F(DiskProvidersTest, SlicesAreDescribedOrPassedOver) {
    loadDisks({disk("c0t0d0", labelled("T") + R"(, "slices": ["s0", "s1"], "mounted": ["s1"], "major": 32)"),
               disk("emcpower0", labelled("T") + R"(, "slices": ["0", "1", "2", "3", "4", "5", "6", "7", "8"])"),
               disk("noTable", geometry), disk("c5", labelled("T") + R"(, "fails": {"open O_RDWR": "EROFS"})")},
              R"({"path": "/dev/rdsk/ab"})");
    Lines expected{"c0t0d0s0|c0t0d0|0|20972736|2|0|false",
                   "c0t0d0s1|c0t0d0|1|1|65535|65534|true", // the low 32 bits of the size
                   "emcpower00|emcpower0|0|20972736|2|0|false", "emcpower01|emcpower0|1|1|65535|65534|false"};
    for (const std::string slice : {"2", "3", "4", "5", "6", "7"}) { // the ninth is beyond the table
        expected.push_back("emcpower0" + slice + "|emcpower0|" + slice + "|0|0|0|false");
    }
    EXPECT_EQ(received(false, 100), expected);
    EXPECT_EQ(exception, "");
    EXPECT_EQ(logLines(calls), Lines{});
    EXPECT_EQ(beginning(journal, {"open "}).size(), 2u + 9 + 8 * 2); // "ab" is not opened
    EXPECT_EQ(jvm::instanceText(env, get(false, newString("c0t0d0s1"))), expected[1]);
    for (const char *none : {"c0t0d0", "noTables0", "emcpower08", "", static_cast<const char *>(nullptr)}) {
        EXPECT_EQ(get(false, newString(none)), nullptr);
    }
    replay::loadHostText("{}"); // no directory
    EXPECT_EQ(received(false, 1), Lines{});
    EXPECT_EQ(exception, "");
}

TEST_F(DiskProvidersTest, NamesThatDoNotFitAreNotOpened) {
    for (const std::size_t length : {97u, 98u, 99u, 100u, 1100u}) {
        const std::string name(length, 'd');
        loadDisks({disk(name, labelled("T") + R"(, "slices": ["", "s2"])")});
        replay::startJournal();
        EXPECT_EQ(get(true, newString(name.c_str())) != nullptr, length <= 97) << length;
        EXPECT_EQ(get(false, newString(name.c_str())) != nullptr, length <= 99) << length;
        EXPECT_EQ(beginning(replay::stopJournal(), {"open "}).size(), length <= 97 ? 2u : length <= 99 ? 1u : 0u);
    }
}

TEST_F(DiskProvidersTest, AThrowingReceiverEndsTheWalk) {
    Lines disks;
    for (int i = 0; i < 200; ++i) { // the first hundred are a log line each, and no slice
        disks.push_back(disk("c" + std::to_string(i), (i < 100 ? geometry : labelled("T")) + R"(, "slices": ["s2"])"));
    }
    loadDisks(disks);
    for (const bool ofDisks : {true, false}) {
        EXPECT_EQ(received(ofDisks, ofDisks ? 150 : 50).size(), ofDisks ? 150u : 50u);
        EXPECT_EQ(exception, ofDisks ? "" : "java.lang.IllegalStateException: Queue full");
        EXPECT_EQ(beginning(calls, {"ExceptionDescribe"}).size(), ofDisks ? 1u : 0u);
        EXPECT_EQ(beginning(journal, {"open "}).size(), 151u);
        EXPECT_EQ(calls.front(), "EnsureLocalCapacity 2000");
        replay::startJournal();
        enumerate(ofDisks, nullptr);
        EXPECT_EQ(beginning(replay::stopJournal(), {"open"}), Lines{}) << "without a receiver";
    }
}

} // namespace
