#include "flowmere/model/FCVariableData.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include "flowmere/foundation/TuMemory.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCEnumTranslator.h"
#include "flowmere/model/FCJSONTemplates.h"
#include "flowmere/model/LinkEpoch.h"
#include "flowmere/model/VariableNameIndex.h"

namespace {

// The first data type that is an array by itself. The value behind the last one has no name and is
// no array; values beyond it are.
constexpr int kFirstArrayType = EDataType_IntArray;
constexpr int kUnnamedType = EDataType_DirectoryArray + 1;

// The class text of each data type, in the order of the enumeration.
constexpr std::array<wchar_t const*, kUnnamedType> kClassTexts = {
    L"Data",       L"Data",       L"Data",       L"Data",       L"Data",       L"Data",       L"Data",
    L"Data",       L"File",       L"Directory",  L"Data Array", L"Data Array", L"Data Array", L"Data Array",
    L"Data Array", L"Data Array", L"Data Array", L"File",       L"Directory"};

constexpr wchar_t const* kEmptyLiteral = L"\"\"";

// Copies of the caller's values. The old storage still stands then, and may be what they lie in.
template <typename T>
T* copyOf(T const* values, int count) {
    std::size_t const size = static_cast<std::size_t>(count) * sizeof(T);
    T* const block = static_cast<T*>(TuMalloc(size, __FILE__, __LINE__));
    if (block != nullptr) {
        std::memcpy(block, values, size);
    }
    return block;
}

CFCDataTypeNode* newDataTypeNode() {
    try {
        return std::make_unique<CFCDataTypeNode>().release();
    } catch (std::bad_alloc const&) {
        return nullptr;
    }
}

CFCFileTypeNode* newFileTypeNode() {
    try {
        return std::make_unique<CFCFileTypeNode>().release();
    } catch (std::bad_alloc const&) {
        return nullptr;
    }
}

// By-name setters: names are known once the arrays of names are filled.
template <typename E>
void setByName(wchar_t const* name, E& value) {
    if (name != nullptr) {
        CFCEnumTranslator::SetArrays();
        CFCEnumTranslator::StringToEnum(name, value);
    }
}

} // namespace

CFCVariableData::CFCVariableData()
    : m_pDataTypeNode(newDataTypeNode()), m_pFileTypeNode(newFileTypeNode()), m_strType(L"Data") {
    m_bOwnDataTypeNode = m_pDataTypeNode != nullptr;
    m_bOwnFileTypeNode = m_pFileTypeNode != nullptr;
    if (m_pDataTypeNode != nullptr) {
        m_pDataTypeNode->SetNodeType(80);
    }
    if (m_pFileTypeNode != nullptr) {
        m_pFileTypeNode->SetNodeType(83);
    }
}

CFCVariableData::CFCVariableData(char const* name, int dataType, int scopeType, int array)
    : m_strVariableName(name), m_strType(L"Data"), m_eDataType(static_cast<EDataType>(dataType)),
      m_eScopeType(static_cast<EScopeType>(scopeType)), m_bArray(static_cast<unsigned char>(array & 0xff)) {}

CFCVariableData::CFCVariableData(CFCVariableData const& other) : CFCNode(other) {
    copyFields(other);
}

CFCVariableData& CFCVariableData::operator=(CFCVariableData const& other) {
    if (this != &other) {
        nameWillChange();
        CFCNode::operator=(other);
        copyFields(other);
    }
    return *this;
}

CFCVariableData::~CFCVariableData() {
    nameWillChange();
}

