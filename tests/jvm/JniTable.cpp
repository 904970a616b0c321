#include "tests/jvm/JniTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <sstream>
#include <type_traits>

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

/// Whether a method is called on null, which the JNI does not forgive.
template <class... Rest>
bool lacksReceiver(jobject receiver, jmethodID, Rest...) {
    return receiver == nullptr;
}
template <class... Arguments>
bool lacksReceiver(Arguments...) {
    return false;
}

} // namespace

struct Overlay {
    template <auto member>
    struct Of;

    /// Puts the recording function over the real one.
    template <auto member>
    static void lay(JNINativeInterface_ &table, const Function &function) {
        Of<member>::function = function;
        table.*member = &Of<member>::call;
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

    template <class Reference>
    static void count(JniTable &table, Reference reference) {
        if (reference != nullptr) {
            ++table.frames.back();
            int live = 0;
            for (const int inFrame : table.frames) {
                live += inFrame;
            }
            table.peakLocalReferences = std::max(table.peakLocalReferences, live);
        }
    }

    static void noteWrong(JniTable &table, const std::string &what) {
        table.wrong.push_back(what);
    }

    template <class Result, class... Arguments>
    static Result record(const Function &function, Result (*real)(JNIEnv *, Arguments...), JNIEnv *env,
                         Arguments... arguments) {
        JniTable &table = *laid;
        env->functions = table.real; // what Java calls meanwhile is its own business
        struct Relay {
            ~Relay() {
                env->functions = &table.table;
            }
            JNIEnv *env;
            JniTable &table;
        } const relay{env, table};

        std::ostringstream line;
        line << function.name;
        (describe(line, table.classNames, arguments), ...);
        table.calls.push_back(line.str());
        if (!function.allowedWhilePending && env->ExceptionCheck() == JNI_TRUE) {
            noteWrong(table, "with an exception pending: " + line.str());
        }
        if (lacksReceiver(arguments...)) {
            noteWrong(table, "on null: " + line.str());
        }
        if (isRefusedNow(table, function, line.str())) {
            if constexpr (std::is_same_v<Result, jint>) {
                return JNI_ENOMEM;
            } else if constexpr (!std::is_void_v<Result>) {
                return Result{};
            } else {
                return;
            }
        }
        if constexpr (std::is_void_v<Result>) {
            real(env, arguments...);
        } else {
            const Result result = real(env, arguments...);
            if constexpr (std::is_convertible_v<Result, jobject>) {
                count(table, result);
            }
            return result;
        }
    }

    // Functions that open or close something are counted besides.

    static jclass findClass(JNIEnv *env, const char *name) {
        static const Function function{"FindClass", "java/lang/NoClassDefFoundError", false, false};
        JniTable &table = *laid;
        const jclass cls = record(function, table.real->FindClass, env, name);
        if (cls != nullptr) {
            table.classNames[cls] = name;
        }
        return cls;
    }

    static const char *getStringUTFChars(JNIEnv *env, jstring string, jboolean *isCopy) {
        static const Function function{"GetStringUTFChars", "java/lang/OutOfMemoryError", false, false};
        JniTable &table = *laid;
        const char *const characters = record(function, table.real->GetStringUTFChars, env, string, isCopy);
        if (characters != nullptr) {
            ++table.fetched[characters];
        }
        return characters;
    }

    static void releaseStringUTFChars(JNIEnv *env, jstring string, const char *characters) {
        static const Function function{"ReleaseStringUTFChars", nullptr, false, true};
        JniTable &table = *laid;
        if (--table.fetched[characters] < 0) {
            noteWrong(table, "characters released that were not fetched");
        }
        record(function, table.real->ReleaseStringUTFChars, env, string, characters);
    }

    static jint pushLocalFrame(JNIEnv *env, jint capacity) {
        static const Function function{"PushLocalFrame", "java/lang/OutOfMemoryError", false, true};
        JniTable &table = *laid;
        const jint status = record(function, table.real->PushLocalFrame, env, capacity);
        if (status >= 0) {
            table.frames.push_back(0);
        }
        return status;
    }

    static jobject popLocalFrame(JNIEnv *env, jobject survivor) {
        static const Function function{"PopLocalFrame", nullptr, false, true};
        JniTable &table = *laid;
        if (table.frames.size() == 1) {
            noteWrong(table, "a frame popped that was not pushed");
        } else {
            table.frames.pop_back();
        }
        return record(function, table.real->PopLocalFrame, env, survivor);
    }

    static void deleteLocalRef(JNIEnv *env, jobject reference) {
        static const Function function{"DeleteLocalRef", nullptr, false, true};
        JniTable &table = *laid;
        if (reference != nullptr) {
            --table.frames.back();
        }
        record(function, table.real->DeleteLocalRef, env, reference);
    }
};

template <class Result, class... Arguments, Result (*JNINativeInterface_::*member)(JNIEnv *, Arguments...)>
struct Overlay::Of<member> {
    static inline Function function{};

