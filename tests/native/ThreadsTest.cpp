// What threads share, the HBA library, and what each has to itself, its stack.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <thread>

#include "common/hba/library/LibraryGuards.h"
#include "common/hba/library/TargetMappingTable.h"
#include "common/jni/StackRoom.h"
#include "platform/replay/Replay.h"
#include "tests/Lines.h"

namespace tarn {
namespace {

const std::string twoAdapters = R"({"hba": {"adapters": [{"name": "a", "targetMapping": [{}]},
                                                         {"name": "b", "targetMapping": [{}, {}]}]}})";

/// How many mapping entries each adapter has, as text.
std::string walk(WithHbaLibrary &library) {
    std::string counts;
    TargetMappingTable mapping;
    for (HBA_UINT32 i = 0; i < HBA_GetNumberOfAdapters(); ++i) {
        char name[adapterNameSize];
        const WithAdapterHandle adapter(library, i, name);
        mapping.fetch([&](HBA_FCPTARGETMAPPING *into) { return HBA_GetFcpTargetMapping(adapter.handle, into); });
        counts += name + std::to_string(mapping.entries().size());
    }
    return counts;
}

TEST(HbaLibrary, IsLoadedByTheFirstAndFreedByTheLast) {
    replay::loadHostText(twoAdapters);
    replay::startJournal();
    for (int again = 0; again < 2; ++again) {
        WithHbaLibrary outer;
        HBA_GetNumberOfAdapters();
        EXPECT_EQ((WithHbaLibrary(), HBA_GetNumberOfAdapters()), 2U);
        EXPECT_EQ(HBA_GetNumberOfAdapters(), 2U);
    }
    const tests::Lines once{"HBA_LoadLibrary", "HBA_GetNumberOfAdapters", "HBA_GetNumberOfAdapters",
                            "HBA_GetNumberOfAdapters", "HBA_FreeLibrary"};
    tests::Lines twice = once;
    twice.insert(twice.end(), once.begin(), once.end());
    EXPECT_EQ(replay::stopJournal(), twice);
}

TEST(HbaLibrary, IsAskedForAgainAfterALoadThatFailed) {
    for (const bool failedGoesFirst : {true, false}) {
        replay::loadHostText("{}");
        auto failed = std::make_unique<WithHbaLibrary>();
        EXPECT_NE(failed->status, HBA_STATUS_OK);
        replay::loadHostText(twoAdapters);
        auto loaded = std::make_unique<WithHbaLibrary>();
        const WithHbaLibrary another;
        (failedGoesFirst ? failed : loaded).reset();
        EXPECT_EQ(another.status, HBA_STATUS_OK);
        EXPECT_EQ(HBA_GetNumberOfAdapters(), 2U);
        (failedGoesFirst ? loaded : failed).reset();
        EXPECT_EQ(HBA_GetNumberOfAdapters(), 2U);
    }
    EXPECT_EQ(HBA_GetNumberOfAdapters(), 0U);
}

TEST(HbaLibrary, ThreadsThatComeAndGoAllHaveIt) {
    replay::loadHostText(twoAdapters);
    std::vector<std::jthread> threads(8);
    std::ranges::generate(threads, [] {
        return std::jthread([] {
            for (int i = 0; i < 150; ++i) {
                WithHbaLibrary library;
                EXPECT_EQ(walk(library), "a1b2");
            }
        });
    });
}

[[gnu::noinline]] std::size_t leftBelow(std::size_t size) {
    volatile char block[64 * 1024];
    block[size % sizeof block] = 0;
    const std::size_t left = stackLeft();
    block[left % sizeof block] = 0;
    return left;
}

TEST(Stack, ThreadsKnowHowMuchIsLeftOfTheirs) {
    const auto expectLess = [] {
        const std::size_t before = stackLeft();
        const std::size_t below = leftBelow(before);
        EXPECT_GE(before - below, 64U * 1024);
        EXPECT_LE(before - below, 96U * 1024);
    };
    expectLess();
    std::jthread{expectLess};
}

} // namespace
} // namespace tarn
