#pragma once

#include <concepts>
#include <memory>
#include <utility>

namespace description {

template <class T>
const T &blank() {
    static const T value{};
    return value;
}

/// A value that takes next to no memory for as long as it is the usual one: most structures of the platform are large,
/// and a description says little of them.
template <class T, const T &(*usual)() = blank<T>>
class Sparse {
public:
    Sparse() = default;
    Sparse(T value) : held(std::make_unique<T>(std::move(value))) {
    }

    const T &operator*() const {
        return held == nullptr ? usual() : *held;
    }
    const T *operator->() const {
        return &**this;
    }
    operator const T &() const {
        return **this;
    }

    /// To be changed; from then on it is held.
    T &edit() {
        if (held == nullptr) {
            if constexpr (std::copy_constructible<T>) {
                held = std::make_unique<T>(usual());
            } else {
                held = std::make_unique<T>(); // of such nothing but the blank one is usual
            }
        }
        return *held;
    }

    bool isHeld() const {
        return held != nullptr;
    }

private:
    std::unique_ptr<T> held;
};

} // namespace description
