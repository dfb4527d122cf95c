#include "flowmere/model/NodeKinds.h"

#include "flowmere/model/FCEnumerations.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <set>
#include <string>

namespace {

using flowmere::findNodeKind;
using flowmere::nodeKinds;
using flowmere::test::narrow;

std::string text(wchar_t const* name) {
    return name == nullptr ? std::string("-") : narrow(name);
}

TEST(NodeKinds, StandInOrderOfTheirCodes) {
    int last = -1;
    for (flowmere::NodeKind const& kind : nodeKinds()) {
        EXPECT_GT(kind.code, last);
        EXPECT_EQ(findNodeKind(kind.code), &kind);
        last = kind.code;
    }
}

TEST(NodeKinds, CodesOutsideTheTableHaveNone) {
    for (int const code : {-1, 1, 54, 62, 67, 78, 84, 87, 149, 166, 175, 180, 181, 184, 1000,
                           std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        EXPECT_EQ(findNodeKind(code), nullptr) << code;
        EXPECT_EQ(flowmere::elementOfNodeType(code), nullptr) << code;
        EXPECT_EQ(flowmere::shapeOfNodeType(code), nullptr) << code;
    }
}

TEST(NodeKinds, ElementsAndShapesAreWrittenByCode) {
    struct Row {
        int code;
        char const* shape;
        char const* element;
    };
    Row const rows[] = {
        {0, "-", "UnKnown"},
        {55, "Oval", "BLOCK"},
        {56, "-", "PROCESS"},
        {57, "Rectangle", "BLOCK"},
        {58, "Decision", "BLOCK"},
        {59, "RoundRect", "BLOCK"},
        {60, "Rectangle", "SUB_PROCESS"},
        {61, "Rectangle", "SUB_PROCESS"},
        {68, "-", "-"},
        {69, "-", "PROCESS"},
        {70, "-", "PROCESS"},
        {71, "-", "SUB_GRP"},
        {72, "-", "-"},
        {73, "-", "-"},
        {74, "-", "-"},
        {75, "-", "PROCESS"},
        {76, "-", "-"},
        {77, "-", "-"},
        {79, "-", "-"},
        {80, "-", "DATATYPE"},
        {81, "-", "GROUP"},
        {82, "-", "SUB_GROUP"},
        {83, "-", "-"},
        {85, "-", "-"},
        {86, "-", "-"},
        {150, "ApplicationTask", "task-node"},
        {151, "UserTask", "-"},
        {152, "AutomationTask", "-"},
        {153, "DecisionTask", "task-node"},
        {154, "StartState", "start-state"},
        {155, "EndState", "end-state"},
        {156, "Fork", "fork"},
        {157, "Join", "join"},
        {158, "Mail", "-"},
        {159, "ESB", "-"},
        {160, "ProcessState", "process-definition"},
        {161, "SuperState", "super-state"},
        {162, "SubProcessLoop", "task-node"},
        {163, "DecisionLoop", "task-node"},
        {164, "SpawningLoop", "task-node"},
        {165, "BasicSubProcess", "task-node"},
        {167, "ClientApplication", "task-node"},
        {168, "-", "-"},
        {169, "-", "-"},
        {170, "-", "-"},
        {171, "-", "-"},
        {172, "-", "PACKAGE"},
        {173, "-", "-"},
        {174, "-", "-"},
        {176, "Favourites", "FAVOURITES"},
        {177, "Document", "DOCUMENT"},
        {178, "-", "HISTORY"},
        {179, "-", "CUSTOM_FOLDER"},
        {182, "-", "-"},
        {183, "-", "-"},
    };
    EXPECT_EQ(nodeKinds().size(), std::size(rows));
    for (Row const& row : rows) {
        EXPECT_EQ(text(flowmere::shapeOfNodeType(row.code)), row.shape) << row.code;
        EXPECT_EQ(text(flowmere::elementOfNodeType(row.code)), row.element) << row.code;
    }
}

TEST(NodeKinds, ElementsOfADocumentGiveTheirTypes) {
    std::map<std::wstring, int> const elements = {
        {L"BLOCK", 57},          {L"TERMINATOR", 55},
        {L"DECISION", 58},       {L"task-node", 150},
        {L"BPM_USER_TASK", 151}, {L"BPM_EXECUTION_TASK", 152},
        {L"decision", 153},      {L"start-state", 154},
        {L"end-state", 155},     {L"fork", 156},
        {L"join", 157},          {L"BPM_MAIL", 158},
        {L"BPM_ESB", 159},       {L"process-definition", 160},
        {L"super-state", 161},   {L"ClientApplication", 167},
        {L"SUB_PROCESS", 61},    {L"PROCESS", 56},
        {L"SUB_GRP", 71},        {L"CODE", 79},
    };
    std::size_t read = 0;
    for (flowmere::NodeKind const& kind : nodeKinds()) {
        read += kind.readElement != nullptr ? 1U : 0U;
    }
    EXPECT_EQ(read, elements.size());
    for (auto const& [element, code] : elements) {
        EXPECT_EQ(flowmere::nodeTypeOfElement(element), code) << narrow(element.c_str());
    }
    for (std::wstring const other : {L"", L"block", L"Block", L"BLOCK ", L"FORK", L"FILE_LINK", L"FILE_LINK_LIB",
                                     L"DATATYPE", L"GROUP", L"SUB_GROUP", L"PACKAGE", L"FAVOURITES", L"DOCUMENT",
                                     L"HISTORY", L"CUSTOM_FOLDER", L"UnKnown", L"CONNECTOR", L"VARIABLE"}) {
        EXPECT_EQ(flowmere::nodeTypeOfElement(other), 0) << narrow(other.c_str());
    }
}

TEST(NodeKinds, ShapesGiveTheirTypesAsFarAsTheyAreRead) {
    std::map<std::wstring, int> const shapes = {
        {L"Diamond", 58},
        {L"Decision", 58},
        {L"Terminator", 55},
        {L"Oval", 55},
        {L"RoundRect", 59},
        {L"ApplicationTask", 150},
        {L"UserTask", 151},
        {L"DecisionTask", 153},
        {L"StartState", 154},
        {L"EndState", 155},
        {L"Fork", 156},
        {L"Join", 157},
        {L"Mail", 158},
        {L"ESB", 159},
        {L"ProcessState", 160},
        {L"SuperState", 161},
        {L"SubProcessLoop", 162},
        {L"DecisionLoop", 163},
        {L"SpawningLoop", 164},
        {L"BasicSubProcess", 165},
        {L"ClientApplication", 167},
    };
    std::size_t read = 0;
    for (flowmere::NodeKind const& kind : nodeKinds()) {
        read += (kind.readShape != nullptr ? 1U : 0U) + (kind.oldShape != nullptr ? 1U : 0U);
    }
    EXPECT_EQ(read, shapes.size());
    for (auto const& [shape, code] : shapes) {
        EXPECT_EQ(flowmere::nodeTypeOfShape(shape), code) << narrow(shape.c_str());
    }
    for (std::wstring const other :
         {L"", L"Rectangle", L"AutomationTask", L"Favourites", L"Document", L"oval", L"diamond", L"Circle"}) {
        EXPECT_EQ(flowmere::nodeTypeOfShape(other), 0) << narrow(other.c_str());
    }
}

TEST(NodeKinds, NamesOfTheHintsGiveTheirTypes) {
    std::map<std::wstring, int> const names = {
        {L"START", 154},          {L"END", 155},          {L"APPLICATIONTASK", 150}, {L"FORK", 156},
        {L"JOIN", 157},           {L"DECISIONTASK", 153}, {L"SUPERSTATE", 161},      {L"BASICSUPERSTATE", 165},
        {L"SUPERSTATELOOP", 162}, {L"DECISIONLOOP", 163}, {L"SPAWNINGLOOP", 164},    {L"DECISION", 58},
        {L"SUBPROCESS", 61},      {L"BLOCK", 57},         {L"TERMINATOR", 55},
    };
    std::size_t named = 0;
    for (flowmere::NodeKind const& kind : nodeKinds()) {
        named += kind.name != nullptr ? 1U : 0U;
    }
    EXPECT_EQ(named, names.size());
    for (auto const& [name, code] : names) {
        EXPECT_EQ(flowmere::nodeTypeOfName(name), code) << narrow(name.c_str());
    }
    for (std::wstring const other : {L"", L"fork", L" FORK", L"PROCESS", L"ROUNDRECT", L"USERTASK"}) {
        EXPECT_EQ(flowmere::nodeTypeOfName(other), 0) << narrow(other.c_str());
    }
}

TEST(NodeKinds, NamesAreUnambiguous) {
    std::set<std::wstring> elements;
    std::set<std::wstring> shapes;
    std::set<std::wstring> names;
    for (flowmere::NodeKind const& kind : nodeKinds()) {
        if (kind.readElement != nullptr) {
            EXPECT_TRUE(elements.insert(kind.readElement).second) << narrow(kind.readElement);
        }
        for (wchar_t const* const shape : {kind.readShape, kind.oldShape}) {
            if (shape != nullptr) {
                EXPECT_TRUE(shapes.insert(shape).second) << narrow(shape);
            }
        }
        if (kind.name != nullptr) {
            EXPECT_TRUE(names.insert(kind.name).second) << narrow(kind.name);
        }
    }
}

TEST(NodeKinds, CodesHaveNames) {
    // The numbers go through files and host code.
    struct Row {
        eShapeType type;
        int code;
    };
    Row const rows[] = {
        {eShapeType_SubProcessAlternate, 60},
        {eShapeType_MimeTypeRoot, 86},
        {eShapeType_ApplicationGroup, 168},
        {eShapeType_HelpModule, 170},
        {eShapeType_None, 0},
        {eShapeType_Terminator, 55},
        {eShapeType_Process, 56},
        {eShapeType_Block, 57},
        {eShapeType_Decision, 58},
        {eShapeType_SubProcess, 61},
        {eShapeType_Connector, 68},
        {eShapeType_ProcessList, 69},
        {eShapeType_FileNode, 70},
        {eShapeType_Folder, 71},
        {eShapeType_Variable, 72},
        {eShapeType_LibraryFolder, 73},
        {eShapeType_DefaultBlocks, 74},
        {eShapeType_LibraryBlocks, 75},
        {eShapeType_ExistingProcessBlocks, 76},
        {eShapeType_MacroBlocks, 77},
        {eShapeType_Task, 150},
        {eShapeType_StartState, 154},
        {eShapeType_EndState, 155},
        {eShapeType_Fork, 156},
        {eShapeType_Join, 157},
        {eShapeType_SuperState, 161},
        {eShapeType_WorkflowProcess, 160},
        {eShapeType_BasicSubProcess, 165},
        {eShapeType_Application, 167},
        {eShapeType_Favourites, 176},
        {eShapeType_Document, 177},
        {eShapeType_History, 178},
        {eShapeType_CustomFolder, 179},
        {eShapeType_Deployment, 182},
        {eShapeType_Resource, 183},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(static_cast<int>(row.type), row.code);
        EXPECT_NE(findNodeKind(row.type), nullptr) << row.code;
    }
}

} // namespace
