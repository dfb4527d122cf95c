// What CFCProcessDefinitionReader passes over.
#include "flowmere/foundation/TuString.h"
#include "flowmere/model/FCActionData.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/workflow/FCGPDReader.h"
#include "flowmere/workflow/FCProcessDefinitionReader.h"
#include "flowmere/workflow/WorkflowFile.h"
#include "flowmere/workflow/WorkflowFileChain.h"
#include "flowmere/workflow/WorkflowValues.h"
#include "flowmere/xml/XmlElements.h"

#include <xercesc/dom/DOM.hpp>

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

using flowmere::AttributeRow;
using flowmere::AttributeTable;
using XERCES_CPP_NAMESPACE::DOMElement;
using XERCES_CPP_NAMESPACE::DOMNode;

namespace {

TuString stringOf(std::u16string_view value) {
    TuString text;
    flowmere::assignText(text, value);
    return text;
}

// True for an attribute that only says how the file is to be read.
bool isNamespaceAttribute(std::u16string_view name) {
    return name == u"xmlns" || name.starts_with(u"xmlns:") || name.starts_with(u"xsi:");
}

} // namespace

CFCWorkflowFinding& CFCProcessDefinitionReader::find(CFCWorkflowFinding::Kind kind, IFCNode* node,
                                                     DOMElement* element) {
    CFCWorkflowFinding& finding = m_findings.emplace_back();
    finding.kind = kind;
    finding.file = m_strFilePath;
    finding.node = node;
    finding.element = stringOf(flowmere::tagOf(element));
    if (node == nullptr)
        return finding;
    finding.place = node->GetNodePath();
    if (m_pChain == nullptr || m_pChain->strays.empty())
        return finding;
    IFCNode const* const root = node->GetRootNode();
    for (flowmere::WorkflowFileChain::Stray const& stray : m_pChain->strays) {
        if (stray.root == root)
            finding.place = finding.place.IsEmpty() ? stray.place : stray.place + L"." + finding.place;
    }
    return finding;
}

void CFCProcessDefinitionReader::findElement(IFCNode* node, DOMElement* element, CFCWorkflowFinding::Kind kind) {
    find(kind, node, element).name = stringOf(flowmere::xmlView(flowmere::attributeOf(element, u"name")));
}

void CFCProcessDefinitionReader::findChildren(IFCNode* node, DOMElement* element, std::u16string_view except) {
    for (DOMElement* child = flowmere::firstElement(element); child != nullptr; child = flowmere::nextElement(child)) {
        if (except.empty() || flowmere::tagOf(child) != except)
            findElement(node, child);
    }
}

void CFCProcessDefinitionReader::findText(IFCNode* node, DOMElement* element) {
    for (DOMNode const* child = element->getFirstChild(); child != nullptr; child = child->getNextSibling()) {
        if (child->getNodeType() != DOMNode::TEXT_NODE && child->getNodeType() != DOMNode::CDATA_SECTION_NODE)
            continue;
        std::u16string_view const text = flowmere::xmlView(child->getNodeValue());
        if (!flowmere::isBlank(text)) {
            TuString whole;
            flowmere::ownText(element, whole);
            whole.TrimLeft();
            whole.TrimRight();
            find(CFCWorkflowFinding::TextPassedOver, node, element).value = whole;
            return;
        }
    }
}

void CFCProcessDefinitionReader::findValue(CFCWorkflowFinding::Kind kind, IFCNode* node, DOMElement* element,
                                           std::u16string_view name, std::u16string_view value) {
    CFCWorkflowFinding& finding = find(kind, node, element);
    finding.name = stringOf(name);
    finding.value = stringOf(value);
}

void CFCProcessDefinitionReader::findOther(IFCNode* node, DOMElement* element, std::u16string_view name,
                                           XMLCh const* value, std::u16string_view usual) {
    if (value != nullptr && flowmere::xmlView(value) != usual)
        findValue(CFCWorkflowFinding::AttributePassedOver, node, element, name, flowmere::xmlView(value));
}

void CFCProcessDefinitionReader::findNumber(IFCNode* node, DOMElement* element, std::u16string_view name,
                                            std::u16string_view value) {
    if (!value.empty() && !flowmere::startsWithNumber(value))
        findValue(CFCWorkflowFinding::ValueNotRead, node, element, name, value);
}

