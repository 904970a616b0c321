// The array report, from Java strings to a Java string.

#include <gtest/gtest.h>

#include <thread>

#include "platform/replay/Replay.h"
#include "tests/jvm/JniTable.h"
#include "tests/jvm/Jvm.h"
#include "tests/native/ArrayPages.h"

extern "C" {
jstring Java_com_kelvo_tarn_providers_solaris_SolarisScsiInterrogator_scsiInterrogate(JNIEnv *, jobject, jstring,
                                                                                      jstring, jstring, jstring);
}

namespace {

using Texts = std::vector<std::string>;

const Texts arrayOne{"ctrl-A", "ctrl-B", "KELVO", "ARRAY 9"};
const Texts arrayTwo{"ctrl-C", "ctrl-D", "KELVO", "ARRAY 9"};

jstring interrogate(JNIEnv *env, const Texts &arguments) {
    jstring strings[4] = {};
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        strings[i] = env->NewStringUTF(arguments[i].c_str());
    }
    return Java_com_kelvo_tarn_providers_solaris_SolarisScsiInterrogator_scsiInterrogate(
        env, nullptr, strings[0], strings[1], strings[2], strings[3]);
}

/// A host with two arrays of two controllers each, whose drives differ in number and counters.
void loadArrays() {
    std::vector<pages::ArrayLun> luns;
    for (unsigned i = 0; i < 4; ++i) {
        const pages::ControllerPages answers(i < 2 ? 2 : 448, 100 * i);
        luns.push_back({.name = "c" + std::to_string(i) + "t0d0",
                        .vendor = "KELVO",
                        .product = "ARRAY 9",
                        .controller = std::string("ctrl-") + "ABCD"[i],
                        .translation = answers.translation,
                        .statistics = answers.statistics});
    }
    replay::loadHostText(pages::describeHost(luns));
}

const std::string reportOfOne = "    2  0  1  0  2   80"
                                "         1         2         3         4         5         6         7         8"
                                "       101       102       103       104       105       106       107       108"
                                "     10001     10002     10003     10004     10005     10006     10007     10008"
                                "     10101     10102     10103     10104     10105     10106     10107     10108";

class ScsiInterrogatorTest : public testing::Test {
protected:
    ScsiInterrogatorTest() {
        loadArrays();
        env->PushLocalFrame(32);
    }
    ~ScsiInterrogatorTest() override {
        env->PopLocalFrame(nullptr);
    }

    JNIEnv *env = jvm::environment();
};

TEST_F(ScsiInterrogatorTest, AnswersTheReportAndReleasesItsArguments) {
    EXPECT_EQ(jvm::toText(env, interrogate(env, arrayOne)), reportOfOne);
    const std::string largest = jvm::toText(env, interrogate(env, arrayTwo));
    EXPECT_EQ(largest.size(), 74378U);
    EXPECT_EQ(largest.substr(largest.size() - 10), "     74708");

    const Texts strangers{"ctrl-X", "ctrl-Y", "KELVO", "ARRAY 9"};
    jvm::JniTable table(env);
    const jstring nothing = interrogate(env, strangers);
    const Texts calls(table.calls.begin() + 4, table.calls.end()); // behind those that made the arguments
    ASSERT_EQ(calls.size(), 9U);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(calls[i], "GetStringUTFChars");
        EXPECT_EQ(calls[8 - i], "ReleaseStringUTFChars " + strangers[i]);
    }
    EXPECT_EQ(calls[4], "NewStringUTF     0");
    EXPECT_EQ(jvm::toText(env, nothing), "    0");
}

TEST_F(ScsiInterrogatorTest, NullCountsAsAnEmptyText) {
    EXPECT_EQ(jvm::toText(env, interrogate(env, {})), "    0");
    EXPECT_EQ(jvm::toText(env, interrogate(env, {"ctrl-A", "ctrl-B"})), "    0");
    EXPECT_EQ(jvm::toText(env, interrogate(env, {"ctrl-A", "ctrl-\u00e9\u20ac", "KELVO", "ARRAY 9"})).substr(0, 5),
              "    2");
}

TEST_F(ScsiInterrogatorTest, EveryRefusedCallEndsCleanly) {
    jstring strings[4];
    std::transform(arrayOne.begin(), arrayOne.end(), strings,
                   [this](const std::string &text) { return env->NewStringUTF(text.c_str()); });
    const auto entry = [&](JNIEnv *callEnv) -> jobject {
        return Java_com_kelvo_tarn_providers_solaris_SolarisScsiInterrogator_scsiInterrogate(
            callEnv, nullptr, strings[0], strings[1], strings[2], strings[3]);
    };
    EXPECT_EQ(jvm::refuseEveryCall(env, jvm::Refusal::withException, entry), 5);
}

TEST_F(ScsiInterrogatorTest, ThreadsThatCallAtOnceAllGetTheirReport) {
    const std::string reportOfTwo = jvm::toText(env, interrogate(env, arrayTwo));
    const auto callOften = [](const Texts &arguments, const std::string &expected) {
        jvm::AttachedThread attached;
        for (int i = 0; i < 50; ++i) {
            attached.env->PushLocalFrame(8);
            EXPECT_EQ(jvm::toText(attached.env, interrogate(attached.env, arguments)), expected);
            attached.env->PopLocalFrame(nullptr);
        }
    };
    std::thread other(callOften, arrayTwo, reportOfTwo);
    std::thread one(callOften, arrayOne, reportOfOne);
    other.join();
    one.join();
}

} // namespace
