#include "flowmere/persistence/FCUtility.h"

#include "flowmere/persistence/FCAPIHelpReader.h"
#include "flowmere/persistence/FCDataTypeListReader.h"
#include "flowmere/persistence/FCFavouriteReader.h"
#include "flowmere/persistence/FCFavouriteWriter.h"
#include "flowmere/persistence/FCFileTypeListWriter.h"
#include "flowmere/persistence/FCHintsReader.h"
#include "flowmere/persistence/FCManifestReader.h"
#include "flowmere/persistence/FCManifestWriter.h"
#include "flowmere/persistence/FCMimeTypeReader.h"
#include "flowmere/persistence/FCProcessListReader.h"
#include "flowmere/persistence/FCProcessListWriter.h"
#include "flowmere/persistence/FCReader.h"
#include "flowmere/persistence/FCWriter.h"
#include "flowmere/workflow/FCMSPReader.h"
#include "flowmere/workflow/FCProcessDefinitionReader.h"
#include "flowmere/workflow/FCProcessDefinitionWriter.h"
#include "flowmere/workflow/FCWorkFlowWriter.h"

// --- Process documents -------------------------------------------------------------------------------------------

bool FCUtility::CFCReader_Parse(CFCNodeFactory& factory, wchar_t const* path, IFCNode** node, int maxDepth) {
    CFCReader reader;
    reader.SetNodeFactory(&factory);
    return reader.Parse(path, node, maxDepth);
}

bool FCUtility::CFCReader_ParseContainer(CFCNodeFactory& factory, CFCBaseContainer* container, wchar_t const* path,
                                         IFCNode** node, int maxDepth) {
    CFCReader reader;
    reader.SetNodeFactory(&factory);
    reader.SetContainer(container);
    return reader.Parse(path, node, maxDepth);
}

void FCUtility::CFCReader_LoadFileNode(CFCNodeFactory& factory, wchar_t const* path, IFCNode* node, bool flag) {
    CFCReader reader;
    reader.SetNodeFactory(&factory);
    reader.LoadFileNode(path, node, flag);
}

bool FCUtility::CFCWriter_WriteFile(wchar_t const* path, IFCNode* node, bool deep) {
    CFCWriter writer;
    return writer.WriteFile(path, node, deep);
}

bool FCUtility::CFCWriter_WriteFileGetVariableErrors(wchar_t const* path, IFCNode* node, bool deep, TuString& errors) {
    CFCWriter writer;
    bool const isWritten = writer.WriteFile(path, node, deep);
    errors = writer.GetVariableErrors();
    return isWritten;
}

void FCUtility::CFCWriter_LoadAndFormatXML(wchar_t const* path) {
    CFCWriter::LoadAndFormatXML(path);
}

// --- Process lists -----------------------------------------------------------------------------------------------

bool FCUtility::CFCProcessListReader_Parse(CFCNodeFactory& factory, wchar_t const* path, CFCProcessList* list,
                                           wchar_t const* baseDirectory) {
    CFCProcessListReader reader;
    reader.SetNodeFactory(&factory);
    return reader.Parse(path, list, baseDirectory);
}

bool FCUtility::CFCProcessListWriter_WriteFile(wchar_t const* path, IFCNode* node, bool deep, bool writeAll,
                                               bool bpmList) {
    CFCProcessListWriter writer;
    writer.m_bBPMList = bpmList;
    return writer.WriteFile(path, node, deep, writeAll);
}

// --- Catalogs ----------------------------------------------------------------------------------------------------

CFCDataTypeNode* FCUtility::CFCDataTypeListReader_GetDataTypeRootNode() {
    return CFCDataTypeListReader::GetDataTypeRootNode();
}

void FCUtility::CFCDataTypeListReader_RefreshDataTypes() {
    CFCDataTypeListReader::RefreshDataTypes();
}

bool FCUtility::CFCFileTypeListWriter_WriteFile(wchar_t const* path, IFCNode* node, bool deep) {
    CFCFileTypeListWriter writer;
    return writer.WriteFile(path, node, deep);
}

