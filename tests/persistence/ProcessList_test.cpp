#include "ListTestSupport.h"

#include "flowmere/xml/XmlElements.h"
#include "flowmere/xml/XmlFile.h"

#include <gmock/gmock.h>
#include <xercesc/dom/DOM.hpp>

#include <functional>
#include <limits>
#include <utility>

using namespace flowmere::test;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace {

class OpenListReader : public CFCProcessListReader {
public:
    using CFCProcessListReader::m_bBPMList;
    using CFCProcessListReader::m_bUserList;
    using CFCProcessListReader::m_pList;
    using CFCReader::m_pDocument;
};

class OpenListWriter : public CFCProcessListWriter {
public:
    using CFCProcessListWriter::m_bWriteAll;
    using CFCWriter::m_bDeep;
    using CFCWriter::m_strRootName;
};

class ProcessList : public ScratchTest {
protected:
    EnvironmentGuard environment;
    CFCNodeFactory factory;
    ListTree list{new CFCProcessList};
    OpenListReader reader;
    std::string printed;

    bool parseFile(TuString const& path, wchar_t const* base = L"") {
        reader.SetNodeFactory(&factory);
        testing::internal::CaptureStdout();
        bool const result = reader.Parse(path, list.get(), base);
        printed = testing::internal::GetCapturedStdout();
        return result;
    }
    bool parse(std::string_view text, std::string const& name = "process.lst", wchar_t const* base = L"") {
        scratch.write(name, text);
        return parseFile(scratch.text(name), base);
    }
    // The list that has this inside.
    IFCNode* parseInside(std::string const& inside, std::string const& name = "process.lst") {
        if (!parse("<Processes>" + inside + "</Processes>", name))
            throw std::runtime_error("not read: " + inside);
        return list.get();
    }
    // A path whose folder part is another way to the scratch folder.
    TuString dotted(wchar_t const* name) const { return scratch.text() + L"/./" + name; }

    std::string write(IFCNode* node, bool writeAll = true) {
        CFCProcessListWriter writer;
        EXPECT_TRUE(writer.WriteFile(scratch.text("written.lst"), node, false, writeAll));
        return scratch.read("written.lst");
    }
};

// --- Parse ---------------------------------------------------------------------------------------------------------

TEST_F(ProcessList, EveryElementOfAListMakesItsNode) {
    ASSERT_TRUE(parse("<Processes><PROCESS Name='P'/><SUB_GRP Name='G'><SUB_GRP Name='H'><PROCESS Name='Q'/></SUB_GRP>"
                      "<CODE Name='C'>some code</CODE></SUB_GRP></Processes>"));
    EXPECT_EQ(outlineOf(list.get()), "P G(H(Q) C)");
    struct Row {
        wchar_t const* caption;
        int type;
        std::type_info const& kind;
    };
    for (Row const& row : {Row{L"P", 70, typeid(CFCFileNode)}, Row{L"G", 71, typeid(CFCSubGroupNode)},
                           Row{L"H", 71, typeid(CFCSubGroupNode)}, Row{L"Q", 70, typeid(CFCFileNode)},
                           Row{L"C", 79, typeid(CFCCodeNode)}}) {
        IFCNode* const node = found(list.get(), row.caption);
        EXPECT_EQ(node->GetNodeType(), row.type) << narrow(row.caption);
        EXPECT_TRUE(typeid(*node) == row.kind) << narrow(row.caption);
    }
    EXPECT_STREQ(found(list.get(), L"C")->GetNodeCode(), L"some code");
    EXPECT_EQ(printed, "");
}

TEST_F(ProcessList, EachChildIsPutInFrontOfTheOnesBefore) {
    parseInside("<PROCESS Name='first'/><PROCESS Name='second'/><PROCESS Name='third'/>");
    EXPECT_STREQ(list->GetChild()->GetNodeCaption(), L"third");
    EXPECT_STREQ(list->GetChild()->GetNext()->GetNext()->GetNodeCaption(), L"first");
    for (IFCNode* const child : childrenOf(list.get()))
        EXPECT_EQ(child->GetParentNode(), list.get());
}

TEST_F(ProcessList, OtherElementsAreSkippedWithTheirSubtrees) {
    parseInside("<OTHER><PROCESS Name='inner'/></OTHER><!-- c --><PROCESS Name='a'/>text<process Name='b'/>"
                "<PROCESS_LST><SUB_GRP Name='c'/></PROCESS_LST><BLOCK Name='d'/>");
    EXPECT_EQ(outlineOf(list.get()), "a");
}

TEST_F(ProcessList, AProcessMayHoldEntriesToo) {
    parseInside("<PROCESS Name='a'><PROCESS Name='b'><SUB_GRP Name='c'/></PROCESS></PROCESS>");
    EXPECT_EQ(outlineOf(list.get()), "a(b(c()))");
}

TEST_F(ProcessList, CodeMayHoldEntriesToo) {
    parseInside("<CODE Name='c'>x<PROCESS Name='a'/><CODE Name='d'/></CODE>");
    EXPECT_EQ(outlineOf(list.get()), "c(a d)");
}

TEST_F(ProcessList, AnyRootElementWillDo) {
    for (char const* root : {"Processes", "PROCESS_LST", "Process", "Anything"}) {
        list.reset(new CFCProcessList);
        std::string const name(root);
        ASSERT_TRUE(parse("<" + name + "><PROCESS Name='a'/></" + name + ">")) << root;
        EXPECT_EQ(outlineOf(list.get()), "a") << root;
    }
}

TEST_F(ProcessList, AFileOfAnotherKindIsAnEmptyList) {
    ASSERT_TRUE(parse("<Process Name=''><BLOCK Name='x'/></Process>"));
    EXPECT_EQ(list->GetChild(), nullptr);
    EXPECT_STREQ(list->GetNodeCaption(), L"Processes");
}

TEST_F(ProcessList, TheListGetsItsTypeAndItsName) {
    struct Row {
        char const* name;
        char const* root;
        wchar_t const* caption;
    };
    for (Row const& row :
         {Row{"process.lst", "<Processes/>", L"Processes"}, Row{"process.lst", "<Processes Name=''/>", L"Processes"},
          Row{"process.lst", "<Processes Name='Mine'/>", L"Mine"},
          Row{"BPMProcess.lst", "<Processes/>", L"BPM Processes"},
          Row{"BPMProcess.lst", "<Processes Name=''/>", L"BPM Processes"},
          Row{"BPMProcess.lst", "<Processes Name='Mine'/>", L"Mine"},
          Row{"bpmprocess.lst", "<Processes/>", L"Processes"},
          Row{"oldBPMProcess.lst.bak", "<Processes/>", L"BPM Processes"}}) {
        list.reset(new CFCProcessList);
        list->SetNodeType(12);
        list->SetNodeCaption(L"before");
        ASSERT_TRUE(parse(row.root, row.name));
        EXPECT_STREQ(list->GetNodeCaption(), row.caption) << row.name << " " << row.root;
        EXPECT_EQ(list->GetNodeType(), 69);
        EXPECT_EQ(reader.m_pList, list.get());
    }
}

TEST_F(ProcessList, ABareFileNameIsNoBPMList) {
    std::filesystem::path const before = std::filesystem::current_path();
    scratch.write("BPMProcess.lst", "<Processes><PROCESS Name='a' Type='BPT'/></Processes>");
    std::filesystem::current_path(scratch.path());
    bool const bare = parseFile(L"BPMProcess.lst");
    std::filesystem::current_path(before);
    ASSERT_TRUE(bare);
    EXPECT_STREQ(list->GetNodeCaption(), L"Processes");
    EXPECT_FALSE(reader.m_bBPMList);
    EXPECT_EQ(found(list.get(), L"a")->GetProjectType(), EProjectType_BPT);
}

TEST_F(ProcessList, InABPMListEveryFileIsOfThatKind) {
    parseInside(
        "<PROCESS Name='a'/><PROCESS Name='b' Type='BPT'/><PROCESS Name='c' Type='MSP'/>"
        "<PROCESS Name='d' Type='nonsense'/><SUB_GRP Name='g' Type='BPT'><PROCESS Name='e' Type='BPT'/></SUB_GRP>",
        "BPMProcess.lst");
    for (wchar_t const* caption : {L"a", L"b", L"c", L"d", L"e"})
        EXPECT_EQ(found(list.get(), caption)->GetProjectType(), EProjectType_TASK) << narrow(caption);
    EXPECT_EQ(found(list.get(), L"g")->GetProjectType(), EProjectType_None) << "groups have no kind";
}

TEST_F(ProcessList, TheKindOfOneFileDoesNotReachTheNext) {
    parseInside("<PROCESS Name='a'/>", "BPMProcess.lst");
    list.reset(new CFCProcessList);
    parseInside("<PROCESS Name='a'/>");
    EXPECT_FALSE(reader.m_bBPMList);
    EXPECT_STREQ(list->GetNodeCaption(), L"Processes");
}

TEST_F(ProcessList, AListBelowTheUserPathIsTheUsersOwn) {
    scratch.write("own/process.lst", "<Processes><SUB_GRP Name='g'><PROCESS Name='a'/></SUB_GRP></Processes>");
    CFCEnvironment::SetBasePath(scratch.text());
    CFCEnvironment::SetUserPath(scratch.text("own"));
    ASSERT_TRUE(parseFile(scratch.text("own/process.lst")));
    EXPECT_TRUE(reader.m_bUserList);
    for (IFCNode* const node : allBelow(list.get()))
        EXPECT_TRUE(node->IsNewPath()) << narrow(node->GetNodeCaption());
    EXPECT_FALSE(list->IsNewPath()) << "the list itself is not asked";

    list.reset(new CFCProcessList);
    parseInside("<SUB_GRP Name='g'><PROCESS Name='a'/></SUB_GRP>");
    EXPECT_FALSE(reader.m_bUserList);
    for (IFCNode* const node : allBelow(list.get()))
        EXPECT_FALSE(node->IsNewPath()) << narrow(node->GetNodeCaption());
}

TEST_F(ProcessList, WithoutAUserPathTheCommonListIsTheUsersOwn) {
    CFCEnvironment::SetBasePath(scratch.text());
    parseInside("<PROCESS Name='a'/>");
    EXPECT_TRUE(found(list.get(), L"a")->IsNewPath());
    CFCEnvironment::SetBasePath(L"elsewhere");
    list.reset(new CFCProcessList);
    parseInside("<PROCESS Name='a'/>");
    EXPECT_FALSE(found(list.get(), L"a")->IsNewPath()) << "the user path is then the base path";
}

TEST_F(ProcessList, TheUserPathCountsAnywhereInThePath) {
    scratch.write("users/eve/process.lst", "<P><PROCESS Name='a'/></P>");
    std::filesystem::path const before = std::filesystem::current_path();
    std::filesystem::current_path(scratch.path());
    CFCEnvironment::SetUserPath(L"users");
    bool const isRead = parseFile(scratch.text("users/eve/process.lst"));
    std::filesystem::current_path(before);
    ASSERT_TRUE(isRead);
    EXPECT_TRUE(reader.m_bUserList) << "also behind its start";
    EXPECT_TRUE(found(list.get(), L"a")->IsNewPath());
}

TEST_F(ProcessList, TheEmptyUserPathOccursInEveryPath) {
    parseInside("<PROCESS Name='a'/>");
    EXPECT_TRUE(reader.m_bUserList);
}

TEST_F(ProcessList, EveryNodeGetsTheBaseDirectory) {
    ASSERT_TRUE(parse("<P><SUB_GRP Name='g'><PROCESS Name='a'/><PROCESS Name='b' FILE='x'/></SUB_GRP></P>",
                      "process.lst", L"C:\\base"));
    for (wchar_t const* caption : {L"a", L"b"})
        EXPECT_STREQ(found(list.get(), caption)->GetItemFileBaseDirectory(), L"C:\\base");
    EXPECT_STREQ(list->GetItemFileBaseDirectory(), L"");
}

TEST_F(ProcessList, ParseNeedsAPathAListAndWellFormedXml) {
    scratch.write("good.lst", "<P/>");
    reader.SetNodeFactory(&factory);
    list->SetNodeType(12);
    list->SetNodeCaption(L"before");
    for (auto const& [path, prints] : {std::pair<TuString, bool>{L"", false},
                                       {nullptr, false},
                                       {scratch.text("missing.lst"), true},
                                       {scratch.text(), true}}) {
        EXPECT_FALSE(parseFile(path)) << narrow(path);
        EXPECT_EQ(printed, prints ? "Init failed\n" : "") << narrow(path);
    }
    for (char const* broken : {"", "<P>", "<P><PROCESS</P>", "no list", "<P/><P/>"}) {
        EXPECT_FALSE(parse(broken, "broken.lst")) << broken;
        EXPECT_EQ(printed, "Init failed\n") << broken;
    }
    EXPECT_EQ(list->GetNodeType(), 12) << "a list that was not read stays as it was";
    EXPECT_STREQ(list->GetNodeCaption(), L"before");
    EXPECT_EQ(reader.m_pList, nullptr);
    testing::internal::CaptureStdout();
    EXPECT_FALSE(reader.Parse(scratch.text("good.lst"), nullptr, L""));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "") << "nothing was tried";
    EXPECT_TRUE(parseFile(scratch.text("good.lst"), nullptr));
}

