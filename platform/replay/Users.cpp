#include <cstring>

#include <dlfcn.h>

#include "platform/replay/Host.h"
#include "platform/replay/PlatformCall.h"

namespace replay {
namespace {

/// The shadow entry with its texts in `buffer`. Null when there is none, or with ERANGE when they do not fit.
struct spwd *findUser(const char *name, struct spwd *entry, char *buffer, std::size_t size) {
    const std::shared_ptr<const Host> host = currentHost();
    const auto user = host->shadow.find(std::string_view(name));
    if (user == host->shadow.end()) {
        return nullptr;
    }
    const std::size_t nameSize = user->first.size() + 1;
    const std::size_t hashSize = user->second ? user->second->size() + 1 : 0;
    if (nameSize + hashSize > size) {
        return failWith<struct spwd *>(ERANGE);
    }
    *entry = {};
    entry->sp_namp = buffer;
    std::memcpy(buffer, user->first.c_str(), nameSize);
    if (user->second) {
        entry->sp_pwdp = buffer + nameSize;
        std::memcpy(entry->sp_pwdp, user->second->c_str(), hashSize);
    }
    return entry;
}

using Crypt = char *(*)(const char *, const char *);

/// The build machine's own function, when it has one. Its result stands in storage that all threads share.
Crypt machineCrypt() {
    static const Crypt function = [] {
        void *crypts = dlopen("libcrypt.so.1", RTLD_NOW);
        return crypts == nullptr ? nullptr : reinterpret_cast<Crypt>(dlsym(crypts, "crypt"));
    }();
    return function;
}

/// Null when the setting is none, as the published call has it; the machine's answers a text that begins with "*".
char *cryptOrNull(const char *key, const char *setting) {
    const Crypt function = machineCrypt();
    if (function == nullptr) {
        return failWith<char *>(ENOSYS);
    }
    char *result = function(key, setting);
    return result == nullptr || *result == '*' ? failWith<char *>(EINVAL) : result;
}

} // namespace
} // namespace replay

namespace solaris {

using namespace replay;

struct spwd *getspnam_r(const char *name, struct spwd *entry, char *buffer, int length) {
    const int before = errno;
    errno = 0;
    struct spwd *found =
        answerCall([&] { return std::string("getspnam_r ") + name; },
                   [&] { return findUser(name, entry, buffer, length < 0 ? 0 : static_cast<std::size_t>(length)); });
    if (errno == 0) {
        errno = before; // an unknown user is no error
    }
    return found;
}

char *crypt(const char *key, const char *setting) {
    return answerCall([] { return std::string("crypt"); }, [&] { return cryptOrNull(key, setting); });
}

} // namespace solaris
