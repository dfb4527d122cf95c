#include "flowmere/model/FCCatalogNodes.h"

#include <memory>
#include <string>
#include <type_traits>

#include "TestSupport.h"

using flowmere::test::narrow;

namespace {

struct CodeText {
    char const* name;
    int language;
    bool isGetCode;
    TuString NodeCode::*field;
};

constexpr CodeText kCodeTexts[] = {
    {"get JS", 6, true, &NodeCode::getCodeJS},          {"get Jython", 7, true, &NodeCode::getCodeJython},
    {"get Python", 0, true, &NodeCode::getCodePython},  {"set JS", 6, false, &NodeCode::setCodeJS},
    {"set Jython", 7, false, &NodeCode::setCodeJython}, {"set Python", 0, false, &NodeCode::setCodePython},
};

std::string codes(CFCDataTypeNode& node) {
    std::string text;
    for (CodeText const& code : kCodeTexts) {
        text += narrow(node.GetCodeNode()->*code.field) + ";";
    }
    return text;
}

struct ImageCase {
    bool checkedOut;
    bool uptoDate;
    bool dirty;
    int image;
};

constexpr ImageCase kFileImages[] = {
    {true, true, true, 5},   {true, false, true, 5},   {true, true, false, 4}, {true, false, false, 4},
    {false, false, true, 7}, {false, false, false, 2}, {false, true, true, 3}, {false, true, false, 0},
};

struct FileTypeText {
    char const* name;
    wchar_t const* (CFCFileTypeNode::*get)();
    void (CFCFileTypeNode::*set)(wchar_t const*);
};

constexpr FileTypeText kFileTypeTexts[] = {
    {"description", &CFCFileTypeNode::GetFileTypeDescription, &CFCFileTypeNode::SetFileTypeDescription},
    {"extension", &CFCFileTypeNode::GetFileTypeExtension, &CFCFileTypeNode::SetFileTypeExtension},
    {"mime", &CFCFileTypeNode::GetMimeType, &CFCFileTypeNode::SetMimeType},
    {"name", &CFCFileTypeNode::GetFileTypeName, &CFCFileTypeNode::SetFileTypeName},
};

struct PackageText {
    char const* name;
    wchar_t const* (CFCPackageNode::*get)();
    void (CFCPackageNode::*set)(wchar_t const*);
    TuString CFCPackageNode::*field;
};

constexpr PackageText kPackageTexts[] = {
    {"version", &CFCPackageNode::GetVersion, &CFCPackageNode::SetVersion, &CFCPackageNode::version},
    {"build", &CFCPackageNode::GetBuild, &CFCPackageNode::SetBuild, &CFCPackageNode::build},
    {"release date", &CFCPackageNode::GetReleaseDate, &CFCPackageNode::SetReleaseDate, &CFCPackageNode::releaseDate},
    {"release number", &CFCPackageNode::GetReleaseNumber, &CFCPackageNode::SetReleaseNumber,
     &CFCPackageNode::releaseNumber},
    {"path", &CFCPackageNode::GetPath, &CFCPackageNode::SetPath, &CFCPackageNode::path},
};

// What CreateNode makes, for the codes of the catalogs.
struct FactoryCase {
    int code;
    bool (*fits)(IFCNode*);
};

template <typename Class>
bool is(IFCNode* node) {
    return dynamic_cast<Class*>(node) != nullptr;
}

constexpr FactoryCase kFactoryCases[] = {
    {70, is<CFCFileNode>},      {79, is<CFCCodeNode>},     {80, is<CFCDataTypeNode>}, {81, is<CFCDataTypeNode>},
    {82, is<CFCDataTypeNode>},  {83, is<CFCFileTypeNode>}, {85, is<CFCMimeTypeNode>}, {86, is<CFCMimeTypeNode>},
    {170, is<CFCFileNode>},     {171, is<CFCAPIHelpNode>}, {172, is<CFCPackageNode>}, {176, is<CFCFavouriteNode>},
    {177, is<CFCDocumentNode>},
};

template <typename Node>
class CatalogNode : public testing::Test {};
using CatalogNodes = testing::Types<CFCDataTypeNode, CFCDataTypeList, CFCFileNode, CFCFileTypeNode, CFCMimeTypeNode,
                                    CFCCodeNode, CFCDocumentNode, CFCFavouriteNode, CFCPackageNode, CFCAPIHelpNode>;
TYPED_TEST_SUITE(CatalogNode, CatalogNodes);

} // namespace

