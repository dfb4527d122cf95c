#include "flowmere/xml/TXMLFilerUseful.h"

#include "flowmere/xml/XmlText.h"

void CTXMLFilerUseful::TXMLDOMStringToCStringNew(XMLCh const* text, TuString& out) {
    flowmere::assignText(out, flowmere::xmlView(text));
}
