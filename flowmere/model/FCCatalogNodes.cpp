#include "flowmere/model/FCCatalogNodes.h"

namespace {

// Languages of a code record. They stand apart from the named values of EScriptType.
constexpr int kCodePython = 0;
constexpr int kCodeJS = 6;
constexpr int kCodeJython = 7;

// The field of the record that holds one code text; null for a language without code.
TuString NodeCode::*codeField(int language, bool isGetCode) {
    switch (language) {
    case kCodePython:
        return isGetCode ? &NodeCode::getCodePython : &NodeCode::setCodePython;
    case kCodeJS:
        return isGetCode ? &NodeCode::getCodeJS : &NodeCode::setCodeJS;
    case kCodeJython:
        return isGetCode ? &NodeCode::getCodeJython : &NodeCode::setCodeJython;
    default:
        return nullptr;
    }
}

} // namespace

CFCDataTypeNode::CFCDataTypeNode() = default;

// Copies share the record from now on, so it must be there.
CFCDataTypeNode::CFCDataTypeNode(CFCDataTypeNode const& other)
    : CFCNode(other), m_codeNode(other.codeRecord()), m_type(other.m_type), m_scope(other.m_scope),
      m_language(other.m_language), m_withoutRecord(other.m_withoutRecord) {}

CFCDataTypeNode& CFCDataTypeNode::operator=(CFCDataTypeNode const& other) {
    if (this != &other) {
        CFCNode::operator=(other);
        m_codeNode = other.codeRecord();
        m_type = other.m_type;
        m_scope = other.m_scope;
        m_language = other.m_language;
        m_withoutRecord = other.m_withoutRecord;
    }
    return *this;
}

CFCDataTypeNode::~CFCDataTypeNode() = default;

std::shared_ptr<NodeCode> const& CFCDataTypeNode::codeRecord() const {
    if (m_codeNode == nullptr && !m_withoutRecord) {
        m_codeNode = std::make_shared<NodeCode>();
    }
    return m_codeNode;
}

void CFCDataTypeNode::Create() {}

void CFCDataTypeNode::SetCodeNode(NodeCode* record) {
    if (!m_withoutRecord && (record == nullptr || m_codeNode.get() != record)) {
        m_codeNode.reset(record);
        m_withoutRecord = record == nullptr;
    }
}

void CFCDataTypeNode::SetCodeNode(EScriptType scriptType, wchar_t const* text, bool isGetCode) {
    TuString NodeCode::*const field = codeField(scriptType, isGetCode);
    if (field != nullptr && !m_withoutRecord) {
        (*codeRecord()).*field = text;
    }
}

bool CFCDataTypeNode::IsOrrinType() {
    if (m_type.Left(5).CompareNoCase(L"Orrin") != 0) {
        return false;
    }
    return m_type.CompareNoCase(L"OrrinUser") != 0 && m_type.CompareNoCase(L"OrrinPassword") != 0 &&
           m_type.CompareNoCase(L"OrrinServer") != 0;
}

bool CFCDataTypeNode::Copy(CFCDataTypeNode* source, CFCDataTypeNode* target) {
    if (source == nullptr || target == nullptr) {
        return false;
    }
    target->SetNodeCaption(source->GetNodeCaption());
    target->m_type = source->m_type;
    target->m_scope = source->m_scope;
    if (!source->m_withoutRecord && !target->m_withoutRecord) {
        // A record that was not made yet is an empty one.
        if (source->HasOwnRecord()) {
            *target->codeRecord() = *source->m_codeNode;
        } else if (target->HasOwnRecord()) {
            *target->m_codeNode = NodeCode();
        }
    }
    return true;
}

CFCDataTypeList::CFCDataTypeList() = default;
CFCDataTypeList::~CFCDataTypeList() = default;

CFCFileNode::CFCFileNode() = default;
CFCFileNode::CFCFileNode(int) : CFCFileNode() {}
CFCFileNode::~CFCFileNode() = default;

void CFCFileNode::Create() {}

int CFCFileNode::GetImage() {
    if (GetProjectType() != EProjectType_TASK) {
        return 0;
    }
    if (IsCheckedOut()) {
        return IsDirty() ? 5 : 4;
    }
    if (!IsUptoDate()) {
        return IsDirty() ? 7 : 2;
    }
    return IsDirty() ? 3 : 0;
}

int CFCFileNode::GetNodeLocationType() {
    return m_nodeLocationType;
}

void CFCFileNode::SetNodeLocationType(int locationType) {
    m_nodeLocationType = locationType;
}

wchar_t const* CFCFileNode::GetNodeId() {
    return m_nodeId;
}

void CFCFileNode::SetNodeId(wchar_t const* text) {
    m_nodeId = text;
}

