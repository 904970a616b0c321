#pragma once

#include <jni.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace jvm {

/// How a chosen JNI call is refused.
enum class Refusal {
    withException, ///< as the virtual machine does: an exception is pending, the result is null or negative
    withNull,      ///< as Java does when a method or field holds null: the result is null, nothing is pending
};

/// A JNI function table laid over the thread's own for as long as this lives. It records what native code calls, counts
/// what must be balanced, notices what the JNI forbids, and can refuse one call. What Java itself calls while it runs on
/// behalf of native code goes past it.
class JniTable {
public:
    /// With the journal, each platform call stands among the calls too, indented; nobody else may keep one meanwhile.
    explicit JniTable(JNIEnv *environment, bool withJournal = false);
    ~JniTable();
    JniTable(const JniTable &) = delete;
    JniTable &operator=(const JniTable &) = delete;

    /// Lets the n-th (from 1) call that can be refused in that way, and begins with that text, be refused.
    void refuse(int n, Refusal refusal = Refusal::withException, const std::string &start = "");

    /// The chosen call as `calls` has it; empty when it did not come.
    const std::string &refusedLine() const {
        return refused;
    }

    /// The calls in order, ExceptionCheck left out, with their arguments and what they gave:
    /// "GetMethodID java/util/Vector addElement (Ljava/lang/Object;)V", "NewStringUTF rill",
    /// "CallVoidMethod HbaPortProvider.speed set getDefaultValues#2 UnsignedInt64#1". An object is called after where it
    /// came from, and numbered.
    std::vector<std::string> calls;

    /// Adds to `calls` what the journal has gathered since the latest JNI call.
    void takeJournal();

    /// What native code did wrong: calls with an exception pending that the JNI does not allow then, calls of functions
    /// that the library has no need of, references beyond the room that was asked for, releases without a fetch, and,
    /// once the call has ended, characters and frames that are still held.
    std::vector<std::string> faults() const;

private:
    friend struct Overlay;

    /// The local references of a frame.
    struct Frame {
        int room, made = 0;
    };

    JNIEnv *env;
    bool merging;
    const JNINativeInterface_ *real;
    JNINativeInterface_ table;
    int refusedCall = 0;
    Refusal refusedHow = Refusal::withException;
    std::string refusedStart;
    int refusableCalls = 0;
    std::string refused;
    std::vector<std::string> wrong;
    std::map<const void *, std::string> names; // of objects, methods and fields
    std::map<jmethodID, std::string> signatures;
    std::string signature; // of the method at hand
    std::map<std::string, int> numbers;
    std::map<const char *, int> fetched;
    std::vector<Frame> frames{{16}}; // which a native method has without asking
};

/// What the journal shows opened and not closed again, or closed too often; empty when all is balanced.
std::vector<std::string> unreleased(const std::vector<std::string> &journal);

/// Runs `entry` once for each JNI call it makes, refusing that call, until a run had nothing left to refuse. After each
/// run nothing may be leaked or forbidden, and either a result or the exception stands, unless the entry is one that ends
/// `quietly`. `exception` is what it throws when nothing is refused, as its toString().
/// Answers the number of refusals.
int refuseEveryCall(JNIEnv *env, Refusal refusal, const std::function<jobject(JNIEnv *)> &entry,
                    const std::string &exception = "", bool quietly = false);

} // namespace jvm
