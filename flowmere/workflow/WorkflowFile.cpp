#include "flowmere/workflow/WorkflowFile.h"

#include "flowmere/xml/XmlFile.h"

#include <string_view>

namespace flowmere {

namespace {

constexpr int kPlainBlock = 57;
constexpr int kFirstSubProcess = 162;
constexpr int kLastSubProcess = 165;

struct TaskKind {
    int kind;
    wchar_t const* name;
};

// These stand in files: never change them.
constexpr TaskKind kTaskKinds[] = {
    {150, L"task"},
    {153, L"decisionTask"},
    {162, L"iteratingLoopSubProcess"},
    {163, L"decisionLoopSubProcess"},
    {164, L"spawningSubProcess"},
    {165, L"basicSubProcess"},
};

} // namespace

bool isSubProcessKind(int kind) noexcept {
    return kind >= kFirstSubProcess && kind <= kLastSubProcess;
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
    std::wstring_view const text = name != nullptr ? std::wstring_view(name) : std::wstring_view();
    for (TaskKind const& row : kTaskKinds) {
        if (text == row.name) {
            return row.kind;
        }
    }
    return kPlainBlock;
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

TuString joinFolder(TuString const& folder, wchar_t const* name) {
    if (folder.IsEmpty()) {
        return name;
    }
    wchar_t const end = folder.GetAt(folder.GetLength() - 1);
    return end == L'\\' || end == L'/' ? folder + name : folder + L"\\" + name;
}

} // namespace flowmere
