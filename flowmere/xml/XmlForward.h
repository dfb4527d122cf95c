#pragma once

#include <xercesc/util/XercesDefs.hpp>

// The DOM types that the interfaces of readers and writers name, without the parser's own headers.
XERCES_CPP_NAMESPACE_BEGIN
class DOMDocument;
class DOMElement;
class DOMNode;
class XercesDOMParser;
XERCES_CPP_NAMESPACE_END