TYPED_TEST(CatalogNode, IsANodeWhoseCreateDoesNothing) {
    static_assert(std::is_base_of_v<CFCNode, TypeParam>);
    TypeParam node;
    node.SetNodeCaption(L"kept");
    node.Create();
    EXPECT_STREQ(node.GetNodeCaption(), L"kept");
    EXPECT_EQ(node.CloneNode(), nullptr);
    EXPECT_EQ(node.GetParentNode(), nullptr);
}

TYPED_TEST(CatalogNode, HasATypeOfItsOwnOnlyWhereTheClassSetsIt) {
    TypeParam node;
    int expected = 0;
    if (std::is_same_v<TypeParam, CFCDocumentNode>) {
        expected = 177;
    } else if (std::is_same_v<TypeParam, CFCFavouriteNode>) {
        expected = 176;
    }
    EXPECT_EQ(node.GetNodeType(), expected);
}

TYPED_TEST(CatalogNode, HasAnIdOnlyWhereTheClassKeepsOne) {
    TypeParam node;
    node.SetNodeId(L"id");
    EXPECT_STREQ(node.GetNodeId(), (std::is_base_of_v<CFCFileNode, TypeParam>) ? L"id" : L"");
}

TEST(FCCatalogNodes, AreMadeByTheFactory) {
    CFCNodeFactory factory;
    for (FactoryCase const& kind : kFactoryCases) {
        std::unique_ptr<IFCNode> const node(factory.Create(kind.code));
        ASSERT_NE(node, nullptr) << kind.code;
        EXPECT_TRUE(kind.fits(node.get())) << kind.code;
        EXPECT_EQ(node->GetNodeType(), kind.code);
    }
}

TEST(FCDataTypeNode, StartsWithAnEmptyCodeRecord) {
    CFCDataTypeNode node;
    ASSERT_NE(node.GetCodeNode(), nullptr);
    EXPECT_EQ(codes(node), ";;;;;;");
    EXPECT_STREQ(node.GetType(), L"");
    EXPECT_STREQ(node.GetScope(), L"");
    EXPECT_EQ(node.GetLanguage(), EScriptType_PYTHON);
}

TEST(FCDataTypeNode, MakesItsCodeRecordWhenThatIsAskedFor) {
    class Node : public CFCDataTypeNode {
    public:
        using CFCDataTypeNode::HasOwnRecord;
    };
    Node node;
    Node other;
    EXPECT_FALSE(node.HasOwnRecord());
    node.SetType(L"Int");
    EXPECT_TRUE(CFCDataTypeNode::Copy(&node, &other));
    node.SetCodeNode(4, L"text", true); // a language without code
    EXPECT_FALSE(node.HasOwnRecord());
    EXPECT_FALSE(other.HasOwnRecord());

    EXPECT_EQ(codes(node), ";;;;;;");
    EXPECT_TRUE(node.HasOwnRecord());
    other.SetCodeNode(6, L"js", true);
    EXPECT_TRUE(other.HasOwnRecord());
    EXPECT_EQ(codes(other), "js;;;;;;");
}

TEST(FCDataTypeNode, CopyOfANodeWithoutCodeClearsTheCode) {
    CFCDataTypeNode source;
    CFCDataTypeNode target;
    target.SetCodeNode(6, L"js", true);
    NodeCode* const record = target.GetCodeNode();
    EXPECT_TRUE(CFCDataTypeNode::Copy(&source, &target));
    EXPECT_EQ(target.GetCodeNode(), record);
    EXPECT_EQ(codes(target), ";;;;;;");
}

TEST(FCDataTypeNode, CopiesShareARecordThatNobodyAskedForBefore) {
    CFCDataTypeNode node;
    CFCDataTypeNode copy(node);
    CFCDataTypeNode assigned;
    assigned = node;
    node.SetCodeNode(6, L"js", true);
    EXPECT_EQ(codes(copy), "js;;;;;;");
    EXPECT_EQ(codes(assigned), "js;;;;;;");
    CFCDataTypeNode& alias = assigned;
    assigned = alias;
    EXPECT_EQ(codes(assigned), "js;;;;;;");
}

