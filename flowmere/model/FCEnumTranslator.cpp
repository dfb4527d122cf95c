#include "flowmere/model/FCEnumTranslator.h"

#include "flowmere/foundation/Immortal.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace {

// The names as files store them, in order of value: never change or reorder them.

constexpr std::array kDataTypes{L"Int",         L"Float",       L"Double",      L"String",        L"TarnObject",
                                L"Point2",      L"Point3",      L"Matrix",      L"File",          L"Directory",
                                L"IntArray",    L"FloatArray",  L"DoubleArray", L"StringArray",   L"TarnObjectArray",
                                L"Point2Array", L"Point3Array", L"FileArray",   L"DirectoryArray"};
static_assert(kDataTypes.size() == EDataType_DirectoryArray + 1);

constexpr std::array kScopeTypes{L"Local",  L"Parent",  L"Connected", L"Template",
                                 L"Global", L"Private", L"Public",    L"Resolve"};
static_assert(kScopeTypes.size() == EScopeType_Resolve + 1);

constexpr std::array kNatureTypes{L"Application", L"Deployment", L"Task", L"Setup", L"System"};
static_assert(kNatureTypes.size() == ENatureType_System + 1);

constexpr std::array kExecutionStateTypes{L"ESNone",  L"Pending", L"Start",     L"Executing",       L"Executed",
                                          L"Skipped", L"Failed",  L"Cancelled", L"WaitForResource", L"Stop"};
static_assert(kExecutionStateTypes.size() == EExecutionStateType_Stop + 1);

constexpr std::array kProjectTypes{L"BPT",     L"TASK",  L"MSP",         L"Report",
                                   L"Execute", L"Debug", L"APPLICATION", L"PROCESSLST"};
static_assert(kProjectTypes.size() == EProjectType_None);

constexpr std::array kStatusTypes{L"Input", L"Output", L"In-and-Output"};
static_assert(kStatusTypes.size() == EStatusType_InAndOutput + 1);

constexpr std::array kConnectionTypes{L"Local", L"Parent", L"Connected", L"Template"};
static_assert(kConnectionTypes.size() == EConnectionType_Template + 1);

constexpr std::array kScriptTypes{L"PYTHON", L"PYTHON_CMD", L"TCMD", L"TCMD_V2", L"JAVA"};
static_assert(kScriptTypes.size() == EScriptType_JAVA + 1);

constexpr std::array kTreeTypes{L"TreeGeneric", L"ProcessList", L"ProcessLibrary", L"Process"};
static_assert(kTreeTypes.size() == ETreeType_Process + 1);

constexpr std::array kGridTypes{L"None", L"BPR", L"Application", L"Task", L"Macro", L"Template", L"All"};
static_assert(kGridTypes.size() == EGridType_All + 1);

constexpr std::array kNodeTypes{L"SimpleNone",         L"RootNode",       L"ImageNode", L"FileProcessNode",
                                L"FileSubProcessNode", L"SubProcessNode", L"BlockNode", L"VariableNode"};
static_assert(kNodeTypes.size() == EFCNodeType_VariableNode + 1);

constexpr std::array kTabTypes{L"Show Python Console Tab", L"Show Watch Tab",       L"Show TODO Tab",
                               L"Show CallStack Tab",      L"Show BreakPoint Tab",  L"Show FileSystem Tab",
                               L"Show CurrentProject Tab", L"Show Library Tab",     L"Show External Launcher",
                               L"Show Code Library",       L"Show Application Tab", L"Show Process list Tab"};
static_assert(kTabTypes.size() == EFCTabType_ProcessList + 1);

constexpr std::array kReleaseInfos{L"Version",        L"Build",      L"Release Date",
                                   L"Release Number", L"Patch File", L"Installation Location"};
static_assert(kReleaseInfos.size() == EReleaseInfo_InstallationLocation + 1);

