#include "flowmere/model/FCEnumTranslator.h"

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using flowmere::test::narrow;

// One enumeration: what it is called, its names in order of value, and both ways through the translator by number.
struct Enumeration {
    std::string type;
    std::vector<std::wstring> names;
    std::function<std::string(int)> toString;
    std::function<bool(wchar_t const*, int&)> fromString;
    bool found; // whether names are found at all
};

template <typename E>
Enumeration enumeration(char const* type, std::vector<std::wstring> names, bool found = true) {
    static_assert(std::is_same_v<std::underlying_type_t<E>, int>, "values outside the names must be representable");
    static_assert(std::is_convertible_v<E, int>, "unscoped");
    return {type, std::move(names),
            [](int value) { return narrow(CFCEnumTranslator::EnumToString(static_cast<E>(value))); },
            [](wchar_t const* text, int& value) {
                E typed = static_cast<E>(value);
                bool const hit = CFCEnumTranslator::StringToEnum(text, typed);
                value = typed;
                return hit;
            },
            found};
}

std::vector<Enumeration> const& enumerations() {
    static std::vector<Enumeration> const s_enumerations = {
        enumeration<EDataType>("EDataType",
                               {L"Int", L"Float", L"Double", L"String", L"TarnObject", L"Point2", L"Point3", L"Matrix",
                                L"File", L"Directory", L"IntArray", L"FloatArray", L"DoubleArray", L"StringArray",
                                L"TarnObjectArray", L"Point2Array", L"Point3Array", L"FileArray", L"DirectoryArray"}),
        enumeration<EScopeType>("EScopeType", {L"Local", L"Parent", L"Connected", L"Template", L"Global", L"Private",
                                               L"Public", L"Resolve"}),
        enumeration<ENatureType>("ENatureType", {L"Application", L"Deployment", L"Task", L"Setup", L"System"}),
        enumeration<EExecutionStateType>("EExecutionStateType",
                                         {L"ESNone", L"Pending", L"Start", L"Executing", L"Executed", L"Skipped",
                                          L"Failed", L"Cancelled", L"WaitForResource", L"Stop"}),
        enumeration<EProjectType>(
            "EProjectType", {L"BPT", L"TASK", L"MSP", L"Report", L"Execute", L"Debug", L"APPLICATION", L"PROCESSLST"}),
        enumeration<EStatusType>("EStatusType", {L"Input", L"Output", L"In-and-Output"}),
        enumeration<EConnectionType>("EConnectionType", {L"Local", L"Parent", L"Connected", L"Template"}),
        enumeration<EScriptType>("EScriptType", {L"PYTHON", L"PYTHON_CMD", L"TCMD", L"TCMD_V2", L"JAVA"}),
        enumeration<ETreeType>("ETreeType", {L"TreeGeneric", L"ProcessList", L"ProcessLibrary", L"Process"}),
        enumeration<EGridType>("EGridType", {L"None", L"BPR", L"Application", L"Task", L"Macro", L"Template", L"All"}),
        enumeration<EFCNodeType>("EFCNodeType",
                                 {L"SimpleNone", L"RootNode", L"ImageNode", L"FileProcessNode", L"FileSubProcessNode",
                                  L"SubProcessNode", L"BlockNode", L"VariableNode"},
                                 false),
        enumeration<EFCTabType>("EFCTabType",
                                {L"Show Python Console Tab", L"Show Watch Tab", L"Show TODO Tab", L"Show CallStack Tab",
                                 L"Show BreakPoint Tab", L"Show FileSystem Tab", L"Show CurrentProject Tab",
                                 L"Show Library Tab", L"Show External Launcher", L"Show Code Library",
                                 L"Show Application Tab", L"Show Process list Tab"}),
        enumeration<EReleaseInfo>("EReleaseInfo", {L"Version", L"Build", L"Release Date", L"Release Number",
                                                   L"Patch File", L"Installation Location"}),
        enumeration<EEntityType>("EEntityType", {L"Primitive", L"OrrinEntity"}),
    };
    return s_enumerations;
}