TEST(FCDataTypeNode, CopiesOfANodeWithoutRecordHaveNone) {
    CFCDataTypeNode node;
    node.SetType(L"Int");
    node.SetScope(L"S");
    node.SetLanguage(7);
    node.SetCodeNode(static_cast<NodeCode*>(nullptr));
    CFCDataTypeNode copy(node);
    CFCDataTypeNode assigned;
    assigned = node;
    for (CFCDataTypeNode* each : {&copy, &assigned}) {
        EXPECT_EQ(each->GetCodeNode(), nullptr);
        EXPECT_STREQ(each->GetType(), L"Int");
        EXPECT_STREQ(each->GetScope(), L"S");
        EXPECT_EQ(static_cast<int>(each->GetLanguage()), 7);
    }
}

TEST(FCDataTypeNode, NodeTakesARecordThoughItNeverMadeOne) {
    CFCDataTypeNode node;
    auto* const record = new NodeCode;
    record->setCodeJS = L"js";
    node.SetCodeNode(record);
    EXPECT_EQ(node.GetCodeNode(), record);
}

TEST(FCDataTypeNode, KeepsTypeScopeAndLanguage) {
    CFCDataTypeNode node;
    node.SetType(L"IntArray");
    node.SetScope(L"Local");
    EXPECT_STREQ(node.GetType(), L"IntArray");
    EXPECT_STREQ(node.GetScope(), L"Local");
    node.SetType(node.GetType() + 3);
    EXPECT_STREQ(node.GetType(), L"Array");
    node.SetScope(nullptr);
    EXPECT_STREQ(node.GetScope(), L"");
    node.SetLanguage(7);
    EXPECT_EQ(static_cast<int>(node.GetLanguage()), 7);
    node.SetLanguage(EScriptType_TCMD);
    EXPECT_EQ(node.GetLanguage(), EScriptType_TCMD);
}

TEST(FCDataTypeNode, SetCodeNodeStoresEachTextInItsField) {
    for (CodeText const& code : kCodeTexts) {
        CFCDataTypeNode node;
        node.SetCodeNode(static_cast<EScriptType>(code.language), L"text", code.isGetCode);
        for (CodeText const& other : kCodeTexts) {
            EXPECT_EQ(narrow(node.GetCodeNode()->*other.field), &other == &code ? "text" : "")
                << code.name << " in " << other.name;
        }
    }
}

TEST(FCDataTypeNode, SetCodeNodeStoresNothingForOtherLanguages) {
    CFCDataTypeNode node;
    for (int language : {-1, 1, 2, 3, 4, 5, 8, 9, 100}) {
        node.SetCodeNode(static_cast<EScriptType>(language), L"get", true);
        node.SetCodeNode(language, L"set", false);
    }
    EXPECT_EQ(codes(node), ";;;;;;");
}

TEST(FCDataTypeNode, SetCodeNodeForPythonLeavesTheGetCode) {
    CFCDataTypeNode node;
    node.SetCodeNode(0, L"get", true);
    node.SetCodeNode(0, L"set", false);
    EXPECT_EQ(codes(node), ";;get;;;set;");
    node.SetCodeNode(0, node.GetCodeNode()->getCodePython, false);
    EXPECT_EQ(codes(node), ";;get;;;get;");
    node.SetCodeNode(0, nullptr, true);
    EXPECT_EQ(codes(node), ";;;;;get;");
}

TEST(FCDataTypeNode, SetCodeNodeReplacesARecordThatIsSet) {
    CFCDataTypeNode node;
    auto record = std::make_unique<NodeCode>();
    record->setCodeJS = L"js";
    NodeCode* const raw = record.release();
    node.SetCodeNode(raw);
    EXPECT_EQ(node.GetCodeNode(), raw);
    node.SetCodeNode(node.GetCodeNode());
    EXPECT_EQ(node.GetCodeNode(), raw);
    EXPECT_EQ(codes(node), ";;;js;;;");
}

TEST(FCDataTypeNode, SetCodeNodeLeavesANodeWithoutRecord) {
    CFCDataTypeNode node;
    node.SetCodeNode(static_cast<NodeCode*>(nullptr));
    EXPECT_EQ(node.GetCodeNode(), nullptr);
    auto const record = std::make_unique<NodeCode>();
    node.SetCodeNode(record.get());
    EXPECT_EQ(node.GetCodeNode(), nullptr);
    node.SetCodeNode(0, L"text", true);
    EXPECT_EQ(node.GetCodeNode(), nullptr);
    CFCDataTypeNode other;
    other.SetCodeNode(0, L"kept", true);
    EXPECT_TRUE(CFCDataTypeNode::Copy(&node, &other));
    EXPECT_EQ(codes(other), ";;kept;;;;");
    EXPECT_TRUE(CFCDataTypeNode::Copy(&other, &node));
    EXPECT_EQ(node.GetCodeNode(), nullptr);
}

