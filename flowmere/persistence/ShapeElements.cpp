#include "flowmere/persistence/ShapeElements.h"

#include "flowmere/model/FCBlockData.h"
#include "flowmere/xml/XmlElements.h"

#include <xercesc/dom/DOM.hpp>

using XERCES_CPP_NAMESPACE::DOMElement;
using XERCES_CPP_NAMESPACE::DOMNode;

namespace flowmere {

namespace {

constexpr unsigned int kOldFill = 0xFFDFC6;

// Without a version the switches are cleared and the fill is fixed, whatever the element says.
void forceBorderBeforeVersion1(CFCBlockData* block) {
    block->Visible = false;
    block->DrawBorder = false;
    block->ColorFill = kOldFill;
}

} // namespace

void writeBorder(DOMNode* parent, CFCBlockData* block) {
    DOMElement* const element = appendElement(parent, u"BORDER");
    if (element == nullptr || block == nullptr)
        return;
    setInteger(element, u"LineThickness", block->LineThickness);
    setInteger(element, u"LinePenType", block->LinePenType);
    setInteger(element, u"DrawBorder", block->DrawBorder ? 1 : 0);
    setInteger(element, u"FillColor", block->FillColor ? 1 : 0);
    setInteger(element, u"ColorLine", block->ColorLine);
    setInteger(element, u"ColorFill", block->ColorFill);
    setConstant(element, u"Version", u"1");
}

void writeFont(DOMNode* parent, CFCBlockData* block) {
    DOMElement* const element = appendElement(parent, u"FONT");
    if (element == nullptr || block == nullptr)
        return;
    if (block->FontName.IsEmpty())
        block->FontName = L"Arial";
    setInteger(element, u"Bold", block->Bold ? 1 : 0);
    setInteger(element, u"Italics", block->Italics ? 1 : 0);
    setInteger(element, u"FontSize", block->FontSize);
    setInteger(element, u"Format", block->Format);
    setInteger(element, u"FontColor", block->FontColor);
    setText(element, u"FontName", block->FontName.View());
    setConstant(element, u"Version", u"1");
}

void readBorder(DOMElement* element, CFCBlockData* block) {
    static constexpr AttributeTable kNames(u"LineThickness", u"LinePenType", u"Visible", u"DrawBorder", u"FillColor",
                                           u"ColorLine", u"ColorFill", u"Version");
    if (block == nullptr)
        return;
    AttributeRow const row(element, kNames);
    int version = 0;
    row.integer(0, block->LineThickness);
    row.integer(1, block->LinePenType);
    row.flag(2, block->Visible);
    row.flag(3, block->DrawBorder);
    row.flag(4, block->FillColor);
    row.color(5, block->ColorLine);
    row.color(6, block->ColorFill);
    row.integer(7, version);
    block->BorderSet = true;
    if (version == 0)
        forceBorderBeforeVersion1(block);
}

void readFont(DOMElement* element, CFCBlockData* block) {
    static constexpr AttributeTable kNames(u"Bold", u"Italics", u"StrikeOut", u"Underline", u"FontSize", u"Format",
                                           u"FontColor", u"FontName", u"Version");
    if (block == nullptr)
        return;
    AttributeRow const row(element, kNames);
    int version = 0;
    row.flag(0, block->Bold);
    row.flag(1, block->Italics);
    row.flag(2, block->StrikeOut);
    row.flag(3, block->Underline);
    row.integer(4, block->FontSize);
    row.unsignedInteger(5, block->Format);
    row.color(6, block->FontColor);
    row.text(7, block->FontName);
    row.integer(8, version);
    block->FontSet = true;
    block->FontVersion = version;
    if (version == 0)
        block->FontColor = 0;
}

} // namespace flowmere
