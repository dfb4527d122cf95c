#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/foundation/TuTemplateArray.h"
#include "flowmere/model/FCEnumerations.h"

// Looks names up in an array of texts, exactly and in array order. It refers to the array and copies
// nothing; without an array it finds nothing.
class FLOWMERE_API CFCStringMap {
public:
    CFCStringMap() = default;
    CFCStringMap(CFCStringMap const&) = default;
    CFCStringMap& operator=(CFCStringMap const&) = default;
    virtual ~CFCStringMap();

    // True with the position of the first equal entry in index; false, with index untouched, when there
    // is none or the text is null.
    bool Lookup(TuString const& name, int& index) const;
    bool Lookup(wchar_t const* name, int& index) const;

private:
    friend class CFCEnumTranslator;
    TuTemplateArray<TuString>* m_pNames = nullptr; // not owned
};

// Translates the enumerations of the model to the names that files store, and back.
//
// All names come to be with SetArrays. Translation to text calls it; most translations to a value do
// not, and find nothing before it ran. Every EnumToString returns one shared text, which the next call
// overwrites: copy it first.
class FLOWMERE_API CFCEnumTranslator {
public:
    virtual ~CFCEnumTranslator();

    // Name of a value; the empty text for a value without a name.
    static wchar_t const* EnumToString(EConnectionType value);
    static wchar_t const* EnumToString(EDataType value);
    static wchar_t const* EnumToString(EEntityType value);
    static wchar_t const* EnumToString(EExecutionStateType value);
    static wchar_t const* EnumToString(EFCNodeType value);
    static wchar_t const* EnumToString(EFCTabType value);
    static wchar_t const* EnumToString(EGridType value);
    static wchar_t const* EnumToString(ENatureType value);
    // Takes the port index 0 to 3 as it is; for a grip use EnumToString2.
    static wchar_t const* EnumToString(EPortHandle value);
    static wchar_t const* EnumToString(EProjectType value);
    static wchar_t const* EnumToString(EReleaseInfo value);
    static wchar_t const* EnumToString(EScopeType value);
    static wchar_t const* EnumToString(EScriptType value);
    static wchar_t const* EnumToString(EStatusType value);
    static wchar_t const* EnumToString(ETreeType value);
    // The same on any array of names.
    static wchar_t const* EnumToString(TuTemplateArray<TuString>& names, int index);
    // Name of the side of a grip 1 to 8; "Top" for any other number.
    static wchar_t const* EnumToString2(int handle);

    // Value of a name, exact in case; true when found. Otherwise false, and value stays as it was.
    static bool StringToEnum(wchar_t const* text, EConnectionType& value);
    static bool StringToEnum(wchar_t const* text, EDataType& value);
    static bool StringToEnum(wchar_t const* text, EEntityType& value);
    static bool StringToEnum(wchar_t const* text, EExecutionStateType& value);
    // Never finds anything: the names of tree rows are for showing only.
    static bool StringToEnum(wchar_t const* text, EFCNodeType& value);
    static bool StringToEnum(wchar_t const* text, EFCTabType& value);
    static bool StringToEnum(wchar_t const* text, EGridType& value);
    static bool StringToEnum(wchar_t const* text, ENatureType& value);
    // Gives the middle grip of the side: 2, 4, 6 or 8.
    static bool StringToEnum(wchar_t const* text, EPortHandle& value);
    static bool StringToEnum(wchar_t const* text, EProjectType& value);
    static bool StringToEnum(wchar_t const* text, EReleaseInfo& value);
    static bool StringToEnum(wchar_t const* text, EScopeType& value);
    static bool StringToEnum(wchar_t const* text, EScriptType& value);
    static bool StringToEnum(wchar_t const* text, EStatusType& value);
    static bool StringToEnum(wchar_t const* text, ETreeType& value);

    // Position of a name in the map's array, or -1.
    static int Find(CFCStringMap& map, TuString& name);
    static int Find(CFCStringMap& map, wchar_t const* name);
    // Points the map at an array, which must outlive it.
    static void CreateMap(CFCStringMap& map, TuTemplateArray<TuString>& names);
    // Fills all arrays of names, the first time it is called.
    static void SetArrays();

    // Side of a grip as a port index: 0 top, 1 right, 2 bottom, 3 left; 0 for any other value.
    static int GetIndex(EPortHandle handle);
    // Middle grip of a port index: 2, 4, 6, 8 for 0 to 3; 0 for any other number.
    static EPortHandle FromIndex(int index);

    // The arrays of names, filled.
    static TuTemplateArray<TuString>& GetArrayConnectionType();
    static TuTemplateArray<TuString>& GetArrayDataType();
    static TuTemplateArray<TuString>& GetArrayExecutionStateType();
    static TuTemplateArray<TuString>& GetArrayNatureType();
    static TuTemplateArray<TuString>& GetArrayNodeType();
    static TuTemplateArray<TuString>& GetArrayPortHandle();
    static TuTemplateArray<TuString>& GetArrayScopeType();
    static TuTemplateArray<TuString>& GetArrayScriptType();
    static TuTemplateArray<TuString>& GetArrayStatusType();
    static TuTemplateArray<TuString>& GetArrayTreeType();
    // Names of the host's tabs. Does not fill: empty before the first SetArrays.
    static TuTemplateArray<TuString>& GetTabNameArray();
};