constexpr std::array kEntityTypes{L"Primitive", L"OrrinEntity"};
static_assert(kEntityTypes.size() == EEntityType_OrrinEntity + 1);

// The sides of a block, by port index.
constexpr std::array kPortHandles{L"Top", L"Right", L"Bottom", L"Left"};
// The middle grip of each side.
constexpr std::array kMiddleGrips{EPortHandle_TopMiddle, EPortHandle_RightMiddle, EPortHandle_BottomMiddle,
                                  EPortHandle_LeftMiddle};
static_assert(kPortHandles.size() == kMiddleGrips.size());

struct Names {
    TuTemplateArray<TuString> array;
    CFCStringMap map;

    template <std::size_t Count>
    void fill(std::array<wchar_t const*, Count> const& names) {
        array.RemoveAll();
        for (wchar_t const* const name : names) {
            array.Add(name);
        }
    }
};

struct Translations {
    Names dataType;
    Names scopeType;
    Names natureType;
    Names executionStateType;
    Names projectType;
    Names statusType;
    Names connectionType;
    Names scriptType;
    Names treeType;
    Names gridType;
    Names nodeType;
    Names tabType;
    Names releaseInfo;
    Names entityType;
    Names portHandle;
    bool filled = false;
    TuString text; // result of EnumToString
};

// Never destroyed: host objects may translate to the very end of the process.
Translations& translations() {
    static flowmere::Immortal<Translations> s_translations;
    return *s_translations;
}

template <typename Enumeration>
bool lookUp(Names const& names, wchar_t const* text, Enumeration& value) {
    int index = 0;
    if (!names.map.Lookup(text, index)) {
        return false;
    }
    value = static_cast<Enumeration>(index);
    return true;
}

bool findName(TuTemplateArray<TuString> const& names, std::wstring_view name, int& index) {
    int const count = names.GetCount();
    for (int i = 0; i < count; ++i) {
        if (names[i].View() == name) {
            index = i;
            return true;
        }
    }
    return false;
}

TuTemplateArray<TuString>& filled(Names& names) {
    CFCEnumTranslator::SetArrays();
    return names.array;
}

} // namespace

CFCStringMap::~CFCStringMap() = default;

bool CFCStringMap::Lookup(TuString const& name, int& index) const {
    return m_pNames != nullptr && findName(*m_pNames, name.View(), index);
}

bool CFCStringMap::Lookup(wchar_t const* name, int& index) const {
    return m_pNames != nullptr && name != nullptr && findName(*m_pNames, name, index);
}

CFCEnumTranslator::~CFCEnumTranslator() = default;

wchar_t const* CFCEnumTranslator::EnumToString(EConnectionType value) {
    return EnumToString(translations().connectionType.array, value);
}

wchar_t const* CFCEnumTranslator::EnumToString(EDataType value) {
    return EnumToString(translations().dataType.array, value);
}

wchar_t const* CFCEnumTranslator::EnumToString(EEntityType value) {
    return EnumToString(translations().entityType.array, value);
}

wchar_t const* CFCEnumTranslator::EnumToString(EExecutionStateType value) {
    return EnumToString(translations().executionStateType.array, value);
}

wchar_t const* CFCEnumTranslator::EnumToString(EFCNodeType value) {
    return EnumToString(translations().nodeType.array, value);
}

wchar_t const* CFCEnumTranslator::EnumToString(EFCTabType value) {
    return EnumToString(translations().tabType.array, value);
}

wchar_t const* CFCEnumTranslator::EnumToString(EGridType value) {
    return EnumToString(translations().gridType.array, value);
}

wchar_t const* CFCEnumTranslator::EnumToString(ENatureType value) {
    return EnumToString(translations().natureType.array, value);
}

wchar_t const* CFCEnumTranslator::EnumToString(EPortHandle value) {
    return EnumToString(translations().portHandle.array, value);
}

wchar_t const* CFCEnumTranslator::EnumToString(EProjectType value) {
    return EnumToString(translations().projectType.array, value);
}

