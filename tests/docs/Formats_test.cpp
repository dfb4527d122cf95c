// docs/formats.md against the sources: no name in a file without a row in a table, no row without a name, and examples
// that the readers take.

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCEnumTranslator.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCProcessNode.h"
#include "flowmere/model/NodeKinds.h"
#include "flowmere/persistence/FCAPIHelpReader.h"
#include "flowmere/persistence/FCDataTypeListReader.h"
#include "flowmere/persistence/FCFavouriteReader.h"
#include "flowmere/persistence/FCFileTypeListReader.h"
#include "flowmere/persistence/FCHintsReader.h"
#include "flowmere/persistence/FCManifestReader.h"
#include "flowmere/persistence/FCMimeTypeReader.h"
#include "flowmere/persistence/FCProcessListReader.h"
#include "flowmere/persistence/FCReader.h"
#include "flowmere/workflow/FCMSPReader.h"
#include "flowmere/workflow/FCProcessDefinitionReader.h"
#include "flowmere/xml/XmlElements.h"
#include "flowmere/xml/XmlPlatform.h"
#include "support/EnvironmentGuard.h"
#include "support/TestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <xercesc/dom/DOM.hpp>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

using namespace flowmere::test;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;
using Faults = std::vector<std::string>;

fs::path top() {
    return dataFolder().parent_path().parent_path();
}

bool isName(std::string const& text) {
    static std::regex const form("[A-Za-z][A-Za-z0-9_-]*");
    return std::regex_match(text, form);
}

// --- The page ------------------------------------------------------------------------------------------------

struct Row {
    int line = 0;
    std::vector<std::string> cells;
    // In tables of elements and attributes.
    std::string name;
    Names writers;
    Names readers;
};

struct Example {
    int line = 0;
    std::string language;
    std::string family; // "process"; "workflow" for one file of a folder, which is then named
    std::string file;
    int nodes = 0;
    std::string text;
};

struct Heading {
    int line = 0;
    Names elements;
};

struct Section {
    std::string title;
    bool isShared = false;
    std::vector<std::string> sources; // files whose names the tables hold
    std::string journal;
    std::map<std::string, std::vector<Row>> tables; // by the first word of their heads
    std::vector<Heading> headings;
    std::vector<Example> examples;

    std::vector<Row> const& rows(std::string const& table) const {
        static std::vector<Row> const none;
        auto const found = tables.find(table);
        return found != tables.end() ? found->second : none;
    }
};

std::vector<std::string> quotedIn(std::string const& text) {
    static std::regex const form("`([^`]+)`");
    std::vector<std::string> quoted;
    for (std::sregex_iterator match(text.begin(), text.end(), form), end; match != end; ++match)
        quoted.push_back((*match)[1].str());
    return quoted;
}

std::string trimmed(std::string text) {
    text.erase(0, text.find_first_not_of(' '));
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

std::vector<std::string> cellsOf(std::string const& line) {
    std::vector<std::string> cells;
    std::istringstream in(line.substr(1, line.rfind('|') - 1));
    for (std::string cell; std::getline(in, cell, '|');)
        cells.push_back(trimmed(cell));
    return cells;
}

Names functionsIn(std::vector<std::string> const& cells, std::size_t column) {
    auto const quoted = column < cells.size() ? quotedIn(cells[column]) : std::vector<std::string>();
    return {quoted.begin(), quoted.end()};
}

Row rowOf(std::string const& line, int number) {
    constexpr std::size_t kWriters = 2;
    Row row;
    row.line = number;
    row.cells = cellsOf(line);
    auto const quoted = quotedIn(row.cells.front());
    row.name = quoted.empty() ? std::string() : quoted.front();
    row.writers = functionsIn(row.cells, kWriters);
    row.readers = functionsIn(row.cells, kWriters + 1);
    return row;
}

// The info string of an example: "xml workflow/gpd.xml nodes=3".
Example exampleOf(std::string const& info, int line) {
    Example example;
    example.line = line;
    std::istringstream words(info);
    words >> example.language >> example.family;
    auto const slash = example.family.find('/');
    if (slash != std::string::npos) {
        example.file = example.family.substr(slash + 1);
        example.family.resize(slash);
    }
    for (std::string word; words >> word;)
        if (word.starts_with("nodes="))
            example.nodes = std::stoi(word.substr(6));
    return example;
}

std::vector<Section> parsePage(std::string const& page) {
    std::vector<Section> sections(1);
    std::istringstream lines(page);
    std::vector<Row>* table = nullptr;
    int number = 0;
    bool isInExample = false;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        if (line.starts_with("```")) {
            isInExample = !isInExample;
            if (isInExample)
                sections.back().examples.push_back(exampleOf(line.substr(3), number));
            continue;
        }
        if (isInExample) {
            sections.back().examples.back().text += line + "\n";
            continue;
        }
        if (!line.starts_with("|"))
            table = nullptr;
        if (line.starts_with("## ")) {
            sections.emplace_back().title = line.substr(3);
        } else if (line.starts_with("### ")) {
            auto const names = quotedIn(line);
            sections.back().headings.push_back({number, Names(names.begin(), names.end())});
        } else if (line.starts_with("<!-- names:") || line.starts_with("<!-- journal:")) {
            std::istringstream words(line);
            std::string word;
            words >> word >> word;
            bool const isJournal = word == "journal:";
            while (words >> word && word != "-->") {
                if (word == "shared")
                    sections.back().isShared = true;
                else if (isJournal)
                    sections.back().journal = word;
                else
                    sections.back().sources.push_back(word);
            }
        } else if (line.starts_with("|---")) {
            continue;
        } else if (line.starts_with("|") && table == nullptr) {
            table = &sections.back().tables[cellsOf(line).front()];
        } else if (line.starts_with("|")) {
            table->push_back(rowOf(line, number));
        }
    }
    return sections;
}

