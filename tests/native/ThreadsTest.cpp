// What threads share, the HBA library and the mounts that are asked, and what each has to itself, its stack.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <thread>

#include "common/hba/library/LibraryGuards.h"
#include "common/hba/library/TargetMappingTable.h"
#include "common/jni/StackRoom.h"
#include "inventory/Activity.h"
#include "inventory/Identities.h"
#include "inventory/Mounts.h"
#include "native/array/SolarisScsiInterrogatorC.h"
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

/// What the two libraries ask for Java, on eight threads: samplers, identities, mounts, a fill's walk, an array's scan.
TEST(Inventory, ThreadsSampleFillAndScanAtOnce) {
    std::ifstream rill(TARN_TESTS "/../hosts/rill.json");
    auto host = nlohmann::json::parse(rill);
    for (int i = 0; i < 20; ++i) {
        const std::string path = "/pool/" + std::to_string(i);
        host["mnttab"].push_back("pool\t" + path + "\tzfs\trw\t1");
        host["statvfs"][path] = {{"f_frsize", 1}, {"f_blocks", i}};
    }
    replay::loadHostText(host.dump());
    const std::function<std::string()> questions[] = {
        [] {
            ActivitySampler sampler;
            std::string counts;
            for (int reading = 0; reading < 3; ++reading) {
                for (const DiskActivity &disk : sampler.readDisks()) {
                    counts += disk.disk + " " + std::to_string(disk.counters.nread) + " ";
                }
                for (const PortTraffic &port : readPorts()) {
                    counts += std::to_string(port.counters.InvalidCRCCount) + " ";
                }
            }
            return counts;
        },
        [] {
            std::string all;
            for (const DiskIdentity &disk : readIdentities()) {
                all += disk.disk + disk.serial + disk.designator + " ";
            }
            return all;
        },
        [] {
            std::string all;
            for (const InventoryMount &mount : readMounts(std::chrono::minutes(1))) {
                all += mount.mountPoint + (mount.sizes ? std::to_string(mount.sizes->total) : " untold") + " ";
            }
            return all;
        },
        [] {
            WithHbaLibrary library;
            return walk(library);
        },
        [] {
            std::vector<char> report(returnStringSize);
            scsiInterrogatorC(report.data(), "1T54412345", "1T54412346", "SUN", "CSM200_R");
            return std::string(report.data());
        },
    };
    std::vector<std::string> answers;
    for (const auto &question : questions) {
        answers.push_back(question());
        EXPECT_GT(answers.back().size(), 15U) << answers.back();
    }
    std::vector<std::jthread> threads;
    for (std::size_t number = 0; number < 8; ++number) {
        threads.emplace_back([&, number] {
            for (std::size_t i = number; i < number + 40; ++i) {
                EXPECT_EQ(questions[i % answers.size()](), answers[i % answers.size()]);
            }
        });
    }
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
