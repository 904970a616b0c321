#pragma once

// `operator new` and calloc of the tests' programs. They can refuse the n-th allocation that the library's own code makes:
// those of the calling thread, but for what it allocates inside of the platform, and inside of the virtual machine.

namespace tests {

/// For as long as it lives, the n-th (from 1) allocation of the library's own is refused; none for 0.
class RefusedAllocation {
public:
    explicit RefusedAllocation(int n);
    ~RefusedAllocation();
    RefusedAllocation(const RefusedAllocation &) = delete;
    RefusedAllocation &operator=(const RefusedAllocation &) = delete;

    int made() const; ///< allocations of the library's own so far, the refused one included
    int kept() const; ///< those of them that are not given back, also by a thread as it ends
};

/// Marks the calling thread as outside of the library's own code.
class OutsideTheLibrary {
public:
    OutsideTheLibrary();
    ~OutsideTheLibrary();
    OutsideTheLibrary(const OutsideTheLibrary &) = delete;
    OutsideTheLibrary &operator=(const OutsideTheLibrary &) = delete;
};

} // namespace tests
