// The HBA library's manners: which adapters it refreshes, and the target mapping as it may answer it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <random>
#include <span>
#include <stdexcept>
#include <tuple>

#include "common/hba/Conversions.h"
#include "common/hba/LocalRoom.h"
#include "common/hba/RemotePortIndex.h"
#include "common/hba/library/LibraryGuards.h"
#include "common/hba/library/Limits.h"
#include "common/hba/library/Messages.h"
#include "common/hba/library/TargetMappingTable.h"
#include "platform/replay/Replay.h"
#include "tests/WrappedCalls.h"

namespace tarn {
namespace {

TEST(HbaGuards, RefreshAllButTheQlcDriversAdapters) {
    for (const char *name : {"SUNW-qlc", "SUNW-QLC-0", "qlc-0", " SUNW-qlc-0", ""}) {
        EXPECT_TRUE(refreshInformation(0, name)) << name;
    }
    EXPECT_FALSE(refreshInformation(0, "SUNW-qlc-"));
    EXPECT_FALSE(refreshInformation(0, "SUNW-qlc-0"));
}

TEST(DiscoveredPorts, AreBelievedUpToASumAndComplainedOfOnce) {
    DiscoveredPortSum ports;
    int complaints = 0;
    for (const auto &[count, isBelieved] : {std::pair(0U, true),
                                            {65536, true},
                                            {65536, true},
                                            {65536, true},
                                            {65537, false},
                                            {65535, true},
                                            {2, false},
                                            {1, true},
                                            {1, false}}) {
        EXPECT_EQ(ports.add(count, [&] { ++complaints; }), isBelieved) << count;
    }
    EXPECT_EQ(complaints, 1);
}

TEST(HbaGuards, EndANameThatFillsItsFieldAndTakeNoneFromAFailedCall) {
    for (const auto &[status, length, kept] : {std::tuple(0, 255U, 255U), {0, 256U, 255U}, {1, 255U, 0U}}) {
        replay::loadHostText(R"({"hba": {"adapters": [{"status": {"GetAdapterName": )" + std::to_string(status) +
                             "}}]}}");
        tests::wrapped.adapterName = std::string(length, 'n');
        std::string field(257, 'x');
        WithHbaLibrary library;
        const WithAdapterHandle adapter(library, 0, field.data());
        EXPECT_EQ(field.c_str(), std::string(kept, 'n'));
        EXPECT_EQ(field.back(), 'x');
    }
    tests::wrapped.adapterName.clear();
}

TEST(LocalRooms, AreAskedForBeforeTheyAreNeededAndNeverBeyondTheLargestRequest) {
    static std::vector<jint> requests;
    JNINativeInterface_ functions{};
    functions.EnsureLocalCapacity = [](JNIEnv *, jint capacity) -> jint { return requests.push_back(capacity), 0; };
    JNIEnv env{&functions};
    LocalRoom room(&env, 1000, 19);
    const struct {
        bool isTaken;
        jint references;
        std::vector<jint> expected;
    } steps[] = {{true, 981, {}},  {true, 1, {2000}},           {false, 1999, {}}, {false, 2000, {6000}},
                 {true, 6000, {}}, {false, 1'000'000, {65536}}, {true, 65536, {}}, {true, 1, {65536}}};
    for (const auto &[isTaken, references, expected] : steps) {
        requests.clear();
        isTaken ? room.take(references) : room.reserve(references);
        EXPECT_EQ(requests, expected) << references;
    }
}

TEST(TargetMapping, IsFetchedAgainOnceWithTheRoomItTakes) {
    const struct {
        std::vector<std::pair<HBA_STATUS, HBA_UINT32>> answers; // with the count that is left
        std::vector<HBA_UINT32> rooms;                          // that were offered
        bool isFetched;
        bool refusesMemory = false;
    } cases[] = {
        {{{0, 0}}, {512}, true},
        {{{0, 512}}, {512}, true},
        {{{7, 513}, {0, 513}}, {512, 513}, true},
        {{{7, 700}, {0, 3}}, {512, 700}, true},
        {{{7, 5}, {0, 5}}, {512, 5}, true},
        {{{7, 0}, {0, 0}}, {512, 0}, true},
        {{{7, maximumMappingEntries}, {0, 1}}, {512, maximumMappingEntries}, true},
        // Failures: the library refuses, or claims what it had no room for, or what no memory is worth.
        {{{1, 0}}, {512}, false},
        {{{0, 513}}, {512}, false},
        {{{7, 700}, {7, 700}}, {512, 700}, false},
        {{{7, 700}, {0, 701}}, {512, 700}, false},
        {{{7, maximumMappingEntries + 1}}, {512}, false},
        {{{7, 0xffffffff}}, {512}, false},
        {{{7, 700}}, {512}, false, true},
    };
    TargetMappingTable table;
    for (const auto &[answers, rooms, isFetched, refusesMemory] : cases) {
        tests::wrapped.refusesMemory = refusesMemory;
        std::vector<HBA_UINT32> offered;
        const bool fetched = table.fetch([&, &script = answers](HBA_FCPTARGETMAPPING *mapping) {
            const auto [status, count] = script.at(offered.size());
            offered.push_back(mapping->NumberOfEntries);
            if (mapping->NumberOfEntries <= 1000) { // to the last byte of the room
                std::memset(static_cast<void *>(mapping->entry), 'e', offered.back() * sizeof(HBA_FCPSCSIENTRY));
            }
            mapping->NumberOfEntries = count;
            return status;
        });
        EXPECT_EQ(fetched, isFetched);
        EXPECT_EQ(offered, rooms);
        EXPECT_EQ(table.status(), answers.back().first);
        ASSERT_EQ(table.entries().size(), isFetched ? answers.back().second : 0);
        table.release();
        EXPECT_EQ(tests::wrapped.mapping.load(), nullptr);
    }
    tests::wrapped.refusesMemory = false;
}

TEST(TargetMapping, EntriesThatAreCountedButNotWrittenAreEmpty) {
    TargetMappingTable table;
    const auto claim = [&](HBA_UINT32 count, int byte) {
        return table.fetch([=](HBA_FCPTARGETMAPPING *mapping) {
            const HBA_STATUS status = count > mapping->NumberOfEntries ? HBA_STATUS_ERROR_MORE_DATA : HBA_STATUS_OK;
            if (byte != 0) {
                std::memset(static_cast<void *>(mapping->entry), byte, count * sizeof(HBA_FCPSCSIENTRY));
            }
            mapping->NumberOfEntries = count;
            return status;
        });
    };
    EXPECT_TRUE(claim(512, 'e')); // of the adapter before
    for (const HBA_UINT32 count : {512U, 700U}) {
        EXPECT_TRUE(claim(count, 0));
        const auto bytes = std::as_bytes(table.entries());
        EXPECT_TRUE(std::ranges::all_of(bytes, [](std::byte byte) { return byte == std::byte{}; })) << count;
    }
}

TEST(TargetMapping, AnIndexThatCannotBeBuiltFindsNothing) {
    std::vector<HBA_FCPSCSIENTRY> entries(3);
    RemotePortIndex index;
    index.build(entries);
    EXPECT_EQ(index.find({}).size(), 3U);
    const std::span<const HBA_FCPSCSIENTRY> tooMany(entries.data(), std::numeric_limits<std::size_t>::max() / 16);
    EXPECT_THROW(index.build(tooMany), std::exception);
    EXPECT_EQ(index.find({}).size(), 0U);
}

TEST(TargetMapping, IsFoundByRemotePortInItsOwnOrder) {
    std::minstd_rand random(42);
    RemotePortIndex index;
    for (const unsigned size : {0U, 1U, 511U, 512U, 513U, 3000U, 7U}) {
        std::vector<HBA_FCPSCSIENTRY> entries(size);
        for (HBA_FCPSCSIENTRY &entry : entries) {
            entry.FcpId.PortWWN.wwn[random() % 8] = static_cast<HBA_UINT8>(random() % 3 * 0x7f);
        }
        index.build(entries);
        for (unsigned wanted = 0; wanted < 32; ++wanted) {
            HBA_WWN wwn{};
            wwn.wwn[wanted / 4] = static_cast<HBA_UINT8>(wanted % 4 * 0x7f); // the last is nowhere
            std::vector<HBA_UINT32> expected, found;
            for (HBA_UINT32 j = 0; j < size; ++j) {
                if (equal(entries[j].FcpId.PortWWN, wwn)) {
                    expected.push_back(j);
                }
            }
            for (const RemotePortIndex::Place &place : index.find(wwn)) {
                found.push_back(place.position);
            }
            ASSERT_EQ(found, expected) << size;
        }
    }
}

} // namespace
} // namespace tarn