// ---- values -------------------------------------------------------------------------------------

TEST(CFCEnumTranslator, EveryValueHasItsName) {
    ASSERT_EQ(enumerations().size(), 14U);
    for (Enumeration const& e : enumerations()) {
        for (std::size_t value = 0; value < e.names.size(); ++value) {
            EXPECT_EQ(e.toString(static_cast<int>(value)), narrow(e.names[value].c_str())) << e.type << ' ' << value;
        }
    }
}

TEST(CFCEnumTranslator, ValueWithoutANameGivesTheEmptyText) {
    for (Enumeration const& e : enumerations()) {
        int const count = static_cast<int>(e.names.size());
        for (int const value :
             {count, count + 1, 99, std::numeric_limits<int>::max(), -1, std::numeric_limits<int>::min()}) {
            EXPECT_EQ(e.toString(value), "") << e.type << ' ' << value;
        }
    }
    EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString(static_cast<EProjectType>(8))), "");
    EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString(static_cast<EDataType>(99))), "");
}

TEST(CFCEnumTranslator, EveryNameLeadsBackToItsValue) {
    CFCEnumTranslator::SetArrays();
    for (Enumeration const& e : enumerations()) {
        for (std::size_t i = 0; i < e.names.size(); ++i) {
            int value = 77;
            EXPECT_EQ(e.fromString(e.names[i].c_str(), value), e.found) << e.type << ' ' << i;
            EXPECT_EQ(value, e.found ? static_cast<int>(i) : 77) << e.type << ' ' << i;
        }
    }
}

TEST(CFCEnumTranslator, UnknownNameLeavesTheValue) {
    CFCEnumTranslator::SetArrays();
    for (Enumeration const& e : enumerations()) {
        std::wstring other = e.names[0];
        other[0] = other[0] >= L'a' ? static_cast<wchar_t>(other[0] - 32) : static_cast<wchar_t>(other[0] + 32);
        for (std::wstring const& text :
             {other, e.names[0] + L" ", L" " + e.names[0], std::wstring(L"nothing like it"), std::wstring()}) {
            int value = 77;
            EXPECT_FALSE(e.fromString(text.c_str(), value)) << e.type << ' ' << narrow(text.c_str());
            EXPECT_EQ(value, 77) << e.type;
        }
        int value = 77;
        EXPECT_FALSE(e.fromString(nullptr, value)) << e.type;
        EXPECT_EQ(value, 77) << e.type;
    }
    EScopeType scope = EScopeType_Public;
    EXPECT_FALSE(CFCEnumTranslator::StringToEnum(L"local", scope));
    EXPECT_EQ(scope, EScopeType_Public);
    EXPECT_TRUE(CFCEnumTranslator::StringToEnum(L"Local", scope));
    EXPECT_EQ(scope, 0);
}

TEST(CFCEnumTranslator, EnumeratorsStandForTheirNames) {
    EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString(EDataType_TarnObject)), "TarnObject");
    EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString(EDataType_DirectoryArray)), "DirectoryArray");
    EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString(EScopeType_Resolve)), "Resolve");
    EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString(ENatureType_System)), "System");
    EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString(EExecutionStateType_WaitForResource)), "WaitForResource");
    EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString(EProjectType_PROCESSLST)), "PROCESSLST");
    EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString(EStatusType_InAndOutput)), "In-and-Output");
    EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString(EScriptType_JAVA)), "JAVA");
    EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString(EFCTabType_ProcessList)), "Show Process list Tab");
    EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString(EReleaseInfo_InstallationLocation)), "Installation Location");
    EXPECT_EQ(static_cast<int>(EProjectType_None), 8);
    EXPECT_EQ(static_cast<int>(EConnectorType_Default), 0);
    EXPECT_EQ(static_cast<int>(EConnectorType_Workflow), 1);
    EXPECT_EQ(static_cast<int>(EScriptLocation_Default), 0);
    EXPECT_EQ(static_cast<int>(ERefBlock_None), 0);
}