std::string pageText() {
    return readFile(top() / "docs" / "formats.md");
}

std::string at(Row const& row) {
    return "line " + std::to_string(row.line) + ": ";
}

// --- The sources ---------------------------------------------------------------------------------------------

enum class Use { Written, Read, Other };

// A name that stands in a source.
struct Literal {
    std::string text;
    Use attribute = Use::Other; // of what is no attribute for sure: Other
};

// A function, a constant or a class of a file.
struct Item {
    std::string name;
    std::string text;
    std::vector<Literal> literals;
};

// The text without comments and directives; strings stay.
std::string withoutComments(std::string const& text) {
    static std::regex const form(
        R"re(("(?:[^"\\\n]|\\.)*"|'(?:[^'\\\n]|\\.)+')|//[^\n]*|/\*[\s\S]*?\*/|(\n)[ \t]*#[^\n]*)re");
    return std::regex_replace("\n" + text, form, "$1$2");
}

bool isWordCharacter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

// The last and the last but one identifier of a text.
std::pair<std::string, std::string> lastWords(std::string_view text) {
    std::string words[2];
    for (std::string& word : words) {
        while (!text.empty() && !isWordCharacter(text.back())) {
            if (text.back() == ';' || text.back() == '}')
                return {words[0], words[1]};
            text.remove_suffix(1);
        }
        while (!text.empty() && isWordCharacter(text.back())) {
            word.insert(word.begin(), text.back());
            text.remove_suffix(1);
        }
    }
    return {words[0], words[1]};
}

std::string itemName(std::string_view text) {
    if (text.starts_with("template")) {
        int depth = 0;
        std::size_t at = text.find('<');
        for (; at < text.size(); ++at) {
            depth += text[at] == '<' ? 1 : text[at] == '>' ? -1 : 0;
            if (depth == 0)
                break;
        }
        text.remove_prefix(std::min(at + 1, text.size()));
    }
    return lastWords(text.substr(0, text.find_first_of("({[="))).first;
}

// How a literal is used: by the call that it is an argument of, and its place there.
Literal literalOf(std::string const& text, bool isWide, std::string const& callee, std::string const& type,
                  std::size_t place, std::string_view before, Names const& wideItems, std::string const& item,
                  bool& isKept) {
    static Names const setters = {"setText", "setConstant",   "setInteger", "setReal",  "setMeasure",
                                  "setFlag", "setFlagLetter", "setDate",    "setYesNo", "setWord"};
    static std::regex const own("(Get|Set)\\w*Attribute\\w*");
    bool const isOwnCall = std::regex_match(callee, own) && place == 1;
    isKept = isName(text) && (!isWide || isOwnCall || callee == "m_strRootName" || callee == "CreateElement" ||
                              before.ends_with("m_strRootName = ") || wideItems.contains(item));
    Literal literal{text, Use::Other};
    if ((setters.contains(callee) && place <= 1) || (isOwnCall && callee.starts_with("Set")))
        literal.attribute = Use::Written;
    else if (type == "AttributeTable" || (callee == "attributeOf" && place == 1) || isOwnCall ||
             ((callee == "findOther" || callee == "findNumber") && place == 2))
        literal.attribute = Use::Read;
    return literal;
}

// Collects the names of one item.
void collect(Item& item) {
    // Where names of elements stand in wide literals.
    static Names const wideItems = {"GetObjectType", "elementOfKind", "kKinds",    "kRoot",
                                    "kNode",         "kContainer",    "kTaskKinds"};
    struct Call {
        std::string callee;
        std::string type;
        std::size_t place = 0;
    };
    std::vector<Call> calls(1);
    std::string const& text = item.text;
    for (std::size_t at = 0; at < text.size(); ++at) {
        char const c = text[at];
        if (c == '(' || c == '{' || c == '[') {
            auto const [last, before] = lastWords(std::string_view(text).substr(0, at));
            calls.push_back({last, before, 0});
        } else if ((c == ')' || c == '}' || c == ']') && calls.size() > 1) {
            calls.pop_back();
        } else if (c == ',') {
            ++calls.back().place;
        } else if (c == '\'' || c == '"') {
            std::size_t end = at + 1;
            while (end < text.size() && text[end] != c)
                end += text[end] == '\\' ? 2U : 1U;
            char const prefix = at > 0 ? text[at - 1] : ' ';
            if (c == '"' && (prefix == 'u' || prefix == 'L')) {
                bool isKept = false;
                Literal const literal = literalOf(
                    text.substr(at + 1, end - at - 1), prefix == 'L', calls.back().callee, calls.back().type,
                    calls.back().place, std::string_view(text).substr(0, at - 1), wideItems, item.name, isKept);
                if (isKept)
                    item.literals.push_back(literal);
            }
            at = end;
        }
    }
}

std::vector<Item> itemsOf(std::string const& source) {
    std::string const text = withoutComments(source);
    std::vector<Item> items;
    std::vector<bool> braces; // true: of a namespace
    std::size_t start = 0;
    int depth = 0; // of what is no namespace
    auto const finish = [&](std::size_t end) {
        Item item;
        item.text = trimmed(text.substr(start, end - start));
        item.text.erase(0, item.text.find_first_not_of(" \t\n"));
        item.name = itemName(item.text);
        collect(item);
        items.push_back(std::move(item));
        start = end;
    };
    for (std::size_t at = 0; at < text.size(); ++at) {
        char const c = text[at];
        if (c == '"' || c == '\'') {
            // Digit separators are no quotes.
            if (c == '\'' && at > 0 && std::isdigit(static_cast<unsigned char>(text[at - 1])) != 0)
                continue;
            for (++at; at < text.size() && text[at] != c; ++at)
                at += text[at] == '\\' ? 1U : 0U;
        } else if (c == '{') {
            std::string const head = text.substr(start, at - start);
            bool const isNamespace =
                depth == 0 && std::regex_match(head, std::regex(R"(\s*(inline\s+)?namespace\s*[\w:]*\s*)"));
            braces.push_back(isNamespace);
            if (isNamespace)
                start = at + 1;
            else
                ++depth;
        } else if (c == '}') {
            bool const isNamespace = !braces.empty() && braces.back();
            if (!braces.empty())
                braces.pop_back();
            if (isNamespace) {
                start = at + 1;
                continue;
            }
            --depth;
            std::size_t const next = text.find_first_not_of(" \t\n", at + 1);
            if (depth == 0 &&
                (next == std::string::npos || std::string_view(";,{)").find(text[next]) == std::string_view::npos))
                finish(at + 1);
        } else if (c == ';' && depth == 0) {
            finish(at + 1);
        }
    }
    return items;
}

bool isConstant(Item const& item) {
    return item.name.size() > 1 && item.name[0] == 'k' && std::isupper(static_cast<unsigned char>(item.name[1])) != 0;
}

// What the sources of a section hold. A constant's names are those of the functions that mention it.
struct Sources {
    struct Place {
        std::string file;
        Literal literal;
        Names functions;
    };
    std::vector<Place> places;
    Names functions;
    Names names;

    void add(std::string const& file, std::string const& text) {
        std::vector<Item> const items = itemsOf(text);
        for (Item const& item : items) {
            functions.insert(item.name);
            Names users{item.name};
            if (isConstant(item) && !item.literals.empty()) {
                std::regex const word("\\b" + item.name + "\\b");
                for (Item const& other : items)
                    if (std::regex_search(other.text, word))
                        users.insert(other.name);
            }
            for (Literal const& literal : item.literals) {
                places.push_back({file, literal, users});
                names.insert(literal.text);
            }
        }
    }

    bool holds(std::string const& name, std::string const& function) const {
        return std::any_of(places.begin(), places.end(), [&](Place const& place) {
            return place.literal.text == name && place.functions.contains(function);
        });
    }
};

// Reading them takes its time, so each is read once.
Sources const& sourcesOf(Section const& section) {
    static std::map<std::vector<std::string>, Sources> known;
    auto const [entry, isNew] = known.try_emplace(section.sources);
    if (isNew)
        for (std::string const& file : section.sources)
            entry->second.add(file, readFile(top() / file));
    return entry->second;
}

Names kindElements() {
    Names names;
    for (flowmere::NodeKind const& kind : flowmere::nodeKinds())
        for (wchar_t const* const name : {kind.element, kind.readElement})
            if (name != nullptr)
                names.insert(narrow(name));
    return names;
}

// --- Comparing -----------------------------------------------------------------------------------------------

Names namesIn(std::vector<Row> const& rows) {
    Names names;
    for (Row const& row : rows)
        names.insert(row.name);
    return names;
}

bool meet(Names const& left, Names const& right) {
    return std::any_of(left.begin(), left.end(), [&](std::string const& name) { return right.contains(name); });
}

bool hasAttribute(Section const& section, Sources::Place const& place) {
    auto const& rows = section.rows("Attribute");
    return std::any_of(rows.begin(), rows.end(), [&](Row const& row) {
        if (row.name != place.literal.text)
            return false;
        bool const isWritten = meet(row.writers, place.functions);
        bool const isRead = meet(row.readers, place.functions);
        return (isWritten && place.literal.attribute != Use::Read) ||
               (isRead && place.literal.attribute != Use::Written);
    });
}

// Names of the sources that the section does not tell of.
Faults untold(Section const& section, Sources const& sources, Names const& sharedWords) {
    Names const elements = namesIn(section.rows("Element"));
    Names const words = namesIn(section.rows("Word"));
    Faults faults;
    for (Sources::Place const& place : sources.places) {
        bool const isWord = place.literal.attribute == Use::Other &&
                            (elements.contains(place.literal.text) || words.contains(place.literal.text) ||
                             sharedWords.contains(place.literal.text));
        if (!isWord && !hasAttribute(section, place))
            faults.push_back(section.title + ": " + place.file + ", " + *place.functions.begin() + ": " +
                             place.literal.text);
    }
    return faults;
}

// Rows of the section that the sources know nothing of.
Faults unfounded(Section const& section, Sources const& sources) {
    Names const kinds = kindElements();
    Faults faults;
    auto const checkFunctions = [&](Row const& row, bool isAttribute) {
        if (row.cells.size() < 4) {
            faults.push_back(at(row) + "has too few cells");
            return;
        }
        Names functions = row.writers;
        functions.insert(row.readers.begin(), row.readers.end());
        if (functions.empty())
            faults.push_back(at(row) + row.name + " is neither written nor read");
        for (std::string const& function : functions) {
            if (!sources.functions.contains(function))
                faults.push_back(at(row) + "there is no " + function);
            else if (isAttribute && !sources.holds(row.name, function))
                faults.push_back(at(row) + function + " has no " + row.name);
        }
    };
    for (Row const& row : section.rows("Attribute"))
        checkFunctions(row, true);
    for (Row const& row : section.rows("Element")) {
        checkFunctions(row, false);
        if (!sources.names.contains(row.name) && !kinds.contains(row.name))
            faults.push_back(at(row) + "no source has " + row.name);
    }
    for (Row const& row : section.rows("Word"))
        if (!sources.names.contains(row.name))
            faults.push_back(at(row) + "no source has " + row.name);
    Names const elements = namesIn(section.rows("Element"));
    for (Heading const& heading : section.headings)
        for (std::string const& element : heading.elements)
            if (!elements.empty() && !elements.contains(element))
                faults.push_back("line " + std::to_string(heading.line) + ": no table has " + element);
    return faults;
}

Names sharedWords(std::vector<Section> const& sections) {
    Names words;
    for (Section const& section : sections)
        if (section.isShared)
            words.merge(namesIn(section.rows("Word")));
    return words;
}

Faults untoldOf(std::string const& page) {
    std::vector<Section> const sections = parsePage(page);
    Names const words = sharedWords(sections);
    Faults faults;
    for (Section const& section : sections) {
        Faults const found = untold(section, sourcesOf(section), words);
        faults.insert(faults.end(), found.begin(), found.end());
    }
    return faults;
}

Faults unfoundedOf(std::string const& page) {
    Faults faults;
    for (Section const& section : parsePage(page)) {
        Faults const found = unfounded(section, sourcesOf(section));
        faults.insert(faults.end(), found.begin(), found.end());
    }
    return faults;
}

Section const& sectionTitled(std::vector<Section> const& sections, std::string const& title) {
    auto const found =
        std::find_if(sections.begin(), sections.end(), [&](Section const& section) { return section.title == title; });
    if (found == sections.end())
        throw std::invalid_argument("there is no section " + title);
    return *found;
}

// --- Examples ------------------------------------------------------------------------------------------------

struct TreeEnd {
    void operator()(IFCNode* node) const { CFCNodeHelper::DestroyTree(node); }
};
using Tree = std::unique_ptr<IFCNode, TreeEnd>;

int countBelow(IFCNode* node) {
    int count = 0;
    for (IFCNode* child = node->GetChild(); child != nullptr; child = child->GetNext())
        count += 1 + countBelow(child);
    return count;
}

// A new node has some below it from the beginning.
int countBelow(IFCNode* node, int kind) {
    Tree const fresh(CFCNodeFactory().Create(kind));
    return countBelow(node) - countBelow(fresh.get());
}

// Reads an example as a host does: how many nodes it gives, and what the reader tells of it.
struct Reading {
    bool isRead = false;
    int nodes = 0;
    std::size_t findings = 0;
};

template <typename Reader, typename List>
Reading readInto(TuString const& file, int kind) {
    CFCNodeFactory factory;
    Tree const list(factory.Create(kind));
    Reader reader;
    reader.SetNodeFactory(&factory);
    Reading reading;
    reading.isRead = reader.Parse(file, dynamic_cast<List*>(list.get()));
    reading.nodes = countBelow(list.get());
    return reading;
}

Reading readProcess(TuString const& file) {
    CFCNodeFactory factory;
    CFCReader reader;
    reader.SetNodeFactory(&factory);
    IFCNode* node = nullptr;
    Reading reading;
    reading.isRead = reader.Parse(file, &node, 10);
    Tree const tree(node);
    if (node != nullptr)
        reading.nodes = countBelow(node, eShapeType_Process);
    reading.findings = reader.GetReadFindings().size();
    return reading;
}

Reading readList(TuString const& file) {
    CFCNodeFactory factory;
    Tree const list(factory.Create(eShapeType_ProcessList));
    CFCProcessListReader reader;
    reader.SetNodeFactory(&factory);
    Reading reading;
    reading.isRead = reader.Parse(file, dynamic_cast<CFCProcessList*>(list.get()), L"");
    reading.nodes = countBelow(list.get());
    return reading;
}

Reading readHints(TuString const& file) {
    CFCHintsReader::BlockHints().clear();
    CFCHintsReader::ActionHints().clear();
    Reading reading;
    reading.isRead = CFCHintsReader().Parse(file);
    reading.nodes = static_cast<int>(CFCHintsReader::BlockHints().size());
    return reading;
}

Reading readManifest(TuString const& file) {
    CFCNodeFactory factory;
    CFCManifestReader reader;
    reader.SetNodeFactory(&factory);
    CFCPackageNode* package = nullptr;
    Reading reading;
    reading.isRead = reader.Parse(file, &package);
    Tree const tree(package);
    reading.nodes = package != nullptr && !package->version.IsEmpty() ? 1 : 0;
    return reading;
}

Reading readFavourites(TuString const& file) {
    CFCNodeFactory factory;
    Tree const process(factory.Create(eShapeType_Process));
    CFCFavouriteReader reader;
    reader.SetNodeFactory(&factory);
    IFCNode* node = process.get();
    Reading reading;
    reading.isRead = reader.Parse(file, &node);
    reading.nodes = countBelow(node, eShapeType_Process);
    return reading;
}

Reading readWorkflow(TuString const& file) {
    CFCNodeFactory factory;
    CFCProcessDefinitionReader reader;
    reader.SetNodeFactory(&factory);
    IFCNode* node = nullptr;
    Reading reading;
    reading.isRead = reader.Parse(file, &node, 0);
    Tree const tree(node);
    if (node != nullptr)
        reading.nodes = countBelow(node, eShapeType_WorkflowProcess);
    reading.findings = reader.GetFindings().size();
    for (CFCWorkflowFinding const& finding : reader.GetFindings())
        ADD_FAILURE() << finding.kind << ' ' << narrow(finding.place) << ' ' << narrow(finding.element) << ' '
                      << narrow(finding.name) << ' ' << narrow(finding.value);
    return reading;
}

Reading readSchedule(TuString const& file) {
    CFCNodeFactory factory;
    CFCMSPReader reader;
    reader.SetNodeFactory(&factory);
    IFCNode* node = nullptr;
    Reading reading;
    reading.isRead = reader.Parse(file, &node, 0);
    Tree const tree(node);
    if (node != nullptr)
        reading.nodes = countBelow(node, eShapeType_WorkflowProcess);
    reading.findings = reader.GetFindings().size();
    return reading;
}

using Read = std::function<Reading(TuString const&)>;

// By the family that stands behind "xml". What nobody reads has no reader.
std::map<std::string, Read> const& readers() {
    static std::map<std::string, Read> const all = {
        {"apihelp",
         [](TuString const& file) {
             return readInto<CFCAPIHelpReader, CFCProcessList>(file, eShapeType_ProcessList);
         }},
        {"application", nullptr},
        {"datatypes",
         [](TuString const& file) {
             return readInto<CFCDataTypeListReader, CFCDataTypeNode>(file, eShapeType_DataTypeGroup);
         }},
        {"favourites", readFavourites},
        {"filetypes",
         [](TuString const& file) {
             return readInto<CFCFileTypeListReader, CFCDataTypeNode>(file, eShapeType_DataTypeGroup);
         }},
        {"hints", readHints},
        {"list", readList},
        {"manifest", readManifest},
        {"mimetypes",
         [](TuString const& file) {
             return readInto<CFCMimeTypeReader, CFCMimeTypeNode>(file, eShapeType_MimeTypeRoot);
         }},
        {"process", readProcess},
        {"schedule", readSchedule},
        {"workflow", readWorkflow},
        {"workflow-definition", nullptr},
    };
    return all;
}

// Elements and attributes of an example, joined below each other.
struct Used {
    Names elements;
    Names attributes;
};

void use(xercesc::DOMElement* element, Used& used) {
    for (auto* child = flowmere::firstElement(element); child != nullptr; child = flowmere::nextElement(child)) {
        used.elements.insert(narrow(flowmere::WideText(flowmere::tagOf(child))));
        use(child, used);
    }
    auto const* const attributes = element->getAttributes();
    for (XMLSize_t index = 0; index < attributes->getLength(); ++index)
        used.attributes.insert(narrow(flowmere::WideText(attributes->item(index)->getNodeName())));
}

bool isKindName(std::string const& name) {
    auto const kinds = flowmere::nodeKinds();
    return std::any_of(kinds.begin(), kinds.end(), [&](flowmere::NodeKind const& kind) {
        return (kind.readElement != nullptr && narrow(kind.readElement) == name) ||
               (kind.name != nullptr && narrow(kind.name) == name);
    });
}

} // namespace

