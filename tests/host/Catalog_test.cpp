#include "Golden.h"
#include "Program.h"

#include "host/catalogs/Catalogs.h"
#include "host/files/XmlFault.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <vector>

using flowmere::host::Json;
using flowmere::test::dataFolder;
using flowmere::test::expectGolden;
using flowmere::test::ProgramRun;
using flowmere::test::runProgram;

namespace fs = std::filesystem;

namespace {

// In the folder of the sample catalogs.
ProgramRun catalog(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "catalog");
    return runProgram(arguments, {.folder = dataFolder() / "host/catalogs"});
}

constexpr char const* kKinds[] = {"types", "files", "mime", "hints", "help", "manifest", "favourites"};

// Catalogs written for a test, in a folder in which the program runs.
struct Catalog : flowmere::test::ScratchTest {
    ProgramRun run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "catalog");
        return runProgram(arguments, {.folder = scratch.path()});
    }
    // The output for one file.
    std::string out(std::string const& kind, std::string const& text) {
        scratch.write("c.xml", text);
        ProgramRun const result = run({kind, "c.xml"});
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_EQ(result.err, "");
        return result.out;
    }
    Json json(std::string const& kind, std::string const& text) {
        scratch.write("c.xml", text);
        ProgramRun const result = run({kind, "c.xml", "--json"});
        EXPECT_EQ(result.exitCode, 0) << result.err;
        return Json::parse(result.out);
    }
    void expectFailure(std::vector<std::string> const& arguments, std::string const& error) {
        ProgramRun const result = run(arguments);
        EXPECT_EQ(result.exitCode, 2) << error;
        EXPECT_EQ(result.out, "") << error;
        EXPECT_EQ(result.err, "flowmere: " + error + "\n");
    }
};

} // namespace

// --- Whole outputs ---

TEST(CatalogProgram, ShowsEachCatalogOfTheCommonFolder) {
    for (std::string const kind : {"types", "files", "mime", "hints", "help", "manifest"}) {
        ProgramRun const text = catalog({kind, "--base", "base"});
        EXPECT_EQ(text.exitCode, 0) << kind;
        EXPECT_EQ(text.err, "") << kind;
        expectGolden("host/catalogs/expected/" + kind + ".txt", text.out);
        ProgramRun const json = catalog({kind, "--base", "base", "--json"});
        EXPECT_EQ(json.exitCode, 0) << kind;
        EXPECT_EQ(json.err, "") << kind;
        expectGolden("host/catalogs/expected/" + kind + ".json", json.out);
    }
}

TEST(CatalogProgram, LaysTheUsersCatalogsOverTheCommonOnes) {
    for (std::string const kind : {"types", "files", "mime"}) {
        ProgramRun const text = catalog({kind, "--base", "base", "--user", "user"});
        EXPECT_EQ(text.exitCode, 0) << kind;
        EXPECT_EQ(text.err, "") << kind;
        expectGolden("host/catalogs/expected/" + kind + "_user.txt", text.out);
        expectGolden("host/catalogs/expected/" + kind + "_user.json",
                     catalog({kind, "--base", "base", "--user", "user", "--json"}).out);
    }
}

TEST(CatalogProgram, ShowsFavourites) {
    std::string const lost = "flowmere: favourites.xml: lost.bpt: there is no folder for the document\n";
    ProgramRun const text = catalog({"favourites", "favourites.xml"});
    EXPECT_EQ(text.exitCode, 0);
    EXPECT_EQ(text.err, lost);
    expectGolden("host/catalogs/expected/favourites.txt", text.out);
    ProgramRun const json = catalog({"favourites", "favourites.xml", "--json"});
    EXPECT_EQ(json.exitCode, 0);
    EXPECT_EQ(json.err, lost);
    expectGolden("host/catalogs/expected/favourites.json", json.out);
}