wchar_t const* CFCFileNode::GetItemFilePath() {
    return CFCNode::GetItemFilePath();
}

void CFCFileNode::SetItemFilePath(wchar_t const* text) {
    CFCNode::SetItemFilePath(text);
}

wchar_t const* CFCFileNode::GetItemFileBaseDirectory() {
    return m_strItemFileBaseDirectory;
}

void CFCFileNode::SetItemFileBaseDirectory(wchar_t const* text) {
    m_strItemFileBaseDirectory = text;
}

EProjectType CFCFileNode::GetProjectType() {
    return m_eProjectType;
}

void CFCFileNode::SetProjectType(EProjectType kind) {
    m_eProjectType = kind;
}

void CFCFileNode::SetVersionNo(float version) {
    m_fVersionNo = version;
}

bool CFCFileNode::IsDirty() {
    return m_bDirty;
}

void CFCFileNode::SetDirty(bool flag) {
    m_bDirty = flag;
}

bool CFCFileNode::IsCheckedOut() {
    return m_bCheckedOut;
}

void CFCFileNode::SetCheckedOut(bool flag) {
    m_bCheckedOut = flag;
}

bool CFCFileNode::IsUptoDate() {
    return m_bUptoDate;
}

void CFCFileNode::SetUptoDate(bool flag) {
    m_bUptoDate = flag;
}

wchar_t const* CFCFileNode::GetCheckedOutUser() {
    return m_strCheckedOutUser;
}

void CFCFileNode::SetCheckedOutUser(wchar_t const* text) {
    m_strCheckedOutUser = text;
}

CFCFileTypeNode::CFCFileTypeNode() = default;
CFCFileTypeNode::~CFCFileTypeNode() = default;

int CFCFileTypeNode::GetImage() {
    return IsModified() ? 3 : 0;
}

bool CFCFileTypeNode::IsModified() {
    return m_fileTypeModified;
}

void CFCFileTypeNode::SetModified(bool flag) {
    m_fileTypeModified = flag;
}

bool CFCFileTypeNode::IsDeleted() {
    return m_fileTypeDeleted;
}

void CFCFileTypeNode::SetDeleted(bool flag) {
    m_fileTypeDeleted = flag;
}

bool CFCFileTypeNode::Copy(CFCFileTypeNode* source, CFCFileTypeNode* target) {
    if (source == nullptr || target == nullptr) {
        return false;
    }
    target->m_fileTypeDescription = source->m_fileTypeDescription;
    target->m_fileTypeId = source->m_fileTypeId;
    target->m_fileTypeName = source->m_fileTypeName;
    target->m_fileTypeExtension = source->m_fileTypeExtension;
    target->m_mimeType = source->m_mimeType;
    target->SetModified(source->IsModified());
    target->SetDeleted(source->IsDeleted());
    return true;
}

CFCMimeTypeNode::CFCMimeTypeNode() = default;
CFCMimeTypeNode::~CFCMimeTypeNode() = default;

void CFCMimeTypeNode::Create() {}

CFCCodeNode::CFCCodeNode() = default;
CFCCodeNode::~CFCCodeNode() = default;

void CFCCodeNode::Create() {}

wchar_t const* CFCCodeNode::GetNodeCode() {
    return m_code;
}

void CFCCodeNode::SetNodeCode(wchar_t const* text) {
    m_code = text;
}

CFCDocumentNode::CFCDocumentNode() {
    CFCNode::SetNodeType(eShapeType_Document);
}
CFCDocumentNode::~CFCDocumentNode() = default;

void CFCDocumentNode::Create() {}

CFCFavouriteNode::CFCFavouriteNode() {
    CFCNode::SetNodeType(eShapeType_Favourites);
    CFCNode::SetNodeCaption(L"FAVOURITES");
}
CFCFavouriteNode::~CFCFavouriteNode() = default;

void CFCFavouriteNode::Create() {}

int CFCFavouriteNode::GetImage() {
    return 6;
}

CFCPackageNode::CFCPackageNode() = default;
CFCPackageNode::~CFCPackageNode() = default;

void CFCPackageNode::Create() {}

CFCAPIHelpNode::CFCAPIHelpNode() = default;
CFCAPIHelpNode::~CFCAPIHelpNode() = default;

void CFCAPIHelpNode::Create() {}

wchar_t const* CFCAPIHelpNode::GetNodeText() {
    return m_nodeText;
}

void CFCAPIHelpNode::SetNodeText(wchar_t const* text) {
    m_nodeText = text;
}

wchar_t const* CFCAPIHelpNode::GetNodeCode() {
    return GetNodeText();
}

void CFCAPIHelpNode::SetNodeCode(wchar_t const* text) {
    SetNodeText(text);
}
