#pragma once

// Words and tables for what a person reads of a catalog.

#include "flowmere/Flowmere.h"

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace flowmere::host::catalogs {

// A text on one line, cut behind a hundred characters with their number behind it; JSON has the whole.
std::string shortLine(std::string const& whole);
// Caption of a node on one line, "(nameless)" without one.
std::string nameOf(IFCNode& node);
// What stands in front of a line of a tree.
std::string marginOf(std::size_t level);
// "2 groups, 1 data type", those without any left out; "no `none`" when all are.
std::string countsOf(std::initializer_list<std::pair<std::size_t, std::string_view>> counts, std::string_view none);
// Columns below each other, two blanks apart, nothing behind the last.
std::string tableOf(std::vector<std::vector<std::string>> const& rows);

// In the order of the file: new children stand in front.
std::vector<IFCNode*> childrenOf(IFCNode& node);

// Calls visit(node, level) for all nodes below `top`, a node before what is in it.
template <typename Visit>
void forEachBelow(IFCNode& top, Visit const& visit) {
    std::vector<std::pair<IFCNode*, std::size_t>> open;
    auto const enter = [&](IFCNode& node, std::size_t level) {
        for (IFCNode* child = node.GetChild(); child != nullptr; child = child->GetNext())
            open.emplace_back(child, level);
    };
    enter(top, 0);
    while (!open.empty()) {
        auto const [node, level] = open.back();
        open.pop_back();
        visit(*node, level);
        enter(*node, level + 1);
    }
}

} // namespace flowmere::host::catalogs
