#include "host/report/HtmlReport.h"

#include "host/basics/Command.h"
#include "host/basics/Text.h"
#include "host/document/Document.h"
#include "host/drawing/Drawing.h"
#include "host/report/Markup.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <utility>
#include <vector>

namespace flowmere::host {

namespace {

// Longer outputs and values are folded.
constexpr std::size_t kUnfoldedLines = 40;
constexpr std::size_t kUnfoldedBytes = 6000;
constexpr std::size_t kUnfoldedValue = 240;
constexpr std::size_t kPreview = 80;
// Every sub-process of a document stands open in the picture.
constexpr int kDepth = 1000;

constexpr std::string_view kStyle = R"(
:root { color-scheme: light dark; --paper: #fdfdfc; --ink: #1d2327; --dim: #5d666d; --line: #d9dde0; --tint: #f1f3f4;
  --good: #1b7a3d; --bad: #b3261e; --warn: #8a5a00; --bar: #6f9fd0; --changed: #fff3cf; }
@media screen and (prefers-color-scheme: dark) {
  :root { --paper: #16191c; --ink: #e3e6e8; --dim: #9aa4ab; --line: #343a40; --tint: #20252a;
    --good: #6fcf8f; --bad: #ff8a80; --warn: #f0b95a; --bar: #4c7fb3; --changed: #3d3417; } }
* { box-sizing: border-box; }
body { margin: 0 auto; max-width: 76rem; padding: 1.5rem; background-color: var(--paper); color: var(--ink);
  font: 15px/1.5 system-ui, sans-serif; }
h1 { font-size: 1.6rem; margin: 0; overflow-wrap: anywhere; }
h2 { font-size: 1.15rem; margin: 2.2rem 0 .6rem; padding-bottom: .2rem; border-bottom: 1px solid var(--line); }
h3 { font-size: 1rem; margin: 1rem 0 .3rem; }
a { color: inherit; }
nav a { margin-right: 1rem; color: var(--dim); }
dl { display: grid; grid-template-columns: max-content 1fr; gap: .1rem 1rem; }
dt { color: var(--dim); }
dd { margin: 0; overflow-wrap: anywhere; }
table { width: 100%; border-collapse: collapse; }
th { text-align: left; color: var(--dim); font-weight: normal; border-bottom: 1px solid var(--line); }
th, td { padding: .25rem .6rem .25rem 0; vertical-align: top; }
td { border-bottom: 1px solid var(--tint); overflow-wrap: anywhere; }
.name { width: 26%; min-width: 11rem; }
.empty { color: var(--dim); white-space: nowrap; }
.number { text-align: right; white-space: nowrap; font-variant-numeric: tabular-nums; }
.track { width: 22%; }
.bar { height: .7rem; min-width: 1px; margin-top: .35rem; background-color: var(--bar); }
.value, pre, code { font-family: ui-monospace, monospace; font-size: .88em; white-space: pre-wrap; overflow-wrap: anywhere; }
pre { margin: .3rem 0; padding: .5rem .7rem; background-color: var(--tint); border-left: 3px solid var(--line); }
.state { font-weight: 600; white-space: nowrap; }
.Executed, .ended { color: var(--good); }
.Failed, .failed, .err { color: var(--bad); }
.Interrupted, .interrupted, .stopped { color: var(--warn); }
.Undone { color: var(--dim); }
.changed td:last-child { background-color: var(--changed); }
pre .err { font-style: italic; }
.odd { border: 1px solid currentColor; border-radius: 2px; padding: 0 1px; font-size: .85em; opacity: .75; }
.error { border-left: 3px solid var(--bad); padding-left: .8rem; margin: 1rem 0; }
.none { color: var(--dim); }
summary { cursor: pointer; color: var(--dim); }
figure { margin: 0; max-height: 85vh; overflow: auto; background-color: #fff; border: 1px solid var(--line); }
figure svg { display: block; margin: 0 auto; }
@media print {
  :root { color-scheme: light; --paper: #fff; }
  body { max-width: none; padding: 0; font-size: 10pt; }
  nav { display: none; }
  figure { max-height: none; overflow: visible; border: none; }
  figure svg { max-width: 100%; max-height: 22cm; width: auto; height: auto; }
  details::details-content { content-visibility: visible; display: block; }
  tr, figure { break-inside: avoid; }
  h2, h3, summary { break-after: avoid; }
}
)";

std::string timeText(double milliseconds) {
    if (milliseconds < 10000)
        return fmt::format("{:.1f} ms", milliseconds);
    if (milliseconds < 600000)
        return fmt::format("{:.1f} s", milliseconds / 1000);
    return fmt::format("{:.0f} min", milliseconds / 60000);
}

std::string element(std::string_view name, std::string_view content) {
    return fmt::format("<{0}>{1}</{0}>", name, content);
}

std::string element(std::string_view name, std::string_view ofClass, std::string_view content) {
    return fmt::format("<{0} class=\"{1}\">{2}</{0}>", name, ofClass, content);
}

// A text with its line ends. The one that it begins with counts as the page's own.
std::string lines(std::string const& content) {
    return "<pre>\n" + content + "</pre>";
}

// A value of a variable, which may be of any length.
std::string valueText(std::string const& value) {
    if (value.empty())
        return "<span class=\"empty\">(empty)</span>";
    if (value.size() <= kUnfoldedValue)
        return element("span", "value", markup(value));
    return fmt::format("<details><summary>{} ({})</summary>{}</details>", markup(beginningOf(value, kPreview)),
                       counted(value.size(), "byte"), lines(markup(value)));
}

std::size_t sizeOf(std::vector<PrintedText> const& printed) {
    std::size_t size = 0;
    for (PrintedText const& piece : printed)
        size += piece.text.size();
    return size;
}

std::size_t linesOf(std::vector<PrintedText> const& printed) {
    std::string_view last;
    std::size_t lines = 0;
    for (PrintedText const& piece : printed) {
        if (piece.text.empty())
            continue;
        // A line may begin in one stream and end in the other.
        lines += lineCount(piece.text) - (!last.empty() && last.back() != '\n' ? 1 : 0);
        last = piece.text;
    }
    return lines;
}

class Page {
public:
    Page(Document const& document, RunReport const& report) : m_document(document), m_report(report) {}

    std::string text() {
        std::string const name = std::filesystem::path(m_report.file).filename().string();
        add("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\"/>\n"
            "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n");
        add("<title>" + markup(name, false) + ": " + markup(m_report.end, false) + "</title>\n");
        add(element("style", kStyle) + "\n</head>\n<body>\n");
        head(name);
        errors();
        picture();
        blocks();
        variables();
        outputs();
        list("history", "History", m_report.history);
        list("notes", "Notes", m_report.notes);
        add("</body>\n</html>\n");
        return std::move(m_text);
    }

private:
    void add(std::string_view text) { m_text += text; }
    void section(std::string_view id, std::string_view title) {
        add(fmt::format("<section id=\"run-{}\">\n<h2>{}</h2>\n", id, title));
    }
    void endSection() { add("</section>\n"); }
    void fact(std::string_view name, std::string const& content) {
        add(element("dt", name) + element("dd", content) + "\n");
    }

    void head(std::string const& name) {
        add("<header>\n" + element("h1", markup(name)) + "\n");
        std::string how = element("span", "state " + markup(m_report.end, false), markup(m_report.end));
        if (m_report.end == "stopped" && m_report.next)
            how += " before " + markup(*m_report.next);
        std::string what = counted(m_report.executed, "block") + " executed";
        if (m_report.undone > 0)
            what += fmt::format(", {} undone", m_report.undone);
        add("<dl>\n");
        fact("How it ended", how);
        fact("What ran", what);
        fact("Time in blocks", timeText(m_report.milliseconds));
        fact("Started", markup(m_report.startedAt));
        fact("Document", markup(m_report.file));
        if (m_report.savedTo)
            fact("Saved to", markup(*m_report.savedTo));
        add("</dl>\n<nav><a href=\"#run-picture\">Picture</a><a href=\"#run-blocks\">Blocks</a>"
            "<a href=\"#run-variables\">Variables</a><a href=\"#run-output\">Output</a></nav>\n</header>\n");
    }

    void errors() {
        bool isOpen = false;
        for (std::size_t index = 0; index < m_report.blocks.size(); ++index) {
            BlockRun const& block = m_report.blocks[index];
            if (!block.error)
                continue;
            if (!std::exchange(isOpen, true))
                section("errors", "Errors");
            error(index, *block.error);
        }
        if (isOpen)
            endSection();
    }

    void error(std::size_t index, ScriptError const& error) {
        add("<div class=\"error\">\n");
        add("<h3>" + blockLink(index) + "</h3>\n");
        std::string const what = error.text.empty() ? error.type : error.type + ": " + error.text;
        add("<p class=\"value err\">" + markup(what) + "</p>\n");
        if (!error.file.empty()) {
            std::string const place = error.line > 0 ? fmt::format("{}:{}", error.file, error.line) : error.file;
            add("<p>" + markup(place) + "</p>\n");
        }
        if (!error.source.empty())
            add(lines(markup(error.source)) + "\n");
        if (!error.traceback.empty())
            add("<details><summary>Traceback</summary>" + lines(markup(error.traceback)) + "</details>\n");
        add("</div>\n");
    }

    // The line of the table of blocks.
    std::string blockLink(std::size_t index) const {
        return fmt::format("<a href=\"#run-block-{}\">{}</a>", index + 1, markup(m_report.blocks[index].path));
    }

    void picture() {
        section("picture", "Picture");
        try {
            DrawOptions options;
            options.depth = kDepth;
            options.states = true;
            std::vector<std::string> notes;
            std::string const drawn = drawPicture(m_document, options, PictureFormat::Svg, &notes);
            std::size_t const begin = drawn.find("<svg");
            add("<figure>\n" + drawn.substr(begin == std::string::npos ? drawn.size() : begin) + "</figure>\n");
            for (std::string const& note : notes)
                add(element("p", "none", markup(note)) + "\n");
        } catch (Failure const& failure) {
            add(element("p", "none", "There is no picture: " + markup(failure.what())) + "\n");
        }
        endSection();
    }

    void blocks() {
        section("blocks", "Blocks");
        if (m_report.blocks.empty()) {
            add("<p class=\"none\">No block has run.</p>\n");
            return endSection();
        }
        double longest = 0;
        for (BlockRun const& block : m_report.blocks)
            longest = std::max(longest, block.milliseconds);
        add("<table>\n<thead><tr><th class=\"number\">#</th><th>Block</th><th>State</th><th class=\"number\">Time</th>"
            "<th class=\"track\"></th><th>Outputs</th></tr></thead>\n<tbody>\n");
        for (std::size_t index = 0; index < m_report.blocks.size(); ++index)
            blockRow(index, longest);
        add("</tbody>\n</table>\n");
        endSection();
    }

    void blockRow(std::size_t index, double longest) {
        BlockRun const& block = m_report.blocks[index];
        std::string path = markup(block.path);
        if (!block.printed.empty())
            path = fmt::format("<a href=\"#run-output-{}\">{}</a>", index + 1, path);
        std::string outputs;
        for (auto const& [name, value] : block.outputs)
            outputs += (outputs.empty() ? "" : "<br/>") + markup(name) + " = " + valueText(value);
        std::string const state = stateName(block.state);
        add(fmt::format("<tr id=\"run-block-{0}\"><td class=\"number\">{0}</td><td class=\"name\">{1}</td>"
                        "<td class=\"state {2}\">{2}</td><td class=\"number\">{3}</td>"
                        "<td class=\"track\"><div class=\"bar\" style=\"width:{4:.1f}%\"></div></td>"
                        "<td>{5}</td></tr>\n",
                        index + 1, path, state, timeText(block.milliseconds),
                        longest > 0 ? 100 * block.milliseconds / longest : 0.0, outputs));
    }

    void variables() {
        section("variables", "Variables");
        auto const isChanged = [](VariableChange const& variable) {
            return variable.before != variable.after;
        };
        auto const changed =
            static_cast<std::size_t>(std::count_if(m_report.variables.begin(), m_report.variables.end(), isChanged));
        std::size_t const unchanged = m_report.variables.size() - changed;
        if (changed == 0)
            add("<p class=\"none\">No variable has changed.</p>\n");
        else
            variableTable(true);
        if (unchanged > 0) {
            add("<details><summary>" + counted(unchanged, "variable") + " without a change</summary>\n");
            variableTable(false);
            add("</details>\n");
        }
        endSection();
    }

    void variableTable(bool changed) {
        add(fmt::format("<table{}>\n<thead><tr><th>Variable</th><th>Type</th>{}</tr></thead>\n<tbody>\n",
                        changed ? " class=\"changed\"" : "",
                        changed ? "<th>Before</th><th>After</th>" : "<th>Value</th>"));
        for (VariableChange const& variable : m_report.variables) {
            if ((variable.before != variable.after) != changed)
                continue;
            add("<tr>" + element("td", "name", markup(variable.path)) + element("td", markup(variable.type)) +
                element("td", valueText(variable.before)));
            if (changed)
                add(element("td", valueText(variable.after)));
            add("</tr>\n");
        }
        add("</tbody>\n</table>\n");
    }

    void outputs() {
        section("output", "Output");
        bool isEmpty = true;
        for (std::size_t index = 0; index < m_report.blocks.size(); ++index) {
            if (m_report.blocks[index].printed.empty())
                continue;
            isEmpty = false;
            output(index);
        }
        if (isEmpty)
            add("<p class=\"none\">No block has printed anything.</p>\n");
        else
            add("<p class=\"none\">What went to standard error is shown <span class=\"err\">so</span>.</p>\n");
        endSection();
    }

    void output(std::size_t index) {
        std::vector<PrintedText> const& printed = m_report.blocks[index].printed;
        std::size_t const lineTotal = linesOf(printed);
        std::size_t const bytes = sizeOf(printed);
        bool const isFolded = lineTotal > kUnfoldedLines || bytes > kUnfoldedBytes;
        add(fmt::format("<h3 id=\"run-output-{}\">{} {}</h3>\n", index + 1, index + 1, blockLink(index)));
        std::string text;
        for (PrintedText const& piece : printed)
            text += piece.isError ? element("span", "err", markup(piece.text)) : markup(piece.text);
        add(fmt::format("<details{}><summary>{}, {}</summary>{}</details>\n", isFolded ? "" : " open=\"open\"",
                        counted(lineTotal, "line"), counted(bytes, "byte"), lines(text)));
    }

    void list(std::string_view id, std::string_view title, std::vector<std::string> const& lines) {
        if (lines.empty())
            return;
        section(id, title);
        add("<ul>\n");
        for (std::string const& line : lines)
            add(element("li", "value", markup(line)) + "\n");
        add("</ul>\n");
        endSection();
    }

    Document const& m_document;
    RunReport const& m_report;
    std::string m_text;
};

} // namespace

std::string htmlReport(Document const& document, RunReport const& report) {
    return Page(document, report).text();
}

} // namespace flowmere::host