TEST_F(ProcessList, WithoutAFactoryTheListIsEmpty) {
    scratch.write("good.lst", "<P Name='L'><PROCESS Name='a'/></P>");
    CFCProcessListReader bare;
    EXPECT_TRUE(bare.Parse(scratch.text("good.lst"), list.get(), L""));
    EXPECT_STREQ(list->GetNodeCaption(), L"L");
    EXPECT_EQ(list->GetChild(), nullptr);
}

TEST_F(ProcessList, ASecondFileIsAddedToTheList) {
    parseInside("<PROCESS Name='a'/>");
    parseInside("<PROCESS Name='a'/><PROCESS Name='b'/>");
    EXPECT_EQ(outlineOf(list.get()), "a a b");
}

TEST_F(ProcessList, ArgumentsMayBeAnswersOfTheEnvironment) {
    scratch.write("BrindleExec/own/process.lst", "<P><PROCESS Name='a'/></P>");
    CFCEnvironment::SetBasePath(scratch.text("BrindleExec"));
    CFCEnvironment::SetUserPath(scratch.text("BrindleExec/own"));
    reader.SetNodeFactory(&factory);
    ASSERT_TRUE(reader.Parse(CFCEnvironment::GetUserProcessListPath(false), list.get(), CFCEnvironment::GetUserPath()));
    EXPECT_STREQ(found(list.get(), L"a")->GetItemFileBaseDirectory(), scratch.text("BrindleExec/own"));
    EXPECT_TRUE(found(list.get(), L"a")->IsNewPath());
}

