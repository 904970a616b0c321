#include "tests/jvm/JniTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdarg>
#include <iterator>
#include <sstream>
#include <type_traits>
#include <utility>

#include "platform/replay/Replay.h"
#include "tests/Allocations.h"
#include "tests/machine/Jvm.h"

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

/// A class's name without its package.
std::string simpleName(const std::string &name) {
    return name.substr(name.find_last_of("/$.") + 1);
}

std::string quoted(std::string text) {
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; ++at) {
        text.replace(at, 1, "\\n");
    }
    return '"' + text + '"';
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

    /// The object as the lines call it. One that native code was given is called after its class; the receiver's is
    /// made by the virtual machine, and each calls it differently.
    static const std::string &name(JniTable &table, const void *pointer) {
        static const std::string null = "null";
        if (pointer == nullptr) {
            return null;
        }
        std::string &found = table.names[pointer];
        if (found.empty() && table.env->ExceptionCheck() == JNI_FALSE) {
            const auto object = static_cast<jobject>(const_cast<void *>(pointer));
            const LocalFrame frame(table.env);
            const auto isA = [&](const char *cls) {
                return table.env->IsInstanceOf(object, table.env->FindClass(cls)) == JNI_TRUE;
            };
            found = isA("java/lang/String") ? quoted(toText(table.env, object))
                    : isA("com/kelvo/tarn/InstanceReceiver")
                        ? "InstanceReceiver"
                        : simpleName(toText(table.env, table.env->GetObjectClass(object)));
        }
        return found.empty() ? found = "?" : found;
    }

    template <class Argument>
    static std::string describe(JniTable &table, Argument argument) {
        if constexpr (std::is_same_v<Argument, const char *>) {
            const std::string text = argument == nullptr ? "null" : argument;
            return " " + (text.empty() || text.find(' ') != std::string::npos ? quoted(text) : text);
        } else if constexpr (std::is_same_v<Argument, jmethodID>) {
            table.signature = table.signatures[argument];
            return " " + table.names[argument];
        } else if constexpr (std::is_integral_v<Argument>) {
            return " " + std::to_string(argument);
        } else if constexpr (std::is_convertible_v<Argument, jobject> || std::is_same_v<Argument, jfieldID>) {
            return " " + name(table, argument);
        } else {
            return "";
        }
    }

    /// The values for the method at hand.
    static std::string describe(JniTable &table, va_list arguments) {
        std::string text;
        va_list values;
        va_copy(values, arguments);
        for (std::size_t at = 1; at < table.signature.size() && table.signature[at] != ')'; ++at) {
            const bool isArray = table.signature[at] == '[';
            at = isArray ? table.signature.find_first_not_of('[', at) : at;
            if (table.signature[at] == 'L' || isArray) {
                text += " " + name(table, va_arg(values, jobject));
                at = table.signature[at] == 'L' ? table.signature.find(';', at) : at;
            } else {
                text += " " + std::to_string(table.signature[at] == 'J' ? va_arg(values, jlong) : va_arg(values, jint));
            }
        }
        va_end(values);
        return text;
    }

    /// Numbers an object after what it comes from.
    static std::string numbered(JniTable &table, const std::string &origin) {
        return origin + "#" + std::to_string(++table.numbers[origin]);
    }

    static bool isRefusedNow(JniTable &table, const Function &function, const std::string &line) {
        const bool refusable =
            table.refusedHow == Refusal::withException ? function.throws != nullptr : function.mayReturnNull;
        if (!refusable || !line.starts_with(table.refusedStart) || ++table.refusableCalls != table.refusedCall) {
            return false;
        }
        table.refused = line;
        if (table.refusedHow == Refusal::withException) {
            table.real->ThrowNew(table.env, table.real->FindClass(table.env, function.throws), "refused");
        }
        return true;
    }

    static void countReference(JniTable &table) {
        if (JniTable::Frame &frame = table.frames.back(); ++frame.made > frame.room) {
            table.wrong.push_back("beyond the room for " + std::to_string(frame.room) + " references");
        }
    }

    // What opens or closes something is counted: closing before the call, opening after it.

    template <auto member, class... Arguments>
    static void before(Slot<member>, JniTable &, Arguments...) {
    }
    template <auto member, class... Rest>
    static void before(Slot<member>, JniTable &table, jobject receiver, jmethodID, Rest...) {
        if (receiver == nullptr) { // which the JNI does not forgive
            table.wrong.emplace_back("a call on null");
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
        table.frames.back().made -= reference != nullptr ? 1 : 0;
        table.names.erase(reference);
    }
    static void before(Slot<&T::SetByteArrayRegion>, JniTable &table, jbyteArray, jsize, jsize size,
                       const jbyte *from) {
        for (jsize i = 0; i < size; ++i) {
            table.calls.back() += " " + std::to_string(static_cast<unsigned char>(from[i]));
        }
    }
    static void before(Slot<&T::SetLongArrayRegion>, JniTable &table, jlongArray, jsize, jsize size,
                       const jlong *from) {
        for (jsize i = 0; i < size; ++i) {
            table.calls.back() += " " + std::to_string(from[i]);
        }
    }

    static void noteLookup(JniTable &table, bool onlyOnce) {
        if (onlyOnce && ++table.numbers[table.calls.back()] > 1) {
            table.wrong.push_back("looked up twice: " + table.calls.back());
        }
    }

    /// What the call gave, as it is called from now on; empty where the arguments tell.
    template <auto member, class Result, class... Arguments>
    static std::string after(Slot<member>, JniTable &, Result, Arguments...) {
        return "";
    }
    static std::string after(Slot<&T::FindClass>, JniTable &table, jclass cls, const char *name) {
        table.names[cls] = name;
        return "";
    }
    static std::string after(Slot<&T::NewStringUTF>, JniTable &table, jstring string, const char *text) {
        table.names[string] = quoted(text);
        return "";
    }
    template <auto member>
    static std::string after(Slot<member>, JniTable &table, jmethodID id, jclass, const char *name,
                             const char *signature) {
        table.names[id] = name;
        table.signatures[id] = signature;
        // Only the method that takes log lines is looked up anew.
        noteLookup(table, member == &T::GetMethodID);
        return "";
    }
    static std::string after(Slot<&T::GetStaticFieldID>, JniTable &table, jfieldID id, jclass, const char *name,
                             const char *) {
        table.names[id] = name;
        noteLookup(table, true);
        return "";
    }
    static std::string after(Slot<&T::GetStaticObjectField>, JniTable &table, jobject value, jclass cls, jfieldID id) {
        table.names[value] = simpleName(table.names[cls]) + "." + table.names[id];
        return value == nullptr ? "null" : "";
    }
    template <auto member, class Receiver>
    static std::string after(Slot<member>, JniTable &table, jobject result, Receiver receiver, jmethodID method,
                             va_list) {
        const bool isNew = std::is_same_v<Slot<member>, Slot<&T::NewObjectV>>;
        table.names.erase(result);
        if (result != nullptr && !table.signature.ends_with(")Ljava/lang/String;")) {
            table.names[result] = numbered(table, isNew ? simpleName(table.names[receiver]) : table.names[method]);
        }
        return name(table, result);
    }
    static std::string after(Slot<&T::CallBooleanMethodV>, JniTable &, jboolean result, jobject, jmethodID, va_list) {
        return result == JNI_TRUE ? "true" : "false";
    }
    static std::string after(Slot<&T::NewObjectArray>, JniTable &table, jobjectArray array, jsize, jclass cls,
                             jobject) {
        return table.names[array] = numbered(table, simpleName(table.names[cls]) + "[]");
    }
    static std::string after(Slot<&T::NewByteArray>, JniTable &table, jbyteArray array, jsize) {
        return table.names[array] = numbered(table, "byte[]");
    }
    static std::string after(Slot<&T::NewLongArray>, JniTable &table, jlongArray array, jsize) {
        return table.names[array] = numbered(table, "long[]");
    }
    static std::string after(Slot<&T::GetStringUTFChars>, JniTable &table, const char *characters, jstring,
                             jboolean *) {
        table.fetched[characters] += characters != nullptr ? 1 : 0;
        return "";
    }
    static std::string after(Slot<&T::PushLocalFrame>, JniTable &table, jint status, jint room) {
        if (status >= 0) {
            table.frames.push_back({room});
        }
        return "";
    }
    static std::string after(Slot<&T::EnsureLocalCapacity>, JniTable &table, jint status, jint capacity) {
        if (JniTable::Frame &frame = table.frames.back(); status >= 0) {
            frame.room = std::max(frame.room, frame.made + capacity);
        }
        return "";
    }
    /// The survivor goes by its name.
    static std::string after(Slot<&T::PopLocalFrame>, JniTable &table, jobject result, jobject survivor) {
        const std::string old = name(table, survivor);
        table.names[result] = old;
        return "";
    }
};

