#pragma once

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCProcessNode.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/persistence/FCReader.h"
#include "flowmere/persistence/FCWriter.h"
#include "support/EnvironmentGuard.h"
#include "support/TestSupport.h"
#include "support/TreeTestSupport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace flowmere::test {

// A reader as its subclasses see it.
class OpenDocumentReader : public CFCReader {
public:
    using CFCReader::CheckDataFile;
    using CFCReader::Create;
};

inline CFCBlockNode* addBlock(IFCNode* parent, wchar_t const* id, int type = 57) {
    return dynamic_cast<CFCBlockNode*>(addChild(parent, type, id, id));
}

inline IFCNode* onlyChild(IFCNode* node) {
    std::vector<IFCNode*> const children = childrenOf(node);
    if (children.size() != 1)
        throw std::runtime_error("not one child but " + std::to_string(children.size()));
    return children.front();
}

// Captions of the children, oldest first, joined by blanks.
inline std::string captionsOf(IFCNode* node) {
    std::string all;
    for (IFCNode* const child : childrenOf(node))
        all += (all.empty() ? "" : " ") + narrow(child->GetNodeCaption());
    return all;
}

inline std::string rectOf(IFCNode* node) {
    TuRect const* const rect = node->GetTuRect();
    if (rect == nullptr)
        return "none";
    std::ostringstream text;
    text << rect->left << ' ' << rect->top << ' ' << rect->right << ' ' << rect->bottom;
    return text.str();
}

// The lines of a written file that hold a tag of this name, without indentation and end tags.
inline std::vector<std::string> linesOf(std::string const& file, std::string const& tag) {
    std::vector<std::string> found;
    std::istringstream in(file);
    for (std::string line; std::getline(in, line);) {
        line.erase(0, line.find_first_not_of(' '));
        if (line.starts_with("<" + tag + " ") || line.starts_with("<" + tag + "/") || line.starts_with("<" + tag + ">"))
            found.push_back(line);
    }
    return found;
}

inline std::string lineOf(std::string const& file, std::string const& tag) {
    std::vector<std::string> const lines = linesOf(file, tag);
    return lines.size() == 1 ? lines.front() : std::to_string(lines.size()) + " lines of " + tag;
}

// Value of an attribute in a line of a written file, "(absent)" when it is not there.
inline std::string attributeIn(std::string const& line, std::string const& name) {
    std::string const start = " " + name + "=\"";
    std::size_t const at = line.find(start);
    if (at == std::string::npos)
        return "(absent)";
    std::size_t const value = at + start.size();
    return line.substr(value, line.find('"', value) - value);
}

// The tags of a file in order, each with the number of elements around it in front.
inline std::string outlineOf(std::string const& file) {
    std::string outline;
    int depth = 0;
    for (std::size_t at = file.find('<'); at != std::string::npos; at = file.find('<', at + 1)) {
        if (file[at + 1] == '?' || file[at + 1] == '!')
            continue;
        std::size_t const end = file.find('>', at);
        if (file[at + 1] == '/') {
            --depth;
            continue;
        }
        outline += std::to_string(depth) + file.substr(at + 1, file.find_first_of(" />", at + 1) - at - 1) + ' ';
        if (file[end - 1] != '/')
            ++depth;
    }
    return outline;
}

// Compares a written file with the one of that name in the test data. With FLOWMERE_REFRESH_GOLDEN in the environment
// the test data is replaced instead, and the test fails to say so.
inline void expectGolden(std::string const& name, std::string const& text) {
    std::filesystem::path const path = dataFolder() / "persistence" / name;
    if (std::getenv("FLOWMERE_REFRESH_GOLDEN") != nullptr) {
        writeFile(path, text);
        ADD_FAILURE() << name << " was refreshed";
        return;
    }
    EXPECT_EQ(text, readFile(path)) << name;
}

// Documents as texts in, as texts out. The roots of all paths are empty.
class DocumentTest : public ScratchTest {
protected:
    std::string textOf(IFCNode* node, bool deep = true, CFCWriter writer = CFCWriter()) {
        return textBy(writer, node, deep);
    }
    std::string textBy(CFCWriter& writer, IFCNode* node, bool deep = true) {
        EXPECT_TRUE(writer.WriteFile(scratch.text("written.bpt"), node, deep));
        return scratch.read("written.bpt");
    }

    // The tree of a file of that name with that text; null when it was not read.
    Tree parse(std::string_view text, int maxDepth = 1, std::string const& name = "document.bpt") {
        scratch.write(name, text);
        return parseFile(name, maxDepth);
    }
    Tree parseFile(std::string const& name, int maxDepth = 1) {
        IFCNode* node = nullptr;
        reader.SetNodeFactory(factory);
        bool const result = reader.Parse(scratch.text(name), &node, maxDepth);
        EXPECT_EQ(result, node != nullptr);
        return Tree(node);
    }
    // The same for the inside of a root element.
    Tree parseInside(std::string_view inside, int maxDepth = 1, std::string const& name = "document.bpt") {
        return parse("<Process Name=\"Root\">" + std::string(inside) + "</Process>", maxDepth, name);
    }
    // Written and read again.
    Tree reread(IFCNode* node) { return parse(textOf(node)); }

    EnvironmentGuard environment;
    CFCNodeFactory plainFactory;
    RoutingFactory routingFactory;
    CFCNodeFactory* factory = &plainFactory;
    OpenDocumentReader reader;
};

} // namespace flowmere::test