TEST_F(ProcessList, ACaptionMayBeTheArgument) {
    scratch.write("good.lst", "<P Name='new'><PROCESS Name='a'/></P>");
    list->SetNodeCaption(scratch.text("good.lst"));
    reader.SetNodeFactory(&factory);
    EXPECT_TRUE(reader.Parse(list->GetNodeCaption(), list.get(), list->GetNodeCaption()));
    EXPECT_STREQ(list->GetNodeCaption(), L"new");
    EXPECT_STREQ(found(list.get(), L"a")->GetItemFileBaseDirectory(), scratch.text("good.lst"));
}

// --- Load and its steps ----------------------------------------------------------------------------------------

TEST_F(ProcessList, LoadNeedsAnElementAndANode) {
    ASSERT_TRUE(parse("<P><PROCESS Name='a'/></P>"));
    auto* const root = reader.m_pDocument->getDocumentElement();
    EXPECT_FALSE(reader.Load(nullptr, list.get(), L""));
    EXPECT_FALSE(reader.Load(root, nullptr, L""));
    EXPECT_TRUE(reader.Load(root, found(list.get(), L"a"), nullptr));
    EXPECT_EQ(outlineOf(list.get()), "a(a)");
    reader.LoadPropertiesLite(nullptr, list.get());
    reader.LoadPropertiesLite(root, nullptr);
    EXPECT_STREQ(list->GetNodeCaption(), L"Processes");
}

TEST_F(ProcessList, LoadGoesThroughTheVirtualSteps) {
    struct Telling : CFCProcessListReader {
        std::string told;
        void LoadPropertiesLite(xercesc::DOMElement* element, IFCNode* node) override {
            CFCProcessListReader::LoadPropertiesLite(element, node);
            told += narrow(node->GetNodeCaption()) + (node->GetParentNode() != nullptr ? "+" : "-") +
                    (node->GetChild() != nullptr ? "full " : "empty ");
        }
        void LoadCode(xercesc::DOMElement* element, IFCNode* node) override {
            told += "code of " + narrow(node->GetNodeCaption()) + " ";
            CFCProcessListReader::LoadCode(element, node);
        }
    } telling;
    telling.SetNodeFactory(&factory);
    scratch.write("p.lst", "<P><SUB_GRP Name='g'><PROCESS Name='a'/><CODE Name='c'>x</CODE></SUB_GRP></P>");
    ASSERT_TRUE(telling.Parse(scratch.text("p.lst"), list.get(), L""));
    EXPECT_EQ(telling.told, "g+empty a+empty c+empty code of c ") << "a node is hooked in first and filled last";
}

// --- Attributes read -------------------------------------------------------------------------------------------

TEST_F(ProcessList, EveryAttributeIsRead) {
    parseInside("<PROCESS Name='Beam' FILE='lib\\beam.bpt' Type='MSP' ID='b-7' Version='2.5' CheckedOutUser='eve' "
                "IsDirty='1' IsCheckedOut='1' IsUptoDate='1'/>");
    IFCNode* const node = list->GetChild();
    EXPECT_STREQ(node->GetNodeCaption(), L"Beam");
    EXPECT_STREQ(node->GetItemFilePath(), L"lib\\beam.bpt");
    EXPECT_EQ(node->GetProjectType(), EProjectType_MSP);
    EXPECT_STREQ(node->GetNodeId(), L"b-7");
    EXPECT_EQ(node->GetVersionNo(), 2.5F);
    EXPECT_STREQ(node->GetCheckedOutUser(), L"eve");
    EXPECT_TRUE(node->IsDirty());
    EXPECT_TRUE(node->IsCheckedOut());
    EXPECT_TRUE(node->IsUptoDate());
}

TEST_F(ProcessList, AbsentAttributesResetWhatANodeHad) {
    scratch.write("p.lst", "<P><PROCESS/></P>");
    reader.SetNodeFactory(&factory);
    ASSERT_TRUE(reader.Initialize(scratch.text("p.lst")));
    auto* const element = flowmere::firstElement(reader.m_pDocument->getDocumentElement());
    IFCNode* const node = addFile(list.get(), L"Old", L"old.bpt");
    node->SetProjectType(EProjectType_Report);
    node->SetNodeId(L"old");
    node->SetVersionNo(7.0F);
    node->SetCheckedOutUser(L"eve");
    node->SetDirty(true);
    node->SetCheckedOut(true);
    node->SetUptoDate(true);
    reader.LoadPropertiesLite(element, node);
    EXPECT_STREQ(node->GetNodeCaption(), L"");
    EXPECT_STREQ(node->GetItemFilePath(), L"old.bpt") << "only a path in the file replaces a path";
    EXPECT_EQ(node->GetProjectType(), 0);
    EXPECT_STREQ(node->GetNodeId(), L"");
    EXPECT_EQ(node->GetVersionNo(), 0.0F) << "not the 1.0 of a new node";
    EXPECT_STREQ(node->GetCheckedOutUser(), L"");
    EXPECT_FALSE(node->IsDirty());
    EXPECT_FALSE(node->IsCheckedOut());
    EXPECT_FALSE(node->IsUptoDate());
    EXPECT_FALSE(node->IsNewPath()) << "as the reader takes the file for no user's list";
}