TEST(FCDataTypeNode, CopiesOfANodeShareTheRecord) {
    auto node = std::make_unique<CFCDataTypeNode>();
    node->SetCodeNode(6, L"js", true);
    CFCDataTypeNode copy(*node);
    CFCDataTypeNode assigned;
    assigned = *node;
    EXPECT_EQ(copy.GetCodeNode(), node->GetCodeNode());
    EXPECT_EQ(assigned.GetCodeNode(), node->GetCodeNode());
    node.reset();
    EXPECT_EQ(codes(copy), "js;;;;;;");
    copy.SetCodeNode(new NodeCode);
    EXPECT_EQ(codes(copy), ";;;;;;");
    EXPECT_EQ(codes(assigned), "js;;;;;;");
}

TEST(FCDataTypeNode, CopyTakesCaptionTypeScopeAndCode) {
    CFCDataTypeNode source;
    source.SetNodeCaption(L"Int");
    source.SetType(L"Int");
    source.SetScope(L"S");
    source.SetLanguage(7);
    source.SetNodeType(80);
    source.SetNodeDescription(L"d");
    for (CodeText const& code : kCodeTexts) {
        source.SetCodeNode(code.language, flowmere::fromUtf8(code.name).c_str(), code.isGetCode);
    }
    CFCDataTypeNode target;
    NodeCode* const record = target.GetCodeNode();
    EXPECT_TRUE(CFCDataTypeNode::Copy(&source, &target));
    EXPECT_STREQ(target.GetNodeCaption(), L"Int");
    EXPECT_STREQ(target.GetType(), L"Int");
    EXPECT_STREQ(target.GetScope(), L"S");
    EXPECT_EQ(codes(target), "get JS;get Jython;get Python;set JS;set Jython;set Python;");
    EXPECT_EQ(target.GetCodeNode(), record);
    EXPECT_EQ(static_cast<int>(target.GetLanguage()), 0);
    EXPECT_EQ(target.GetNodeType(), 0);
    EXPECT_STREQ(target.GetNodeDescription(), L"");
}

TEST(FCDataTypeNode, CopyWithANullLeavesTheTarget) {
    CFCDataTypeNode target;
    target.SetType(L"kept");
    EXPECT_FALSE(CFCDataTypeNode::Copy(nullptr, &target));
    EXPECT_FALSE(CFCDataTypeNode::Copy(&target, nullptr));
    EXPECT_FALSE(CFCDataTypeNode::Copy(nullptr, nullptr));
    EXPECT_STREQ(target.GetType(), L"kept");
    EXPECT_TRUE(CFCDataTypeNode::Copy(&target, &target));
    EXPECT_STREQ(target.GetType(), L"kept");
}

TEST(FCDataTypeNode, IsOrrinTypeGoesByThePrefixButNotForCredentials) {
    struct {
        wchar_t const* type;
        bool expected;
    } const cases[] = {
        {L"orrinModel", true},     {L"Orrin", true},          {L"ORRIN", true},      {L"OrrinUsers", true},
        {L"OrrinServer", false},   {L"orrinserver", false},   {L"OrrinUser", false}, {L"ORRINUSER", false},
        {L"OrrinPassword", false}, {L"orrinPASSWORD", false}, {L"Int", false},       {L"", false},
        {L"Orri", false},          {L"xOrrin", false},        {L" Orrin", false},    {L"OrrinServer ", true},
    };
    CFCDataTypeNode node;
    for (auto const& orrin : cases) {
        node.SetType(orrin.type);
        EXPECT_EQ(node.IsOrrinType(), orrin.expected) << narrow(orrin.type);
    }
}

TEST(FCDataTypeList, IsADataTypeNode) {
    CFCDataTypeList list;
    CFCDataTypeNode& node = list;
    node.SetType(L"DataTypes");
    EXPECT_STREQ(list.GetType(), L"DataTypes");
    EXPECT_NE(list.GetCodeNode(), nullptr);
}

