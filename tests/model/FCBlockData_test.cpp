#include "flowmere/model/FCBlockData.h"

#include "EnvironmentGuard.h"
#include "TestSupport.h"
#include "model/FlowTree.h"

#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCEnumTranslator.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCNodeManager.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/model/FCVariableData.h"

#include <limits>

using namespace flowmere::test;

namespace {

void expectRect(CFCShape& shape, int left, int top, int right, int bottom) {
    TuRect const* const rect = shape.GetTuRect();
    EXPECT_EQ(left, rect->left);
    EXPECT_EQ(top, rect->top);
    EXPECT_EQ(right, rect->right);
    EXPECT_EQ(bottom, rect->bottom);
}

EExecutionStateType state(int number) {
    return static_cast<EExecutionStateType>(number);
}

constexpr int kInt = std::numeric_limits<int>::max();
constexpr int kLowest = std::numeric_limits<int>::min();

} // namespace

// Shape

TEST(FCShape, HasItsDefaults) {
    CFCShape shape;
    EXPECT_EQ(0, shape.LinePenType);
    EXPECT_EQ(2, shape.LineThickness);
    EXPECT_EQ(0U, shape.ColorLine);
    EXPECT_EQ(0xFFDFC6U, shape.ColorFill);
    EXPECT_FALSE(shape.DrawBorder);
    EXPECT_TRUE(shape.FillColor);
    EXPECT_STREQ(L"", shape.GetFontName());
    EXPECT_EQ(0, shape.FontSize);
    EXPECT_TRUE(shape.Bold);
    EXPECT_FALSE(shape.Italics);
    EXPECT_EQ(5U, shape.Format);
    EXPECT_EQ(0U, shape.FontColor);
    expectRect(shape, 0, 0, 0, 0);
    EXPECT_EQ(0, shape.blockKind);
    EXPECT_FALSE(shape.BorderSet);
    EXPECT_FALSE(shape.Visible);
    EXPECT_FALSE(shape.FontSet);
    EXPECT_FALSE(shape.StrikeOut);
    EXPECT_FALSE(shape.Underline);
    EXPECT_EQ(0, shape.FontVersion);
}

TEST(FCShape, AccessorsReachTheFields) {
    CFCShape shape;
    shape.SetLinePenType(1);
    shape.SetLineThickness(3);
    shape.SetColorLine(0xFF000001U);
    shape.SetColorFill(0x80000002U);
    shape.SetDrawBorder(true);
    shape.SetFillColor(false);
    shape.SetFontName(L"Serif");
    shape.SetFontSize(12);
    shape.SetBold(false);
    shape.SetItalics(true);
    shape.SetFormat(0xFFFFFFFFU);
    shape.SetFontColor(7);
    shape.SetBlockKind(8);
    shape.SetBorderSet(true);
    shape.SetVisible(true);
    shape.SetFontSet(true);
    shape.SetStrikeOut(true);
    shape.SetUnderline(true);
    shape.SetFontVersion(9);

    CFCShape const copy = shape;
    EXPECT_EQ(1, copy.LinePenType);
    EXPECT_EQ(3, copy.LineThickness);
    EXPECT_EQ(0xFF000001U, copy.ColorLine);
    EXPECT_EQ(0x80000002U, copy.ColorFill);
    EXPECT_TRUE(copy.DrawBorder);
    EXPECT_FALSE(copy.FillColor);
    EXPECT_STREQ(L"Serif", copy.FontName);
    EXPECT_EQ(12, copy.FontSize);
    EXPECT_FALSE(copy.Bold);
    EXPECT_TRUE(copy.Italics);
    EXPECT_EQ(0xFFFFFFFFU, copy.Format);
    EXPECT_EQ(7U, copy.FontColor);
    EXPECT_EQ(8, copy.blockKind);
    EXPECT_TRUE(copy.BorderSet);
    EXPECT_TRUE(copy.Visible);
    EXPECT_TRUE(copy.FontSet);
    EXPECT_TRUE(copy.StrikeOut);
    EXPECT_TRUE(copy.Underline);
    EXPECT_EQ(9, copy.FontVersion);

    EXPECT_EQ(1, shape.GetLinePenType());
    EXPECT_EQ(3, shape.GetLineThickness());
    EXPECT_EQ(0xFF000001U, shape.GetColorLine());
    EXPECT_EQ(0x80000002U, shape.GetColorFill());
    EXPECT_TRUE(shape.GetDrawBorder());
    EXPECT_FALSE(shape.GetFillColor());
    EXPECT_EQ(12, shape.GetFontSize());
    EXPECT_FALSE(shape.GetBold());
    EXPECT_TRUE(shape.GetItalics());
    EXPECT_EQ(0xFFFFFFFFU, shape.GetFormat());
    EXPECT_EQ(7U, shape.GetFontColor());
    EXPECT_EQ(8, shape.GetBlockKind());
    EXPECT_TRUE(shape.GetBorderSet());
    EXPECT_TRUE(shape.GetVisible());
    EXPECT_TRUE(shape.GetFontSet());
    EXPECT_TRUE(shape.GetStrikeOut());
    EXPECT_TRUE(shape.GetUnderline());
    EXPECT_EQ(9, shape.GetFontVersion());
    shape.SetFontName(nullptr);
    EXPECT_STREQ(L"", shape.GetFontName());
}

TEST(FCShape, RectangleIsTheObjectsOwn) {
    CFCShape shape;
    shape.SetTuRect(1, 2, 3, 4);
    expectRect(shape, 1, 2, 3, 4);
    shape.GetTuRect()->left = 10;
    EXPECT_EQ(10, shape.rect.left);
}

TEST(FCShape, InchFormScalesBySeventyTwo) {
    CFCShape shape;
    shape.SetTuRectInInch(1, 2, 3, 4);
    expectRect(shape, 72, 144, 288, 432);
    shape.SetTuRectInInch(0.99, -0.99, 0.99, 0.99);
    expectRect(shape, 71, -71, 142, 0);
}

TEST(FCShape, ReverseFormFlipsAgainstAPageOfThirteenInches) {
    CFCShape shape;
    shape.SetTuRectInInchReverse(1, 2, 3, 4);
    expectRect(shape, 100, 700, 400, 1100);
    // 0.29 times 100 lies just below 29.
    shape.SetTuRectInInchReverse(0.29, 13, 0, 0);
    expectRect(shape, 28, 0, 28, 0);
    shape.SetTuRectInInchReverse(0, 14, 1, 1);
    expectRect(shape, 0, -200, 100, -100);
}

TEST(FCShape, FlowmereFormTruncatesEachValue) {
    CFCShape shape;
    shape.SetTuRectInInchFlowmere(1.9, 2.9, 3.9, 4.9);
    expectRect(shape, 1, 2, 4, 6);
    shape.SetTuRectInInchFlowmere(-1.9, -2.9, -3.9, -4.9);
    expectRect(shape, -1, -2, -4, -6);
}

TEST(FCShape, MeasuresOutOfRangeEndAtTheLimits) {
    CFCShape shape;
    double const notANumber = std::numeric_limits<double>::quiet_NaN();
    shape.SetTuRectInInchFlowmere(1e300, -1e300, 1e300, -1e300);
    expectRect(shape, kInt, kLowest, kInt, kLowest);
    shape.SetTuRectInInch(1e300, 1, 1e300, notANumber);
    expectRect(shape, kInt, 72, kInt, 72);
    shape.SetTuRectInInchReverse(notANumber, -1e300, 1e300, 1e300);
    expectRect(shape, 0, 0, kInt, kInt);
    shape.SetTuRectInInchFlowmere(notANumber, notANumber, notANumber, notANumber);
    expectRect(shape, 0, 0, 0, 0);
}

// Ports