// --- Names ---------------------------------------------------------------------------------------------------

TEST(Formats, EveryNameOfTheSourcesStandsInATable) {
    EXPECT_THAT(untoldOf(pageText()), IsEmpty());
}

TEST(Formats, EveryRowOfTheTablesHasItsNameAndItsFunctionsInTheSources) {
    EXPECT_THAT(unfoundedOf(pageText()), IsEmpty());
}

// The collector is worth what it finds, so each row is taken away once.
TEST(Formats, EachRowOfAttributesAndWordsIsMissedWhenItIsTakenAway) {
    std::string const page = pageText();
    ASSERT_THAT(untoldOf(page), IsEmpty());
    std::vector<Section> const sections = parsePage(page);
    Names const words = sharedWords(sections);
    int count = 0;
    Faults notMissed;
    for (Section const& section : sections) {
        Sources const& sources = sourcesOf(section);
        for (char const* const table : {"Attribute", "Word"}) {
            for (std::size_t index = 0; index < section.rows(table).size(); ++index) {
                Section less = section;
                less.tables[table].erase(less.tables[table].begin() + static_cast<std::ptrdiff_t>(index));
                Names lessWords = words;
                if (section.isShared)
                    lessWords = namesIn(less.rows("Word"));
                ++count;
                if (untold(less, sources, lessWords).empty())
                    notMissed.push_back(at(section.rows(table)[index]) + section.rows(table)[index].name);
            }
        }
    }
    EXPECT_GT(count, 250);
    EXPECT_THAT(notMissed, IsEmpty());
}

