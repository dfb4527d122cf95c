#pragma once

#include "flowmere/Export.h"

class IFCNode;

// Makes nodes from their type codes, and answers the readers' questions about files. A reader is
// given a factory object; a host derives from it to make node classes of its own.
class FLOWMERE_API CFCNodeFactory {
public:
    virtual ~CFCNodeFactory();
    // New node of the class that belongs to the code (see eShapeType), with the code stored as its node
    // type; the caller owns it. Null for a code without a class and when memory runs out.
    virtual IFCNode* Create(int typeCode);
    // Whether a path is complete, which is so exactly when IsFileExists says so.
    virtual bool IsFullPath(wchar_t const* path);
    // Whether a path names an existing file.
    virtual bool IsFileExists(wchar_t const* path);
    // Path of a macro's file; empty here, supplied by the host's own factory. Never null.
    virtual wchar_t const* GetMacroPath(wchar_t const* name);
};
