#include "tests/jvm/JniTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <numeric>
#include <sstream>
#include <type_traits>
#include <utility>

#include "platform/replay/Replay.h"
#include "tests/jvm/Jvm.h"

namespace jvm {
namespace {

JniTable *laid = nullptr;

/// What the table has to know of one JNI function.
struct Function {
    const char *name;
    const char *throws;       // the error that a refusal leaves pending; null: the function cannot fail
    bool mayReturnNull;       // without an exception
    bool allowedWhilePending; // with an exception
    bool isForbidden = false;
};

template <class Argument>
void describe(std::ostream &out, const std::map<jclass, std::string> &classNames, Argument argument) {
    if constexpr (std::is_same_v<Argument, const char *>) {
        out << ' ' << (argument == nullptr ? "null" : argument);
    } else if constexpr (std::is_same_v<Argument, jclass>) {
        const auto found = classNames.find(argument);
        out << ' ' << (found == classNames.end() ? "?" : found->second);
    } else if constexpr (std::is_integral_v<Argument>) {
        out << ' ' << argument;
    }
}

} // namespace

using T = JNINativeInterface_;

struct Overlay {
    template <auto member>
    struct Of;
    template <auto member>
    struct Slot {};

    /// Puts the recording function over the real one.
    template <auto member>
    static void lay(T &table, const Function &function) {
        Of<member>::function = function;
        table.*member = &Of<member>::call;
    }

    /// For functions that would tell of a reference kept beyond the call, or of a lookup that is not specified.
    template <auto... members>
    static void forbid(T &table) {
        (lay<members>(table, {"a JNI function that the library has no need of", nullptr, false, true, true}), ...);
    }

    static bool isRefusedNow(JniTable &table, const Function &function, const std::string &line) {
        const bool refusable =
            table.refusedHow == Refusal::withException ? function.throws != nullptr : function.mayReturnNull;
        if (!refusable || ++table.refusableCalls != table.refusedCall) {
            return false;
        }
        table.refused = line;
        if (table.refusedHow == Refusal::withException) {
            table.real->ThrowNew(table.env, table.real->FindClass(table.env, function.throws), "refused");
        }
        return true;
    }

    static void countReference(JniTable &table, bool isThere) {
        table.frames.back() += isThere ? 1 : 0;
        table.peakLocalReferences =
            std::max(table.peakLocalReferences, std::accumulate(table.frames.begin(), table.frames.end(), 0));
    }

    // What opens or closes something is counted: closing before the call, opening after it.

    template <auto member, class... Arguments>
    static void before(Slot<member>, JniTable &, Arguments...) {
    }
    template <auto member, class... Rest>
    static void before(Slot<member>, JniTable &table, jobject receiver, jmethodID, Rest...) {
        if (receiver == nullptr) { // which the JNI does not forgive
            table.wrong.push_back("on null: " + table.calls.back());
        }
    }
    static void before(Slot<&T::ReleaseStringUTFChars>, JniTable &table, jstring, const char *characters) {
        if (--table.fetched[characters] < 0) {
            table.wrong.emplace_back("characters released that were not fetched");
        }
    }
    static void before(Slot<&T::PopLocalFrame>, JniTable &table, jobject) {
        if (table.frames.size() == 1) {
            table.wrong.emplace_back("a frame popped that was not pushed");
        } else {
            table.frames.pop_back();
        }
    }
    static void before(Slot<&T::DeleteLocalRef>, JniTable &table, jobject reference) {
        table.frames.back() -= reference != nullptr ? 1 : 0;
    }

    template <auto member, class Result, class... Arguments>
    static void after(Slot<member>, JniTable &, Result, Arguments...) {
    }
    static void after(Slot<&T::FindClass>, JniTable &table, jclass cls, const char *name) {
        table.classNames[cls] = cls == nullptr ? "null" : name;
    }
    static void after(Slot<&T::GetStringUTFChars>, JniTable &table, const char *characters, jstring, jboolean *) {
        table.fetched[characters] += characters != nullptr ? 1 : 0;
    }
    static void after(Slot<&T::PushLocalFrame>, JniTable &table, jint status, jint) {
        if (status >= 0) {
            table.frames.push_back(0);
        }
    }
};

template <class Result, class... Arguments, Result (*JNINativeInterface_::*member)(JNIEnv *, Arguments...)>
struct Overlay::Of<member> {
    static inline Function function{};

