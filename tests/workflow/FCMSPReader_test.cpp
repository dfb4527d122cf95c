#include "flowmere/workflow/FCMSPReader.h"

#include "flowmere/model/FCBlockData.h"
#include "flowmere/model/FCNodeList.h"
#include "flowmere/model/FCNodeManager.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/model/FCProcessNode.h"
#include "flowmere/workflow/ScheduleColumns.h"
#include "flowmere/workflow/WorkflowFile.h"
#include "workflow/WorkflowTestSupport.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <new>
#include <string_view>
#include <thread>

using namespace flowmere::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Finding = CFCScheduleFinding;

// What happens to the nodes of a test, in order.
std::vector<std::string> events;

class RecordedTask : public CFCBPMTaskNode {
public:
    void TransferToDraw() override { events.push_back("draw " + narrow(GetNodeId())); }
    bool AppendChild(IFCNode* child, bool flag) override {
        EXPECT_FALSE(flag);
        return CFCBPMTaskNode::AppendChild(child, flag);
    }
};

class RecordingFactory : public CFCNodeFactory {
public:
    IFCNode* Create(int kind) override {
        if (kind != 150)
            return CFCNodeFactory::Create(kind);
        auto task = std::make_unique<RecordedTask>();
        task->SetNodeType(kind);
        return task.release();
    }
};

class RecordingContainer : public CFCBaseContainer {
public:
    void Attach(IFCNode* node) override { events.push_back("attach " + narrow(node->GetNodeId())); }
};

// Makes nothing of one kind.
class PoorFactory : public CFCNodeFactory {
public:
    explicit PoorFactory(int kind) : m_kind(kind) {}
    IFCNode* Create(int kind) override { return kind == m_kind ? nullptr : CFCNodeFactory::Create(kind); }

private:
    int m_kind;
};

// Makes blocks without workflow data for tasks.
class PlainFactory : public CFCNodeFactory {
public:
    IFCNode* Create(int kind) override { return CFCNodeFactory::Create(kind == 150 ? 57 : kind); }
};

// Makes groups, which are no blocks, for tasks.
class GroupFactory : public CFCNodeFactory {
public:
    IFCNode* Create(int kind) override { return CFCNodeFactory::Create(kind == 150 ? 71 : kind); }
};

// Makes tasks of a look that schedules do not have.
class LoudFactory : public CFCNodeFactory {
public:
    IFCNode* Create(int kind) override {
        IFCNode* const node = CFCNodeFactory::Create(kind);
        CFCBlockData* const block = node->GetFCBlockData();
        block->SetDrawBorder(false);
        block->SetFillColor(false);
        block->SetVisible(true);
        block->SetBorderSet(false);
        block->SetLineThickness(9);
        block->SetLinePenType(3);
        block->SetColorLine(0x123456);
        block->SetColorFill(0x654321);
        return node;
    }
};

class OpenReader : public CFCMSPReader {
public:
    using CFCMSPReader::m_bDataFile;
    using CFCMSPReader::m_nFlags;
    using CFCMSPReader::m_nMode;
    using CFCMSPReader::m_pContainer;
    using CFCMSPReader::m_pDocument;
    using CFCMSPReader::m_pNodeFactory;
};

std::string element(std::string const& tag, std::string const& text) {
    return "<" + tag + ">" + text + "</" + tag + ">";
}

// A task as schedules have them: UID, name, type, code.
std::string task(std::string const& uid, std::string const& type, std::string const& wbs,
                 std::string const& more = "") {
    return "<Task>" + element("UID", uid) + element("Name", "T" + uid) + element("Type", type) + element("WBS", wbs) +
           more + "</Task>";
}

std::string project(std::string const& tasks) {
    return "<Project><Tasks>" + tasks + "</Tasks></Project>";
}

// The tasks below a node in the order of the file: "161 T1(150 T2, 150 T3)".
std::string outline(IFCNode* node) {
    std::string text;
    flowmere::visitChildrenFromLast(node, [&](IFCNode* child) {
        if (child->GetBPMBlockData() == nullptr)
            return;
        text += (text.empty() ? "" : ", ") + std::to_string(child->GetNodeType()) + " " + narrow(child->GetNodeId());
        std::string const inner = outline(child);
        if (!inner.empty())
            text += "(" + inner + ")";
    });
    return text;
}

IFCNode* findTask(IFCNode* node, std::string const& id) {
    for (IFCNode* child = node->GetChild(); child != nullptr; child = child->GetNext()) {
        if (narrow(child->GetNodeId()) == id)
            return child;
        if (IFCNode* const found = findTask(child, id))
            return found;
    }
    return nullptr;
}

// Left edge and lower edge, in hundredths of an inch on a page 13 inches high.
std::string placeOf(IFCNode* node) {
    TuRect const rect = *node->GetTuRect();
    EXPECT_EQ(150, rect.right - rect.left);
    EXPECT_EQ(170, rect.bottom - rect.top);
    return std::to_string(rect.left) + " " + std::to_string(rect.bottom);
}

class FCMSPReader : public ScratchTest {
protected:
    void SetUp() override {
        events.clear();
        flowmere::scheduleColumns() = flowmere::ScheduleColumns();
        reader.SetNodeFactory(&factory);
    }
    void TearDown() override { endStrays(); }

    // Reads a file of that content into `tree`.
    bool parse(std::string_view content) {
        scratch.write("plan.xml", content);
        return parseFile("plan.xml");
    }
    bool parseFile(std::filesystem::path const& name) {
        endStrays();
        IFCNode* node = nullptr;
        bool const isRead = reader.Parse(scratch.text(name), &node, 16);
        EXPECT_EQ(isRead, node != nullptr);
        tree.reset(node);
        return isRead;
    }
    bool parseTasks(std::string const& tasks) { return parse(project(tasks)); }

    // The only task of a file whose element has that content besides UID, type and code.
    IFCNode* parseTask(std::string const& more) {
        EXPECT_TRUE(parseTasks(task("1", "1", "1", more)));
        return tree != nullptr ? findTask(tree.get(), "T1") : nullptr;
    }

    // "number kind uid parent value" of each finding.
    std::vector<std::string> findings() const {
        std::vector<std::string> texts;
        for (Finding const& finding : reader.GetFindings())
            texts.push_back(std::to_string(finding.number) + " " + std::to_string(finding.kind) + " " +
                            narrow(finding.uid) + "|" + narrow(finding.wbs) + "|" + narrow(finding.parent) + "|" +
                            narrow(finding.value));
        return texts;
    }

    // Nodes of tasks that were left out belong to whoever wants them.
    void endStrays() {
        for (Finding const& finding : reader.GetFindings()) {
            if (finding.IsTaskLeftOut() && finding.node != nullptr)
                CFCNodeHelper::DestroyTree(finding.node);
        }
        IFCNode* none = nullptr;
        reader.Parse(L"", &none, 0);
    }

    RecordingFactory factory;
    OpenReader reader;
    Tree tree;
};

// --- Files -------------------------------------------------------------------------------------------------------

