#pragma once

#include <span>
#include <string_view>

class IFCNode;

namespace flowmere {

// What the system knows of one node type code. Reader, writer, factory, images and hints go by this table, and by no
// list of their own. The names stand in files: never change them. Null is "none".
struct NodeKind {
    int code;
    // Makes a node of the kind's class, without its code.
    IFCNode* (*make)(int code) = nullptr;
    // Object type: the element that a node of this type is written as.
    wchar_t const* element = nullptr;
    // The element that a reader of process documents makes this type from.
    wchar_t const* readElement = nullptr;
    // "Shape" as it is written.
    wchar_t const* shape = nullptr;
    // The values of "Shape" that turn a node into this type.
    wchar_t const* readShape = nullptr;
    wchar_t const* oldShape = nullptr;
    // Name of the kind in the hints file.
    wchar_t const* name = nullptr;
    // Image of a node whose class has no image of its own.
    int image = 0;
};

// All kinds, by rising code.
std::span<NodeKind const> nodeKinds() noexcept;

// The kind of a code, null for a code that the table does not hold.
NodeKind const* findNodeKind(int code) noexcept;

// The code that a name stands for, 0 for any other text. Exact, case included.
// Element of a process document; a "PROCESS" gives 56, whatever its attributes make of it.
int nodeTypeOfElement(std::wstring_view element) noexcept;
// Value of "Shape"; 0 also for the shapes that leave the type alone.
int nodeTypeOfShape(std::wstring_view shape) noexcept;
// Name in the hints file.
int nodeTypeOfName(std::wstring_view name) noexcept;

// Element under which a node of this type is written, null when such nodes are not written. Type 0 gives "UnKnown".
wchar_t const* elementOfNodeType(int code) noexcept;
// Name under which a type's shape is written, null when it has none.
wchar_t const* shapeOfNodeType(int code) noexcept;

} // namespace flowmere
