#include "CatalogTestSupport.h"
#include "flowmere/persistence/FCManifestReader.h"
#include "flowmere/persistence/FCManifestWriter.h"

#include <xercesc/dom/DOM.hpp>

#include <memory>
#include <string>
#include <type_traits>

using flowmere::test::addChild;
using flowmere::test::CatalogTest;
using flowmere::test::EmptyFactory;
using flowmere::test::expectGolden;
using flowmere::test::narrow;
using flowmere::test::printedBy;

namespace {

struct Manifest : CatalogTest {
    // What the file gives; a package that is there already stays where there is none.
    CFCPackageNode* parse(std::string_view xml, CFCPackageNode* before = nullptr) {
        CFCManifestReader reader;
        reader.SetNodeFactory(&factory);
        EXPECT_TRUE(reader.Parse(file(xml), &before));
        return before;
    }
    CFCPackageNode* newPackage() { return dynamic_cast<CFCPackageNode*>(factory.Create(172)); }

    std::string write(IFCNode* node, bool deep = true) {
        CFCManifestWriter writer;
        EXPECT_TRUE(writer.WriteFile(scratch.text("out.mf"), node, deep));
        return scratch.read("out.mf");
    }
};

// All five texts.
std::string textsOf(CFCPackageNode const* package) {
    if (package == nullptr)
        return "(none)";
    std::string all;
    for (TuString const* const text :
         {&package->version, &package->build, &package->releaseDate, &package->releaseNumber, &package->path})
        all += narrow(*text) + ";";
    return all;
}

struct OpenManifestReader : CFCManifestReader {
    xercesc::DOMElement* root() { return m_pDocument->getDocumentElement(); }
    CFCPackageNode* package() { return m_pPackage; }
};

constexpr char kHead[] = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>\n";
constexpr char kXmlns[] = "xmlns=\"http://www.w3.org/2001/XMLSchema-instance\"";

} // namespace

// --- Reading ---

TEST_F(Manifest, EachAttributeGoesToItsField) {
    struct Row {
        char const* attribute;
        TuString CFCPackageNode::*field;
        wchar_t const* (CFCPackageNode::*get)();
    };
    for (Row const& row : {Row{"Version", &CFCPackageNode::version, &CFCPackageNode::GetVersion},
                           Row{"Build", &CFCPackageNode::build, &CFCPackageNode::GetBuild},
                           Row{"ReleaseDate", &CFCPackageNode::releaseDate, &CFCPackageNode::GetReleaseDate},
                           Row{"ReleaseNumber", &CFCPackageNode::releaseNumber, &CFCPackageNode::GetReleaseNumber},
                           Row{"Path", &CFCPackageNode::path, &CFCPackageNode::GetPath}}) {
        CFCPackageNode* const package =
            parse(std::string("<Manifest><MANIFEST_INFO ") + row.attribute + "='the &lt;text&gt;'/></Manifest>");
        ASSERT_NE(nullptr, package) << row.attribute;
        EXPECT_STREQ(L"the <text>", package->*row.field) << row.attribute;
        EXPECT_STREQ(L"the <text>", (package->*row.get)()) << row.attribute;
        std::string const all = textsOf(package);
        EXPECT_EQ(std::string("the <text>").size() + 5, all.size()) << "the other texts are empty: " << all;
    }
}

TEST_F(Manifest, ThePackageIsNewAndTheCallers) {
    CFCPackageNode* const package =
        parse("<Manifest Name='Given'><MANIFEST_INFO Version='1.2' Build='7' ReleaseDate='31/12/2020' "
              "ReleaseNumber='R4' Path='C:\\x'/></Manifest>");
    EXPECT_EQ("1.2;7;31/12/2020;R4;C:\\x;", textsOf(package));
    EXPECT_EQ(172, package->GetNodeType());
    EXPECT_STREQ(L"Manifest", package->GetNodeCaption()) << "whatever the root is named";
    EXPECT_EQ(nullptr, package->GetParentNode());
    EXPECT_EQ(nullptr, package->GetChild());
    EXPECT_EQ(std::vector<int>{172}, factory.asked);
}

