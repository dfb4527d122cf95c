#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCNodeManager.h"
#include "flowmere/model/FCVariableData.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>

using namespace flowmere::test;

namespace {

// The search starts at the last entry of the file and never looks below it; the types stand in the groups before.
constexpr char kDataTypes[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<DataTypes Name="Types">
  <GROUP Name="Basic" Type="BasicGroup">
    <DATATYPE Name="Whole Number" Type="Int" Scope="All">
      <LANGUAGE Type="Python"/><SETCODE><![CDATA[set]]></SETCODE><GETCODE><![CDATA[get]]></GETCODE>
    </DATATYPE>
    <DATATYPE Name="Real Array" Type="RealArray" Scope=""/>
    <DATATYPE Name="Sub Array" Type="Odd" Scope=""/>
    <DATATYPE Name="Files" Type="CAEFILE" Scope="Shared"/>
    <DATATYPE Name="Hides what is below" Type="First" Scope=""/>
  </GROUP>
  <DATATYPE Name="Lead" Type="LeadType" Scope=""/>
</DataTypes>
)";

constexpr char kFileTypes[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<FILETYPES>
  <FILETYPE name="Picture" id="7" mimeType="image/png" extension="png" description="A picture"/>
</FILETYPES>
)";

// The catalog is read once in a process and kept to its end, so each of these cases has a process of its own.
class DataTypeLookupDeathTest : public testing::Test {
protected:
    // Runs the body in a fresh process with an empty folder as base path.
    static void inNewProcess(std::function<void(ScratchFolder&)> const& body) {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        EXPECT_EXIT(
            {
                {
                    ScratchFolder scratch;
                    CFCEnvironment::SetBasePath(scratch.text());
                    body(scratch);
                }
                std::exit(HasFailure() ? 1 : 0);
            },
            testing::ExitedWithCode(0), "");
    }

    static std::filesystem::path systemPath(wchar_t const* path) {
        TuString text(path);
        text.Replace(L'\\', L'/');
        return narrow(text);
    }
    static void writeCatalog() {
        writeFile(systemPath(CFCEnvironment::GetDataTypeFilePath()), kDataTypes);
        writeFile(systemPath(CFCEnvironment::GetBasePath()) / "FileTypes.xml", kFileTypes);
    }
};

int lastHandle() {
    CFCDataTypeNode const probe;
    return CFCDataTypeNode(probe).GetNodeHandle();
}

} // namespace

TEST_F(DataTypeLookupDeathTest, TypesAreFoundByTheirTypeNameInAnyCase) {
    inNewProcess([](ScratchFolder&) {
        writeCatalog();
        IFCNode* const found = CFCNodeHelper::GetDataTypeNode(L"iNT");
        ASSERT_NE(found, nullptr);
        EXPECT_STREQ(found->GetNodeCaption(), L"Whole Number");
        EXPECT_EQ(CFCNodeHelper::GetDataTypeNode(L"Int"), found);
        EXPECT_EQ(CFCNodeHelper::GetDataTypeNode(L"Whole Number"), nullptr);
        IFCNode* const group = CFCNodeHelper::GetDataTypeNode(L"BasicGroup");
        ASSERT_NE(group, nullptr);
        EXPECT_EQ(group, found->GetParentNode());
        EXPECT_EQ(CFCNodeHelper::GetDataTypeNode(nullptr), nullptr);
    });
}

TEST_F(DataTypeLookupDeathTest, TheFileIsReadOnce) {
    inNewProcess([](ScratchFolder&) {
        writeCatalog();
        IFCNode* const found = CFCNodeHelper::GetDataTypeNode(L"Int");
        ASSERT_NE(found, nullptr);
        std::filesystem::remove(systemPath(CFCEnvironment::GetDataTypeFilePath()));
        EXPECT_EQ(CFCNodeHelper::GetDataTypeNode(L"Int"), found);
        EXPECT_NE(CFCNodeHelper::GetDataTypeNode(L"RealArray"), nullptr);
        EXPECT_EQ(CFCNodeHelper::GetDataTypeNode(L"Unknown"), nullptr);
    });
}

