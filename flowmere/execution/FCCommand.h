// CFCCommand: the named commands and resources of the process execution.
#pragma once

#include "flowmere/Export.h"
#include "flowmere/execution/FCExecutive.h"
#include "flowmere/execution/TCommandGui.h"
#include "flowmere/foundation/TuString.h"

class FCExecutionMechanism;

// One resource: a typed value under a UTF-8 name.
struct _CFCResourceTable {
    int id;
    char const* name;
    int type;
    char const* description;
    bool isSet;
    int arrayCount;
    alignas(8) unsigned char value[128]; // by value, or the pointer to a text or an array
    bool ownsText;                       // the pointer in value is a copy of this record
};

// One command and the names of the resources that it takes.
struct _CFCCommandTable {
    int id;
    char const* name;
    char const* description;
    int argumentCount;
    char const* arguments[50];
};

// The singleton of the command interface, and what keeps the executive alive. A class derived from
// this one and built before the first activateFlowmereCommand() is the singleton; it hooks each
// started block in ExecuteCommand("Execute Block"). Never destroyed before the process ends. All
// 8-bit texts are UTF-8; names regard case. Results are 0 and -1, with the message under "Error".
class FLOWMERE_API CFCCommand : public TCommandGui {
public:
    CFCCommand();
    // Copies share the two tables and look at the same process without owning it.
    CFCCommand(CFCCommand const& other);
    CFCCommand& operator=(CFCCommand const& other);
    // Destroys the executive; the two tables stay.
    ~CFCCommand() override;

    using TCommandGui::ExecuteCommand;
    using TCommandGui::GetValues;
    using TCommandGui::SetValues;

    // The framework's table, whatever the id.
    _TCmdResTable* GetResourceInfoFromId(int id) override;
    int Activate(int mode, char const* name) override;
    int SetValues(int id, void const* value, int count) override;
    // Stores a value: one of the named type for count 0, else the pointer to an array of count
    // elements. "int", "float" and the points and the matrix are copied, a "string" is duplicated,
    // and "double" is read as a 32-bit int. -1 for an unknown resource; an unknown type changes
    // nothing.
    int SetValues(char const* name, char const* type, void const* value, int count) override;
    // -1: commands go by name.
    int ExecuteCommand(int id, void const* argument) override;
    // Runs a command. -1 for an unknown name or one whose resource does not exist; the execution
    // commands answer 0 whatever the mechanism said. The argument is not used.
    int ExecuteCommand(char const* name, void const* argument) override;
    int Reconstruct(int mode) override;
    int GetValues(int id, void* value, int* count) override;
    // Gives a resource's value: 32 or 64 bits into *value, a pointer into the record for points and
    // matrix, the stored pointer and the count for an array. "Error" gives the last message as a
    // wide text that lives until the next failure.
    int GetValues(char const* name, void* value, int* count) override;
    int Cancel() override;
    int Accept() override;
    int Undo() override;
    int Quit() override;
    int GuiAnyEvent() override;
    int UpdateGui() override;

    // Reports a message to the resources "Status" and "ErrorString", where a derived class has them.
    void RaiseException(wchar_t const* text);
    // Collects the resources of the command that have a value; false when a name is unknown.
    bool validateInput(_CFCCommandTable* command);
    // The resource of that name; null for a miss.
    _CFCResourceTable* getResourceFromName(char const* name);
    // The record of that id in the given table, or in the framework's for null; null for a miss.
    _TCmdResTable* TCmdGetResInfoFromId(int id, _TCmdResTable* table);
    // Id of the framework's resource of that name; -1 for a miss.
    int TCmdGetResourceId(char const* name);
    static int compareCommandName(void const* left, void const* right);
    static int compareResName(void const* left, void const* right);

    // What the five execution commands drive; not owned, null makes them do nothing.
    void setExecutionMechanism(FCExecutionMechanism* value) { mechanism = value; }
    FCExecutionMechanism* getExecutionMechanism() const { return mechanism; }

protected:
    friend FLOWMERE_API CFCCommand* activateFlowmereCommand();

    FCExecutionMechanism* mechanism = nullptr;
    CFCExecutive executive;
    _CFCResourceTable* resources = nullptr;
    _CFCCommandTable* commands = nullptr;
    int resourceCount = 0;
    int commandCount = 0;
    TuString errorText;
    _CFCResourceTable* foundResources[25] = {};
    int foundCount = 0;
};

// The one command object, made and registered on first use.
FLOWMERE_API CFCCommand* activateFlowmereCommand();