TEST(FCPort, StartsDisabledAndNameless) {
    CFCPort port;
    EXPECT_FALSE(port.IsEnabled());
    EXPECT_STREQ(L"", port.GetPortName());
    port.SetPortName(L"In");
    port.SetPortName(port.GetPortName());
    EXPECT_STREQ(L"In", port.GetPortName());
    port.SetPortName(nullptr);
    EXPECT_STREQ(L"", port.GetPortName());
}

TEST(FCPortList, HasThreeNamedPorts) {
    CFCPortList ports;
    EXPECT_EQ(3, ports.GetSize());
    EXPECT_STREQ(L"Left", ports.GetInPort()->GetPortName());
    EXPECT_STREQ(L"Right", ports.GetOutPort()->GetPortName());
    EXPECT_STREQ(L"Bottom", ports.GetNextPort()->GetPortName());
    EXPECT_EQ(ports.GetInPort(), ports.GetPort(0));
    EXPECT_EQ(ports.GetOutPort(), ports.GetPort(1));
    EXPECT_EQ(ports.GetNextPort(), ports.GetPort(2));
    EXPECT_EQ(nullptr, ports.GetPort(-1));
    EXPECT_EQ(nullptr, ports.GetPort(3));
}

TEST(FCPortList, CollectsEnabledAndDisabledPorts) {
    struct Case {
        bool enabled[3];
        std::vector<int> on;
        std::vector<int> off;
    };
    Case const cases[] = {
        {{false, false, false}, {}, {0, 1, 2}}, {{true, false, true}, {0, 2}, {1}},
        {{false, true, false}, {1}, {0, 2}},    {{true, true, true}, {0, 1, 2}, {}},
        {{false, false, true}, {2}, {0, 1}},
    };
    CFCPortList ports;
    for (Case const& c : cases) {
        for (int i = 0; i < 3; ++i) {
            ports.GetPort(i)->SetEnabled(c.enabled[i]);
        }
        EXPECT_EQ(c.on.empty() ? nullptr : ports.GetPort(c.on[0]), ports.GetEnabledPorts());
        EXPECT_EQ(c.off.empty() ? nullptr : ports.GetPort(c.off[0]), ports.GetDisabledPorts());
        for (int i = 0; i < 4; ++i) {
            auto const number = static_cast<std::size_t>(i);
            EXPECT_EQ(number < c.on.size() ? ports.GetPort(c.on[number]) : nullptr, ports.GetEnabledPort(i));
            EXPECT_EQ(number < c.off.size() ? ports.GetPort(c.off[number]) : nullptr, ports.GetDisabledPort(i));
        }
    }
    EXPECT_EQ(nullptr, ports.GetEnabledPort(-1));
    EXPECT_EQ(nullptr, ports.GetEnabledPort(4));
    EXPECT_EQ(nullptr, ports.GetDisabledPort(-1));
    EXPECT_EQ(nullptr, ports.GetDisabledPort(4));
}

TEST(FCPortList, CopyTakesPortsAndResultsAsTheyStand) {
    CFCPortList ports;
    ports.GetPort(1)->SetEnabled(true);
    ports.GetPort(1)->SetPortName(L"Way");
    ports.GetEnabledPorts();
    CFCPortList copy(ports);
    EXPECT_STREQ(L"Way", copy.GetPort(1)->GetPortName());
    EXPECT_TRUE(copy.GetPort(1)->IsEnabled());
    EXPECT_EQ(ports.GetPort(1), copy.GetEnabledPort(0));
    EXPECT_EQ(copy.GetPort(1), copy.GetEnabledPorts());
}

// Fields

TEST(FCBlockData, HasItsDefaults) {
    CFCBlockData data;
    EXPECT_EQ(3, data.GetPortList()->GetSize());
    EXPECT_EQ(6, data.GetActiveHandle());
    EXPECT_EQ(nullptr, data.GetConnectorList()->GetHeadPosition());
    EXPECT_EQ(nullptr, data.GetVariableList()->GetHeadPosition());
    EXPECT_EQ(nullptr, data.GetScriptList()->GetHeadPosition());
    EXPECT_EQ(0, data.GetLocation());
    EXPECT_FALSE(data.IsScriptChanged());
    EXPECT_EQ(0, data.GetScriptType());
    EXPECT_STREQ(L"PYTHON", data.GetScriptTypeS());
    EXPECT_EQ(0, data.GetExecutionStateType());
    EXPECT_EQ(0, data.GetReferenceBlock());
    EXPECT_TRUE(data.GetShouldRun());
    EXPECT_FALSE(data.HasScript());
    EXPECT_FALSE(data.HasImage());
    EXPECT_FALSE(data.IsMacroBlock());
    EXPECT_FALSE(data.Save());
    EXPECT_STREQ(L"", data.GetScriptNameFinal());
}

namespace {

using TextGetter = wchar_t const* (CFCBlockData::*)();
using TextSetter = void (CFCBlockData::*)(wchar_t const*);

struct TextField {
    char const* name;
    TextGetter get;
    TextSetter set;
};

TextField const kTextFields[] = {
    {"BlockID", &CFCBlockData::GetBlockID, &CFCBlockData::SetBlockID},
    {"OldBlockID", &CFCBlockData::GetOldBlockID, &CFCBlockData::SetOldBlockID},
    {"BlockName", &CFCBlockData::GetBlockName, &CFCBlockData::SetBlockName},
    {"ScriptCode", &CFCBlockData::GetScriptCode, &CFCBlockData::SetScriptCode},
    {"CmdScriptCode", &CFCBlockData::GetCmdScriptCode, &CFCBlockData::SetCmdScriptCode},
    {"FullBlockName", &CFCBlockData::GetFullBlockName, &CFCBlockData::SetFullBlockName},
    {"ScriptFileName", &CFCBlockData::GetScriptFileName, &CFCBlockData::SetScriptFileName},
    {"ScriptLocation", &CFCBlockData::GetScriptLocation, &CFCBlockData::SetScriptLocation},
    {"FullScriptFileName", &CFCBlockData::GetFullScriptFileName, &CFCBlockData::SetFullScriptFileName},
    {"ScriptNameFinal", &CFCBlockData::GetScriptNameFinal, &CFCBlockData::SetScriptNameFinal},
    {"ToolTip", &CFCBlockData::GetToolTip, &CFCBlockData::SetToolTip},
    {"Description", &CFCBlockData::GetDescription, &CFCBlockData::SetDescription},
    {"HelpFile", &CFCBlockData::GetHelpFile, &CFCBlockData::SetHelpFile},
    {"COMInteface", &CFCBlockData::GetCOMInteface, &CFCBlockData::SetCOMInteface},
    {"COMCommand", &CFCBlockData::GetCOMCommand, &CFCBlockData::SetCOMCommand},
    {"ExecuteMethod", &CFCBlockData::GetExecuteMethod, &CFCBlockData::SetExecuteMethod},
    {"SaveRestoreScript", &CFCBlockData::GetSaveRestoreScript, &CFCBlockData::SetSaveRestoreScript},
    {"ScriptDir", &CFCBlockData::GetScriptDir, &CFCBlockData::SetScriptDir},
    {"RelativeImagePath", &CFCBlockData::GetRelativeImagePath, &CFCBlockData::SetRelativeImagePath},
    {"FolderPath", &CFCBlockData::GetFolderPath, &CFCBlockData::SetFolderPath},
};

using FlagGetter = bool (CFCBlockData::*)();
using FlagSetter = void (CFCBlockData::*)(bool);

struct FlagField {
    char const* name;
    FlagGetter get;
    FlagSetter set;
    bool initial;
};

FlagField const kFlagFields[] = {
    {"Image", &CFCBlockData::HasImage, &CFCBlockData::SetImage, false},
    {"ScriptChanged", &CFCBlockData::IsScriptChanged, &CFCBlockData::SetScriptChanged, false},
    {"UndoFlag", &CFCBlockData::GetUndoFlag, &CFCBlockData::SetUndoFlag, false},
    {"SkipFlag", &CFCBlockData::GetSkipFlag, &CFCBlockData::SetSkipFlag, false},
    {"StopFlag", &CFCBlockData::GetStopFlag, &CFCBlockData::SetStopFlag, false},
    {"ExecutedFlag", &CFCBlockData::GetExecutedFlag, &CFCBlockData::SetExecutedFlag, false},
    {"ExecutingFlag", &CFCBlockData::GetExecutingFlag, &CFCBlockData::SetExecutingFlag, false},
    {"BreakPointFlag", &CFCBlockData::GetBreakPointFlag, &CFCBlockData::SetBreakPointFlag, false},
    {"ShouldRun", &CFCBlockData::GetShouldRun, &CFCBlockData::SetShouldRun, true},
};

} // namespace