TEST_F(FCMSPReader, GivesFalseAndLeavesTheNodeAloneForWhatItCannotRead) {
    scratch.write("good.xml", project(""));
    scratch.write("empty.xml", "");
    scratch.write("broken.xml", "<Project><Tasks></Project>");
    scratch.write("text.xml", "no markup");
    std::filesystem::create_directories(scratch / "folder.xml");
    IFCNode* const marker = reinterpret_cast<IFCNode*>(&events);
    for (TuString const& path : {TuString(), scratch.text("missing.xml"), scratch.text("empty.xml"),
                                 scratch.text("broken.xml"), scratch.text("text.xml"), scratch.text("folder.xml")}) {
        IFCNode* node = marker;
        EXPECT_FALSE(reader.Parse(path, &node, 0)) << narrow(path);
        EXPECT_EQ(marker, node) << narrow(path);
    }
    IFCNode* node = marker;
    EXPECT_FALSE(reader.Parse(nullptr, &node, 0));
    EXPECT_FALSE(reader.Parse(scratch.text("good.xml"), nullptr, 0));
    reader.SetNodeFactory(nullptr);
    EXPECT_FALSE(reader.Parse(scratch.text("good.xml"), &node, 0));
    PoorFactory poor(160);
    reader.SetNodeFactory(&poor);
    EXPECT_FALSE(reader.Parse(scratch.text("good.xml"), &node, 0));
    EXPECT_EQ(marker, node);
}

TEST_F(FCMSPReader, TellsWhereABrokenFileIsBroken) {
    EXPECT_FALSE(parse("<Project>\n<Tasks></Project>"));
    EXPECT_EQ(2, reader.GetErrorLine());
    EXPECT_THAT(narrow(reader.GetErrorText()), testing::Not(IsEmpty()));
}

TEST_F(FCMSPReader, MakesAProcessOfItsOwnProjectType) {
    ASSERT_TRUE(parse(project("")));
    EXPECT_EQ(160, tree->GetNodeType());
    EXPECT_EQ(EProjectType_MSP, tree->GetProjectType());
    EXPECT_EQ(2, static_cast<int>(tree->GetProjectType()));
    EXPECT_EQ("Block Library", narrow(tree->GetNodeCaption()));
    EXPECT_EQ("", narrow(tree->GetNodeId()));
    EXPECT_EQ("", outline(tree.get()));
    EXPECT_EQ(0, reader.GetTaskCount());
    EXPECT_THAT(reader.GetFindings(), IsEmpty());
}

TEST_F(FCMSPReader, ReadsSchedulesWithoutTasks) {
    for (char const* const content :
         {"<Project/>", "<Project> \n </Project>", "<Project><Tasks/></Project>", "<Project><Tasks> </Tasks></Project>",
          "<Project><Tasks/><Tasks></Tasks></Project>", "<Project>Tasks</Project>", "<Tasks/>",
          "<Project><Tasks><Other/></Tasks></Project>", "<Project><tasks><Task/></tasks><TASKS/></Project>",
          "<Project><Resources><Resource/></Resources><Assignments/></Project>"}) {
        ASSERT_TRUE(parse(content)) << content;
        EXPECT_EQ("", outline(tree.get())) << content;
        EXPECT_EQ("Block Library", narrow(tree->GetNodeCaption())) << content;
        EXPECT_EQ(0, reader.GetTaskCount()) << content;
        EXPECT_THAT(reader.GetFindings(), IsEmpty()) << content;
    }
}

TEST_F(FCMSPReader, LooksOnlyAtWhatStandsBelowTheRoot) {
    for (std::string const root : {"Project", "Task", "PROCESS", "Anything"}) {
        ASSERT_TRUE(parse("<" + root + "><Tasks>" + task("1", "1", "1") + "</Tasks></" + root + ">")) << root;
        EXPECT_EQ("150 T1", outline(tree.get())) << root;
        flowmere::scheduleColumns() = flowmere::ScheduleColumns();
    }
}

TEST_F(FCMSPReader, PassesOverAProcessElement) {
    ASSERT_TRUE(parse("<Project><PROCESS><Tasks>" + task("1", "1", "1") + "</Tasks></PROCESS></Project>"));
    EXPECT_EQ("", outline(tree.get()));
    EXPECT_EQ(0, reader.GetTaskCount());
}

TEST_F(FCMSPReader, KeepsTheFlagsAndThatItHasParsed) {
    EXPECT_EQ(0, reader.m_nMode);
    ASSERT_TRUE(parse(project("")));
    EXPECT_EQ(1, reader.m_nMode);
    EXPECT_EQ(16, reader.m_nFlags);
}

TEST_F(FCMSPReader, NotesADataFileByTheEndOfItsName) {
    struct Row {
        wchar_t const* path;
        bool isDataFile;
    };
    for (Row const& row : {Row{L"plan.fmr", true}, Row{L"xfmr", true}, Row{L"fmr", false}, Row{L"plan.FMR", false},
                           Row{L"plan.fmr.xml", false}, Row{L"", false}, Row{nullptr, false}}) {
        OpenReader fresh;
        fresh.CheckDataFile(row.path);
        EXPECT_EQ(row.isDataFile, fresh.m_bDataFile) << narrow(row.path);
    }
    scratch.write("broken.fmr", "<Project>");
    EXPECT_FALSE(parseFile("broken.fmr"));
    EXPECT_FALSE(reader.m_bDataFile) << "a file that cannot be read is not looked at";
    scratch.write("plan.fmr", project(""));
    ASSERT_TRUE(parseFile("plan.fmr"));
    EXPECT_TRUE(reader.m_bDataFile);
    ASSERT_TRUE(parse(project("")));
    EXPECT_TRUE(reader.m_bDataFile) << "nothing takes it back";
}

TEST_F(FCMSPReader, ReadsAFileInAnyOuterForm) {
    std::string const tasks = task("1", "1", "1") + task("2", "0", "1.1") + task("3", "0", "1.1.1");
    struct Row {
        char const* form;
        std::string content;
    };
    std::string rows = tasks;
    for (std::size_t at = 0; (at = rows.find("<", at)) != std::string::npos; at += 4) {
        if (rows[at + 1] != '/')
            rows.insert(at, "\n\n ");
    }
    std::string wide = "\xFF\xFE";
    for (char const letter : project(tasks))
        wide += {letter, '\0'};
    for (Row const& row :
         {Row{"one line", project(tasks)}, Row{"byte order mark", "\xEF\xBB\xBF" + project(tasks)},
          Row{"byte order mark and declaration",
              "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n" + project(tasks)},
          Row{"two bytes for each letter", wide},
          Row{"namespace", "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Project "
                           "xmlns=\"urn:example:schedule\"><Tasks>" +
                               tasks + "</Tasks></Project>"},
          Row{"blank rows", project(rows)},
          Row{"comments", project("<!-- one --><?two?>" + tasks + "<!-- three -->")}}) {
        flowmere::scheduleColumns() = flowmere::ScheduleColumns();
        ASSERT_TRUE(parse(row.content)) << row.form;
        EXPECT_EQ("150 T1, 150 T2(150 T3)", outline(tree.get())) << row.form;
        EXPECT_THAT(reader.GetFindings(), IsEmpty()) << row.form;
    }
}

TEST_F(FCMSPReader, JoinsTheTextOfAnElement) {
    ASSERT_TRUE(parseTasks("<Task><UID>1</UID><Type><![CDATA[1]]></Type><WBS>1<!-- . -->.<![CDATA[2]]></WBS>"
                           "<Name>Cut &amp; <![CDATA[<fit>]]></Name></Task>"));
    IFCNode* const made = findTask(tree.get(), "Cut & <fit>");
    ASSERT_NE(nullptr, made);
    EXPECT_EQ("1.2", narrow(made->GetBPMBlockData()->GetWBS()));
}