TEST(CFCEnumTranslator, CopyOfATextOutlivesTheNextCall) {
    wchar_t const* const first = CFCEnumTranslator::EnumToString(EDataType_Int);
    TuString const copy(first);
    wchar_t const* const second = CFCEnumTranslator::EnumToString(EScopeType_Global);
    EXPECT_EQ(narrow(second), "Global");
    EXPECT_EQ(narrow(copy), "Int");
}

TEST(CFCEnumTranslator, ResultOfATranslationMayBeTranslatedAgain) {
    CFCEnumTranslator::SetArrays();
    EScopeType scope = EScopeType_Resolve;
    EXPECT_TRUE(CFCEnumTranslator::StringToEnum(CFCEnumTranslator::EnumToString(EConnectionType_Connected), scope));
    EXPECT_EQ(scope, EScopeType_Connected);
}

// ---- arrays -------------------------------------------------------------------------------------

TEST(CFCEnumTranslator, GeneralFormTakesAnyArray) {
    TuTemplateArray<TuString> names;
    EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString(names, 0)), "");
    names.Add(L"zero");
    names.Add(L"one");
    EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString(names, 0)), "zero");
    EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString(names, 1)), "one");
    EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString(names, 2)), "") << "an index equal to the count has no element";
    EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString(names, 3)), "");
    EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString(names, -1)), "");
}

TEST(CFCEnumTranslator, ArraysHoldTheNames) {
    struct Row {
        TuTemplateArray<TuString>& (*get)();
        char const* type;
    };
    Row const rows[] = {
        {CFCEnumTranslator::GetArrayConnectionType, "EConnectionType"},
        {CFCEnumTranslator::GetArrayDataType, "EDataType"},
        {CFCEnumTranslator::GetArrayExecutionStateType, "EExecutionStateType"},
        {CFCEnumTranslator::GetArrayNatureType, "ENatureType"},
        {CFCEnumTranslator::GetArrayNodeType, "EFCNodeType"},
        {CFCEnumTranslator::GetArrayScopeType, "EScopeType"},
        {CFCEnumTranslator::GetArrayScriptType, "EScriptType"},
        {CFCEnumTranslator::GetArrayStatusType, "EStatusType"},
        {CFCEnumTranslator::GetArrayTreeType, "ETreeType"},
    };
    for (Row const& row : rows) {
        TuTemplateArray<TuString> const& names = row.get();
        auto const e = std::find_if(enumerations().begin(), enumerations().end(),
                                    [&](Enumeration const& candidate) { return candidate.type == row.type; });
        ASSERT_EQ(names.GetCount(), static_cast<int>(e->names.size())) << row.type;
        for (int i = 0; i < names.GetCount(); ++i) {
            EXPECT_EQ(narrow(names[i]), narrow(e->names[static_cast<std::size_t>(i)].c_str())) << row.type;
        }
        EXPECT_EQ(&row.get(), &names) << "always the same array";
    }
}

TEST(CFCEnumTranslator, FillingTwiceAddsNothing) {
    CFCEnumTranslator::SetArrays();
    CFCEnumTranslator::SetArrays();
    EXPECT_EQ(CFCEnumTranslator::GetArrayDataType().GetCount(), 19);
    EXPECT_EQ(CFCEnumTranslator::GetTabNameArray().GetCount(), 12);
}

// ---- before the first filling: each in a process of its own -------------------------------------

