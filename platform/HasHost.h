#pragma once

namespace platform {

/// Whether there is a host to ask. Elsewhere than on Solaris there is none when the description that TARN_HOST names
/// cannot be used; standard error has been told, then.
#ifdef __sun
inline bool hasHost() {
    return true;
}
#else
bool hasHost();
#endif

} // namespace platform