TEST_F(DataTypeLookupDeathTest, WithoutAFileEachCallTriesAgainAndMakesNothing) {
    inNewProcess([](ScratchFolder&) {
        int const before = lastHandle();
        for (int i = 0; i < 10; ++i) {
            EXPECT_EQ(CFCNodeHelper::GetDataTypeNode(L"Int"), nullptr);
        }
        EXPECT_EQ(lastHandle(), before + 1);
        writeFile(systemPath(CFCEnvironment::GetDataTypeFilePath()), "<DataTypes");
        EXPECT_EQ(CFCNodeHelper::GetDataTypeNode(L"Int"), nullptr) << "nothing to read in it";
        writeFile(systemPath(CFCEnvironment::GetDataTypeFilePath()), "<DataTypes/>");
        EXPECT_EQ(CFCNodeHelper::GetDataTypeNode(L"Int"), nullptr);
        writeCatalog();
        EXPECT_NE(CFCNodeHelper::GetDataTypeNode(L"Int"), nullptr);
    });
}

TEST_F(DataTypeLookupDeathTest, ARenamedEntryIsNotFoundUnderItsFormerName) {
    inNewProcess([](ScratchFolder&) {
        writeCatalog();
        auto* const entry = dynamic_cast<CFCDataTypeNode*>(CFCNodeHelper::GetDataTypeNode(L"Int"));
        ASSERT_NE(entry, nullptr);
        entry->SetType(L"Long");
        EXPECT_EQ(CFCNodeHelper::GetDataTypeNode(L"Int"), nullptr);
        EXPECT_EQ(CFCNodeHelper::GetDataTypeNode(L"Long"), entry);
    });
}

TEST_F(DataTypeLookupDeathTest, EachSearchGivesTheFirstEntryThatAnswersNow) {
    inNewProcess([](ScratchFolder&) {
        writeCatalog();
        IFCNode* const entry = CFCNodeHelper::GetDataTypeNode(L"Int");
        auto* const earlier = dynamic_cast<CFCDataTypeNode*>(CFCNodeHelper::GetDataTypeNode(L"Odd"));
        ASSERT_NE(entry, nullptr);
        ASSERT_NE(earlier, nullptr);
        earlier->SetType(L"Int");
        EXPECT_EQ(CFCNodeHelper::GetDataTypeNode(L"Int"), earlier);
        CFCNodeHelper::DestroyTree(earlier);
        EXPECT_EQ(CFCNodeHelper::GetDataTypeNode(L"Int"), entry);
        CFCNodeHelper::DestroyTree(entry);
        EXPECT_EQ(CFCNodeHelper::GetDataTypeNode(L"Int"), nullptr);
    });
}

TEST_F(DataTypeLookupDeathTest, ABrokenFileIsReadAgainOnlyOnceItHasChanged) {
    inNewProcess([](ScratchFolder& scratch) {
        std::filesystem::path const file = systemPath(CFCEnvironment::GetDataTypeFilePath());
        writeFile(file, "<DataTypes");
        EXPECT_EQ(CFCNodeHelper::GetDataTypeNode(L"Int"), nullptr);
        int const before = lastHandle();
        for (int i = 0; i < 10; ++i) {
            EXPECT_EQ(CFCNodeHelper::GetDataTypeNode(L"Int"), nullptr);
        }
        EXPECT_EQ(lastHandle(), before + 1) << "no list was made for it";
        // As long as before, and written later.
        std::string const sameLength = "<DataTypex";
        writeFile(file, sameLength);
        std::filesystem::last_write_time(file, std::filesystem::last_write_time(file) + std::chrono::seconds(5));
        EXPECT_EQ(CFCNodeHelper::GetDataTypeNode(L"Int"), nullptr);
        EXPECT_GT(lastHandle(), before + 2) << "it was tried";
        // Written at the same time, but longer.
        auto const written = std::filesystem::last_write_time(file);
        int const then = lastHandle();
        writeFile(file, "<DataTypes x");
        std::filesystem::last_write_time(file, written);
        EXPECT_EQ(CFCNodeHelper::GetDataTypeNode(L"Int"), nullptr);
        EXPECT_GT(lastHandle(), then + 1);
        // A file elsewhere is another one.
        CFCEnvironment::SetBasePath(wide(scratch.path() / "other"));
        writeCatalog();
        EXPECT_NE(CFCNodeHelper::GetDataTypeNode(L"Int"), nullptr);
    });
}

