#include "flowmere/execution/TCommandGui.h"

#include <cstring>

TCommandGui::TCommandGui(char const* commandName) : m_pCommandName(commandName != nullptr ? commandName : "") {}

TCommandGui::~TCommandGui() = default;

int TCommandGui::CreateWithoutGUI() {
    return 0;
}
_TCmdResTable* TCommandGui::GetResourceInfoFromId(int) {
    return nullptr;
}
_TCmdResTable const* TCommandGui::GetConstResourceInfoFromId(int) const {
    return nullptr;
}
int TCommandGui::Activate(int, char const*) {
    return 0;
}
int TCommandGui::SetValues(int, std::vector<TuString> const&) {
    return 0;
}
int TCommandGui::SetValues(int, std::vector<_TgPoint3Str> const&) {
    return 0;
}
int TCommandGui::SetValues(int, std::vector<_TgPoint2Str> const&) {
    return 0;
}
int TCommandGui::SetValues(int, std::vector<double> const&) {
    return 0;
}
int TCommandGui::SetValues(int, std::vector<float> const&) {
    return 0;
}
int TCommandGui::SetValues(int, std::vector<int> const&) {
    return 0;
}
int TCommandGui::SetValues(int, void const*, int) {
    return 0;
}
int TCommandGui::SetValues(char const*, char const*, void const*, int) {
    return 0;
}
int TCommandGui::ActivateChild(void*, char const*) {
    return 0;
}
int TCommandGui::ActivateAsChild(int, char const*) {
    return 0;
}
int TCommandGui::ExecuteCommand(int, void const*) {
    return 0;
}
int TCommandGui::ExecuteCommand(char const*, void const*) {
    return 0;
}
int TCommandGui::Reconstruct(int) {
    return 0;
}
int TCommandGui::GetValues(int, std::vector<TuString>**) {
    return 0;
}
int TCommandGui::GetValues(int, std::vector<_TgPoint3Str>**) {
    return 0;
}
int TCommandGui::GetValues(int, std::vector<_TgPoint2Str>**) {
    return 0;
}
int TCommandGui::GetValues(int, std::vector<double>**) {
    return 0;
}
int TCommandGui::GetValues(int, std::vector<float>**) {
    return 0;
}
int TCommandGui::GetValues(int, std::vector<int>**) {
    return 0;
}
int TCommandGui::GetValues(int, void*, int*) {
    return 0;
}
int TCommandGui::GetValues(char const*, void*, int*) {
    return 0;
}
int TCommandGui::Cancel() {
    return 0;
}
int TCommandGui::Accept() {
    return 0;
}
int TCommandGui::Undo() {
    return 0;
}
int TCommandGui::Quit() {
    return 0;
}
int TCommandGui::GuiAnyEvent() {
    return 0;
}
int TCommandGui::UpdateGui() {
    return 0;
}
int TCommandGui::Build(TDbs*) {
    return 0;
}
int TCommandGui::OnClientCmdEvent(int, void*) {
    return 0;
}

int TCommandGui::TCmdGetResourceId(char const* name) {
    if (name == nullptr || m_pResTable == nullptr)
        return -1;
    for (int index = 0; index < m_nResCount; ++index) {
        if (m_pResTable[index].name != nullptr && std::strcmp(m_pResTable[index].name, name) == 0)
            return m_pResTable[index].id;
    }
    return -1;
}
