// The page of a run.

#include "Golden.h"
#include "Study.h"

#include "host/document/Document.h"
#include "host/report/HtmlReport.h"
#include "host/report/Markup.h"

#include <gmock/gmock.h>

#include <regex>

namespace {

using namespace flowmere::test;
using namespace flowmere::host;
using testing::HasSubstr;
using testing::Not;

// Texts on the page

TEST(Markup, ShowsTextsAsTheyAre) {
    struct Row {
        std::string text;
        std::string expected;
    };
    std::vector<Row> const rows = {
        {"", ""},
        {"plain\n\ttext", "plain\n\ttext"},
        {"<script>alert(\"1\")</script>", "&lt;script&gt;alert(&quot;1&quot;)&lt;/script&gt;"},
        {"a & b &amp; ]]> -->", "a &amp; b &amp;amp; ]]&gt; --&gt;"},
        {"'single'", "'single'"},
        {"Träger 梁 \xF0\x9F\x98\x80", "Träger 梁 \xF0\x9F\x98\x80"},
        {std::string("\0", 1), "\xE2\x90\x80"},
        {"\x1b[31m\r\x7f", "\xE2\x90\x9B[31m\xE2\x90\x8D\xE2\x90\xA1"},
        {"\xC2\x85", "U+0085"},
        {"\xE4 \xFF", "\\xE4 \\xFF"},
        {"\xC0\x80", "\\xC0\\x80"},
        {"\xE2\x82", "\\xE2\\x82"},
        {"\xED\xA0\x80", "\\xED\\xA0\\x80"},
        {"\xF4\x90\x80\x80", "\\xF4\\x90\\x80\\x80"},
        {"\xE0\x80\x80", "\\xE0\\x80\\x80"},
        {"a\xE2\x80\xAE"
         "b",
         "aU+202Eb"},
        {"\xEF\xBB\xBF", "U+FEFF"},
        {"\xEF\xBF\xBE\xEF\xBF\xBF", "U+FFFEU+FFFF"},
        {"\xF0\x9F\xBF\xBF", "U+1FFFF"},
        {"\xEF\xBF\xBD", "\xEF\xBF\xBD"},
    };
    for (Row const& row : rows)
        EXPECT_EQ(markup(row.text, false), row.expected);
    EXPECT_EQ(markup("a\x07z\xE4"), "a<span class=\"odd\">\xE2\x90\x87</span>z<span class=\"odd\">\\xE4</span>");
}

TEST(Markup, CountsLinesAndCutsBetweenCharacters) {
    EXPECT_EQ(lineCount(""), 0U);
    EXPECT_EQ(lineCount("one"), 1U);
    EXPECT_EQ(lineCount("one\n"), 1U);
    EXPECT_EQ(lineCount("one\ntwo"), 2U);
    EXPECT_EQ(lineCount("\n\n"), 2U);
    EXPECT_EQ(beginningOf("text", 4), "text");
    EXPECT_EQ(beginningOf("text", 3), "tex...");
    EXPECT_EQ(beginningOf("a梁b", 2), "a...");
    EXPECT_EQ(beginningOf("a梁b", 4), "a梁...");
}

// Whole pages

std::string withoutPicture(std::string page) {
    std::size_t const begin = page.find("<svg");
    std::size_t const end = page.rfind("</svg>");
    if (begin != std::string::npos && end != std::string::npos)
        page.replace(begin, end + 6 - begin, "<svg/>");
    return page;
}

// Refused by a reader of XML, the text says where.
std::string faultOf(std::string const& page) {
    ScratchFolder const folder;
    folder.write("page.html", page);
    folder.write("read.py", "import html.parser, sys, xml.etree.ElementTree\n"
                            "path = sys.argv[1]\n"
                            "class Names(html.parser.HTMLParser):\n"
                            "    open = []\n"
                            "    def handle_starttag(self, tag, attributes):\n"
                            "        self.open.append(tag)\n"
                            "    def handle_endtag(self, tag):\n"
                            "        assert self.open.pop() == tag, tag\n"
                            "try:\n"
                            "    root = xml.etree.ElementTree.parse(path).getroot()\n"
                            "    names = Names()\n"
                            "    names.feed(open(path, encoding='utf-8', newline='').read())\n"
                            "    names.close()\n"
                            "    assert not names.open, names.open\n"
                            "    ids = [item.get('id') for item in root.iter() if item.get('id')]\n"
                            "    assert len(ids) == len(set(ids)), 'an id stands twice'\n"
                            "    for item in root.iter():\n"
                            "        assert item.tag.lower().rpartition('}')[2] != 'script', 'a script'\n"
                            "        for name, value in item.items():\n"
                            "            if name.endswith('href'):\n"
                            "                assert value[0] == '#' and value[1:] in ids, value\n"
                            "            assert not name.startswith('on') and not name.endswith('src'), name\n"
                            "except Exception as error:\n"
                            "    open(path + '.fault', 'w').write(type(error).__name__ + ': ' + str(error))\n");
    std::string const command = "/usr/bin/python3 -I '" + (folder.path() / "read.py").string() + "' '" +
                                (folder.path() / "page.html").string() + "'";
    if (std::system(command.c_str()) != 0)
        return "the reader does not run";
    std::filesystem::path const fault = folder.path() / "page.html.fault";
    return std::filesystem::exists(fault) ? readFile(fault) : "";
}

class PageOfARun : public testing::Test {
protected:
    PageOfARun() {
        study.document(process(block("Start", "", "Start", "Oval") + block("Geometry") + block("Loads") +
                                   connector("Start", "Geometry") + connector("Geometry", "Loads"),
                               variable("Span", "Double", "6.5")));
        report.file = "studies/beam.xml";
        report.startedAt = "2026-03-01 14:05:09";
        report.end = "ended";
    }

