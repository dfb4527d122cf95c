#include "XmlTestSupport.h"
#include "flowmere/xml/TXMLBaseWriter.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#if !defined(_WIN32)
#include <sys/resource.h>
#endif

using flowmere::formatXmlFile;
using flowmere::writeXmlFile;
using flowmere::XmlDocumentPointer;
using flowmere::test::repeat;
using flowmere::test::ScratchTest;
using flowmere::test::TextReader;

namespace fs = std::filesystem;

using XmlFile = ScratchTest;

TEST_F(XmlFile, AWrittenFileHasItsDeclarationRootAndNamespace) {
    ASSERT_TRUE(writeXmlFile(scratch.text("out.xml"), L"DataTypes", [](auto* root) {
        CTXMLBaseWriter::CreateElement(CTXMLBaseWriter::CreateElement(root, L"GROUP"), L"DATATYPE");
        CTXMLBaseWriter::SetSimpleAttribute(root, L"Name", L"\u00e9");
    }));
    EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>\n"
              "<DataTypes Name=\"\xC3\xA9\" xmlns=\"http://www.w3.org/2001/XMLSchema-instance\">\n"
              "\n"
              "  <GROUP>\n"
              "    <DATATYPE/>\n"
              "  </GROUP>\n"
              "\n"
              "</DataTypes>\n",
              scratch.read("out.xml"));
}

TEST_F(XmlFile, TheFormerContentIsGone) {
    scratch.write("out.xml", std::string(100000, 'x'));
    ASSERT_TRUE(writeXmlFile(scratch.text("out.xml"), L"R", [](auto*) {}));
    EXPECT_EQ(std::string::npos, scratch.read("out.xml").find("xxx"));
}

TEST_F(XmlFile, TheFileIsOpenedOnlyWhenTheDocumentStands) {
    scratch.write("out.xml", "former");
    ASSERT_TRUE(
        writeXmlFile(scratch.text("out.xml"), L"R", [&](auto*) { EXPECT_EQ("former", scratch.read("out.xml")); }));
    EXPECT_NE("former", scratch.read("out.xml"));
}

TEST_F(XmlFile, AnExceptionOfTheCallerIsDroppedAndTheFileLeftAlone) {
    scratch.write("out.xml", "former");
    EXPECT_TRUE(writeXmlFile(scratch.text("out.xml"), L"R", [](auto*) { throw std::runtime_error("no"); }));
    EXPECT_EQ("former", scratch.read("out.xml"));
}

TEST_F(XmlFile, ABadRootNameIsDroppedToo) {
    EXPECT_TRUE(writeXmlFile(scratch.text("out.xml"), L"two words", [](auto*) { FAIL(); }));
    EXPECT_TRUE(writeXmlFile(scratch.text("out.xml"), L"", [](auto*) {}));
    EXPECT_FALSE(fs::exists(scratch / "out.xml"));
}

TEST_F(XmlFile, APathThatCannotBeOpenedIsStillTrue) {
    EXPECT_TRUE(writeXmlFile(scratch.text("missing/out.xml"), L"R", [](auto*) {}));
    EXPECT_FALSE(fs::exists(scratch / "missing"));
    EXPECT_TRUE(writeXmlFile(scratch.text(), L"R", [](auto*) {}));
    EXPECT_TRUE(fs::is_directory(scratch.path()));
}

#if !defined(_WIN32)
// A limit on the size of files fails a write as a full disk does. It holds for the process, so this is one of its own.
TEST_F(XmlFile, AFullDiskIsStillTrueAndTheFileIsCutOff) {
    constexpr std::size_t kRoom = 100000;
    auto const write = [this](std::size_t length) {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit const limit{kRoom, kRoom};
        EXPECT_EQ(0, setrlimit(RLIMIT_FSIZE, &limit));
        EXPECT_TRUE(writeXmlFile(scratch.text("out.xml"), L"R",
                                 [length](auto* root) { flowmere::appendText(root, std::wstring(length, L'x')); }));
        std::_Exit(HasFailure() ? 1 : 0);
    };
    for (std::size_t const length : {std::size_t{300000}, kRoom}) {
        scratch.write("out.xml", "former");
        EXPECT_EXIT(write(length), testing::ExitedWithCode(0), "");
        EXPECT_EQ(kRoom, fs::file_size(scratch / "out.xml")) << length;
        EXPECT_EQ(0U, scratch.read("out.xml").find("<?xml")) << length;
    }
}
#endif

TEST_F(XmlFile, BackslashesAreFolders) {
    fs::create_directory(scratch / "inner");
    TuString path = scratch.text();
    path += L"\\inner\\out.xml";
    EXPECT_TRUE(writeXmlFile(path, L"R", [](auto*) {}));
    EXPECT_TRUE(fs::exists(scratch / "inner/out.xml"));
}

