// The array report, from Java strings to a Java string.

#include <gtest/gtest.h>

#include "platform/replay/Replay.h"
#include "tests/Lines.h"
#include "tests/jvm/JniTable.h"
#include "tests/jvm/Jvm.h"
#include "tests/native/ArrayPages.h"

extern "C" {
jstring Java_com_kelvo_tarn_providers_solaris_SolarisScsiInterrogator_scsiInterrogate(JNIEnv *, jobject, jstring,
                                                                                      jstring, jstring, jstring);
}

namespace {

using tests::Lines;

class ScsiInterrogatorTest : public testing::Test {
protected:
    ScsiInterrogatorTest() {
        const pages::ControllerPages two(2);
        const pages::ControllerPages most(448, 100);
        replay::loadHostText(
            pages::describeHost({pages::arrayLun("c1", "ctrl-A", two), pages::arrayLun("c2", "ctrl-B", two),
                                 pages::arrayLun("c3", "ctrl-C", most), pages::arrayLun("c4", "ctrl-D", most)}));
        env->PushLocalFrame(32);
    }
    ~ScsiInterrogatorTest() override {
        env->PopLocalFrame(nullptr);
    }

    /// Null for the identities that are not given.
    jstring interrogate(const Lines &identities) {
        jstring strings[4] = {};
        std::ranges::transform(identities, strings,
                               [this](const auto &text) { return env->NewStringUTF(text.c_str()); });
        return Java_com_kelvo_tarn_providers_solaris_SolarisScsiInterrogator_scsiInterrogate(
            env, nullptr, strings[0], strings[1], strings[2], strings[3]);
    }

    JNIEnv *env = jvm::environment();
};

TEST_F(ScsiInterrogatorTest, AnswersTheReportAndReleasesItsArguments) {
    const std::string records = "         1         2         3         4         5         6         7         8"
                                "       101       102       103       104       105       106       107       108";
    EXPECT_EQ(jvm::toText(env, interrogate({"ctrl-A", "ctrl-B", "KELVO", "ARRAY 9"})),
              "    2  0  1  0  2   80" + records + records);
    const std::string largest = jvm::toText(env, interrogate({"ctrl-C", "ctrl-D", "KELVO", "ARRAY 9"}));
    EXPECT_EQ(largest.size(), 74378U);
    EXPECT_EQ(largest.substr(largest.size() - 10), "     54708");

    jvm::JniTable table(env);
    EXPECT_NE(interrogate({"ctrl-X", "ctrl-\u00e9\u20ac", "KELVO", "ARRAY 9"}), nullptr);
    EXPECT_EQ(Lines(table.calls.begin() + 4, table.calls.end()), // after those that made the arguments
              (Lines{"GetStringUTFChars", "GetStringUTFChars", "GetStringUTFChars", "GetStringUTFChars",
                     "NewStringUTF     0", "ReleaseStringUTFChars ARRAY 9", "ReleaseStringUTFChars KELVO",
                     "ReleaseStringUTFChars ctrl-\u00e9\u20ac", "ReleaseStringUTFChars ctrl-X"}));
}

TEST_F(ScsiInterrogatorTest, NullCountsAsAnEmptyText) {
    for (const Lines &identities : {Lines{}, Lines{"ctrl-A"}, Lines{"ctrl-A", "ctrl-B"}}) {
        EXPECT_EQ(jvm::toText(env, interrogate(identities)), "    0");
    }
}

TEST_F(ScsiInterrogatorTest, EveryRefusedCallEndsCleanly) {
    const jstring controllers[] = {env->NewStringUTF("ctrl-A"), env->NewStringUTF("ctrl-B")};
    const auto entry = [&](JNIEnv *callEnv) -> jobject {
        return Java_com_kelvo_tarn_providers_solaris_SolarisScsiInterrogator_scsiInterrogate(
            callEnv, nullptr, controllers[0], controllers[1], controllers[0], controllers[1]);
    };
    EXPECT_EQ(jvm::refuseEveryCall(env, jvm::Refusal::withException, entry), 5);
}

} // namespace
