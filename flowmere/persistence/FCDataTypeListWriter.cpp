#include "flowmere/persistence/FCDataTypeListWriter.h"

#include "flowmere/persistence/ChildWalk.h"
#include "flowmere/xml/XmlElements.h"
#include "flowmere/xml/XmlFile.h"
#include "flowmere/xml/XmlPlatform.h"

#include <xercesc/dom/DOM.hpp>

namespace {

struct LanguageForm {
    flowmere::XmlName type;
    TuString NodeCode::*setCode;
    TuString NodeCode::*getCode;
};
// The order in the file matters: a reader gives each code to the language last named.
constexpr LanguageForm kLanguages[] = {
    {u"JS", &NodeCode::setCodeJS, &NodeCode::getCodeJS},
    {u"Jython", &NodeCode::setCodeJython, &NodeCode::getCodeJython},
    {u"Python", &NodeCode::setCodePython, &NodeCode::getCodePython},
};

void writeNameAndType(CFCDataTypeNode* node, xercesc::DOMNode* element) {
    TuString name(node->GetNodeCaption());
    if (name.IsEmpty()) {
        name = L"Name";
    }
    flowmere::setText(element, u"Name", name.View());
    TuString const type(node->GetType());
    if (!type.IsEmpty()) {
        flowmere::setText(element, u"Type", type.View());
    }
}

void writeCode(xercesc::DOMNode* parent, flowmere::XmlName name, TuString const& code) {
    if (xercesc::DOMElement* const element = flowmere::appendElement(parent, name)) {
        flowmere::appendCData(element, code.View());
    }
}

} // namespace

CFCDataTypeListWriter::CFCDataTypeListWriter() : m_strRootName(L"DataTypes") {}
CFCDataTypeListWriter::CFCDataTypeListWriter(CFCDataTypeListWriter const& other) = default;
CFCDataTypeListWriter& CFCDataTypeListWriter::operator=(CFCDataTypeListWriter const& other) = default;
CFCDataTypeListWriter::~CFCDataTypeListWriter() = default;

bool CFCDataTypeListWriter::WriteFile(wchar_t const* path, CFCDataTypeNode* node, bool deep) {
    m_bDeep = deep;
    m_strFilePath = path;
    if (m_strFilePath.IsEmpty() || !node) {
        return false;
    }
    TuString const file(m_strFilePath);
    TuString const rootName(m_strRootName);
    return flowmere::writeXmlFile(file, rootName.View(),
                                  [&](xercesc::DOMElement* root) { WriteObject(node, nullptr, root); });
}

void CFCDataTypeListWriter::WriteObject(CFCDataTypeNode* node, xercesc::DOMNode* parent, xercesc::DOMNode* self) {
    flowmere::WriteDepth const depth(m_nDepth);
    TuString type;
    if (m_nDepth > flowmere::kMaxElementDepth || !GetObjectType(node, type)) {
        return;
    }
    xercesc::DOMNode* const element = self ? self : CreateElement(parent, type);
    if (!element) {
        return;
    }
    WriteProperties(node, element);
    WriteChildren(node, element);
}

void CFCDataTypeListWriter::WriteChildren(CFCDataTypeNode* node, xercesc::DOMNode* element) {
    for (IFCNode* const child : flowmere::childrenInFileOrder(node)) {
        // A group of file types holds nodes of another class, which this file does not keep.
        WriteObject(dynamic_cast<CFCDataTypeNode*>(child), element, nullptr);
    }
}

void CFCDataTypeListWriter::WriteProperties(CFCDataTypeNode* node, xercesc::DOMNode* element) {
    if (!node || !element) {
        return;
    }
    int const type = node->GetNodeType();
    if (!node->GetParentNode() || type == eShapeType_DataTypeGroup || type == eShapeType_DataTypeSubGroup) {
        WritePropertiesRoot(node, element);
        return;
    }
    writeNameAndType(node, element);
    WriteLanguageTag(node, element);
}

void CFCDataTypeListWriter::WritePropertiesRoot(CFCDataTypeNode* node, xercesc::DOMNode* element) {
    if (node && element) {
        writeNameAndType(node, element);
    }
}

bool CFCDataTypeListWriter::GetObjectType(CFCDataTypeNode* node, TuString& out) {
    if (!node) {
        return false;
    }
    switch (node->GetNodeType()) {
    case eShapeType_DataType:
        out = L"DATATYPE";
        return true;
    case eShapeType_DataTypeGroup:
        out = L"GROUP";
        return true;
    case eShapeType_DataTypeSubGroup:
        out = L"SUB_GROUP";
        return true;
    case eShapeType_None:
        out = L"UnKnown";
        return true;
    default:
        return false;
    }
}

void CFCDataTypeListWriter::WriteLanguageTag(CFCDataTypeNode* node, xercesc::DOMNode* element) {
    NodeCode const* const code = node && element ? node->GetCodeNode() : nullptr;
    if (!code) {
        return;
    }
    for (LanguageForm const& language : kLanguages) {
        if (xercesc::DOMElement* const tag = flowmere::appendElement(element, u"LANGUAGE")) {
            flowmere::setConstant(tag, u"Type", language.type);
        }
        writeCode(element, u"SETCODE", code->*language.setCode);
        writeCode(element, u"GETCODE", code->*language.getCode);
    }
}

void CFCDataTypeListWriter::TrimCode(NodeCode* code) {
    if (!code) {
        return;
    }
    NodeCode trimmed(*code);
    for (LanguageForm const& language : kLanguages) {
        for (TuString* const text : {&(trimmed.*language.getCode), &(trimmed.*language.setCode)}) {
            text->TrimLeft();
            text->TrimRight();
        }
    }
}
