// TCommandGui: the command framework class that a host brings; this form keeps no values.
#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/foundation/TuTypes.h"

#include <vector>

class TDbs;

// A resource of the framework's table, known by number and by UTF-8 name.
struct _TCmdResTable {
    int id;
    char const* name;
};

// Base of every object that the command language reaches. All operations answer 0 here, lookups
// null, and a resource name that is not in the table -1.
class FLOWMERE_API TCommandGui {
public:
    explicit TCommandGui(char const* commandName = "");
    TCommandGui(TCommandGui const&) = default;
    TCommandGui& operator=(TCommandGui const&) = default;

    virtual ~TCommandGui();
    virtual int CreateWithoutGUI();
    virtual _TCmdResTable* GetResourceInfoFromId(int id);
    virtual _TCmdResTable const* GetConstResourceInfoFromId(int id) const;
    virtual int Activate(int mode, char const* name);
    virtual int SetValues(int id, std::vector<TuString> const& values);
    virtual int SetValues(int id, std::vector<_TgPoint3Str> const& values);
    virtual int SetValues(int id, std::vector<_TgPoint2Str> const& values);
    virtual int SetValues(int id, std::vector<double> const& values);
    virtual int SetValues(int id, std::vector<float> const& values);
    virtual int SetValues(int id, std::vector<int> const& values);
    virtual int SetValues(int id, void const* value, int count);
    virtual int SetValues(char const* name, char const* type, void const* value, int count);
    virtual int ActivateChild(void* child, char const* name);
    virtual int ActivateAsChild(int mode, char const* name);
    virtual int ExecuteCommand(int id, void const* argument);
    virtual int ExecuteCommand(char const* name, void const* argument);
    virtual int Reconstruct(int mode);
    virtual int GetValues(int id, std::vector<TuString>** values);
    virtual int GetValues(int id, std::vector<_TgPoint3Str>** values);
    virtual int GetValues(int id, std::vector<_TgPoint2Str>** values);
    virtual int GetValues(int id, std::vector<double>** values);
    virtual int GetValues(int id, std::vector<float>** values);
    virtual int GetValues(int id, std::vector<int>** values);
    virtual int GetValues(int id, void* value, int* count);
    virtual int GetValues(char const* name, void* value, int* count);
    virtual int Cancel();
    virtual int Accept();
    virtual int Undo();
    virtual int Quit();
    virtual int GuiAnyEvent();
    virtual int UpdateGui();
    virtual int Build(TDbs* database);
    virtual int OnClientCmdEvent(int event, void* data);

    // Id of the resource of that name; -1 for a miss and for null.
    int TCmdGetResourceId(char const* name);

protected:
    _TCmdResTable* m_pResTable = nullptr; // not owned
    int m_nResCount = 0;
    char const* m_pCommandName = ""; // outlives the object
    bool m_bActivated = false;
};
