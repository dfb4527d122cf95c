#include "host/drawing/Png.h"

#include "host/basics/Command.h"

#include <png.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace flowmere::host::drawing {

namespace {

// A file in memory, whose text is freed with it.
class MemoryFile {
public:
    MemoryFile() : m_file(::open_memstream(&m_text, &m_size)) {}
    ~MemoryFile() {
        close();
        std::free(m_text);
    }
    MemoryFile(MemoryFile const&) = delete;
    MemoryFile& operator=(MemoryFile const&) = delete;

    std::FILE* get() const { return m_file; }
    // False when not all of it was kept.
    bool close() {
        bool const isWhole = m_file == nullptr || std::fclose(m_file) == 0;
        m_file = nullptr;
        return isWhole;
    }
    std::string text() const { return {m_text, m_size}; }

private:
    char* m_text = nullptr;
    std::size_t m_size = 0;
    std::FILE* m_file;
};

std::vector<unsigned char> colours(unsigned char const* pixels, int width, int height, std::size_t stride) {
    std::vector<unsigned char> bytes(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3);
    unsigned char* to = bytes.data();
    for (int row = 0; row < height; ++row) {
        unsigned char const* from = pixels + static_cast<std::size_t>(row) * stride;
        for (int column = 0; column < width; ++column, from += sizeof(std::uint32_t)) {
            std::uint32_t pixel = 0;
            std::memcpy(&pixel, from, sizeof pixel);
            *to++ = static_cast<unsigned char>(pixel >> 16U & 0xFFU);
            *to++ = static_cast<unsigned char>(pixel >> 8U & 0xFFU);
            *to++ = static_cast<unsigned char>(pixel & 0xFFU);
        }
    }
    return bytes;
}

} // namespace

std::string png(unsigned char const* pixels, int width, int height, std::size_t stride) {
    std::vector<unsigned char> const bytes = colours(pixels, width, height, stride);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGB;
    image.flags = PNG_IMAGE_FLAG_FAST;
    MemoryFile file;
    bool const isPacked =
        file.get() != nullptr && ::png_image_write_to_stdio(&image, file.get(), 0, bytes.data(), 0, nullptr) != 0;
    std::string const fault = image.message;
    ::png_image_free(&image);
    if (!isPacked || !file.close())
        throw Failure("", "", "the picture cannot be made: " + (fault.empty() ? "memory runs out" : fault));
    return file.text();
}

} // namespace flowmere::host::drawing
