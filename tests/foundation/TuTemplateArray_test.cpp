#include "flowmere/foundation/TuTemplateArray.h"

#include "flowmere/foundation/TuString.h"

#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>

TEST(TuTemplateArray, NewOneIsEmpty) {
    TuTemplateArray<int> const array;
    EXPECT_EQ(array.GetSize(), 0);
    EXPECT_EQ(array.GetCount(), 0);
    EXPECT_TRUE(array.IsEmpty());
}

TEST(TuTemplateArray, AddGivesTheIndex) {
    TuTemplateArray<TuString> array;
    EXPECT_EQ(array.Add(L"a"), 0);
    EXPECT_EQ(array.Add(L"b"), 1);
    EXPECT_EQ(array.GetSize(), 2);
    EXPECT_EQ(array.GetCount(), 2);
    EXPECT_FALSE(array.IsEmpty());
    EXPECT_STREQ(array.GetAt(0), L"a");
    EXPECT_STREQ(array[1], L"b");
}

TEST(TuTemplateArray, AddsAnElementOfItself) {
    TuTemplateArray<TuString> array;
    array.Add(L"first");
    for (int index = 0; index < 100; ++index) {
        array.Add(array[0]);
    }
    EXPECT_STREQ(array[100], L"first");
}

TEST(TuTemplateArray, ElementsCanBeSet) {
    TuTemplateArray<int> array;
    array.SetSize(2);
    array[0] = 5;
    array.GetAt(1) = 6;
    EXPECT_EQ(array[0] + array[1], 11);
}

TEST(TuTemplateArray, SetSizeCutsAndFillsUp) {
    TuTemplateArray<int> array;
    array.Add(7);
    array.SetSize(3);
    EXPECT_EQ(array.GetSize(), 3);
    EXPECT_EQ(array[0], 7);
    EXPECT_EQ(array[2], 0);
    array.SetSize(1);
    EXPECT_EQ(array.GetSize(), 1);
    array.SetSize(-4);
    EXPECT_TRUE(array.IsEmpty());
}

TEST(TuTemplateArray, RemoveAllEmptiesIt) {
    TuTemplateArray<int> array;
    array.Add(1);
    array.RemoveAll();
    EXPECT_TRUE(array.IsEmpty());
}

TEST(TuTemplateArray, CopiesAreIndependent) {
    TuTemplateArray<TuString> first;
    first.Add(L"a");
    TuTemplateArray<TuString> second(first);
    second[0] = L"b";
    second.Add(L"c");
    EXPECT_STREQ(first[0], L"a");
    EXPECT_EQ(first.GetSize(), 1);
}

TEST(TuTemplateArray, AnIndexOutsideEndsInOutOfRange) {
    TuTemplateArray<int> array;
    array.Add(1);
    EXPECT_THROW(array.GetAt(1), std::out_of_range);
    EXPECT_THROW(array.GetAt(-1), std::out_of_range);
    EXPECT_THROW(array[INT_MIN], std::out_of_range);
    TuTemplateArray<int> const& constant = array;
    EXPECT_THROW(constant[INT_MAX], std::out_of_range);
}

TEST(TuTemplateArray, CanBeWalked) {
    TuTemplateArray<int> array;
    array.Add(1);
    array.Add(2);
    int sum = 0;
    for (int const element : array) {
        sum += element;
    }
    EXPECT_EQ(sum, 3);
}
