#include "flowmere/foundation/TuMemory.h"

#include "flowmere/foundation/Encoding.h"

#include <cstdlib>
#include <cstring>
#include <string>

void* TuMalloc(std::size_t size, char const*, int, int) {
    return std::malloc(size);
}

void TuFree(void* pointer, char const*, int) {
    std::free(pointer);
}

char* TuStrDup(char const* text, char const* sourceFile, int line) {
    if (text == nullptr) {
        return nullptr;
    }
    std::size_t const size = std::strlen(text) + 1;
    void* const copy = TuMalloc(size, sourceFile, line);
    return copy == nullptr ? nullptr : static_cast<char*>(std::memcpy(copy, text, size));
}

TuConversionAllocator::TuConversionAllocator() = default;

TuConversionAllocator::~TuConversionAllocator() = default;

char* TuConversionAllocator::GCHARToAnsi(wchar_t const* text, char const*, int) {
    std::string const bytes = flowmere::toUtf8(text);
    auto& copy = m_copies.emplace_back(std::make_unique<char[]>(bytes.size() + 1));
    std::memcpy(copy.get(), bytes.c_str(), bytes.size() + 1);
    return copy.get();
}