TEST_F(Manifest, DatesAreTextsThatNobodyLooksAt) {
    EXPECT_EQ(";;no date;;;", textsOf(parse("<M><MANIFEST_INFO ReleaseDate='no date'/></M>")));
}

TEST_F(Manifest, AFileWithoutInfoLeavesThePackageAlone) {
    CFCPackageNode* const before = newPackage();
    for (char const* const xml :
         {"<Manifest Name='x'/>", "<Manifest><manifest_info/></Manifest>", "<MANIFEST_INFO Version='1'/>",
          "<Manifest><PACKAGE><MANIFEST_INFO Version='1'/></PACKAGE></Manifest>", "<other/>"}) {
        EXPECT_EQ(before, parse(xml, before)) << xml;
        EXPECT_EQ(nullptr, parse(xml)) << xml;
    }
}

TEST_F(Manifest, OfSeveralInfosTheLastCountsAndTheOthersAreNobodys) {
    CFCPackageNode* const package =
        parse("<M><MANIFEST_INFO Version='1'/><x/><MANIFEST_INFO Version='2'/><MANIFEST_INFO Version='3'/></M>");
    EXPECT_EQ("3;;;;;", textsOf(package));
    std::vector<IFCNode*> const made = factory.alive();
    ASSERT_EQ(3U, made.size());
    EXPECT_EQ("1;;;;;", textsOf(dynamic_cast<CFCPackageNode*>(made[0])));
    EXPECT_EQ(nullptr, made[0]->GetParentNode());
    EXPECT_EQ(package, made[2]);
}

TEST_F(Manifest, AnInfoInsideAnotherGoesNowhere) {
    CFCPackageNode* const package =
        parse("<M><MANIFEST_INFO Version='out'><MANIFEST_INFO Version='in'/></MANIFEST_INFO></M>");
    EXPECT_EQ("out;;;;;", textsOf(package));
    EXPECT_EQ(nullptr, package->GetChild());
    std::vector<IFCNode*> const made = factory.alive();
    ASSERT_EQ(2U, made.size());
    EXPECT_EQ("in;;;;;", textsOf(dynamic_cast<CFCPackageNode*>(made[1])));
    EXPECT_EQ(nullptr, made[1]->GetParentNode());
}

TEST_F(Manifest, ThePackageAtHandIsTheOneMadeLast) {
    OpenManifestReader reader;
    reader.SetNodeFactory(&factory);
    CFCPackageNode* package = nullptr;
    ASSERT_TRUE(reader.Parse(file("<M><MANIFEST_INFO Version='out'><MANIFEST_INFO Version='in'/></MANIFEST_INFO></M>"),
                             &package));
    EXPECT_EQ("out;;;;;", textsOf(package));
    EXPECT_EQ("in;;;;;", textsOf(reader.package()));
}

TEST_F(Manifest, TheReaderKeepsThePackageAtHand) {
    OpenManifestReader reader;
    EXPECT_EQ(nullptr, reader.package());
    reader.SetNodeFactory(&factory);
    CFCPackageNode* package = nullptr;
    ASSERT_TRUE(reader.Parse(file("<M><MANIFEST_INFO Version='1'/></M>"), &package));
    EXPECT_EQ(package, reader.package());
    OpenManifestReader const copy(reader);
    OpenManifestReader assigned;
    assigned = copy;
    EXPECT_EQ(package, assigned.package());
    ASSERT_TRUE(assigned.Parse(file("<M><MANIFEST_INFO Version='2'/></M>"), &package));
    EXPECT_EQ("2;;;;;", textsOf(assigned.package())) << "the factory goes along";
}

TEST_F(Manifest, WhatCannotBeReadSaysSo) {
    CFCManifestReader reader;
    reader.SetNodeFactory(&factory);
    CFCPackageNode* const before = newPackage();
    CFCPackageNode* package = before;
    for (TuString const& path : {scratch.text("missing.mf"), scratch.text(), file("<Manifest>")})
        EXPECT_EQ("Init failed\n", printedBy([&] { EXPECT_FALSE(reader.Parse(path, &package)); }));
    EXPECT_EQ("", printedBy([&] {
                  EXPECT_FALSE(reader.Parse(nullptr, &package));
                  EXPECT_FALSE(reader.Parse(L"", &package));
                  EXPECT_FALSE(reader.Parse(file("<M/>"), nullptr));
              }));
    EXPECT_EQ(before, package);
}

