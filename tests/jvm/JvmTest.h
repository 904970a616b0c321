#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/Lines.h"
#include "tests/machine/Jvm.h"

namespace jvm {

/// A test on the thread of the virtual machine, with room for its local references.
class JvmTest : public testing::Test {
protected:
    /// Null for null.
    jstring newString(const char *characters) const {
        return characters == nullptr ? nullptr : env->NewStringUTF(characters);
    }

    jobject make(const char *className, const char *constructor, auto... values) const {
        const jclass cls = env->FindClass(className);
        return env->NewObject(cls, env->GetMethodID(cls, "<init>", constructor), values...);
    }

    /// What these recorded calls bring to the log of SolarisNativeMethod: warn "uname failed in getOperatingSystem".
    static tests::Lines logLines(const tests::Lines &calls) {
        const std::string start = "CallStaticVoidMethod com/kelvo/tarn/providers/solaris/SolarisNativeMethod ";
        tests::Lines lines = tests::beginning(calls, {start});
        std::ranges::for_each(lines, [&](std::string &line) { line.erase(0, start.size()); });
        return lines;
    }

    JNIEnv *const env = environment();

private:
    const LocalFrame ofTest{env, 128};
};

} // namespace jvm
