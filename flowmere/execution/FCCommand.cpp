#include "flowmere/execution/FCCommand.h"

#include "flowmere/execution/FCExecutionMechanism.h"
#include "flowmere/foundation/Encoding.h"
#include "flowmere/foundation/TuConsole.h"
#include "flowmere/foundation/TuMemory.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>

namespace {

CFCCommand* currentCommand = nullptr;

struct ResourceRow {
    int id;
    char const* name;
    int type;
    char const* description;
};

constexpr ResourceRow kResources[] = {
    {51, "Project Name", 5, "Project Name To be Executed"},
    {52, "Project Template File", 5, "Project Template XML file"},
    {53, "Project Directory", 5, "Project Execution Directory"},
    {54, "Executing Block", 5, "The block being Executed"},
    {55, "Selected Block", 5, "Selected block for which skip/stop to be set"},
    {56, "Variable Data", 11, "Variable Data of current executing Block"},
};

struct CommandRow {
    int id;
    char const* name;
    char const* description;
    int argumentCount;
    char const* arguments[2];
};

constexpr CommandRow kCommands[] = {
    {0, "Create Project", "Creates a new project", 2, {"Project Template File", "Project Directory"}},
    {1, "Open Project", "Opens saved project", 0, {}},
    {2, "Close Project", "Close current project", 0, {}},
    {3, "Save Project", "Saves project", 1, {"Project Directory"}},
    {4, "Save Project As", "Saves the project As", 1, {"Project Directory"}},
    {5, "Save Iteration Data", "Saves Iteration data", 1, {"Project Directory"}},
    {6, "Execute Block", "Executes given block", 1, {"Executing Block"}},
    {7, "Undo Block", "Undoes the execution of given block", 1, {"Executing Block"}},
    {8, "Execution Begin", "Starts the execution of block", 0, {}},
    {9, "Execution Step", "Steps the execution", 0, {}},
    {10, "Execution Undo", "Undo the execution till previous break", 0, {}},
    {11, "Execution Undo Step", "Undo one step of execution", 0, {}},
    {12, "Continue Execution", "Continue Execution of block", 0, {}},
    {13, "Stop At", "Stops the execution at given block", 1, {"Selected Block"}},
    {14, "Skip Block", "Skips the execution at given block", 1, {"Selected Block"}},
    {15, "Clear Stop At", "Clears the stop of a given block", 1, {"Selected Block"}},
    {16, "Clear Skip Block", "Clears the skip of a given block", 1, {"Selected Block"}},
    {17, "Clear All Stop", "Clears all blocks stop status", 0, {}},
    {18, "Clear All Skip", "Clears all blocks skip status", 0, {}},
    {19, "Expand Block", "Expands the given sub process block", 0, {}},
    {20, "Auto Execute", "Sets the execution to Auto Mode(non interactive)", 0, {}},
    {21, "Set Variable Data", "Sets the variable data to current Executing Block", 1, {"Executing Block"}},
    {22, "Extract Variable Data", "Extracts the variable data to current Executing Block", 1, {"Executing Block"}},
    {23, "Set Break", "Sets Breakpoints", 0, {"Selected Block"}},
    {24, "Clear Break", "Clears Breakpoints", 0, {"Selected Block"}},
    {25, "Clear All Break", "Clears all Breakpoints", 0, {}},
};

constexpr int kResourceCount = static_cast<int>(std::size(kResources));
constexpr int kCommandCount = static_cast<int>(std::size(kCommands));
static_assert(kResourceCount == 6 && kCommandCount == 26);

constexpr char kCommandNotFound[] = "Command Not Found\n";
constexpr char kResourcesNotFound[] = "Resources Not Found\n";
constexpr char kValueNotSet[] = "Value not set\n";
constexpr char kUnknownDataType[] = "Unknown Data Type\n";
constexpr char kResourceNotFound[] = "Resource not found\n";

TuString localized(char const* message) {
    return TuString(TuLocalizeStringExW(TuString(message), 0));
}

int compareNames(char const* left, char const* right) {
    int const order = std::strcmp(left, right);
    return order < 0 ? -1 : (order > 0 ? 1 : 0);
}

template <typename Record>
Record* allocate(int count) {
    return static_cast<Record*>(TuMalloc(sizeof(Record) * static_cast<std::size_t>(count), __FILE__, __LINE__, 0));
}

_CFCResourceTable* makeResources() {
    auto* const table = allocate<_CFCResourceTable>(kResourceCount);
    for (int index = 0; index < kResourceCount; ++index) {
        ResourceRow const& row = kResources[index];
        table[index] = _CFCResourceTable{row.id, row.name, row.type, row.description, false, 0, {}, false};
    }
    std::qsort(table, static_cast<std::size_t>(kResourceCount), sizeof(*table), CFCCommand::compareResName);
    return table;
}

_CFCCommandTable* makeCommands() {
    auto* const table = allocate<_CFCCommandTable>(kCommandCount);
    for (int index = 0; index < kCommandCount; ++index) {
        CommandRow const& row = kCommands[index];
        table[index] = _CFCCommandTable{row.id, row.name, row.description, row.argumentCount, {}};
        std::copy(std::begin(row.arguments), std::end(row.arguments), table[index].arguments);
    }
    std::qsort(table, static_cast<std::size_t>(kCommandCount), sizeof(*table), CFCCommand::compareCommandName);
    return table;
}

void* storedPointer(_CFCResourceTable const& resource) {
    void* pointer = nullptr;
    std::memcpy(&pointer, resource.value, sizeof(pointer));
    return pointer;
}

void freeText(_CFCResourceTable& resource) {
    if (resource.ownsText)
        TuFree(storedPointer(resource), __FILE__, __LINE__);
    resource.ownsText = false;
}

void storePointer(_CFCResourceTable& resource, void const* pointer) {
    // The record's own text may come back as a pointer; it stays the record's.
    if (resource.ownsText && storedPointer(resource) == pointer)
        return;
    freeText(resource);
    std::memcpy(resource.value, &pointer, sizeof(pointer));
}

// A form that is copied into the value area, with the type code that the record takes.
struct ValueForm {
    std::string_view type;
    int code;
    std::size_t size;
};

constexpr ValueForm kValueForms[] = {
    {"int", 1, sizeof(std::int32_t)},  {"float", 2, sizeof(std::int32_t)}, {"point3", 6, 3 * sizeof(double)},
    {"point2", 7, 2 * sizeof(double)}, {"matrix", 8, 16 * sizeof(double)},
};

// Stores one value by the name of its type; an unknown type changes nothing.
void storeValue(_CFCResourceTable& resource, std::string_view type, void const* value) {
    bool const isPointer = type == "object" || type == "pointer" || type == "command";
    if (isPointer || type == "hashtable") {
        storePointer(resource, value);
        if (!isPointer)
            resource.type = 11;
    } else if (value == nullptr) {
        return;
    } else if (type == "string") {
        char* const text = TuStrDup(static_cast<char const*>(value), __FILE__, __LINE__);
        storePointer(resource, text);
        resource.ownsText = true;
        resource.type = 5;
    } else if (type == "double") {
        // Double resources carry whole numbers in this layer.
        std::int32_t whole = 0;
        std::memcpy(&whole, value, sizeof(whole));
        double const wide = whole;
        freeText(resource);
        std::memcpy(resource.value, &wide, sizeof(wide));
        resource.type = 3;
    } else {
        ValueForm const* const form = std::find_if(std::begin(kValueForms), std::end(kValueForms),
                                                   [&](ValueForm const& candidate) { return candidate.type == type; });
        if (form == std::end(kValueForms))
            return;
        // The value may lie in the record itself: in its text, or in its value area.
        std::array<unsigned char, sizeof(resource.value)> copy{};
        std::memcpy(copy.data(), value, form->size);
        freeText(resource);
        std::memcpy(resource.value, copy.data(), form->size);
        resource.type = form->code;
    }
    resource.arrayCount = 0;
    resource.isSet = true;
}

} // namespace