TEST_F(Manifest, NodesThatAreNoPackageAreNotTaken) {
    // A host's factory may have no packages, or others.
    class OtherFactory : public CFCNodeFactory {
    public:
        IFCNode* Create(int) override { return CFCNodeFactory::Create(71); }
    };
    OtherFactory other;
    EmptyFactory empty;
    CFCManifestReader reader;
    CFCPackageNode* package = nullptr;
    for (CFCNodeFactory* const made : std::initializer_list<CFCNodeFactory*>{nullptr, &empty, &other}) {
        reader.SetNodeFactory(made);
        EXPECT_TRUE(reader.Parse(file("<M><MANIFEST_INFO Version='1'/></M>"), &package));
        EXPECT_EQ(nullptr, package);
    }
}

TEST_F(Manifest, LoadAndPropertiesTakeAnyElement) {
    OpenManifestReader reader;
    reader.SetNodeFactory(&factory);
    ASSERT_TRUE(reader.Initialize(file("<M Version='of the root'><MANIFEST_INFO Version='1'/></M>")));
    CFCPackageNode* package = nullptr;
    EXPECT_FALSE(reader.Load(nullptr, &package));
    EXPECT_FALSE(reader.Load(reader.root(), nullptr));
    EXPECT_TRUE(reader.Load(reader.root(), &package));
    package->build = L"before";
    reader.LoadPropertiesLite(nullptr, package);
    reader.LoadPropertiesLite(reader.root(), static_cast<CFCPackageNode*>(nullptr));
    EXPECT_EQ("1;before;;;;", textsOf(package));
    reader.LoadPropertiesLite(reader.root(), package);
    EXPECT_EQ("of the root;;;;;", textsOf(package)) << "absent texts become empty";
}

// --- Writing ---

TEST_F(Manifest, ThePackageIsTheRoot) {
    CFCPackageNode* const package = newPackage();
    package->SetNodeCaption(L"Plates & Beams");
    package->version = L"1.2";
    package->build = L"7";
    package->releaseDate = L"31/12/2020";
    package->releaseNumber = L"R4";
    package->path = L"C:\\x\\y";
    package->patchFile = L"not written";
    package->installationLocation = L"not written";
    expectGolden("package.mf", write(package));
}

TEST_F(Manifest, PackagesBelowAreWrittenOldestFirst) {
    CFCPackageNode* const package = newPackage();
    package->version = L"1";
    for (wchar_t const* const name : {L"First", L"Second", L""}) {
        auto* const inner = dynamic_cast<CFCPackageNode*>(addChild(package, 172, L"", name));
        inner->version = (std::wstring(L"of ") + name).c_str();
        addChild(inner, 172, L"", L"Innermost");
    }
    expectGolden("packages.mf", write(package));
    EXPECT_EQ(write(package, true), write(package, false)) << "whether the write is deep does not count";
    EXPECT_EQ("1;;;;;", textsOf(parse(write(package)))) << "what is below is not read";
}

TEST_F(Manifest, ANamelessPackageIsAManifest) {
    EXPECT_EQ(std::string(kHead) + "<Manifest Name=\"Manifest\" " + kXmlns +
                  ">\n\n  <MANIFEST_INFO Build=\"\" Path=\"\" ReleaseDate=\"\" ReleaseNumber=\"\" Version=\"\"/>\n\n"
                  "</Manifest>\n",
              write(newPackage()));
}

