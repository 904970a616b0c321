// The password check, over replayed shadow entries and the build machine's own hashing.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "native/SolarisAuthenticator.h"
#include "platform/replay/Replay.h"
#include "platform/solaris.h"

namespace tarn {
namespace {

bool canHash() {
    return solaris::crypt("", "ab") != nullptr;
}

const char *const password = "tide pool"; // of every hash in this host, made by the system's own tools
const char *const users = R"({"shadow": {
    "des": "abhlIbcleqfIM", "md5": "$1$rill$sV42PDtixEdKUNI5sQP0F.",
    "sha256": "$5$rill$4VQ3qWzTgRsROrk9qJV2dG3586/0jX241EiSp6cBSN9",
    "anna": "$6$rill$XwvN5PPxkgsDHkIkgMqAspyqbfnLvopGsT2oytrKfNjT9vI5X8AC.fu73i8OMHal3SUsvP87giAXm/KtyWFbf.",
    "clara": "$6$rill$XwvN5PPxkgsDHkIkgMqAspyqbfnLvopGsT2oytrKfNjT9vI5X8AC.fu73i8OMHal3SUsvP87giAXm/KtyWFbf.",
    "salted": "$6$rillrillrill$e5QibMhPVTx1sdt/5zStO4PaPY9q5vovjjozWlLM.qoceOs9Dyz/Tr7XbMe1LKwHDlOQisuBmFoeoWADENQfJ1",
    "open": "", "none": null, "x": "x", "locked": "*LK*", "nopass": "NP", "cut": "abhlIbcleqfI", "long": "abhlIbcleqfIM."}})";

struct Outcome {
    PasswordCheck check;
    bool askedForPassword = false;
};

Outcome checkOf(const std::string &user, const std::string &text) {
    Outcome outcome;
    outcome.check = checkPassword(user.c_str(), [&] {
        outcome.askedForPassword = true;
        return text.c_str();
    });
    return outcome;
}

TEST(AuthenticatorTest, TheStoredHashDecides) {
    if (!canHash()) {
        GTEST_SKIP() << "this machine cannot hash";
    }
    replay::loadHostText(users);
    for (const char *user : {"des", "md5", "sha256", "anna"}) { // the last one's entry just fits the buffer
        SCOPED_TRACE(user);
        EXPECT_TRUE(checkOf(user, password).check.accepted);
        for (const std::string wrong : {"", "tide", "Tide pool", "pool", "abhlIbcleqfIM", "*LK*"}) {
            const Outcome outcome = checkOf(user, wrong);
            EXPECT_FALSE(outcome.check.accepted) << wrong;
            EXPECT_EQ(outcome.check.logLine, "");
        }
        EXPECT_TRUE(checkOf(user, password).check.accepted);
    }
}

TEST(AuthenticatorTest, EntriesThatHoldNoHash) {
    replay::loadHostText(users);
    const struct {
        const char *user;
        bool accepted;
        bool asksForPassword;
        const char *logLine;
    } cases[] = {
        {"open", true, false, ""},   {"none", true, false, ""},  {"x", false, false, "Salted password is too short"},
        {"locked", false, true, ""}, {"nopass", false, true, ""}, {"cut", false, true, ""},
        {"long", false, true, ""},
    };
    for (const auto &[user, accepted, asksForPassword, logLine] : cases) {
        for (const std::string text : {"", "x", "*LK*", "NP", password}) {
            SCOPED_TRACE(std::string(user) + " with '" + text + "'");
            const Outcome outcome = checkOf(user, text);
            EXPECT_EQ(outcome.check.accepted, accepted);
            EXPECT_EQ(outcome.askedForPassword, asksForPassword);
            EXPECT_EQ(outcome.check.logLine, logLine);
        }
    }
}

TEST(AuthenticatorTest, AUserWithoutAnEntryIsRefusedWithTheReason) {
    replay::loadHostText(users);
    const struct {
        const char *user;
        int errorBefore;
        std::string logLine;
    } cases[] = {
        {"nobody", 0, "No password entry for user nobody found"},
        {"nobody", ENOENT, std::string("No password entry for user nobody found; ") + std::strerror(ENOENT)},
        {"", 0, "No password entry for user  found"},
        {"clara", 0, std::string("No password entry for user clara found; ") + std::strerror(ERANGE)},
        {"salted", 0, std::string("No password entry for user salted found; ") + std::strerror(ERANGE)},
    };
    for (const auto &[user, errorBefore, logLine] : cases) {
        errno = errorBefore;
        const Outcome outcome = checkOf(user, password);
        EXPECT_FALSE(outcome.check.accepted);
        EXPECT_FALSE(outcome.askedForPassword);
        EXPECT_EQ(outcome.check.logLine, logLine);
    }
}

TEST(AuthenticatorTest, ThreadsNeverTakeEachOthersResult) {
    if (!canHash()) {
        GTEST_SKIP() << "this machine cannot hash";
    }
    const char *const hashes[] = {
        "$1$h0$4J9KCfLEPDuX6.L82MKGc.", "$1$h1$bBKgerMcQ8fZDii3yJeR0.",
        "$1$h2$xl2tz64G7gTjI5ICjSLYn/", "$1$h3$nlQTPUfrBtXtqEMgHOLZa/",
        "$1$h4$sHADuRMILKC.FZEYdMw9p1", "$1$h5$WVEly8zYAtkrMev4MYUb91",
        "$1$h6$CwsYmsOP.k1nGeSu.ZrVL1", "$1$h7$UOSrvMDO1BGCntW6WASPY."};
    std::string entries;
    for (int i = 0; i < 8; ++i) {
        entries += (i == 0 ? "" : ", ") + ("\"user" + std::to_string(i) + "\": \"" + hashes[i] + "\"");
    }
    replay::loadHostText(R"({"shadow": {)" + entries + "}}");

    std::atomic<int> wrongAnswers = 0;
    std::latch start(8);
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([i, &start, &wrongAnswers] {
            const std::string user = "user" + std::to_string(i);
            const std::string right = "secret" + std::to_string(i);
            const std::string wrong = "secret" + std::to_string((i + 1) % 8);
            start.arrive_and_wait();
            for (int round = 0; round < 400; ++round) {
                const bool isRight = round % 2 == 0;
                wrongAnswers += checkOf(user, isRight ? right : wrong).check.accepted != isRight;
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrongAnswers, 0);
}

} // namespace
} // namespace tarn