TEST_F(FCMSPReader, TellsElementsByTheirWholeTags) {
    ASSERT_TRUE(parse("<p:Project xmlns:p=\"urn:example:schedule\"><p:Tasks><Task/></p:Tasks><p:Name>P</p:Name>"
                      "</p:Project>"));
    EXPECT_EQ("Block Library", narrow(tree->GetNodeCaption()));
    EXPECT_EQ(0, reader.GetTaskCount());
}

TEST_F(FCMSPReader, LoadGivesFalseWithoutElementOrNode) {
    ASSERT_TRUE(parse(project("")));
    EXPECT_FALSE(reader.Load(nullptr, tree.get(), 0));
    EXPECT_FALSE(reader.Load(reader.m_pDocument->getDocumentElement(), nullptr, 0));
    EXPECT_TRUE(reader.Load(reader.m_pDocument->getDocumentElement(), tree.get(), 0));
}

TEST_F(FCMSPReader, CreateAndAttachNeedFactoryAndContainer) {
    OpenReader fresh;
    EXPECT_EQ(nullptr, fresh.Create(150));
    Tree const node(reader.Create(160));
    ASSERT_NE(nullptr, node);
    EXPECT_EQ(160, node->GetNodeType());
    fresh.Attach(node.get());
    RecordingContainer container;
    fresh.SetContainer(&container);
    fresh.Attach(nullptr);
    EXPECT_THAT(events, IsEmpty());
    fresh.Attach(node.get());
    EXPECT_THAT(events, ElementsAre("attach "));
}

TEST_F(FCMSPReader, CopiesShareFactoryContainerAndDocument) {
    RecordingContainer container;
    reader.SetContainer(&container);
    ASSERT_TRUE(parse(project("")));
    OpenReader const copy(reader);
    OpenReader assigned;
    assigned = reader;
    for (OpenReader const* const other : {&copy, static_cast<OpenReader const*>(&assigned)}) {
        EXPECT_EQ(&factory, other->m_pNodeFactory);
        EXPECT_EQ(&container, other->m_pContainer);
        EXPECT_EQ(reader.m_pDocument, other->m_pDocument);
    }
}

// --- Where tasks go ------------------------------------------------------------------------------------------------

struct PlaceRow {
    char const* what;
    std::string tasks;
    char const* expected;
};

void PrintTo(PlaceRow const& row, std::ostream* out) {
    *out << row.what;
}

class SchedulePlaces : public FCMSPReader, public testing::WithParamInterface<PlaceRow> {};

TEST_P(SchedulePlaces, TasksGoByTheirCodes) {
    ASSERT_TRUE(parseTasks(GetParam().tasks));
    EXPECT_EQ(GetParam().expected, outline(tree.get()));
}

// The first summary of a run becomes a task; "S" stands for one in front.
std::string const S = task("S", "1", "9");

INSTANTIATE_TEST_SUITE_P(
    Tasks, SchedulePlaces,
    testing::Values(
        PlaceRow{"ProjectSummary", task("0", "1", "0") + S, "150 TS"},
        PlaceRow{"OtherZeros", task("00", "1", "5") + task(" 0 ", "1", "6"), "150 T00, 161 T 0 "},
        PlaceRow{"NoCode", "<Task><UID>1</UID><Name>T1</Name><Type>1</Type></Task>" + S, "150 TS"},
        PlaceRow{"BlankRow", S + "<Task><UID>1</UID><ID>1</ID><IsNull>1</IsNull></Task>" + task("2", "0", "9.1"),
                 "150 TS(150 T2)"},
        PlaceRow{"BlankRowAlone", "<Task><UID>1</UID><ID>1</ID><IsNull>1</IsNull></Task>", ""},
        PlaceRow{"NoNameOfItsOwn", S + "<Task><UID>1</UID><Type>1</Type><WBS>2</WBS></Task>", "150 TS, 161 "},
        PlaceRow{"SummariesFirst",
                 task("1", "1", "2") + task("2", "1", "3") + task("3", "1", "4") + task("4", "0", "2.1") +
                     task("5", "0", "3.1") + task("6", "0", "4.1"),
                 "150 T1, 161 T2, 161 T3(150 T6)"},
        PlaceRow{"AllCodesEmpty", task("1", "0", "") + task("2", "0", "") + task("3", "0", ""), ""},
        PlaceRow{"TaskInATaskWithoutChildren", S + task("1", "1", "5", task("2", "0", "5.1") + task("3", "0", "3")),
                 "150 TS, 161 T1"},
        PlaceRow{"SummaryByType", S + task("1", "1", "2") + task("2", "1", "7.4.1"), "150 TS, 161 T1, 161 T2"},
        PlaceRow{"SummaryByParentOne", S + "<Task><UID>1</UID><Name>T1</Name><WBS>1.1</WBS></Task>", "150 TS, 161 T1"},
        PlaceRow{"ParentOneOfAnyType", S + task("1", "5", "1.7") + task("2", "2", "1.8"), "150 TS, 161 T1, 161 T2"},
        PlaceRow{"TypeZeroBelowOne", S + task("1", "0", "1.7"), "150 TS, 150 T1"},
        PlaceRow{"ParentOneOneIsNotOne", S + task("1", "2", "1.1.7"), "150 TS"},
        PlaceRow{"BelowTheNewest", S + task("1", "1", "2") + task("2", "0", "2.1") + task("3", "0", "2.2"),
                 "150 TS, 161 T1(150 T2, 150 T3)"},
        PlaceRow{"NotBelowAnOlderOne", S + task("1", "1", "2") + task("2", "1", "3") + task("3", "0", "2.1"),
                 "150 TS, 161 T1, 161 T2"},
        PlaceRow{"TwoLevelsBelowTheNewest", S + task("1", "1", "1.2") + task("2", "0", "1.2.3"),
                 "150 TS, 161 T1(150 T2)"},
        PlaceRow{"NotBelowAGrandchild", S + task("1", "1", "2") + task("2", "0", "2.1") + task("3", "0", "2.1.1"),
                 "150 TS, 161 T1(150 T2)"},
        PlaceRow{"CodesInAnyCase", S + task("1", "1", "a.B") + task("2", "0", "A.b.1"), "150 TS, 161 T1(150 T2)"},
        PlaceRow{"BelowAFirstSummary", task("1", "1", "2") + task("2", "0", "2.1"), "150 T1(150 T2)"},
        PlaceRow{"TaskFirst", task("1", "0", "1") + task("2", "0", "2.1") + S, "150 TS"},
        PlaceRow{"TopTask", S + task("1", "0", "3"), "150 TS"},
        PlaceRow{"TopTaskBelowAnEmptyCode", task("1", "1", "") + task("2", "0", "3") + task("3", "0", ""),
                 "150 T1(150 T2, 150 T3)"},
        PlaceRow{"EmptyCodeElement", S + "<Task><UID>1</UID><Name>T1</Name><Type>1</Type><WBS/></Task>",
                 "150 TS, 161 T1"},
        PlaceRow{"CodeOfAPoint", task("1", "1", "") + task("2", "0", "."), "150 T1(150 T2)"},
        PlaceRow{"PointAtTheEnd", S + task("1", "1", "4") + task("2", "0", "4."), "150 TS, 161 T1(150 T2)"},
        PlaceRow{"TypeBehindTheCode", S + "<Task><UID>1</UID><WBS>3</WBS><Type>1</Type></Task>", "150 TS"},
        PlaceRow{"UIDBehindTheCode", S + "<Task><Type>1</Type><WBS>3</WBS><UID>0</UID><Name>T1</Name></Task>",
                 "150 TS, 161 T1"},
        PlaceRow{"NoUID", S + "<Task><Name>T1</Name><Type>1</Type><WBS>3</WBS></Task>", "150 TS, 161 T1"},
        PlaceRow{"LastTypeBeforeTheCode",
                 S + "<Task><UID>1</UID><Type>1</Type><Type>2</Type><Name>T1</Name><WBS>3</WBS></Task>" +
                     "<Task><UID>2</UID><Type>2</Type><Type>1</Type><Name>T2</Name><WBS>3</WBS></Task>",
                 "150 TS, 161 T2"},
        PlaceRow{"SecondUIDBeforeASecondCode",
                 S + "<Task><UID>0</UID><WBS>0</WBS><UID>7</UID><Type>1</Type><Name>T7</Name><WBS>3</WBS></Task>",
                 "150 TS, 161 T7"},
        PlaceRow{"NamesBeforeTheRest", S + "<Task><Name>T1</Name><WBS>1.5</WBS><Type>0</Type><UID>1</UID></Task>",
                 "150 TS, 150 T1"},
        PlaceRow{"CodesOtherThanTheOutline",
                 S + task("1", "1", "P-01", "<OutlineNumber>2</OutlineNumber>") +
                     task("2", "0", "P-01.a", "<OutlineNumber>7.7</OutlineNumber>") +
                     task("3", "0", "X.a", "<OutlineNumber>2.1</OutlineNumber>"),
                 "150 TS, 161 T1(150 T2)"},
        PlaceRow{"TaskInATask", S + task("1", "1", "5", task("2", "1", "6") + task("3", "0", "6.1")),
                 "150 TS, 161 T1(161 T2(150 T3))"},
        PlaceRow{"TasksInATask", S + task("1", "1", "5", "<Tasks>" + task("2", "1", "6") + "</Tasks>"),
                 "150 TS, 161 T1(161 T2)"},
        PlaceRow{"OutsideTasks", "</Tasks>" + S + task("1", "1", "4") + "<Tasks>" + task("2", "1", "5"),
                 "150 TS, 161 T1, 161 T2"}),
    [](auto const& row) { return row.param.what; });

