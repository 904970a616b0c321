#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/Lines.h"
#include "tests/jvm/Jvm.h"

namespace jvm {

/// A test on the thread of the virtual machine, with room for its local references.
class JvmTest : public testing::Test {
protected:
    JvmTest() {
        env->PushLocalFrame(64);
    }
    ~JvmTest() override {
        env->PopLocalFrame(nullptr);
    }

    /// Null for null.
    jstring newString(const char *characters) const {
        return characters == nullptr ? nullptr : env->NewStringUTF(characters);
    }

    /// What these recorded calls bring to the log of SolarisNativeMethod, each line after its level.
    static tests::Lines logLines(const tests::Lines &calls) {
        const std::string logClass = "com/kelvo/tarn/providers/solaris/SolarisNativeMethod";
        const std::string target = "GetStaticMethodID " + logClass + " ";
        tests::Lines lines;
        for (std::size_t i = 0; i + 2 < calls.size(); ++i) {
            if (calls[i].starts_with(target) && calls[i + 2] == "CallStaticVoidMethod " + logClass) {
                const std::string level = calls[i].substr(target.size());
                lines.push_back(level.substr(0, level.find(' ')) + calls[i + 1].substr(calls[i + 1].find(' ')));
            }
        }
        return lines;
    }

    JNIEnv *const env = environment();
};

} // namespace jvm