    static Result call(JNIEnv *env, Arguments... arguments) {
        return record(function, laid->real->*member, env, arguments...);
    }
};

JniTable::JniTable(JNIEnv *environment) : env(environment), real(environment->functions), table(*real) {
    constexpr const char *outOfMemory = "java/lang/OutOfMemoryError";
    constexpr const char *javaThrew = "java/lang/IllegalStateException";
    using T = JNINativeInterface_;
    Overlay::lay<&T::GetMethodID>(table, {"GetMethodID", "java/lang/NoSuchMethodError", false, false});
    Overlay::lay<&T::GetStaticMethodID>(table, {"GetStaticMethodID", "java/lang/NoSuchMethodError", false, false});
    Overlay::lay<&T::GetStaticFieldID>(table, {"GetStaticFieldID", "java/lang/NoSuchFieldError", false, false});
    Overlay::lay<&T::GetStaticObjectField>(table, {"GetStaticObjectField", nullptr, true, false});
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
    Overlay::lay<&T::Throw>(table, {"Throw", outOfMemory, false, false});
    Overlay::lay<&T::ExceptionCheck>(table, {"ExceptionCheck", nullptr, false, true});
    Overlay::lay<&T::ExceptionClear>(table, {"ExceptionClear", nullptr, false, true});
    Overlay::lay<&T::ExceptionDescribe>(table, {"ExceptionDescribe", nullptr, false, true});
    table.FindClass = &Overlay::findClass;
    table.GetStringUTFChars = &Overlay::getStringUTFChars;
    table.ReleaseStringUTFChars = &Overlay::releaseStringUTFChars;
    table.PushLocalFrame = &Overlay::pushLocalFrame;
    table.PopLocalFrame = &Overlay::popLocalFrame;
    table.DeleteLocalRef = &Overlay::deleteLocalRef;
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
    static const std::map<std::string, std::string> openedBy{
        {"close", "open"},   {"closedir", "opendir"},       {"fclose", "fopen"},
        {"kstat_close", "kstat_open"}, {"HBA_CloseAdapter", "HBA_OpenAdapter"}, {"HBA_FreeLibrary", "HBA_LoadLibrary"},
    };
    static const std::set<std::string> openers{"open", "opendir", "fopen", "kstat_open", "HBA_OpenAdapter",
                                               "HBA_LoadLibrary"};
    // Lines of failed calls end with the error's name, which no successful one has.
    const auto hasFailed = [](const std::string &lastWord) {
        return lastWord.size() > 2 && lastWord[0] == 'E' &&
               std::all_of(lastWord.begin(), lastWord.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
    };
    std::map<std::string, int> open;
    for (const std::string &line : journal) {
        std::istringstream words(line);
        const std::vector<std::string> word{std::istream_iterator<std::string>(words), {}};
        // Which stream is closed, the journal does not tell.
        const std::string what = word.size() > 1 && word[0] != "fopen" ? " " + word[1] : "";
        if (openers.count(word[0]) != 0 && !hasFailed(word.back())) {
            ++open[word[0] + what];
        } else if (const auto closer = openedBy.find(word[0]); closer != openedBy.end()) {
            --open[closer->second + what];
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