void CFCVariableData::copyFields(CFCVariableData const& other) {
    m_pFinalVariable = other.m_pFinalVariable;
    m_pLinkedVariable = other.m_pLinkedVariable;
    m_pDataTypeNode = other.m_pDataTypeNode;
    m_pFileTypeNode = other.m_pFileTypeNode;
    m_Store = other.m_Store;
    m_aOptions = other.m_aOptions;
    m_strValue = other.m_strValue;
    m_strDefaultCode = other.m_strDefaultCode;
    m_strVariableName = other.m_strVariableName;
    m_strGroupName = other.m_strGroupName;
    m_strNature = other.m_strNature;
    m_strPath = other.m_strPath;
    m_strLinkPath = other.m_strLinkPath;
    ++flowmere::linkEpoch;
    m_strError = other.m_strError;
    m_strCaption = other.m_strCaption;
    m_strResolveEvent = other.m_strResolveEvent;
    m_strType = other.m_strType;
    m_strEntityType = other.m_strEntityType;
    m_strJSON = other.m_strJSON;
    m_eDataType = other.m_eDataType;
    m_eStatusType = other.m_eStatusType;
    m_eConnectionType = other.m_eConnectionType;
    m_eScopeType = other.m_eScopeType;
    m_nJobAppVarID = other.m_nJobAppVarID;
    m_nDeploymentMapId = other.m_nDeploymentMapId;
    m_nArrayCount = other.m_nArrayCount;
    m_nLinkedVariableHandle = other.m_nLinkedVariableHandle;
    m_nVariableID = other.m_nVariableID;
    m_bTemplateVariable = other.m_bTemplateVariable;
    m_nLinkedTargetHandle = other.m_nLinkedTargetHandle;
    m_nFinalTargetHandle = other.m_nFinalTargetHandle;
    m_bArray = other.m_bArray;
    m_bHidden = other.m_bHidden;
    m_bGroup = other.m_bGroup;
    m_bGroupHeader = other.m_bGroupHeader;
    m_bDeployed = other.m_bDeployed;
    m_bBPMVariable = other.m_bBPMVariable;
    m_bUseAggregator = other.m_bUseAggregator;
    m_bVisible = other.m_bVisible;
    m_bEditable = other.m_bEditable;
    m_bFileType = other.m_bFileType;
    m_bReference = other.m_bReference;
    m_bStoreDB = other.m_bStoreDB;

    // What the two share from now on is the source's to free, and only by its array setters.
    m_eStoreKind = NoStorage;
    m_nStoredTexts = 0;
    m_bOwnDataTypeNode = false;
    m_bOwnFileTypeNode = false;
    m_bShared = false;
    other.m_bShared = true;
}

// --- The typed store ------------------------------------------------------------------------------

template <typename T>
T CFCVariableData::stored() const {
    static_assert(sizeof(T) <= sizeof(m_Store));
    T value;
    std::memcpy(&value, &m_Store, sizeof(value));
    return value;
}

template <typename T>
void CFCVariableData::store(T value) {
    static_assert(sizeof(T) <= sizeof(m_Store));
    std::memcpy(&m_Store, &value, sizeof(value));
    // Whatever stood here is not freed, and can no longer be reached from here.
    m_eStoreKind = NoStorage;
    m_nStoredTexts = 0;
}

void CFCVariableData::freeStorage() {
    // What is there is known by the kind alone: the store may as well hold a number or a pointer of the host.
    void* const block = stored<void*>();
    if (m_eStoreKind == TextStorage) {
        char** const texts = static_cast<char**>(block);
        for (int index = 0; index < m_nStoredTexts; ++index) {
            TuFree(texts[index], __FILE__, __LINE__);
        }
    }
    if (m_eStoreKind != NoStorage) {
        TuFree(block, __FILE__, __LINE__);
    }
    m_eStoreKind = NoStorage;
    m_nStoredTexts = 0;
}

void CFCVariableData::releaseOldStorage() {
    // The present data type decides whether old storage is freed at all.
    if (m_eDataType >= EDataType_Int && m_eDataType <= EDataType_String) {
        freeStorage();
    }
}

template <typename T>
void CFCVariableData::storeArray(EDataType type, int count, T const* values) {
    int const number = values == nullptr || count < 0 ? 0 : count;
    T* const block = number == 0 ? nullptr : copyOf(values, number);
    if (m_bArray == 1) {
        releaseOldStorage();
    }
    m_eDataType = type;
    m_bArray = 1;
    m_nArrayCount = block == nullptr ? 0 : number;
    store<void*>(block);
    m_eStoreKind = block == nullptr ? NoStorage : NumberStorage;
}