TEST_F(FCMSPReader, DeepTasksAreReadToTheEnd) {
    constexpr int kDepth = 500;
    std::string tasks;
    for (int depth = 0; depth < kDepth; ++depth)
        tasks += "<Task><UID>1</UID><Type>1</Type><WBS>2</WBS>";
    for (int depth = 0; depth < kDepth; ++depth)
        tasks += "</Task>";
    ASSERT_TRUE(parseTasks(tasks));
    int depth = 0;
    for (IFCNode* node = tree->GetChild(); node != nullptr; node = node->GetChild())
        ++depth;
    EXPECT_EQ(kDepth, depth);
}

TEST_F(FCMSPReader, LoadGoesAsDeepAsTheDocument) {
    // Deeper than any file may be; the document is the caller's own.
    constexpr int kDepth = 200000;
    ASSERT_TRUE(parse("<Project/>"));
    auto* const root = reader.m_pDocument->getDocumentElement();
    auto* deepest = root;
    for (int depth = 0; depth < kDepth; ++depth) {
        auto* const inner = flowmere::appendElement(deepest, u"Tasks");
        ASSERT_NE(nullptr, inner);
        deepest = inner;
    }
    flowmere::appendText(flowmere::appendElement(deepest, u"Name"), L"Deep");
    EXPECT_TRUE(reader.Load(root, tree.get(), 0));
    EXPECT_EQ("Deep", narrow(tree->GetNodeCaption()));
}

// --- Findings ------------------------------------------------------------------------------------------------------

struct FindingRow {
    char const* what;
    std::string tasks;
    std::vector<std::string> expected;
};

void PrintTo(FindingRow const& row, std::ostream* out) {
    *out << row.what;
}

class ScheduleFindings : public FCMSPReader, public testing::WithParamInterface<FindingRow> {};

TEST_P(ScheduleFindings, TellWhyATaskIsLeftOut) {
    ASSERT_TRUE(parseTasks(GetParam().tasks));
    EXPECT_EQ(GetParam().expected, findings());
    int tasks = 0;
    std::function<void(IFCNode*)> const count = [&](IFCNode* node) {
        flowmere::visitChildrenFromLast(node, [&](IFCNode* child) {
            tasks += child->GetBPMBlockData() != nullptr ? 1 : 0;
            count(child);
        });
    };
    count(tree.get());
    auto const leftOut = std::count_if(reader.GetFindings().begin(), reader.GetFindings().end(),
                                       [](Finding const& finding) { return finding.IsTaskLeftOut(); });
    EXPECT_EQ(reader.GetTaskCount(), tasks + static_cast<int>(leftOut));
}

INSTANTIATE_TEST_SUITE_P(
    Tasks, ScheduleFindings,
    testing::Values(
        FindingRow{"Nothing", S, {}}, FindingRow{"ProjectSummary", task("0", "1", "0") + S, {"1 0 0|0||"}},
        FindingRow{"ProjectSummaryWithoutCode", "<Task><UID>0</UID></Task>", {"1 0 0|||"}},
        FindingRow{"NoCode", S + "<Task><UID>4</UID><Type>1</Type></Task>", {"2 1 4|||"}},
        FindingRow{"BlankRow", S + "<Task><UID>4</UID><ID>3</ID><IsNull>1</IsNull></Task>", {"2 1 4|||"}},
        FindingRow{"AllCodesEmpty", task("1", "0", "") + task("2", "0", ""), {"1 2 1|||", "2 2 2|||"}},
        FindingRow{"TaskInATaskWithoutChildren", S + task("1", "1", "5", task("2", "0", "5.1")), {"3 2 2|5.1|5|"}},
        FindingRow{"LinkInsideALeftOutTask",
                   task("0", "1", "0", "<PredecessorLink>" + task("2", "1", "5") + "</PredecessorLink>"),
                   {"1 0 0|0||", "2 4 2|5||"}},
        FindingRow{"EmptyTask", "<Task/>", {"1 1 |||"}}, FindingRow{"TopTaskFirst", task("1", "0", "1"), {"1 2 1|1||"}},
        FindingRow{"TaskFirst", task("1", "0", "4.2.1"), {"1 2 1|4.2.1|4.2|"}},
        FindingRow{"TopTaskBehindASummary", S + task("1", "0", "1"), {"2 3 1|1||9"}},
        FindingRow{"OtherNewest", S + task("1", "1", "2") + task("2", "0", "9.1"), {"3 3 2|9.1|9|2"}},
        FindingRow{"InsideALeftOutTask",
                   S + task("1", "0", "4.1", "<Tasks>" + task("2", "1", "5") + "</Tasks>" + task("3", "1", "6") + S),
                   {"2 3 1|4.1|4|9", "3 4 2|5||", "4 4 3|6||", "5 4 S|9||"}},
        FindingRow{"InsideTheProjectSummary",
                   task("0", "1", "0", task("2", "1", "5", task("3", "1", "6"))),
                   {"1 0 0|0||", "2 4 2|5||", "3 4 3|6||"}},
        FindingRow{"BrokenDate", task("1", "1", "1", "<Start>soon</Start>"), {"1 6 1|1||soon"}},
        FindingRow{"HalfADate", task("1", "1", "1", "<Finish>2024-03-05</Finish>"), {"1 6 1|1||2024-03-05"}},
        FindingRow{"WholeDate", task("1", "1", "1", "<Start>2024-03-05T08:00:00</Start><Finish> </Finish>"), {}},
        FindingRow{"DateBehindAnInnerTask",
                   task("1", "1", "1", task("2", "1", "2") + "<Start>soon</Start>"),
                   {"1 6 1|1||soon"}},
        FindingRow{"TwoPredecessors",
                   task("1", "1", "1",
                        "<PredecessorLink><PredecessorUID>7</PredecessorUID></PredecessorLink><PredecessorLink>"
                        "<PredecessorUID>8</PredecessorUID></PredecessorLink><PredecessorLink>"
                        "<PredecessorUID>8</PredecessorUID></PredecessorLink>"),
                   {"1 7 1|1||7"}}),
    [](auto const& row) { return row.param.what; });