wchar_t const* CFCEnumTranslator::EnumToString(EReleaseInfo value) {
    return EnumToString(translations().releaseInfo.array, value);
}

wchar_t const* CFCEnumTranslator::EnumToString(EScopeType value) {
    return EnumToString(translations().scopeType.array, value);
}

wchar_t const* CFCEnumTranslator::EnumToString(EScriptType value) {
    return EnumToString(translations().scriptType.array, value);
}

wchar_t const* CFCEnumTranslator::EnumToString(EStatusType value) {
    return EnumToString(translations().statusType.array, value);
}

wchar_t const* CFCEnumTranslator::EnumToString(ETreeType value) {
    return EnumToString(translations().treeType.array, value);
}

wchar_t const* CFCEnumTranslator::EnumToString(TuTemplateArray<TuString>& names, int index) {
    SetArrays();
    TuString& text = translations().text;
    text.Empty();
    if (index >= 0 && index < names.GetCount()) {
        text = names[index];
    }
    return text;
}

wchar_t const* CFCEnumTranslator::EnumToString2(int handle) {
    return EnumToString(translations().portHandle.array, GetIndex(static_cast<EPortHandle>(handle)));
}

bool CFCEnumTranslator::StringToEnum(wchar_t const* text, EConnectionType& value) {
    return lookUp(translations().connectionType, text, value);
}

bool CFCEnumTranslator::StringToEnum(wchar_t const* text, EDataType& value) {
    Names const& names = translations().dataType;
    if (names.array.IsEmpty()) {
        SetArrays();
    }
    return lookUp(names, text, value);
}

bool CFCEnumTranslator::StringToEnum(wchar_t const* text, EEntityType& value) {
    return lookUp(translations().entityType, text, value);
}

bool CFCEnumTranslator::StringToEnum(wchar_t const* text, EExecutionStateType& value) {
    return lookUp(translations().executionStateType, text, value);
}

bool CFCEnumTranslator::StringToEnum(wchar_t const* text, EFCNodeType& value) {
    return lookUp(translations().nodeType, text, value);
}

bool CFCEnumTranslator::StringToEnum(wchar_t const* text, EFCTabType& value) {
    return lookUp(translations().tabType, text, value);
}

bool CFCEnumTranslator::StringToEnum(wchar_t const* text, EGridType& value) {
    Names const& names = translations().gridType;
    if (names.array.IsEmpty()) {
        SetArrays();
    }
    return lookUp(names, text, value);
}

bool CFCEnumTranslator::StringToEnum(wchar_t const* text, ENatureType& value) {
    return lookUp(translations().natureType, text, value);
}

bool CFCEnumTranslator::StringToEnum(wchar_t const* text, EPortHandle& value) {
    int index = 0;
    if (!lookUp(translations().portHandle, text, index)) {
        return false;
    }
    value = FromIndex(index);
    return true;
}

bool CFCEnumTranslator::StringToEnum(wchar_t const* text, EProjectType& value) {
    Names const& names = translations().projectType;
    if (lookUp(names, text, value)) {
        return true;
    }
    SetArrays();
    return lookUp(names, text, value);
}

bool CFCEnumTranslator::StringToEnum(wchar_t const* text, EReleaseInfo& value) {
    return lookUp(translations().releaseInfo, text, value);
}

bool CFCEnumTranslator::StringToEnum(wchar_t const* text, EScopeType& value) {
    return lookUp(translations().scopeType, text, value);
}

bool CFCEnumTranslator::StringToEnum(wchar_t const* text, EScriptType& value) {
    return lookUp(translations().scriptType, text, value);
}

bool CFCEnumTranslator::StringToEnum(wchar_t const* text, EStatusType& value) {
    return lookUp(translations().statusType, text, value);
}

bool CFCEnumTranslator::StringToEnum(wchar_t const* text, ETreeType& value) {
    return lookUp(translations().treeType, text, value);
}