TEST(CatalogProgram, TellsItsUse) {
    expectGolden("host/catalogs/expected/usage.txt", catalog({"--help"}).out);
    for (std::string const kind : kKinds) {
        ProgramRun const help = catalog({kind, "--help"});
        EXPECT_EQ(help.exitCode, 0);
        EXPECT_THAT(help.out, testing::HasSubstr("Usage: flowmere catalog " + kind));
        EXPECT_THAT(help.out, testing::HasSubstr("Example:\n  flowmere catalog " + kind + " "));
        EXPECT_THAT(help.out, testing::HasSubstr("--json"));
    }
}

// --- Where a catalog is ---

TEST(CatalogProgram, AFileIsReadAloneWhateverTheFolders) {
    ProgramRun const run = catalog({"files", "user/FileTypes.xml", "--base", "base"});
    EXPECT_EQ(run.out, "user/FileTypes.xml: 3 file types\n"
                       "Drawing  13   pdf  application/pdf  A drawing, as I send it  (modified)\n"
                       "Old      14   old                                            (modified, deleted)\n"
                       "Notes    100  txt  text/plain\n");
    EXPECT_EQ(catalog({"hints", "base/Hints.xml", "--user", "user"}).out, catalog({"hints", "base/Hints.xml"}).out);
}

TEST(CatalogProgram, FileTypesAmongTheDataTypesAreThoseOfTheFolders) {
    EXPECT_THAT(catalog({"types", "base/DataTypes.xml"}).out,
                testing::EndsWith("File: group, type CAEFILE, scope Local\n"));
    EXPECT_THAT(catalog({"types", "base/DataTypes.xml", "--base", "user"}).out,
                testing::EndsWith("Notes: file type 100, txt, text/plain\n"));
}

TEST_F(Catalog, WithoutFileAndFoldersTheCurrentFolderIsTheCommonOne) {
    scratch.write("MimeTypes.xml", "<MIMETYPES><MIMETYPE contentType='a/b' description='d'/></MIMETYPES>");
    EXPECT_EQ(run({"mime"}).out, "MimeTypes.xml: 1 MIME type\na/b  d\n");
    EXPECT_EQ(run({"mime", "--base", "."}).out, "MimeTypes.xml: 1 MIME type\na/b  d\n");
    EXPECT_EQ(run({"mime", "--base", scratch.path().string() + "/"}).out,
              (scratch / "MimeTypes.xml").string() + ": 1 MIME type\na/b  d\n");
}

TEST_F(Catalog, TheUsersFolderAloneWillDoAndMayBeTheCommonOne) {
    scratch.write("user/MimeTypes.xml", "<M><MIMETYPE contentType='a/b'/></M>");
    EXPECT_EQ(run({"mime", "--user", "user"}).out, "user/MimeTypes.xml: 1 MIME type\na/b\n");
    EXPECT_EQ(run({"mime", "--base", "user", "--user", "./user"}).out, "user/MimeTypes.xml: 1 MIME type\na/b\n");
    expectFailure({"hints", "--user", "user"}, "FILE or --base is required (see flowmere catalog hints --help)");
}

TEST_F(Catalog, AUserNeedsNoFile) {
    scratch.write("base/FileTypes.xml", "<FILETYPES><FILETYPE name='a'/></FILETYPES>");
    fs::create_directories(scratch / "user");
    EXPECT_EQ(run({"files", "--base", "base", "--user", "user"}).out, "base/FileTypes.xml: 1 file type\na  0\n");
    expectFailure({"files", "--user", "user"}, "user/FileTypes.xml: there is no such file");
}

// --- What is shown ---