TEST_F(FCMSPReader, TellsOfATypeThatComesTooLate) {
    ASSERT_TRUE(
        parseTasks(S + "<Task><UID>1</UID><WBS>3</WBS><Type>1</Type><Name>Late</Name></Task>" + task("2", "0", "4")));
    ASSERT_EQ(2U, reader.GetFindings().size());
    EXPECT_EQ(L"1", reader.GetFindings()[0].lateType);
    EXPECT_EQ(L"Late", reader.GetFindings()[0].name);
    EXPECT_EQ(L"", reader.GetFindings()[1].lateType);
}

TEST_F(FCMSPReader, TellsWhichElementHasAValueOfNoUse) {
    IFCNode* const made = parseTask("<Start>x</Start><Finish>y</Finish><PredecessorUID>7</PredecessorUID>"
                                    "<PredecessorUID>8</PredecessorUID>");
    std::vector<std::string> elements;
    for (Finding const& finding : reader.GetFindings()) {
        EXPECT_FALSE(finding.IsTaskLeftOut());
        EXPECT_EQ(made, finding.node);
        EXPECT_EQ(L"T1", finding.name);
        elements.push_back(narrow(finding.element));
    }
    EXPECT_THAT(elements, ElementsAre("Start", "Finish", "PredecessorUID"));
}

TEST_F(FCMSPReader, DoesNotFreeTheNodeOfATaskThatIsLeftOut) {
    // Where no task at all has been taken, and where the newest is another.
    ASSERT_TRUE(parseTasks(task("1", "0", "4.1") + S + task("2", "0", "4.1")));
    ASSERT_EQ(2U, reader.GetFindings().size());
    for (Finding const& finding : reader.GetFindings()) {
        IFCNode* const node = finding.node;
        ASSERT_NE(nullptr, node);
        EXPECT_EQ(node, CFCNodeManager::GetNode(node->GetNodeHandle()));
        EXPECT_EQ(150, node->GetNodeType());
        EXPECT_EQ(nullptr, node->GetParentNode());
        EXPECT_EQ("", narrow(node->GetNodeId()));
        EXPECT_EQ("", narrow(node->GetBPMBlockData()->GetUID()));
    }
}

TEST_F(FCMSPReader, ForgetsTheFindingsOfAnEarlierFile) {
    ASSERT_TRUE(parseTasks("<Task/>"));
    EXPECT_EQ(1U, reader.GetFindings().size());
    ASSERT_TRUE(parseTasks(""));
    EXPECT_THAT(reader.GetFindings(), IsEmpty());
    EXPECT_EQ(0, reader.GetTaskCount());
}

TEST_F(FCMSPReader, LeavesOutTasksForWhichThereIsNoNode) {
    PoorFactory poor(150);
    reader.SetNodeFactory(&poor);
    ASSERT_TRUE(parseTasks(S + task("1", "0", "9.1")));
    EXPECT_EQ("", outline(tree.get()));
    EXPECT_THAT(findings(), ElementsAre("1 5 S|9||", "2 5 1|9.1|9|"));
}

TEST_F(FCMSPReader, PlacesNodesWithoutWorkflowData) {
    PlainFactory plain;
    reader.SetNodeFactory(&plain);
    ASSERT_TRUE(parseTasks(task("1", "1", "9",
                                "<Milestone>1</Milestone><Start>x</Start><PredecessorUID>2"
                                "</PredecessorUID>") +
                           task("2", "0", "9.1")));
    IFCNode* const made = findTask(tree.get(), "T1");
    ASSERT_NE(nullptr, made);
    EXPECT_EQ(nullptr, made->GetBPMBlockData());
    EXPECT_EQ("20 750", placeOf(made));
    EXPECT_THAT(findings(), ElementsAre("2 2 2|9.1|9|"));
}

TEST_F(FCMSPReader, ReadsIntoNodesThatAreNoBlocks) {
    GroupFactory groups;
    reader.SetNodeFactory(&groups);
    ASSERT_TRUE(parseTasks(task("1", "1", "9")));
    IFCNode* const made = tree->GetChild();
    EXPECT_EQ(nullptr, made->GetFCBlockData());
    EXPECT_EQ("T1", narrow(made->GetNodeCaption()));
    EXPECT_EQ(150, made->GetNodeType()) << "the first summary";
    EXPECT_THAT(findings(), IsEmpty());
}

// --- Values --------------------------------------------------------------------------------------------------------

TEST_F(FCMSPReader, NameBecomesCaptionAndIdentifier) {
    IFCNode* const made = parseTask("<Name>Plan &#228;</Name>");
    EXPECT_EQ(nullptr, made);
    IFCNode* const named = findTask(tree.get(), "Plan \xC3\xA4");
    ASSERT_NE(nullptr, named);
    EXPECT_EQ("Plan \xC3\xA4", narrow(named->GetNodeCaption()));
}

TEST_F(FCMSPReader, NameOfTheFileReplacesTheCaptionOfTheProcess) {
    ASSERT_TRUE(parse("<Project><Name>Line 3</Name><Tasks>" + S + "</Tasks></Project>"));
    EXPECT_EQ("Line 3", narrow(tree->GetNodeCaption()));
    EXPECT_EQ("Line 3", narrow(tree->GetNodeId()));
    ASSERT_TRUE(parse("<Project><Name/></Project>"));
    EXPECT_EQ("", narrow(tree->GetNodeCaption()));
    EXPECT_EQ("", narrow(tree->GetNodeId()));
}

TEST_F(FCMSPReader, NamesOfOtherThingsInTheFileAreNotRead) {
    ASSERT_TRUE(parse("<Project><Title>T</Title><Resources><Resource><Name>R</Name><UID>1</UID></Resource></Resources>"
                      "</Project>"));
    EXPECT_EQ("Block Library", narrow(tree->GetNodeCaption()));
    EXPECT_EQ(160, tree->GetNodeType());
}

