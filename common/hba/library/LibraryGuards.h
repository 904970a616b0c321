#pragma once

#include <functional>

#include "platform/solaris.h"

namespace tarn {

/// The HBA library, loaded for as long as this lives. A library that does not load shows in the calls that follow.
///
/// The library keeps one load state for the whole process: it refuses a second load, and a free takes it away from
/// every user. So the first of those that hold it at once loads it, and the last frees it. Any number may, on any
/// threads, also one inside the other: no lock is kept meanwhile, and the library sees to its own. Who finds it not
/// loaded does not hold it, and frees it only where nobody does.
class WithHbaLibrary {
public:
    WithHbaLibrary();
    ~WithHbaLibrary();
    WithHbaLibrary(const WithHbaLibrary &) = delete;
    WithHbaLibrary &operator=(const WithHbaLibrary &) = delete;

    HBA_STATUS status; ///< of the load
};

inline constexpr int adapterNameSize = 256; // terminator included

/// An open adapter, closed with its scope.
class WithAdapterHandle {
public:
    /// Looks up the adapter's name into `adapterName` (256 bytes; empty when it cannot be learned) and opens the
    /// adapter, in two attempts at most. `isNamed` is called in between, if there is a name.
    WithAdapterHandle(WithHbaLibrary &loadedLibrary, HBA_UINT32 adapterIndex, char *adapterName,
                      const std::function<void()> &isNamed = nullptr);
    ~WithAdapterHandle();
    WithAdapterHandle(const WithAdapterHandle &) = delete;
    WithAdapterHandle &operator=(const WithAdapterHandle &) = delete;

    WithHbaLibrary &library;
    HBA_HANDLE handle;     ///< 0: the adapter is not open
    HBA_STATUS status;     ///< of the name lookup
    unsigned failures = 0; ///< attempts to open that failed

    static constexpr unsigned openAttempts = 2;
};

/// Refreshes what the library knows of the adapter, and tells whether it did: the Solaris qlc driver's adapters, which
/// are known by their names, are read as they stand.
bool refreshInformation(HBA_HANDLE handle, const char *adapterName);

/// Marks the scope of a member function by its name. The marks are there for a debugger.
class WithTracing {
public:
    explicit WithTracing(const char *functionName) : name(functionName) {
    }
    WithTracing(const WithTracing &) = delete;
    WithTracing &operator=(const WithTracing &) = delete;

    const char *const name;
};

} // namespace tarn
