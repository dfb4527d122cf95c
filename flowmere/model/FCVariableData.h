#pragma once

#include <cstdint>

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/foundation/TuTemplateArray.h"
#include "flowmere/model/FCEnumerations.h"
#include "flowmere/model/FCNode.h"

class CFCDataTypeNode;
class CFCFileTypeNode;
class CFCMarkObjects;

namespace flowmere {
class VariableNameIndex;
}

// One variable of a block, a process, an application or a deployment.
//
// The value is kept twice: as text, which files and generated scripts see, and as a typed machine
// value, which the embedding script layer sees. In place of a wire, a variable holds the dotted
// path of the variable that it reads.
//
// The node's parent is the owner of the variable; the owner's list holds it. Whoever makes a
// variable sets its node type.
//
// All text results point into the variable or into a static buffer; the caller copies what it
// keeps. All text setters copy, and take null as the empty text. Setters of an enumeration by name
// leave the field alone for null and for an unknown name.
class FLOWMERE_API CFCVariableData : public CFCNode {
public:
    // A local, editable Int variable with two catalog nodes of its own (node types 80 and 83).
    CFCVariableData();
    // A variable without catalog nodes: both catalog getters give null. The low eight bits of
    // `array` become the array flag.
    CFCVariableData(char const* name, int dataType, int scopeType, int array);
    // Copies share the link pointers, the catalog nodes and the array storage with their source.
    // A copy never frees any of these.
    CFCVariableData(CFCVariableData const& other);
    CFCVariableData& operator=(CFCVariableData const& other);
    // Frees the texts and the options only. Catalog nodes and array storage stay, because copies
    // may use them; see ReleaseOwnedParts.
    ~CFCVariableData() override;

    CFCVariableData* GetVariableData() override { return this; }
    bool IsHidden() override { return m_bHidden; }
    void HideNode(bool hide) override { m_bHidden = hide; }
    void Create() override {}

    // The typed store. It has plain C types and 8-bit texts in UTF-8.
    //
    // The array forms copy `count` elements, make the variable an array of Int, Float, Double or
    // String and free the storage that an earlier call of theirs made: the numeric forms only when
    // the array flag is 1, the text form always. A negative count or a null array is a count of 0.
    // A count of 0 stores a null pointer; the text form then leaves the old count standing.
    virtual void setValue(int count, char const* const* values);
    virtual void setValue(int count, double const* values);
    virtual void setValue(int count, float const* values);
    virtual void setValue(int count, int const* values);
    // The scalar forms set the data type and leave the array flag and earlier storage alone.
    virtual void setValue(char const* value);
    virtual void setValue(double value);
    virtual void setValue(float value);
    virtual void setValue(int value);
    // Stores a pointer over the typed store without touching type or flag.
    virtual void setParent(void* parent);
    // -1 when the data type is not Int.
    virtual int getIntValue();
    // -1.0 when the data type is not Float.
    virtual float getFloatValue();
    // -1.0 when the data type is not Double.
    virtual double getDoubleValue();
    // Null when the data type is not String; valid until the value changes.
    virtual char const* getStringValue();
    // The stored pointer goes out and the element count is the result. Only a scalar of another
    // type gives 0 and null; an array of another type goes out as raw memory. The storage stays
    // the variable's own.
    virtual int getIntArrayValue(int*& values);
    virtual int getFloatArrayValue(float*& values);
    virtual int getDoubleArrayValue(double*& values);
    virtual int getStringArrayValue(char**& values);
    int getIntArrayValue(int** values) { return values ? getIntArrayValue(*values) : 0; }
    int getFloatArrayValue(float** values) { return values ? getFloatArrayValue(*values) : 0; }
    int getDoubleArrayValue(double** values) { return values ? getDoubleArrayValue(*values) : 0; }
    int getStringArrayValue(char*** values) { return values ? getStringArrayValue(*values) : 0; }
    // The raw array flag, see IsArray for the meaning of type and flag together.
    virtual int getArrayFlag();
    // The element count when the array flag is 1, otherwise 0.
    virtual int getArrayCount();
    virtual EDataType getType();
    // 8 for Int, 9 for Double, 10 for String, 11 for the array types, 7 for all others.
    int GetImage() override;
    virtual bool IsVariable();

