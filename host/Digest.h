#pragma once

// SHA-256, by which a file is known again.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace flowmere::host {

class Digest {
public:
    void add(std::string_view bytes);
    // The digest of all that was added, as 64 small hexadecimal digits. Called once, at the end.
    std::string text();

private:
    void addBlock(unsigned char const* bytes);

    std::array<std::uint32_t, 8> m_state{0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                         0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    std::array<unsigned char, 64> m_open{};
    std::size_t m_openSize = 0;
    std::uint64_t m_size = 0;
};

} // namespace flowmere::host
