#pragma once

#include <jni.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/machine/Jvm.h"

namespace jvm {

/// A filled HBA cache as lines: where, what, and the values of the instance in the order of its class's properties,
/// such as "0/1/0/remote 200000e08b010203|...". A hole is "0/1 null". Of a target mapping's two ports "=|=|" says that
/// they are those it stands under.
class HbaTree {
public:
    HbaTree(JNIEnv *environment, jobjectArray cache) : env(environment) {
        addElements(cache, "", [&](jobject hba, const std::string &at) {
            addInstance(hba, "instance", at + "adapter ");
            addElements(call(env, hba, "ports", (records + "$HbaPort;").c_str()), at,
                        [&](jobject port, const std::string &where) { addPort(port, where); });
        });
    }

    std::vector<std::string> lines;

    /// What is where, without its values.
    std::vector<std::string> shape() const {
        std::vector<std::string> places = lines;
        for (std::string &place : places) {
            place.resize(place.ends_with(" null") ? place.size() : place.find(' '));
        }
        return places;
    }

    /// The values of what is there.
    std::string values(const std::string &where) const {
        const auto found = std::ranges::find_if(lines, [&](auto &line) { return line.starts_with(where + " "); });
        return found == lines.end() ? "not found" : found->substr(where.size() + 1);
    }

private:
    const std::string records = "()[Lcom/kelvo/tarn/providers/hba/HbaCache";

    jobject addInstance(jobject record, const char *part, const std::string &head) {
        const jobject instance = call(env, record, part, "()Lcom/kelvo/tarn/TrInstance;");
        lines.push_back(head + instanceText(env, instance));
        return instance;
    }

    void addPort(jobject record, const std::string &at) {
        const jobject port = addInstance(record, "instance", at + "port ");
        addInstance(record, "statistics", at + "statistics ");
        const auto addRemote = [&](jobject remoteRecord, const std::string &where) {
            const jobject remote = addInstance(remoteRecord, "instance", where + "remote ");
            addElements(call(env, remoteRecord, "targetMappings", "()[Lcom/kelvo/tarn/TrInstance;"), where,
                        [&](jobject mapping, const auto &there) { addMapping(mapping, there, port, remote); });
        };
        addElements(call(env, record, "discoveredPorts", (records + "$HbaDiscoveredPort;").c_str()), at, addRemote);
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

    void addElements(jobject list, const std::string &at, const auto &add) {
        const auto array = static_cast<jobjectArray>(list);
        lines.insert(lines.end(), array == nullptr ? 1 : 0, at + "no array");
        for (jsize i = 0; array != nullptr && i < env->GetArrayLength(array); ++i) {
            const LocalFrame frame(env, 32);
            if (const jobject element = env->GetObjectArrayElement(array, i); element == nullptr) {
                lines.push_back(at + std::to_string(i) + " null");
            } else {
                add(element, at + std::to_string(i) + "/");
            }
        }
    }

    JNIEnv *env;
};

} // namespace jvm