bool FCUtility::CFCMimeTypeReader_Parse(CFCNodeFactory& factory, wchar_t const* path, CFCMimeTypeNode* list) {
    CFCMimeTypeReader reader;
    reader.SetNodeFactory(&factory);
    return reader.Parse(path, list);
}

// --- Hints and help ----------------------------------------------------------------------------------------------

bool FCUtility::CFCHintsReader_Parse(wchar_t const* path) {
    CFCHintsReader reader;
    return reader.Parse(path);
}

std::map<int, TuString>& FCUtility::CFCHintsReader_BlockHints() {
    return CFCHintsReader::BlockHints();
}

std::map<int, TuString>& FCUtility::CFCHintsReader_ActionHints() {
    return CFCHintsReader::ActionHints();
}

bool FCUtility::CFCAPIHelpReader_Parse(CFCNodeFactory& factory, wchar_t const* path, CFCProcessList* list) {
    CFCAPIHelpReader reader;
    reader.SetNodeFactory(&factory);
    return reader.Parse(path, list);
}

// --- Manifests and favourites ------------------------------------------------------------------------------------

bool FCUtility::CFCManifestReader_Parse(CFCNodeFactory& factory, wchar_t const* path, CFCPackageNode** package) {
    CFCManifestReader reader;
    reader.SetNodeFactory(&factory);
    return reader.Parse(path, package);
}

bool FCUtility::CFCManifestWriter_WriteFile(wchar_t const* path, IFCNode* node, bool deep) {
    CFCManifestWriter writer;
    return writer.WriteFile(path, node, deep);
}

bool FCUtility::CFCFavouriteReader_Parse(CFCNodeFactory& factory, wchar_t const* path, IFCNode** node) {
    CFCFavouriteReader reader;
    reader.SetNodeFactory(&factory);
    return reader.Parse(path, node);
}

bool FCUtility::CFCFavouriteWriter_WriteFile(wchar_t const* path, IFCNode* node, bool deep) {
    CFCFavouriteWriter writer;
    return writer.WriteFile(path, node, deep);
}

// --- Workflow folders and schedules ------------------------------------------------------------------------------

bool FCUtility::CFCProcessDefinitionReader_Parse(CFCNodeFactory& factory, wchar_t const* path, IFCNode** node,
                                                 int maxDepth) {
    CFCProcessDefinitionReader reader;
    reader.SetNodeFactory(&factory);
    return reader.Parse(path, node, maxDepth);
}

bool FCUtility::CFCProcessDefinitionReader_ParseContainer(CFCNodeFactory& factory, CFCBaseContainer* container,
                                                          wchar_t const* path, IFCNode** node, int maxDepth) {
    CFCProcessDefinitionReader reader;
    reader.SetContainer(container);
    reader.SetNodeFactory(&factory);
    return reader.Parse(path, node, maxDepth);
}

bool FCUtility::CFCProcessDefinitionReader_LoadFileNode(CFCNodeFactory& factory, wchar_t const* path, IFCNode* node) {
    CFCProcessDefinitionReader reader;
    reader.SetNodeFactory(&factory);
    return reader.LoadFileNode(path, node);
}

bool FCUtility::CFCProcessDefinitionWriter_WriteFile(wchar_t const* path, IFCNode* node, bool deep) {
    CFCProcessDefinitionWriter writer;
    return writer.WriteFile(path, node, deep);
}

bool FCUtility::CFCWorkFlowWriter_WriteFile(wchar_t const* path, IFCNode* tasks, IFCNode* applications) {
    CFCWorkFlowWriter writer;
    return writer.WriteFile(path, tasks, applications);
}

bool FCUtility::CFCMSPReader_ParseContainer(CFCNodeFactory& factory, CFCBaseContainer* container, wchar_t const* path,
                                            IFCNode** node, int flags) {
    CFCMSPReader reader;
    reader.SetNodeFactory(&factory);
    reader.SetContainer(container);
    return reader.Parse(path, node, flags);
}
