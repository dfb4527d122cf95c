#pragma once

#include "flowmere/Export.h"

#include <cstddef>
#include <memory>
#include <vector>

// Tracked memory. Source file and line only label the call; the flags have no effect.

// As malloc; to be released by TuFree.
FLOWMERE_API void* TuMalloc(std::size_t size, char const* sourceFile = nullptr, int line = 0, int flags = 0);
// Releases what TuMalloc or TuStrDup gave; null does nothing.
FLOWMERE_API void TuFree(void* pointer, char const* sourceFile = nullptr, int line = 0);
// Copy of an 8-bit text, to be released by TuFree; null for null.
FLOWMERE_API char* TuStrDup(char const* text, char const* sourceFile = nullptr, int line = 0);

// A scope object that owns the 8-bit copies it hands out; they live until it is destroyed.
class FLOWMERE_API TuConversionAllocator {
public:
    TuConversionAllocator();
    ~TuConversionAllocator();
    TuConversionAllocator(TuConversionAllocator const&) = delete;
    TuConversionAllocator& operator=(TuConversionAllocator const&) = delete;

    // UTF-8 copy of a wide text; the empty text for null. Never null.
    char* GCHARToAnsi(wchar_t const* text, char const* sourceFile = nullptr, int line = 0);

private:
    std::vector<std::unique_ptr<char[]>> m_copies;
};
