#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/xml/XmlForward.h"

// Turns DOM text into the system's text. Base of the reader.
class FLOWMERE_API CTXMLFilerUseful {
public:
    // Replaces the content of `out` by the DOM text; null gives the empty text.
    static void TXMLDOMStringToCStringNew(XMLCh const* text, TuString& out);
};