// An element that has a row in tables of attributes alone would be missed, too.
TEST(Formats, EachRowOfElementsIsMissedWhenItIsTakenAway) {
    std::vector<Section> const sections = parsePage(pageText());
    Names const words = sharedWords(sections);
    int count = 0;
    Faults notMissed;
    for (Section const& section : sections) {
        Sources const& sources = sourcesOf(section);
        for (std::size_t index = 0; index < section.rows("Element").size(); ++index) {
            Row const& row = section.rows("Element")[index];
            // Elements of kinds of nodes alone stand in the table of kinds.
            if (!sources.names.contains(row.name))
                continue;
            Section less = section;
            less.tables["Element"].erase(less.tables["Element"].begin() + static_cast<std::ptrdiff_t>(index));
            ++count;
            if (untold(less, sources, words).empty() && unfounded(less, sources).empty())
                notMissed.push_back(at(row) + row.name);
        }
    }
    EXPECT_GT(count, 90);
    EXPECT_THAT(notMissed, IsEmpty());
}

TEST(Formats, ARowWithAnInventedNameOrFunctionIsTold) {
    std::string const page = pageText();
    std::string const row = "| `Undo` | flag | `writeFlags` | `loadFlags` | false |";
    ASSERT_THAT(page, HasSubstr(row));
    auto const with = [&](std::string const& other) {
        std::string changed = page;
        changed.insert(changed.find(row), other + "\n");
        return unfoundedOf(changed);
    };
    EXPECT_THAT(with("| `Redo` | flag | `writeFlags` | `loadFlags` | false |"),
                ElementsAre(HasSubstr("loadFlags has no Redo"), HasSubstr("writeFlags has no Redo")));
    EXPECT_THAT(with("| `Undo` | flag | `writeFlag` | – | |"), ElementsAre(HasSubstr("there is no writeFlag")));
    EXPECT_THAT(with("| `Undo` | flag | – | – | |"), ElementsAre(HasSubstr("is neither written nor read")));
}