void CFCVariableData::setValue(int count, char const* const* values) {
    int const number = values == nullptr || count < 0 ? 0 : count;
    char** block = nullptr;
    if (number != 0) {
        block = static_cast<char**>(TuMalloc(static_cast<std::size_t>(number) * sizeof(char*), __FILE__, __LINE__));
    }
    if (block != nullptr) {
        for (int index = 0; index < number; ++index) {
            block[index] = TuStrDup(values[index], __FILE__, __LINE__);
        }
    }
    // Unlike the numeric forms, whatever the array flag says.
    releaseOldStorage();
    m_eDataType = EDataType_String;
    m_bArray = 1;
    store<void*>(block);
    if (block != nullptr) {
        m_nArrayCount = number;
        m_eStoreKind = TextStorage;
        m_nStoredTexts = number;
    }
}

void CFCVariableData::setValue(int count, double const* values) {
    storeArray(EDataType_Double, count, values);
}

void CFCVariableData::setValue(int count, float const* values) {
    storeArray(EDataType_Float, count, values);
}

void CFCVariableData::setValue(int count, int const* values) {
    storeArray(EDataType_Int, count, values);
}

void CFCVariableData::setValue(char const* value) {
    TuString const copy(value);
    m_eDataType = EDataType_String;
    m_strValue = copy;
}

void CFCVariableData::setValue(double value) {
    m_eDataType = EDataType_Double;
    store(value);
}

void CFCVariableData::setValue(float value) {
    m_eDataType = EDataType_Float;
    store(value);
}

void CFCVariableData::setValue(int value) {
    m_eDataType = EDataType_Int;
    store(value);
}

void CFCVariableData::setParent(void* parent) {
    store(parent);
}

int CFCVariableData::getIntValue() {
    return m_eDataType == EDataType_Int ? stored<int>() : -1;
}

float CFCVariableData::getFloatValue() {
    return m_eDataType == EDataType_Float ? stored<float>() : -1.0F;
}

double CFCVariableData::getDoubleValue() {
    return m_eDataType == EDataType_Double ? stored<double>() : -1.0;
}

char const* CFCVariableData::getStringValue() {
    return m_eDataType == EDataType_String ? m_strValue.GetAnsiBuffer() : nullptr;
}

template <typename T>
int CFCVariableData::arrayOf(EDataType type, T*& values) {
    values = nullptr;
    if (m_bArray == 0 && m_eDataType != type) {
        return 0;
    }
    values = stored<T*>();
    return m_nArrayCount;
}

int CFCVariableData::getIntArrayValue(int*& values) {
    return arrayOf(EDataType_Int, values);
}

int CFCVariableData::getFloatArrayValue(float*& values) {
    return arrayOf(EDataType_Float, values);
}

int CFCVariableData::getDoubleArrayValue(double*& values) {
    return arrayOf(EDataType_Double, values);
}

int CFCVariableData::getStringArrayValue(char**& values) {
    return arrayOf(EDataType_String, values);
}

int CFCVariableData::getArrayFlag() {
    return m_bArray;
}

int CFCVariableData::getArrayCount() {
    return m_bArray == 1 ? m_nArrayCount : 0;
}

EDataType CFCVariableData::getType() {
    return m_eDataType;
}

int CFCVariableData::GetImage() {
    switch (m_eDataType) {
    case EDataType_Int:
        return 8;
    case EDataType_Double:
        return 9;
    case EDataType_String:
        return 10;
    default:
        // Float shares the image of all that is left.
        return m_eDataType >= kFirstArrayType && m_eDataType < kUnnamedType ? 11 : 7;
    }
}

bool CFCVariableData::IsVariable() {
    return true;
}

void CFCVariableData::ReleaseOwnedParts() {
    if (m_bShared) {
        return;
    }
    if (m_bOwnDataTypeNode) {
        std::unique_ptr<CFCDataTypeNode>(m_pDataTypeNode).reset();
        m_pDataTypeNode = nullptr;
        m_bOwnDataTypeNode = false;
    }
    if (m_bOwnFileTypeNode) {
        std::unique_ptr<CFCFileTypeNode>(m_pFileTypeNode).reset();
        m_pFileTypeNode = nullptr;
        m_bOwnFileTypeNode = false;
    }
    if (m_eStoreKind != NoStorage) {
        freeStorage();
        store<void*>(nullptr);
        m_nArrayCount = 0;
    }
}

// --- Identity -------------------------------------------------------------------------------------

