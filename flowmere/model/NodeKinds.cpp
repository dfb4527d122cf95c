#include "flowmere/model/NodeKinds.h"

#include "flowmere/model/FCApplicationData.h"
#include "flowmere/model/FCApplicationNode.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/FCProcessNode.h"
#include "flowmere/model/FCVariableData.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace flowmere {

namespace {

template <typename Class>
IFCNode* makeNode(int) {
    return new Class;
}

// For the classes that take the code.
template <typename Class>
IFCNode* makeNodeOfCode(int code) {
    return new Class(code);
}

// Sub-processes of code 60 have always drawn the handles of two objects, and the numbering of all later nodes counts on
// it. The first object stays behind, known to the handle table alone.
IFCNode* makeAlternateSubProcess(int) {
    static_cast<void>(new CFCSubProcessNode);
    return new CFCSubProcessNode;
}

constexpr NodeKind kNodeKinds[] = {
    {.code = 0, .element = L"UnKnown"},
    {.code = 55,
     .make = makeNode<CFCBlockNode>,
     .element = L"BLOCK",
     .readElement = L"TERMINATOR",
     .shape = L"Oval",
     .readShape = L"Oval",
     .oldShape = L"Terminator",
     .name = L"TERMINATOR",
     .image = 5},
    {.code = 56, .make = makeNode<CFCProcessNode>, .element = L"PROCESS", .readElement = L"PROCESS"},
    // A "Rectangle" is read without effect: it is the shape of several types.
    {.code = 57,
     .make = makeNode<CFCBlockNode>,
     .element = L"BLOCK",
     .readElement = L"BLOCK",
     .shape = L"Rectangle",
     .name = L"BLOCK",
     .image = 3},
    {.code = 58,
     .make = makeNode<CFCBlockNode>,
     .element = L"BLOCK",
     .readElement = L"DECISION",
     .shape = L"Decision",
     .readShape = L"Decision",
     .oldShape = L"Diamond",
     .name = L"DECISION",
     .image = 4},
    {.code = 59,
     .make = makeNode<CFCBlockNode>,
     .element = L"BLOCK",
     .shape = L"RoundRect",
     .readShape = L"RoundRect",
     .image = 3},
    {.code = 60, .make = makeAlternateSubProcess, .element = L"SUB_PROCESS", .shape = L"Rectangle", .image = 2},
    {.code = 61,
     .make = makeNode<CFCSubProcessNode>,
     .element = L"SUB_PROCESS",
     .readElement = L"SUB_PROCESS",
     .shape = L"Rectangle",
     .name = L"SUBPROCESS",
     .image = 2},
    {.code = 68, .make = makeNode<CFCConnector>},
    {.code = 69, .make = makeNodeOfCode<CFCProcessList>, .element = L"PROCESS"},
    {.code = 70, .make = makeNodeOfCode<CFCFileNode>, .element = L"PROCESS"},
    {.code = 71, .make = makeNode<CFCSubGroupNode>, .element = L"SUB_GRP", .readElement = L"SUB_GRP", .image = 6},
    {.code = 72, .make = makeNode<CFCVariableData>},
    // The folders of a block library: nodes of another type that the reader retypes.
    {.code = 73, .image = 6},
    {.code = 74, .image = 6},
    {.code = 75, .element = L"PROCESS", .image = 6},
    {.code = 76, .image = 6},
    {.code = 77, .image = 6},
    {.code = 79, .make = makeNode<CFCCodeNode>, .readElement = L"CODE", .image = 3},
    {.code = 80, .make = makeNode<CFCDataTypeNode>, .element = L"DATATYPE"},
    {.code = 81, .make = makeNode<CFCDataTypeNode>, .element = L"GROUP"},
    {.code = 82, .make = makeNode<CFCDataTypeNode>, .element = L"SUB_GROUP"},
    {.code = 83, .make = makeNode<CFCFileTypeNode>},
    {.code = 85, .make = makeNode<CFCMimeTypeNode>},
    {.code = 86, .make = makeNode<CFCMimeTypeNode>},
    {.code = 150,
     .make = makeNodeOfCode<CFCBPMTaskNode>,
     .element = L"task-node",
     .readElement = L"task-node",
     .shape = L"ApplicationTask",
     .readShape = L"ApplicationTask",
     .name = L"APPLICATIONTASK"},
    {.code = 151,
     .make = makeNodeOfCode<CFCBPMTaskNode>,
     .readElement = L"BPM_USER_TASK",
     .shape = L"UserTask",
     .readShape = L"UserTask"},
    // "AutomationTask" is written and not read.
    {.code = 152,
     .make = makeNodeOfCode<CFCBPMTaskNode>,
     .readElement = L"BPM_EXECUTION_TASK",
     .shape = L"AutomationTask"},
    {.code = 153,
     .make = makeNodeOfCode<CFCBPMTaskNode>,
     .element = L"task-node",
     .readElement = L"decision",
     .shape = L"DecisionTask",
     .readShape = L"DecisionTask",
     .name = L"DECISIONTASK"},
    {.code = 154,
     .make = makeNodeOfCode<CFCBPMTaskNode>,
     .element = L"start-state",
     .readElement = L"start-state",
     .shape = L"StartState",
     .readShape = L"StartState",
     .name = L"START"},
    {.code = 155,
     .make = makeNodeOfCode<CFCBPMTaskNode>,
     .element = L"end-state",
     .readElement = L"end-state",
     .shape = L"EndState",
     .readShape = L"EndState",
     .name = L"END"},
    {.code = 156,
     .make = makeNodeOfCode<CFCBPMTaskNode>,
     .element = L"fork",
     .readElement = L"fork",
     .shape = L"Fork",
     .readShape = L"Fork",
     .name = L"FORK"},
    {.code = 157,
     .make = makeNodeOfCode<CFCBPMTaskNode>,
     .element = L"join",
     .readElement = L"join",
     .shape = L"Join",
     .readShape = L"Join",
     .name = L"JOIN"},
    {.code = 158,
     .make = makeNodeOfCode<CFCBPMTaskNode>,
     .readElement = L"BPM_MAIL",
     .shape = L"Mail",
     .readShape = L"Mail"},
    {.code = 159,
     .make = makeNodeOfCode<CFCBPMTaskNode>,
     .readElement = L"BPM_ESB",
     .shape = L"ESB",
     .readShape = L"ESB"},
    {.code = 160,
     .make = makeNode<CFCBPMProcessNode>,
     .element = L"process-definition",
     .readElement = L"process-definition",
     .shape = L"ProcessState",
     .readShape = L"ProcessState"},
    {.code = 161,
     .make = makeNodeOfCode<CFCBPMTaskNode>,
     .element = L"super-state",
     .readElement = L"super-state",
     .shape = L"SuperState",
     .readShape = L"SuperState",
     .name = L"SUPERSTATE"},
    {.code = 162,
     .make = makeNodeOfCode<CFCBPMTaskNode>,
     .element = L"task-node",
     .shape = L"SubProcessLoop",
     .readShape = L"SubProcessLoop",
     .name = L"SUPERSTATELOOP"},
    {.code = 163,
     .make = makeNodeOfCode<CFCBPMTaskNode>,
     .element = L"task-node",
     .shape = L"DecisionLoop",
     .readShape = L"DecisionLoop",
     .name = L"DECISIONLOOP"},
    {.code = 164,
     .make = makeNodeOfCode<CFCBPMTaskNode>,
     .element = L"task-node",
     .shape = L"SpawningLoop",
     .readShape = L"SpawningLoop",
     .name = L"SPAWNINGLOOP"},
    {.code = 165,
     .make = makeNodeOfCode<CFCBPMTaskNode>,
     .element = L"task-node",
     .shape = L"BasicSubProcess",
     .readShape = L"BasicSubProcess",
     .name = L"BASICSUPERSTATE"},
    {.code = 167,
     .make = makeNode<CFCApplicationNode>,
     .element = L"task-node",
     .readElement = L"ClientApplication",
     .shape = L"ClientApplication",
     .readShape = L"ClientApplication"},
    {.code = 168, .make = makeNode<CFCApplicationNode>},
    {.code = 169, .image = 3},
    {.code = 170, .make = makeNodeOfCode<CFCFileNode>, .image = 6},
    {.code = 171, .make = makeNode<CFCAPIHelpNode>, .image = 6},
    {.code = 172, .make = makeNode<CFCPackageNode>, .element = L"PACKAGE"},
    {.code = 173, .image = 15},
    {.code = 174, .image = 14},
    // These two shapes are written and not read.
    {.code = 176, .make = makeNode<CFCFavouriteNode>, .element = L"FAVOURITES", .shape = L"Favourites"},
    {.code = 177, .make = makeNode<CFCDocumentNode>, .element = L"DOCUMENT", .shape = L"Document"},
    // A folder that a process retypes.
    {.code = 178, .element = L"HISTORY"},
    {.code = 179, .make = makeNode<CFCSubGroupNode>, .element = L"CUSTOM_FOLDER"},
    {.code = 182, .make = makeNode<CFCDeploymentData>},
    {.code = 183, .make = makeNode<CFCResourceData>},
};

constexpr int kHighestCode = 183;
static_assert(std::ranges::is_sorted(kNodeKinds, {}, &NodeKind::code));
static_assert(kNodeKinds[std::size(kNodeKinds) - 1].code == kHighestCode);

// Row of each code; the row behind the last for codes without one.
constexpr auto kRowOfCode = [] {
    std::array<std::uint8_t, kHighestCode + 1> rows{};
    rows.fill(std::size(kNodeKinds));
    for (std::size_t row = 0; row < std::size(kNodeKinds); ++row) {
        rows[static_cast<std::size_t>(kNodeKinds[row].code)] = static_cast<std::uint8_t>(row);
    }
    return rows;
}();

template <typename Matches>
int codeOfFirst(Matches matches) noexcept {
    auto const kind = std::ranges::find_if(kNodeKinds, matches);
    return kind == std::end(kNodeKinds) ? 0 : kind->code;
}

bool is(wchar_t const* name, std::wstring_view text) noexcept {
    return name != nullptr && text == name;
}

} // namespace