void CFCProcessDefinitionReader::findAttributes(IFCNode* node, DOMElement* element,
                                                std::span<std::u16string_view const> names, std::size_t known,
                                                std::span<std::u16string_view const> more) {
    auto const* const attributes = element->getAttributes();
    XMLSize_t const count = attributes != nullptr ? attributes->getLength() : 0;
    if (count == known)
        return;
    for (XMLSize_t index = 0; index < count; ++index) {
        DOMNode const* const attribute = attributes->item(index);
        std::u16string_view const name = flowmere::xmlView(attribute->getNodeName());
        std::u16string_view const value = flowmere::xmlView(attribute->getNodeValue());
        if (!value.empty() && !isNamespaceAttribute(name) &&
            std::find(names.begin(), names.end(), name) == names.end() &&
            std::find(more.begin(), more.end(), name) == more.end())
            findValue(CFCWorkflowFinding::AttributePassedOver, node, element, name, value);
    }
}

void CFCProcessDefinitionReader::findNode(IFCNode* node, DOMElement* element, std::u16string_view name) {
    if (name.empty())
        find(CFCWorkflowFinding::NodeWithoutName, node, element);
    findText(node, element);
}

// The label and the rounds of a sub-process stand at its block, too.
void CFCProcessDefinitionReader::findRoot(DOMElement* root, IFCNode* node) {
    static constexpr AttributeTable kNames(u"name", u"version", u"hierarchyPath", u"label", u"max-iterations");
    AttributeRow const row(root, kNames);
    CFCBPMBlockData* const task = node->GetBPMBlockData();
    if (!row.view(3).empty() && (task == nullptr || stringOf(row.view(3)) != task->GetTaskCaption()))
        findValue(CFCWorkflowFinding::AttributePassedOver, node, root, u"label", row.view(3));
    if (row.has(4) && flowmere::integerOf(row.view(4)) != (task != nullptr ? task->GetMaxIterations() : 0))
        findValue(CFCWorkflowFinding::AttributePassedOver, node, root, u"max-iterations", row.view(4));
    findNumber(node, root, u"version", row.view(1));
    findAttributes(node, root, kNames.names(), 0);
    findText(node, root);
}

void CFCProcessDefinitionReader::findTransition(CFCWorkflowFinding::Kind kind, IFCNode* child,
                                                CFCTransitionData* transition) {
    CFCWorkflowFinding& finding = find(kind, child);
    finding.element = L"transition";
    finding.name = transition->GetTransitionName();
    finding.value = transition->GetTransitionTo();
}

void CFCProcessDefinitionReader::findBroken(CFCWorkflowFinding::Kind kind, IFCNode* node, TuString const& path,
                                            CTXMLBaseReader const& reader) {
    CFCWorkflowFinding& finding = find(kind, node);
    finding.file = path;
    finding.error = reader.GetErrorText();
    finding.line = reader.GetErrorLine();
    finding.column = reader.GetErrorColumn();
}

void CFCProcessDefinitionReader::findLayout(TuString const& path, CFCLayoutFinding const& lost) {
    bool const isNode = lost.kind == CFCLayoutFinding::NodeUnknown;
    CFCWorkflowFinding& finding =
        find(isNode ? CFCWorkflowFinding::LayoutNodeUnknown : CFCWorkflowFinding::LayoutElementPassedOver, lost.node);
    finding.file = path;
    finding.element = lost.element;
    if (isNode)
        finding.name = lost.name;
}

// Groups from this sibling on, and below them, whose children have transitions. Sub-processes among them have
// connectors by their own files.
void CFCProcessDefinitionReader::findUnconnected(IFCNode* sibling) {
    std::vector<IFCNode*> ways{sibling};
    while (!ways.empty()) {
        IFCNode* const group = ways.back();
        if (group == nullptr) {
            ways.pop_back();
            continue;
        }
        ways.back() = group->GetNext();
        if (flowmere::isSubProcessKind(group->GetNodeType()))
            continue;
        for (IFCNode* child = group->GetChild(); child != nullptr; child = child->GetNext()) {
            CFCBPMBlockData* const task = child->GetBPMBlockData();
            if (task != nullptr && task->GetTransitionList()->GetHeadPosition() != nullptr) {
                find(CFCWorkflowFinding::TransitionsUnconnected, group);
                break;
            }
        }
        ways.push_back(group->GetChild());
    }
}

// An icon that the definition has in vain comes with the layout.
void CFCProcessDefinitionReader::forgetIcons() {
    std::erase_if(m_findings, [](CFCWorkflowFinding const& finding) {
        CFCBPMBlockData* const task = finding.node != nullptr ? finding.node->GetBPMBlockData() : nullptr;
        return finding.kind == CFCWorkflowFinding::AttributePassedOver && finding.name == L"icon" && task != nullptr &&
               finding.value == task->GetIconFilePath();
    });
}
