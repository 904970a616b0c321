#include "native/users/SolarisAuthenticator.h"

#include <jni.h>

#include <array>
#include <cstring>
#include <mutex>
#include <new>
#include <system_error>

#include "common/jni/EntryPoint.h"
#include "common/jni/JniString.h"
#include "native/JavaError.h"
#include "platform/solaris.h"

namespace tarn {
namespace {

constexpr std::size_t entryTextSize = 100; // of the buffer that receives the texts of one shadow entry

/// Whether hashing the password by the scheme and salt of the stored hash gives that hash again.
bool matchesHash(const char *password, const char *storedHash) {
    // The result of crypt is one per process, so nobody else may hash until it is compared.
    static std::mutex cryptLock;
    const std::lock_guard lock(cryptLock);
    const char *const hash = solaris::crypt(password, storedHash);
    return hash != nullptr && std::strcmp(hash, storedHash) == 0;
}

/// A refusal with the line that says why; without one when there is no memory for it.
template <class Line>
PasswordCheck refuse(Line line) {
    try {
        return {false, line()};
    } catch (const std::bad_alloc &) {
        return {};
    }
}

} // namespace

PasswordCheck checkPassword(const char *user, const std::function<const char *()> &password) {
    spwd entry{};
    std::array<char, entryTextSize> text{};
    if (solaris::getspnam_r(user, &entry, text.data(), static_cast<int>(text.size())) == nullptr) {
        const int error = errno;
        return refuse([&] {
            const std::string reason = error == 0 ? "" : "; " + std::generic_category().message(error);
            return std::string("No password entry for user ") + user + " found" + reason;
        });
    }
    const char *const storedHash = entry.sp_pwdp;
    if (storedHash == nullptr || *storedHash == '\0') {
        return {true, ""};
    }
    if (std::strlen(storedHash) == 1) {
        return refuse([] { return std::string("Salted password is too short"); });
    }
    return {matchesHash(password(), storedHash), ""};
}

} // namespace tarn

TARN_EXPORTED_ENTRY jboolean JNICALL Java_com_kelvo_tarn_providers_solaris_SolarisAuthenticator_authenticate(
    JNIEnv *env, jobject, jstring user, jstring password) {
    using namespace tarn;
    return runEntry(env, [&]() -> jboolean {
        const JniString userName(env, user);
        const JniString passwordText(env, password);
        const PasswordCheck check = checkPassword(userName.utf8(), [&] { return passwordText.utf8(); });
        if (!check.logLine.empty()) {
            LogMessage(env, check.logLine, "info");
        }
        return check.accepted ? JNI_TRUE : JNI_FALSE;
    });
}

TARN_EXPORTED_ENTRY jstring JNICALL
Java_com_kelvo_tarn_providers_solaris_SolarisAuthenticator_getLibraryBuildDate(JNIEnv *env, jobject) {
    return env->NewStringUTF("Jan 18 2006");
}
