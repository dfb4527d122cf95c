#include "host/document/ReadBack.h"

#include "host/basics/Text.h"
#include "host/document/Places.h"
#include "host/document/Tree.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace flowmere::host {

namespace {

// Number of a fact; two facts with the same number are taken for the same.
class Hash {
public:
    void add(std::string_view text) {
        for (char const byte : text)
            add(static_cast<unsigned char>(byte));
        add(std::uint64_t{0x100});
    }
    std::uint64_t value() const { return m_value; }

private:
    void add(std::uint64_t byte) { m_value = (m_value ^ byte) * 1099511628211U; }

    std::uint64_t m_value = 14695981039346656037U;
};

// Documents hold forward slashes.
std::string withSlashes(wchar_t const* text) {
    std::string result = utf8(text);
    std::replace(result.begin(), result.end(), '\\', '/');
    return result;
}

constexpr std::string_view kSpaces = "the white space of its value";

std::string withoutSpaces(std::string text) {
    std::erase_if(text,
                  [](char letter) { return letter == ' ' || letter == '\t' || letter == '\n' || letter == '\r'; });
    return text;
}

bool isProcess(IFCNode& node) {
    return node.GetNodeType() == eShapeType_Process || node.GetNodeType() == eShapeType_WorkflowProcess;
}

// Nodes that no document holds, with all below them.
bool isLeftOut(IFCNode& node) {
    return node.GetNodeType() == eShapeType_Favourites || node.GetNodeType() == eShapeType_History || node.IsDeleted();
}

// Calls take(place, what, value) for everything that a tree holds, in its order.
template <typename Take>
class Facts {
public:
    Facts(Tree const& tree, Take take) : m_tree(tree), m_take(std::move(take)) {}

    void tell() {
        std::size_t endOfLinked = 0; // behind the last node that is read from another file
        for (std::size_t index = 0; index < m_tree.nodes().size(); ++index) {
            TreeNode const& entry = m_tree.nodes()[index];
            if (isLeftOut(*entry.node)) {
                index = entry.last;
                continue;
            }
            bool const isRoot = entry.parent == Tree::kNone;
            if (!isRoot && isProcess(*entry.node) && *entry.node->GetItemFilePath() != L'\0')
                endOfLinked = std::max(endOfLinked, entry.last + 1);
            bool const isLinked = index < endOfLinked;
            // A node without an identifier has no path of its own.
            m_place = entry.path;
            if (!isRoot && entry.id.empty())
                m_place += (m_place.empty() ? "\"" : ".\"") + utf8(entry.node->GetNodeCaption()) + "\"";
            if (!isRoot)
                m_take(m_place, "", "");
            if (!isLinked)
                tellNode(entry);
            for (std::size_t at = entry.firstVariable; at < entry.firstVariable + entry.variableCount; ++at)
                tellVariable(m_tree.variables()[at], isLinked);
            if (!isLinked)
                tellWays(entry);
        }
    }

private:
    void tellNode(TreeNode const& entry) {
        IFCNode& node = *entry.node;
        m_take(m_place, "its kind", fmt::format("{}", node.GetNodeType()));
        std::string const caption = utf8(node.GetNodeCaption());
        m_take(m_place, "its caption", caption.empty() && isProcess(node) ? "Process" : caption);
        CFCBlockData* const data = entry.parent != Tree::kNone && !isProcess(node) ? node.GetFCBlockData() : nullptr;
        if (data == nullptr)
            return;
        m_take(m_place, "its state", fmt::format("{}", static_cast<int>(data->GetExecutionStateType())));
        // A nameless script takes the name of its block when it is read.
        std::string const script = utf8(data->GetScriptName());
        m_take(m_place, "its script",
               fmt::format("{} {}", static_cast<int>(data->GetScriptType()), script.empty() ? entry.id : script));
        m_take(m_place, "its marks",
               fmt::format("{} {} {} {}", data->GetStopFlag(), data->GetSkipFlag(), data->GetUndoFlag(),
                           data->GetShouldRun()));
        m_take(m_place, "its description", utf8(data->GetDescription()));
        m_take(m_place, "its border",
               fmt::format("{} {} {} {} {} {}", data->LineThickness, data->LinePenType, data->DrawBorder,
                           data->FillColor, data->ColorLine, data->ColorFill));
        m_take(m_place, "its font",
               fmt::format("{} {} {} {} {} {}", data->Bold, data->Italics, data->FontSize, data->Format,
                           data->FontColor, utf8(data->FontName)));
        if (TuRect const* const rect = node.GetTuRect()) {
            // Reading cuts measures off: a hundredth of an inch is no loss.
            TuRect const place = settled(*rect);
            m_take(m_place, "its place in the diagram",
                   fmt::format("{} {} {} {}", place.left, place.top, place.right, place.bottom));
        }
    }

    void tellVariable(TreeVariable const& variable, bool isLinked) {
        m_take(variable.path, "", "");
        if (isLinked)
            return;
        CFCVariableData& data = *variable.data;
        std::string const value = withSlashes(data.GetValue());
        m_take(variable.path, "its value", withoutSpaces(value));
        m_take(variable.path, kSpaces, value);
        m_take(variable.path, "its link", variable.linkPath);
        m_take(variable.path, "its direction", utf8(data.GetStatusTypeS()));
        m_take(variable.path, "its scope", utf8(data.GetScopeTypeS()));
        // Without an entry in the catalog a type has no name to be kept by.
        if (data.GetDataTypeNode() != nullptr || data.GetFileTypeNode() != nullptr)
            m_take(variable.path, "its type", typeOf(data));
        std::string options;
        for (int index = 0; data.IsTemplateVariable() && index < data.GetOptionCount(); ++index)
            options += fmt::format("{}\n", utf8(data.GetOption(index)));
        m_take(variable.path, "its options", options);
    }

    void tellWays(TreeNode const& entry) {
        for (CFCConnector* const way : entry.ways)
            m_take(m_place, "a connector from it",
                   fmt::format("{} {} {}", way->GetStartHandle(), utf8(way->GetEndBlockName()), way->GetEndHandle()));
    }

    Tree const& m_tree;
    Take m_take;
    std::string m_place;
};

template <typename Take>
void tellFacts(Tree const& tree, Take take) {
    Facts<Take>(tree, std::move(take)).tell();
}

std::uint64_t numberOf(std::string_view place, std::string_view what, std::string_view value) {
    Hash hash;
    hash.add(place);
    hash.add(what);
    hash.add(value);
    return hash.value();
}

std::vector<std::uint64_t> factsOf(Tree const& tree) {
    std::vector<std::uint64_t> facts;
    tellFacts(tree, [&](std::string_view place, std::string_view what, std::string_view value) {
        facts.push_back(numberOf(place, what, value));
    });
    return facts;
}

} // namespace

ReadBack compareReadBack(IFCNode& root, IFCNode& readBack) {
    ReadBack result;
    Tree const tree(root);
    std::vector<std::uint64_t> const found = factsOf(Tree(readBack));
    if (found == factsOf(tree))
        return result;
    // Something is elsewhere, or more: all the same, nothing may be missing.
    std::unordered_map<std::uint64_t, int> left;
    for (std::uint64_t const fact : found)
        ++left[fact];
    tellFacts(tree, [&](std::string_view place, std::string_view what, std::string_view value) {
        auto const entry = left.find(numberOf(place, what, value));
        if (entry != left.end() && entry->second > 0)
            --entry->second;
        else if (what == kSpaces)
            result.respaced.emplace_back(place);
        else if (!result.loss)
            result.loss = Loss{std::string(place), std::string(what)};
    });
    return result;
}

} // namespace flowmere::host
