#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/persistence/FCDataTypeListReader.h"
#include "support/EnvironmentGuard.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

namespace {

using flowmere::test::EnvironmentGuard;
using flowmere::test::ScratchFolder;
using flowmere::test::writeFile;

// The search never looks into the last entry of any row, where it starts; what a variable can be
// bound to stands in the entries before it.
constexpr char kDataTypes[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<DataTypes Name="Types">
  <GROUP Name="Numbers" Type="Group">
    <DATATYPE Name="FILES" Type="CAEFILE" Scope=""/>
    <DATATYPE Name="Whole Number" Type="Int" Scope="All">
      <LANGUAGE Type="Python"/><SETCODE><![CDATA[set]]></SETCODE><GETCODE><![CDATA[get]]></GETCODE>
    </DATATYPE>
    <DATATYPE Name="Directory" Type="Directory" Scope=""/>
  </GROUP>
  <GROUP Name="Last" Type="LastGroup">
    <DATATYPE Name="Hidden" Type="Hidden" Scope=""/>
  </GROUP>
</DataTypes>
)";

constexpr char kFileTypes[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<FILETYPES>
  <FILETYPE name="Picture" id="7" mimeType="image/png" extension="png" description="A picture"/>
</FILETYPES>
)";

class DataTypeBinding : public testing::Test {
protected:
    DataTypeBinding() { CFCEnvironment::SetBasePath(scratch.text()); }
    ~DataTypeBinding() override {
        // What other tests read must not come from here.
        CFCEnvironment::SetBasePath(L"");
        CFCDataTypeListReader::RefreshDataTypes();
    }

    void writeCatalog() {
        std::string const dataTypes = flowmere::test::narrow(CFCEnvironment::GetDataTypeFilePath());
        writeFile(system(dataTypes), kDataTypes);
        wchar_t const* const fileTypes = CFCEnvironment::GetFileTypesPath();
        fileTypesPath = system(flowmere::test::narrow(fileTypes));
    }
    static std::string system(std::string path) {
        for (char& character : path) {
            if (character == '\\') {
                character = '/';
            }
        }
        return path;
    }

    EnvironmentGuard environment;
    ScratchFolder scratch;
    std::string fileTypesPath;
    CFCVariableData variable;

    void TearDown() override { variable.ReleaseOwnedParts(); }
};

} // namespace

TEST_F(DataTypeBinding, EntryIsFoundByItsCaptionInAnyCase) {
    writeCatalog();
    CFCDataTypeListReader::RefreshDataTypes();
    variable.UpdateToDataTypes(L"whole NUMBER");
    CFCDataTypeNode* const bound = variable.GetDataTypeNode();
    EXPECT_STREQ(bound->GetType(), L"Int");
    EXPECT_STREQ(bound->GetScope(), L"All");
    EXPECT_STREQ(bound->GetNodeCaption(), L"Whole Number");
    ASSERT_NE(bound->GetCodeNode(), nullptr);
    EXPECT_EQ(bound->GetCodeNode()->setCodePython, L"set");
    EXPECT_EQ(bound->GetCodeNode()->getCodePython, L"get");
    EXPECT_EQ(bound->GetNodeType(), 80); // its own node, filled
    EXPECT_FALSE(variable.IsFileType());
    EXPECT_EQ(variable.GetDataType(), EDataType_Int);
}

TEST_F(DataTypeBinding, TypeNameIsNoKey) {
    writeCatalog();
    CFCDataTypeListReader::RefreshDataTypes();
    variable.UpdateToDataTypes(L"Int");
    EXPECT_STREQ(variable.GetDataTypeNode()->GetType(), L"");
}

TEST_F(DataTypeBinding, UnknownNameChangesNothing) {
    writeCatalog();
    CFCDataTypeListReader::RefreshDataTypes();
    variable.UpdateToDataTypes(L"Directory");
    for (wchar_t const* name : {L"Nothing", L"", static_cast<wchar_t const*>(nullptr)}) {
        variable.UpdateToDataTypes(name);
        EXPECT_STREQ(variable.GetDataTypeNode()->GetType(), L"Directory");
        EXPECT_FALSE(variable.IsFileType());
    }
}