void CFCVariableData::nameWillChange() {
    ++flowmere::linkEpoch;
    if (m_nNameIndex != 0) {
        flowmere::VariableNameIndex::nameChanges(m_nNameIndex);
    }
}

void CFCVariableData::SetNext(IFCNode* node) {
    if (m_nNameIndex != 0) {
        flowmere::VariableNameIndex::successorChanges(m_nNameIndex, this);
    }
    CFCNode::SetNext(node);
}

void CFCVariableData::RemoveLinks() {
    nameWillChange();
    CFCNode::RemoveLinks();
}

void CFCVariableData::SetCaption(wchar_t const* caption) {
    m_strCaption = caption;
}

wchar_t const* CFCVariableData::GetVariableName() {
    if (!m_bGroup) {
        return m_strVariableName;
    }
    return m_bGroupHeader ? static_cast<wchar_t const*>(m_strGroupName) : L"";
}

void CFCVariableData::SetVariableName(wchar_t const* name) {
    nameWillChange();
    m_strVariableName = name;
}

IFCNode* CFCVariableData::GetNode() {
    return this;
}

wchar_t const* CFCVariableData::GetPath() {
    return L"";
}

bool CFCVariableData::VerifyHandle() {
    return true;
}

void CFCVariableData::SetGroup(bool group) {
    nameWillChange();
    m_bGroup = group;
}

void CFCVariableData::SetGroupHeader(bool header) {
    nameWillChange();
    m_bGroupHeader = header;
}

void CFCVariableData::SetGroupName(wchar_t const* name) {
    nameWillChange();
    m_strGroupName = name;
}

// --- Type and enumerations --------------------------------------------------------------------------

void CFCVariableData::SetDataType(wchar_t const* name) {
    setByName(name, m_eDataType);
}

wchar_t const* CFCVariableData::GetDataTypeS() {
    static TuString text;
    text = CFCEnumTranslator::EnumToString(m_eDataType);
    return text;
}

void CFCVariableData::SetStatusType(wchar_t const* name) {
    setByName(name, m_eStatusType);
}

wchar_t const* CFCVariableData::GetStatusTypeS() {
    static TuString text;
    text = CFCEnumTranslator::EnumToString(m_eStatusType);
    return text;
}

void CFCVariableData::SetConnectionType(wchar_t const* name) {
    setByName(name, m_eConnectionType);
}

wchar_t const* CFCVariableData::GetConnectionTypeS() {
    static TuString text;
    text = CFCEnumTranslator::EnumToString(m_eConnectionType);
    return text;
}

void CFCVariableData::SetScopeType(wchar_t const* name) {
    setByName(name, m_eScopeType);
}

wchar_t const* CFCVariableData::GetScopeTypeS() {
    static TuString text;
    text = CFCEnumTranslator::EnumToString(m_eScopeType);
    return text;
}

bool CFCVariableData::IsArray() {
    if (m_eDataType >= kFirstArrayType && m_eDataType != kUnnamedType) {
        return true;
    }
    return m_bArray != 0;
}

wchar_t const* CFCVariableData::IsArrayS() {
    static TuString text;
    text = IsArray() ? L"Yes" : L"No";
    return text;
}

void CFCVariableData::SetArray(wchar_t const* yesOrNo) {
    m_bArray = TuString(yesOrNo).CompareNoCase(L"yes") == 0 ? 1 : 0;
}

wchar_t const* CFCVariableData::GetType() {
    if (m_eDataType >= 0 && m_eDataType < kUnnamedType) {
        m_strType = kClassTexts[static_cast<std::size_t>(m_eDataType)];
    }
    return m_strType;
}

void CFCVariableData::SetType(wchar_t const* type) {
    m_strType = type;
}

void CFCVariableData::SetEntityType(wchar_t const* type) {
    m_strEntityType = type;
}

void CFCVariableData::SetNature(wchar_t const* nature) {
    m_strNature = nature;
}

void CFCVariableData::SetResolveEvent(wchar_t const* event) {
    m_strResolveEvent = event;
}

void CFCVariableData::SetDataTypeNode(CFCDataTypeNode* node) {
    m_bOwnDataTypeNode = m_bOwnDataTypeNode && node == m_pDataTypeNode;
    m_pDataTypeNode = node;
}