TEST_F(FCMSPReader, TypeZeroMakesAPlainTask) {
    struct Row {
        char const* type;
        int kind;
    };
    for (Row const& row : {Row{"0", 150}, Row{"1", 161}, Row{"", 161}, Row{"00", 161}, Row{" 0", 161}, Row{"2", 161}}) {
        ASSERT_TRUE(parseTasks(S + task("1", "1", "2", element("Type", row.type)))) << row.type;
        EXPECT_EQ(row.kind, findTask(tree.get(), "T1")->GetNodeType()) << row.type;
    }
}

TEST_F(FCMSPReader, TypeOfAPredecessorLinkCountsAsThatOfTheTask) {
    ASSERT_TRUE(parseTasks(S + task("1", "1", "2",
                                    "<PredecessorLink><PredecessorUID>5</PredecessorUID><Type>0</Type>"
                                    "</PredecessorLink>")));
    EXPECT_EQ("150 TS, 150 T1", outline(tree.get()));
}

TEST_F(FCMSPReader, TypeOfTheFileChangesTheProcess) {
    ASSERT_TRUE(parse("<Project><Type>0</Type></Project>"));
    EXPECT_EQ(150, tree->GetNodeType());
}

TEST_F(FCMSPReader, ValuesOfTheFileGoToTheProcess) {
    ASSERT_TRUE(parse("<Project><WBS>4</WBS><Milestone>1</Milestone><Start>2024-03-05T08:00:00</Start>"
                      "<Finish>2025-04-06T09:10:11</Finish><PredecessorUID>7</PredecessorUID></Project>"));
    CFCBPMBlockData* const data = tree->GetBPMBlockData();
    EXPECT_EQ("4", narrow(data->GetWBS()));
    EXPECT_TRUE(data->IsMilestone());
    EXPECT_EQ(20240305080000, data->GetStartDate().toSerial());
    EXPECT_EQ(20250406091011, data->GetEndDate().toSerial());
    EXPECT_EQ("7", narrow(data->GetPredecessorID()));
}

TEST_F(FCMSPReader, ValuesInsideOtherElementsOfATaskAreNotRead) {
    IFCNode* const made =
        parseTask("<Baseline><UID>9</UID><Name>B</Name><WBS>8</WBS><Type>0</Type><Milestone>1</Milestone>"
                  "<Start>2024-03-05T08:00:00</Start><Task><UID>4</UID><Type>1</Type><WBS>3</WBS></Task></Baseline>");
    ASSERT_NE(nullptr, made);
    EXPECT_EQ("1", narrow(made->GetBPMBlockData()->GetUID()));
    EXPECT_EQ("1", narrow(made->GetBPMBlockData()->GetWBS()));
    EXPECT_FALSE(made->GetBPMBlockData()->IsMilestone());
    EXPECT_TRUE(made->GetBPMBlockData()->GetStartDate().IsEmpty());
    EXPECT_EQ(nullptr, made->GetChild());
    EXPECT_EQ(1, reader.GetTaskCount());
}

TEST_F(FCMSPReader, TakesIdentifiersAndCodesAsTheyAre) {
    struct Row {
        char const* uid;
        char const* wbs;
    };
    for (Row const& row : {Row{"-1", "-1"}, Row{"99999999999999999999", "99999999999999999999"}, Row{"1e9", "1,5"},
                           Row{"x", "..."}, Row{"", ""}, Row{" 7 ", " 1 . 2 "}, Row{"0x0", "\xC3\xA4.\xC3\x9F"}}) {
        ASSERT_TRUE(parseTasks(S + "<Task>" + element("UID", row.uid) + "<Type>1</Type>" + element("WBS", row.wbs) +
                               "<Name>T</Name>" + "<PredecessorLink>" + element("PredecessorUID", row.uid) +
                               "</PredecessorLink></Task>"))
            << row.uid;
        IFCNode* const made = findTask(tree.get(), "T");
        ASSERT_NE(nullptr, made) << row.uid;
        EXPECT_EQ(row.uid, narrow(made->GetBPMBlockData()->GetUID()));
        EXPECT_EQ(row.wbs, narrow(made->GetBPMBlockData()->GetWBS()));
        EXPECT_EQ(row.uid, narrow(made->GetBPMBlockData()->GetPredecessorID()));
        EXPECT_THAT(reader.GetFindings(), IsEmpty());
    }
}

TEST_F(FCMSPReader, MilestoneIsTrueForOneAlone) {
    struct Row {
        char const* text;
        bool isMilestone;
    };
    for (Row const& row : {Row{"1", true}, Row{"0", false}, Row{"", false}, Row{"true", false}, Row{"2", false},
                           Row{" 1", false}, Row{"01", false}}) {
        IFCNode* const made = parseTask("<Milestone>1</Milestone>" + element("Milestone", row.text));
        ASSERT_NE(nullptr, made) << row.text;
        EXPECT_EQ(row.isMilestone, made->GetBPMBlockData()->IsMilestone()) << row.text;
    }
}

TEST_F(FCMSPReader, DurationIsNeverRead) {
    for (char const* const text : {"PT8H0M0S", "17", "", "x"}) {
        IFCNode* const made = parseTask(element("Duration", text));
        ASSERT_NE(nullptr, made) << text;
        EXPECT_EQ(1.0, made->GetBPMBlockData()->GetDuration()) << text;
    }
}

TEST_F(FCMSPReader, IdentifiersStayOnTheTask) {
    IFCNode* const made =
        parseTask("<PredecessorLink><PredecessorUID>7</PredecessorUID><CrossProject>0</CrossProject></PredecessorLink>"
                  "<PredecessorLink><PredecessorUID>8</PredecessorUID></PredecessorLink>");
    ASSERT_NE(nullptr, made);
    EXPECT_EQ("1", narrow(made->GetBPMBlockData()->GetUID()));
    EXPECT_EQ("1", narrow(made->GetBPMBlockData()->GetWBS()));
    EXPECT_EQ("8", narrow(made->GetBPMBlockData()->GetPredecessorID()));
    EXPECT_EQ(nullptr, tree->GetConnectorList()->GetHeadPosition());
}

struct DateRow {
    char const* text;
    char const* expected;
};

void PrintTo(DateRow const& row, std::ostream* out) {
    *out << row.text;
}

class ScheduleDates : public FCMSPReader, public testing::WithParamInterface<DateRow> {};