TEST_F(Catalog, EmptyCatalogsSaySo) {
    EXPECT_EQ(out("types", "<DataTypes/>"), "c.xml: no data types\n");
    EXPECT_EQ(out("files", "<FILETYPES/>"), "c.xml: no file types\n");
    EXPECT_EQ(out("mime", "<MimeTypes/>"), "c.xml: no MIME types\n");
    EXPECT_EQ(out("hints", "<Hints/>"), "c.xml: no hints\n");
    EXPECT_EQ(out("help", "<PROCESS_LST/>"), "c.xml: \"Processes\", no modules\n");
    EXPECT_EQ(out("favourites", "<Process/>"), "c.xml: no favourites\nFavourites: favourites\nLast Opened: history\n");
    EXPECT_EQ(json("types", "<DataTypes/>")["types"], Json::array());
    EXPECT_EQ(json("hints", "<Hints/>")["hints"], Json::array());
}

TEST_F(Catalog, TextsAreMadeFitForALine) {
    std::string const lengthy(150, 'x');
    EXPECT_EQ(out("files", "<F><FILETYPE name='a&#10;b' extension='&#9;' description='" + lengthy + "'/></F>"),
              "c.xml: 1 file type\na\\nb  0  \\t    " + std::string(100, 'x') + "... (150 characters)\n");
    EXPECT_EQ(out("mime", "<M><MIMETYPE contentType='&#233;&#233;' description='d'/><MIMETYPE contentType='abc' "
                          "description='e'/></M>"),
              "c.xml: 2 MIME types\n\xC3\xA9\xC3\xA9   d\nabc  e\n");
    EXPECT_EQ(
        json("files", "<F><FILETYPE name='a&#10;b' description='" + lengthy + "'/></F>")["types"][0]["description"],
        lengthy);
    EXPECT_EQ(out("types", "<D><GROUP/></D>"), "c.xml: 1 group\n(nameless): group\n");
}

TEST_F(Catalog, EachLanguageOfADataTypeHasItsCode) {
    std::string languages;
    for (std::string const language : {"JS", "Jython", "Python"})
        languages += "<LANGUAGE Type='" + language + "'><GETCODE><![CDATA[get " + language +
                     "]]></GETCODE><SETCODE><![CDATA[set " + language + "]]></SETCODE></LANGUAGE>";
    std::string const text = "<D><DATATYPE Name='n'>" + languages + "</DATATYPE></D>";
    EXPECT_EQ(out("types", text), "c.xml: 1 data type\nn: data type\n    get JS: get JS\n    get Jython: get Jython\n"
                                  "    get Python: get Python\n    set JS: set JS\n    set Jython: set Jython\n"
                                  "    set Python: set Python\n");
    Json const shown = json("types", text)["types"][0];
    EXPECT_EQ(shown["get"], (Json{{"JS", "get JS"}, {"Jython", "get Jython"}, {"Python", "get Python"}}));
    EXPECT_EQ(shown["set"], (Json{{"JS", "set JS"}, {"Jython", "set Jython"}, {"Python", "set Python"}}));
}

TEST_F(Catalog, OneTextOfAHintWillDo) {
    EXPECT_EQ(out("hints", "<H><FORK Action='a'/><JOIN Block='b'/><START/></H>"),
              "c.xml: 3 kinds\nstart state (154)\nfork (156)\n    action: a\njoin (157)\n    block: b\n");
}

TEST_F(Catalog, HelpTextsKeepTheirLines) {
    EXPECT_EQ(out("help", "<P><SUB_MODULE Name='s'>\n\n    first\n      second\n\n    third  \n\n</SUB_MODULE></P>"),
              "c.xml: \"Processes\", 1 sub-module\ns: sub-module\n    first\n      second\n\n    third\n");
    EXPECT_EQ(
        out("help", "<P><SUB_MODULE Name='s'>first\n    second</SUB_MODULE><SUB_MODULE Name='t'> \n </SUB_MODULE></P>"),
        "c.xml: \"Processes\", 2 sub-modules\ns: sub-module\n    first\n    second\nt: sub-module\n");
    EXPECT_EQ(json("help", "<P Name='n'><SUB_MODULE Name='s'> a\nb </SUB_MODULE></P>")["modules"][0]["text"], " a\nb ");
}

