#include "host/catalogs/Kinds.h"
#include "host/catalogs/Words.h"

#include <algorithm>
#include <utility>

namespace flowmere::host::catalogs {

namespace {

class APIHelp final : public Catalog {
public:
    bool read(TuString const& file) override {
        CFCAPIHelpReader reader;
        reader.SetNodeFactory(&m_factory);
        return reader.Parse(file, m_list);
    }

    bool isEmpty() const override { return m_list->GetChild() == nullptr; }

    std::string summary() const override {
        std::size_t processes = 0;
        std::size_t modules = 0;
        std::size_t parts = 0;
        forEachBelow(*m_list, [&](IFCNode& node, std::size_t) {
            int const type = node.GetNodeType();
            ++(type == eShapeType_FileNode ? processes : type == eShapeType_HelpModule ? modules : parts);
        });
        return "\"" + nameOf(*m_list) + "\", " +
               countsOf({{processes, "process"}, {modules, "module"}, {parts, "sub-module"}}, "modules");
    }

    std::string text() const override {
        std::string text;
        forEachBelow(*m_list, [&](IFCNode& node, std::size_t level) {
            text += marginOf(level) + nameOf(node) + ": " + kindOf(node);
            if (std::string const file = utf8(node.GetItemFilePath()); !file.empty())
                text += ", file " + oneLine(file);
            text += "\n" + paragraphOf(helpOf(node), marginOf(level) + "    ");
        });
        return text;
    }

    Json json() const override {
        return {{"name", utf8(m_list->GetNodeCaption())}, {"modules", childrenJson(*m_list)}};
    }

private:
    static std::string kindOf(IFCNode& node) {
        switch (node.GetNodeType()) {
        case eShapeType_FileNode:
            return "process";
        case eShapeType_HelpModule:
            return "module";
        default:
            return "sub-module";
        }
    }

    // Only sub-modules have one.
    static std::string helpOf(IFCNode& node) {
        auto* const help = dynamic_cast<CFCAPIHelpNode*>(&node);
        return help == nullptr ? std::string() : utf8(help->GetNodeText());
    }

    // The lines of a text below each other, without those that are blank at its ends and without the blanks that all
    // have in front.
    static std::string paragraphOf(std::string const& text, std::string const& margin) {
        std::vector<std::string> lines;
        for (std::size_t at = 0; at <= text.size();) {
            std::size_t const end = std::min(text.find('\n', at), text.size());
            std::string line = text.substr(at, end - at);
            line.erase(line.find_last_not_of(" \t\r") + 1);
            lines.push_back(line);
            at = end + 1;
        }
        while (!lines.empty() && lines.back().empty())
            lines.pop_back();
        lines.erase(lines.begin(),
                    std::find_if(lines.begin(), lines.end(), [](std::string const& line) { return !line.empty(); }));
        std::size_t indent = std::string::npos;
        for (std::size_t index = lines.size() > 1 && lines.front().find_first_not_of(" \t") == 0 ? 1 : 0;
             index < lines.size(); ++index)
            if (!lines[index].empty())
                indent = std::min(indent, lines[index].find_first_not_of(" \t"));
        std::string result;
        for (std::string const& line : lines) {
            std::size_t const own = std::min(line.find_first_not_of(" \t"), indent);
            result += line.empty() ? "\n" : margin + oneLine(line.substr(own)) + "\n";
        }
        return result;
    }

    static Json childrenJson(IFCNode& node) {
        Json out = Json::array();
        for (IFCNode* const child : childrenOf(node)) {
            Json entry = {{"name", utf8(child->GetNodeCaption())},
                          {"kind", kindOf(*child)},
                          {"file", utf8(child->GetItemFilePath())}};
            if (dynamic_cast<CFCAPIHelpNode*>(child) != nullptr)
                entry["text"] = helpOf(*child);
            entry["modules"] = childrenJson(*child);
            out.push_back(std::move(entry));
        }
        return out;
    }

    KeepingFactory m_factory;
    CFCProcessList* const m_list = dynamic_cast<CFCProcessList*>(m_factory.Create(eShapeType_ProcessList));
};

} // namespace

std::unique_ptr<Catalog> makeAPIHelp() {
    return std::make_unique<APIHelp>();
}

} // namespace flowmere::host::catalogs