TEST_F(ProcessList, AnEmptyFileAttributeKeepsThePath) {
    scratch.write("p.lst", "<P FILE=''/>");
    ASSERT_TRUE(reader.Initialize(scratch.text("p.lst")));
    IFCNode* const node = addFile(list.get(), L"a", L"old.bpt");
    reader.LoadPropertiesLite(reader.m_pDocument->getDocumentElement(), node);
    EXPECT_STREQ(node->GetItemFilePath(), L"old.bpt");
}

TEST_F(ProcessList, AMissingOrUnknownTypeIsTheFirstOne) {
    struct Row {
        char const* type;
        int value;
    };
    for (Row const& row :
         {Row{"", 0}, Row{"Type='BPT'", 0}, Row{"Type='TASK'", 1}, Row{"Type='MSP'", 2}, Row{"Type='Report'", 3},
          Row{"Type='Execute'", 4}, Row{"Type='Debug'", 5}, Row{"Type='APPLICATION'", 6}, Row{"Type='PROCESSLST'", 7},
          Row{"Type=''", 0}, Row{"Type='task'", 0}, Row{"Type='8'", 0}}) {
        list.reset(new CFCProcessList);
        parseInside("<PROCESS " + std::string(row.type) + "/>");
        EXPECT_EQ(list->GetChild()->GetProjectType(), row.value) << row.type;
    }
}

TEST_F(ProcessList, VersionsAreNumbersOfSinglePrecision) {
    struct Row {
        char const* text;
        float value;
    };
    constexpr float kLargest = std::numeric_limits<float>::max();
    for (Row const& row : {Row{"1", 1.0F}, Row{"1.1", 1.1F}, Row{"-3.25", -3.25F}, Row{" 2 ", 2.0F}, Row{"", 0.0F},
                           Row{"new", 0.0F}, Row{"3beta", 3.0F}, Row{"1e2", 100.0F}, Row{"1e300", kLargest},
                           Row{"-1e300", -kLargest}, Row{"1e400", kLargest}}) {
        list.reset(new CFCProcessList);
        parseInside("<PROCESS Version='" + std::string(row.text) + "'/>");
        EXPECT_EQ(list->GetChild()->GetVersionNo(), row.value) << row.text;
    }
}

TEST_F(ProcessList, FlagsTakeTheirUsualForms) {
    for (auto const& [text, value] : {std::pair<char const*, bool>{"1", true},
                                      {"0", false},
                                      {"true", true},
                                      {"false", false},
                                      {"Y", true},
                                      {"maybe", false},
                                      {"", false},
                                      {"2", false}}) {
        list.reset(new CFCProcessList);
        std::string const flag(text);
        parseInside("<PROCESS IsDirty='" + flag + "' IsCheckedOut='" + flag + "' IsUptoDate='" + flag + "'/>");
        EXPECT_EQ(list->GetChild()->IsDirty(), value) << text;
        EXPECT_EQ(list->GetChild()->IsCheckedOut(), value) << text;
        EXPECT_EQ(list->GetChild()->IsUptoDate(), value) << text;
    }
}

TEST_F(ProcessList, WhatAGroupCannotKeepIsLost) {
    parseInside("<SUB_GRP Name='g' FILE='x' ID='7' Type='BPT' Version='3' CheckedOutUser='eve' IsDirty='1' "
                "IsCheckedOut='1' IsUptoDate='1'/>");
    IFCNode* const group = list->GetChild();
    EXPECT_STREQ(group->GetNodeId(), L"");
    EXPECT_EQ(group->GetProjectType(), EProjectType_None);
    EXPECT_EQ(group->GetVersionNo(), 3.0F);
    EXPECT_FALSE(group->IsDirty());
    EXPECT_FALSE(group->IsCheckedOut());
}

// --- Writing -----------------------------------------------------------------------------------------------------

// A list with every attribute that a BPM list has, and an order that tells.
ListTree bpmList() {
    ListTree list = newList(L"BPM Processes");
    IFCNode* const design = addGroup(list.get(), L"Design");
    IFCNode* const beam = addFile(design, L"Beam", L"BPM\\beam\\processdefinition.xml");
    beam->SetProjectType(EProjectType_TASK);
    beam->SetNodeId(L"b-1");
    beam->SetVersionNo(1.1F);
    beam->SetCheckedOutUser(L"eve");
    beam->SetCheckedOut(true);
    beam->SetDirty(true);
    IFCNode* const plate = addFile(addGroup(design, L"Plates & <shells>"), L"Plate", L"BPM\\plate.xml");
    plate->SetProjectType(EProjectType_TASK);
    plate->SetUptoDate(true);
    addFile(list.get(), L"Loose", L"loose.xml")->SetProjectType(EProjectType_TASK);
    return list;
}

TEST_F(ProcessList, AWholeBPMListIsWrittenAsItAlwaysWas) {
    ListTree const made = bpmList();
    expectGolden("bpm_list.lst", write(made.get()));
}

TEST_F(ProcessList, AWholeOrdinaryListIsWrittenAsItAlwaysWas) {
    ListTree const made = newList(L"");
    IFCNode* const group = addGroup(made.get(), L"Fatigue");
    IFCNode* const weld = addFile(group, L"Weld", L"lib\\weld.bpt");
    weld->SetProjectType(EProjectType_BPT);
    weld->SetNodeId(L"w-1");
    weld->SetVersionNo(4.0F);
    weld->SetCheckedOut(true);
    addFile(group, L"Schedule", L"lib\\plan.bpt")->SetProjectType(EProjectType_MSP);
    addFile(made.get(), L"", L"");
    addGroup(made.get(), L"Empty");
    expectGolden("ordinary_list.lst", write(made.get()));
}

TEST_F(ProcessList, EveryAttributeFollowsItsCondition) {
    struct Row {
        int nodeType;
        EProjectType projectType;
        char const* tag;
        char const* written; // the attributes that stand in the line
    };
    constexpr char kFile[] = "Name FILE Type ";
    constexpr char kBPMFile[] = "Name FILE Type ID Version CheckedOutUser IsDirty IsCheckedOut IsUptoDate ";
    for (Row const& row :
         {Row{70, EProjectType_BPT, "PROCESS", kFile}, Row{70, EProjectType_TASK, "PROCESS", kBPMFile},
          Row{70, EProjectType_MSP, "PROCESS", kFile}, Row{70, EProjectType_None, "PROCESS", "Name FILE "},
          Row{71, EProjectType_TASK, "SUB_GRP", "Name FILE "},
          Row{56, EProjectType_TASK, "PROCESS", "Name FILE Type ID "}, Row{56, EProjectType_BPT, "PROCESS", kFile}}) {
        ListTree const made = newList();
        IFCNode* const node = addChild(made.get(), row.nodeType, L"id", L"entry");
        node->SetItemFilePath(L"f");
        node->SetProjectType(row.projectType);
        std::string const line = lineOf(write(made.get()), row.tag);
        std::string written;
        for (char const* name : {"Name", "FILE", "Type", "ID", "Version", "CheckedOutUser", "IsDirty", "IsCheckedOut",
                                 "IsUptoDate", "BlockString", "SaveRestore"})
            if (attributeIn(line, name) != "(absent)")
                written += std::string(name) + " ";
        EXPECT_EQ(written, row.written) << row.nodeType << " of " << row.projectType;
    }
}

