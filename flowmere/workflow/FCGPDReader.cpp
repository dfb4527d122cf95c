#include "flowmere/workflow/FCGPDReader.h"

#include "flowmere/foundation/TuString.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCBlockData.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/FCNodeList.h"
#include "flowmere/persistence/ShapeElements.h"
#include "flowmere/xml/XmlElements.h"

#include <xercesc/dom/DOM.hpp>

#include <vector>

using flowmere::AttributeRow;
using flowmere::AttributeTable;
using flowmere::WideText;
using XERCES_CPP_NAMESPACE::DOMElement;

namespace {

// Far edge of a rectangle. Files have any numbers; what goes beyond the range comes around at its other end.
int farEdge(int edge, int size) {
    return static_cast<int>(static_cast<unsigned int>(edge) + static_cast<unsigned int>(size));
}

void setIcon(IFCNode* node, XMLCh const* icon) {
    CFCBPMBlockData* const task = node->GetBPMBlockData();
    if (icon != nullptr && task != nullptr)
        task->SetIconFilePath(WideText(icon));
}

} // namespace

CFCGPDReader::CFCGPDReader() = default;
CFCGPDReader::CFCGPDReader(CFCGPDReader const& other) = default;
CFCGPDReader& CFCGPDReader::operator=(CFCGPDReader const& other) = default;
CFCGPDReader::~CFCGPDReader() = default;

void CFCGPDReader::SetContainer(CFCBaseContainer* container) {
    m_pContainer = container;
}

void CFCGPDReader::Attach(IFCNode* node) {
    if (m_pContainer != nullptr && node != nullptr)
        m_pContainer->Attach(node);
}

bool CFCGPDReader::Parse(wchar_t const* path, IFCNode* node, int) {
    static constexpr AttributeTable kNames(u"name", u"Icon");
    TuString const file(path);
    m_findings.clear();
    if (file.IsEmpty() || node == nullptr || !Initialize(file))
        return false;
    DOMElement* const root = m_pDocument->getDocumentElement();
    AttributeRow const row(root, kNames);
    if (row.has(0))
        node->SetNodeCaption(WideText(row[0]));
    setIcon(node, row[1]);
    Load(root, node);
    return true;
}

// Levels of the document stand in a list, not on the stack: a caller's document may be of any depth.
bool CFCGPDReader::Load(DOMElement* element, IFCNode* node) {
    struct Level {
        DOMElement* next; // child element to read
        IFCNode* node;
    };
    if (element == nullptr || node == nullptr)
        return false;
    std::vector<Level> levels{{flowmere::firstElement(element), node}};
    while (!levels.empty()) {
        auto const [child, owner] = levels.back();
        if (child == nullptr) {
            levels.pop_back();
            continue;
        }
        levels.back().next = flowmere::nextElement(child);
        std::u16string_view const name = flowmere::tagOf(child);
        if (name == u"node" || name == u"node-container") {
            if (IFCNode* const inner = loadNode(child, owner))
                levels.push_back({flowmere::firstElement(child), inner});
        } else if (name == u"BORDER") {
            flowmere::readBorder(child, owner->GetFCBlockData());
        } else if (name == u"FONT") {
            loadFont(child, owner);
        } else {
            passOver(child, owner);
        }
    }
    return true;
}

IFCNode* CFCGPDReader::loadNode(DOMElement* element, IFCNode* node) {
    static constexpr AttributeTable kNames(u"name", u"Icon", u"x", u"y", u"width", u"height", u"IsImage", u"Image");
    AttributeRow const row(element, kNames);
    IFCNode* const found = node->FindNodeSimple(WideText(row.view(0)));
    if (found == nullptr) {
        m_findings.push_back({CFCLayoutFinding::NodeUnknown, node, TuString(WideText(row.view(0)).text()),
                              TuString(WideText(flowmere::tagOf(element)).text())});
        return nullptr;
    }
    setIcon(found, row[1]);
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    row.integer(2, x);
    row.integer(3, y);
    row.integer(4, width);
    row.integer(5, height);
    if (width > 0 && height > 0)
        found->SetTuRect(x, y, farEdge(x, width), farEdge(y, height));
    if (CFCBlockData* const block = found->GetFCBlockData()) {
        bool isImage = block->HasImage();
        row.flag(6, isImage);
        block->SetImage(isImage);
        if (!row.view(7).empty())
            block->SetRelativeImagePath(WideText(row.view(7)));
    }
    return found;
}

void CFCGPDReader::passOver(DOMElement* element, IFCNode* node) {
    static constexpr AttributeTable kNames(u"x", u"y");
    auto const tell = [&](DOMElement* lost) {
        TuString const tag(WideText(flowmere::tagOf(lost)).text());
        m_findings.push_back({CFCLayoutFinding::ElementPassedOver, node, tag, tag});
    };
    std::u16string_view const name = flowmere::tagOf(element);
    if (name == u"Status" || name == u"VARIABLES")
        return;
    if (name != u"edge") {
        tell(element);
        return;
    }
    for (DOMElement* child = flowmere::firstElement(element); child != nullptr; child = flowmere::nextElement(child)) {
        AttributeRow const row(child, kNames);
        int x = 0;
        int y = 0;
        row.integer(0, x);
        row.integer(1, y);
        if (flowmere::tagOf(child) != u"label" || x != 0 || y != 0)
            tell(child);
    }
}

// The font comes last of what says how a node looks, so the node is then ready to be drawn.
void CFCGPDReader::loadFont(DOMElement* element, IFCNode* node) {
    CFCBlockData* const block = node->GetFCBlockData();
    if (block == nullptr)
        return;
    flowmere::readFont(element, block);
    node->TransferToDraw();
    Attach(node);
}