TEST(FCBlockData, EachTextFieldStandsForItself) {
    for (TextField const& field : kTextFields) {
        SCOPED_TRACE(field.name);
        EnvironmentGuard const unset;
        CFCBlockData data;
        EXPECT_STREQ(L"", (data.*field.get)());
        (data.*field.set)(L"some text");
        EXPECT_STREQ(L"some text", (data.*field.get)());
        for (TextField const& other : kTextFields) {
            if (other.get != field.get && other.get != &CFCBlockData::GetScriptNameFinal) {
                EXPECT_STREQ(L"", (data.*other.get)()) << other.name;
            }
        }
        (data.*field.set)((data.*field.get)() + 5);
        EXPECT_STREQ(L"text", (data.*field.get)());
        (data.*field.set)(nullptr);
        EXPECT_STREQ(L"", (data.*field.get)());
    }
}

TEST(FCBlockData, EachFlagStandsForItself) {
    for (FlagField const& field : kFlagFields) {
        SCOPED_TRACE(field.name);
        CFCBlockData data;
        EXPECT_EQ(field.initial, (data.*field.get)());
        (data.*field.set)(!field.initial);
        for (FlagField const& other : kFlagFields) {
            EXPECT_EQ((&other == &field) != other.initial, (data.*other.get)()) << other.name;
        }
        (data.*field.set)(field.initial);
        EXPECT_EQ(field.initial, (data.*field.get)());
    }
}

TEST(FCBlockData, NumbersAreStoredWithoutCheck) {
    CFCBlockData data;
    data.SetActiveHandle(99);
    EXPECT_EQ(99, data.GetActiveHandle());
    data.SetLocation(static_cast<EScriptLocation>(4));
    EXPECT_EQ(4, data.GetLocation());
    data.SetReferenceBlock(static_cast<ERefBlock>(7));
    EXPECT_EQ(7, data.GetReferenceBlock());
    data.SetExecutionStateType(state(77));
    EXPECT_EQ(77, data.GetExecutionStateType());
}

TEST(FCBlockData, ScriptTypeIsSetByValueAndByName) {
    CFCBlockData data;
    data.SetScriptType(EScriptType_TCMD);
    EXPECT_STREQ(L"TCMD", data.GetScriptTypeS());
    data.SetScriptType(0);
    EXPECT_EQ(0, data.GetScriptType());
    data.SetScriptType(L"JAVA");
    EXPECT_EQ(4, data.GetScriptType());
    data.SetScriptType(L"java");
    EXPECT_EQ(4, data.GetScriptType());
    data.SetScriptType(static_cast<wchar_t const*>(nullptr));
    EXPECT_EQ(4, data.GetScriptType());
    data.SetScriptType(9);
    EXPECT_EQ(9, data.GetScriptType());
    EXPECT_STREQ(L"", data.GetScriptTypeS());
    data.SetScriptType(CFCEnumTranslator::EnumToString(EScriptType_PYTHON_CMD));
    EXPECT_EQ(1, data.GetScriptType());
}

TEST(FCBlockData, ClearContentEmptiesTheScriptAndMarksIt) {
    CFCBlockData data;
    data.SetScriptCode(L"x = 1");
    EXPECT_TRUE(data.HasScript());
    data.ClearContent();
    EXPECT_FALSE(data.HasScript());
    EXPECT_TRUE(data.IsScriptChanged());
}

TEST(FCBlockData, StaysCompact) {
    // A block with three variables, their catalog nodes and one connector, without what the allocator and texts add.
    std::size_t const size = sizeof(CFCBlockNode) +
                             3 * (sizeof(CFCVariableData) + sizeof(CFCDataTypeNode) + sizeof(CFCFileTypeNode)) +
                             sizeof(CFCConnector);
    EXPECT_LT(size, 6U * 1024U);
}

// Comparison and copies

TEST(FCBlockData, IsEqualLooksAtFourFields) {
    CFCBlockData left;
    CFCBlockData right;
    EXPECT_FALSE(left.IsEqual(nullptr));
    EXPECT_TRUE(left.IsEqual(&right));
    right.SetBlockID(L"other");
    right.SetScriptCode(L"other");
    EXPECT_TRUE(left.IsEqual(&right));
    right.SetBlockName(L"n");
    EXPECT_FALSE(left.IsEqual(&right));
    left.SetBlockName(L"n");
    EXPECT_TRUE(left.IsEqual(&right));
    right.SetToolTip(L"n");
    EXPECT_FALSE(left.IsEqual(&right));
    left.SetToolTip(L"N");
    EXPECT_FALSE(left.IsEqual(&right));
    left.SetToolTip(L"n");
    right.SetDescription(L"n");
    EXPECT_FALSE(left.IsEqual(&right));
    left.SetDescription(L"n");
    right.SetExecutionStateType(state(6));
    EXPECT_FALSE(left.IsEqual(&right));
}

TEST(FCBlockData, IsEqualComparesTheStoredState) {
    auto const left = makeTree<CFCSubProcessNode>(165);
    auto const right = makeTree<CFCSubProcessNode>(165);
    left->SetExecutionStateType(state(1));
    EXPECT_EQ(left->GetExecutionStateType(), right->GetExecutionStateType());
    EXPECT_FALSE(left->IsEqual(right.get()));
}

TEST(FCBlockData, CopyTakesTheIdentityOnly) {
    CFCBlockData source;
    for (TextField const& field : kTextFields) {
        (source.*field.set)(L"source");
    }
    for (FlagField const& field : kFlagFields) {
        (source.*field.set)(!field.initial);
    }
    source.SetLocation(static_cast<EScriptLocation>(1));
    source.SetScriptName(L"pkg.Source");
    source.SetLocation(static_cast<EScriptLocation>(1));
    source.SetScriptType(2);
    source.SetActiveHandle(4);
    source.SetReferenceBlock(static_cast<ERefBlock>(2));
    source.SetExecutionStateType(state(4));
    source.GetPortList()->GetPort(2)->SetPortName(L"Way");
    source.CreateNewVariable();

    CFCBlockData target;
    CFCBlockData::Copy(&source, &target);
    for (TextField const& field : kTextFields) {
        std::string const name = field.name;
        bool const copied = name == "Description" || name == "ToolTip" || name == "BlockName" || name == "BlockID" ||
                            name == "OldBlockID" || name == "FullScriptFileName" || name == "RelativeImagePath";
        if (name != "ScriptNameFinal") {
            EXPECT_STREQ(copied ? L"source" : L"", (target.*field.get)()) << name;
        }
    }
    for (FlagField const& field : kFlagFields) {
        std::string const name = field.name;
        bool const copied = name == "Image" || name == "ShouldRun";
        EXPECT_EQ(copied != field.initial, (target.*field.get)()) << name;
    }
    EXPECT_STREQ(L"pkg.Source", target.GetScriptName());
    EXPECT_EQ(2, target.GetScriptType());
    EXPECT_STREQ(L"Way", target.GetPortList()->GetPort(2)->GetPortName());
    EXPECT_EQ(6, target.GetActiveHandle());
    EXPECT_EQ(0, target.GetLocation());
    EXPECT_EQ(0, target.GetReferenceBlock());
    EXPECT_EQ(0, target.GetExecutionStateType());
    EXPECT_EQ(nullptr, target.GetVariableList()->GetHeadPosition());

    CFCBlockData::Copy(nullptr, &target);
    CFCBlockData::Copy(&source, nullptr);
    CFCBlockData::Copy(&target, &target);
    EXPECT_STREQ(L"source", target.GetBlockID());
    CFCBlockData third;
    third.CopyFrom(&source);
    EXPECT_STREQ(L"source", third.GetBlockName());
    third.CopyFrom(nullptr);
    EXPECT_STREQ(L"source", third.GetBlockName());
}