void CFCVariableData::SetFileTypeNode(CFCFileTypeNode* node) {
    m_bOwnFileTypeNode = m_bOwnFileTypeNode && node == m_pFileTypeNode;
    m_pFileTypeNode = node;
}

// --- Options ----------------------------------------------------------------------------------------

int CFCVariableData::GetOptionCount() {
    return m_aOptions.GetCount();
}

wchar_t const* CFCVariableData::GetOption(int index) {
    static TuString text;
    if (index >= 0 && index < m_aOptions.GetCount()) {
        text = m_aOptions.GetAt(index);
    } else {
        text.Empty();
    }
    return text;
}

bool CFCVariableData::AddOption(wchar_t const* option) {
    m_aOptions.Add(TuString(option));
    return true;
}

bool CFCVariableData::SetOption(wchar_t const*, int) {
    return true;
}

bool CFCVariableData::DeleteAllOption() {
    // A fresh array gives the storage back as well.
    m_aOptions = TuTemplateArray<TuString>();
    return true;
}

// --- Value and literal ------------------------------------------------------------------------------

void CFCVariableData::SetValue(wchar_t const* value) {
    m_strValue = value;
}

void CFCVariableData::UpdateValue() {
    switch (m_eDataType) {
    case EDataType_Int:
        store(TuStrToIntW(m_strValue));
        break;
    case EDataType_Float:
        store(TuStrToFloatW(m_strValue));
        break;
    case EDataType_Double:
        // Parsed as a float on purpose: the digits behind its precision are given up.
        store(static_cast<double>(TuStrToFloatW(m_strValue)));
        break;
    default:
        break;
    }
}

wchar_t const* CFCVariableData::SetDefaultyArrayCode() {
    if (m_strValue.IsEmpty()) {
        m_strDefaultCode = L"[]";
    } else if (m_strValue.GetAt(0) == L'[') {
        m_strDefaultCode = m_strValue;
    } else {
        m_strDefaultCode = L"[" + m_strValue + L"]";
    }
    return m_strDefaultCode;
}

void CFCVariableData::setTextCode() {
    wchar_t const first = m_strValue.GetAt(0);
    if (m_strValue.IsEmpty()) {
        m_strDefaultCode = L"r\"\"";
    } else if (first == L'\'' || first == L'"') {
        m_strDefaultCode = m_strValue;
    } else {
        m_strDefaultCode = L"r\"" + m_strValue + L"\"";
    }
}

void CFCVariableData::setObjectCode(wchar_t const* constructor) {
    m_strValue.Remove(L'"');
    m_strValue.Remove(L'\'');
    m_strValue.TrimLeft();
    m_strValue.TrimRight();
    m_strDefaultCode = TuString(constructor) + L"(' " + m_strValue + L"')";
}

wchar_t const* CFCVariableData::GetDefaultValue() {
    m_strDefaultCode.Empty();
    TuString const type(m_pDataTypeNode == nullptr ? L"" : m_pDataTypeNode->GetType());
    bool const isList = m_bArray != 0;
    if (type == L"Table") {
        SetDefaultyArrayCode();
    }
    if (type == L"Int") {
        m_eDataType = EDataType_Int;
        if (isList) {
            SetDefaultyArrayCode();
        } else {
            m_strDefaultCode.Format(L"%ld", static_cast<long>(getIntValue()));
        }
    }
    if (type == L"Double") {
        m_eDataType = EDataType_Double;
        if (isList) {
            SetDefaultyArrayCode();
        } else {
            m_strDefaultCode.Format(L"%0.2lf", getDoubleValue());
        }
    }
    if (type == L"Float") {
        m_eDataType = EDataType_Float;
        if (isList) {
            SetDefaultyArrayCode();
        } else {
            m_strDefaultCode.Format(L"%0.2lf", static_cast<double>(getFloatValue()));
        }
    }
    if (type == L"String" || type == L"File" || type == L"Directory") {
        if (isList) {
            SetDefaultyArrayCode();
        } else {
            setTextCode();
        }
    }
    if (type == L"TarnObject") {
        setObjectCode(isList ? L"Kelso.TarnObjectList" : L"Kelso.TarnObject");
    }
    if (type == L"Matrix") {
        // The one object type without a list form.
        setObjectCode(L"Kelso.Matrix");
    }
    if (type == L"Point2") {
        setObjectCode(isList ? L"Kelso.Point2List" : L"Kelso.Point2");
    }
    if (type == L"Point3") {
        setObjectCode(isList ? L"Kelso.Point3List" : L"Kelso.Point3");
    }
    if (m_strDefaultCode.IsEmpty()) {
        m_strDefaultCode = kEmptyLiteral;
    }
    return m_strDefaultCode;
}