TEST_F(DataTypeLookupDeathTest, ANodeOfAnotherClassInTheCatalogBindsNothing) {
    inNewProcess([](ScratchFolder&) {
        writeCatalog();
        IFCNode* const group = CFCNodeHelper::GetDataTypeNode(L"BasicGroup");
        ASSERT_NE(group, nullptr);
        for (int type : {80, 83, 71}) {
            CFCNodeFactory factory;
            IFCNode* const odd = factory.Create(71);
            odd->SetNodeType(type);
            odd->SetNodeCaption(L"StrayArray");
            group->GetParentNode()->GetChild()->SetNext(odd);
            odd->SetNext(group);
            ASSERT_EQ(CFCNodeHelper::GetDataTypeNode(L"strayARRAY"), odd);
            CFCVariableData variable;
            variable.GetDataTypeNode()->SetScope(L"mine");
            CFCNodeHelper::SetDataTypeNode(&variable, L"strayARRAY");
            EXPECT_FALSE(variable.IsFileType()) << type;
            EXPECT_EQ(variable.GetDataTypeNode()->GetNodeType(), 80);
            EXPECT_STREQ(variable.GetDataTypeNode()->GetType(), L"strayARRAY");
            EXPECT_STREQ(variable.GetDataTypeNode()->GetNodeCaption(), L"stray") << "as for a name without entry";
            EXPECT_STREQ(variable.GetDataTypeNode()->GetScope(), L"mine");
            group->GetParentNode()->GetChild()->SetNext(group);
            delete odd;
            variable.ReleaseOwnedParts();
        }
    });
}

TEST_F(DataTypeLookupDeathTest, ALaterTypeDoesNotUndoAFileType) {
    inNewProcess([](ScratchFolder&) {
        writeCatalog();
        CFCVariableData variable;
        CFCNodeHelper::SetDataTypeNode(&variable, L"Picture");
        CFCNodeHelper::SetDataTypeNode(&variable, L"Int");
        EXPECT_TRUE(variable.IsFileType());
        EXPECT_EQ(variable.GetDataTypeNode()->GetNodeType(), 83);
        EXPECT_STREQ(variable.GetDataTypeNode()->GetNodeCaption(), L"Whole Number");
        EXPECT_EQ(variable.GetFileTypeNode()->GetFileTypeID(), 7);
        variable.ReleaseOwnedParts();
    });
}

TEST_F(DataTypeLookupDeathTest, AVariableTakesOverWhatTheCatalogKnowsOfItsType) {
    inNewProcess([](ScratchFolder&) {
        writeCatalog();
        CFCVariableData variable;
        CFCNodeHelper::SetDataTypeNode(&variable, L"INT");
        CFCDataTypeNode* const bound = variable.GetDataTypeNode();
        EXPECT_STREQ(bound->GetType(), L"INT") << "the name as it was given";
        EXPECT_STREQ(bound->GetNodeCaption(), L"Whole Number");
        EXPECT_STREQ(bound->GetScope(), L"All");
        EXPECT_STREQ(bound->GetCodeNode()->setCodePython, L"set");
        EXPECT_STREQ(bound->GetCodeNode()->getCodePython, L"get");
        EXPECT_EQ(bound->GetNodeType(), 80);
        EXPECT_FALSE(variable.IsFileType());
        variable.ReleaseOwnedParts();
    });
}

TEST_F(DataTypeLookupDeathTest, AnArrayIsCalledByItsElements) {
    inNewProcess([](ScratchFolder&) {
        writeCatalog();
        CFCVariableData variable;
        CFCNodeHelper::SetDataTypeNode(&variable, L"RealArray");
        EXPECT_STREQ(variable.GetDataTypeNode()->GetType(), L"RealArray");
        EXPECT_STREQ(variable.GetDataTypeNode()->GetNodeCaption(), L"Real") << "cut off the caption, with the blank";
        CFCNodeHelper::SetDataTypeNode(&variable, L"Odd");
        EXPECT_STREQ(variable.GetDataTypeNode()->GetType(), L"Odd");
        EXPECT_STREQ(variable.GetDataTypeNode()->GetNodeCaption(), L"Sub");
        variable.ReleaseOwnedParts();
    });
}