TEST_P(ScheduleDates, AreReadUpToTheirFirstFault) {
    auto const text = [](TuDate const& date) {
        std::string joined;
        for (short const field :
             {date.getYear(), date.getMonth(), date.getDay(), date.getHour(), date.getMinute(), date.getSecond()})
            joined += (joined.empty() ? "" : " ") + std::to_string(field);
        return joined;
    };
    std::string const other = "1999-12-31T23:59:58";
    IFCNode* const made = parseTask(element("Start", GetParam().text) + element("Finish", other));
    ASSERT_NE(nullptr, made);
    EXPECT_EQ(GetParam().expected, text(made->GetBPMBlockData()->GetStartDate()));
    EXPECT_EQ("1999 12 31 23 59 58", text(made->GetBPMBlockData()->GetEndDate()));
    IFCNode* const turned = parseTask(element("Start", other) + element("Finish", GetParam().text));
    ASSERT_NE(nullptr, turned);
    EXPECT_EQ("1999 12 31 23 59 58", text(turned->GetBPMBlockData()->GetStartDate()));
    EXPECT_EQ(GetParam().expected, text(turned->GetBPMBlockData()->GetEndDate()));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ScheduleDates,
    testing::Values(DateRow{"2024-03-05T08:00:00", "2024 3 5 8 0 0"}, DateRow{"2024-3-5T8:0:9", "2024 3 5 8 0 9"},
                    DateRow{"2024-03-05T08:00:00Z", "2024 3 5 8 0 0"},
                    DateRow{"2024-03-05T08:00:00.75+01:00", "2024 3 5 8 0 0"},
                    DateRow{" 2024- 03-05T 08:\t00:00", "2024 3 5 8 0 0"}, DateRow{"", "0 0 0 0 0 0"},
                    DateRow{"NA", "0 0 0 0 0 0"}, DateRow{"2024", "2024 0 0 0 0 0"},
                    DateRow{"2024-03", "2024 3 0 0 0 0"}, DateRow{"2024-03-05", "2024 3 5 0 0 0"},
                    DateRow{"2024-03-05 08:00:00", "2024 3 5 0 0 0"}, DateRow{"2024-03-05t08:00:00", "2024 3 5 0 0 0"},
                    DateRow{"2024-03-05T", "2024 3 5 0 0 0"}, DateRow{"2024-03-05T08:xx:00", "2024 3 5 8 0 0"},
                    DateRow{"2024 -03-05", "2024 0 0 0 0 0"}, DateRow{"2024/03/05", "2024 0 0 0 0 0"},
                    DateRow{"05.03.2024", "5 0 0 0 0 0"}, DateRow{"-5-+03--05T08:00:00", "-5 3 -5 8 0 0"},
                    DateRow{"2024-13-45T99:99:99", "2024 13 45 99 99 99"}, DateRow{"32767-1-1", "32767 1 1 0 0 0"},
                    DateRow{"32768-01-01T01:01:01", "0 0 0 0 0 0"},
                    DateRow{"2024-99999999999999999999-05", "2024 0 0 0 0 0"},
                    // As many as an int has, and one more.
                    DateRow{"2024-4294967297-05", "2024 0 0 0 0 0"},
                    DateRow{"0000002024-03-05T08:00:00", "2024 3 5 8 0 0"}, DateRow{"+-2024", "0 0 0 0 0 0"}));

TEST_F(FCMSPReader, ASecondDateReplacesTheFirst) {
    IFCNode* const made = parseTask("<Start>2024-03-05T08:00:00</Start><Start>never</Start>");
    ASSERT_NE(nullptr, made);
    EXPECT_TRUE(made->GetBPMBlockData()->GetStartDate().IsEmpty());
}

// --- Look and layout -----------------------------------------------------------------------------------------------

TEST_F(FCMSPReader, StylesABlockWhenItsIdentifierComes) {
    LoudFactory loud;
    reader.SetNodeFactory(&loud);
    ASSERT_TRUE(parseTasks(S + "<Task><Type>1</Type><WBS>3</WBS><Name>T1</Name></Task>"));
    CFCBlockData* const block = findTask(tree.get(), "TS")->GetFCBlockData();
    EXPECT_TRUE(block->GetDrawBorder());
    EXPECT_TRUE(block->GetFillColor());
    EXPECT_FALSE(block->GetVisible());
    EXPECT_TRUE(block->GetBorderSet());
    EXPECT_EQ(2, block->GetLineThickness());
    EXPECT_EQ(0, block->GetLinePenType());
    EXPECT_EQ(0U, block->GetColorLine());
    EXPECT_EQ(0xF6B381U, block->GetColorFill());
    IFCNode* const without = findTask(tree.get(), "T1");
    EXPECT_FALSE(without->GetFCBlockData()->GetBorderSet());
    EXPECT_EQ(0x654321U, without->GetFCBlockData()->GetColorFill());
    EXPECT_EQ(161, without->GetNodeType());
}

// "left lower" of the tasks in the order of the file.
std::vector<std::string> placesOf(IFCNode* node) {
    std::vector<std::string> places;
    flowmere::visitChildrenFromLast(node, [&](IFCNode* child) {
        if (child->GetBPMBlockData() == nullptr)
            return;
        places.push_back(placeOf(child));
        for (std::string const& place : placesOf(child))
            places.push_back(place);
    });
    return places;
}

std::string tasksBelow(std::string const& code, int count) {
    std::string tasks;
    for (int number = 1; number <= count; ++number)
        tasks += "<Task><Type>0</Type><WBS>" + code + "." + std::to_string(number) + "</WBS><UID>" +
                 std::to_string(number) + "</UID></Task>";
    return tasks;
}

std::string summaries(int count) {
    std::string tasks;
    for (int number = 1; number <= count; ++number)
        tasks += task("S" + std::to_string(number), "1", "S" + std::to_string(number));
    return tasks;
}

TEST_F(FCMSPReader, PlacesTasksInColumnsOfSevenRows) {
    ASSERT_TRUE(parseTasks(S + tasksBelow("9", 17)));
    EXPECT_THAT(placesOf(tree.get()),
                ElementsAre("20 750",             // the summary
                            "20 750",             // y 5.5
                            "270 200", "270 400", // 11, 9
                            "270 600", "270 800", "270 1000", "270 1200",
                            "270 1400", // -1
                            "520 200", "520 400", "520 600", "520 800", "520 1000", "520 1200", "520 1400", "770 200",
                            "770 400"));
}

TEST_F(FCMSPReader, PlacesSummariesInColumnsOfTheirOwn) {
    ASSERT_TRUE(parseTasks(summaries(10)));
    EXPECT_THAT(placesOf(tree.get()), ElementsAre("20 750", "270 200", "270 400", "270 600", "270 800", "270 1000",
                                                  "270 1200", "270 1400", "520 200", "520 400"));
}

TEST_F(FCMSPReader, TasksBeginAnewBehindEachSummary) {
    ASSERT_TRUE(parseTasks(S + tasksBelow("9", 3) + task("1", "1", "2") + tasksBelow("2", 2)));
    EXPECT_THAT(placesOf(tree.get()),
                ElementsAre("20 750", "20 750", "270 200", "270 400", "270 200", "20 750", "270 200"));
}

TEST_F(FCMSPReader, TheFirstSummaryOfARunEndsTheColumnBeforeIt) {
    // Tasks in front of any summary: a type of 0 in front of the identifier, below the code 1.
    std::string const early = "<Task><Type>0</Type><WBS>1.1</WBS><UID>1</UID></Task>";
    ASSERT_TRUE(parseTasks(early + early + early + S + tasksBelow("9", 2)));
    EXPECT_THAT(placesOf(tree.get()), ElementsAre("20 750", "270 200", "270 400", // the early ones
                                                  "20 750",                       // the summary
                                                  "20 750", "270 200"));
}

TEST_F(FCMSPReader, TheFirstSummaryOfARunBecomesATaskAndKeepsItsChildren) {
    ASSERT_TRUE(parseTasks(S + task("1", "0", "9.1") + task("2", "1", "2")));
    EXPECT_EQ("150 TS(150 T1), 161 T2", outline(tree.get()));
    ASSERT_TRUE(parseTasks(S + task("1", "0", "9.1")));
    EXPECT_EQ("161 TS(150 T1)", outline(tree.get()));
}