class CFCEnumTranslatorDeathTest : public testing::Test {
protected:
    CFCEnumTranslatorDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

#define EXPECT_IN_NEW_PROCESS(condition) EXPECT_EXIT(std::exit((condition) ? 0 : 1), testing::ExitedWithCode(0), "")

// Whether the first question of a process, by this name, finds anything; the value must follow.
template <typename E>
bool findsAtOnce(wchar_t const* name, int expected) {
    E value = static_cast<E>(77);
    bool const found = CFCEnumTranslator::StringToEnum(name, value);
    return found && value == expected;
}

template <typename E>
bool missesAtOnce(wchar_t const* name) {
    E value = static_cast<E>(77);
    bool const found = CFCEnumTranslator::StringToEnum(name, value);
    return !found && value == 77;
}

TEST_F(CFCEnumTranslatorDeathTest, MostNamesAreNotFoundBeforeTheArraysAreFilled) {
    EXPECT_IN_NEW_PROCESS(missesAtOnce<EScopeType>(L"Global"));
    EXPECT_IN_NEW_PROCESS(missesAtOnce<ENatureType>(L"Task"));
    EXPECT_IN_NEW_PROCESS(missesAtOnce<EExecutionStateType>(L"Pending"));
    EXPECT_IN_NEW_PROCESS(missesAtOnce<EStatusType>(L"Output"));
    EXPECT_IN_NEW_PROCESS(missesAtOnce<EConnectionType>(L"Parent"));
    EXPECT_IN_NEW_PROCESS(missesAtOnce<EScriptType>(L"TCMD"));
    EXPECT_IN_NEW_PROCESS(missesAtOnce<ETreeType>(L"Process"));
    EXPECT_IN_NEW_PROCESS(missesAtOnce<EFCNodeType>(L"RootNode"));
    EXPECT_IN_NEW_PROCESS(missesAtOnce<EFCTabType>(L"Show Watch Tab"));
    EXPECT_IN_NEW_PROCESS(missesAtOnce<EReleaseInfo>(L"Build"));
    EXPECT_IN_NEW_PROCESS(missesAtOnce<EEntityType>(L"OrrinEntity"));
    EXPECT_IN_NEW_PROCESS(missesAtOnce<EPortHandle>(L"Right"));
}

TEST_F(CFCEnumTranslatorDeathTest, DataTypesGridTypesAndProjectTypesFillTheArraysThemselves) {
    EXPECT_IN_NEW_PROCESS(findsAtOnce<EDataType>(L"Double", 2));
    EXPECT_IN_NEW_PROCESS(findsAtOnce<EGridType>(L"Macro", 4));
    EXPECT_IN_NEW_PROCESS(findsAtOnce<EProjectType>(L"MSP", 2));
}

TEST_F(CFCEnumTranslatorDeathTest, FillingOneFillsAll) {
    EXPECT_IN_NEW_PROCESS(missesAtOnce<EDataType>(L"nothing") && findsAtOnce<EScopeType>(L"Global", 4));
    EXPECT_IN_NEW_PROCESS(missesAtOnce<EGridType>(L"nothing") && findsAtOnce<EStatusType>(L"Output", 1));
    EXPECT_IN_NEW_PROCESS(missesAtOnce<EProjectType>(L"nothing") && findsAtOnce<EScriptType>(L"JAVA", 4));
    EXPECT_IN_NEW_PROCESS(missesAtOnce<EScopeType>(L"Global") && missesAtOnce<EScopeType>(L"Global"));
}

TEST_F(CFCEnumTranslatorDeathTest, TranslationToTextFillsTheArrays) {
    EXPECT_IN_NEW_PROCESS(narrow(CFCEnumTranslator::EnumToString(EScopeType_Global)) == "Global" &&
                          findsAtOnce<ETreeType>(L"Process", 3));
    EXPECT_IN_NEW_PROCESS(narrow(CFCEnumTranslator::EnumToString2(4)) == "Right" &&
                          findsAtOnce<EPortHandle>(L"Left", 8));
    EXPECT_IN_NEW_PROCESS([] {
        TuTemplateArray<TuString> own;
        CFCEnumTranslator::EnumToString(own, 0);
        return findsAtOnce<EScopeType>(L"Global", 4);
    }());
}

TEST_F(CFCEnumTranslatorDeathTest, ArraysAreFilledWhenAskedForButForTheTabs) {
    EXPECT_IN_NEW_PROCESS(CFCEnumTranslator::GetTabNameArray().GetCount() == 0);
    EXPECT_IN_NEW_PROCESS(CFCEnumTranslator::GetTabNameArray().GetCount() == 0 &&
                          CFCEnumTranslator::GetArrayTreeType().GetCount() == 4 &&
                          CFCEnumTranslator::GetTabNameArray().GetCount() == 12);
    EXPECT_IN_NEW_PROCESS(CFCEnumTranslator::GetArrayConnectionType().GetCount() == 4);
    EXPECT_IN_NEW_PROCESS(CFCEnumTranslator::GetArrayDataType().GetCount() == 19);
    EXPECT_IN_NEW_PROCESS(CFCEnumTranslator::GetArrayExecutionStateType().GetCount() == 10);
    EXPECT_IN_NEW_PROCESS(CFCEnumTranslator::GetArrayNatureType().GetCount() == 5);
    EXPECT_IN_NEW_PROCESS(CFCEnumTranslator::GetArrayNodeType().GetCount() == 8);
    EXPECT_IN_NEW_PROCESS(CFCEnumTranslator::GetArrayPortHandle().GetCount() == 4);
    EXPECT_IN_NEW_PROCESS(CFCEnumTranslator::GetArrayScopeType().GetCount() == 8);
    EXPECT_IN_NEW_PROCESS(CFCEnumTranslator::GetArrayScriptType().GetCount() == 5);
    EXPECT_IN_NEW_PROCESS(CFCEnumTranslator::GetArrayStatusType().GetCount() == 3);
}

// ---- port handles -------------------------------------------------------------------------------

struct Grip {
    int handle;
    char const* name;
    int index;
    int middle;
};

Grip const kGrips[] = {{1, "Top", 0, 2},    {2, "Top", 0, 2},    {3, "Right", 1, 4}, {4, "Right", 1, 4},
                       {5, "Bottom", 2, 6}, {6, "Bottom", 2, 6}, {7, "Left", 3, 8},  {8, "Left", 3, 8}};

TEST(CFCEnumTranslator, GripsHaveTheNameOfTheirSide) {
    for (Grip const& grip : kGrips) {
        EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString2(grip.handle)), grip.name) << grip.handle;
        EXPECT_EQ(CFCEnumTranslator::GetIndex(static_cast<EPortHandle>(grip.handle)), grip.index) << grip.handle;
        EXPECT_EQ(static_cast<int>(CFCEnumTranslator::FromIndex(grip.index)), grip.middle) << grip.handle;
    }
}

