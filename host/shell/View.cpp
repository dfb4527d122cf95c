// What the shell shows of its project.

#include "host/shell/Workspace.h"

#include "host/basics/Text.h"
#include "host/document/Tree.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace flowmere::host::shell {

namespace {

// A block with blocks in it, all of them.
std::size_t blocksBelow(Tree const& tree, TreeNode const& node, std::size_t index) {
    std::size_t count = 0;
    for (std::size_t at = index + 1; at <= node.last; ++at)
        if (tree.nodes()[at].block != nullptr)
            ++count;
    return count;
}

struct Row {
    std::string path;
    std::string id;
    std::string caption; // empty when it says no more than the id
    std::string kind;
    int level = 0;
    std::size_t inside = 0; // blocks
    bool isFolded = false;
    bool isNext = false;
    std::string state; // empty for none
    std::vector<std::string> marks;
};

std::string lineOf(Row const& row, int firstLevel) {
    std::string name = oneLine(row.id);
    if (!row.caption.empty() && row.caption != row.id)
        name += (name.empty() ? "\"" : " \"") + oneLine(row.caption) + "\"";
    std::string line(2 * static_cast<std::size_t>(row.level - firstLevel), ' ');
    line += (name.empty() ? "(nameless)" : name) + ": " + row.kind;
    if (row.inside > 0)
        line += ", " + counted(row.inside, "block") + (row.isFolded ? " (folded)" : "");
    if (!row.state.empty())
        line += ", " + row.state;
    for (std::string const& mark : row.marks)
        line += ", " + mark;
    if (row.isNext)
        line += ", next";
    return line;
}

Json toJson(Row const& row) {
    return {{"path", row.path},     {"caption", row.caption}, {"kind", row.kind},
            {"blocks", row.inside}, {"folded", row.isFolded}, {"state", row.state.empty() ? Json() : Json(row.state)},
            {"marks", row.marks},   {"next", row.isNext}};
}

std::string padded(std::string const& text, std::size_t width) {
    auto const isInside = [](char character) {
        return (static_cast<unsigned char>(character) & 0xC0U) == 0x80U;
    };
    std::size_t const length =
        text.size() - static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isInside));
    return text + std::string(width > length ? width - length : 0, ' ');
}

} // namespace

void Workspace::show(std::string const& block) {
    Document& document = project();
    IFCNode* const shown = block.empty() ? &document.process() : &nodeOf(block);
    CFCBlockNode* const next = m_runner != nullptr ? m_runner->nextBlock() : nullptr;
    Tree const tree(document.process());
    std::size_t const first = tree.indexOf(shown);
    TreeNode const& top = tree.nodes().at(first);
    for (std::size_t index = first; index <= top.last; ++index) {
        TreeNode const& node = tree.nodes()[index];
        Row row;
        row.path = node.path;
        row.id = node.id;
        row.caption = utf8(node.node->GetNodeCaption());
        row.kind = kindName(node.node->GetNodeType());
        row.level = node.level;
        row.inside = blocksBelow(tree, node, index);
        row.isFolded = index != first && row.inside > 0 && m_expanded.count(node.path) == 0;
        row.isNext = next != nullptr && next == node.block;
        if (node.block != nullptr && node.parent != Tree::kNone) {
            if (node.block->GetExecutionStateType() != EExecutionStateType_ESNone)
                row.state = utf8(CFCEnumTranslator::EnumToString(node.block->GetExecutionStateType()));
            if (node.block->GetStopFlag())
                row.marks.emplace_back("stop");
            if (node.block->GetSkipFlag())
                row.marks.emplace_back("skip");
            if (node.block->GetBreakPointFlag())
                row.marks.emplace_back("break point");
        }
        m_output.line(lineOf(row, top.level));
        m_output.add("nodes", toJson(row));
        if (row.isFolded)
            index = node.last;
    }
}

void Workspace::expand() {
    CFCBlockNode& block = selectedBlock();
    std::string const path = pathOf(block);
    if (dynamic_cast<CFCSubProcessNode*>(&block) == nullptr)
        throw Failure(m_document->file(), path, "is no sub-process");
    m_expanded.insert(path);
    show(path);
}

void Workspace::variables(std::string const& block) {
    Document& document = project();
    IFCNode* const owner = block.empty() ? nullptr : &nodeOf(block);
    Tree const tree(document.process());
    std::vector<std::array<std::string, 4>> rows;
    std::array<std::size_t, 3> widths{};
    for (TreeVariable const& variable : tree.variables()) {
        if (owner != nullptr && tree.nodes()[variable.owner].node != owner)
            continue;
        std::string const value = tree.valueOf(variable);
        std::string const use = utf8(variable.data->GetStatusTypeS());
        m_output.add("variables", {{"path", variable.path},
                                   {"type", typeOf(*variable.data)},
                                   {"io", use},
                                   {"value", value},
                                   {"link", variable.linkPath.empty() ? Json() : Json(variable.linkPath)}});
        rows.push_back({oneLine(variable.path), oneLine(typeOf(*variable.data)), use, oneLine(value)});
        if (!variable.linkPath.empty())
            rows.back()[3] += "  <- " + oneLine(variable.linkPath);
        for (std::size_t column = 0; column < widths.size(); ++column)
            widths[column] = std::max(widths[column], rows.back()[column].size());
    }
    for (auto const& row : rows)
        m_output.line(padded(row[0], widths[0]) + "  " + padded(row[1], widths[1]) + "  " + padded(row[2], widths[2]) +
                      "  =" + (row[3].empty() ? "" : " " + row[3]));
    if (rows.empty())
        m_output.line("no variables");
}

void Workspace::status() {
    if (m_document == nullptr) {
        m_output.line("no project is open");
        m_output.fact("project", nullptr);
        return;
    }
    CFCBlockNode* const next = m_runner != nullptr ? m_runner->nextBlock() : nullptr;
    std::size_t const count = m_runner != nullptr ? m_runner->doneCount() : 0;
    std::string run = "not begun";
    if (m_hasBegun)
        run = counted(count, "block") + " done, " +
              (next != nullptr ? "next is " + oneLine(pathOf(*next)) : oneLine(ended()));
    m_output.line("project: " + oneLine(m_name) + (hasUnsavedChanges() ? ", with unsaved changes" : ""));
    m_output.line("run: " + run);
    m_output.fact("project", m_name);
    m_output.fact("unsaved", hasUnsavedChanges());
    m_output.fact("begun", m_hasBegun);
    m_output.fact("done", count);
    m_output.fact("next", next != nullptr && m_hasBegun ? Json(pathOf(*next)) : Json());
}

} // namespace flowmere::host::shell