TEST(Formats, EverySourceOfTheReadersAndWritersBelongsToASection) {
    Names told;
    for (Section const& section : parsePage(pageText()))
        told.insert(section.sources.begin(), section.sources.end());
    Faults faults;
    int count = 0;
    for (char const* const folder : {"persistence", "workflow", "xml"}) {
        for (auto const& entry : fs::directory_iterator(top() / "flowmere" / folder)) {
            Sources sources;
            sources.add(entry.path().filename().string(), readFile(entry.path()));
            std::string const file = "flowmere/" + std::string(folder) + "/" + entry.path().filename().string();
            count += sources.names.empty() ? 0 : 1;
            if (!sources.names.empty() && !told.contains(file))
                faults.push_back(file + ": " + *sources.names.begin());
        }
    }
    EXPECT_GT(count, 20);
    EXPECT_THAT(faults, IsEmpty());
}

TEST(Formats, TheKindsAreThoseOfTheLibrary) {
    auto const cell = [](std::vector<wchar_t const*> const& names) {
        std::string text;
        for (wchar_t const* const name : names)
            if (name != nullptr)
                text += (text.empty() ? "`" : " `") + narrow(name) + "`";
        return text.empty() ? std::string("–") : text;
    };
    std::vector<std::vector<std::string>> expected;
    for (flowmere::NodeKind const& kind : flowmere::nodeKinds()) {
        std::vector<std::string> row = {std::to_string(kind.code),
                                        cell({kind.element}),
                                        cell({kind.readElement}),
                                        cell({kind.shape}),
                                        cell({kind.readShape, kind.oldShape}),
                                        cell({kind.name})};
        if (std::any_of(row.begin() + 1, row.end(), [](std::string const& text) { return text != "–"; }))
            expected.push_back(std::move(row));
    }
    std::vector<Section> const sections = parsePage(pageText());
    std::vector<std::vector<std::string>> told;
    for (Row const& row : sectionTitled(sections, "Node kinds").rows("Code"))
        told.push_back(row.cells);
    ASSERT_GT(expected.size(), 30U);
    EXPECT_EQ(told, expected);
}

