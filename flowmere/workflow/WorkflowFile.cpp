#include "flowmere/workflow/WorkflowFile.h"

#include "flowmere/model/FCEnumerations.h"
#include "flowmere/xml/XmlFile.h"

#include <string_view>

namespace flowmere {

namespace {

struct TaskKind {
    int kind;
    wchar_t const* name;
};

// These stand in files: never change them.
constexpr TaskKind kTaskKinds[] = {
    {eShapeType_Task, L"task"},
    {eShapeType_DecisionTask, L"decisionTask"},
    {eShapeType_SubProcessLoop, L"iteratingLoopSubProcess"},
    {eShapeType_DecisionLoop, L"decisionLoopSubProcess"},
    {eShapeType_SpawningLoop, L"spawningSubProcess"},
    {eShapeType_BasicSubProcess, L"basicSubProcess"},
};

} // namespace

bool isSubProcessKind(int kind) noexcept {
    return kind >= eShapeType_SubProcessLoop && kind <= eShapeType_BasicSubProcess;
}

wchar_t const* workflowNodeTypeName(int kind) noexcept {
    for (TaskKind const& row : kTaskKinds) {
        if (row.kind == kind) {
            return row.name;
        }
    }
    return L"";
}

int workflowNodeTypeFromName(wchar_t const* name) {
    std::wstring_view const text = viewOf(name);
    for (TaskKind const& row : kTaskKinds) {
        if (text == row.name) {
            return row.kind;
        }
    }
    return eShapeType_Block;
}

bool writeWorkflowFile(wchar_t const* path, wchar_t const* rootName,
                       std::function<void(xercesc::DOMElement&)> const& fill) {
    return writeXmlFile(path, rootName, [&](xercesc::DOMElement* root) { fill(*root); });
}

void formatWorkflowFile(wchar_t const* path) {
    formatXmlFile(path);
}

TuString folderOfFile(TuString const& path) {
    int separator = path.ReverseFind(L'/');
    if (separator < 0) {
        separator = path.ReverseFind(L'\\');
    }
    if (separator < 0) {
        return {};
    }
    return path.Left(separator == 0 ? 1 : separator);
}

TuString nodeNameOf(IFCNode* node) {
    TuString name(node->GetNodeId());
    if (name.IsEmpty()) {
        name = node->GetNodeCaption();
    }
    return name;
}

TuString joinFolder(TuString const& folder, wchar_t const* name) {
    if (folder.IsEmpty()) {
        return name;
    }
    wchar_t const end = folder.GetAt(folder.GetLength() - 1);
    return end == L'\\' || end == L'/' ? folder + name : folder + L"\\" + name;
}

} // namespace flowmere
