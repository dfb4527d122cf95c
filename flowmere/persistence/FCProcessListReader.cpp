#include "flowmere/persistence/FCProcessListReader.h"

#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/model/FCEnumTranslator.h"
#include "flowmere/persistence/InitFailure.h"
#include "flowmere/xml/XmlElements.h"

#include <xercesc/dom/DOM.hpp>

#include <algorithm>
#include <limits>

namespace {

constexpr wchar_t const* kBPMListName = L"BPMProcess.lst";

enum { kName, kFile, kType, kId, kVersion, kCheckedOutUser, kIsDirty, kIsCheckedOut, kIsUptoDate };
constexpr flowmere::AttributeTable kAttributes{u"Name",           u"FILE",    u"Type",         u"ID",        u"Version",
                                               u"CheckedOutUser", u"IsDirty", u"IsCheckedOut", u"IsUptoDate"};

// 0 for an element that is no entry.
int nodeTypeOf(std::u16string_view tag) {
    if (tag == u"PROCESS") {
        return eShapeType_FileNode;
    }
    if (tag == u"SUB_GRP") {
        return eShapeType_Folder;
    }
    return tag == u"CODE" ? eShapeType_Code : eShapeType_None;
}

} // namespace

CFCProcessListReader::CFCProcessListReader() = default;
CFCProcessListReader::CFCProcessListReader(CFCProcessListReader const& other) = default;
CFCProcessListReader& CFCProcessListReader::operator=(CFCProcessListReader const& other) = default;
CFCProcessListReader::~CFCProcessListReader() = default;

bool CFCProcessListReader::Parse(wchar_t const* path, CFCProcessList* list, wchar_t const* baseDirectory) {
    // Both may be answers of the environment, which is asked below.
    TuString const file(path);
    TuString const base(baseDirectory);
    if (file.IsEmpty() || list == nullptr) {
        return false;
    }
    // A bare file name is the list of a host that keeps only one.
    m_bBPMList = file.Find(kBPMListName) > 0;
    m_bUserList = file.Find(CFCEnvironment::GetUserPath()) >= 0;
    if (!Initialize(file)) {
        flowmere::tellInitFailed();
        return false;
    }
    m_pList = list;
    xercesc::DOMElement* const root = m_pDocument->getDocumentElement();
    if (root == nullptr) {
        return false;
    }
    list->SetNodeType(eShapeType_ProcessList);
    TuString name;
    GetAttribute(root, L"Name", name);
    if (name.IsEmpty()) {
        name = m_bBPMList ? L"BPM Processes" : L"Processes";
    }
    list->SetNodeCaption(name);
    Load(root, list, base);
    return true;
}

bool CFCProcessListReader::Load(xercesc::DOMElement* element, IFCNode* node, wchar_t const* baseDirectory) {
    if (element == nullptr || node == nullptr) {
        return false;
    }
    loadBelow(element, node, TuString(baseDirectory));
    return true;
}

// The parser bounds the depth of a document.
void CFCProcessListReader::loadBelow(xercesc::DOMElement* element, IFCNode* node, TuString const& baseDirectory) {
    for (auto* child = flowmere::firstElement(element); child != nullptr; child = flowmere::nextElement(child)) {
        int const type = nodeTypeOf(flowmere::tagOf(child));
        IFCNode* const entry = type != eShapeType_None ? Create(type) : nullptr;
        if (entry == nullptr) {
            continue;
        }
        node->AppendChild(entry, false);
        LoadPropertiesLite(child, entry);
        if (type == eShapeType_Code) {
            LoadCode(child, entry);
        }
        loadBelow(child, entry, baseDirectory);
        entry->SetItemFileBaseDirectory(baseDirectory);
        // In a BPM list everything is of that kind, whatever the file says.
        if (type == eShapeType_FileNode && m_bBPMList) {
            entry->SetProjectType(EProjectType_TASK);
        }
    }
}

void CFCProcessListReader::LoadPropertiesLite(xercesc::DOMElement* element, IFCNode* node) {
    if (element == nullptr || node == nullptr) {
        return;
    }
    flowmere::AttributeRow const row(element, kAttributes);
    TuString text;
    row.text(kName, text);
    node->SetNodeCaption(text);
    text.Empty();
    row.text(kFile, text);
    if (!text.IsEmpty()) {
        node->SetItemFilePath(text);
    }
    text.Empty();
    row.text(kType, text);
    EProjectType type = EProjectType_BPT;
    CFCEnumTranslator::StringToEnum(text, type);
    node->SetProjectType(type);
    text.Empty();
    row.text(kId, text);
    node->SetNodeId(text);
    double version = 0.0;
    row.real(kVersion, version);
    constexpr double kLargest = std::numeric_limits<float>::max();
    node->SetVersionNo(static_cast<float>(std::clamp(version, -kLargest, kLargest)));
    text.Empty();
    row.text(kCheckedOutUser, text);
    node->SetCheckedOutUser(text);
    bool flag = false;
    row.flag(kIsDirty, flag);
    node->SetDirty(flag);
    flag = false;
    row.flag(kIsCheckedOut, flag);
    node->SetCheckedOut(flag);
    flag = false;
    row.flag(kIsUptoDate, flag);
    node->SetUptoDate(flag);
    node->SetNewPath(m_bUserList);
}