TEST(CFCEnumTranslator, OtherHandlesAreOnTop) {
    for (int const handle : {0, 9, -1, 100, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString2(handle)), "Top") << handle;
        EXPECT_EQ(CFCEnumTranslator::GetIndex(static_cast<EPortHandle>(handle)), 0) << handle;
    }
    for (int const index : {-1, 4, 5, 100, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(static_cast<int>(CFCEnumTranslator::FromIndex(index)), 0) << index;
    }
}

TEST(CFCEnumTranslator, PlainTranslationOfAHandleTakesItAsAnIndex) {
    char const* const names[] = {"Top", "Right", "Bottom", "Left", "", "", "", "", "", ""};
    for (int handle = 0; handle < 10; ++handle) {
        EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString(static_cast<EPortHandle>(handle))), names[handle]) << handle;
    }
    EXPECT_EQ(narrow(CFCEnumTranslator::EnumToString(EPortHandle_TopMiddle)), "Bottom");
}

TEST(CFCEnumTranslator, NameOfASideGivesItsMiddleGrip) {
    CFCEnumTranslator::SetArrays();
    struct Row {
        wchar_t const* name;
        int handle;
    };
    for (Row const& row : {Row{L"Top", 2}, Row{L"Right", 4}, Row{L"Bottom", 6}, Row{L"Left", 8}}) {
        EPortHandle handle = EPortHandle_NotSet;
        EXPECT_TRUE(CFCEnumTranslator::StringToEnum(row.name, handle));
        EXPECT_EQ(static_cast<int>(handle), row.handle);
    }
    EPortHandle handle = EPortHandle_NotSet;
    EXPECT_FALSE(CFCEnumTranslator::StringToEnum(L"top", handle));
    EXPECT_FALSE(CFCEnumTranslator::StringToEnum(nullptr, handle));
    EXPECT_EQ(static_cast<int>(handle), 9);
}