TEST_F(Catalog, OfSeveralPackagesTheLastIsShown) {
    scratch.write("m.mf", "<Manifest><MANIFEST_INFO Version='1'><MANIFEST_INFO Version='2'/></MANIFEST_INFO>"
                          "<MANIFEST_INFO Version='3'/></Manifest>");
    ProgramRun const shown = run({"manifest", "m.mf"});
    EXPECT_EQ(shown.exitCode, 0);
    EXPECT_THAT(shown.out, testing::StartsWith("m.mf: 1 package\nversion         3\nbuild\n"));
    EXPECT_EQ(shown.err, "flowmere: m.mf: 2 packages in front of the last one or inside it left out\n");
}

TEST_F(Catalog, FileTypesThatAreBrokenAreTold) {
    scratch.write("DataTypes.xml", "<D><DATATYPE Name='File' Type='CAEFILE'/></D>");
    scratch.write("FileTypes.xml", "<FILETYPES>\n<FILETYPE");
    ProgramRun const shown = run({"types"});
    EXPECT_EQ(shown.exitCode, 0);
    EXPECT_EQ(shown.out, "DataTypes.xml: 1 group\nFile: group, type CAEFILE\n");
    EXPECT_EQ(shown.err, "flowmere: DataTypes.xml: the file types are left out: FileTypes.xml: line 2, column 10: no "
                         "well-formed XML: unexpected end of input\n");
    scratch.write("DataTypes.xml", "<D><DATATYPE Name='Int'/></D>");
    EXPECT_EQ(run({"types"}).err, "") << "nobody asks for them";
}

TEST_F(Catalog, FileTypesThatCannotBeReadAreToldByTheirOwnFolder) {
    constexpr char kIn[] = "flowmere: base/DataTypes.xml: the file types are left out: ";
    scratch.write("base/DataTypes.xml", "<D><DATATYPE Name='File' Type='CAEFILE'/></D>");
    fs::create_directories(scratch / "base/FileTypes.xml");
    scratch.write("user/FileTypes.xml", "<FILETYPES>\n<");
    std::string const ofUser = "user/FileTypes.xml: line 2, column 2: no well-formed XML: element name expected\n";
    EXPECT_EQ(run({"types", "--base", "base"}).err, std::string(kIn) + "base/FileTypes.xml: is a folder\n");
    EXPECT_EQ(run({"types", "--base", "base", "--user", "user"}).err,
              std::string(kIn) + "base/FileTypes.xml: is a folder\n" + kIn + ofUser);
    scratch.write("user/FileTypes.xml", "");
    EXPECT_EQ(run({"types", "base/DataTypes.xml", "--user", "user"}).err,
              std::string(kIn) + "user/FileTypes.xml: is empty\n");
    EXPECT_EQ(run({"types", "base/DataTypes.xml"}).err, "");
}

TEST_F(Catalog, DeepCatalogsAreShownToTheLastLevel) {
    constexpr int kDepth = 1000;
    std::string text;
    for (int level = 0; level < kDepth; ++level)
        text += "<SUB_MODULE Name='s'>";
    for (int level = 0; level < kDepth; ++level)
        text += "</SUB_MODULE>";
    EXPECT_THAT(out("help", "<P>" + text + "</P>"), testing::StartsWith("c.xml: \"Processes\", 1000 sub-modules\n"));
    EXPECT_EQ(json("help", "<P>" + text + "</P>")["name"], "Processes");
}

// --- What cannot be shown ---

