// Logical disks, processors, CPU ticks, disk I/O and passwords, from the native entry points to their Java objects.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "platform/replay/Replay.h"
#include "platform/solaris.h"
#include "tests/jvm/JniTable.h"
#include "tests/jvm/Jvm.h"

#define HOST_FACT(method) Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_##method
#define AUTHENTICATOR(method) Java_com_kelvo_tarn_providers_solaris_SolarisAuthenticator_##method

extern "C" {
jobject HOST_FACT(enumerateLogicalDiskNames)(JNIEnv *, jobject);
jobject HOST_FACT(getLogicalDiskByName)(JNIEnv *, jobject, jstring);
jobject HOST_FACT(enumerateProcessors)(JNIEnv *, jobject);
jobject HOST_FACT(getProcessor)(JNIEnv *, jobject, jint);
jobject HOST_FACT(enumerateCpuUtilizationInfo)(JNIEnv *, jobject);
jobject HOST_FACT(getCpuUtilizationInfo)(JNIEnv *, jobject, jint);
jobject HOST_FACT(enumerateDiskIOInformation)(JNIEnv *, jobject);
jobject HOST_FACT(getDiskIOInformation)(JNIEnv *, jobject, jstring);
jboolean AUTHENTICATOR(authenticate)(JNIEnv *, jobject, jstring, jstring);
jstring AUTHENTICATOR(getLibraryBuildDate)(JNIEnv *, jobject);
}

namespace {

using Texts = std::vector<std::string>;

const char *const wholeHost = R"({
    "mnttab": ["/dev/dsk/c0t0d0s0\t/\tufs\trw\t1", "swap\t/tmp\ttmpfs\trw\t1", "shore:/home\t/home\tnfs\trw\t1"],
    "statvfs": {"/": {"f_bsize": 8192, "f_frsize": 1024, "f_blocks": 1000, "f_bfree": 500, "f_bavail": 400}},
    "sysconf": {"_SC_NPROCESSORS_CONF": 2, "_SC_CPUID_MAX": 31},
    "processors": [{"id": 0, "pi_state": "P_ONLINE", "pi_processor_type": "sparcv9", "pi_clock": 1281},
                   {"id": 4, "pi_state": "P_SPARE", "pi_processor_type": "sparcv9", "pi_clock": -1}],
    "disks": [{"name": "c0t0d0", "path": "/sd@0,0", "major": 32, "minor": 8}],
    "kstat": [{"ks_module": "cpu_stat", "ks_instance": 0, "ks_name": "cpu_stat0", "ks_class": "misc",
               "ks_type": "KSTAT_TYPE_RAW", "data": {"idle": 2147483648, "user": 1, "kernel": 2, "wait": 3}},
              {"ks_module": "cpu_stat", "ks_instance": 1, "ks_name": "cpu_stat1", "ks_class": "misc",
               "ks_type": "KSTAT_TYPE_RAW"},
              {"ks_module": "sd", "ks_instance": 1, "ks_name": "sd1", "ks_class": "disk", "ks_type": "KSTAT_TYPE_IO",
               "data": {"nread": 18446744073709551615, "nwritten": 2, "wlastupdate": 9, "rtime": 7}},
              {"ks_module": "sd", "ks_instance": 2, "ks_name": "sd2", "ks_class": "disk", "ks_type": "KSTAT_TYPE_IO",
               "data": {}}],
    "shadow": {"open": "", "none": null, "short": "x", "locked": "*LK*", "des": "abhlIbcleqfIM"}})";

class HostFactsTest : public testing::Test {
protected:
    HostFactsTest() {
        env->PushLocalFrame(64);
    }
    ~HostFactsTest() override {
        env->PopLocalFrame(nullptr);
    }

    jstring text(const char *characters) {
        return characters == nullptr ? nullptr : env->NewStringUTF(characters);
    }

