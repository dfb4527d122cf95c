#pragma once

#include "host/basics/Text.h"
#include "host/document/HostFactory.h"

#include "flowmere/Flowmere.h"

#include <stdexcept>
#include <string>

// The library's reader by itself, as a document uses it: the bare side of a measurement. The folders of the environment
// are those of the document that was open before.
inline void readBare(std::string const& path) {
    flowmere::host::HostFactory factory;
    CFCReader reader;
    reader.SetNodeFactory(&factory);
    IFCNode* root = nullptr;
    if (!reader.Parse(flowmere::host::libraryPath(path), &root, 1))
        throw std::runtime_error("cannot read " + path);
    CFCNodeHelper::DestroyTree(root);
}