    // As in the base. The list's name lookup is told of the change.
    void SetNext(IFCNode* node) override;
    void RemoveLinks() override;

    // Identity and look.
    wchar_t const* GetCaption() { return m_strCaption; }
    void SetCaption(wchar_t const* caption);
    // The name in its owner: for a member of a group the group's name when it is the header, and
    // otherwise the empty text, which no search finds.
    wchar_t const* GetVariableName();
    void SetVariableName(wchar_t const* name);
    int GetVariableID() { return m_nVariableID; }
    void SetVariableID(int id) { m_nVariableID = id; }
    int GetJobAppVarID() { return m_nJobAppVarID; }
    void SetJobAppVarID(int id) { m_nJobAppVarID = id; }
    int GetDeploymentMapId() { return m_nDeploymentMapId; }
    void SetDeploymentMapId(int id) { m_nDeploymentMapId = id; }
    // The variable as a node; never null.
    IFCNode* GetNode();
    // Always the empty text; see GetBlockVariablePath.
    wchar_t const* GetPath();
    // Always true.
    bool VerifyHandle();

    // Groups of variables.
    bool IsGroup() { return m_bGroup; }
    void SetGroup(bool group);
    bool IsGroupHeader() { return m_bGroupHeader; }
    void SetGroupHeader(bool header);
    wchar_t const* GetGroupName() { return m_strGroupName; }
    void SetGroupName(wchar_t const* name);

    // The four enumerations. The ...S forms give the name through one static buffer each.
    EDataType GetDataType() { return m_eDataType; }
    void SetDataType(EDataType type) { m_eDataType = type; }
    void SetDataType(int type) { m_eDataType = static_cast<EDataType>(type); }
    void SetDataType(wchar_t const* name);
    wchar_t const* GetDataTypeS();
    EStatusType GetStatusType() { return m_eStatusType; }
    void SetStatusType(EStatusType type) { m_eStatusType = type; }
    void SetStatusType(int type) { m_eStatusType = static_cast<EStatusType>(type); }
    void SetStatusType(wchar_t const* name);
    wchar_t const* GetStatusTypeS();
    EConnectionType GetConnectionType() { return m_eConnectionType; }
    void SetConnectionType(EConnectionType type) { m_eConnectionType = type; }
    void SetConnectionType(int type) { m_eConnectionType = static_cast<EConnectionType>(type); }
    void SetConnectionType(wchar_t const* name);
    wchar_t const* GetConnectionTypeS();
    EScopeType GetScopeType() { return m_eScopeType; }
    void SetScopeType(EScopeType type) { m_eScopeType = type; }
    void SetScopeType(int type) { m_eScopeType = static_cast<EScopeType>(type); }
    void SetScopeType(wchar_t const* name);
    wchar_t const* GetScopeTypeS();

    // True for the array data types, and for any other type whose array flag is set.
    bool IsArray();
    // "Yes" or "No" through a static buffer.
    wchar_t const* IsArrayS();
    void SetArray(bool array) { m_bArray = array ? 1 : 0; }
    void SetArray(int array) { m_bArray = array != 0 ? 1 : 0; }
    // Sets the flag for "yes" in any case and clears it for everything else.
    void SetArray(wchar_t const* yesOrNo);

    // The class text: "Data", "Data Array", "File", "Directory" or a file type's name. GetType
    // first overwrites the text set by SetType when the data type is one of the known ones.
    wchar_t const* GetType();
    void SetType(wchar_t const* type);
    wchar_t const* GetEntityType() { return m_strEntityType; }
    void SetEntityType(wchar_t const* type);
    wchar_t const* GetNature() { return m_strNature; }
    void SetNature(wchar_t const* nature);
    wchar_t const* GetResolveEvent() { return m_strResolveEvent; }
    void SetResolveEvent(wchar_t const* event);

    // The catalog's description of the type, by data type and by file type. The setters replace
    // the pointer and free nothing; both may be null.
    CFCDataTypeNode* GetDataTypeNode() { return m_pDataTypeNode; }
    void SetDataTypeNode(CFCDataTypeNode* node);
    CFCFileTypeNode* GetFileTypeNode() { return m_pFileTypeNode; }
    void SetFileTypeNode(CFCFileTypeNode* node);
    // Takes over the catalog entry with this caption; an unknown caption changes nothing.
    // Defined in persistence/DataTypeBinding.cpp.
    void UpdateToDataTypes(wchar_t const* typeName);

