#include "flowmere/execution/FCScriptWriter.h"

#include "flowmere/execution/ScriptTemplates.h"
#include "flowmere/foundation/Encoding.h"
#include "flowmere/foundation/Paths.h"
#include "flowmere/model/FCBlockData.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/FCVariableList.h"

#include <fstream>
#include <ostream>
#include <string>

namespace {

std::ofstream openForOutput(TuString const& path) {
    return std::ofstream(flowmere::systemPath(path), std::ios::out | std::ios::trunc);
}

// The accessor templates by data type; the array flag chooses between the two of a row.
struct AccessorRow {
    wchar_t const* scalar;
    wchar_t const* array;
};

AccessorRow accessorsOf(int dataType) {
    using namespace flowmere;
    switch (dataType) {
    case 0:
    case 1:
    case 2:
    case 10:
    case 11:
    case 12:
        return {kNumberAccessors, kArrayAccessors};
    case 3:
    case 8:
    case 9:
    case 13:
    case 17:
    case 18:
        return {kStringAccessors, kArrayAccessors};
    case 4:
    case 5:
    case 6:
    case 7:
    case 14:
    case 15:
    case 16:
        return {kObjectAccessors, kObjectListAccessors};
    default:
        return {nullptr, nullptr};
    }
}

} // namespace

CFCScriptWriter::~CFCScriptWriter() = default;

void CFCScriptWriter::SetNode(IFCNode* node) {
    m_pNode = node;
    if (node == nullptr)
        return;
    m_strClassName = node->GetNodeId();
    m_pBlockData = node->GetFCBlockData();
    if (m_pBlockData != nullptr)
        m_pVariableList = m_pBlockData->GetVariableList();
}

bool CFCScriptWriter::IsValid() const {
    return m_pBlockData != nullptr && m_pVariableList != nullptr;
}

void CFCScriptWriter::SetFolderName(wchar_t const* folder) {
    m_strFolder = folder;
    m_strSubFile = m_strFolder + L"\\" + m_strClassName + L"Block" + L".py";
    m_strMainFile = m_strFolder + L"\\" + m_strClassName + L".py";
    m_strInitFile = m_strFolder + L"\\" + L"__init__.py";
}

void CFCScriptWriter::SetMainFileName(wchar_t const* path) {
    m_strMainFile = path;
}

void CFCScriptWriter::SetSubFileName(wchar_t const* path) {
    m_strSubFile = path;
}

void CFCScriptWriter::SetUserCode(wchar_t const* text) {
    m_strUserCode = text;
}

void CFCScriptWriter::SetModalType(eModalRequired value) {
    m_eModalType = value;
}

void CFCScriptWriter::GenerateAllFiles(bool flag) {
    if (!IsValid())
        return;
    GenerateMainFile();
    GenerateSubFile(flag);
    GenerateInitFile();
}

void CFCScriptWriter::GenerateMainFile() {
    if (!IsValid())
        return;
    std::ofstream stream = openForOutput(m_strMainFile);
    InsertLines(stream, flowmere::kMainTemplate);
    if (!m_strUserCode.IsEmpty())
        stream << flowmere::toUtf8(m_strUserCode);
    if (m_eModalType == eModalPreModel)
        InsertLines(stream, flowmere::kPreModelState);
    else if (m_eModalType == eModalResultModel)
        InsertLines(stream, flowmere::kResultModelState);
}

void CFCScriptWriter::GenerateSubFile(bool flag) {
    if (!IsValid())
        return;
    std::ofstream stream = openForOutput(m_strSubFile);
    InsertLines(stream, flowmere::kSubTemplate);
    InsertLine(stream, L"    def InitVariables(self):", true);
    InsertLine(stream, L"        import Kelso         ", true);
    InsertVariableList(stream, 1, flag);
    InsertLine(stream, L"        return", true);
    InsertVariableList(stream, 2, flag);
    InsertLine(stream, L"    def GetVariables(self):", true);
    InsertVariableList(stream, 3, flag);
    InsertLine(stream, L"        return", true);
    InsertLine(stream, L"    def UpdateVariables(self):", true);
    InsertVariableList(stream, 4, flag);
    InsertLine(stream, L"        return", true);
}

void CFCScriptWriter::GenerateInitFile() {
    if (!IsValid())
        return;
    openForOutput(m_strInitFile);
}

void CFCScriptWriter::InsertLine(std::ostream& stream, wchar_t const* text, bool newLine) {
    TuString line(text);
    if (line.Find(L"$$", 0) >= 0) {
        line.Replace(L"$$class$$", m_strClassName);
        line.Replace(L"$$varname$$", m_strVarName);
        line.Replace(L"$$default$$", m_strDefault);
        line.Replace(L"$$datatype$$", m_strDataType);
    }
    stream << flowmere::toUtf8(line);
    if (newLine)
        stream << '\n';
}

void CFCScriptWriter::InsertLines(std::ostream& stream, wchar_t const* text) {
    if (text == nullptr)
        return;
    std::wstring piece;
    for (; *text != L'\0'; ++text) {
        if (*text != L'\n') {
            piece += *text;
            continue;
        }
        InsertLine(stream, piece.c_str(), true);
        piece.clear();
    }
    if (!piece.empty())
        InsertLine(stream, piece.c_str(), false);
}

bool CFCScriptWriter::InsertVariableList(std::ostream& stream, int mode, bool) {
    if (m_pVariableList == nullptr)
        return false;
    for (__FCPOSITION* position = m_pVariableList->GetHeadPosition(); position != nullptr;) {
        CFCVariableData* variable = m_pVariableList->GetNext(position);
        if (variable == nullptr || TuString(variable->GetVariableName()).IsEmpty())
            continue;
        SetCurrentVariable(variable);
        if (wchar_t const* text = ChooseText(mode, variable->GetDataType()))
            InsertLines(stream, text);
    }
    return true;
}

void CFCScriptWriter::SetCurrentVariable(CFCVariableData* variable) {
    m_strVarName = variable->GetVariableName();
    m_strDefault = variable->GetDefaultValue(true);
    m_strDataType = variable->GetDataTypeS();
    m_bIsArray = 0;
    if (m_strDataType.Find(L"Array", 0) > 0)
        m_bIsArray = 1;
    if (variable->IsArray())
        m_bIsArray = 1;
}

wchar_t const* CFCScriptWriter::ChooseText(int mode, int dataType) const {
    bool const isList = dataType >= 14 && dataType <= 16;
    bool const isKnown = dataType >= 0 && dataType <= 18;
    switch (mode) {
    case 1:
        if (!isKnown)
            return nullptr;
        return isList ? L"        cnt,self.$$varname$$ =  $$default$$  \n"
                      : L"        self.$$varname$$ =  $$default$$  \n";
    case 2: {
        AccessorRow const row = accessorsOf(dataType);
        return m_bIsArray != 0 ? row.array : row.scalar;
    }
    case 3:
        return isList ? L"        cnt,self.$$varname$$ = self.get$$varname$$()\n"
                      : L"        self.$$varname$$ = self.get$$varname$$()\n";
    case 4:
        return L"        self.set$$varname$$(self.$$varname$$)\n";
    default:
        return nullptr;
    }
}
