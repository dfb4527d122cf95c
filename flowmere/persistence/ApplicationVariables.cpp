// The operation of CFCApplicationNode that reads the catalog of data types.

#include "flowmere/model/FCApplicationNode.h"
#include "flowmere/model/FCEnumTranslator.h"
#include "flowmere/model/FCVariableData.h"

void CFCApplicationNode::CreateDefaultVariables() {
    struct Row {
        wchar_t const* name;
        wchar_t const* typeCaption;
        wchar_t const* nature;
    };
    static constexpr Row kDefaults[] = {
        {L"WorkingDirectory", L"Directory", L"Deployment"}, {L"TaskInstanceId", L"Task InstanceId", L"System"},
        {L"OrrinUser", L"Orrin User", L"System"},           {L"OrrinPassword", L"Orrin Password", L"System"},
        {L"OrrinServer", L"Orrin Server", L"System"},
    };
    for (Row const& row : kDefaults) {
        CFCVariableData* const variable = CreateNewVariable();
        if (variable == nullptr) {
            continue;
        }
        variable->UpdateToDataTypes(row.typeCaption);
        variable->SetVariableName(row.name);
        // The name of a status stands in the type here; the status itself keeps its default.
        variable->SetType(CFCEnumTranslator::EnumToString(EStatusType_Input));
        variable->SetScopeType(EScopeType_Local);
        variable->SetNature(row.nature);
    }
}
