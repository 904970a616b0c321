#include "tests/machine/Jvm.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <utility>

namespace jvm {
namespace {

JavaVM *machine = nullptr;
JNIEnv *mainEnvironment = nullptr;

std::mutex warningsLock;
std::vector<std::string> warnings;

/// Where the virtual machine prints. Its complaints are kept, the rest passes.
jint print(FILE *stream, const char *format, va_list arguments) {
    char text[4096];
    const int length = std::vsnprintf(text, sizeof text, format, arguments);
    const std::string line(text);
    if (line.find("WARNING") != std::string::npos || line.find("FATAL ERROR") != std::string::npos) {
        const std::lock_guard lock(warningsLock);
        warnings.push_back(line);
    }
    std::fputs(text, stream);
    return length;
}

} // namespace

JNIEnv *start(const std::vector<std::string> &options) {
    std::vector<std::string> texts = options;
    texts.emplace_back("-Djava.class.path=" TARN_CLASS_PATH);
    texts.emplace_back("-Djava.library.path=" TARN_LIBRARY_PATH);

    std::vector<JavaVMOption> vmOptions;
    for (std::string &text : texts) {
        vmOptions.push_back({text.data(), nullptr});
    }
    char printHook[] = "vfprintf";
    vmOptions.push_back({printHook, reinterpret_cast<void *>(&print)});

    JavaVMInitArgs arguments{};
    arguments.version = JNI_VERSION_10;
    arguments.options = vmOptions.data();
    arguments.nOptions = static_cast<jint>(vmOptions.size());
    void *env = nullptr;
    if (JNI_CreateJavaVM(&machine, &env, &arguments) != JNI_OK) {
        std::fputs("the Java virtual machine does not start\n", stderr);
        std::exit(2);
    }
    mainEnvironment = static_cast<JNIEnv *>(env);
    return mainEnvironment;
}

JNIEnv *environment() {
    return mainEnvironment;
}

std::vector<std::string> takeWarnings() {
    const std::lock_guard lock(warningsLock);
    return std::exchange(warnings, {});
}

AttachedThread::AttachedThread() {
    machine->AttachCurrentThread(reinterpret_cast<void **>(&env), nullptr);
}

AttachedThread::~AttachedThread() {
    machine->DetachCurrentThread();
}

std::string toText(JNIEnv *env, jobject object) {
    if (object == nullptr) {
        return "null";
    }
    const LocalFrame frame(env);
    std::string result = "null";
    if (env->IsInstanceOf(object, env->FindClass("[Ljava/lang/Object;")) == JNI_TRUE) {
        result.clear();
        for (const std::string &element : elementTexts(env, object)) {
            result += (result.empty() ? "" : ",") + element;
        }
        result = "[" + result + "]";
    } else if (const auto text = static_cast<jstring>(call(env, object, "toString", "()Ljava/lang/String;"));
               text != nullptr) {
        const char *characters = env->GetStringUTFChars(text, nullptr);
        result = characters;
        env->ReleaseStringUTFChars(text, characters);
    }
    return result;
}

std::vector<std::string> elementTexts(JNIEnv *env, jobject list) {
    std::vector<std::string> texts;
    const LocalFrame frame(env);
    const jclass arrayClass = env->FindClass("[Ljava/lang/Object;");
    const auto array = static_cast<jobjectArray>(
        env->IsInstanceOf(list, arrayClass) == JNI_TRUE ? list : call(env, list, "toArray", "()[Ljava/lang/Object;"));
    for (jsize i = 0; i < env->GetArrayLength(array); ++i) {
        const jobject element = env->GetObjectArrayElement(array, i);
        texts.push_back(toText(env, element));
        env->DeleteLocalRef(element);
    }
    return texts;
}

std::string takeException(JNIEnv *env) {
    const jthrowable exception = env->ExceptionOccurred();
    if (exception == nullptr) {
        return "";
    }
    env->ExceptionClear();
    const std::string text = toText(env, exception);
    env->DeleteLocalRef(exception);
    return text;
}

jobject call(JNIEnv *env, jobject receiver, const char *method, const char *signature) {
    const jclass cls = env->GetObjectClass(receiver);
    const jobject result = env->CallObjectMethod(receiver, env->GetMethodID(cls, method, signature));
    if (env->ExceptionCheck() == JNI_TRUE) {
        env->ExceptionDescribe();
    }
    env->DeleteLocalRef(cls);
    return result;
}

jobject newQueue(JNIEnv *env, jint capacity) {
    const jclass queueClass = env->FindClass("java/util/concurrent/ArrayBlockingQueue");
    return env->NewObject(queueClass, env->GetMethodID(queueClass, "<init>", "(I)V"), capacity);
}

jobject instanceReceiver(JNIEnv *env, jobject queue, const char *method) {
    const auto make = [env](const char *className, const char *name, const char *signature, auto... arguments) {
        const jclass cls = env->FindClass(className);
        const jmethodID maker = env->GetStaticMethodID(cls, name, signature);
        const jobject made = env->CallStaticObjectMethod(cls, maker, arguments...);
        return env->ExceptionCheck() == JNI_TRUE ? nullptr : made;
    };
    env->PushLocalFrame(16);
    const jobject lookup =
        make("java/lang/invoke/MethodHandles", "publicLookup", "()Ljava/lang/invoke/MethodHandles$Lookup;");
    const jobject type = make("java/lang/invoke/MethodType", "fromMethodDescriptorString",
                              "(Ljava/lang/String;Ljava/lang/ClassLoader;)Ljava/lang/invoke/MethodType;",
                              env->NewStringUTF("(Ljava/lang/Object;)Z"), nullptr);
    const jmethodID bind = env->GetMethodID(env->GetObjectClass(lookup), "bind",
                                            "(Ljava/lang/Object;Ljava/lang/String;Ljava/lang/invoke/MethodType;)"
                                            "Ljava/lang/invoke/MethodHandle;");
    const jobject handle = env->CallObjectMethod(lookup, bind, queue, env->NewStringUTF(method), type);
    if (env->ExceptionCheck() == JNI_TRUE) {
        env->ExceptionDescribe();
    }
    return env->PopLocalFrame(make("java/lang/invoke/MethodHandleProxies", "asInterfaceInstance",
                                   "(Ljava/lang/Class;Ljava/lang/invoke/MethodHandle;)Ljava/lang/Object;",
                                   env->FindClass("com/kelvo/tarn/InstanceReceiver"), handle));
}

std::string instanceText(JNIEnv *env, jobject instance) {
    if (instance == nullptr) {
        return "null";
    }
    const LocalFrame frame(env);
    const jfieldID values = env->GetFieldID(env->GetObjectClass(instance), "values", "[Ljava/lang/Object;");
    std::string line;
    for (const std::string &text : elementTexts(env, env->GetObjectField(instance, values))) {
        line += (line.empty() ? "" : "|") + text;
    }
    return line;
}

} // namespace jvm