TEST_F(ProcessList, AFileOfAnotherClassKeepsItsKind) {
    // Only the class of file nodes and processes keep a kind; the node type alone decides on version and check-out.
    ListTree const made = newList();
    IFCNode* const node = addFile(made.get(), L"a");
    node->SetProjectType(EProjectType_TASK);
    node->SetNodeId(L"7");
    node->SetNodeType(75);
    std::string const line = lineOf(write(made.get()), "PROCESS");
    EXPECT_EQ(attributeIn(line, "ID"), "7");
    EXPECT_EQ(attributeIn(line, "Version"), "(absent)");
}

TEST_F(ProcessList, TheElementFollowsTheNodeType) {
    for (auto const& [type, tag] : {std::pair<int, std::string>{56, "PROCESS"},
                                    {69, "PROCESS"},
                                    {70, "PROCESS"},
                                    {75, "PROCESS"},
                                    {71, "SUB_GRP"},
                                    {0, "UnKnown"}}) {
        ListTree const made = newList();
        addFile(made.get(), L"a")->SetNodeType(type);
        EXPECT_THAT(linesOf(write(made.get()), tag), SizeIs(1)) << type;
    }
}

TEST_F(ProcessList, CodeIsNeverWritten) {
    parseInside("<SUB_GRP Name='g'><CODE Name='c'>x<PROCESS Name='inner'/></CODE><PROCESS Name='a'/></SUB_GRP>");
    std::string const written = write(list.get());
    EXPECT_THAT(written, Not(HasSubstr("CODE")));
    EXPECT_THAT(written, Not(HasSubstr("inner"))) << "nor what stands below it";
    EXPECT_THAT(linesOf(written, "PROCESS"), SizeIs(1));
}

TEST_F(ProcessList, AnEmptyCaptionIsWrittenAsTheNameOfTheList) {
    ListTree const made = newList(L"");
    addFile(addGroup(made.get(), L""), L"");
    std::string const written = write(made.get());
    for (char const* tag : {"Processes", "SUB_GRP", "PROCESS"})
        EXPECT_EQ(attributeIn(lineOf(written, tag), "Name"), "Processes") << tag;
}

TEST_F(ProcessList, VersionsAreWrittenInTheirShortForm) {
    for (auto const& [version, text] : {std::pair<float, char const*>{1.0F, "1"},
                                        {1.1F, "1.1"},
                                        {0.0F, "0"},
                                        {-2.75F, "-2.75"},
                                        {16777216.0F, "16777216"}}) {
        ListTree const made = newList();
        IFCNode* const file = addFile(made.get(), L"a");
        file->SetProjectType(EProjectType_TASK);
        file->SetVersionNo(version);
        EXPECT_EQ(attributeIn(lineOf(write(made.get()), "PROCESS"), "Version"), text);
    }
}

TEST_F(ProcessList, EveryVersionReadsBackAsItWas) {
    for (float const version : {0.1F, 1.0F / 3.0F, 12345.678F, 1e-40F, 3.4e38F, std::numeric_limits<float>::max()}) {
        ListTree const made = newList();
        IFCNode* const file = addFile(made.get(), L"a");
        file->SetProjectType(EProjectType_TASK);
        file->SetVersionNo(version);
        list.reset(new CFCProcessList);
        ASSERT_TRUE(parse(write(made.get())));
        EXPECT_EQ(list->GetChild()->GetVersionNo(), version);
    }
}