    static BlockRun run(std::string const& path, double milliseconds,
                        BlockRun::State state = BlockRun::State::Executed) {
        BlockRun result;
        result.path = path;
        result.state = state;
        result.milliseconds = milliseconds;
        return result;
    }

    std::string page() {
        Document const document((study.path() / "p.xml").string());
        std::string const text = htmlReport(document, report);
        EXPECT_EQ(faultOf(text), "");
        return text;
    }

    Study study;
    RunReport report;
};

TEST_F(PageOfARun, ThatWentWell) {
    report.blocks = {run("Start", 0.04), run("Geometry", 12.34), run("Loads", 1500)};
    report.blocks[1].outputs = {{"Span", "6.5"}, {"Name", "beam <1>"}};
    report.blocks[1].printed = {{false, "reading\n"}, {true, "no unit, m assumed\n"}, {false, "done"}};
    report.variables = {{"Span", "Double", "6.5", "6.5"},
                        {"Geometry.Name", "String", "", "beam <1>"},
                        {"Loads.Sum", "Double", "0", "12.5"}};
    report.history = {"geometry read", "loads & sums"};
    report.notes = {"Geometry: a connector from A to B lacks a block"};
    report.executed = 3;
    report.milliseconds = 1512.38;
    report.savedTo = "out.xml";
    expectGolden("host/report/well.html", withoutPicture(page()));
}

TEST_F(PageOfARun, ThatFailed) {
    report.end = "failed";
    report.blocks = {run("Geometry", 2), run("Geometry", 1, BlockRun::State::Undone),
                     run("Geometry", 3, BlockRun::State::Failed)};
    ScriptError& error = report.blocks[2].error.emplace();
    error.block = "Geometry";
    error.type = "ValueError";
    error.text = "a <b> & \"c\"";
    error.file = "s/Geometry.py";
    error.line = 14;
    error.source = "raise ValueError('a <b> & \"c\"')";
    error.traceback = "Traceback (most recent call last):\n  File \"s/Geometry.py\", line 14, in Execute\n"
                      "ValueError: a <b> & \"c\"\n";
    report.executed = 1;
    report.undone = 1;
    report.milliseconds = 6;
    expectGolden("host/report/failed.html", withoutPicture(page()));
}

TEST_F(PageOfARun, ThatStoppedBeforeAnythingRan) {
    report.end = "stopped";
    report.next = "Start";
    expectGolden("host/report/nothing.html", withoutPicture(page()));
}

TEST_F(PageOfARun, HoldsThePictureWithTheStatesInColour) {
    report.blocks = {run("Start", 1)};
    std::string const text = page();
    std::size_t const begin = text.find("<svg");
    ASSERT_NE(begin, std::string::npos);
    EXPECT_THAT(text.substr(begin), HasSubstr("data-path=\"Geometry\""));
    EXPECT_THAT(text.substr(0, begin), Not(HasSubstr("<?xml")));
}

TEST_F(PageOfARun, IsWholeAndHarmlessWhateverTheTextsAre) {
    std::string everything;
    for (int code = 0; code < 256; ++code)
        everything += static_cast<char>(code);
    std::vector<std::string> const hostile = {"<script>alert(1)</script>",
                                              "]]><x>",
                                              "--><b>",
                                              "\"' onload=\"alert(1)",
                                              "</pre></details></body>",
                                              "</style><script>",
                                              "&nbsp;&#0;",
                                              std::string("\0\0", 2),
                                              everything,
                                              "\xED\xB0\x80\xF8\x88\x80\x80\x80",
                                              "\xE2\x80\xAE\xE2\x81\xA6",
                                              "{} {0} %s %n",
                                              std::string(100'000, '<'),
                                              "line\r\nline\rline\n",
                                              ""};
    std::size_t index = 0;
    for (std::string const& text : hostile) {
        BlockRun block = run(text, static_cast<double>(index++), BlockRun::State::Failed);
        block.outputs = {{text, text}};
        block.printed = {{false, text}, {true, text}, {false, text}};
        ScriptError& error = block.error.emplace();
        error.type = error.text = error.traceback = error.file = error.source = text;
        error.line = 1;
        report.blocks.push_back(block);
        report.variables.push_back({text, text, text, "other"});
        report.variables.push_back({text, text, text, text});
        report.history.push_back(text);
        report.notes.push_back(text);
    }
    report.file = hostile[0] + everything;
    report.startedAt = hostile[0];
    report.end = "<failed>";
    report.next = hostile[0];
    report.savedTo = everything;
    std::string const text = page();
    EXPECT_THAT(text, Not(HasSubstr("<script")));
    EXPECT_EQ(text.find('\0'), std::string::npos);
    EXPECT_THAT(text, HasSubstr("&lt;script&gt;alert(1)&lt;/script&gt;"));
}

TEST_F(PageOfARun, FoldsWhatIsLongAndKeepsItWhole) {
    std::string lines;
    for (int index = 0; index < 41; ++index)
        lines += "line " + std::to_string(index) + "\n";
    std::string const forty = lines.substr(0, lines.rfind("line"));
    std::string const huge(2'000'000, 'x');
    report.blocks = {run("A", 1), run("B", 1), run("C", 1)};
    report.blocks[0].printed = {{false, forty}};
    report.blocks[1].printed = {{false, lines}};
    report.blocks[2].printed = {{false, huge}};
    report.blocks[0].outputs = {{"Long", std::string(241, 'v')}, {"Short", std::string(240, 's')}};
    std::string const text = page();
    EXPECT_THAT(text, HasSubstr("<details open=\"open\"><summary>40 lines, 310 bytes</summary><pre>\n" + forty));
    EXPECT_THAT(text, HasSubstr("<details><summary>41 lines, 318 bytes</summary><pre>\n" + lines + "</pre>"));
    EXPECT_THAT(text, HasSubstr("<details><summary>1 line, 2000000 bytes</summary><pre>\n" + huge + "</pre>"));
    EXPECT_THAT(text, HasSubstr("Long = <details><summary>" + std::string(80, 'v') +
                                "... (241 bytes)</summary><pre>\n" + std::string(241, 'v') + "</pre></details>"));
    EXPECT_THAT(text, HasSubstr("Short = <span class=\"value\">" + std::string(240, 's') + "</span>"));
}

TEST_F(PageOfARun, ShowsTimesInFittingUnits) {
    for (auto const& [milliseconds, expected] : std::vector<std::pair<double, std::string>>{{0, ">0.0 ms<"},
                                                                                            {9999.94, ">9999.9 ms<"},
                                                                                            {10000, ">10.0 s<"},
                                                                                            {599999, ">600.0 s<"},
                                                                                            {7200000, ">120 min<"}}) {
        report.blocks = {run("A", milliseconds)};
        EXPECT_THAT(page(), HasSubstr(expected));
    }
}

TEST_F(PageOfARun, MeasuresTheBarsByTheLongestBlock) {
    report.blocks = {run("A", 50), run("B", 200), run("C", 0)};
    std::string const text = page();
    for (std::string const width : {"25.0", "100.0", "0.0"})
        EXPECT_THAT(text, HasSubstr("style=\"width:" + width + "%\""));
}

} // namespace
