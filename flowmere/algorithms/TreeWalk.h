#pragma once

#include "flowmere/model/FCNode.h"

#include <string_view>
#include <vector>

// Walks over node trees without recursion: trees are as deep as a file or a host makes them, the call stack is not.

namespace flowmere {

enum class Step { Found, Descend, Skip };

// Visits start, then its descendants depth first in list order. The visitor ends the walk with Found and leaves out
// what lies below a node with Skip. Gives the node found, or null.
template <typename Visit>
IFCNode* walkDown(IFCNode* start, Visit visit) {
    if (start == nullptr) {
        return nullptr;
    }
    std::vector<IFCNode*> above;
    IFCNode* node = start;
    while (true) {
        Step const step = visit(node);
        if (step == Step::Found) {
            return node;
        }
        if (IFCNode* const child = step == Step::Descend ? node->GetChild() : nullptr) {
            above.push_back(node);
            node = child;
            continue;
        }
        IFCNode* next = nullptr;
        while (!above.empty()) {
            next = node->GetNext();
            if (next != nullptr) {
                break;
            }
            node = above.back();
            above.pop_back();
        }
        if (next == nullptr) {
            return nullptr;
        }
        node = next;
    }
}

// Visits the descendants of start, all below a node before the node, and start last. The visitor gives a pointer;
// the first that is not null ends the walk and is the result.
template <typename Visit>
auto walkUp(IFCNode* start, Visit visit) -> decltype(visit(start)) {
    if (start == nullptr) {
        return nullptr;
    }
    std::vector<IFCNode*> above;
    IFCNode* node = start;
    bool below = true;
    while (true) {
        if (below) {
            while (IFCNode* const child = node->GetChild()) {
                above.push_back(node);
                node = child;
            }
        }
        if (auto const found = visit(node)) {
            return found;
        }
        if (above.empty()) {
            return nullptr;
        }
        IFCNode* const next = node->GetNext();
        below = next != nullptr;
        if (below) {
            node = next;
        } else {
            node = above.back();
            above.pop_back();
        }
    }
}

// Texts of nodes may be null where a host overrides them; null reads as empty.
inline std::wstring_view viewOf(wchar_t const* text) {
    return text == nullptr ? std::wstring_view() : std::wstring_view(text);
}

// Notices that a chain of steps runs in a circle, without remembering the way: the marker stays behind and moves up
// after 1, 2, 4, ... steps, so a circle of any length meets it after a few rounds at most.
template <typename T>
class CircleGuard {
public:
    // Whether the walk stands on the marker again.
    bool closes(T const* place) {
        if (place == m_marker) {
            return true;
        }
        if (++m_steps == m_limit) {
            m_marker = place;
            m_steps = 0;
            m_limit *= 2;
        }
        return false;
    }

private:
    T const* m_marker = nullptr;
    unsigned long long m_steps = 0;
    unsigned long long m_limit = 1;
};

} // namespace flowmere