TEST_F(DataTypeBinding, ContentOfTheLastGroupIsNeverFound) {
    writeCatalog();
    CFCDataTypeListReader::RefreshDataTypes();
    variable.UpdateToDataTypes(L"Hidden");
    EXPECT_STREQ(variable.GetDataTypeNode()->GetType(), L"");
    variable.UpdateToDataTypes(L"Last"); // the group itself is
    EXPECT_STREQ(variable.GetDataTypeNode()->GetType(), L"LastGroup");
}

TEST_F(DataTypeBinding, FileTypeGoesToTheFileTypeNode) {
    writeCatalog();
    writeFile(fileTypesPath, kFileTypes);
    CFCDataTypeListReader::RefreshDataTypes();
    variable.UpdateToDataTypes(L"Picture");
    EXPECT_TRUE(variable.IsFileType());
    EXPECT_STREQ(variable.GetFileTypeNode()->GetFileTypeName(), L"Picture");
    EXPECT_EQ(variable.GetFileTypeNode()->GetFileTypeID(), 7);
    EXPECT_STREQ(variable.GetFileTypeNode()->GetMimeType(), L"image/png");
    EXPECT_STREQ(variable.GetFileTypeNode()->GetFileTypeExtension(), L"png");
    EXPECT_STREQ(variable.GetFileTypeNode()->GetFileTypeDescription(), L"A picture");
    EXPECT_STREQ(variable.GetDataTypeNode()->GetType(), L"");
}

TEST_F(DataTypeBinding, LaterDataTypeLeavesTheFileType) {
    writeCatalog();
    writeFile(fileTypesPath, kFileTypes);
    CFCDataTypeListReader::RefreshDataTypes();
    variable.UpdateToDataTypes(L"Picture");
    variable.UpdateToDataTypes(L"Directory");
    EXPECT_TRUE(variable.IsFileType());
    EXPECT_STREQ(variable.GetFileTypeNode()->GetFileTypeName(), L"Picture");
    EXPECT_STREQ(variable.GetDataTypeNode()->GetType(), L"Directory");
}

TEST_F(DataTypeBinding, NodeOfAnotherClassInTheCatalogBindsNothing) {
    writeCatalog();
    CFCDataTypeListReader::RefreshDataTypes();
    IFCNode* const root = CFCDataTypeListReader::GetDataTypeRootNode();
    ASSERT_NE(root, nullptr);
    for (int type : {83, 80}) {
        IFCNode* const odd = CFCNodeFactory().Create(71);
        odd->SetNodeType(type);
        odd->SetNodeCaption(L"Stray");
        odd->SetNext(root->GetNext());
        root->SetNext(odd);
        variable.UpdateToDataTypes(L"Stray");
        EXPECT_FALSE(variable.IsFileType()) << type;
        EXPECT_STREQ(variable.GetDataTypeNode()->GetNodeCaption(), L"");
        root->SetNext(odd->GetNext());
        delete odd;
    }
}

TEST_F(DataTypeBinding, MissingCatalogChangesNothing) {
    CFCDataTypeListReader::RefreshDataTypes();
    variable.UpdateToDataTypes(L"Directory");
    EXPECT_STREQ(variable.GetDataTypeNode()->GetType(), L"");
    EXPECT_EQ(CFCDataTypeListReader::GetDataTypeRootNode(), nullptr);
}

TEST_F(DataTypeBinding, VariableWithoutCatalogNodesIsLeftAlone) {
    writeCatalog();
    writeFile(fileTypesPath, kFileTypes);
    CFCDataTypeListReader::RefreshDataTypes();
    CFCVariableData bare("x", 0, 0, 0);
    bare.UpdateToDataTypes(L"Directory");
    EXPECT_EQ(bare.GetDataTypeNode(), nullptr);
    bare.UpdateToDataTypes(L"Picture");
    EXPECT_EQ(bare.GetFileTypeNode(), nullptr);
    EXPECT_TRUE(bare.IsFileType());
}