template <class Result, class... Arguments, Result (*JNINativeInterface_::*member)(JNIEnv *, Arguments...)>
struct Overlay::Of<member> {
    static inline Function function{};

    static Result call(JNIEnv *env, Arguments... arguments) {
        const tests::OutsideTheLibrary outside;
        JniTable &table = *laid;
        env->functions = table.real; // what Java calls meanwhile is its own business
        struct Relay {
            ~Relay() {
                laid->env->functions = &laid->table;
            }
        } const relay;

        table.takeJournal();
        std::string line = function.name;
        ((line += describe(table, arguments)), ...);
        if (function.isForbidden) {
            table.wrong.push_back(line);
        }
        if (!function.allowedWhilePending && env->ExceptionCheck() == JNI_TRUE) {
            table.wrong.push_back("with an exception pending: " + line);
        }
        constexpr bool isCheck = std::is_same_v<Slot<member>, Slot<&T::ExceptionCheck>>;
        const std::size_t number = table.calls.size();
        table.calls.resize(number + (isCheck ? 0 : 1), line);
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
                if (result != nullptr) {
                    countReference(table);
                }
            }
            if (const std::string given = after(Slot<member>{}, table, result, arguments...); !given.empty()) {
                table.calls[number] += " = " + given;
            }
            return result;
        }
    }
};

