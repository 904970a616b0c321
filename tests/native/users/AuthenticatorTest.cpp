// The password check, over replayed shadow entries and the build machine's own hashing.

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "native/users/SolarisAuthenticator.h"
#include "platform/replay/Replay.h"
#include "platform/solaris.h"
#include "tests/Lines.h"

namespace tarn {
namespace {

const std::string password = "tide pool"; // of every hash in this host, made by the system's own tools
const char *const users = R"({"shadow": {
    "des": "abhlIbcleqfIM", "md5": "$1$rill$sV42PDtixEdKUNI5sQP0F.",
    "sha256": "$5$rill$4VQ3qWzTgRsROrk9qJV2dG3586/0jX241EiSp6cBSN9",
    "anna": "$6$rill$XwvN5PPxkgsDHkIkgMqAspyqbfnLvopGsT2oytrKfNjT9vI5X8AC.fu73i8OMHal3SUsvP87giAXm/KtyWFbf.",
    "clara": "$6$rill$XwvN5PPxkgsDHkIkgMqAspyqbfnLvopGsT2oytrKfNjT9vI5X8AC.fu73i8OMHal3SUsvP87giAXm/KtyWFbf.",
    "salted": "$6$rillrillrill$e5QibMhPVTx1sdt/5zStO4PaPY9q5vovjjozWlLM.qoceOs9Dyz/Tr7XbMe1LKwHDlOQisuBmFoeoWADENQfJ1",
    "open": "", "none": null, "x": "x", "locked": "*LK*", "nopass": "NP", "cut": "abhlIbcleqfI",
    "long": "$1$rill$sV42PDtixEdKUNI5sQP0F.."}})";

/// The emulated SPARC has no libcrypt to hash with; every other machine must.
bool canHash() {
#if defined(__sparc__)
    return solaris::crypt("", "ab") != nullptr;
#else
    return true;
#endif
}

TEST(AuthenticatorTest, TheStoredHashDecides) {
    const bool hashes = canHash();
    const std::string noEntry = "No password entry for user ";
    const std::string tooLong = std::string(" found; ") + std::strerror(ERANGE);
    const struct {
        const char *user;
        bool acceptsRight, acceptsWrong, asksForPassword;
        std::string logLine;
    } cases[] = {
        {"des", hashes, false, true, ""},
        {"md5", hashes, false, true, ""},
        {"sha256", hashes, false, true, ""},
        {"anna", hashes, false, true, ""}, // an entry that just fits the buffer
        {"clara", false, false, false, noEntry + "clara" + tooLong},
        {"salted", false, false, false, noEntry + "salted" + tooLong},
        {"open", true, true, false, ""},
        {"none", true, true, false, ""},
        {"x", false, false, false, "Salted password is too short"},
        {"locked", false, false, true, ""},
        {"nopass", false, false, true, ""},
        {"cut", false, false, true, ""},
        {"long", false, false, true, ""},
        {"nobody", false, false, false, noEntry + "nobody found"},
        {"", false, false, false, noEntry + " found"},
    };
    replay::loadHostText(users);
    for (const auto &[user, acceptsRight, acceptsWrong, asksForPassword, logLine] : cases) {
        for (const std::string &text :
             tests::Lines{password, "", "tide", "pool", "Tide pool", "abhlIbcleqfIM", "*LK*", "NP", "x", password}) {
            SCOPED_TRACE(std::string(user) + " with '" + text + "'");
            bool asked = false;
            errno = 0;
            const PasswordCheck check = checkPassword(user, [&, &given = text] {
                asked = true;
                return given.c_str();
            });
            EXPECT_EQ(check.accepted, text == password ? acceptsRight : acceptsWrong);
            EXPECT_EQ(asked, asksForPassword);
            EXPECT_EQ(check.logLine, logLine);
        }
    }
    errno = ENOENT; // an error from before is told as well
    EXPECT_EQ(checkPassword("nobody", nullptr).logLine, noEntry + "nobody found; " + std::strerror(ENOENT));
}

TEST(AuthenticatorTest, ThreadsNeverTakeEachOthersResult) {
    replay::loadHostText(users);
    std::atomic<int> wrongAnswers = 0;
    std::latch start(8);
    const bool hashes = canHash();
    std::vector<std::jthread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([i, hashes, &start, &wrongAnswers] {
            start.arrive_and_wait();
            for (int round = 0; round < 400; ++round) {
                const bool isRight = (round + i) % 2 == 0;
                const PasswordCheck check = checkPassword("md5", [=] { return isRight ? "tide pool" : "tide"; });
                wrongAnswers += check.accepted != (isRight && hashes);
            }
        });
    }
    threads.clear();
    EXPECT_EQ(wrongAnswers, 0);
}

} // namespace
} // namespace tarn