TEST(FCBlockData, CopyConstructionAndAssignmentTakeEveryField) {
    EnvironmentGuard const unset;
    CFCBlockData source;
    for (TextField const& field : kTextFields) {
        (source.*field.set)(L"source");
    }
    for (FlagField const& field : kFlagFields) {
        (source.*field.set)(!field.initial);
    }
    source.SetScriptType(2);
    source.SetActiveHandle(4);
    source.SetLocation(static_cast<EScriptLocation>(3));
    source.SetReferenceBlock(static_cast<ERefBlock>(2));
    source.SetExecutionStateType(state(4));
    source.ColorFill = 1;
    source.SetTuRect(1, 2, 3, 4);
    source.SetScriptName(L"pkg.Source");
    source.SetLocation(static_cast<EScriptLocation>(3));
    source.GetPortList()->GetPort(2)->SetPortName(L"Way");
    CFCVariableData* const variable = source.CreateNewVariable();
    std::unique_ptr<CFCDocumentNode> const document(source.CreateNewScript());
    CFCConnector connector;
    source.AddConnector(&connector);

    CFCBlockData built(source);
    CFCBlockData assigned;
    assigned = source;
    for (CFCBlockData* copy : {&built, &assigned}) {
        // Asking for the final name below derives this one anew.
        EXPECT_STREQ(L"pkg.Source", copy->GetScriptName());
        for (TextField const& field : kTextFields) {
            EXPECT_STREQ(L"source", (copy->*field.get)()) << field.name;
        }
        for (FlagField const& field : kFlagFields) {
            EXPECT_EQ(!field.initial, (copy->*field.get)()) << field.name;
        }
        EXPECT_EQ(2, copy->GetScriptType());
        EXPECT_EQ(4, copy->GetActiveHandle());
        EXPECT_EQ(3, copy->GetLocation());
        EXPECT_EQ(2, copy->GetReferenceBlock());
        EXPECT_EQ(4, copy->GetExecutionStateType());
        EXPECT_EQ(1U, copy->ColorFill);
        expectRect(*copy, 1, 2, 3, 4);
        EXPECT_STREQ(L"Way", copy->GetPortList()->GetPort(2)->GetPortName());
        EXPECT_EQ(document.get(), copy->GetScriptList()->GetAt(0));
        EXPECT_EQ(&connector, copy->GetConnectorList()->GetAt(0));
        __FCPOSITION* position = copy->GetVariableList()->GetHeadPosition();
        EXPECT_EQ(variable, copy->GetVariableList()->GetNext(position));
    }
}

// Variables and their lifetime

TEST(FCBlockData, CreateNewVariableAddsAtTheTail) {
    CFCBlockData alone;
    CFCVariableData* const first = alone.CreateNewVariable();
    CFCVariableData* const second = alone.CreateNewVariable();
    EXPECT_EQ(72, first->GetNodeType());
    EXPECT_EQ(nullptr, first->GetParentNode());
    EXPECT_FALSE(first->IsGroup());
    EXPECT_FALSE(first->IsGroupHeader());
    EXPECT_EQ(first, alone.GetVariableList()->GetAt(0));
    EXPECT_EQ(second, alone.GetVariableList()->GetAt(1));

    CFCBlockNode block;
    EXPECT_EQ(&block, block.GetFCBlockData()->CreateNewVariable()->GetParentNode());
}

TEST(FCBlockData, FindVariableIsExactAndTakesThePlainName) {
    CFCBlockData data;
    data.CreateNewVariable()->SetVariableName(L"In");
    CFCVariableData* const dotted = data.CreateNewVariable();
    dotted->SetVariableName(L"a.b");
    CFCVariableData* const first = data.CreateNewVariable();
    first->SetVariableName(L"Twice");
    data.CreateNewVariable()->SetVariableName(L"Twice");
    EXPECT_EQ(first, data.FindVariable(L"Twice"));
    EXPECT_EQ(dotted, data.FindVariable(L"a.b"));
    EXPECT_EQ(nullptr, data.FindVariable(L"in"));
    EXPECT_EQ(nullptr, data.FindVariable(L".In"));
    EXPECT_EQ(nullptr, data.FindVariable(L""));
    EXPECT_EQ(nullptr, data.FindVariable(nullptr));
    // A member of a group without being its header has no name.
    dotted->SetGroup(true);
    EXPECT_EQ(dotted, data.FindVariable(L""));
}

TEST(FCBlockData, DeletesVariables) {
    CFCBlockData data;
    CFCVariableData* const first = data.CreateNewVariable();
    int const handle = first->GetNodeHandle();
    CFCVariableData* const second = data.CreateNewVariable();
    EXPECT_TRUE(data.DeleteVariable(first));
    EXPECT_EQ(nullptr, CFCNodeManager::GetNode(handle));
    EXPECT_EQ(second, data.GetVariableList()->GetAt(0));
    EXPECT_TRUE(data.DeleteVariable(nullptr));
    EXPECT_TRUE(data.DeleteVariables());
    EXPECT_EQ(nullptr, data.GetVariableList()->GetHeadPosition());
    EXPECT_TRUE(data.DeleteVariables());
}

TEST(FCBlockData, UnMarkVariablesClearsTheirMarks) {
    CFCBlockData data;
    data.CreateNewVariable()->SetMark(true);
    data.CreateNewVariable()->SetMark(true);
    data.UnMarkVariables();
    EXPECT_FALSE(data.GetVariableList()->GetAt(0)->IsMarked());
    EXPECT_FALSE(data.GetVariableList()->GetAt(1)->IsMarked());
}

TEST(FCBlockData, DestructorTakesTheVariablesAlong) {
    int handle = 0;
    {
        CFCBlockData data;
        handle = data.CreateNewVariable()->GetNodeHandle();
        EXPECT_NE(nullptr, CFCNodeManager::GetNode(handle));
    }
    EXPECT_EQ(nullptr, CFCNodeManager::GetNode(handle));
}

TEST(FCBlockData, DestructorLeavesConnectorsAndDocuments) {
    std::unique_ptr<CFCConnector> connector;
    std::unique_ptr<CFCDocumentNode> document;
    {
        CFCBlockData data;
        connector = std::make_unique<CFCConnector>();
        data.AddConnector(connector.get());
        document.reset(data.CreateNewScript());
    }
    EXPECT_EQ(connector.get(), CFCNodeManager::GetNode(connector->GetNodeHandle()));
    EXPECT_EQ(document.get(), CFCNodeManager::GetNode(document->GetNodeHandle()));
}

TEST(FCBlockData, OfSharingCopiesTheFirstToGoTakesTheVariables) {
    auto source = std::make_unique<CFCBlockData>();
    int const handle = source->CreateNewVariable()->GetNodeHandle();
    auto copy = std::make_unique<CFCBlockData>(*source);
    CFCBlockData third;
    third = *copy;
    EXPECT_EQ(CFCNodeManager::GetNode(handle), third.GetVariableList()->GetAt(0));
    copy.reset();
    EXPECT_EQ(nullptr, CFCNodeManager::GetNode(handle));
    // The others know that there is nothing left.
    EXPECT_EQ(nullptr, source->GetVariableList()->GetHeadPosition());
    EXPECT_EQ(nullptr, third.FindVariable(L"x"));
    int const later = source->CreateNewVariable()->GetNodeHandle();
    source.reset();
    EXPECT_EQ(nullptr, CFCNodeManager::GetNode(later));
}