    static Result call(JNIEnv *env, Arguments... arguments) {
        JniTable &table = *laid;
        env->functions = table.real; // what Java calls meanwhile is its own business
        struct Relay {
            ~Relay() {
                laid->env->functions = &laid->table;
            }
        } const relay;

        std::ostringstream text;
        text << function.name;
        (describe(text, table.classNames, arguments), ...);
        const std::string &line = table.calls.emplace_back(text.str());
        if (function.isForbidden) {
            table.wrong.push_back(line);
        }
        if (!function.allowedWhilePending && env->ExceptionCheck() == JNI_TRUE) {
            table.wrong.push_back("with an exception pending: " + line);
        }
        before(Slot<member>{}, table, arguments...);
        if (isRefusedNow(table, function, line)) {
            if constexpr (std::is_same_v<Result, jint>) {
                return JNI_ENOMEM;
            } else {
                return Result();
            }
        }
        if constexpr (std::is_void_v<Result>) {
            (table.real->*member)(env, arguments...);
        } else {
            const Result result = (table.real->*member)(env, arguments...);
            if constexpr (std::is_convertible_v<Result, jobject>) {
                countReference(table, result != nullptr);
            }
            after(Slot<member>{}, table, result, arguments...);
            return result;
        }
    }
};

JniTable::JniTable(JNIEnv *environment) : env(environment), real(environment->functions), table(*real) {
    constexpr const char *outOfMemory = "java/lang/OutOfMemoryError";
    constexpr const char *javaThrew = "java/lang/IllegalStateException";
    Overlay::lay<&T::FindClass>(table, {"FindClass", "java/lang/NoClassDefFoundError", false, false});
    Overlay::lay<&T::GetMethodID>(table, {"GetMethodID", "java/lang/NoSuchMethodError", false, false});
    Overlay::lay<&T::GetStaticMethodID>(table, {"GetStaticMethodID", "java/lang/NoSuchMethodError", false, false});
    Overlay::lay<&T::GetStaticFieldID>(table, {"GetStaticFieldID", "java/lang/NoSuchFieldError", false, false});
    Overlay::lay<&T::GetStaticObjectField>(table, {"GetStaticObjectField", nullptr, true, false});
    Overlay::lay<&T::GetStringUTFChars>(table, {"GetStringUTFChars", outOfMemory, false, false});
    Overlay::lay<&T::ReleaseStringUTFChars>(table, {"ReleaseStringUTFChars", nullptr, false, true});
    Overlay::lay<&T::NewObjectV>(table, {"NewObject", outOfMemory, false, false});
    Overlay::lay<&T::NewStringUTF>(table, {"NewStringUTF", outOfMemory, false, false});
    Overlay::lay<&T::NewObjectArray>(table, {"NewObjectArray", outOfMemory, false, false});
    Overlay::lay<&T::NewByteArray>(table, {"NewByteArray", outOfMemory, false, false});
    Overlay::lay<&T::SetByteArrayRegion>(table, {"SetByteArrayRegion", nullptr, false, false});
    Overlay::lay<&T::SetObjectArrayElement>(table, {"SetObjectArrayElement", javaThrew, false, false});
    Overlay::lay<&T::CallObjectMethodV>(table, {"CallObjectMethod", javaThrew, true, false});
    Overlay::lay<&T::CallBooleanMethodV>(table, {"CallBooleanMethod", javaThrew, false, false});
    Overlay::lay<&T::CallVoidMethodV>(table, {"CallVoidMethod", javaThrew, false, false});
    Overlay::lay<&T::CallStaticObjectMethodV>(table, {"CallStaticObjectMethod", javaThrew, true, false});
    Overlay::lay<&T::CallStaticVoidMethodV>(table, {"CallStaticVoidMethod", javaThrew, false, false});
    Overlay::lay<&T::EnsureLocalCapacity>(table, {"EnsureLocalCapacity", outOfMemory, false, false});
    Overlay::lay<&T::PushLocalFrame>(table, {"PushLocalFrame", outOfMemory, false, true});
    Overlay::lay<&T::PopLocalFrame>(table, {"PopLocalFrame", nullptr, false, true});
    Overlay::lay<&T::DeleteLocalRef>(table, {"DeleteLocalRef", nullptr, false, true});
    Overlay::lay<&T::Throw>(table, {"Throw", outOfMemory, false, false});
    Overlay::lay<&T::ExceptionCheck>(table, {"ExceptionCheck", nullptr, false, true});
    Overlay::lay<&T::ExceptionClear>(table, {"ExceptionClear", nullptr, false, true});
    Overlay::lay<&T::ExceptionDescribe>(table, {"ExceptionDescribe", nullptr, false, true});
    Overlay::forbid<&T::NewGlobalRef, &T::NewWeakGlobalRef, &T::NewLocalRef, &T::GetObjectClass, &T::GetSuperclass,
                    &T::IsInstanceOf, &T::IsSameObject, &T::GetFieldID, &T::GetObjectField, &T::GetStringLength,
                    &T::GetStringUTFLength, &T::GetStringChars, &T::GetArrayLength, &T::GetObjectArrayElement,
                    &T::ExceptionOccurred, &T::ThrowNew, &T::MonitorEnter, &T::GetJavaVM>(table);
    laid = this;
    env->functions = &table;
}

JniTable::~JniTable() {
    env->functions = real;
    laid = nullptr;
}

void JniTable::refuse(int n, Refusal refusal) {
    refusedCall = n;
    refusedHow = refusal;
}

std::vector<std::string> JniTable::faults() const {
    std::vector<std::string> all = wrong;
    for (const auto &[characters, times] : fetched) {
        if (times > 0) {
            all.emplace_back("characters not released");
        }
    }
    if (frames.size() > 1) {
        all.emplace_back("a frame not popped");
    }
    return all;
}

std::vector<std::string> unreleased(const std::vector<std::string> &journal) {
    constexpr std::pair<const char *, const char *> pairs[] = {
        {"open", "close"},
        {"opendir", "closedir"},
        {"fopen", "fclose"},
        {"kstat_open", "kstat_close"},
        {"HBA_OpenAdapter", "HBA_CloseAdapter"},
        {"HBA_LoadLibrary", "HBA_FreeLibrary"},
    };
    std::map<std::string, int> open;
    for (const std::string &line : journal) {
        std::istringstream words(line);
        const std::vector<std::string> word{std::istream_iterator<std::string>(words), {}};
        // Lines of failed calls end with the error's name, which no successful one has.
        const bool hasFailed = word.back().size() > 2 && word.back()[0] == 'E' &&
                               word.back().find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ") == std::string::npos;
        // Which stream is closed, the journal does not tell.
        const std::string what = word.size() > 1 && word[0] != "fopen" ? " " + word[1] : "";
        for (const auto &[opener, closer] : pairs) {
            open[opener + what] += (word[0] == opener && !hasFailed ? 1 : 0) - (word[0] == closer ? 1 : 0);
        }
    }
    std::vector<std::string> unbalanced;
    for (const auto &[what, times] : open) {
        if (times != 0) {
            unbalanced.push_back(what + (times > 0 ? " left open" : " closed too often"));
        }
    }
    return unbalanced;
}

int refuseEveryCall(JNIEnv *env, Refusal refusal, const std::function<jobject(JNIEnv *)> &entry,
                    const std::string &exception, bool quietly) {
    const std::vector<std::string> nothing;
    for (int n = 1;; ++n) {
        SCOPED_TRACE("with call " + std::to_string(n) + " refused");
        env->PushLocalFrame(16); // as the virtual machine does around a native method
        replay::startJournal();
        std::string refused;
        jobject result = nullptr;
        {
            JniTable table(env);
            table.refuse(n, refusal);
            result = entry(env);
            refused = table.refusedLine();
            EXPECT_EQ(table.faults(), nothing);
        }
        EXPECT_EQ(unreleased(replay::stopJournal()), nothing);
        const std::string thrown = takeException(env);
        EXPECT_FALSE(!thrown.empty() && result != nullptr) << "a result beside a pending exception";
        if (refused.empty()) {
            EXPECT_EQ(thrown, exception);
        } else if (refusal == Refusal::withException && result == nullptr && !quietly &&
                   !refused.starts_with("PushLocalFrame")) {
            EXPECT_FALSE(thrown.empty()) << "null, and nobody is told that this was refused: " << refused;
        }
        env->PopLocalFrame(nullptr);
        if (refused.empty() || ::testing::Test::HasFailure()) {
            return n - 1;
        }
    }
}

} // namespace jvm