TEST(FCFileNode, StartsWithItsDefaults) {
    CFCFileNode node;
    EXPECT_EQ(node.GetNodeLocationType(), 0);
    EXPECT_STREQ(node.GetNodeId(), L"");
    EXPECT_STREQ(node.GetItemFilePath(), L"");
    EXPECT_STREQ(node.GetItemFileBaseDirectory(), L"");
    EXPECT_EQ(static_cast<int>(node.GetProjectType()), 8);
    EXPECT_EQ(node.GetVersionNo(), 1.0F);
    EXPECT_FALSE(node.IsDirty());
    EXPECT_FALSE(node.IsCheckedOut());
    EXPECT_FALSE(node.IsUptoDate());
    EXPECT_STREQ(node.GetCheckedOutUser(), L"");
    EXPECT_EQ(node.GetImage(), 0);
}

TEST(FCFileNode, CodeOfTheConstructorIsIgnored) {
    CFCFileNode node(170);
    EXPECT_EQ(node.GetNodeType(), 0);
    EXPECT_EQ(node.GetNodeLocationType(), 0);
}

TEST(FCFileNode, FileStateIsRealThroughTheInterface) {
    CFCFileNode file;
    IFCNode& node = file;
    node.SetNodeLocationType(1);
    node.SetNodeId(L"id");
    node.SetItemFilePath(L"a\\b.xml");
    node.SetItemFileBaseDirectory(L"C:\\base");
    node.SetProjectType(EProjectType_MSP);
    node.SetVersionNo(2.5F);
    node.SetDirty(true);
    node.SetCheckedOut(true);
    node.SetUptoDate(true);
    node.SetCheckedOutUser(L"user");
    EXPECT_EQ(node.GetNodeLocationType(), 1);
    EXPECT_STREQ(node.GetNodeId(), L"id");
    EXPECT_STREQ(node.GetItemFilePath(), L"a\\b.xml");
    EXPECT_STREQ(node.GetItemFileBaseDirectory(), L"C:\\base");
    EXPECT_EQ(node.GetProjectType(), EProjectType_MSP);
    EXPECT_EQ(node.GetVersionNo(), 2.5F);
    EXPECT_TRUE(node.IsDirty());
    EXPECT_TRUE(node.IsCheckedOut());
    EXPECT_TRUE(node.IsUptoDate());
    EXPECT_STREQ(node.GetCheckedOutUser(), L"user");
    node.SetCheckedOutUser(nullptr);
    EXPECT_STREQ(node.GetCheckedOutUser(), L"");
    node.SetItemFilePath(node.GetItemFilePath() + 2);
    EXPECT_STREQ(node.GetItemFilePath(), L"b.xml");
}

TEST(FCFileNode, PlainNodesDoNotReadThatStateBack) {
    CFCCodeNode code;
    IFCNode& node = code;
    node.SetProjectType(EProjectType_MSP);
    node.SetDirty(true);
    node.SetCheckedOut(true);
    node.SetUptoDate(true);
    node.SetCheckedOutUser(L"user");
    EXPECT_EQ(static_cast<int>(node.GetProjectType()), 8);
    EXPECT_FALSE(node.IsDirty());
    EXPECT_FALSE(node.IsCheckedOut());
    EXPECT_FALSE(node.IsUptoDate());
    EXPECT_EQ(node.GetCheckedOutUser(), nullptr);
}

TEST(FCFileNode, ImageGoesByTheLibraryState) {
    CFCFileNode node;
    node.SetProjectType(EProjectType_TASK);
    for (ImageCase const& state : kFileImages) {
        node.SetCheckedOut(state.checkedOut);
        node.SetUptoDate(state.uptoDate);
        node.SetDirty(state.dirty);
        EXPECT_EQ(node.GetImage(), state.image) << state.checkedOut << state.uptoDate << state.dirty;
    }
}

TEST(FCFileNode, ImageIsZeroInAllStatesOfAnotherProjectType) {
    CFCFileNode node;
    node.SetNodeType(170); // a type that has an image where the class has none
    for (int type : {0, 2, 6, 8, -1}) {
        node.SetProjectType(static_cast<EProjectType>(type));
        for (ImageCase const& state : kFileImages) {
            node.SetCheckedOut(state.checkedOut);
            node.SetUptoDate(state.uptoDate);
            node.SetDirty(state.dirty);
            EXPECT_EQ(node.GetImage(), 0) << type;
        }
    }
}

