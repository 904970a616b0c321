#include <algorithm>
#include <cerrno>

#include "description/Names.h"

namespace description {
namespace {

#define NUMBER(name)                                                                                                   \
    { #name, name }

/// Where two names stand for one number, the first is written. Numbers differ from system to system, names do not.
constexpr NamedValue errnoNames[] = {
    NUMBER(EPERM),           NUMBER(ENOENT),       NUMBER(ESRCH),
    NUMBER(EINTR),           NUMBER(EIO),          NUMBER(ENXIO),
    NUMBER(E2BIG),           NUMBER(ENOEXEC),      NUMBER(EBADF),
    NUMBER(ECHILD),          NUMBER(EAGAIN),       NUMBER(ENOMEM),
    NUMBER(EACCES),          NUMBER(EFAULT),       NUMBER(ENOTBLK),
    NUMBER(EBUSY),           NUMBER(EEXIST),       NUMBER(EXDEV),
    NUMBER(ENODEV),          NUMBER(ENOTDIR),      NUMBER(EISDIR),
    NUMBER(EINVAL),          NUMBER(ENFILE),       NUMBER(EMFILE),
    NUMBER(ENOTTY),          NUMBER(ETXTBSY),      NUMBER(EFBIG),
    NUMBER(ENOSPC),          NUMBER(ESPIPE),       NUMBER(EROFS),
    NUMBER(EMLINK),          NUMBER(EPIPE),        NUMBER(EDOM),
    NUMBER(ERANGE),          NUMBER(EDEADLK),      NUMBER(ENAMETOOLONG),
    NUMBER(ENOLCK),          NUMBER(ENOSYS),       NUMBER(ENOTEMPTY),
    NUMBER(ELOOP),           NUMBER(ENOMSG),       NUMBER(EIDRM),
    NUMBER(ECHRNG),          NUMBER(EL2NSYNC),     NUMBER(EL3HLT),
    NUMBER(EL3RST),          NUMBER(ELNRNG),       NUMBER(EUNATCH),
    NUMBER(ENOCSI),          NUMBER(EL2HLT),       NUMBER(EBADE),
    NUMBER(EBADR),           NUMBER(EXFULL),       NUMBER(ENOANO),
    NUMBER(EBADRQC),         NUMBER(EBADSLT),      NUMBER(EBFONT),
    NUMBER(ENOSTR),          NUMBER(ENODATA),      NUMBER(ETIME),
    NUMBER(ENOSR),           NUMBER(ENONET),       NUMBER(ENOPKG),
    NUMBER(EREMOTE),         NUMBER(ENOLINK),      NUMBER(EADV),
    NUMBER(ESRMNT),          NUMBER(ECOMM),        NUMBER(EPROTO),
    NUMBER(EMULTIHOP),       NUMBER(EBADMSG),      NUMBER(EOVERFLOW),
    NUMBER(ENOTUNIQ),        NUMBER(EBADFD),       NUMBER(EREMCHG),
    NUMBER(ELIBACC),         NUMBER(ELIBBAD),      NUMBER(ELIBSCN),
    NUMBER(ELIBMAX),         NUMBER(ELIBEXEC),     NUMBER(EILSEQ),
    NUMBER(ERESTART),        NUMBER(ESTRPIPE),     NUMBER(EUSERS),
    NUMBER(ENOTSOCK),        NUMBER(EDESTADDRREQ), NUMBER(EMSGSIZE),
    NUMBER(EPROTOTYPE),      NUMBER(ENOPROTOOPT),  NUMBER(EPROTONOSUPPORT),
    NUMBER(ESOCKTNOSUPPORT), NUMBER(ENOTSUP),      NUMBER(EOPNOTSUPP),
    NUMBER(EPFNOSUPPORT),    NUMBER(EAFNOSUPPORT), NUMBER(EADDRINUSE),
    NUMBER(EADDRNOTAVAIL),   NUMBER(ENETDOWN),     NUMBER(ENETUNREACH),
    NUMBER(ENETRESET),       NUMBER(ECONNABORTED), NUMBER(ECONNRESET),
    NUMBER(ENOBUFS),         NUMBER(EISCONN),      NUMBER(ENOTCONN),
    NUMBER(ESHUTDOWN),       NUMBER(ETOOMANYREFS), NUMBER(ETIMEDOUT),
    NUMBER(ECONNREFUSED),    NUMBER(EHOSTDOWN),    NUMBER(EHOSTUNREACH),
    NUMBER(EALREADY),        NUMBER(EINPROGRESS),  NUMBER(ESTALE),
    NUMBER(EDQUOT),          NUMBER(ECANCELED),    NUMBER(EOWNERDEAD),
    NUMBER(ENOTRECOVERABLE),
#ifdef __linux__
    NUMBER(EDOTDOT),         NUMBER(EUCLEAN),      NUMBER(ENOTNAM),
    NUMBER(ENAVAIL),         NUMBER(EISNAM),       NUMBER(EREMOTEIO),
    NUMBER(ENOMEDIUM),       NUMBER(EMEDIUMTYPE),  NUMBER(ENOKEY),
    NUMBER(EKEYEXPIRED),     NUMBER(EKEYREVOKED),  NUMBER(EKEYREJECTED),
    NUMBER(ERFKILL),         NUMBER(EHWPOISON),
#endif
};

#undef NUMBER

constexpr int largestErrno = 255; // beyond the numbers of every system

} // namespace

std::string errnoName(int error) {
    const auto found = std::ranges::find(errnoNames, error, &NamedValue::value);
    return found == std::end(errnoNames) ? std::to_string(error) : std::string(found->name);
}

int errnoOf(std::string_view name) {
    const auto found = std::ranges::find(errnoNames, name, &NamedValue::name);
    if (found != std::end(errnoNames)) {
        return found->value;
    }
    for (int error = 1; error <= largestErrno; ++error) {
        if (name == std::to_string(error)) {
            return error;
        }
    }
    return 0;
}

} // namespace description