    // Flags.
    bool IsBPMVariable() { return m_bBPMVariable; }
    void SetBPMVariable(bool set) { m_bBPMVariable = set; }
    bool IsDeployed() { return m_bDeployed; }
    void SetDeployed(bool set) { m_bDeployed = set; }
    bool IsEditable() { return m_bEditable; }
    void SetEditable(bool set) { m_bEditable = set; }
    bool IsFileType() { return m_bFileType; }
    void SetFileType(bool set) { m_bFileType = set; }
    bool IsRefrence() { return m_bReference; }
    void SetReference(bool set) { m_bReference = set; }
    bool IsStoreDB() { return m_bStoreDB; }
    void SetStoreDB(bool set) { m_bStoreDB = set; }
    bool IsTemplateVariable() { return m_bTemplateVariable != 0; }
    void SetTemplateVariable(int set) { m_bTemplateVariable = set; }
    bool GetUseAggregator() { return m_bUseAggregator; }
    void SetUseAggregator(bool set) { m_bUseAggregator = set; }
    bool IsVisible() { return m_bVisible; }
    void SetVisible(bool set) { m_bVisible = set; }

    // The choices of a template variable.
    int GetOptionCount();
    // Through a static buffer; the empty text for an index out of range.
    wchar_t const* GetOption(int index);
    bool AddOption(wchar_t const* option);
    // Changes nothing, gives true.
    bool SetOption(wchar_t const* option, int index);
    bool DeleteAllOption();

    // The value as text, and its way into the typed store and into Python.
    wchar_t const* GetValue() { return m_strValue; }
    void SetValue(wchar_t const* value);
    // Parses the text into the typed store for Int, Float and Double; Double with the precision
    // of a float.
    void UpdateValue();
    // The Python literal by the catalog's type name and the array flag. Sets the data type for
    // the numeric names; strips quotes and outer blanks from the value of the object-like ones.
    wchar_t const* GetDefaultValue();
    // The Python literal by the data type alone; the argument is ignored.
    wchar_t const* GetDefaultValue(bool);
    // Stores the value as a Python list: in brackets unless it begins with one.
    wchar_t const* SetDefaultyArrayCode();

    // Array flag, connection, data, status and scope type and value text; false for null.
    bool IsEqual(CFCVariableData* other);
    // Copies what the model cares for, catalog contents included; links by path, not by pointer.
    // The target's name becomes the source's GetVariableName. Nothing for a null.
    static void Copy(CFCVariableData* source, CFCVariableData* target);
    void CopyFrom(CFCVariableData* source);
    // A new variable with catalog nodes of its own, without parent and in no list. The caller
    // owns it.
    CFCVariableData* CloneVariable();
    // Frees the catalog nodes and the array storage that this variable made and that no copy
    // shares. For whoever tears a tree down, right before the variable goes.
    void ReleaseOwnedParts();

    // Links. The path is dotted: ids of blocks from below the root, then the variable's name.
    wchar_t const* GetLinkPath() { return m_strLinkPath; }
    void SetLinkPath(wchar_t const* path);
    int GetLinkedVariableHandle() { return m_nLinkedVariableHandle; }
    void SetLinkedVariableHandle(int handle) { m_nLinkedVariableHandle = handle; }
    // Linked by pointer or by path.
    bool IsLinked();
    // Links by pointer and handle only; null unlinks and stores handle 0.
    void LinkVariable(CFCVariableData* target);
    // Puts `prefix` in front of a link path; nothing when either is empty.
    void AddVariablePrefix(wchar_t const* prefix);
    // The owner's path, a point and the name, rebuilt by SetPath. Without an owner's path a
    // template variable has the word "Template" in its place.
    void SetPath();
    wchar_t const* GetBlockVariablePath();
    // True in the variable list of a node without parent, for other than template variables.
    bool IsProcessVariable();

    // The variable as a JSON object, by replacement in a fixed template, without escaping.
    wchar_t const* GetJSONString();

    // What follows walks the tree, and is defined in algorithms/VariableLinks.cpp.