TEST(Formats, TheEnumerationsAreThoseOfTheLibrary) {
    auto const namesOf = []<typename Enumeration>(Enumeration) {
        std::vector<std::string> names;
        for (int value = 0;; ++value) {
            std::string const name = narrow(CFCEnumTranslator::EnumToString(static_cast<Enumeration>(value)));
            if (name.empty())
                return names;
            names.push_back(name);
        }
    };
    std::map<std::string, std::vector<std::string>> const expected = {
        {"EConnectionType", namesOf(EConnectionType{})},
        {"EDataType", namesOf(EDataType{})},
        {"EExecutionStateType", namesOf(EExecutionStateType{})},
        {"EProjectType", namesOf(EProjectType{})},
        {"EScopeType", namesOf(EScopeType{})},
        {"EScriptType", namesOf(EScriptType{})},
        {"EStatusType", namesOf(EStatusType{})},
    };
    std::vector<Section> const sections = parsePage(pageText());
    std::map<std::string, std::vector<std::string>> told;
    for (Row const& row : sectionTitled(sections, "Enumerations").rows("Enumeration"))
        told[row.name] = quotedIn(row.cells.at(1));
    EXPECT_EQ(told, expected);
}

// --- Examples ------------------------------------------------------------------------------------------------

TEST(Formats, EveryExampleIsReadByTheReaderOfItsFamily) {
    EnvironmentGuard const environment;
    fs::path const scratch = fs::path(testing::TempDir()) / "formats";
    std::set<std::string> families;
    for (Section const& section : parsePage(pageText())) {
        // The definition of a workflow needs the other files of its folder.
        for (Example const& example : section.examples)
            if (example.language == "xml")
                writeFile(scratch / (example.file.empty() ? example.family + ".xml" : example.file), example.text);
    }
    for (Section const& section : parsePage(pageText())) {
        for (Example const& example : section.examples) {
            if (example.language != "xml" || (!example.file.empty() && example.nodes == 0))
                continue;
            SCOPED_TRACE("line " + std::to_string(example.line) + ": " + example.family);
            families.insert(example.family);
            ASSERT_TRUE(readers().contains(example.family));
            Read const& read = readers().at(example.family);
            if (!read)
                continue;
            std::string const file = example.file.empty() ? example.family + ".xml" : example.file;
            Reading const reading = read(wide(scratch / file));
            EXPECT_TRUE(reading.isRead);
            EXPECT_GT(example.nodes, 0);
            EXPECT_EQ(reading.nodes, example.nodes);
            EXPECT_EQ(reading.findings, 0U);
        }
    }
    EXPECT_EQ(families.size(), readers().size());
    fs::remove_all(scratch);
}