    std::string fields(jobject object, const Texts &texts, const Texts &numbers) {
        std::string all;
        for (const std::string &name : texts) {
            all += jvm::toText(env, jvm::call(env, object, name.c_str(), "()Ljava/lang/String;")) + " ";
        }
        for (const std::string &name : numbers) {
            const jclass cls = env->GetObjectClass(object);
            all += std::to_string(env->CallLongMethod(object, env->GetMethodID(cls, name.c_str(), "()J"))) + " ";
            env->ExceptionCheck();
            env->DeleteLocalRef(cls);
        }
        return all;
    }

    jobject element(jobject list, jint index) {
        const jclass cls = env->GetObjectClass(list);
        const jobject found =
            env->CallObjectMethod(list, env->GetMethodID(cls, "elementAt", "(I)Ljava/lang/Object;"), index);
        env->ExceptionCheck();
        return found;
    }

    std::string logicalDisk(jobject object) {
        return fields(object, {"device", "mountPoint", "fileSystemType"},
                      {"totalBytes", "availableBytes", "freeBytes", "blockSize"});
    }

    std::string diskIO(jobject object) {
        return fields(object, {"instanceName", "diskName"}, {"bytesRead", "bytesWritten", "waitLastUpdate", "runTime"});
    }

    /// The JNI calls of the action, which must do nothing that the JNI forbids.
    Texts callsOf(const std::function<void()> &action) {
        const jvm::JniTable table(env);
        action();
        EXPECT_EQ(table.faults(), Texts{});
        return table.calls;
    }

    /// The log lines that were delivered by these calls, each after its level.
    static Texts linesOf(const Texts &calls) {
        const std::string target = "GetStaticMethodID com/kelvo/tarn/providers/solaris/SolarisNativeMethod ";
        const std::string newString = "NewStringUTF ";
        Texts lines;
        for (std::size_t i = 1; i < calls.size(); ++i) {
            if (calls[i - 1].rfind(target, 0) == 0) {
                const std::string level = calls[i - 1].substr(target.size());
                lines.push_back(level.substr(0, level.find(' ')) + ": " + calls[i].substr(newString.size()));
            }
        }
        return lines;
    }

    JNIEnv *env = jvm::environment();
};

TEST_F(HostFactsTest, EveryValueReachesItsPlace) {
    replay::loadHostText(wholeHost);
    const jobject disks = HOST_FACT(enumerateLogicalDiskNames)(env, nullptr);
    EXPECT_EQ(jvm::elementTexts(env, disks).size(), 2U);
    EXPECT_EQ(logicalDisk(element(disks, 0)), "/dev/dsk/c0t0d0s0 / ufs 0 0 0 0 ");
    EXPECT_EQ(logicalDisk(element(disks, 1)), "shore:/home /home nfs 0 0 0 0 ");
    EXPECT_EQ(logicalDisk(HOST_FACT(getLogicalDiskByName)(env, nullptr, text("/"))),
              "/dev/dsk/c0t0d0s0 / ufs 1024000 409600 512000 8192 ");

    const Texts processors{"processor 0: sparcv9, 1281 MHz, online", "processor 4: sparcv9, -1 MHz, offline"};
    EXPECT_EQ(jvm::elementTexts(env, HOST_FACT(enumerateProcessors)(env, nullptr)), processors);
    EXPECT_EQ(jvm::toText(env, HOST_FACT(getProcessor)(env, nullptr, 4)), processors[1]);
    EXPECT_EQ(HOST_FACT(getProcessor)(env, nullptr, 7), nullptr);

    const Texts ticks{"CPU 0: user 1, kernel 2, wait 3, idle -2147483648 ticks"};
    EXPECT_EQ(jvm::elementTexts(env, HOST_FACT(enumerateCpuUtilizationInfo)(env, nullptr)), ticks);
    EXPECT_EQ(jvm::toText(env, HOST_FACT(getCpuUtilizationInfo)(env, nullptr, 0)), ticks[0]);

    const jobject counters = HOST_FACT(enumerateDiskIOInformation)(env, nullptr);
    EXPECT_EQ(jvm::elementTexts(env, counters).size(), 2U);
    EXPECT_EQ(diskIO(element(counters, 0)), "sd1 c0t0d0 -1 2 9 7 ");
    EXPECT_EQ(diskIO(element(counters, 1)), "sd2  0 0 0 0 ");
    const jstring own = text("c0t0d0");
    const jobject one = HOST_FACT(getDiskIOInformation)(env, nullptr, own);
    EXPECT_EQ(diskIO(one), "sd1 c0t0d0 -1 2 9 7 ");
    EXPECT_TRUE(env->IsSameObject(jvm::call(env, one, "diskName", "()Ljava/lang/String;"), own));
    EXPECT_EQ(HOST_FACT(getDiskIOInformation)(env, nullptr, text("c9t9d9")), nullptr);
    EXPECT_EQ(HOST_FACT(getDiskIOInformation)(env, nullptr, nullptr), nullptr);
    EXPECT_EQ(jvm::takeException(env), "");

    EXPECT_EQ(jvm::toText(env, AUTHENTICATOR(getLibraryBuildDate)(env, nullptr)), "Jan 18 2006");
}