TEST(FCBlockData, DeletingSharedVariablesIsSeenByTheOthers) {
    CFCBlockData source;
    source.CreateNewVariable();
    CFCBlockData copy(source);
    EXPECT_TRUE(source.DeleteVariables());
    CFCVariableData* const own = source.CreateNewVariable();
    EXPECT_EQ(nullptr, copy.GetVariableList()->GetHeadPosition());
    EXPECT_TRUE(copy.DeleteVariables());
    EXPECT_EQ(own, source.GetVariableList()->GetAt(0));
}

TEST(FCBlockData, CopyOfAnEmptyListSharesNothing) {
    auto source = std::make_unique<CFCBlockData>();
    CFCBlockData copy(*source);
    source->CreateNewVariable();
    CFCVariableData* const own = copy.CreateNewVariable();
    source.reset();
    EXPECT_EQ(own, copy.GetVariableList()->GetAt(0));
}

TEST(FCBlockData, SelfAssignmentKeepsTheVariables) {
    CFCBlockData data;
    CFCVariableData* const variable = data.CreateNewVariable();
    CFCBlockData& same = data;
    data = same;
    EXPECT_EQ(variable, data.GetVariableList()->GetAt(0));
}

TEST(FCBlockData, DeletingOneSharedVariableIsSeenByTheOthers) {
    for (int const number : {0, 1, 2}) {
        SCOPED_TRACE(number);
        CFCBlockData source;
        std::vector<CFCVariableData*> left;
        for (int i = 0; i < 3; ++i) {
            left.push_back(source.CreateNewVariable());
        }
        auto copy = std::make_unique<CFCBlockData>(source);
        int const listHandle = copy->GetVariableList()->GetNodeHandle();
        EXPECT_TRUE(source.DeleteVariable(left[static_cast<std::size_t>(number)]));
        left.erase(left.begin() + number);
        for (CFCBlockData* data : {&source, copy.get()}) {
            ASSERT_EQ(2, data->GetVariableList()->GetCount());
            EXPECT_EQ(left[0], data->GetVariableList()->GetAt(0));
            EXPECT_EQ(static_cast<IFCNode*>(left[1]),
                      reinterpret_cast<IFCNode*>(data->GetVariableList()->GetTailPosition()));
        }
        EXPECT_EQ(listHandle, copy->GetVariableList()->GetNodeHandle());
        // The copy goes first and takes what is left, and nothing else.
        copy.reset();
        EXPECT_EQ(nullptr, source.GetVariableList()->GetHeadPosition());
    }
}

TEST(FCBlockData, DeletingTheLastSharedVariableLeavesTheOthersEmpty) {
    CFCBlockData source;
    CFCVariableData* const variable = source.CreateNewVariable();
    CFCBlockData const copy(source);
    CFCBlockData third(copy);
    EXPECT_TRUE(source.DeleteVariable(variable));
    EXPECT_EQ(nullptr, third.GetVariableList()->GetHeadPosition());
    EXPECT_EQ(nullptr, third.GetVariableList()->GetTailPosition());
    EXPECT_EQ(nullptr, third.FindVariable(L"x"));
}

TEST(FCBlockData, LeavesAVariableAloneThatIsNoElement) {
    CFCBlockData data;
    CFCVariableData* const own = data.CreateNewVariable();
    CFCVariableData stranger;
    CFCDataTypeNode* const type = stranger.GetDataTypeNode();
    ASSERT_NE(nullptr, type);
    EXPECT_TRUE(data.DeleteVariable(&stranger));
    EXPECT_EQ(type, stranger.GetDataTypeNode());
    EXPECT_EQ(own, data.GetVariableList()->GetAt(0));
    stranger.ReleaseOwnedParts();
}

TEST(FCBlockData, WhatACopyAddedGoesWithTheSharedVariables) {
    auto source = std::make_unique<CFCBlockData>();
    source->CreateNewVariable();
    CFCBlockData copy(*source);
    int const added = copy.CreateNewVariable()->GetNodeHandle();
    source.reset();
    EXPECT_EQ(nullptr, CFCNodeManager::GetNode(added));
    EXPECT_EQ(nullptr, copy.GetVariableList()->GetHeadPosition());
}

TEST(FCBlockData, AssignmentLeavesTheVariablesSharedBefore) {
    CFCBlockData source;
    CFCVariableData* const shared = source.CreateNewVariable();
    CFCBlockData other;
    CFCVariableData* const others = other.CreateNewVariable();
    CFCBlockData copy(source);
    copy = other;
    EXPECT_TRUE(source.DeleteVariables());
    EXPECT_EQ(others, copy.GetVariableList()->GetAt(0));
    EXPECT_NE(shared, others);
    copy = CFCBlockData();
    EXPECT_EQ(nullptr, copy.GetVariableList()->GetHeadPosition());
    EXPECT_EQ(others, other.GetVariableList()->GetAt(0));
}

TEST(FCBlockData, VariableListKeepsItsHandleWhenSharedVariablesAreGone) {
    auto source = std::make_unique<CFCBlockData>();
    source->CreateNewVariable();
    CFCBlockData copy(*source);
    int const handle = copy.GetVariableList()->GetNodeHandle();
    source.reset();
    EXPECT_EQ(handle, copy.GetVariableList()->GetNodeHandle());
}

// Links of variables

TEST(FCBlockData, PrefixGoesInFrontOfEveryLinkPath) {
    CFCBlockData data;
    CFCVariableData* const linked = data.CreateNewVariable();
    linked->SetLinkPath(L"A.x");
    CFCVariableData* const local = data.CreateNewVariable();
    data.AddVariablePrefix(L"Sub.");
    EXPECT_STREQ(L"Sub.A.x", linked->GetLinkPath());
    EXPECT_STREQ(L"", local->GetLinkPath());
    data.AddVariablePrefix(nullptr);
    EXPECT_STREQ(L"Sub.A.x", linked->GetLinkPath());
}

TEST(FCBlockData, ConvertsScopedVariablesToLinks) {
    auto const process = makeTree();
    process->CreateNewVariable()->SetVariableName(L"Mass");
    auto* const block = addChild(process.get(), L"A");
    CFCVariableData* const variable = block->CreateNewVariable();
    variable->SetVariableName(L"m");
    variable->SetValue(L"Mass");
    variable->SetScopeType(EScopeType_Parent);
    block->ConvertToLinkedVariable();
    EXPECT_EQ(EScopeType_Connected, variable->GetScopeType());
    EXPECT_TRUE(variable->IsLinked());
}

TEST(FCBlockData, ResolvesLinksOfAllVariables) {
    auto const process = makeTree();
    auto* const producer = addChild(process.get(), L"A");
    CFCVariableData* const target = producer->CreateNewVariable();
    target->SetVariableName(L"x");
    auto* const consumer = addChild(process.get(), L"B");
    CFCVariableData* const link = consumer->CreateNewVariable();
    link->SetVariableName(L"y");
    link->SetLinkPath(L"A.x");
    consumer->GetFCBlockData()->ResolveVariables();
    EXPECT_EQ(target, link->GetActualVariableData());
}

TEST(FCBlockData, CopyVariablesClonesInOrder) {
    auto const process = makeTree();
    auto* const source = addChild(process.get(), L"A");
    source->CreateNewVariable()->SetVariableName(L"x");
    source->CreateNewVariable()->SetVariableName(L"y");
    auto* const target = addChild(process.get(), L"B");
    target->CreateNewVariable()->SetVariableName(L"own");
    EXPECT_TRUE(CFCBlockData::CopyVariables(source, target));
    ASSERT_EQ(3, target->GetVariableList()->GetCount());
    EXPECT_EQ(2, source->GetVariableList()->GetCount());
    auto* const clone = target->GetVariableList()->GetAt(1)->GetVariableData();
    EXPECT_STREQ(L"x", clone->GetVariableName());
    EXPECT_EQ(target, clone->GetParentNode());
    EXPECT_STREQ(L"y", target->GetVariableList()->GetAt(2)->GetVariableData()->GetVariableName());
}

