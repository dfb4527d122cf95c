#include "host/document/FolderVariables.h"

#include "host/basics/Text.h"
#include "host/document/Tree.h"

#include <algorithm>
#include <string>
#include <system_error>
#include <vector>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

using Element = XERCES_CPP_NAMESPACE::DOMElement;

constexpr char kVariablesFile[] = "process.var";

class VariableFile : private CFCProcessVarReader {
public:
    bool open(fs::path const& file) { return Initialize(libraryPath(file)); }

    void readProcessVariables(IFCNode& process) {
        Element* element = nullptr;
        CFCVariableList* const list = process.GetVariableList();
        if (list->GetHeadPosition() != nullptr || !GetElement(L"PROCESS_VARIABLES", rootElement(), &element, -1))
            return;
        Load(element, &process);
        correctTypes(element, process);
        for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;)
            if (CFCVariableData* const variable = list->GetNext(position))
                variable->ConvertToLinkedVariable();
    }

    void correctBlocks(IFCNode& level) {
        Element* element = nullptr;
        if (GetElement(L"BLOCK_VARIABLES", rootElement(), &element, -1))
            correctTypes(element, level);
    }

private:
    // Null when the file is of another kind.
    Element* rootElement() {
        Element* root = nullptr;
        GetElement(L"PROCESS", nullptr, &root, -1);
        return root;
    }

    // Variables say their type; what has a name and no type is a block.
    void correctTypes(Element* parent, IFCNode& node) {
        CTXMLChildIterator child(parent);
        for (child.Head(); child.More(); child.Next()) {
            Element* const element = child.GetNodeElement();
            TuString name;
            if (element == nullptr || !GetAttribute(element, L"Name", name))
                continue;
            TuString type;
            if (GetAttribute(element, L"DataType", type))
                correctType(element, type, node.GetVariableList(), name);
            else if (IFCNode* const block = node.FindNodeSimple(name))
                correctTypes(element, *block);
        }
    }

    void correctType(Element* element, TuString const& type, CFCVariableList* list, TuString const& name) {
        TuString form;
        GetAttribute(element, L"Type", form);
        // For a file the reader's reading holds: the type is then the name of the file type.
        if (list == nullptr || form.CompareNoCase(L"Data") == 0 || type.CompareNoCase(L"File") == 0)
            return;
        CFCVariableData* const variable = list->FindByExactName(name);
        if (variable == nullptr)
            return;
        bool const isArray = variable->getArrayFlag() != 0;
        CFCNodeHelper::SetDataTypeNode(variable, type);
        variable->SetDataType(static_cast<wchar_t const*>(type));
        variable->SetArray(isArray);
        variable->UpdateValue();
    }
};

// The nodes that have a file of their own, with its folder.
void visitLevels(fs::path const& folder, IFCNode& process, std::vector<std::pair<fs::path, IFCNode*>>& levels) {
    std::vector<std::pair<fs::path, IFCNode*>> open{{folder, &process}};
    while (!open.empty()) {
        auto const [path, node] = open.back();
        open.pop_back();
        if (node == &process || isWorkflowSubProcess(node->GetNodeType()))
            levels.emplace_back(path, node);
        for (IFCNode* child = node->GetChild(); child != nullptr; child = child->GetNext())
            if (child->GetBPMBlockData() != nullptr)
                open.emplace_back(path / utf8(child->GetNodeId()), child);
    }
}

} // namespace

void completeVariables(fs::path const& folder, IFCNode& process) {
    std::vector<std::pair<fs::path, IFCNode*>> levels;
    visitLevels(folder, process, levels);
    for (auto const& [path, node] : levels) {
        VariableFile file;
        std::error_code error;
        if (!fs::is_regular_file(path / kVariablesFile, error) || !file.open(path / kVariablesFile))
            continue;
        if (node == &process)
            file.readProcessVariables(process);
        file.correctBlocks(*node);
    }
}

} // namespace flowmere::host
