#pragma once

#include <jni.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/jvm/Jvm.h"

namespace jvm {

/// A filled HBA cache as lines: where, what, and the values of the instance in the order of its class's properties, such
/// as "0/1/0/remote 200000e08b010203|...". A hole is "0/1 null". Of a target mapping's two ports "=|=|" says that they
/// are those it stands under.
class HbaTree {
public:
    HbaTree(JNIEnv *environment, jobjectArray cache) : env(environment) {
        addElements(cache, "", [&](jobject hba, const std::string &at) {
            lines.push_back(at + "adapter " + instanceText(env, part(hba, "instance", instanceType)));
            addElements(part(hba, "ports", "[Lcom/kelvo/tarn/providers/hba/HbaCache$HbaPort;"), at,
                        [&](jobject port, const std::string &where) { addPort(port, where); });
        });
    }

    std::vector<std::string> lines;

    /// What is where, without its values.
    std::vector<std::string> shape() const {
        std::vector<std::string> places;
        for (const std::string &line : lines) {
            places.push_back(line.ends_with(" null") ? line : line.substr(0, line.find(' ')));
        }
        return places;
    }

    /// The values of what is there.
    std::string values(const std::string &where) const {
        const auto found =
            std::ranges::find_if(lines, [&](const std::string &line) { return line.starts_with(where + " "); });
        return found == lines.end() ? "not found" : found->substr(where.size() + 1);
    }

private:
    static constexpr const char *instanceType = "Lcom/kelvo/tarn/TrInstance;";

    void addPort(jobject record, const std::string &at) {
        const jobject port = part(record, "instance", instanceType);
        lines.push_back(at + "port " + instanceText(env, port));
        lines.push_back(at + "statistics " + instanceText(env, part(record, "statistics", instanceType)));
        addElements(part(record, "discoveredPorts", "[Lcom/kelvo/tarn/providers/hba/HbaCache$HbaDiscoveredPort;"), at,
                    [&](jobject remoteRecord, const std::string &where) {
                        const jobject remote = part(remoteRecord, "instance", instanceType);
                        lines.push_back(where + "remote " + instanceText(env, remote));
                        addElements(part(remoteRecord, "targetMappings", "[Lcom/kelvo/tarn/TrInstance;"), where,
                                    [&](jobject mapping, const std::string &there) {
                                        addMapping(mapping, there, port, remote);
                                    });
                    });
    }

    void addMapping(jobject mapping, const std::string &at, jobject port, jobject remote) {
        const auto values = static_cast<jobjectArray>(env->GetObjectField(
            mapping, env->GetFieldID(env->GetObjectClass(mapping), "values", "[Ljava/lang/Object;")));
        const auto compared = [&](jsize index, jobject expected) {
            return env->IsSameObject(env->GetObjectArrayElement(values, index), expected) == JNI_TRUE ? "=|" : "other|";
        };
        const std::string text = instanceText(env, mapping);
        lines.push_back(at + "mapping " + compared(0, port) + compared(1, remote) +
                        text.substr(text.find('|', text.find('|') + 1) + 1));
    }

    jobject part(jobject record, const char *name, const std::string &type) {
        return call(env, record, name, ("()" + type).c_str());
    }

    template <class Add>
    void addElements(jobject array, const std::string &at, const Add &add) {
        if (array == nullptr) {
            lines.push_back(at + "no array");
            return;
        }
        for (jsize i = 0; i < env->GetArrayLength(static_cast<jobjectArray>(array)); ++i) {
            env->PushLocalFrame(32);
            const jobject element = env->GetObjectArrayElement(static_cast<jobjectArray>(array), i);
            const std::string where = at + std::to_string(i);
            if (element == nullptr) {
                lines.push_back(where + " null");
            } else {
                add(element, where + "/");
            }
            env->PopLocalFrame(nullptr);
        }
    }

    JNIEnv *env;
};

} // namespace jvm