TEST_F(DataTypeLookupDeathTest, AFileTypeBindsBothNodes) {
    inNewProcess([](ScratchFolder&) {
        writeCatalog();
        IFCNode* const found = CFCNodeHelper::GetDataTypeNode(L"Picture");
        ASSERT_NE(found, nullptr);
        ASSERT_EQ(found->GetNodeType(), 83);
        CFCVariableData variable;
        CFCNodeHelper::SetDataTypeNode(&variable, L"picture");
        EXPECT_TRUE(variable.IsFileType());
        EXPECT_EQ(variable.GetDataTypeNode()->GetNodeType(), 83);
        EXPECT_STREQ(variable.GetDataTypeNode()->GetType(), L"picture");
        EXPECT_STREQ(variable.GetDataTypeNode()->GetNodeCaption(), L"picture");
        EXPECT_STREQ(variable.GetDataTypeNode()->GetScope(), L"Shared") << "from the entry above the file type";
        EXPECT_EQ(variable.GetFileTypeNode()->GetFileTypeID(), 7);
        EXPECT_STREQ(variable.GetFileTypeNode()->GetFileTypeName(), L"Picture");
        EXPECT_STREQ(variable.GetFileTypeNode()->GetMimeType(), L"image/png");
        variable.ReleaseOwnedParts();
    });
}

TEST_F(DataTypeLookupDeathTest, AnUnknownNameIsStoredAllTheSame) {
    inNewProcess([](ScratchFolder&) {
        for (bool catalog : {false, true}) {
            if (catalog) {
                writeCatalog();
            }
            struct {
                wchar_t const* name;
                wchar_t const* caption;
            } const cases[] = {{L"PartArray", L"Part"},   {L"Part", L"Part"},     {L"part ARRAY", L"part"},
                               {L"Array", L""},           {L"rray", L"rray"},     {L"Array of Int", L"Array of Int"},
                               {L" Part Array", L"Part"}, {L" Part ", L" Part "}, {L"", L""}};
            for (auto const& [name, caption] : cases) {
                CFCVariableData variable;
                variable.GetDataTypeNode()->SetScope(L"mine");
                CFCNodeHelper::SetDataTypeNode(&variable, name);
                EXPECT_STREQ(variable.GetDataTypeNode()->GetType(), name);
                EXPECT_STREQ(variable.GetDataTypeNode()->GetNodeCaption(), caption) << narrow(name);
                EXPECT_STREQ(variable.GetDataTypeNode()->GetScope(), L"mine") << "nothing is copied";
                EXPECT_FALSE(variable.IsFileType());
                variable.ReleaseOwnedParts();
            }
        }
    });
}

TEST_F(DataTypeLookupDeathTest, AVariableWithoutADescriptionIsLeftAlone) {
    inNewProcess([](ScratchFolder&) {
        writeCatalog();
        CFCVariableData bare("x", 0, 0, 0);
        ASSERT_EQ(bare.GetDataTypeNode(), nullptr);
        CFCNodeHelper::SetDataTypeNode(&bare, L"Picture");
        EXPECT_FALSE(bare.IsFileType());
        EXPECT_EQ(bare.GetDataTypeNode(), nullptr);
        CFCNodeHelper::SetDataTypeNode(nullptr, L"Int");
    });
}

TEST_F(DataTypeLookupDeathTest, TheNameMayBeTheVariablesOwn) {
    inNewProcess([](ScratchFolder&) {
        writeCatalog();
        CFCVariableData variable;
        variable.GetDataTypeNode()->SetType(L"RealArray");
        CFCNodeHelper::SetDataTypeNode(&variable, variable.GetDataTypeNode()->GetType());
        EXPECT_STREQ(variable.GetDataTypeNode()->GetType(), L"RealArray");
        EXPECT_STREQ(variable.GetDataTypeNode()->GetNodeCaption(), L"Real");
        variable.ReleaseOwnedParts();
    });
}