TEST(Formats, ExamplesHaveNothingThatTheTablesDoNot) {
    flowmere::XmlPlatform const platform;
    std::vector<Section> const sections = parsePage(pageText());
    Names common;
    for (Section const& section : sections) {
        if (section.isShared) {
            common.merge(namesIn(section.rows("Attribute")));
            common.merge(namesIn(section.rows("Word")));
        }
    }
    int count = 0;
    for (Section const& section : sections) {
        Names const elements = namesIn(section.rows("Element"));
        Names const attributes = namesIn(section.rows("Attribute"));
        for (Example const& example : section.examples) {
            if (example.language != "xml")
                continue;
            SCOPED_TRACE("line " + std::to_string(example.line));
            flowmere::XmlDocumentPointer const document = flowmere::parseXmlBytes(example.text);
            ASSERT_NE(document, nullptr);
            Used used;
            use(document->getDocumentElement(), used);
            ASSERT_FALSE(used.elements.empty());
            ++count;
            for (std::string const& element : used.elements)
                EXPECT_TRUE(elements.contains(element) || isKindName(element)) << element;
            for (std::string const& attribute : used.attributes)
                EXPECT_TRUE(attributes.contains(attribute) || common.contains(attribute)) << attribute;
        }
    }
    EXPECT_GT(count, 12);
}

// --- Numbers and links ---------------------------------------------------------------------------------------