TEST_F(HostFactsTest, FailuresReachJava) {
    using Entry = std::function<jobject()>;
    const Entry diskNamed = [this] { return HOST_FACT(getLogicalDiskByName)(env, nullptr, text("/tmp")); };
    const Entry diskUnnamed = [this] { return HOST_FACT(getLogicalDiskByName)(env, nullptr, nullptr); };
    const Entry cpus = [this] { return HOST_FACT(enumerateCpuUtilizationInfo)(env, nullptr); };
    const Entry cpu1 = [this] { return HOST_FACT(getCpuUtilizationInfo)(env, nullptr, 1); };
    const Entry cpu9 = [this] { return HOST_FACT(getCpuUtilizationInfo)(env, nullptr, 9); };
    const Entry counters = [this] { return HOST_FACT(enumerateDiskIOInformation)(env, nullptr); };
    const Entry counter = [this] { return HOST_FACT(getDiskIOInformation)(env, nullptr, text("c0t0d0")); };
    const struct {
        const char *host;
        const Entry &entry;
        const char *message;
    } cases[] = {
        {wholeHost, diskNamed, "Logical Disk Not Found: /tmp"},
        {wholeHost, diskUnnamed, "Logical Disk Not Found: "},
        {"{}", diskNamed, "Unable to open mount table file: /etc/mnttab"},
        {"{}", cpus, "kstat open failed."},
        {"{}", cpu1, "kstat open failed."},
        {wholeHost, cpu1, "kstat_read failed."},
        {wholeHost, cpu9, "kstat_lookup failed."},
        {"{}", counters, "kstat open failed."},
        {"{}", counter, "kstat open failed."},
    };
    for (const auto &[host, entry, message] : cases) {
        SCOPED_TRACE(message);
        replay::loadHostText(host);
        jobject result = nullptr;
        EXPECT_EQ(linesOf(callsOf([&, &call = entry] { result = call(); })), Texts{});
        EXPECT_EQ(result, nullptr);
        EXPECT_EQ(jvm::takeException(env), std::string("java.lang.RuntimeException: ") + message);
    }
}

TEST_F(HostFactsTest, NothingToListGivesEmptyLists) {
    replay::loadHostText(R"({"kstat": []})");
    for (const auto enumerate : {HOST_FACT(enumerateLogicalDiskNames), HOST_FACT(enumerateProcessors),
                                 HOST_FACT(enumerateCpuUtilizationInfo), HOST_FACT(enumerateDiskIOInformation)}) {
        EXPECT_EQ(jvm::toText(env, enumerate(env, nullptr)), "[]");
    }
}

/// Lets the mount table change while it is walked: from the first object added to a list on, another host answers.
class UnmountDuringWalk {
public:
    explicit UnmountDuringWalk(JNIEnv *environment, const char *hostAfterwards)
        : env(environment), table(*environment->functions) {
        real = environment->functions;
        after = hostAfterwards;
        table.CallVoidMethodV = addElement;
        env->functions = &table;
    }
    ~UnmountDuringWalk() {
        env->functions = real;
    }
    UnmountDuringWalk(const UnmountDuringWalk &) = delete;
    UnmountDuringWalk &operator=(const UnmountDuringWalk &) = delete;

private:
    static void addElement(JNIEnv *environment, jobject list, jmethodID method, va_list arguments) {
        replay::loadHostText(after);
        real->CallVoidMethodV(environment, list, method, arguments);
    }