TEST_F(ProcessList, AVersionThatIsNoNumberIsWrittenAsOne) {
    ListTree const made = newList();
    IFCNode* const file = addFile(made.get(), L"a");
    file->SetProjectType(EProjectType_TASK);
    file->SetVersionNo(std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(attributeIn(lineOf(write(made.get()), "PROCESS"), "Version"), "0");
    file->SetVersionNo(std::numeric_limits<float>::infinity());
    list.reset(new CFCProcessList);
    ASSERT_TRUE(parse(write(made.get())));
    EXPECT_EQ(list->GetChild()->GetVersionNo(), std::numeric_limits<float>::max());
}

TEST_F(ProcessList, AListComesBackAsItWas) {
    ListTree const made = bpmList();
    std::string const written = write(made.get());
    ASSERT_TRUE(parse(written, "BPMProcess.lst"));
    EXPECT_EQ(outlineOf(list.get()), "Design(Beam Plates & <shells>(Plate)) Loose");
    EXPECT_EQ(write(list.get()), written);
    IFCNode* const beam = found(list.get(), L"Beam");
    EXPECT_STREQ(beam->GetItemFilePath(), L"BPM\\beam\\processdefinition.xml");
    EXPECT_STREQ(beam->GetNodeId(), L"b-1");
    EXPECT_EQ(beam->GetVersionNo(), 1.1F);
    EXPECT_STREQ(beam->GetCheckedOutUser(), L"eve");
    EXPECT_TRUE(beam->IsDirty());
    EXPECT_TRUE(beam->IsCheckedOut());
    EXPECT_FALSE(beam->IsUptoDate());
}

TEST_F(ProcessList, OldEntriesAreLeftOutUnlessAllIsWritten) {
    ListTree const made = newList();
    addFile(addGroup(made.get(), L"NewGroup"), L"a");
    addFile(found(made.get(), L"NewGroup"), L"old", L"", false);
    addFile(addGroup(made.get(), L"OldGroup", false), L"b");
    addFile(made.get(), L"c", L"", false);
    EXPECT_FALSE(made->IsNewPath()) << "the root is written all the same";
    for (auto const& [all, outline] :
         {std::pair<bool, char const*>{true, "NewGroup(a old) OldGroup(b) c"}, {false, "NewGroup(a)"}}) {
        list.reset(new CFCProcessList);
        ASSERT_TRUE(parse(write(made.get(), all)));
        EXPECT_EQ(outlineOf(list.get()), outline);
    }
}

TEST_F(ProcessList, ANodeThatStandsInATreeIsNoRoot) {
    ListTree const made = newList();
    IFCNode* const group = addGroup(made.get(), L"g", false);
    addFile(group, L"a");
    EXPECT_THAT(linesOf(write(group, false), "PROCESS"), IsEmpty());
    EXPECT_THAT(linesOf(write(group, true), "PROCESS"), SizeIs(1));
}

TEST_F(ProcessList, DeletedEntriesAreWrittenAndDepthPlaysNoPart) {
    ListTree const made = newList();
    addFile(addGroup(made.get(), L"g"), L"a")->SetDeleted(true);
    for (bool const deep : {false, true}) {
        OpenListWriter writer;
        ASSERT_TRUE(writer.WriteFile(scratch.text("d.lst"), made.get(), deep, true));
        EXPECT_THAT(linesOf(scratch.read("d.lst"), "PROCESS"), SizeIs(1)) << deep;
        EXPECT_EQ(writer.m_bDeep, deep);
        EXPECT_TRUE(writer.m_bWriteAll);
    }
}

TEST_F(ProcessList, VariablesAndConnectorsAreNotWritten) {
    ListTree const made = newList();
    IFCNode* const process = addChild(made.get(), 56, L"p", L"p");
    addVariable(process, L"v", L"1");
    connect(process, addBlock(process, L"x"), addBlock(process, L"y"));
    std::string const written = write(made.get());
    for (char const* tag : {"VARIABLE", "PROCESS_VARIABLES", "TEMPLATE_VARIABLES", "CONNECTOR", "SCRIPT", "DIMENSION"})
        EXPECT_THAT(linesOf(written, tag), IsEmpty()) << tag;
}

TEST_F(ProcessList, WriteFileIsTrueWhateverHappens) {
    ListTree const made = newList();
    CFCProcessListWriter writer;
    EXPECT_TRUE(writer.WriteFile(L"", made.get(), false, true));
    EXPECT_TRUE(writer.WriteFile(nullptr, made.get(), false, true));
    EXPECT_TRUE(writer.WriteFile(scratch.text("none.lst"), nullptr, false, true));
    EXPECT_FALSE(std::filesystem::exists(scratch / "none.lst"));
    EXPECT_TRUE(writer.WriteFile(scratch.text("no/folder/x.lst"), made.get(), false, true));
    EXPECT_FALSE(std::filesystem::exists(scratch / "no"));
    EXPECT_TRUE(writer.WriteFile(scratch.text(), made.get(), false, true));
}

TEST_F(ProcessList, TheTargetIsAlwaysThePath) {
    CFCEnvironment::SetBasePath(scratch.text("base"));
    CFCEnvironment::SetUserPath(scratch.text("own"));
    ListTree const made = newList();
    CFCProcessListWriter writer;
    for (bool const bpm : {false, true}) {
        writer.m_bBPMList = bpm;
        writer.WriteFile(scratch.text("there.lst"), made.get(), false, true);
        EXPECT_TRUE(std::filesystem::remove(scratch / "there.lst"));
        EXPECT_TRUE(std::filesystem::is_empty(scratch / "own"));
    }
}

TEST_F(ProcessList, TheWriterOfDocumentsIsStillThere) {
    ListTree const made = newList();
    addFile(made.get(), L"a", L"", false);
    OpenListWriter writer;
    EXPECT_EQ(writer.m_strRootName, L"Processes");
    EXPECT_FALSE(writer.m_bWriteAll);
    EXPECT_TRUE(writer.WriteFile(scratch.text("w.lst"), made.get(), true));
    EXPECT_THAT(linesOf(scratch.read("w.lst"), "PROCESS"), IsEmpty()) << "the flag is that of before";
    EXPECT_FALSE(writer.WriteFile(L"", made.get(), true));
}

TEST_F(ProcessList, WriteObjectNeedsANodeAndAPlace) {
    ListTree const made = newList();
    IFCNode* const file = addFile(made.get(), L"a");
    struct Caller : CFCProcessListWriter {
        std::function<void(Caller&, xercesc::DOMElement*)> body;
        void WriteObject(IFCNode* node, xercesc::DOMNode* parent, xercesc::DOMNode* self) override {
            if (auto const own = std::exchange(body, nullptr))
                own(*this, static_cast<xercesc::DOMElement*>(self));
            else
                CFCProcessListWriter::WriteObject(node, parent, self);
        }
    } caller;
    caller.body = [&](Caller& writer, xercesc::DOMElement* root) {
        writer.WriteObject(nullptr, root, nullptr);
        writer.WriteObject(file, nullptr, nullptr);
        writer.WriteProperties(nullptr, root);
        writer.WriteProperties(file, nullptr);
        EXPECT_EQ(root->getFirstChild(), nullptr);
        writer.WriteObject(file, root, nullptr);
        EXPECT_NE(root->getFirstChild(), nullptr);
    };
    EXPECT_TRUE(caller.WriteFile(scratch.text("o.lst"), made.get(), false, false));
    EXPECT_EQ(attributeIn(lineOf(scratch.read("o.lst"), "PROCESS"), "Name"), "a");
}

TEST_F(ProcessList, AChainOfSiblingsThatFormsARingIsLeftOut) {
    ListTree const made = newList();
    IFCNode* const first = addFile(made.get(), L"a");
    IFCNode* const second = addFile(made.get(), L"b");
    first->SetNext(second);
    second->SetPrev(first);
    EXPECT_THAT(linesOf(write(made.get()), "PROCESS"), IsEmpty());
    first->SetNext(nullptr);
    second->SetPrev(nullptr);
}

TEST_F(ProcessList, AListIsNoDeeperThanTheReaderTakes) {
    ListTree const made = newList();
    IFCNode* last = made.get();
    for (int depth = 0; depth < 3000; ++depth)
        last = addGroup(last, L"g");
    std::string const written = write(made.get());
    ASSERT_TRUE(parse(written)) << "what was written can be read";
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(list.get()), 1023) << "with the root, 1024 elements inside each other";
}

TEST_F(ProcessList, CopiesTakeTheStateAlong) {
    parseInside("<PROCESS Name='a'/>", "BPMProcess.lst");
    OpenListReader const copy(reader);
    EXPECT_EQ(copy.m_pList, list.get());
    EXPECT_TRUE(copy.m_bBPMList);
    EXPECT_TRUE(copy.m_bUserList);
    OpenListReader assigned;
    EXPECT_EQ(assigned.m_pList, nullptr);
    EXPECT_FALSE(assigned.m_bBPMList);
    EXPECT_FALSE(assigned.m_bUserList);
    assigned = reader;
    EXPECT_EQ(assigned.m_pList, list.get());
    EXPECT_EQ(assigned.m_pDocument, reader.m_pDocument);

    OpenListWriter writer;
    EXPECT_EQ(writer.m_pListRoot, nullptr);
    EXPECT_FALSE(writer.m_bBPMList);
    writer.m_pListRoot = list.get();
    writer.m_bBPMList = true;
    writer.m_bWriteAll = true;
    OpenListWriter const writerCopy(writer);
    EXPECT_EQ(writerCopy.m_pListRoot, list.get());
    EXPECT_TRUE(writerCopy.m_bBPMList);
    EXPECT_TRUE(writerCopy.m_bWriteAll);
    OpenListWriter writerAssigned;
    writerAssigned = writer;
    EXPECT_EQ(writerAssigned.m_pListRoot, list.get());
    EXPECT_TRUE(writerAssigned.m_bWriteAll);
}