TEST(FCFileTypeNode, FieldsStandApart) {
    CFCFileTypeNode node;
    EXPECT_EQ(node.GetFileTypeID(), 0);
    EXPECT_FALSE(node.IsModified());
    EXPECT_FALSE(node.IsDeleted());
    for (FileTypeText const& text : kFileTypeTexts) {
        EXPECT_STREQ((node.*text.get)(), L"") << text.name;
        (node.*text.set)(flowmere::fromUtf8(text.name).c_str());
    }
    node.SetFileTypeID(-4);
    EXPECT_EQ(node.GetFileTypeID(), -4);
    for (FileTypeText const& text : kFileTypeTexts) {
        EXPECT_EQ(narrow((node.*text.get)()), text.name);
        (node.*text.set)((node.*text.get)() + 1);
        EXPECT_EQ(narrow((node.*text.get)()), std::string(text.name).substr(1));
        (node.*text.set)(nullptr);
        EXPECT_STREQ((node.*text.get)(), L"");
    }
}

TEST(FCFileTypeNode, ImageShowsUnsavedChanges) {
    CFCFileTypeNode node;
    IFCNode& plain = node;
    EXPECT_EQ(plain.GetImage(), 0);
    plain.SetModified(true);
    EXPECT_EQ(plain.GetImage(), 3);
    plain.SetModified(false);
    plain.SetProjectType(EProjectType_TASK);
    plain.SetDirty(true);
    EXPECT_EQ(plain.GetImage(), 0);
}

TEST(FCFileTypeNode, FlagsStandApartFromThoseOfTheBase) {
    CFCFileTypeNode node;
    node.SetModified(true);
    node.SetDeleted(true);
    EXPECT_TRUE(node.IsModified());
    EXPECT_TRUE(node.IsDeleted());
    EXPECT_FALSE(node.CFCNode::IsModified());
    EXPECT_FALSE(node.CFCNode::IsDeleted());
    node.SetModified(); // the forms without argument do nothing
    node.SetDeleted();
    EXPECT_TRUE(node.IsModified());
    EXPECT_TRUE(node.IsDeleted());
}

TEST(FCFileTypeNode, CopyTakesAllFields) {
    CFCFileTypeNode source;
    for (FileTypeText const& text : kFileTypeTexts) {
        (source.*text.set)(flowmere::fromUtf8(text.name).c_str());
    }
    source.SetFileTypeID(12);
    source.SetModified(true);
    source.SetDeleted(true);
    source.SetNodeCaption(L"caption");
    source.SetNodeId(L"id");
    CFCFileTypeNode target;
    EXPECT_TRUE(CFCFileTypeNode::Copy(&source, &target));
    for (FileTypeText const& text : kFileTypeTexts) {
        EXPECT_EQ(narrow((target.*text.get)()), text.name);
    }
    EXPECT_EQ(target.GetFileTypeID(), 12);
    EXPECT_TRUE(target.IsModified());
    EXPECT_TRUE(target.IsDeleted());
    EXPECT_STREQ(target.GetNodeCaption(), L"");
    EXPECT_STREQ(target.GetNodeId(), L"");
}

TEST(FCFileTypeNode, CopySetsTheFlagsThroughTheVirtualSetters) {
    struct Counting : CFCFileTypeNode {
        using CFCFileTypeNode::SetDeleted;
        using CFCFileTypeNode::SetModified;
        void SetModified(bool flag) override {
            ++calls;
            CFCFileTypeNode::SetModified(flag);
        }
        void SetDeleted(bool flag) override {
            ++calls;
            CFCFileTypeNode::SetDeleted(flag);
        }
        int calls = 0;
    };
    CFCFileTypeNode source;
    source.SetDeleted(true);
    Counting target;
    EXPECT_TRUE(CFCFileTypeNode::Copy(&source, &target));
    EXPECT_EQ(target.calls, 2);
    EXPECT_TRUE(target.IsDeleted());
}

TEST(FCFileTypeNode, CopyWithANullLeavesTheTarget) {
    CFCFileTypeNode target;
    target.SetFileTypeID(3);
    EXPECT_FALSE(CFCFileTypeNode::Copy(nullptr, &target));
    EXPECT_FALSE(CFCFileTypeNode::Copy(&target, nullptr));
    EXPECT_FALSE(CFCFileTypeNode::Copy(nullptr, nullptr));
    EXPECT_EQ(target.GetFileTypeID(), 3);
}