JniTable::JniTable(JNIEnv *environment, bool withJournal)
    : env(environment), merging(withJournal), real(environment->functions), table(*real) {
    constexpr const char *outOfMemory = "java/lang/OutOfMemoryError";
    constexpr const char *javaThrew = "java/lang/IllegalStateException";
    Overlay::lay<&T::FindClass>(table, {"FindClass", "java/lang/NoClassDefFoundError", false, false});
    Overlay::lay<&T::GetMethodID>(table, {"GetMethodID", "java/lang/NoSuchMethodError", false, false});
    Overlay::lay<&T::GetStaticMethodID>(table, {"GetStaticMethodID", "java/lang/NoSuchMethodError", false, false});
    Overlay::lay<&T::GetStaticFieldID>(table, {"GetStaticFieldID", "java/lang/NoSuchFieldError", false, false});
    Overlay::lay<&T::GetStaticObjectField>(table, {"GetStaticObjectField", nullptr, true, false});
    Overlay::lay<&T::GetStringUTFChars>(table, {"GetStringUTFChars", outOfMemory, true, false});
    Overlay::lay<&T::ReleaseStringUTFChars>(table, {"ReleaseStringUTFChars", nullptr, false, true});
    Overlay::lay<&T::NewObjectV>(table, {"NewObject", outOfMemory, false, false});
    Overlay::lay<&T::NewStringUTF>(table, {"NewStringUTF", outOfMemory, false, false});
    Overlay::lay<&T::NewObjectArray>(table, {"NewObjectArray", outOfMemory, false, false});
    Overlay::lay<&T::NewByteArray>(table, {"NewByteArray", outOfMemory, false, false});
    Overlay::lay<&T::SetByteArrayRegion>(table, {"SetByteArrayRegion", nullptr, false, false});
    Overlay::lay<&T::NewLongArray>(table, {"NewLongArray", outOfMemory, false, false});
    Overlay::lay<&T::SetLongArrayRegion>(table, {"SetLongArrayRegion", nullptr, false, false});
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
    Overlay::lay<&T::ThrowNew>(table, {"ThrowNew", nullptr, false, false});
    Overlay::lay<&T::IsInstanceOf>(table, {"IsInstanceOf", nullptr, false, false});
    Overlay::lay<&T::ExceptionOccurred>(table, {"ExceptionOccurred", nullptr, false, true});
    Overlay::lay<&T::ExceptionCheck>(table, {"ExceptionCheck", nullptr, false, true});
    Overlay::lay<&T::ExceptionClear>(table, {"ExceptionClear", nullptr, false, true});
    Overlay::lay<&T::ExceptionDescribe>(table, {"ExceptionDescribe", nullptr, false, true});
    Overlay::forbid<&T::NewGlobalRef, &T::NewWeakGlobalRef, &T::NewLocalRef, &T::GetObjectClass, &T::GetSuperclass,
                    &T::IsSameObject, &T::GetFieldID, &T::GetObjectField, &T::GetStringLength, &T::GetStringUTFLength,
                    &T::GetStringChars, &T::GetArrayLength, &T::GetObjectArrayElement, &T::MonitorEnter, &T::GetJavaVM>(
        table);
    laid = this;
    env->functions = &table;
    if (merging) {
        replay::startJournal();
    }
}

JniTable::~JniTable() {
    env->functions = real;
    laid = nullptr;
    if (merging) {
        replay::stopJournal();
    }
}

void JniTable::refuse(int n, Refusal refusal, const std::string &start) {
    refusedCall = n;
    refusedHow = refusal;
    refusedStart = start;
}

void JniTable::takeJournal() {
    if (merging) {
        for (const std::string &line : replay::stopJournal()) {
            calls.push_back("    " + line);
        }
        replay::startJournal();
    }
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
        std::vector<std::string> word{std::istream_iterator<std::string>(words), {}};
        const bool isRefused = word.back() == "refused";
        word.resize(word.size() - (isRefused ? 1 : 0));
        // Lines of failed calls end with the error's name, which no successful one has. The HBA library is freed whatever
        // its loading said.
        const bool hasFailed = (isRefused && word[0] != "HBA_LoadLibrary") ||
                               (word.back().size() > 2 && word.back()[0] == 'E' &&
                                word.back().find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ") == std::string::npos);
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
    const auto failures = [] {
        return ::testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
    };
    const int failuresBefore = failures();
    for (int n = 1;; ++n) {
        SCOPED_TRACE("with call " + std::to_string(n) + " refused");
        const LocalFrame frame(env);
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
        } else if (refusal == Refusal::withException && result == nullptr && !quietly) {
            EXPECT_FALSE(thrown.empty()) << "null, and nobody is told that this was refused: " << refused;
        }
        if (refused.empty() || failures() > failuresBefore) {
            return refused.empty() ? n - 1 : n;
        }
    }
}

} // namespace jvm