// --- WriteNewFile ------------------------------------------------------------------------------------------------

TEST_F(ProcessList, ANewFileGoesToTheUsersList) {
    CFCEnvironment::SetBasePath(scratch.text("base"));
    CFCEnvironment::SetUserPath(scratch.text("own"));
    ListTree const made = newList();
    addFile(made.get(), L"new");
    addFile(made.get(), L"old", L"", false);
    for (auto const& [bpm, name] : {std::pair<bool, char const*>{false, "process.lst"}, {true, "BPMProcess.lst"}}) {
        CFCProcessListWriter writer;
        writer.m_pListRoot = made.get();
        writer.m_bBPMList = bpm;
        EXPECT_TRUE(writer.WriteNewFile());
        EXPECT_EQ(attributeIn(lineOf(scratch.read(std::filesystem::path("own") / name), "PROCESS"), "Name"), "new")
            << "the old entry is left out";
        std::filesystem::remove(scratch / "own" / name);
    }
    EXPECT_FALSE(std::filesystem::exists(scratch / "base"));
}

TEST_F(ProcessList, EachFileHasTheWriteAllFlagOfItsOwn) {
    ListTree const made = newList();
    addFile(made.get(), L"old", L"", false);
    CFCProcessListWriter writer;
    for (bool const all : {false, true, false}) {
        writer.WriteFile(scratch.text("w.lst"), made.get(), false, all);
        EXPECT_THAT(linesOf(scratch.read("w.lst"), "PROCESS"), SizeIs(all ? 1 : 0));
    }
}

TEST_F(ProcessList, ANewFileNeedsAListRoot) {
    CFCEnvironment::SetUserPath(scratch.text("own"));
    CFCProcessListWriter writer;
    EXPECT_FALSE(writer.WriteNewFile());
    EXPECT_TRUE(std::filesystem::is_empty(scratch / "own"));
}

TEST_F(ProcessList, ANewFileKeepsTheWriteAllFlag) {
    CFCEnvironment::SetUserPath(scratch.text("own"));
    ListTree const made = newList();
    addFile(made.get(), L"old", L"", false);
    CFCProcessListWriter writer;
    writer.m_pListRoot = made.get();
    writer.WriteFile(scratch.text("all.lst"), made.get(), false, true);
    EXPECT_TRUE(writer.WriteNewFile());
    EXPECT_THAT(linesOf(scratch.read("own/process.lst"), "PROCESS"), SizeIs(1));
}

// --- UpdateNewProcess --------------------------------------------------------------------------------------------

class NewProcess : public ProcessList {
protected:
    ListTree tree = newList(L"Fresh");
    ListTree root = newList(L"Listed");

    void update(IFCNode* node) {
        CFCProcessListWriter writer;
        writer.m_pListRoot = root.get();
        writer.UpdateNewProcess(node);
    }
};

TEST_F(NewProcess, BelowTheListItNeedsNoGroup) {
    addFile(root.get(), L"there");
    IFCNode* const process = addFile(tree.get(), L"new", L"new.bpt");
    process->SetNodeId(L"7");
    update(process);
    EXPECT_EQ(outlineOf(root.get()), "there new");
    EXPECT_EQ(outlineOf(tree.get()), "new") << "a copy is entered";
    IFCNode* const copy = root->GetChild();
    EXPECT_NE(copy, process);
    EXPECT_EQ(copy->GetParentNode(), root.get());
    EXPECT_STREQ(copy->GetItemFilePath(), L"new.bpt");
    EXPECT_STREQ(copy->GetNodeId(), L"7");
    EXPECT_TRUE(copy->IsNewPath());
}

TEST_F(NewProcess, ItsGroupsAreMadeWhereNoneFits) {
    update(addFile(addGroup(addGroup(tree.get(), L"A"), L"B"), L"new"));
    EXPECT_EQ(outlineOf(root.get()), "A(B(new))");
    for (wchar_t const* caption : {L"A", L"B"}) {
        IFCNode* const group = found(root.get(), caption);
        EXPECT_EQ(group->GetNodeType(), 71);
        EXPECT_FALSE(group->IsNewPath()) << "so a list of new entries alone leaves it out";
    }
    EXPECT_TRUE(found(root.get(), L"new")->IsNewPath());
    EXPECT_THAT(linesOf(write(root.get(), false), "PROCESS"), IsEmpty());
    EXPECT_EQ(outlineOf(tree.get()), "A(B(new))");
}

TEST_F(NewProcess, ItsOwnGroupIsUsedWhereThePathIsTheSame) {
    addFile(addGroup(addGroup(root.get(), L"A"), L"B"), L"there");
    update(addFile(addGroup(addGroup(tree.get(), L"A"), L"B"), L"new"));
    EXPECT_EQ(outlineOf(root.get()), "A(B(there new))");
    EXPECT_EQ(found(root.get(), L"new")->GetParentNode(), found(root.get(), L"B"));
}

TEST_F(NewProcess, OtherwiseTheTopmostGroupTakesWhatLiesBelowIt) {
    addGroup(root.get(), L"A");
    update(addFile(addGroup(addGroup(addGroup(tree.get(), L"A"), L"B"), L"C"), L"new"));
    EXPECT_EQ(outlineOf(root.get()), "A(B(C(new)))");
    EXPECT_EQ(found(root.get(), L"B")->GetParentNode(), found(root.get(), L"A"));
}

TEST_F(NewProcess, TheTopmostGroupTakesAGroupOfTheSameNameASecondTime) {
    addFile(addGroup(addGroup(root.get(), L"A"), L"B"), L"there");
    update(addFile(addGroup(addGroup(addGroup(tree.get(), L"A"), L"B"), L"C"), L"new"));
    EXPECT_EQ(outlineOf(root.get()), "A(B(there) B(C(new)))");
}