TEST_F(Catalog, FilesThatCannotBeReadAreOneLineWithThePlace) {
    scratch.write("cut.xml", "<?xml version='1.0'?>\n<Root>\n  <A>\n");
    scratch.write("cross.xml", "<Root>\n  <A></B>\n</Root>");
    scratch.write("empty.xml", "");
    scratch.write("latin.xml", "<Root>\n  <A \xE9='x'/>\n</Root>");
    std::string deep;
    for (int level = 0; level < 1100; ++level)
        deep += "<a>\n";
    scratch.write("deep.xml", deep);
    fs::create_directories(scratch / "folder");
    for (std::string const kind : kKinds) {
        expectFailure({kind, "missing.xml"}, "missing.xml: there is no such file");
        expectFailure({kind, "folder"}, "folder: is a folder");
        expectFailure({kind, "empty.xml"}, "empty.xml: is empty");
        expectFailure({kind, "latin.xml"},
                      "latin.xml: line 2, column 6: no well-formed XML: the byte 0xE9 is no UTF-8");
        expectFailure({kind, "/dev/null"}, "/dev/null: is no regular file");
        expectFailure({kind, "cross.xml"}, "cross.xml: line 2, column 8: no well-formed XML: expected end of tag 'A'");
        expectFailure({kind, "cut.xml", "--json"},
                      "cut.xml: line 4, column 1: no well-formed XML: input ended before all started tags were ended; "
                      "last tag started is 'A'");
        expectFailure({kind, "deep.xml"},
                      "deep.xml: line 1025, column 4: its elements are nested deeper than 1024 levels");
    }
}

TEST_F(Catalog, BrokenCatalogsOfTheFoldersAreTold) {
    for (std::string const name :
         {"DataTypes.xml", "FileTypes.xml", "MimeTypes.xml", "Hints.xml", "APIHelp.xml", "Manifest.mf"})
        fs::create_directories(scratch / "folders" / name);
    fs::create_directories(scratch / "nothing");
    struct Row {
        char const* kind;
        char const* name;
    };
    for (auto const& [kind, name] :
         {Row{"types", "DataTypes.xml"}, Row{"files", "FileTypes.xml"}, Row{"mime", "MimeTypes.xml"},
          Row{"hints", "Hints.xml"}, Row{"help", "APIHelp.xml"}, Row{"manifest", "Manifest.mf"}}) {
        std::string const file = name;
        expectFailure({kind, "--base", "folders"}, "folders/" + file + ": is a folder");
        expectFailure({kind, "--base", "nothing"}, "nothing/" + file + ": there is no such file");
        expectFailure({kind}, file + ": there is no such file");
    }
    scratch.write("base/MimeTypes.xml", "<M/>");
    expectFailure({"mime", "--base", "base", "--user", "folders"}, "folders/MimeTypes.xml: is a folder");
    scratch.write("user/MimeTypes.xml", "<M>\n<");
    ProgramRun const cut = run({"mime", "--base", "base", "--user", "user"});
    EXPECT_EQ(cut.exitCode, 2);
    EXPECT_THAT(cut.err, testing::StartsWith("flowmere: user/MimeTypes.xml: line 2, column "));
}

TEST_F(Catalog, FoldersThatAreNoneAreNotMade) {
    scratch.write("file", "x");
    for (char const* const option : {"--base", "--user"}) {
        expectFailure({"mime", option, "missing"}, "missing: there is no such folder");
        expectFailure({"mime", option, "file"}, "file: is no folder");
    }
    EXPECT_FALSE(fs::exists(scratch / "missing"));
}

