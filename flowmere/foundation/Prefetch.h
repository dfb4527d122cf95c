#pragma once

#include <cstddef>
#include <cstdint>

namespace flowmere {

// Asks for memory that is needed soon, so that it is on its way while other work is done: the tree of a large document
// is far larger than the caches. It is never read, so any address will do, null and the end of an object too.
inline void prefetch(void const* begin, std::size_t size) noexcept {
#if defined(__GNUC__)
    constexpr std::size_t kLine = 64;
    auto const address = reinterpret_cast<std::uintptr_t>(begin);
    for (std::size_t offset = 0; offset < size; offset += kLine) {
        __builtin_prefetch(reinterpret_cast<void const*>(address + offset));
    }
#else
    static_cast<void>(begin);
    static_cast<void>(size);
#endif
}

} // namespace flowmere