TEST(FCBlockData, CopyVariablesNeedsTwoDifferentNodesWithLists) {
    CFCBlockNode block;
    CFCBlockNode other;
    CFCSubGroupNode folder;
    EXPECT_FALSE(CFCBlockData::CopyVariables(nullptr, &block));
    EXPECT_FALSE(CFCBlockData::CopyVariables(&block, nullptr));
    EXPECT_FALSE(CFCBlockData::CopyVariables(&block, &block));
    EXPECT_FALSE(CFCBlockData::CopyVariables(&block, &folder));
    EXPECT_FALSE(CFCBlockData::CopyVariables(&folder, &block));
    EXPECT_TRUE(CFCBlockData::CopyVariables(&block, &other));
}

TEST(FCBlockData, CopyVariablesEndsBetweenSharingCopies) {
    CFCBlockNode block;
    block.CreateNewVariable()->SetVariableName(L"x");
    auto copy = std::make_unique<CFCBlockNode>(block);
    EXPECT_TRUE(CFCBlockData::CopyVariables(&block, copy.get()));
    EXPECT_EQ(2, copy->GetVariableList()->GetCount());
    copy.reset();
}

// Documents

TEST(FCBlockData, CreateNewScriptAddsADocument) {
    auto const process = makeTree();
    auto* const block = addChild(process.get(), L"A");
    CFCDocumentNode* const first = block->CreateNewScript();
    CFCDocumentNode* const second = block->CreateNewScript();
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(177, first->GetNodeType());
    EXPECT_EQ(block, first->GetParentNode());
    EXPECT_EQ(first, block->GetScriptList()->GetAt(0));
    EXPECT_EQ(second, block->GetScriptList()->GetAt(1));

    CFCBlockData alone;
    std::unique_ptr<CFCDocumentNode> const document(alone.CreateNewScript());
    EXPECT_EQ(nullptr, document->GetParentNode());
}

// Connectors of a container

TEST(FCBlockData, AddConnectorKeepsOneForEachPair) {
    auto const process = makeTree();
    auto* const a = addChild(process.get(), L"A");
    auto* const b = addChild(process.get(), L"B");
    CFCConnector* const first = connect(process.get(), a, b, 6);
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(nullptr, connect(process.get(), a, b, 6));
    // Another grip makes no other pair; the other direction does.
    EXPECT_EQ(nullptr, connect(process.get(), a, b, 4));
    EXPECT_NE(nullptr, connect(process.get(), b, a, 6));
    first->DeleteConnecter(true);
    CFCConnector* const second = connect(process.get(), a, b, 4);
    ASSERT_NE(nullptr, second);
    EXPECT_EQ(nullptr, connect(process.get(), a, b, 6));
    EXPECT_EQ(3, process->GetConnectorList()->GetCount());
}

TEST(FCBlockData, AddConnectorPassesOverNullAndWhatItHolds) {
    auto const process = makeTree();
    auto* const a = addChild(process.get(), L"A");
    auto* const b = addChild(process.get(), L"B");
    process->AddConnector(nullptr);
    EXPECT_EQ(0, process->GetConnectorList()->GetCount());
    CFCConnector* const first = connect(process.get(), a, b);
    CFCConnector* const second = connect(process.get(), b, a);
    first->DeleteConnecter(true);
    process->AddConnector(first);
    process->AddConnector(second);
    EXPECT_EQ((std::vector{first, second}), elements(*process->GetConnectorList()));
}

TEST(FCBlockData, ConnectorsWithoutBlocksAreOnePair) {
    auto const process = makeTree();
    auto* const a = addChild(process.get(), L"A");
    EXPECT_NE(nullptr, connect(process.get(), nullptr, nullptr));
    EXPECT_EQ(nullptr, connect(process.get(), nullptr, nullptr));
    EXPECT_NE(nullptr, connect(process.get(), a, nullptr));
    EXPECT_EQ(nullptr, connect(process.get(), a, nullptr));
    EXPECT_NE(nullptr, connect(process.get(), nullptr, a));
    EXPECT_EQ(nullptr, connect(process.get(), nullptr, a));
    EXPECT_EQ(3, process->GetConnectorList()->GetCount());
}

TEST(FCBlockData, DeletesConnectors) {
    auto const process = makeTree();
    auto* const a = addChild(process.get(), L"A");
    auto* const b = addChild(process.get(), L"B");
    CFCConnector* const first = connect(process.get(), a, b);
    CFCConnector* const second = connect(process.get(), b, a);
    EXPECT_TRUE(process->DeleteConnector(first));
    EXPECT_EQ(std::vector{second}, elements(*process->GetConnectorList()));
    EXPECT_TRUE(process->DeleteConnector(nullptr));
    EXPECT_TRUE(process->DeleteConnectors());
    EXPECT_EQ(nullptr, process->GetConnectorList()->GetHeadPosition());
}

TEST(FCBlockData, SetConnectorListMovesTheObjects) {
    auto const process = makeTree();
    auto* const a = addChild(process.get(), L"A");
    auto* const b = addChild(process.get(), L"B");
    auto* const c = addChild(process.get(), L"C");
    CFCConnector* const own = connect(process.get(), a, b);
    CFCConnectorList other;
    auto moved = makeConnector(b, c);
    auto last = makeConnector(c, a);
    other.AddTail(moved.get());
    other.AddTail(last.get());
    process->SetConnectorList(&other);
    EXPECT_EQ((std::vector{own, moved.get(), last.get()}), elements(*process->GetConnectorList()));
    EXPECT_EQ(static_cast<IFCNode*>(moved.get()), reinterpret_cast<IFCNode*>(other.GetHeadPosition()));
    EXPECT_EQ(static_cast<IFCNode*>(last.get()), reinterpret_cast<IFCNode*>(other.GetTailPosition()));
    EXPECT_EQ(own, moved->GetPrev());
    EXPECT_STREQ(L"B", moved->GetStartBlockName());
    moved.release();
    last.release();
}

TEST(FCBlockData, SetConnectorListLeavesItsOwnElementsAlone) {
    auto const process = makeTree();
    auto* const a = addChild(process.get(), L"A");
    auto* const b = addChild(process.get(), L"B");
    connect(process.get(), a, b);
    connect(process.get(), b, a);
    CFCConnectorList shared(*process->GetConnectorList());
    process->SetConnectorList(process->GetConnectorList());
    process->SetConnectorList(&shared);
    process->SetConnectorList(nullptr);
    EXPECT_EQ(2, process->GetConnectorList()->GetCount());
}

TEST(FCBlockData, SetConnectorListMakesNoRingOfAListThatLeadsIntoIt) {
    auto const process = makeTree();
    auto* const a = addChild(process.get(), L"A");
    auto* const b = addChild(process.get(), L"B");
    CFCConnector* const own = connect(process.get(), a, b);
    auto const leading = makeConnector(b, a);
    CFCConnectorList other;
    other.AddTail(leading.get());
    leading->SetNext(own);
    process->SetConnectorList(&other);
    EXPECT_EQ(std::vector{own}, elements(*process->GetConnectorList()));
    EXPECT_EQ(nullptr, own->GetNext());
}

// State of composites

