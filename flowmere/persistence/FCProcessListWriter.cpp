#include "flowmere/persistence/FCProcessListWriter.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/model/FCEnumTranslator.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/ParentChain.h"
#include "flowmere/persistence/ChildWalk.h"
#include "flowmere/xml/XmlElements.h"
#include "flowmere/xml/XmlPlatform.h"

#include <xercesc/dom/DOM.hpp>

#include <charconv>
#include <cstdlib>

namespace {

// The shortest number that has this single precision value: 1.1 stands as 1.1 in the file, not with the digits that it
// has in double precision.
double shortReal(float value) {
    char text[64];
    *std::to_chars(text, text + sizeof text - 1, value).ptr = '\0';
    double real = value;
    std::from_chars(text, text + sizeof text, real);
    return real;
}

IFCNode* newGroupLike(IFCNode* model) {
    IFCNode* const group = CFCNodeFactory().Create(eShapeType_Folder);
    if (group != nullptr) {
        group->SetNodeCaption(model->GetNodeCaption());
        group->SetNodeId(model->GetNodeId());
    }
    return group;
}

// Captions from the node upwards, each but the first behind a point.
TuString captionPath(IFCNode* node, bool stopsAtList) {
    TuString path(node->GetNodeCaption());
    flowmere::ParentChain way(node);
    for (way.climb(); way.node() != nullptr; way.climb()) {
        if (stopsAtList && way.node()->GetNodeType() == eShapeType_ProcessList) {
            break;
        }
        path += L".";
        path += way.node()->GetNodeCaption();
    }
    return path;
}

// Moves the only child of a node.
void moveChild(IFCNode* from, IFCNode* to) {
    IFCNode* const child = from->GetChild();
    from->SetChild(nullptr);
    to->AppendChild(child, false);
}

} // namespace

CFCProcessListWriter::CFCProcessListWriter() {
    m_strRootName = L"Processes";
}
CFCProcessListWriter::CFCProcessListWriter(CFCProcessListWriter const& other) = default;
CFCProcessListWriter& CFCProcessListWriter::operator=(CFCProcessListWriter const& other) = default;
CFCProcessListWriter::~CFCProcessListWriter() = default;

bool CFCProcessListWriter::WriteFile(wchar_t const* path, IFCNode* node, bool deep, bool writeAll) {
    m_bWriteAll = writeAll;
    CFCWriter::WriteFile(path, node, deep);
    return true;
}

bool CFCProcessListWriter::WriteNewFile() {
    return CFCWriter::WriteFile(CFCEnvironment::GetUserProcessListPath(m_bBPMList), m_pListRoot, false);
}

void CFCProcessListWriter::WriteObject(IFCNode* node, xercesc::DOMNode* parent, xercesc::DOMNode* self) {
    flowmere::WriteDepth const depth(m_nListDepth);
    if (node == nullptr || m_nListDepth > flowmere::kMaxElementDepth) {
        return;
    }
    if (!m_bWriteAll && !node->IsNewPath() && node->GetParentNode() != nullptr) {
        return;
    }
    TuString name;
    if (!GetObjectType(node, name)) {
        return;
    }
    xercesc::DOMNode* element = self;
    if (element == nullptr && parent != nullptr) {
        element = CreateElement(parent, name);
    }
    if (element == nullptr) {
        return;
    }
    WriteProperties(node, element);
    WriteChildren(node, element);
}

void CFCProcessListWriter::WriteProperties(IFCNode* node, xercesc::DOMNode* element) {
    if (node == nullptr || element == nullptr) {
        return;
    }
    TuString text(node->GetNodeCaption());
    if (text.IsEmpty()) {
        text = L"Processes";
    }
    flowmere::setText(element, u"Name", text.View());
    text = node->GetItemFilePath();
    if (!text.IsEmpty()) {
        flowmere::setText(element, u"FILE", text.View());
    }
    EProjectType const type = node->GetProjectType();
    CFCEnumTranslator::SetArrays();
    text = CFCEnumTranslator::EnumToString(type);
    if (!text.IsEmpty()) {
        flowmere::setText(element, u"Type", text.View());
    }
    if (type != EProjectType_TASK) {
        return;
    }
    text = node->GetNodeId();
    flowmere::setText(element, u"ID", text.View());
    if (node->GetNodeType() != eShapeType_FileNode) {
        return;
    }
    flowmere::setReal(element, u"Version", shortReal(node->GetVersionNo()));
    text = node->GetCheckedOutUser();
    flowmere::setText(element, u"CheckedOutUser", text.View());
    flowmere::setInteger(element, u"IsDirty", node->IsDirty() ? 1 : 0);
    flowmere::setInteger(element, u"IsCheckedOut", node->IsCheckedOut() ? 1 : 0);
    flowmere::setInteger(element, u"IsUptoDate", node->IsUptoDate() ? 1 : 0);
}

void CFCProcessListWriter::UpdateNewProcess(IFCNode* node) {
    IFCNode* const parent = node != nullptr ? node->GetParentNode() : nullptr;
    if (parent == nullptr || m_pListRoot == nullptr) {
        return;
    }
    IFCNode* const copy = CFCNodeHelper::Clone(node);
    if (copy == nullptr) {
        return;
    }
    if (parent->GetNodeType() == eShapeType_ProcessList && copy->GetNodeType() == eShapeType_FileNode) {
        m_pListRoot->AppendChild(copy, false);
        return;
    }
    // The groups above the node, made anew from below.
    IFCNode* const group = newGroupLike(parent);
    if (group == nullptr) {
        CFCNodeHelper::DestroyTree(copy);
        return;
    }
    group->AppendChild(copy, false);
    IFCNode* top = group;
    flowmere::ParentChain way(parent);
    for (way.climb(); way.node() != nullptr && way.node()->GetNodeType() != eShapeType_ProcessList; way.climb()) {
        IFCNode* const above = newGroupLike(way.node());
        if (above == nullptr) {
            break;
        }
        above->AppendChild(top, false);
        top = above;
    }
    IFCNode* const sameGroup = CFCNodeHelper::FindNodeByCaption(group->GetNodeCaption(), m_pListRoot);
    if (sameGroup != nullptr && PathCompare(sameGroup, group)) {
        moveChild(group, sameGroup);
        CFCNodeHelper::DestroyTree(top);
        return;
    }
    if (IFCNode* const sameTop = CFCNodeHelper::FindNodeByCaption(top->GetNodeCaption(), m_pListRoot)) {
        moveChild(top, sameTop);
        CFCNodeHelper::DestroyTree(top);
        return;
    }
    m_pListRoot->AppendChild(top, false);
}

bool CFCProcessListWriter::PathCompare(IFCNode* listed, IFCNode* fresh) {
    return listed != nullptr && fresh != nullptr && captionPath(listed, true) == captionPath(fresh, false);
}