TEST_F(Catalog, FilesOfAnotherKindAreToldByTheirRoot) {
    scratch.write("other.xml", "<?xml version='1.0'?>\n<!-- <Hints> -->\n<html><body/></html>");
    struct Row {
        char const* kind;
        char const* content;
    };
    for (auto const& [kind, content] :
         {Row{"types", "data types"}, Row{"files", "file types"}, Row{"mime", "MIME types"}, Row{"hints", "hints"},
          Row{"help", "help texts"}, Row{"manifest", "package"}, Row{"favourites", "favourites"}})
        expectFailure({kind, "other.xml"}, std::string("other.xml: holds a \"html\" and no ") + content);
    scratch.write("process.xml", "<Process Name='p'><PROCESS_VARIABLES/><BLOCK Name='a'/></Process>");
    for (auto const& [kind, content] : {Row{"types", "data types"}, Row{"files", "file types"},
                                        Row{"mime", "MIME types"}, Row{"hints", "hints"}, Row{"help", "help texts"}})
        expectFailure({kind, "process.xml"}, std::string("process.xml: holds a \"Process\" and no ") + content);
    scratch.write("m.mf", "<Manifest Name='n'/>");
    expectFailure({"manifest", "m.mf"}, "m.mf: holds a \"Manifest\" and no package");
}

TEST_F(Catalog, TheRootIsFoundInAnyEncodingAndBehindAnything) {
    auto const utf16 = [](std::string_view text) {
        std::string bytes = "\xFF\xFE";
        for (char const character : text)
            (bytes += character) += '\0';
        return bytes;
    };
    EXPECT_EQ(out("types", utf16("<?xml version='1.0' encoding='UTF-16'?><DataTypes/>")), "c.xml: no data types\n");
    EXPECT_EQ(out("hints", "<!DOCTYPE Hints><Hints/>"), "c.xml: no hints\n");
    EXPECT_EQ(out("hints", "<!--" + std::string(100000, 'x') + "--><Hints/>"), "c.xml: no hints\n");
    EXPECT_EQ(out("hints", "\xEF\xBB\xBF<Hints/>"), "c.xml: no hints\n");
    scratch.write("c.xml", utf16("<?xml version='1.0' encoding='UTF-16'?><html/>"));
    expectFailure({"types", "c.xml"}, "c.xml: holds no data types");
    scratch.write("c.xml", "<!DOCTYPE html><html/>");
    expectFailure({"manifest", "c.xml"}, "c.xml: holds no package");
}

TEST_F(Catalog, ARootThatIsNotFoundHasNoName) {
    scratch.write("c.xml", "<?xml version='1.0'?><!-- <a> --><b c='d'/>");
    EXPECT_EQ(flowmere::host::rootElement(scratch / "c.xml"), "b");
    scratch.write("c.xml", std::string("<\0P\0/\0>\0", 8));
    EXPECT_EQ(flowmere::host::rootElement(scratch / "c.xml"), "");
    scratch.write("c.xml", std::string("\0<\0P\0/\0>", 8));
    EXPECT_EQ(flowmere::host::rootElement(scratch / "c.xml"), "");
}

TEST_F(Catalog, WrongUseIsOneLine) {
    expectFailure({}, "A subcommand is required (see flowmere catalog --help)");
    expectFailure({"favourites"}, "FILE is required (see flowmere catalog favourites --help)");
    expectFailure({"hints", ""}, "the name of the catalog is empty");
    expectFailure({"hints", "--base", ""}, "the name of the folder of --base is empty");
    expectFailure({"files", "--user", ""}, "the name of the folder of --user is empty");
    expectFailure({"favorites"}, "favorites: there is no such command; did you mean favourites?");
}

// --- Nodes that are nobody's ---

TEST(KeepingFactory, EndsWhatNobodyTook) {
    std::vector<int> handles;
    {
        flowmere::host::KeepingFactory factory;
        IFCNode* const folder = factory.Create(71);
        IFCNode* const inner = factory.Create(177);
        IFCNode* const alone = factory.Create(172);
        EXPECT_EQ(factory.Create(54), nullptr);
        folder->AppendChild(inner, false);
        handles = {folder->GetNodeHandle(), inner->GetNodeHandle(), alone->GetNodeHandle()};
        EXPECT_EQ(factory.tops(), (std::vector<IFCNode*>{folder, alone}));
    }
    for (int const handle : handles)
        EXPECT_EQ(CFCNodeManager::GetNode(handle), nullptr);
}