namespace {

struct CompositeCase {
    std::vector<int> children;
    int expected;
};

CompositeCase const kComposites[] = {
    {{}, 4},     {{6, 4}, 6}, {{1, 4}, 3}, {{4, 1}, 3},       {{1}, 1},    {{1, 1}, 1},       {{8, 1, 4}, 8},
    {{8, 6}, 6}, {{4, 4}, 4}, {{3}, 4},    {{5}, 4},          {{7}, 4},    {{9}, 4},          {{0}, 4},
    {{2}, 4},    {{1, 3}, 1}, {{1, 8}, 8}, {{4, 6, 8, 1}, 6}, {{8, 4}, 8}, {{77, -1, 33}, 4}, {{1, 5, 4}, 3},
};

} // namespace

TEST(FCBlockData, CompositeStateComesFromTheDescendants) {
    for (CompositeCase const& c : kComposites) {
        for (int const type : {165, 160}) {
            auto const composite = makeTree<CFCSubProcessNode>(type);
            composite->SetExecutionStateType(state(7));
            for (int const stored : c.children) {
                addChild(composite.get(), L"child")->SetExecutionStateType(state(stored));
            }
            EXPECT_EQ(c.expected, composite->GetExecutionStateType()) << testing::PrintToString(c.children);
        }
    }
}

TEST(FCBlockData, OtherBlocksReportWhatWasStored) {
    for (int const type : {56, 57, 60, 61, 150, 161, 162, 163, 164, 167}) {
        auto const block = makeTree<CFCSubProcessNode>(type);
        addChild(block.get(), L"failed")->SetExecutionStateType(state(6));
        block->SetExecutionStateType(state(2));
        EXPECT_EQ(2, block->GetExecutionStateType()) << type;
    }
    CFCBlockData alone;
    alone.SetExecutionStateType(state(5));
    EXPECT_EQ(5, alone.GetExecutionStateType());
}

TEST(FCBlockData, CompositeStateReachesAnyDepth) {
    auto const composite = makeTree<CFCSubProcessNode>(165);
    auto* const plain = addChild<CFCSubProcessNode>(composite.get(), L"plain", 61);
    plain->SetExecutionStateType(state(4));
    auto* const deep = addChild(plain, L"deep");
    deep->SetExecutionStateType(state(1));
    EXPECT_EQ(3, composite->GetExecutionStateType());
    deep->SetExecutionStateType(state(6));
    EXPECT_EQ(6, composite->GetExecutionStateType());
}

TEST(FCBlockData, InnerCompositeCountsWithItsOwnAnswer) {
    auto const composite = makeTree<CFCSubProcessNode>(165);
    auto* const inner = addChild<CFCSubProcessNode>(composite.get(), L"inner", 165);
    auto* const pending = addChild(composite.get(), L"pending");
    pending->SetExecutionStateType(state(1));
    // The empty inner one is "Executed", whatever is stored there.
    inner->SetExecutionStateType(state(6));
    EXPECT_EQ(3, composite->GetExecutionStateType());
    // A pending one inside makes the inner composite pending too.
    addChild(inner, L"deep")->SetExecutionStateType(state(1));
    EXPECT_EQ(1, composite->GetExecutionStateType());
    EXPECT_EQ(1, inner->GetExecutionStateType());
}

TEST(FCBlockData, NodesWithoutBlockDataAreLookedThrough) {
    auto const composite = makeTree<CFCSubProcessNode>(165);
    auto* const folder = new CFCSubGroupNode;
    // The type alone makes no composite of a folder.
    folder->SetNodeType(165);
    composite->AppendChild(folder, false);
    addChild(composite.get(), L"pending")->SetExecutionStateType(state(1));
    EXPECT_EQ(1, composite->GetExecutionStateType());
    addChild(folder, L"failed")->SetExecutionStateType(state(6));
    EXPECT_EQ(6, composite->GetExecutionStateType());
}

namespace {

// A host's node with block data of its own, which is no part of the node.
class DetachedData : public CFCNode {
public:
    void Create() override {}
    CFCBlockData* GetFCBlockData() override { return &data; }

    CFCBlockData data;
};

} // namespace

TEST(FCBlockData, DataThatStandsAloneIsNeverComposite) {
    auto const composite = makeTree<CFCSubProcessNode>(165);
    auto* const host = new DetachedData;
    host->SetNodeType(165);
    host->data.SetExecutionStateType(state(8));
    composite->AppendChild(host, false);
    EXPECT_EQ(8, host->data.GetExecutionStateType());
    EXPECT_EQ(8, composite->GetExecutionStateType());
}

TEST(FCBlockData, WorkflowProcessIsAComposite) {
    auto const process = makeTree<CFCBPMProcessNode>(160);
    process->SetExecutionStateType(state(1));
    EXPECT_EQ(4, process->GetExecutionStateType());
    addChild<CFCBPMTaskNode>(process.get(), L"T", 150)->SetExecutionStateType(state(8));
    EXPECT_EQ(8, process->GetExecutionStateType());
}

TEST(FCBlockData, DeeplyNestedCompositesAreWalkedOnce) {
    auto const root = makeTree<CFCSubProcessNode>(165);
    CFCSubProcessNode* node = root.get();
    for (int level = 0; level < 3000; ++level) {
        node = addChild<CFCSubProcessNode>(node, L"level", 165);
    }
    addChild(node, L"leaf")->SetExecutionStateType(state(8));
    EXPECT_EQ(8, root->GetExecutionStateType());
}

// Folder path

TEST(FCBlockData, FolderPathFollowsTheNodePathOnce) {
    EnvironmentGuard const unset;
    CFCEnvironment::SetProjectPath(L"C:\\Project");
    auto const process = makeTree();
    process->SetNodeId(L"P");
    auto* const sub = addChild<CFCSubProcessNode>(process.get(), L"S", 61);
    auto* const block = addChild(sub, L"B");
    EXPECT_STREQ(L"C:\\Project\\P\\S\\B", block->GetFolderPath());
    block->SetNodeId(L"Renamed");
    EXPECT_STREQ(L"C:\\Project\\P\\S\\B", block->GetFolderPath());
    block->SetFolderPath(L"elsewhere");
    EXPECT_STREQ(L"elsewhere", block->GetFolderPath());
    // Through the node interface there is none.
    EXPECT_STREQ(L"", static_cast<IFCNode*>(block)->GetFolderPath());
}

TEST(FCBlockData, FolderPathLosesTrailingBackslashes) {
    EnvironmentGuard const unset;
    CFCBlockNode block;
    EXPECT_STREQ(L"", block.GetFolderPath());
    CFCEnvironment::SetProjectPath(L"C:\\Project\\\\");
    EXPECT_STREQ(L"C:\\Project", block.GetFolderPath());
}

TEST(FCBlockData, DataOutsideANodeHasNoFolderPath) {
    EnvironmentGuard const unset;
    CFCEnvironment::SetProjectPath(L"C:\\Project");
    CFCBlockData data;
    EXPECT_STREQ(L"", data.GetFolderPath());
}

// Script names

namespace {

struct NameCase {
    wchar_t const* user;
    wchar_t const* base;
    wchar_t const* path;
    wchar_t const* name;
};

NameCase const kNames[] = {
    {L"", L"C:\\Base", L"C:\\Base\\a\\b\\c.py", L"a.b.c"},
    {L"\\u", L"C:\\Base", L"\\u\\a\\b\\c.py", L"a.b.c"},
    {L"\\u", L"C:\\Base", L"C:\\Base\\c.py", L"c"},
    {L"\\u", L"C:\\Base", L"C:/Base/a/c.py", L"a.c"},
    {L"\\u\\v", L"", L"/u/v/a/c.py", L"a.c"},
    // The root is sought anywhere, and one more character goes with it.
    {L"\\u", L"C:\\Base", L"X:\\u2\\c.py", L".c"},
    // Without an extension the last part is cut; without any dot nothing is.
    {L"\\u", L"", L"\\u\\a\\b", L"a"},
    {L"\\u", L"", L"\\u\\a", L"a"},
    {L"\\u", L"", L"\\u\\a.b\\c.x.py", L"a.b.c.x"},
    {L"\\u", L"", L"\\u", L""},
    // Below neither root: the name stays.
    {L"\\u", L"C:\\Base", L"D:\\c.py", L"before"},
    {L"\\u", L"C:\\Base", L"", L"before"},
    // Without roots the first character counts as the separator.
    {L"", L"", L"\\a\\c.py", L"a.c"},
};

} // namespace