CFCCommand::CFCCommand()
    : TCommandGui("ProcessCommand"), resources(makeResources()), commands(makeCommands()),
      resourceCount(kResourceCount), commandCount(kCommandCount) {
    currentCommand = this;
}

CFCCommand::CFCCommand(CFCCommand const& other) = default;
CFCCommand& CFCCommand::operator=(CFCCommand const& other) = default;

CFCCommand::~CFCCommand() {
    if (currentCommand == this)
        currentCommand = nullptr;
}

CFCCommand* activateFlowmereCommand() {
    if (currentCommand == nullptr) {
        CFCCommand* const command = new CFCCommand;
        command->m_bActivated = true;
        command->Activate(1, "ProcessExecutive.ProcessInterface");
    }
    return currentCommand;
}

_TCmdResTable* CFCCommand::GetResourceInfoFromId(int) {
    return m_pResTable;
}

int CFCCommand::Activate(int mode, char const* name) {
    return TCommandGui::Activate(mode, name);
}

int CFCCommand::SetValues(int id, void const* value, int count) {
    return TCommandGui::SetValues(id, value, count);
}

int CFCCommand::SetValues(char const* name, char const* type, void const* value, int count) {
    _CFCResourceTable* const resource = getResourceFromName(name);
    if (resource == nullptr) {
        errorText = localized(kResourceNotFound);
        return -1;
    }
    if (count != 0) {
        storePointer(*resource, value);
        resource->arrayCount = count;
        resource->isSet = true;
    } else {
        storeValue(*resource, type != nullptr ? type : "", value);
    }
    TCommandGui::SetValues(name, type, value, count);
    return 0;
}

int CFCCommand::ExecuteCommand(int, void const*) {
    return -1;
}

int CFCCommand::ExecuteCommand(char const* name, void const*) {
    _CFCCommandTable key{};
    key.name = name != nullptr ? name : "";
    auto* const command = static_cast<_CFCCommandTable*>(
        std::bsearch(&key, commands, static_cast<std::size_t>(commandCount), sizeof(*commands), compareCommandName));
    if (command == nullptr) {
        errorText = localized(kCommandNotFound);
        RaiseException(errorText);
        return -1;
    }
    if (!validateInput(command))
        return -1;
    if (mechanism == nullptr)
        return 0;
    switch (command->id) {
    case 8:
        mechanism->onBegin();
        break;
    case 9:
        mechanism->onStep();
        break;
    case 10:
        mechanism->onUndo();
        break;
    case 11:
        mechanism->onUndoStep();
        break;
    case 12:
        mechanism->onContinue();
        break;
    default:
        break;
    }
    return 0;
}