    // The top of the tree; the variable itself without a parent.
    IFCNode* GetRoot();
    // Takes the handle of the linked variable, when there is one.
    void SetLinkedVariableHandle();
    // The path to save: that of the variable with the linked handle (empty when it is gone), or
    // the link path when no handle is set.
    wchar_t const* GetLinkPathFinal();
    // Looks the link path up from the root anew. Nothing for an unlinked variable.
    void Resolve();
    // The same from a root that the caller knows already; for walks over a whole tree.
    void ResolveFromRoot(IFCNode* root);
    // Back to a local variable when the link path leads nowhere; the value stays.
    void RemoveInvalidLink();
    // Turns Parent or Global scope into a link to the variable of the enclosing block that the
    // value names, or else to the one of the same name.
    void ConvertToLinkedVariable();
    // The same inside the owner's own variables, by the value only.
    void ConvertProcessVariableToLinkedVariable();
    // The end of the link chain; the variable itself when unlinked or when the link is dead.
    CFCVariableData* GetActualVariableData();
    // Resolves and notes a dead link; GetErrorString gives the note, empty when all is well.
    void CheckError();
    wchar_t const* GetErrorString();

private:
    friend class CFCMarkObjects;
    friend class flowmere::VariableNameIndex;

    enum StoreKind : std::uint8_t { NoStorage, NumberStorage, TextStorage };

    template <typename T>
    T stored() const;
    template <typename T>
    void store(T value);
    template <typename T>
    void storeArray(EDataType type, int count, T const* values);
    template <typename T>
    int arrayOf(EDataType type, T*& values);
    void freeStorage();
    void releaseOldStorage();
    void nameWillChange();
    void copyFields(CFCVariableData const& other);
    void setTextCode();
    void setObjectCode(wchar_t const* constructor);
    void setLinked(CFCVariableData* target);
    void setFinal(CFCVariableData* target);
    void bindTo(CFCVariableData* target);

    // Widest fields first: documents hold very many variables.
    CFCVariableData* m_pFinalVariable = nullptr;
    CFCVariableData* m_pLinkedVariable = nullptr;
    CFCDataTypeNode* m_pDataTypeNode = nullptr;
    CFCFileTypeNode* m_pFileTypeNode = nullptr;
    // The typed store: an int, a float, a double or a pointer in the first bytes.
    std::uint64_t m_Store = 0;
    TuTemplateArray<TuString> m_aOptions;
    TuString m_strValue;
    TuString m_strDefaultCode;
    TuString m_strVariableName;
    TuString m_strGroupName;
    TuString m_strNature;
    TuString m_strPath;
    TuString m_strLinkPath;
    TuString m_strError;
    TuString m_strCaption;
    TuString m_strResolveEvent;
    TuString m_strType;
    TuString m_strEntityType;
    TuString m_strJSON;
    EDataType m_eDataType = EDataType_Int;
    EStatusType m_eStatusType = EStatusType_Input;
    EConnectionType m_eConnectionType = EConnectionType_Local;
    EScopeType m_eScopeType = EScopeType_Local;
    int m_nJobAppVarID = 0;
    int m_nDeploymentMapId = 0;
    int m_nArrayCount = 0;
    int m_nLinkedVariableHandle = -1;
    int m_nVariableID = 0;
    int m_bTemplateVariable = 0;
    // Handles of the two cached targets, which tell whether these still live.
    int m_nLinkedTargetHandle = 0;
    int m_nFinalTargetHandle = 0;
    // Number of texts in an array that this variable allocated.
    int m_nStoredTexts = 0;
    // The name index that knows this variable; 0 for none.
    std::uint32_t m_nNameIndex = 0;
    unsigned char m_bArray = 0;
    StoreKind m_eStoreKind = NoStorage;
    bool m_bHidden = false;
    bool m_bGroup = false;
    bool m_bGroupHeader = false;
    bool m_bDeployed = false;
    bool m_bBPMVariable = false;
    bool m_bUseAggregator = false;
    bool m_bVisible = false;
    bool m_bEditable = true;
    bool m_bFileType = false;
    bool m_bReference = true;
    bool m_bStoreDB = true;
    bool m_bOwnDataTypeNode = false;
    bool m_bOwnFileTypeNode = false;
    // Set on a variable once a copy shares its nodes and storage.
    mutable bool m_bShared = false;
};