std::span<NodeKind const> nodeKinds() noexcept {
    return kNodeKinds;
}

NodeKind const* findNodeKind(int code) noexcept {
    if (code < 0 || code > kHighestCode) {
        return nullptr;
    }
    std::size_t const row = kRowOfCode[static_cast<std::size_t>(code)];
    return row < std::size(kNodeKinds) ? &kNodeKinds[row] : nullptr;
}

int nodeTypeOfElement(std::wstring_view element) noexcept {
    return codeOfFirst([&](NodeKind const& kind) { return is(kind.readElement, element); });
}

int nodeTypeOfShape(std::wstring_view shape) noexcept {
    return codeOfFirst([&](NodeKind const& kind) { return is(kind.readShape, shape) || is(kind.oldShape, shape); });
}

int nodeTypeOfName(std::wstring_view name) noexcept {
    return codeOfFirst([&](NodeKind const& kind) { return is(kind.name, name); });
}

wchar_t const* elementOfNodeType(int code) noexcept {
    NodeKind const* const kind = findNodeKind(code);
    return kind == nullptr ? nullptr : kind->element;
}

wchar_t const* shapeOfNodeType(int code) noexcept {
    NodeKind const* const kind = findNodeKind(code);
    return kind == nullptr ? nullptr : kind->shape;
}

} // namespace flowmere
