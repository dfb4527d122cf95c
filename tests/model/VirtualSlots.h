#pragma once

#include "flowmere/model/FCNode.h"

#include <cstddef>
#include <cstring>

// The order of virtual operations is part of the interface: a host is linked against it. It can be seen where member
// pointers to virtual operations hold an offset into the table.
#if defined(__x86_64__) && !defined(_WIN32)
#define FLOWMERE_TEST_SLOTS 1
#else
#define FLOWMERE_TEST_SLOTS 0
#endif

#if FLOWMERE_TEST_SLOTS
namespace flowmere::test {

// Entries of a table before the first operation: two belong to the destructor.
constexpr std::ptrdiff_t kDestructorSlots = 2;
// The operations of IFCNode, and those that CFCAbstractNode adds. CFCNode adds none.
constexpr std::ptrdiff_t kInterfaceOperations = 117;
constexpr std::ptrdiff_t kAbstractOperations = 5;
// The first entry that a class derived from CFCNode can add.
constexpr std::ptrdiff_t kFirstSlotBehindNode = kDestructorSlots + kInterfaceOperations + kAbstractOperations;

// Entry of the virtual operation behind a member pointer: such a pointer is one more than the offset in the table.
template <typename Member>
std::ptrdiff_t slotOf(Member member) {
    std::ptrdiff_t words[2];
    static_assert(sizeof(member) == sizeof(words));
    std::memcpy(words, &member, sizeof(words));
    return (words[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

// The first entry that a class derived from Class gets, and so the number of entries that Class has.
template <typename Class>
std::ptrdiff_t slotsOf() {
    struct Derived : Class {
        virtual void ownOperation() {}
    };
    return slotOf(&Derived::ownOperation);
}

} // namespace flowmere::test
#endif
