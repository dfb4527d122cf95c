#pragma once

#include "flowmere/xml/XmlForward.h"

#include <functional>
#include <string_view>

namespace flowmere {

// The fixed way in which every writer produces a file: a document with the given root, the schema instance namespace
// as its "xmlns", filled by the caller, is serialised with indentation straight into the path, which is truncated
// first. The file is opened only when the document stands. False when the library or its serialiser does not come up;
// true otherwise, whatever became of the bytes and of an exception in between.
bool writeXmlFile(wchar_t const* path, std::wstring_view rootName,
                  std::function<void(XERCES_CPP_NAMESPACE::DOMElement*)> const& fill);

// Serialises a document with indentation into the path. False when there is no serialiser; exceptions are dropped.
bool serializeXmlFile(XERCES_CPP_NAMESPACE::DOMDocument* document, wchar_t const* path) noexcept;

// Pretty-prints a file into the path with each ".xml" replaced by ".for"; nothing happens when it cannot be read.
void formatXmlFile(wchar_t const* path);

} // namespace flowmere
