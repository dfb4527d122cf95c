#include "host/workflow/Notes.h"

#include <string_view>

namespace flowmere::host {

bool isScriptEvent(CFCActionData& action) {
    return std::wstring_view(action.GetActionName()) == L"action" &&
           std::wstring_view(action.GetClassNameStr()) == L"com.Mossgate.jBPM.Extensions.JythonHandler" &&
           std::wstring_view(action.GetActionType()) == L"task-start" &&
           std::wstring_view(action.GetActionFunction()).empty();
}

} // namespace flowmere::host
