#pragma once

#include <utility>

namespace flowmere {

// Holder of a process-wide object that is never destroyed, because nodes of the host may die late and still use it.
// As a static of static storage it stays reachable, so leak checkers see no leak.
template <typename T>
union Immortal {
    template <typename... Arguments>
    constexpr explicit Immortal(Arguments&&... arguments) : value(std::forward<Arguments>(arguments)...) {}
    ~Immortal() {}
    Immortal(Immortal const&) = delete;
    Immortal& operator=(Immortal const&) = delete;

    T& operator*() noexcept { return value; }
    T* operator->() noexcept { return &value; }

    T value;
};

} // namespace flowmere