TEST_F(XmlFile, LargeTextsAreWrittenWhole) {
    std::wstring const text(1000000, L'x');
    std::wstring const line(70000, L'y');
    ASSERT_TRUE(writeXmlFile(scratch.text("out.xml"), L"R", [&](auto* root) {
        flowmere::setText(root, u"a", line);
        flowmere::appendText(root, text);
    }));
    flowmere::test::OpenReader reader;
    ASSERT_TRUE(reader.Initialize(scratch.text("out.xml")));
    TuString read;
    reader.GetTextNodeValue(reader.root(), read);
    EXPECT_TRUE(text == read.View());
    reader.GetAttribute(reader.root(), L"a", read);
    EXPECT_TRUE(line == read.View());
}

TEST_F(XmlFile, ThePlatformStaysUpAcrossWritesInsideAReader) {
    TextReader reader("<r a='1'/>");
    for (int i = 0; i < 5; ++i) {
        ASSERT_TRUE(writeXmlFile(scratch.text("out.xml"), L"R", [](auto*) {}));
    }
    TuString text;
    EXPECT_TRUE(reader.GetAttribute(reader.root(), L"a", text));
    EXPECT_STREQ(L"1", text);
}

// --- Reformatting ---

TEST_F(XmlFile, FormattingGoesBesideTheFile) {
    std::string const source = "<r><a x='1'/><b>text</b><!-- note --></r>";
    scratch.write("in.xml", source);
    formatXmlFile(scratch.text("in.xml"));
    EXPECT_EQ(source, scratch.read("in.xml"));
    std::string const formatted = scratch.read("in.for");
    EXPECT_NE(std::string::npos, formatted.find("\n  <a x=\"1\"/>\n"));
    EXPECT_NE(std::string::npos, formatted.find("\n  <b>text</b>\n"));
    EXPECT_NE(std::string::npos, formatted.find("<!-- note -->"));
}

TEST_F(XmlFile, FormattingWithoutTheExtensionRewritesTheFile) {
    scratch.write("process.lst", "<r><a/></r>");
    formatXmlFile(scratch.text("process.lst"));
    EXPECT_NE(std::string::npos, scratch.read("process.lst").find("\n  <a/>\n"));
    scratch.write("A.XML", "<r><a/></r>");
    formatXmlFile(scratch.text("A.XML"));
    EXPECT_NE(std::string::npos, scratch.read("A.XML").find("\n  <a/>\n"));
    EXPECT_FALSE(fs::exists(scratch / "A.for"));
}

TEST_F(XmlFile, FormattingReplacesEveryOccurrenceInThePath) {
    scratch.write("d.xml/f.xml.xml", "<r><a/></r>");
    formatXmlFile(scratch.text("d.xml/f.xml.xml"));
    EXPECT_FALSE(fs::exists(scratch / "d.for")) << "no folder is created";
    fs::create_directory(scratch / "d.for");
    formatXmlFile(scratch.text("d.xml/f.xml.xml"));
    EXPECT_TRUE(fs::exists(scratch / "d.for/f.for.for"));
    EXPECT_EQ("<r><a/></r>", scratch.read("d.xml/f.xml.xml"));
}

TEST_F(XmlFile, FormattingWhatCannotBeReadDoesNothing) {
    scratch.write("bad.xml", "<r>");
    formatXmlFile(scratch.text("bad.xml"));
    formatXmlFile(scratch.text("missing.xml"));
    formatXmlFile(scratch.text());
    formatXmlFile(L"");
    formatXmlFile(nullptr);
    EXPECT_FALSE(fs::exists(scratch / "bad.for"));
    EXPECT_FALSE(fs::exists(scratch / "missing.for"));
}

TEST_F(XmlFile, FormattingKeepsTheEncodingOfTheFile) {
    scratch.write("in.xml", "<?xml version='1.0' encoding='ISO-8859-1'?><r>\xE9</r>");
    formatXmlFile(scratch.text("in.xml"));
    std::string const formatted = scratch.read("in.for");
    EXPECT_NE(std::string::npos, formatted.find("encoding=\"ISO-8859-1\""));
    EXPECT_NE(std::string::npos, formatted.find("<r>\xE9</r>"));
}

TEST_F(XmlFile, FormattingKeepsTheTextsOfMixedContent) {
    scratch.write("in.xml", "<r><p>one <b>two</b> <i>three</i></p></r>");
    formatXmlFile(scratch.text("in.xml"));
    XmlDocumentPointer const formatted = flowmere::parseXmlFile(scratch.text("in.for"), flowmere::Indentation::Keep);
    ASSERT_TRUE(formatted);
    TuString text;
    EXPECT_TRUE(flowmere::ownText(flowmere::firstElement(formatted->getDocumentElement()), text));
    EXPECT_EQ(0, text.Find(L"one "));
    EXPECT_NE(std::string::npos, scratch.read("in.for").find("</b> "));
}

TEST_F(XmlFile, SerialisingNothingIsFalse) {
    EXPECT_FALSE(flowmere::serializeXmlFile(nullptr, scratch.text("out.xml")));
    EXPECT_FALSE(fs::exists(scratch / "out.xml"));
}

TEST_F(XmlFile, TheDeepestFileThatIsReadIsAlsoWritten) {
    scratch.write("in.xml", repeat("<e>", 1024) + repeat("</e>", 1024));
    formatXmlFile(scratch.text("in.xml"));
    flowmere::test::OpenReader reader;
    EXPECT_TRUE(reader.Initialize(scratch.text("in.for")));
}