int CFCCommand::Reconstruct(int mode) {
    return TCommandGui::Reconstruct(mode);
}

int CFCCommand::GetValues(int id, void* value, int* count) {
    return TCommandGui::GetValues(id, value, count);
}

int CFCCommand::GetValues(char const* name, void* value, int* count) {
    if (name != nullptr && std::strcmp(name, "Error") == 0) {
        wchar_t const* const text = errorText;
        if (value != nullptr)
            std::memcpy(value, &text, sizeof(text));
        return 0;
    }
    _CFCResourceTable* const resource = getResourceFromName(name);
    if (resource == nullptr) {
        errorText = localized(kResourcesNotFound);
        RaiseException(errorText);
        return -1;
    }
    if (!resource->isSet) {
        errorText = localized(kValueNotSet);
        RaiseException(errorText);
        return -1;
    }
    auto const give = [value](void const* source, std::size_t size) {
        if (value != nullptr)
            std::memcpy(value, source, size);
    };
    if (resource->arrayCount != 0) {
        give(resource->value, sizeof(void*));
        if (count != nullptr)
            *count = resource->arrayCount;
        return 0;
    }
    switch (resource->type) {
    case 1:
    case 2:
        give(resource->value, 4);
        return 0;
    case 3:
    case 5:
    case 9:
    case 10:
    case 11:
    case 12:
        give(resource->value, 8);
        return 0;
    case 4:
        return 0;
    case 6:
    case 7:
    case 8: {
        void const* const area = resource->value;
        give(&area, sizeof(area));
        return 0;
    }
    default:
        errorText = localized(kUnknownDataType);
        RaiseException(errorText);
        return -1;
    }
}

int CFCCommand::Cancel() {
    return TCommandGui::Cancel();
}

int CFCCommand::Accept() {
    return TCommandGui::Accept();
}

int CFCCommand::Undo() {
    return TCommandGui::Undo();
}

int CFCCommand::Quit() {
    return TCommandGui::Quit();
}

int CFCCommand::GuiAnyEvent() {
    return TCommandGui::GuiAnyEvent();
}

int CFCCommand::UpdateGui() {
    return TCommandGui::UpdateGui();
}

void CFCCommand::RaiseException(wchar_t const* text) {
    // The message may be errorText itself, which the first call below overwrites.
    std::string const message = flowmere::toUtf8(TuString(text));
    int const status = 0;
    SetValues("Status", "int", &status, 0);
    SetValues("ErrorString", "string", message.c_str(), 0);
}

bool CFCCommand::validateInput(_CFCCommandTable* command) {
    foundCount = 0;
    if (command == nullptr)
        return false;
    bool allKnown = true;
    int const count = std::min(command->argumentCount, static_cast<int>(std::size(command->arguments)));
    for (int index = 0; index < count; ++index) {
        _CFCResourceTable* const resource = getResourceFromName(command->arguments[index]);
        if (resource == nullptr)
            allKnown = false;
        else if (resource->isSet && foundCount < static_cast<int>(std::size(foundResources)))
            foundResources[foundCount++] = resource;
    }
    return allKnown;
}

_CFCResourceTable* CFCCommand::getResourceFromName(char const* name) {
    if (name == nullptr)
        return nullptr;
    _CFCResourceTable key{};
    key.name = name;
    return static_cast<_CFCResourceTable*>(
        std::bsearch(&key, resources, static_cast<std::size_t>(resourceCount), sizeof(*resources), compareResName));
}

_TCmdResTable* CFCCommand::TCmdGetResInfoFromId(int id, _TCmdResTable* table) {
    _TCmdResTable* const records = table != nullptr ? table : m_pResTable;
    if (records == nullptr)
        return nullptr;
    for (int index = 0; index < m_nResCount; ++index) {
        if (records[index].id == id)
            return &records[index];
    }
    return nullptr;
}

int CFCCommand::TCmdGetResourceId(char const* name) {
    if (name != nullptr && m_pResTable != nullptr) {
        for (int index = 0; index < m_nResCount; ++index) {
            if (m_pResTable[index].name != nullptr && std::strcmp(m_pResTable[index].name, name) == 0)
                return m_pResTable[index].id;
        }
    }
    return TCommandGui::TCmdGetResourceId(name);
}

int CFCCommand::compareCommandName(void const* left, void const* right) {
    return compareNames(static_cast<_CFCCommandTable const*>(left)->name,
                        static_cast<_CFCCommandTable const*>(right)->name);
}

int CFCCommand::compareResName(void const* left, void const* right) {
    return compareNames(static_cast<_CFCResourceTable const*>(left)->name,
                        static_cast<_CFCResourceTable const*>(right)->name);
}