TEST(FCBlockData, ScriptNameComesFromThePath) {
    EnvironmentGuard const unset;
    for (NameCase const& c : kNames) {
        SCOPED_TRACE(narrow(c.path));
        CFCEnvironment::m_strUserPath = c.user;
        CFCEnvironment::m_strBasePath = c.base;
        CFCBlockData data;
        data.SetLocation(static_cast<EScriptLocation>(1));
        data.SetScriptCode(L"already there");
        data.SetScriptName(L"before");
        data.SetFullScriptFileName(c.path);
        EXPECT_STREQ(L"before", data.GetScriptName());
        EXPECT_STREQ(c.name, data.GetRelativeName());
        EXPECT_STREQ(c.name, data.GetScriptName());
        EXPECT_STREQ(c.path, data.GetFullScriptFileName());

        data.SetScriptName(L"before");
        data.ReSetFullScriptFileName(c.path);
        EXPECT_STREQ(c.name, data.GetScriptName());

        data.SetScriptName(L"before");
        data.SetScriptNameFinal(L"final");
        EXPECT_STREQ(L"final", data.GetScriptNameFinal());
        EXPECT_STREQ(c.name, data.GetScriptName());
    }
}

TEST(FCBlockData, RelativeNameHasDotsOnly) {
    EnvironmentGuard const unset;
    CFCBlockData data;
    data.SetScriptCode(L"already there");
    data.SetScriptName(L"a\\b/c");
    EXPECT_STREQ(L"a.b.c", data.GetRelativeName());
    CFCBlockData empty;
    EXPECT_STREQ(L"", empty.GetRelativeName());
}

// Script files

class FCBlockDataScripts : public ScratchTest {
protected:
    FCBlockDataScripts() {
        CFCEnvironment::m_strBasePath = wideWithBackslashes(scratch / "base");
        CFCEnvironment::m_strUserPath = wideWithBackslashes(scratch / "user");
        CFCEnvironment::m_strMacroBasePath = wideWithBackslashes(scratch / "macro");
    }

    EnvironmentGuard unset;
};

TEST_F(FCBlockDataScripts, SetScriptNameLoadsTheLocalFile) {
    scratch.write("base/pkg/Name.py", "base");
    scratch.write("macro/pkg/Name.py", "macro");
    CFCBlockData data;
    data.SetLocation(static_cast<EScriptLocation>(5));
    data.SetScriptName(L"pkg.Name");
    EXPECT_EQ(0, data.GetLocation());
    EXPECT_STREQ(L"base", data.GetScriptCode());
    EXPECT_STREQ(CFCEnvironment::m_strBasePath + L"\\pkg\\Name.py", data.GetFullScriptFileName());

    scratch.write("user/pkg/Name.py", "user");
    CFCBlockData second;
    second.SetScriptName(L"pkg.Name");
    EXPECT_STREQ(L"user", second.GetScriptCode());
}

TEST_F(FCBlockDataScripts, MacroFilesComeSecond) {
    scratch.write("macro/pkg/Name.py", "macro");
    CFCBlockData data;
    data.SetScriptName(L"pkg.Name");
    EXPECT_STREQ(L"macro", data.GetScriptCode());
    EXPECT_STREQ(CFCEnvironment::m_strMacroBasePath + L"\\pkg\\Name.py", data.GetFullScriptFileName());
}

TEST_F(FCBlockDataScripts, NameWithoutFileLeavesAPath) {
    CFCBlockData data;
    data.SetScriptName(L"pkg.Name");
    EXPECT_STREQ(L"", data.GetScriptCode());
    EXPECT_STREQ(CFCEnvironment::m_strBasePath + L"\\pkg\\Name.py", data.GetFullScriptFileName());
}

TEST_F(FCBlockDataScripts, PresentTextIsKept) {
    scratch.write("base/Name.py", "file");
    CFCBlockData data;
    data.SetScriptCode(L"edited");
    data.SetScriptName(L"Name");
    EXPECT_STREQ(L"edited", data.GetScriptCode());
    EXPECT_STREQ(L"", data.GetFullScriptFileName());
}

TEST_F(FCBlockDataScripts, ChangedTextIsReadAnew) {
    scratch.write("base/Name.py", "file");
    CFCBlockData data;
    data.SetScriptCode(L"edited");
    data.SetScriptChanged(true);
    data.SetScriptName(L"Name");
    EXPECT_STREQ(L"file", data.GetScriptCode());
    EXPECT_TRUE(data.IsScriptChanged());
}

TEST_F(FCBlockDataScripts, OtherLocationsGoStraightToTheGuiScript) {
    scratch.write("macro/Name.py", "macro");
    CFCBlockData data;
    data.SetScriptCode(L"x");
    data.SetScriptName(L"Name");
    data.SetScriptCode(nullptr);
    data.SetLocation(static_cast<EScriptLocation>(1));
    data.LoadScript();
    // Only the local path is tried, and nothing lies there.
    EXPECT_STREQ(L"", data.GetScriptCode());
    EXPECT_STREQ(CFCEnvironment::m_strBasePath + L"\\Name.py", data.GetFullScriptFileName());
}

TEST_F(FCBlockDataScripts, GuiScriptTakesTheIdentifierAsName) {
    scratch.write("base/B1.py", "gui");
    CFCBlockData data;
    data.SetBlockID(L"B1");
    data.LoadGuiScript();
    EXPECT_STREQ(L"B1", data.GetScriptName());
    EXPECT_STREQ(CFCEnvironment::m_strBasePath + L"\\B1.py", data.GetFullScriptFileName());
    EXPECT_STREQ(L"gui", data.GetScriptCode());
}

TEST_F(FCBlockDataScripts, GuiScriptKeepsAPathThatIsThere) {
    auto const path = scratch.write("other.txt", "other");
    CFCBlockData data;
    data.SetScriptCode(L"text");
    data.SetFullScriptFileName(wide(path));
    data.LoadGuiScript();
    EXPECT_STREQ(L"other", data.GetScriptCode());
    data.SetFullScriptFileName(L"/no/such/file.py");
    data.LoadGuiScript();
    EXPECT_STREQ(L"other", data.GetScriptCode());
    data.SetFullScriptFileName(scratch.text());
    data.LoadGuiScript();
    EXPECT_STREQ(L"other", data.GetScriptCode());
}

TEST_F(FCBlockDataScripts, ScriptsAreSavedByteForByte) {
    std::string const bytes = "x = '\xC3\xA4'\r\n\xFF\n";
    scratch.write("base/Name.py", bytes);
    CFCBlockData data;
    data.SetScriptName(L"Name");
    data.SetCmdScriptCode(L"command");
    data.SetFullScriptFileName(scratch.text("out.py"));
    data.SaveScriptFile(false);
    EXPECT_EQ(bytes, scratch.read("out.py"));
    data.SaveScriptFile(true);
    EXPECT_EQ("command", scratch.read("out.py"));
    data.SaveScript(scratch.text("second.py"), false);
    EXPECT_EQ(bytes, scratch.read("second.py"));
}

TEST_F(FCBlockDataScripts, WhatCannotBeSavedIsPassedOver) {
    CFCBlockData data;
    data.SetScriptCode(L"text");
    data.SaveScriptFile(false);
    data.SaveScript(nullptr, false);
    data.SaveScript(L"", false);
    data.SaveScript(scratch.text(), false);
    data.SaveScript(scratch.text("missing/out.py"), false);
    EXPECT_TRUE(std::filesystem::is_empty(scratch.path()));
}