int CFCEnumTranslator::Find(CFCStringMap& map, TuString& name) {
    int index = -1;
    map.Lookup(name, index);
    return index;
}

int CFCEnumTranslator::Find(CFCStringMap& map, wchar_t const* name) {
    int index = -1;
    map.Lookup(name, index);
    return index;
}

void CFCEnumTranslator::CreateMap(CFCStringMap& map, TuTemplateArray<TuString>& names) {
    map.m_pNames = &names;
}

void CFCEnumTranslator::SetArrays() {
    Translations& all = translations();
    if (all.filled) {
        return;
    }
    all.dataType.fill(kDataTypes);
    all.scopeType.fill(kScopeTypes);
    all.natureType.fill(kNatureTypes);
    all.executionStateType.fill(kExecutionStateTypes);
    all.projectType.fill(kProjectTypes);
    all.statusType.fill(kStatusTypes);
    all.connectionType.fill(kConnectionTypes);
    all.scriptType.fill(kScriptTypes);
    all.treeType.fill(kTreeTypes);
    all.gridType.fill(kGridTypes);
    all.nodeType.fill(kNodeTypes);
    all.tabType.fill(kTabTypes);
    all.releaseInfo.fill(kReleaseInfos);
    all.entityType.fill(kEntityTypes);
    all.portHandle.fill(kPortHandles);
    // The names of tree rows are for showing only: no map, so nothing reads them back.
    for (Names* const names : {&all.dataType, &all.scopeType, &all.natureType, &all.executionStateType,
                               &all.projectType, &all.statusType, &all.connectionType, &all.scriptType, &all.treeType,
                               &all.gridType, &all.tabType, &all.releaseInfo, &all.entityType, &all.portHandle}) {
        CreateMap(names->map, names->array);
    }
    all.filled = true;
}

int CFCEnumTranslator::GetIndex(EPortHandle handle) {
    switch (handle) {
    case EPortHandle_TopRight:
    case EPortHandle_RightMiddle:
        return 1;
    case EPortHandle_BottomRight:
    case EPortHandle_BottomMiddle:
        return 2;
    case EPortHandle_BottomLeft:
    case EPortHandle_LeftMiddle:
        return 3;
    default:
        return 0;
    }
}

EPortHandle CFCEnumTranslator::FromIndex(int index) {
    if (index < 0 || static_cast<std::size_t>(index) >= kMiddleGrips.size()) {
        return EPortHandle_None;
    }
    return kMiddleGrips[static_cast<std::size_t>(index)];
}

TuTemplateArray<TuString>& CFCEnumTranslator::GetArrayConnectionType() {
    return filled(translations().connectionType);
}

TuTemplateArray<TuString>& CFCEnumTranslator::GetArrayDataType() {
    return filled(translations().dataType);
}

TuTemplateArray<TuString>& CFCEnumTranslator::GetArrayExecutionStateType() {
    return filled(translations().executionStateType);
}

TuTemplateArray<TuString>& CFCEnumTranslator::GetArrayNatureType() {
    return filled(translations().natureType);
}

TuTemplateArray<TuString>& CFCEnumTranslator::GetArrayNodeType() {
    return filled(translations().nodeType);
}

TuTemplateArray<TuString>& CFCEnumTranslator::GetArrayPortHandle() {
    return filled(translations().portHandle);
}

TuTemplateArray<TuString>& CFCEnumTranslator::GetArrayScopeType() {
    return filled(translations().scopeType);
}

TuTemplateArray<TuString>& CFCEnumTranslator::GetArrayScriptType() {
    return filled(translations().scriptType);
}

TuTemplateArray<TuString>& CFCEnumTranslator::GetArrayStatusType() {
    return filled(translations().statusType);
}

TuTemplateArray<TuString>& CFCEnumTranslator::GetArrayTreeType() {
    return filled(translations().treeType);
}

TuTemplateArray<TuString>& CFCEnumTranslator::GetTabNameArray() {
    return translations().tabType.array;
}
