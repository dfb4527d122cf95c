#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"

#include <map>

class CFCBaseContainer;
class CFCDataTypeNode;
class CFCMimeTypeNode;
class CFCNodeFactory;
class CFCPackageNode;
class CFCProcessList;
class IFCNode;

// Every reader and writer as one static call each: for hosts that need nothing but the result. A call makes the object,
// wires it, calls the operation that its own name ends in and gives the result of that; what null, empty and unreadable
// arguments come to, who owns what, and what a reader found besides stand with the class that the name begins with.
// Nothing is kept between calls, and exceptions of the host's own factory and container pass through.
class FLOWMERE_API FCUtility {
public:
    // Process documents. The calls with a container tell it of each node.
    static bool CFCReader_Parse(CFCNodeFactory& factory, wchar_t const* path, IFCNode** node, int maxDepth);
    static bool CFCReader_ParseContainer(CFCNodeFactory& factory, CFCBaseContainer* container, wchar_t const* path,
                                         IFCNode** node, int maxDepth);
    // Does not tell whether it could read the file.
    static void CFCReader_LoadFileNode(CFCNodeFactory& factory, wchar_t const* path, IFCNode* node, bool flag);
    static bool CFCWriter_WriteFile(wchar_t const* path, IFCNode* node, bool deep);
    // `errors` is replaced by the texts of the dead links met, so by the empty text when there are none, and also when
    // the result is false.
    static bool CFCWriter_WriteFileGetVariableErrors(wchar_t const* path, IFCNode* node, bool deep, TuString& errors);
    static void CFCWriter_LoadAndFormatXML(wchar_t const* path);

    // Process lists.
    static bool CFCProcessListReader_Parse(CFCNodeFactory& factory, wchar_t const* path, CFCProcessList* list,
                                           wchar_t const* baseDirectory);
    // `bpmList` tells that the list is one of workflow processes; the file is the same either way.
    static bool CFCProcessListWriter_WriteFile(wchar_t const* path, IFCNode* node, bool deep, bool writeAll,
                                               bool bpmList);

    // Catalogs.
    static CFCDataTypeNode* CFCDataTypeListReader_GetDataTypeRootNode();
    static void CFCDataTypeListReader_RefreshDataTypes();
    static bool CFCFileTypeListWriter_WriteFile(wchar_t const* path, IFCNode* node, bool deep);
    static bool CFCMimeTypeReader_Parse(CFCNodeFactory& factory, wchar_t const* path, CFCMimeTypeNode* list);

    // Hints and help.
    static bool CFCHintsReader_Parse(wchar_t const* path);
    static std::map<int, TuString>& CFCHintsReader_BlockHints();
    static std::map<int, TuString>& CFCHintsReader_ActionHints();
    static bool CFCAPIHelpReader_Parse(CFCNodeFactory& factory, wchar_t const* path, CFCProcessList* list);

    // Manifests and favourites.
    static bool CFCManifestReader_Parse(CFCNodeFactory& factory, wchar_t const* path, CFCPackageNode** package);
    static bool CFCManifestWriter_WriteFile(wchar_t const* path, IFCNode* node, bool deep);
    static bool CFCFavouriteReader_Parse(CFCNodeFactory& factory, wchar_t const* path, IFCNode** node);
    static bool CFCFavouriteWriter_WriteFile(wchar_t const* path, IFCNode* node, bool deep);

    // Workflow folders and schedules.
    static bool CFCProcessDefinitionReader_Parse(CFCNodeFactory& factory, wchar_t const* path, IFCNode** node,
                                                 int maxDepth);
    static bool CFCProcessDefinitionReader_ParseContainer(CFCNodeFactory& factory, CFCBaseContainer* container,
                                                          wchar_t const* path, IFCNode** node, int maxDepth);
    static bool CFCProcessDefinitionReader_LoadFileNode(CFCNodeFactory& factory, wchar_t const* path, IFCNode* node);
    static bool CFCProcessDefinitionWriter_WriteFile(wchar_t const* path, IFCNode* node, bool deep);
    static bool CFCWorkFlowWriter_WriteFile(wchar_t const* path, IFCNode* tasks, IFCNode* applications);
    static bool CFCMSPReader_ParseContainer(CFCNodeFactory& factory, CFCBaseContainer* container, wchar_t const* path,
                                            IFCNode** node, int flags);
};