    JNIEnv *env;
    JNINativeInterface_ table;
    static inline const JNINativeInterface_ *real;
    static inline const char *after;
};

TEST_F(HostFactsTest, AMountThatVanishesIsOneWarning) {
    std::string lines;
    for (int i = 0; i < 100; ++i) {
        lines += R"(, "far:/\t/gone)" + std::to_string(i) + R"(\tnfs\trw\t1")";
    }
    const std::string first = R"("d0\t/\tufs\trw\t1")";
    const std::string last = R"("d1\t/var\tufs\trw\t1")";
    const std::string before = R"({"mnttab": [)" + first + lines + ", " + last + "]}";
    const std::string after = R"({"mnttab": [)" + first + ", " + last + "]}";
    const UnmountDuringWalk unmount(env, after.c_str());

    replay::loadHostText(before);
    jobject disks = nullptr;
    const Texts warnings =
        linesOf(callsOf([&] { disks = HOST_FACT(enumerateLogicalDiskNames)(env, nullptr); }));
    ASSERT_EQ(warnings.size(), 100U);
    EXPECT_EQ(warnings.front(), "warn: Logical Disk Not Found: /gone0");
    EXPECT_EQ(warnings.back(), "warn: Logical Disk Not Found: /gone99");
    EXPECT_EQ(jvm::elementTexts(env, disks),
              (Texts{"/ on d0 (ufs): 0 of 0 bytes available", "/var on d1 (ufs): 0 of 0 bytes available"}));

    const std::string oneGone = R"({"mnttab": [)" + first + R"(, "far:/\t/gone\tnfs\trw\t1", )" + last + "]}";
    jvm::refuseEveryCall(env, jvm::Refusal::withException, [&](JNIEnv *environment) {
        replay::loadHostText(oneGone);
        return HOST_FACT(enumerateLogicalDiskNames)(environment, nullptr);
    });
}

TEST_F(HostFactsTest, LongListsNeedFewReferences) {
    std::string host = R"({"sysconf": {"_SC_NPROCESSORS_CONF": 128, "_SC_CPUID_MAX": 127})";
    std::string mnttab, processors, kstat, disks;
    for (int i = 0; i < 128; ++i) {
        const std::string n = std::to_string(i);
        const std::string comma = i == 0 ? "" : ", ";
        mnttab += comma + "\"d\\t/" + n + "\\tufs\\trw\\t1\"";
        processors += comma + R"({"id": )" + n + "}";
        kstat += comma + R"({"ks_instance": )" + n + R"(, "ks_name": "cpu_stat)" + n +
                 R"(", "ks_type": "KSTAT_TYPE_RAW", "data": {}}, {"ks_name": "sd)" + n +
                 R"(", "ks_class": "disk", "ks_type": "KSTAT_TYPE_IO", "data": {}})";
    }
    replay::loadHostText(host + R"(, "mnttab": [)" + mnttab + R"(], "processors": [)" + processors + R"(], "kstat": [)" +
                         kstat + "]}");
    for (const auto enumerate : {HOST_FACT(enumerateLogicalDiskNames), HOST_FACT(enumerateProcessors),
                                 HOST_FACT(enumerateCpuUtilizationInfo), HOST_FACT(enumerateDiskIOInformation)}) {
        jobject list = nullptr;
        int peak = 0;
        {
            const jvm::JniTable table(env);
            list = enumerate(env, nullptr);
            peak = table.peakLocalReferences;
        }
        EXPECT_EQ(jvm::elementTexts(env, list).size(), 128U);
        EXPECT_LE(peak, 16); // what a native method may hold without asking for room
    }
}