TEST(CFCEnumTranslator, ArrayOfPortHandlesHoldsTheSides) {
    TuTemplateArray<TuString> const& names = CFCEnumTranslator::GetArrayPortHandle();
    ASSERT_EQ(names.GetCount(), 4);
    EXPECT_EQ(narrow(names[0]), "Top");
    EXPECT_EQ(narrow(names[1]), "Right");
    EXPECT_EQ(narrow(names[2]), "Bottom");
    EXPECT_EQ(narrow(names[3]), "Left");
}

// ---- CFCStringMap -------------------------------------------------------------------------------

static_assert(std::has_virtual_destructor_v<CFCStringMap>);
static_assert(std::has_virtual_destructor_v<CFCEnumTranslator>);

TEST(CFCStringMap, FindsTheFirstEqualEntry) {
    TuTemplateArray<TuString> names;
    names.Add(L"one");
    names.Add(L"Two");
    names.Add(L"one");
    CFCStringMap map;
    CFCEnumTranslator::CreateMap(map, names);
    int index = 77;
    EXPECT_TRUE(map.Lookup(L"one", index));
    EXPECT_EQ(index, 0);
    EXPECT_TRUE(map.Lookup(TuString(L"Two"), index));
    EXPECT_EQ(index, 1);
}

TEST(CFCStringMap, MissLeavesTheIndex) {
    TuTemplateArray<TuString> names;
    names.Add(L"one");
    names.Add(L"");
    CFCStringMap map;
    int index = 77;
    EXPECT_FALSE(map.Lookup(L"one", index)) << "a map without an array finds nothing";
    EXPECT_FALSE(map.Lookup(TuString(L"one"), index));
    CFCEnumTranslator::CreateMap(map, names);
    EXPECT_FALSE(map.Lookup(L"One", index));
    EXPECT_FALSE(map.Lookup(L"three", index));
    EXPECT_FALSE(map.Lookup(static_cast<wchar_t const*>(nullptr), index));
    EXPECT_EQ(index, 77);
    EXPECT_TRUE(map.Lookup(L"", index));
    EXPECT_EQ(index, 1);
}

TEST(CFCStringMap, RefersToTheArrayAndCopiesNothing) {
    TuTemplateArray<TuString> names;
    CFCStringMap map;
    CFCEnumTranslator::CreateMap(map, names);
    int index = 77;
    EXPECT_FALSE(map.Lookup(L"late", index));
    names.Add(L"late");
    EXPECT_TRUE(map.Lookup(L"late", index));
    EXPECT_EQ(index, 0);
}

TEST(CFCStringMap, TranslatorFindsThePositionOrMinusOne) {
    TuTemplateArray<TuString> names;
    names.Add(L"one");
    names.Add(L"two");
    CFCStringMap map;
    TuString two(L"two");
    EXPECT_EQ(CFCEnumTranslator::Find(map, two), -1);
    CFCEnumTranslator::CreateMap(map, names);
    EXPECT_EQ(CFCEnumTranslator::Find(map, two), 1);
    EXPECT_EQ(CFCEnumTranslator::Find(map, L"one"), 0);
    EXPECT_EQ(CFCEnumTranslator::Find(map, L"three"), -1);
    EXPECT_EQ(CFCEnumTranslator::Find(map, L"ONE"), -1);
    EXPECT_EQ(CFCEnumTranslator::Find(map, nullptr), -1);
}

} // namespace