TEST(FCMimeTypeNode, KeepsTheContentType) {
    CFCMimeTypeNode node;
    EXPECT_STREQ(node.GetContentType(), L"");
    node.SetContentType(L"text/plain");
    EXPECT_STREQ(node.GetContentType(), L"text/plain");
    node.SetContentType(node.GetContentType() + 5);
    EXPECT_STREQ(node.GetContentType(), L"plain");
    node.SetContentType(nullptr);
    EXPECT_STREQ(node.GetContentType(), L"");
}

TEST(FCCodeNode, KeepsItsCodeThroughTheInterface) {
    CFCCodeNode code;
    IFCNode& node = code;
    EXPECT_STREQ(node.GetNodeCode(), L"");
    node.SetNodeCode(L"print(1)");
    EXPECT_STREQ(node.GetNodeCode(), L"print(1)");
    node.SetNodeCode(node.GetNodeCode() + 5);
    EXPECT_STREQ(node.GetNodeCode(), L"(1)");
    node.SetNodeCode(nullptr);
    EXPECT_STREQ(node.GetNodeCode(), L"");
}

TEST(FCCodeNode, OtherNodesHaveNoCode) {
    CFCMimeTypeNode node;
    node.SetNodeCode(L"print(1)");
    EXPECT_STREQ(node.GetNodeCode(), L"");
}

TEST(FCDocumentNode, StartsClosed) {
    CFCDocumentNode node;
    EXPECT_EQ(node.GetNodeType(), 177);
    EXPECT_FALSE(node.IsOpened());
    EXPECT_EQ(node.GetDocType(), 0);
    node.SetOpened(true);
    node.SetDocType(-5);
    EXPECT_TRUE(node.IsOpened());
    EXPECT_EQ(node.GetDocType(), -5);
}

TEST(FCFavouriteNode, StartsWithTypeCaptionAndImage) {
    CFCFavouriteNode node;
    EXPECT_EQ(node.GetNodeType(), 176);
    EXPECT_STREQ(node.GetNodeCaption(), L"FAVOURITES");
    EXPECT_EQ(node.GetImage(), 6);
    node.SetNodeType(56);
    EXPECT_EQ(node.GetImage(), 6);
}

TEST(FCPackageNode, KeepsTheTextsOfTheManifest) {
    CFCPackageNode node;
    for (PackageText const& text : kPackageTexts) {
        EXPECT_STREQ((node.*text.get)(), L"") << text.name;
        (node.*text.set)(flowmere::fromUtf8(text.name).c_str());
        EXPECT_EQ(narrow(node.*text.field), text.name);
    }
    EXPECT_TRUE(node.patchFile.IsEmpty());
    EXPECT_TRUE(node.installationLocation.IsEmpty());
    CFCPackageNode const copy(node);
    for (PackageText const& text : kPackageTexts) {
        EXPECT_EQ(narrow((node.*text.get)()), text.name);
        (node.*text.set)(nullptr);
        EXPECT_STREQ((node.*text.get)(), L"");
    }
    CFCPackageNode back;
    back = copy;
    for (PackageText const& text : kPackageTexts) {
        EXPECT_EQ(narrow((back.*text.get)()), text.name);
    }
}

TEST(FCAPIHelpNode, TextAndCodeAreOne) {
    CFCAPIHelpNode help;
    IFCNode& node = help;
    EXPECT_STREQ(help.GetNodeText(), L"");
    EXPECT_STREQ(node.GetNodeCode(), L"");
    node.SetNodeCode(L"how to");
    EXPECT_STREQ(help.GetNodeText(), L"how to");
    help.SetNodeText(help.GetNodeText() + 4);
    EXPECT_STREQ(node.GetNodeCode(), L"to");
    help.SetNodeText(nullptr);
    EXPECT_STREQ(node.GetNodeCode(), L"");
}

TEST(FCAPIHelpNode, CodeGoesThroughTheVirtualText) {
    struct Upper : CFCAPIHelpNode {
        wchar_t const* GetNodeText() override { return L"own"; }
    };
    Upper node;
    EXPECT_STREQ(node.GetNodeCode(), L"own");
}
