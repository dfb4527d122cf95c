#include "flowmere/persistence/FCApplicationWriter.h"

#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/xml/XmlElements.h"

#include <xercesc/dom/DOM.hpp>

#include <string_view>

using XERCES_CPP_NAMESPACE::DOMElement;
using XERCES_CPP_NAMESPACE::DOMNode;

namespace {

std::wstring_view view(wchar_t const* text) {
    return text != nullptr ? std::wstring_view(text) : std::wstring_view();
}

} // namespace

CFCApplicationWriter::CFCApplicationWriter() = default;
CFCApplicationWriter::CFCApplicationWriter(CFCApplicationWriter const& other) = default;
CFCApplicationWriter& CFCApplicationWriter::operator=(CFCApplicationWriter const& other) = default;
CFCApplicationWriter::~CFCApplicationWriter() = default;

void CFCApplicationWriter::WriteObject(IFCNode* node, DOMNode* parent, DOMNode* self) {
    TuString type;
    if (!GetObjectType(node, type)) {
        return;
    }
    DOMNode* element = self;
    if (element == nullptr && parent != nullptr) {
        element = CreateElement(parent, type);
    }
    if (element != nullptr) {
        WriteProperties(node, element);
    }
}

void CFCApplicationWriter::WriteProperties(IFCNode* node, DOMNode* element) {
    if (node == nullptr) {
        return;
    }
    DOMElement* const application = flowmere::appendElement(element, u"APP");
    CFCBPMBlockData* const task = node->GetBPMBlockData();
    if (application == nullptr || task == nullptr) {
        return;
    }
    flowmere::setText(application, u"name", view(task->GetTaskCaption()));
    flowmere::setText(application, u"icon", view(task->GetIconFilePath()));
    flowmere::setText(application, u"label", view(node->GetNodeCaption()));
    flowmere::setText(application, u"id", view(node->GetNodeId()));
    flowmere::setText(application, u"desc", view(task->GetTaskDescription()));
}