wchar_t const* CFCVariableData::GetDefaultValue(bool) {
    m_strDefaultCode = L"0";
    switch (m_eDataType) {
    case EDataType_Int:
        m_strDefaultCode.Format(L"%ld", static_cast<long>(getIntValue()));
        break;
    case EDataType_Float:
        m_strDefaultCode.Format(L"%0.2lf", static_cast<double>(getFloatValue()));
        break;
    case EDataType_Double:
        m_strDefaultCode.Format(L"%0.2lf", getDoubleValue());
        break;
    case EDataType_String:
    case EDataType_File:
    case EDataType_Directory:
        setTextCode();
        break;
    case EDataType_TarnObject:
        setObjectCode(L"Kelso.TarnObject");
        break;
    case EDataType_Point2:
        setObjectCode(L"Kelso.Point2");
        break;
    case EDataType_Point3:
        setObjectCode(L"Kelso.Point3");
        break;
    case EDataType_Matrix:
        setObjectCode(L"Kelso.Matrix");
        break;
    case EDataType_IntArray:
    case EDataType_FloatArray:
    case EDataType_DoubleArray:
    case EDataType_StringArray:
    case EDataType_FileArray:
    case EDataType_DirectoryArray:
        SetDefaultyArrayCode();
        break;
    case EDataType_TarnObjectArray:
        setObjectCode(L"Kelso.TarnObjectList");
        break;
    case EDataType_Point2Array:
        setObjectCode(L"Kelso.Point2List");
        break;
    case EDataType_Point3Array:
        setObjectCode(L"Kelso.Point3List");
        break;
    default:
        break;
    }
    return m_strDefaultCode;
}

// --- Comparing and copying --------------------------------------------------------------------------

bool CFCVariableData::IsEqual(CFCVariableData* other) {
    return other != nullptr && m_bArray == other->m_bArray && m_eConnectionType == other->m_eConnectionType &&
           m_eDataType == other->m_eDataType && m_eStatusType == other->m_eStatusType &&
           m_eScopeType == other->m_eScopeType && (m_strValue == other->m_strValue) != 0;
}

void CFCVariableData::Copy(CFCVariableData* source, CFCVariableData* target) {
    if (source == nullptr || target == nullptr) {
        return;
    }
    target->m_eDataType = source->m_eDataType;
    target->m_eStatusType = source->m_eStatusType;
    target->m_eScopeType = source->m_eScopeType;
    target->m_bVisible = source->m_bVisible;
    target->m_strValue = source->m_strValue;
    target->SetVariableName(source->GetVariableName());
    target->m_eConnectionType = source->m_eConnectionType;
    target->m_bTemplateVariable = source->IsTemplateVariable() ? 1 : 0;
    target->m_strLinkPath = source->m_strLinkPath;
    ++flowmere::linkEpoch;
    target->m_bDeployed = source->m_bDeployed;
    target->m_bEditable = source->m_bEditable;
    target->m_strNature = source->m_strNature;
    target->m_bArray = source->m_bArray;
    target->m_bFileType = source->m_bFileType;
    target->m_strCaption = source->m_strCaption;
    target->m_bReference = source->m_bReference;
    target->m_bStoreDB = source->m_bStoreDB;
    CFCDataTypeNode::Copy(source->m_pDataTypeNode, target->m_pDataTypeNode);
    CFCFileTypeNode::Copy(source->m_pFileTypeNode, target->m_pFileTypeNode);
}

void CFCVariableData::CopyFrom(CFCVariableData* source) {
    Copy(source, this);
}