TEST_F(HostFactsTest, PasswordsAreCheckedAndFetchedOnlyToBeCompared) {
    replay::loadHostText(wholeHost);
    const bool canHash = solaris::crypt("", "ab") != nullptr;
    const struct {
        const char *user;
        const char *password;
        bool accepted;
        std::ptrdiff_t fetches;
        Texts log;
    } cases[] = {
        {"des", "tide pool", canHash, 2, {}},
        {"des", "tide", false, 2, {}},
        {"des", nullptr, false, 1, {}},
        {"open", "anything", true, 1, {}},
        {"open", nullptr, true, 1, {}},
        {"none", "", true, 1, {}},
        {"locked", "*LK*", false, 2, {}},
        {"short", "x", false, 1, {"info: Salted password is too short"}},
        {"nobody", "x", false, 1, {"info: No password entry for user nobody found"}},
        {nullptr, "x", false, 0, {"info: No password entry for user  found"}},
    };
    for (const auto &[user, password, accepted, fetches, log] : cases) {
        SCOPED_TRACE(user == nullptr ? "null" : user);
        const jstring userText = text(user);
        const jstring passwordText = text(password);
        bool answer = !accepted;
        const Texts calls = callsOf([&] {
            errno = 0;
            answer = AUTHENTICATOR(authenticate)(env, nullptr, userText, passwordText) == JNI_TRUE;
        });
        EXPECT_EQ(answer, accepted);
        EXPECT_EQ(linesOf(calls), log);
        EXPECT_EQ(jvm::takeException(env), "");
        EXPECT_EQ(std::count_if(calls.begin(), calls.end(),
                                [](const std::string &call) { return call.rfind("GetStringUTFChars", 0) == 0; }),
                  fetches);
    }
}

TEST_F(HostFactsTest, EveryRefusedCallEndsCleanly) {
    const jstring mountPoint = text("/");
    const jstring disk = text("c0t0d0");
    const auto authenticate = [&](const char *user) {
        return [user = text(user), disk](JNIEnv *e) -> jobject {
            EXPECT_EQ(AUTHENTICATOR(authenticate)(e, nullptr, user, disk), JNI_FALSE);
            return nullptr;
        };
    };
    const std::string noTable = "java.lang.RuntimeException: Unable to open mount table file: /etc/mnttab";
    const std::string noStatistics = "java.lang.RuntimeException: kstat open failed.";
    const struct {
        std::function<jobject(JNIEnv *)> call;
        std::string exceptionOfBareHost;
        bool quietly = false; // a refused log line changes nothing
    } entries[] = {
        {[](JNIEnv *e) { return HOST_FACT(enumerateLogicalDiskNames)(e, nullptr); }, ""},
        {[=](JNIEnv *e) { return HOST_FACT(getLogicalDiskByName)(e, nullptr, mountPoint); }, noTable},
        {[](JNIEnv *e) { return HOST_FACT(enumerateProcessors)(e, nullptr); }, ""},
        {[](JNIEnv *e) { return HOST_FACT(getProcessor)(e, nullptr, 4); }, ""},
        {[](JNIEnv *e) { return HOST_FACT(enumerateCpuUtilizationInfo)(e, nullptr); }, noStatistics},
        {[](JNIEnv *e) { return HOST_FACT(getCpuUtilizationInfo)(e, nullptr, 0); }, noStatistics},
        {[](JNIEnv *e) { return HOST_FACT(enumerateDiskIOInformation)(e, nullptr); }, noStatistics},
        {[=](JNIEnv *e) { return HOST_FACT(getDiskIOInformation)(e, nullptr, disk); }, noStatistics},
        {authenticate("locked"), "", true},
        {authenticate("nobody"), "", true},
        {[](JNIEnv *e) { return AUTHENTICATOR(getLibraryBuildDate)(e, nullptr); }, ""},
    };
    for (const auto &[call, exceptionOfBareHost, quietly] : entries) {
        replay::loadHostText(wholeHost);
        EXPECT_GE(jvm::refuseEveryCall(env, jvm::Refusal::withException, call, "", quietly), 1);
        replay::loadHostText("{}");
        EXPECT_GE(jvm::refuseEveryCall(env, jvm::Refusal::withException, call, exceptionOfBareHost, quietly), 1);
    }
}

} // namespace
