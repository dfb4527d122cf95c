#pragma once

#include "flowmere/xml/XmlForward.h"

class CFCBlockData;

// The look of a block in files: the elements "BORDER" and "FONT", which process documents and drawings of workflow
// levels have in common.
namespace flowmere {

// Append the element; without block data it stays empty. Saving the font names it in the model, too: an empty font
// name becomes "Arial".
void writeBorder(XERCES_CPP_NAMESPACE::DOMNode* parent, CFCBlockData* block);
void writeFont(XERCES_CPP_NAMESPACE::DOMNode* parent, CFCBlockData* block);

// Take what the element has into the block data, and mark border or font as given by a file. An element without a
// version, or with 0, is of the old form, in which parts had no say. Nothing without block data.
void readBorder(XERCES_CPP_NAMESPACE::DOMElement* element, CFCBlockData* block);
void readFont(XERCES_CPP_NAMESPACE::DOMElement* element, CFCBlockData* block);

} // namespace flowmere
