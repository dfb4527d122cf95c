#include "flowmere/persistence/FCApplicationWriter.h"

#include "DocumentTestSupport.h"
#include "flowmere/model/FCApplicationNode.h"
#include "flowmere/model/NodeKinds.h"

#include <gmock/gmock.h>
#include <xercesc/dom/DOM.hpp>

#include <type_traits>

using namespace flowmere::test;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class ApplicationWriter : public DocumentTest {
protected:
    std::string write(IFCNode* node, bool deep = true) {
        CFCApplicationWriter writer;
        return textBy(writer, node, deep);
    }
};

void describe(IFCNode* node) {
    node->SetNodeCaption(L"label");
    node->SetNodeId(L"id");
    CFCBPMBlockData* const record = node->GetBPMBlockData();
    record->SetTaskCaption(L"name");
    record->SetIconFilePath(L"icons\\a.png");
    record->SetTaskDescription(L"a <short> & \"plain\" text");
}

constexpr char kRoot[] = "<Process xmlns=\"http://www.w3.org/2001/XMLSchema-instance\"";
constexpr char kApp[] = "<APP desc=\"a &lt;short> &amp; &quot;plain&quot; text\" icon=\"icons\\a.png\" id=\"id\" "
                        "label=\"label\" name=\"name\"/>";

} // namespace

TEST_F(ApplicationWriter, ATaskIsOneElementWithFiveAttributes) {
    Tree const task(CFCNodeFactory().Create(150));
    describe(task.get());
    std::string const file = write(task.get());
    EXPECT_EQ(outlineOf(file), "0Process 1APP ");
    EXPECT_EQ(lineOf(file, "Process"), std::string(kRoot) + ">");
    EXPECT_EQ(lineOf(file, "APP"), kApp);
}

TEST_F(ApplicationWriter, EachAttributeHasItsSource) {
    struct Row {
        char const* attribute;
        void (*set)(CFCBPMTaskNode&);
    };
    Row const rows[] = {
        {"name",
         [](CFCBPMTaskNode& task) {
             task.SetTaskCaption(L"text");
         }},
        {"icon",
         [](CFCBPMTaskNode& task) {
             task.SetIconFilePath(L"text");
         }},
        {"label",
         [](CFCBPMTaskNode& task) {
             task.SetNodeCaption(L"text");
         }},
        {"id",
         [](CFCBPMTaskNode& task) {
             task.SetNodeId(L"text");
         }},
        {"desc",
         [](CFCBPMTaskNode& task) {
             task.SetTaskDescription(L"text");
         }},
    };
    for (Row const& set : rows) {
        Tree const task(CFCNodeFactory().Create(150));
        // None of these is a source.
        task->SetNodeDescription(L"node");
        task->GetFCBlockData()->SetDescription(L"block");
        task->GetFCBlockData()->SetBlockName(L"block");
        task->GetFCBlockData()->SetRelativeImagePath(L"block");
        set.set(dynamic_cast<CFCBPMTaskNode&>(*task));
        std::string const line = lineOf(write(task.get()), "APP");
        for (Row const& row : rows)
            EXPECT_EQ(attributeIn(line, row.attribute), &row == &set ? "text" : "") << set.attribute;
    }
}

TEST_F(ApplicationWriter, AnApplicationIsWrittenByItsRecord) {
    Tree const node(CFCNodeFactory().Create(167));
    node->GetBPMBlockData()->SetTaskCaption(L"Solver");
    EXPECT_EQ(lineOf(write(node.get()), "APP"),
              "<APP desc=\"\" icon=\"\" id=\"\" label=\"Application\" name=\"Solver\"/>");
}

TEST_F(ApplicationWriter, TypesWithoutObjectNameLeaveTheRootBare) {
    for (int const type : {151, 152, 158, 159, 168, 72, -1}) {
        Tree const task(CFCNodeFactory().Create(150));
        describe(task.get());
        task->SetNodeType(type);
        std::string const file = write(task.get());
        EXPECT_EQ(outlineOf(file), "0Process ") << type;
        EXPECT_EQ(lineOf(file, "Process"), std::string(kRoot) + "/>") << type;
    }
}

TEST_F(ApplicationWriter, EveryTypeByItsNameAndItsRecord) {
    int written = 0;
    for (flowmere::NodeKind const& kind : flowmere::nodeKinds()) {
        Tree const node(CFCNodeFactory().Create(kind.code));
        if (node == nullptr)
            continue;
        std::string const file = write(node.get());
        if (kind.element == nullptr) {
            EXPECT_EQ(outlineOf(file), "0Process ") << kind.code;
            continue;
        }
        ++written;
        ASSERT_EQ(outlineOf(file), "0Process 1APP ") << kind.code;
        if (node->GetBPMBlockData() == nullptr) {
            EXPECT_EQ(lineOf(file, "APP"), "<APP/>") << kind.code;
        } else {
            EXPECT_NE(attributeIn(lineOf(file, "APP"), "name"), "(absent)") << kind.code;
        }
    }
    EXPECT_GT(written, 20);
}