CFCVariableData* CFCVariableData::CloneVariable() {
    try {
        auto clone = std::make_unique<CFCVariableData>();
        // The nodes of a clone have no node type, unlike those of any other variable.
        std::unique_ptr<CFCDataTypeNode> dataType(newDataTypeNode());
        std::unique_ptr<CFCFileTypeNode> fileType(newFileTypeNode());
        if (dataType != nullptr) {
            dataType.reset(std::exchange(clone->m_pDataTypeNode, dataType.release()));
            clone->m_bOwnDataTypeNode = true;
        }
        if (fileType != nullptr) {
            fileType.reset(std::exchange(clone->m_pFileTypeNode, fileType.release()));
            clone->m_bOwnFileTypeNode = true;
        }
        Copy(this, clone.get());
        return clone.release();
    } catch (std::bad_alloc const&) {
        return nullptr;
    }
}

// --- Links of one variable --------------------------------------------------------------------------

void CFCVariableData::SetLinkPath(wchar_t const* path) {
    m_strLinkPath = path;
    ++flowmere::linkEpoch;
}

bool CFCVariableData::IsLinked() {
    return m_pLinkedVariable != nullptr || !m_strLinkPath.IsEmpty();
}

void CFCVariableData::setLinked(CFCVariableData* target) {
    // With a path the variable is linked in any case.
    if (m_strLinkPath.IsEmpty() && (m_pLinkedVariable == nullptr) != (target == nullptr)) {
        ++flowmere::linkEpoch;
    }
    m_pLinkedVariable = target;
    m_nLinkedTargetHandle = target == nullptr ? 0 : target->GetNodeHandle();
}

void CFCVariableData::setFinal(CFCVariableData* target) {
    m_pFinalVariable = target;
    m_nFinalTargetHandle = target == nullptr ? 0 : target->GetNodeHandle();
}

void CFCVariableData::LinkVariable(CFCVariableData* target) {
    setLinked(target);
    m_nLinkedVariableHandle = m_nLinkedTargetHandle;
}

void CFCVariableData::AddVariablePrefix(wchar_t const* prefix) {
    TuString const front(prefix);
    if (!front.IsEmpty() && !m_strLinkPath.IsEmpty()) {
        m_strLinkPath = front + m_strLinkPath;
        ++flowmere::linkEpoch;
    }
}

void CFCVariableData::SetPath() {
    IFCNode* const owner = GetParentNode();
    TuString path(owner == nullptr ? L"" : owner->GetNodePath());
    if (path.IsEmpty() && m_bTemplateVariable != 0) {
        path = L"Template";
    }
    m_strPath = path + L"." + GetVariableName();
}

wchar_t const* CFCVariableData::GetBlockVariablePath() {
    SetPath();
    return m_strPath;
}

bool CFCVariableData::IsProcessVariable() {
    IFCNode* const owner = GetParentNode();
    return m_bTemplateVariable == 0 && owner != nullptr && owner->GetParentNode() == nullptr;
}

wchar_t const* CFCVariableData::GetJSONString() {
    m_strJSON = FCVariableJSONTemplate;
    if (m_pDataTypeNode != nullptr && m_pDataTypeNode->IsOrrinType() && !m_strValue.IsEmpty()) {
        // The value of such a type is JSON itself and stands without quotes.
        m_strJSON.Replace(L"'\"'$Value'\"'", m_strValue);
    } else {
        m_strJSON.Replace(L"$Value", m_strValue);
    }
    // The order counts: a value may hold the names of later steps.
    m_strJSON.Replace(L"$Type", m_strType);
    m_strJSON.Replace(L"$VarFiles", L"");
    m_strJSON.Replace(L"$DataType", m_pDataTypeNode == nullptr ? L"" : m_pDataTypeNode->GetType());
    m_strJSON.Replace(L"$LinkPath", m_strLinkPath);
    m_strJSON.Replace(L"$Type", m_strType);
    m_strJSON.Replace(L"$Status", GetStatusTypeS());
    m_strJSON.Replace(L"$Nature", m_strNature);
    TuString number;
    number.Format(L"%d", m_nJobAppVarID);
    m_strJSON.Replace(L"$VarID", number);
    m_strJSON.Replace(L"$Name", m_strVariableName);
    m_strJSON.Replace(L"'\"'", L"\"");
    return m_strJSON;
}