TEST(Formats, TheBoundsAreThoseOfTheSources) {
    struct Bound {
        char const* file;
        char const* constant;
        char const* told; // "#" stands for the number
    };
    static constexpr Bound kBounds[] = {
        {"xml/XmlPlatform.h", "kMaxElementDepth", "| depth of elements | # |"},
        {"xml/XmlPlatform.cpp", "kMaxAttributes", "| attributes of an element | # |"},
        {"xml/XmlPlatform.cpp", "kMaxNames", "| different names | # |"},
        {"xml/XmlPlatform.cpp", "kMaxEntityExpansions", "| expansions of entities | #,"},
        {"xml/XmlPlatform.cpp", "kBytesPerEntityExpansion", "one for each # bytes of the file"},
        {"xml/XmlPlatform.cpp", "kMaxEntityLength", "| length of an entity | # characters"},
        {"xml/XmlPlatform.cpp", "kMaxEntityLengthBesideAttributeLists", "; # where the document type lists"},
        {"xml/XmlPlatform.cpp", "kMaxParameterEntityLength", ", # for a parameter entity"},
        {"xml/XmlPlatform.cpp", "kVolumePerByte", "and # more for each byte of the file"},
        {"xml/XmlPlatform.cpp", "kMemoryPerByte", "and # bytes more for each byte of the file"},
        {"persistence/FCReader.cpp", "kMaxOpenLinks", "at most # deep"},
        {"persistence/FCReader.cpp", "kMaxLinks", "and # in one read"},
        {"persistence/FCReader.cpp", "kOldStartHandle", "Below 1 the grips are # and"},
        {"workflow/FCProcessDefinitionReader.cpp", "kMaxOpenFiles", "At most # folders are open"},
        {"workflow/FCProcessDefinitionReader.cpp", "kMaxRepeats", ", # are read again"},
        {"workflow/FCProcessDefinitionReader.cpp", "kMaxLevels", "nest up to # levels"},
        {"workflow/FCProcessDefinitionReader.cpp", "kDefaultInport",
         "| `inport` | integer, the grip at the start | "
         "`WriteTransitions` | `loadTransition` | # |"},
        {"workflow/FCProcessDefinitionReader.cpp", "kDefaultOutport",
         "| `outport` | integer, the grip at the end | "
         "`WriteTransitions` | `loadTransition` | # |"},
        {"model/FCActionData.h", "kPointCount", "and so does the #th"},
    };
    // Lines of a paragraph are of no matter.
    std::string page = pageText();
    std::replace(page.begin(), page.end(), '\n', ' ');
    for (Bound const& bound : kBounds) {
        SCOPED_TRACE(bound.constant);
        std::string const source = readFile(top() / "flowmere" / bound.file);
        std::smatch match;
        ASSERT_TRUE(std::regex_search(source, match,
                                      std::regex(std::string(bound.constant) + R"re( = (0x[0-9A-Fa-f]+|[0-9]+);)re")));
        std::string told = bound.told;
        told.replace(told.find('#'), 1, std::to_string(std::stol(match[1].str(), nullptr, 0)));
        EXPECT_NE(page.find(told), std::string::npos) << told;
    }
}

TEST(Formats, LinksInsideThePageLeadToItsSections) {
    std::string const page = pageText();
    Names anchors;
    for (Section const& section : parsePage(page)) {
        std::string anchor;
        for (char const c : section.title)
            if (c == ' ')
                anchor += '-';
            else if (std::isalnum(static_cast<unsigned char>(c)) != 0)
                anchor += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        anchors.insert(anchor);
    }
    std::regex const form(R"re(\]\(#([^)]*)\))re");
    int count = 0;
    for (std::sregex_iterator match(page.begin(), page.end(), form), end; match != end; ++match, ++count)
        EXPECT_THAT(anchors, Contains((*match)[1].str()));
    EXPECT_GT(count, 20);
}

// --- The journal ---------------------------------------------------------------------------------------------

namespace {

Names matchesOf(std::string const& text, std::vector<std::string> const& forms) {
    Names names;
    for (std::string const& form : forms) {
        std::regex const pattern(form);
        for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end; ++match)
            for (std::size_t group = 1; group < match->size(); ++group)
                if ((*match)[group].matched)
                    names.insert((*match)[group].str());
    }
    return names;
}

} // namespace

TEST(Formats, EventsAndKeysOfTheJournalAreThoseOfTheProgram) {
    std::vector<Section> const sections = parsePage(pageText());
    Section const& section = sectionTitled(sections, "Run journals");
    std::string const source = withoutComments(readFile(top() / section.journal));
    Names const events = matchesOf(source, {R"re(\{"event", "(\w+)"\})re", R"re(kind [!=]= "(\w+)")re",
                                            R"re(\{"event", [^{}]*\? "(\w+)" : "(\w+)"\})re"});
    EXPECT_EQ(namesIn(section.rows("Event")), events);
    Names const keys =
        matchesOf(source, {R"re((?:textAt|numberAt|member)\(\w+, "(\w+)"\))re", R"re(contains\("(\w+)"\))re",
                           R"re(\["(\w+)"\])re", R"re([{,]\s*\{+"(\w+)", )re", R"re(= \{+"(\w+)", )re",
                           R"re(put\(\{\{"(\w+)", )re", R"re(pair\("(\w+)", )re"});
    EXPECT_EQ(namesIn(section.rows("Key")), keys);
}

TEST(Formats, TheExampleOfAJournalHasItsEventsAndKeysAlone) {
    std::vector<Section> const sections = parsePage(pageText());
    Section const& section = sectionTitled(sections, "Run journals");
    Names const events = namesIn(section.rows("Event"));
    Names const keys = namesIn(section.rows("Key"));
    ASSERT_EQ(section.examples.size(), 1U);
    std::istringstream lines(section.examples.front().text);
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        SCOPED_TRACE(line);
        Names const event = matchesOf(line, {R"re(^\{"event":"(\w+)".*\}$)re"});
        ASSERT_EQ(event.size(), 1U);
        EXPECT_THAT(events, Contains(*event.begin()));
        std::string const plain = std::regex_replace(line, std::regex(R"re("outputs":\{[^}]*\})re"), R"("outputs":0)");
        for (std::string const& key : matchesOf(plain, {R"re("(\w+)":)re"}))
            EXPECT_THAT(keys, Contains(key));
    }
    EXPECT_GT(count, 3);
}