TEST_F(ApplicationWriter, WithoutWorkflowRecordTheElementIsEmpty) {
    Tree const block(CFCNodeFactory().Create(57));
    block->SetNodeCaption(L"label");
    block->SetNodeId(L"id");
    EXPECT_EQ(lineOf(write(block.get()), "APP"), "<APP/>");
    Tree const task(CFCNodeFactory().Create(150));
    task->SetNodeType(0); // "UnKnown" is a name, too
    describe(task.get());
    EXPECT_EQ(lineOf(write(task.get()), "APP"), kApp);
}

TEST_F(ApplicationWriter, NothingBelowTheNodeIsWritten) {
    Tree const root(CFCNodeFactory().Create(160));
    CFCBlockNode* const a = addBlock(root.get(), L"A", 150);
    CFCBlockNode* const b = addBlock(root.get(), L"B", 150);
    connect(root.get(), a, b);
    addVariable(root.get(), L"x", L"1");
    for (bool const deep : {false, true}) {
        std::string const file = write(root.get(), deep);
        EXPECT_EQ(outlineOf(file), "0Process 1APP ") << deep;
        EXPECT_EQ(attributeIn(lineOf(file, "APP"), "name"), "") << deep;
    }
}

TEST_F(ApplicationWriter, ADeletedNodeIsWrittenAsAnyOther) {
    Tree const task(CFCNodeFactory().Create(150));
    describe(task.get());
    task->SetDeleted(true);
    EXPECT_EQ(lineOf(write(task.get()), "APP"), kApp);
    Tree const favourites(CFCNodeFactory().Create(176));
    EXPECT_EQ(lineOf(write(favourites.get()), "APP"), "<APP/>");
}

TEST_F(ApplicationWriter, NeedsAPathAndANode) {
    Tree const task(CFCNodeFactory().Create(150));
    CFCApplicationWriter writer;
    EXPECT_FALSE(writer.WriteFile(L"", task.get(), true));
    EXPECT_FALSE(writer.WriteFile(nullptr, task.get(), true));
    EXPECT_FALSE(writer.WriteFile(scratch.text("none.xml"), nullptr, true));
    EXPECT_FALSE(std::filesystem::exists(scratch / "none.xml"));
}

TEST_F(ApplicationWriter, AnElementIsGivenOrMadeBelowItsParent) {
    // The walk of a file hands in the root alone; a derived writer may hand in either.
    struct Outer : CFCApplicationWriter {
        void WriteObject(IFCNode* node, xercesc::DOMNode* parent, xercesc::DOMNode* self) override {
            CFCApplicationWriter::WriteObject(node, parent, self);
            CFCApplicationWriter::WriteObject(node, self, nullptr);
            CFCApplicationWriter::WriteObject(node, nullptr, nullptr);
            CFCApplicationWriter::WriteObject(nullptr, self, self);
            WriteProperties(nullptr, self);
            WriteProperties(node, nullptr);
        }
    } writer;
    Tree const task(CFCNodeFactory().Create(150));
    EXPECT_EQ(outlineOf(textBy(writer, task.get())), "0Process 1APP 1task-node 2APP ");
}

TEST_F(ApplicationWriter, StepsOfADerivedWriterTakeEffect) {
    struct Named : CFCApplicationWriter {
        bool GetObjectType(IFCNode*, TuString& out) override {
            out = L"anything";
            return true;
        }
        void WriteProperties(IFCNode* node, xercesc::DOMNode* element) override {
            CFCApplicationWriter::WriteProperties(node, element);
            CFCApplicationWriter::WriteProperties(node, element);
        }
    } writer;
    Tree const task(CFCNodeFactory().Create(151));
    EXPECT_EQ(outlineOf(textBy(writer, task.get())), "0Process 1APP 1APP ");
}

TEST_F(ApplicationWriter, IsCopiedLikeItsBase) {
    Tree const task(CFCNodeFactory().Create(150));
    describe(task.get());
    CFCApplicationWriter writer;
    CFCApplicationWriter copy(writer);
    EXPECT_EQ(lineOf(textBy(copy, task.get()), "APP"), kApp);
    CFCApplicationWriter assigned;
    assigned = copy;
    EXPECT_EQ(lineOf(textBy(assigned, task.get()), "APP"), kApp);
    EXPECT_TRUE((std::is_base_of_v<CFCWriter, CFCApplicationWriter>));
    EXPECT_EQ(sizeof(CFCApplicationWriter), sizeof(CFCWriter)) << "it holds nothing of its own";
}
