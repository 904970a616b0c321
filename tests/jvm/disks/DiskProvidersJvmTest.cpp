// Disks and slices, from the native entry points through the agent's providers to the receiver.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "platform/replay/Replay.h"
#include "tests/Expected.h"
#include "tests/jvm/Entries.h"
#include "tests/jvm/JniTable.h"
#include "tests/jvm/JvmTest.h"

namespace {

using namespace tests;
using nlohmann::json;

/// A disk with a geometry and a slice 2, and with a label unless it is `bare`.
json disk(const std::string &name, bool isBare, const Lines &slices = {"s2"}) {
    json disk = {{"name", name}, {"slices", slices}, {"geometry", json::object()}};
    if (!isBare) {
        disk["vtoc"] = {{"v_part", json::array()}};
    }
    return disk;
}

void loadDisks(const std::vector<json> &disks) {
    replay::loadHostText(json{{"disks", disks}}.dump());
}

class DiskProvidersTest : public jvm::JvmTest {
protected:
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
        const jvm::LocalFrame frame(env);
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
            const jvm::LocalFrame ofOne(env);
            all.push_back(jvm::instanceText(env, env->GetObjectArrayElement(array, i)));
        }
        return all;
    }

    const jobject drives = make("com/kelvo/tarn/providers/solaris/SolarisDiskDriveProvider", "()V");
    const jobject partitions = make("com/kelvo/tarn/providers/solaris/SolarisDiskPartitionProvider", "()V");
    // Of the latest enumeration.
    Lines calls;
    Lines journal;
    std::string exception;
};

TEST_F(DiskProvidersTest, WhatCouldBeReadIsTold) {
    tests::loadHost("disks");
    Lines text;
    for (const bool ofDisks : {true, false}) {
        const Lines all = received(ofDisks, 100);
        EXPECT_EQ(exception, "");
        text.emplace_back(ofDisks ? "disks" : "partitions");
        text.insert(text.end(), all.begin(), all.end());
        for (const std::string &line : logLines(calls)) {
            text.push_back(line);
        }
        for (const std::string &line : beginning(journal, {"open "})) {
            text.push_back(line);
        }
        for (const std::string &line : all) { // one by one they are the same
            const std::string name = line.substr(0, line.find('|'));
            EXPECT_EQ(jvm::instanceText(env, get(ofDisks, newString(name.c_str()))), line);
        }
    }
    tests::expectFile("jvm/disks/disks.txt", text);
    for (const char *none : {"c0t0d0", "noTables2", "emcpower08", "", static_cast<const char *>(nullptr)}) {
        EXPECT_EQ(get(false, newString(none)), nullptr);
    }
}

TEST_F(DiskProvidersTest, NamesThatDoNotFitAreNotOpened) {
    for (const std::size_t length : {97u, 98u, 99u, 100u, 1100u}) {
        const std::string name(length, 'd');
        loadDisks({disk(name, false, {"", "s2"})});
        replay::startJournal();
        EXPECT_EQ(get(true, newString(name.c_str())) != nullptr, length <= 97) << length;
        EXPECT_EQ(get(false, newString(name.c_str())) != nullptr, length <= 99) << length;
        EXPECT_EQ(beginning(replay::stopJournal(), {"open "}).size(), length <= 97 ? 2u : length <= 99 ? 1u : 0u);
    }
}

TEST_F(DiskProvidersTest, AThrowingReceiverEndsTheWalk) {
    std::vector<json> disks;
    for (int i = 0; i < 200; ++i) { // the first hundred are a log line each, and no slice
        disks.push_back(disk("c" + std::to_string(i), i < 100));
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