TEST_F(NewProcess, AGroupOfTheSameNameInAnotherPlaceIsTheWrongOne) {
    // The newest is found first: B of Y, whose path differs.
    addGroup(addGroup(root.get(), L"X"), L"B");
    addGroup(addGroup(root.get(), L"Y"), L"B");
    update(addFile(addGroup(addGroup(tree.get(), L"X"), L"B"), L"new"));
    EXPECT_EQ(outlineOf(root.get()), "X(B() B(new)) Y(B())") << "the topmost name fits";
    root = newList();
    addGroup(addGroup(root.get(), L"Y"), L"B");
    update(addFile(addGroup(addGroup(tree.get(), L"Z"), L"B"), L"other"));
    EXPECT_EQ(outlineOf(root.get()), "Y(B()) Z(B(other))") << "nothing fits";
}

TEST_F(NewProcess, TheTopmostGroupMayStandAnywhereInTheList) {
    addGroup(addGroup(root.get(), L"X"), L"A");
    update(addFile(addGroup(tree.get(), L"A"), L"new"));
    EXPECT_EQ(outlineOf(root.get()), "X(A(new))") << "the only child of the topmost group is the process itself";
}

TEST_F(NewProcess, TheListItselfAnswersToItsName) {
    root->SetNodeCaption(L"A");
    update(addFile(addGroup(tree.get(), L"A"), L"new"));
    EXPECT_EQ(outlineOf(root.get()), "new") << "its path is its caption, as that of the group is";
    update(addFile(addGroup(addGroup(tree.get(), L"A"), L"B"), L"other"));
    EXPECT_EQ(outlineOf(root.get()), "new B(other)");
}

TEST_F(NewProcess, GroupsAboveTheListDoNotCount) {
    IFCNode* const library = addGroup(tree.get(), L"Above");
    IFCNode* const inner = addChild(library, 69, L"", L"Inner");
    update(addFile(addGroup(inner, L"A"), L"new"));
    EXPECT_EQ(outlineOf(root.get()), "A(new)");
}

TEST_F(NewProcess, WithoutAListAboveAllGroupsCount) {
    Tree const top(CFCNodeFactory().Create(71));
    top->SetNodeCaption(L"Top");
    update(addFile(addGroup(top.get(), L"A"), L"new"));
    EXPECT_EQ(outlineOf(root.get()), "Top(A(new))");
    root = newList();
    update(addFile(top.get(), L"other"));
    EXPECT_EQ(outlineOf(root.get()), "Top(other)") << "a group at the top is a group";
}

TEST_F(NewProcess, OfAListInsideAGroupOnlyFilesGoWithoutGroups) {
    IFCNode* const inner = addChild(addGroup(tree.get(), L"Above"), 69, L"", L"Inner");
    update(addFile(inner, L"new"));
    EXPECT_EQ(outlineOf(root.get()), "new");
    root = newList();
    update(addGroup(inner, L"G"));
    EXPECT_EQ(outlineOf(root.get()), "Above(Inner(G()))") << "the list that it stands in counts as a group then";
}

TEST_F(NewProcess, AFileOfTheNameOfAGroupTakesTheProcessIn) {
    addFile(root.get(), L"A");
    update(addFile(addGroup(tree.get(), L"A"), L"new"));
    EXPECT_EQ(outlineOf(root.get()), "A(new)") << "what is found by its name need not be a group";
}

TEST_F(NewProcess, NamesOfGroupsAreComparedWithCase) {
    addGroup(root.get(), L"a");
    update(addFile(addGroup(tree.get(), L"A"), L"new"));
    EXPECT_EQ(outlineOf(root.get()), "a() A(new)");
}

TEST_F(NewProcess, WhatIsNoFileGetsAGroupNamedLikeTheList) {
    IFCNode* const group = addGroup(tree.get(), L"G");
    addFile(group, L"inner");
    update(group);
    EXPECT_EQ(outlineOf(root.get()), "Fresh(G())") << "the copy is shallow";
}

TEST_F(NewProcess, OneThatCannotBeCopiedIsNotEntered) {
    IFCNode* const process = addFile(addGroup(tree.get(), L"A"), L"new");
    process->SetNodeType(62);
    update(process);
    EXPECT_EQ(root->GetChild(), nullptr);
}

TEST_F(NewProcess, NothingHappensWithoutNodeParentOrList) {
    update(nullptr);
    update(tree.get());
    CFCProcessListWriter writer;
    writer.UpdateNewProcess(addFile(tree.get(), L"new"));
    writer.UpdateNewProcess(addFile(addGroup(tree.get(), L"A"), L"new"));
    EXPECT_EQ(root->GetChild(), nullptr);
}

TEST_F(NewProcess, GroupsWithoutNameAreFoundNowhere) {
    addGroup(root.get(), L"");
    update(addFile(addGroup(tree.get(), L""), L"new"));
    EXPECT_EQ(outlineOf(root.get()), "() (new)");
}

TEST_F(NewProcess, ParentsThatFormARingAreGoneRoundOnce) {
    IFCNode* const a = addGroup(tree.get(), L"A");
    IFCNode* const b = addGroup(a, L"B");
    IFCNode* const process = addFile(b, L"new");
    a->SetParentNode(b);
    update(process);
    a->SetParentNode(tree.get());
    EXPECT_EQ(outlineOf(root.get()), "A(B(new))");
}

TEST_F(NewProcess, PathsAreComparedFromBelow) {
    CFCProcessListWriter writer;
    IFCNode* const a = addGroup(addGroup(root.get(), L"A"), L"B");
    Tree const top(CFCNodeFactory().Create(71));
    top->SetNodeCaption(L"A");
    IFCNode* const b = addGroup(top.get(), L"B");
    EXPECT_TRUE(writer.PathCompare(a, b));
    EXPECT_FALSE(writer.PathCompare(b, a)) << "on the right the list counts, too";
    EXPECT_TRUE(writer.PathCompare(found(root.get(), L"A"), top.get()));
    EXPECT_FALSE(writer.PathCompare(a, top.get()));
    b->SetNodeCaption(L"b");
    EXPECT_FALSE(writer.PathCompare(a, b)) << "case counts";
    b->SetNodeCaption(L"B.A");
    b->SetParentNode(nullptr);
    EXPECT_TRUE(writer.PathCompare(a, b)) << "a point in a caption is as good as a level";
    b->SetParentNode(top.get());
    EXPECT_FALSE(writer.PathCompare(nullptr, a));
    EXPECT_FALSE(writer.PathCompare(a, nullptr));
    EXPECT_FALSE(writer.PathCompare(nullptr, nullptr));
}

TEST_F(NewProcess, ANewProcessIsWrittenWithItsGroupOnceThatIsNew) {
    IFCNode* const group = addGroup(root.get(), L"A");
    update(addFile(addGroup(tree.get(), L"A"), L"new"));
    EXPECT_THAT(linesOf(write(root.get(), false), "PROCESS"), SizeIs(1));
    group->SetNewPath(false);
    EXPECT_THAT(linesOf(write(root.get(), false), "PROCESS"), IsEmpty());
}

} // namespace