TEST_F(Manifest, OtherNodesHaveAnEmptyInfo) {
    CFCPackageNode* const package = newPackage();
    addChild(package, 71, L"", L"folder");
    addChild(package, 57, L"id", L"block");
    addChild(package, 72, L"", L"without an element");
    std::string const text = write(package);
    EXPECT_THAT(text, testing::HasSubstr("<SUB_GRP Name=\"folder\">\n    <MANIFEST_INFO/>\n  </SUB_GRP>"));
    EXPECT_THAT(text, testing::HasSubstr("<BLOCK Name=\"block\">\n    <MANIFEST_INFO/>\n  </BLOCK>"));
    EXPECT_THAT(text, testing::Not(testing::HasSubstr("without an element")));
}

TEST_F(Manifest, AMarkForDeletionDoesNotCount) {
    CFCPackageNode* const package = newPackage();
    addChild(package, 172, L"", L"inner")->SetDeleted(true);
    package->SetDeleted(true);
    ASSERT_TRUE(package->IsDeleted() && package->GetChild()->IsDeleted());
    EXPECT_THAT(write(package), testing::HasSubstr("<PACKAGE Name=\"inner\">"));
}

TEST_F(Manifest, ANodeWithoutAnElementGivesAnEmptyRoot) {
    IFCNode* const node = factory.Create(72);
    addChild(node, 172, L"", L"below");
    EXPECT_EQ(std::string(kHead) + "<Manifest " + kXmlns + "/>\n", write(node));
}

TEST_F(Manifest, WhatWasWrittenReadsBack) {
    CFCPackageNode* const package = newPackage();
    package->version = L"1 \"2\" <3>";
    package->build = L"a\nb\tc";
    package->releaseDate = L"\u00E9\U0001F600";
    package->path = L"C:\\x\\y";
    CFCPackageNode* const again = parse(write(package));
    EXPECT_EQ(textsOf(package), textsOf(again));
    EXPECT_EQ(write(package), write(again));
}

TEST_F(Manifest, WritingNeedsAPathANodeAndAnElement) {
    CFCManifestWriter writer;
    CFCPackageNode* const package = newPackage();
    EXPECT_FALSE(writer.WriteFile(nullptr, package, true));
    EXPECT_FALSE(writer.WriteFile(L"", package, true));
    EXPECT_FALSE(writer.WriteFile(scratch.text("out.mf"), nullptr, true));
    EXPECT_FALSE(std::filesystem::exists(scratch / "out.mf"));
    EXPECT_TRUE(writer.WriteFile(scratch.text("missing/out.mf"), package, true)) << "as all writers";
    EXPECT_FALSE(std::filesystem::exists(scratch / "missing"));
    writer.WriteObject(nullptr, nullptr, nullptr);
    writer.WriteObject(package, nullptr, nullptr);
    writer.WriteProperties(nullptr, nullptr);
    writer.WriteProperties(package, nullptr);
}

TEST_F(Manifest, OverridesOfADerivedWriterAreTakenAtEveryLevel) {
    struct HostWriter : CFCManifestWriter {
        void WriteProperties(IFCNode* node, xercesc::DOMNode* element) override {
            ++properties;
            CFCManifestWriter::WriteProperties(node, element);
        }
        int properties = 0;
    };
    CFCPackageNode* const package = newPackage();
    addChild(addChild(package, 172, L"", L"a"), 172, L"", L"b");
    HostWriter writer;
    EXPECT_TRUE(writer.WriteFile(scratch.text("out.mf"), package, false));
    EXPECT_EQ(3, writer.properties);
    CFCManifestWriter const copy(writer);
    CFCManifestWriter assigned;
    assigned = copy;
    EXPECT_TRUE((std::is_base_of_v<CFCWriter, CFCManifestWriter>));
    EXPECT_TRUE(assigned.WriteFile(scratch.text("again.mf"), package, false));
    EXPECT_EQ(scratch.read("out.mf"), scratch.read("again.mf"));
}

TEST_F(Manifest, DeepTreesAreWrittenAsFarAsTheyCanBeRead) {
    CFCPackageNode* const package = newPackage();
    IFCNode* inner = package;
    for (int level = 0; level < 3000; ++level)
        inner = addChild(inner, 172, L"", L"p");
    package->version = L"1";
    EXPECT_EQ("1;;;;;", textsOf(parse(write(package))));
}
