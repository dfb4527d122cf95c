#include "flowmere/foundation/TuMemory.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

TEST(TuMemory, AllocatesAndFrees) {
    void* const block = TuMalloc(100, __FILE__, __LINE__, 0);
    ASSERT_NE(block, nullptr);
    std::memset(block, 0x5A, 100);
    EXPECT_EQ(static_cast<unsigned char*>(block)[99], 0x5A);
    TuFree(block, __FILE__, __LINE__);
}

TEST(TuMemory, FreeOfNullDoesNothing) {
    TuFree(nullptr, __FILE__, __LINE__);
    char* const text = TuStrDup("still alive");
    EXPECT_STREQ(text, "still alive");
    TuFree(text);
}

TEST(TuMemory, DuplicatesTexts) {
    std::string const source = "source";
    char* const copy = TuStrDup(source.c_str(), __FILE__, __LINE__);
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, source.c_str());
    EXPECT_STREQ(copy, "source");
    TuFree(copy, __FILE__, __LINE__);

    char* const empty = TuStrDup("");
    EXPECT_STREQ(empty, "");
    TuFree(empty);
    EXPECT_EQ(TuStrDup(nullptr), nullptr);
}

TEST(TuConversionAllocator, CopiesLiveAsLongAsTheAllocator) {
    TuConversionAllocator allocator;
    std::vector<char*> copies;
    for (int index = 0; index < 100; ++index) {
        copies.push_back(allocator.GCHARToAnsi(std::to_wstring(index).c_str(), __FILE__, __LINE__));
    }
    for (int index = 0; index < 100; ++index) {
        EXPECT_EQ(copies[static_cast<std::size_t>(index)], std::to_string(index));
    }
}

TEST(TuConversionAllocator, GivesUtf8) {
    TuConversionAllocator allocator;
    EXPECT_STREQ(allocator.GCHARToAnsi(L"\u20AC\xDCFF"), "\xE2\x82\xAC\xFF");
    EXPECT_STREQ(allocator.GCHARToAnsi(L""), "");
    EXPECT_STREQ(allocator.GCHARToAnsi(nullptr), "");
}

TEST(TuConversionAllocator, CopiesCanBeWrittenTo) {
    TuConversionAllocator allocator;
    char* const copy = allocator.GCHARToAnsi(L"abc");
    copy[0] = 'X';
    EXPECT_STREQ(copy, "Xbc");
}
