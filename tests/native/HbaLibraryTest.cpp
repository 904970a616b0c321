// The HBA library's guards, and the target mapping as a library may answer it.

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstring>
#include <random>
#include <thread>

#include "common/hba/Conversions.h"
#include "common/hba/LibraryGuards.h"
#include "common/hba/Messages.h"
#include "common/hba/RemotePortIndex.h"
#include "common/hba/TargetMappingTable.h"
#include "platform/replay/Replay.h"

namespace tarn {
namespace {

using Lines = std::vector<std::string>;

TEST(HbaGuards, OpenInTwoAttemptsAtMostAndCloseWhatTheyOpened) {
    replay::loadHostText(R"({"hba": {"adapters": [
        {"name": "hba-0"}, {"name": "hba-1", "openFailures": 1}, {"name": "hba-2", "openFailures": 2},
        {"name": "hba-3", "status": {"GetAdapterName": 3}}]}})");
    const struct {
        bool isOpen;
        HBA_STATUS status;
        const char *name;
        Lines calls;
    } cases[] = {
        {true, 0, "hba-0", {"HBA_GetAdapterName 0", "HBA_OpenAdapter hba-0", "HBA_CloseAdapter hba-0"}},
        {true,
         0,
         "hba-1",
         {"HBA_GetAdapterName 1", "HBA_OpenAdapter hba-1", "HBA_OpenAdapter hba-1", "HBA_CloseAdapter hba-1"}},
        {false, 0, "hba-2", {"HBA_GetAdapterName 2", "HBA_OpenAdapter hba-2", "HBA_OpenAdapter hba-2"}},
        {false, 3, "", {"HBA_GetAdapterName 3"}},
        {false, 6, "", {"HBA_GetAdapterName 4"}},
    };
    WithHbaLibrary library;
    HBA_UINT32 index = 0;
    for (const auto &[isOpen, status, name, calls] : cases) {
        replay::startJournal();
        {
            std::array<char, adapterNameSize> buffer;
            buffer.fill('?');
            const WithAdapterHandle adapter(library, index++, buffer.data());
            EXPECT_EQ(adapter.handle != 0, isOpen);
            EXPECT_EQ(adapter.status, status);
            EXPECT_STREQ(buffer.data(), name);
        }
        EXPECT_EQ(replay::stopJournal(), calls);
    }
}

TEST(HbaGuards, RefreshAllButTheQlcDriversAdapters) {
    replay::loadHostText(R"({"hba": {"adapters": []}})");
    for (const char *name : {"SUNW-qlc", "SUNW-QLC-0", "qlc-0", " SUNW-qlc-0", ""}) {
        EXPECT_TRUE(refreshInformation(0, name)) << name;
    }
    replay::startJournal();
    EXPECT_FALSE(refreshInformation(0, "SUNW-qlc-"));
    EXPECT_FALSE(refreshInformation(0, "SUNW-qlc-0"));
    EXPECT_EQ(replay::stopJournal(), Lines{});
}

TEST(HbaGuards, LetOneUserOfTheLibraryInAtATime) {
    replay::loadHostText(R"({"hba": {"adapters": [{"name": "hba-0"}]}})");
    std::atomic<int> disturbed = 0;
    replay::startJournal();
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&] {
                for (int round = 0; round < 50; ++round) {
                    const WithHbaLibrary library;
                    std::this_thread::yield();
                    disturbed += HBA_GetNumberOfAdapters() == 1 ? 0 : 1;
                }
            });
        }
    }
    EXPECT_EQ(disturbed, 0);
    EXPECT_EQ(replay::stopJournal().size(), 4U * 50 * 3);
}

/// One answer of a library: the status and the count it leaves. It writes as many entries as it was given room for.
struct Answer {
    HBA_STATUS status;
    HBA_UINT32 count;
};

TEST(TargetMapping, IsFetchedAgainOnceWithTheRoomItTakes) {
    const struct {
        std::vector<Answer> answers;
        std::vector<HBA_UINT32> rooms; // that were offered
        bool isFetched;
    } cases[] = {
        {{{0, 0}}, {512}, true},
        {{{0, 512}}, {512}, true},
        {{{7, 513}, {0, 513}}, {512, 513}, true},
        {{{7, 700}, {0, 700}}, {512, 700}, true},
        {{{7, 700}, {0, 3}}, {512, 700}, true},
        {{{7, 5}, {0, 5}}, {512, 5}, true},
        {{{7, 0}, {0, 0}}, {512, 0}, true},
        {{{7, maximumMappingEntries}, {0, 1}}, {512, maximumMappingEntries}, true},
        // Failures: the library refuses, or claims what it had no room for, or what no memory is worth.
        {{{1, 0}}, {512}, false},
        {{{0, 513}}, {512}, false},
        {{{7, 700}, {7, 700}}, {512, 700}, false},
        {{{7, 700}, {7, 701}}, {512, 700}, false},
        {{{7, 700}, {0, 701}}, {512, 700}, false},
        {{{7, 0}, {0, 1}}, {512, 0}, false},
        {{{7, maximumMappingEntries + 1}}, {512}, false},
        {{{7, 0xffffffff}}, {512}, false},
    };
    TargetMappingTable table;
    for (const auto &[answers, rooms, isFetched] : cases) {
        std::vector<HBA_UINT32> offered;
        const bool fetched = table.fetch([&](HBA_FCPTARGETMAPPING *mapping) {
            const Answer &answer = answers.at(offered.size());
            offered.push_back(mapping->NumberOfEntries);
            if (mapping->NumberOfEntries <= 1000) {
                std::memset(static_cast<void *>(mapping->entry), 'e',
                            mapping->NumberOfEntries * sizeof(HBA_FCPSCSIENTRY));
            }
            mapping->NumberOfEntries = answer.count;
            return answer.status;
        });
        EXPECT_EQ(fetched, isFetched);
        EXPECT_EQ(offered, rooms);
        EXPECT_EQ(table.status(), answers.back().status);
        ASSERT_EQ(table.entries().size(), isFetched ? answers.back().count : 0);
        if (!table.entries().empty() && table.entries().size() <= 1000 && rooms.back() <= 1000) {
            EXPECT_EQ(table.entries().back().ScsiId.OSDeviceName[255], 'e');
        }
    }
    table.release();
    EXPECT_TRUE(table.entries().empty());
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
        for (int byte = 0; byte < 8; ++byte) {
            for (const HBA_UINT8 value : std::array<HBA_UINT8, 4>{0x00, 0x7f, 0xfe, 0x01}) {
                HBA_WWN wanted{};
                wanted.wwn[byte] = value;
                std::vector<HBA_UINT32> expected;
                for (HBA_UINT32 j = 0; j < size; ++j) {
                    if (equal(entries[j].FcpId.PortWWN, wanted)) {
                        expected.push_back(j);
                    }
                }
                std::vector<HBA_UINT32> found;
                for (const RemotePortIndex::Place &place : index.find(wanted)) {
                    found.push_back(place.position);
                }
                ASSERT_EQ(found, expected) << size;
            }
        }
    }
}

} // namespace
} // namespace tarn
