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
    explicit JniTable(JNIEnv *environment);
    ~JniTable();
    JniTable(const JniTable &) = delete;
    JniTable &operator=(const JniTable &) = delete;

    /// Lets the n-th (from 1) call that can be refused in that way be refused.
    void refuse(int n, Refusal refusal = Refusal::withException);

    /// Whether the chosen call came.
    bool hasRefused() const {
        return !refused.empty();
    }

    /// The chosen call as `calls` has it.
    const std::string &refusedLine() const {
        return refused;
    }

    /// The calls in order, with their texts and counts: "FindClass java/util/Vector",
    /// "GetMethodID java/util/Vector addElement (Ljava/lang/Object;)V", "NewStringUTF rill", "PushLocalFrame 48".
    std::vector<std::string> calls;

    /// What native code did wrong: calls with an exception pending that the JNI does not allow then, calls of functions
    /// that the library has no need of, releases without a fetch, and, once the call has ended, characters and frames
    /// that are still held.
    std::vector<std::string> faults() const;

    /// The most local references that were live at once.
    int peakLocalReferences = 0;

private:
    friend struct Overlay;

    JNIEnv *env;
    const JNINativeInterface_ *real;
    JNINativeInterface_ table;
    int refusedCall = 0;
    Refusal refusedHow = Refusal::withException;
    int refusableCalls = 0;
    std::string refused;
    std::vector<std::string> wrong;
    std::map<jclass, std::string> classNames;
    std::map<const char *, int> fetched;
    std::vector<int> frames{0};
};

/// What the journal shows opened and not closed again, or closed too often; empty when all is balanced.
std::vector<std::string> unreleased(const std::vector<std::string> &journal);

/// Runs `entry` once for each JNI call it makes, refusing that call, until a run had nothing left to refuse. After each
/// run nothing may be leaked or forbidden, and either a result or the exception stands, unless a local frame was refused
/// or the entry is one that ends `quietly`. `exception` is what it throws when nothing is refused, as its toString().
/// Answers the number of refusals.
int refuseEveryCall(JNIEnv *env, Refusal refusal, const std::function<jobject(JNIEnv *)> &entry,
                    const std::string &exception = "", bool quietly = false);

} // namespace jvm
