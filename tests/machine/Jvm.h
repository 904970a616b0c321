#pragma once

#include <jni.h>

#include <string>
#include <vector>

namespace jvm {

/// Starts the process's virtual machine over the agent's classes with these options besides, on the calling thread.
/// Ends the process with a message when it cannot.
JNIEnv *start(const std::vector<std::string> &options);

/// The environment of the thread that started it.
JNIEnv *environment();

/// Makes the calling thread one of the virtual machine's for as long as this lives.
class AttachedThread {
public:
    AttachedThread();
    ~AttachedThread();
    AttachedThread(const AttachedThread &) = delete;
    AttachedThread &operator=(const AttachedThread &) = delete;

    JNIEnv *env = nullptr;
};

/// A local frame with the room that a native method has without asking, unless it is to have more. What is made in it
/// goes with it.
class LocalFrame {
public:
    explicit LocalFrame(JNIEnv *onThread, jint room = 16) : env(onThread) {
        env->PushLocalFrame(room);
    }
    ~LocalFrame() {
        env->PopLocalFrame(nullptr);
    }
    LocalFrame(const LocalFrame &) = delete;
    LocalFrame &operator=(const LocalFrame &) = delete;

private:
    JNIEnv *env;
};

/// What -Xcheck:jni has complained about since the last call.
std::vector<std::string> takeWarnings();

/// The object's toString(), or "[a,b]" for an array of objects; "null" for null.
std::string toText(JNIEnv *env, jobject object);

/// The elements of an Object[] or a java.util.Vector, each as its toString().
std::vector<std::string> elementTexts(JNIEnv *env, jobject list);

/// Clears the pending exception and answers its toString(); "" when none is pending.
std::string takeException(JNIEnv *env);

/// Calls an instance method that takes nothing and returns an object.
jobject call(JNIEnv *env, jobject receiver, const char *method, const char *signature);

/// An agent's InstanceReceiver that hands what it is given to a method of a Java queue: "add", which throws when the
/// queue is full, or "offer", which does not.
jobject instanceReceiver(JNIEnv *env, jobject queue, const char *method);

/// An empty queue with room for that many objects.
jobject newQueue(JNIEnv *env, jint capacity);

/// The values of a TrInstance in the order of its class's properties, separated by bars; "null" for null.
std::string instanceText(JNIEnv *env, jobject instance);

} // namespace jvm