TEST_F(FCMSPReader, ColumnsGoOnFromOneImportToTheNext) {
    ASSERT_TRUE(parseTasks(S + tasksBelow("9", 2)));
    EXPECT_THAT(placesOf(tree.get()), ElementsAre("20 750", "20 750", "270 200"));
    // No summary before the task, whose column goes on.
    OpenReader second;
    second.SetNodeFactory(&factory);
    scratch.write("second.xml", project("<Task><Type>1</Type><WBS>9</WBS></Task>" + tasksBelow("9", 1) + S));
    IFCNode* node = nullptr;
    ASSERT_TRUE(second.Parse(scratch.text("second.xml"), &node, 0));
    Tree const other(node);
    IFCNode* const summary = other->GetChild();
    EXPECT_EQ(161, summary->GetNodeType());
    EXPECT_EQ("270 200", placeOf(summary));
    EXPECT_EQ("270 400", placeOf(summary->GetNext()->GetChild()));
}

TEST_F(FCMSPReader, ColumnsAreTheSameForEveryThread) {
    ASSERT_TRUE(parseTasks(S));
    std::thread([this] { EXPECT_TRUE(parseTasks(S)); }).join();
    EXPECT_EQ("161 TS", outline(tree.get()));
    EXPECT_THAT(placesOf(tree.get()), ElementsAre("270 200"));
}

TEST_F(FCMSPReader, KindAtTheIdentifierDecidesThePlace) {
    // A type of 0 in front of the identifier makes a task of it in time, one behind it does not.
    ASSERT_TRUE(parseTasks(S + "<Task><Type>0</Type><WBS>1.1</WBS><UID>1</UID><Name>A</Name></Task>" +
                           "<Task><UID>2</UID><Type>0</Type><WBS>1.2</WBS><Name>B</Name></Task>"));
    EXPECT_EQ("150 TS, 150 A, 150 B", outline(tree.get()));
    EXPECT_THAT(placesOf(tree.get()), ElementsAre("20 750", "20 750", "270 200"));
    ASSERT_TRUE(parseTasks(task("3", "1", "3")));
    EXPECT_THAT(placesOf(tree.get()), ElementsAre("270 400")) << "B took a place among the summaries";
}

TEST_F(FCMSPReader, EachIdentifierOfATaskTakesAPlace) {
    ASSERT_TRUE(parseTasks(S + task("1", "1", "2", "<UID>5</UID><PredecessorLink><UID>6</UID></PredecessorLink>")));
    IFCNode* const made = findTask(tree.get(), "T1");
    EXPECT_EQ("270 600", placeOf(made));
    EXPECT_EQ("6", narrow(made->GetBPMBlockData()->GetUID()));
}

TEST_F(FCMSPReader, IdentifierOfTheFilePlacesTheProcess) {
    ASSERT_TRUE(parse("<Project><UID>77</UID><Tasks>" + S + "</Tasks></Project>"));
    EXPECT_EQ(150, tree->GetNodeType());
    EXPECT_EQ("20 750", placeOf(tree.get()));
    EXPECT_EQ("77", narrow(tree->GetBPMBlockData()->GetUID()));
    EXPECT_EQ(0xF6B381U, tree->GetFCBlockData()->GetColorFill());
    EXPECT_EQ("161 TS", outline(tree.get()));
    EXPECT_THAT(placesOf(tree.get()), ElementsAre("270 200"));
    ASSERT_TRUE(parse("<Project><UID>78</UID></Project>"));
    EXPECT_EQ(160, tree->GetNodeType());
    EXPECT_EQ("270 400", placeOf(tree.get()));
}

// --- Hosts ---------------------------------------------------------------------------------------------------------

TEST_F(FCMSPReader, HandsANodeOverOnceForEachElementReadIntoIt) {
    RecordingContainer container;
    reader.SetContainer(&container);
    ASSERT_TRUE(parse(
        "<Project><Name>P</Name><Tasks>" + task("0", "1", "0") +
        task("1", "1", "2", "<PredecessorLink/><PredecessorLink><PredecessorUID>4</PredecessorUID></PredecessorLink>") +
        task("2", "0", "2.1") + task("3", "0", "5.1") + "</Tasks><Tasks/></Project>"));
    EXPECT_THAT(events, ElementsAre("draw T1", "attach T1", "draw T1", "attach T1", "draw T1", "attach T1", "draw T2",
                                    "attach T2", "attach P", "attach P", "attach P"));
}

TEST_F(FCMSPReader, DrawsWithoutAContainer) {
    ASSERT_TRUE(parseTasks(S));
    EXPECT_THAT(events, ElementsAre("draw TS"));
}

TEST_F(FCMSPReader, TasksAreFoundByCodeOrIdentifier) {
    ASSERT_TRUE(parseTasks(S + task("1", "1", "2") + task("2", "1", "3") + task("3", "0", "3.1")));
    IFCNode* const chain = tree->GetChild();
    EXPECT_EQ(findTask(tree.get(), "T1"), CFCNodeHelper::FindNodeWBS(L"2", L"", chain));
    EXPECT_EQ(findTask(tree.get(), "T1"), CFCNodeHelper::FindNodeWBS(L"none", L"1", chain));
    EXPECT_EQ(findTask(tree.get(), "TS"), CFCNodeHelper::FindNodeWBS(L"none", L"s", chain));
    EXPECT_EQ(nullptr, CFCNodeHelper::FindNodeWBS(L"3.1", L"3", chain)) << "children are not searched";
    EXPECT_EQ(nullptr, CFCNodeHelper::FindNodeWBS(L"none", L"none", chain));
}

TEST_F(FCMSPReader, AHundredThousandTasksOnOneLine) {
    constexpr int kCount = 100000;
    std::string tasks = "<Task><UID>1</UID><Type>1</Type><WBS>2</WBS></Task>";
    for (int number = 1; number < kCount; ++number)
        tasks += "<Task><UID>0</UID><WBS>2." + std::to_string(number) + "</WBS></Task>";
    ASSERT_TRUE(parseTasks(tasks));
    EXPECT_EQ(kCount, reader.GetTaskCount());
    EXPECT_EQ(static_cast<std::size_t>(kCount - 1), reader.GetFindings().size());
    EXPECT_EQ(kCount, reader.GetFindings().back().number);
}

TEST_F(FCMSPReader, AHundredThousandTasksOnOneLineFindTheirPlaces) {
    constexpr int kCount = 100000;
    constexpr int kGroup = 20000;
    std::string tasks;
    for (int number = 0; number < kCount; ++number) {
        std::string const group = "G" + std::to_string(number / kGroup);
        bool const isSummary = number % kGroup == 0;
        tasks += task(std::to_string(number + 1), isSummary ? "1" : "0",
                      isSummary ? group : group + "." + std::to_string(number));
    }
    ASSERT_TRUE(parseTasks(tasks));
    EXPECT_EQ(kCount, reader.GetTaskCount());
    EXPECT_THAT(reader.GetFindings(), IsEmpty());
    IFCNode* const newest = tree->GetChild();
    int inside = 0;
    for (IFCNode* child = newest->GetChild(); child != nullptr; child = child->GetNext())
        ++inside;
    EXPECT_EQ(kGroup - 1, inside);
    EXPECT_EQ("T100000", narrow(newest->GetChild()->GetNodeId()));
    // The group's last task stands in the sixth row of the column behind 2856 full ones and the first task.
    EXPECT_EQ("714270 1200", placeOf(newest->GetChild()));
}

} // namespace
