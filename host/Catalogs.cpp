#include "host/Catalogs.h"

#include "host/Tree.h"
#include "host/XmlFault.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace flowmere::host {

namespace {

// A text on one line is cut behind so many characters; JSON has the whole.
constexpr std::size_t kShownOfText = 100;

bool isInside(char character) {
    return (static_cast<unsigned char>(character) & 0xC0U) == 0x80U;
}

std::size_t charactersOf(std::string_view text) {
    return text.size() - static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isInside));
}

std::string shortLine(std::string const& whole) {
    std::string const text = oneLine(whole);
    std::size_t const count = charactersOf(text);
    if (count <= kShownOfText)
        return text;
    std::size_t end = 0;
    for (std::size_t shown = 0; shown < kShownOfText; ++shown)
        for (++end; end < text.size() && isInside(text[end]);)
            ++end;
    return text.substr(0, end) + fmt::format("... ({} characters)", count);
}

std::string nameOf(IFCNode& node) {
    std::string const caption = utf8(node.GetNodeCaption());
    return caption.empty() ? "(nameless)" : oneLine(caption);
}

std::string marginOf(std::size_t level) {
    return std::string(2 * level, ' ');
}

// In the order of the file: new children stand in front.
std::vector<IFCNode*> childrenOf(IFCNode& node) {
    std::vector<IFCNode*> children;
    for (IFCNode* child = node.GetChild(); child != nullptr; child = child->GetNext())
        children.push_back(child);
    std::reverse(children.begin(), children.end());
    return children;
}

// Calls visit(node, level) for all nodes below `top`, a node before what is in it.
template <typename Visit>
void forEachBelow(IFCNode& top, Visit const& visit) {
    std::vector<std::pair<IFCNode*, std::size_t>> open;
    auto const enter = [&](IFCNode& node, std::size_t level) {
        for (IFCNode* child = node.GetChild(); child != nullptr; child = child->GetNext())
            open.emplace_back(child, level);
    };
    enter(top, 0);
    while (!open.empty()) {
        auto const [node, level] = open.back();
        open.pop_back();
        visit(*node, level);
        enter(*node, level + 1);
    }
}

// "2 groups, 1 data type", those without any left out; `none` when all are.
std::string countsOf(std::initializer_list<std::pair<std::size_t, std::string_view>> counts, std::string_view none) {
    std::string text;
    for (auto const& [count, name] : counts)
        if (count != 0)
            text += (text.empty() ? "" : ", ") + counted(count, name);
    return text.empty() ? "no " + std::string(none) : text;
}

// Columns below each other, two blanks apart, nothing behind the last.
std::string tableOf(std::vector<std::vector<std::string>> const& rows) {
    std::vector<std::size_t> widths;
    for (auto const& row : rows)
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths.resize(std::max(widths.size(), column + 1));
            widths[column] = std::max(widths[column], charactersOf(row[column]));
        }
    std::string text;
    for (auto const& row : rows) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column)
            line += row[column] + std::string(widths[column] - charactersOf(row[column]) + 2, ' ');
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    }
    return text;
}

// Data types

struct CodeText {
    char const* name;
    TuString NodeCode::*text;
};

constexpr std::array<CodeText, 3> kGetCodes{
    {{"JS", &NodeCode::getCodeJS}, {"Jython", &NodeCode::getCodeJython}, {"Python", &NodeCode::getCodePython}}};
constexpr std::array<CodeText, 3> kSetCodes{
    {{"JS", &NodeCode::setCodeJS}, {"Jython", &NodeCode::setCodeJython}, {"Python", &NodeCode::setCodePython}}};

Json jsonOf(CFCFileTypeNode& type) {
    return {{"name", utf8(type.GetFileTypeName())},
            {"id", type.GetFileTypeID()},
            {"extension", utf8(type.GetFileTypeExtension())},
            {"mimeType", utf8(type.GetMimeType())},
            {"description", utf8(type.GetFileTypeDescription())},
            {"modified", type.IsModified()},
            {"deleted", type.IsDeleted()}};
}

std::string marksOf(CFCFileTypeNode& type) {
    std::string marks;
    for (auto const& [isSet, mark] : {std::pair(type.IsModified(), "modified"), std::pair(type.IsDeleted(), "deleted")})
        if (isSet)
            marks += (marks.empty() ? "" : ", ") + std::string(mark);
    return marks;
}

class DataTypes final : public Catalog {
public:
    bool read(TuString const& file) override {
        CFCDataTypeListReader reader;
        reader.SetNodeFactory(&m_factory);
        return reader.Parse(file, m_list);
    }

    bool isEmpty() const override { return m_list->GetChild() == nullptr; }

    std::string summary() const override {
        std::size_t groups = 0;
        std::size_t types = 0;
        std::size_t files = 0;
        forEachBelow(*m_list, [&](IFCNode& node, std::size_t) {
            ++(isFileType(node) ? files : node.GetNodeType() == eShapeType_DataType ? types : groups);
        });
        return countsOf({{groups, "group"}, {types, "data type"}, {files, "file type"}}, "data types");
    }

    std::string text() const override {
        std::string text;
        forEachBelow(*m_list, [&](IFCNode& node, std::size_t level) {
            text += marginOf(level) + nameOf(node) + ": " + kindOf(node);
            if (auto* const file = dynamic_cast<CFCFileTypeNode*>(&node))
                text += factsOf(*file) + "\n";
            else if (auto* const type = dynamic_cast<CFCDataTypeNode*>(&node))
                text += factsOf(*type) + "\n" + codeOf(*type, marginOf(level) + "    ");
        });
        return text;
    }

    Json json() const override { return {{"types", childrenJson(*m_list)}}; }

    // The reader takes the file types along, and says nothing of those that it cannot read.
    std::vector<std::string> leftOut() const override {
        bool asksForFiles = false;
        forEachBelow(*m_list, [&](IFCNode& node, std::size_t) {
            auto* const type = dynamic_cast<CFCDataTypeNode*>(&node);
            asksForFiles = asksForFiles || (type != nullptr && TuString(type->GetType()) == L"CAEFILE");
        });
        std::vector<std::string> texts;
        for (wchar_t const* const path : {CFCEnvironment::GetFileTypesPath(), CFCEnvironment::GetUserFileTypesPath()}) {
            CTXMLBaseReader reader;
            if (asksForFiles && CFCEnvironment::IsFileExist(path) && !reader.Initialize(path)) {
                std::string const file = utf8(path);
                std::string const text =
                    "the file types are left out: " +
                    std::string(xmlFailure(file.substr(file.find_last_of('\\') + 1), reader).what())
                        .substr(std::string_view("flowmere: ").size());
                if (texts.empty() || texts.back() != text)
                    texts.push_back(text);
            }
        }
        return texts;
    }

private:
    static bool isFileType(IFCNode& node) { return node.GetNodeType() == eShapeType_FileType; }

    static std::string kindOf(IFCNode& node) {
        switch (node.GetNodeType()) {
        case eShapeType_DataTypeGroup:
            return "group";
        case eShapeType_DataTypeSubGroup:
            return "sub-group";
        case eShapeType_FileType:
            return "file type";
        default:
            return "data type";
        }
    }

    static std::string factsOf(CFCFileTypeNode& file) {
        std::string facts = fmt::format(" {}", file.GetFileTypeID());
        for (std::string const& fact : {utf8(file.GetFileTypeExtension()), utf8(file.GetMimeType()),
                                        utf8(file.GetFileTypeDescription()), marksOf(file)})
            if (!fact.empty())
                facts += ", " + shortLine(fact);
        return facts;
    }

    static std::string factsOf(CFCDataTypeNode& type) {
        std::string facts;
        if (std::string const word = utf8(type.GetType()); !word.empty())
            facts += ", type " + oneLine(word);
        if (std::string const scope = utf8(type.GetScope()); !scope.empty())
            facts += ", scope " + oneLine(scope);
        return facts;
    }

    static std::string codeOf(CFCDataTypeNode& type, std::string const& margin) {
        std::string text;
        NodeCode const* const record = type.GetCodeNode();
        if (record == nullptr)
            return text;
        for (auto const& [codes, use] : {std::pair(&kGetCodes, "get"), std::pair(&kSetCodes, "set")})
            for (CodeText const& code : *codes)
                if (TuString const& lines = record->*code.text; !lines.IsEmpty())
                    text += fmt::format("{}{} {}: {}\n", margin, use, code.name, shortLine(utf8(lines)));
        return text;
    }

    static Json codesJson(CFCDataTypeNode& type, std::array<CodeText, 3> const& codes) {
        Json out = Json::object();
        if (NodeCode const* const record = type.GetCodeNode())
            for (CodeText const& code : codes)
                if (TuString const& text = record->*code.text; !text.IsEmpty())
                    out[code.name] = utf8(text);
        return out;
    }

    static Json childrenJson(IFCNode& node) {
        Json out = Json::array();
        for (IFCNode* const child : childrenOf(node)) {
            Json entry = {{"name", utf8(child->GetNodeCaption())}, {"kind", kindOf(*child)}};
            if (auto* const file = dynamic_cast<CFCFileTypeNode*>(child)) {
                entry.update(jsonOf(*file));
            } else if (auto* const type = dynamic_cast<CFCDataTypeNode*>(child)) {
                entry["type"] = utf8(type->GetType());
                entry["scope"] = utf8(type->GetScope());
                entry["get"] = codesJson(*type, kGetCodes);
                entry["set"] = codesJson(*type, kSetCodes);
                entry["types"] = childrenJson(*child);
            }
            out.push_back(std::move(entry));
        }
        return out;
    }

    KeepingFactory m_factory;
    CFCDataTypeNode* const m_list = dynamic_cast<CFCDataTypeNode*>(m_factory.Create(eShapeType_DataTypeGroup));
};

// File types

class FileTypes final : public Catalog {
public:
    bool read(TuString const& file) override {
        CFCFileTypeListReader reader;
        reader.SetNodeFactory(&m_factory);
        return reader.Parse(file, m_list);
    }

    bool isEmpty() const override { return m_list->GetChild() == nullptr; }

    std::string summary() const override { return countsOf({{childrenOf(*m_list).size(), "file type"}}, "file types"); }

    std::string text() const override {
        std::vector<std::vector<std::string>> rows;
        for (IFCNode* const child : childrenOf(*m_list)) {
            auto* const type = dynamic_cast<CFCFileTypeNode*>(child);
            if (type == nullptr)
                continue;
            std::string const marks = marksOf(*type);
            rows.push_back({nameOf(*child), std::to_string(type->GetFileTypeID()),
                            shortLine(utf8(type->GetFileTypeExtension())), shortLine(utf8(type->GetMimeType())),
                            shortLine(utf8(type->GetFileTypeDescription())), marks.empty() ? "" : "(" + marks + ")"});
        }
        return tableOf(rows);
    }

    Json json() const override {
        Json types = Json::array();
        for (IFCNode* const child : childrenOf(*m_list))
            if (auto* const type = dynamic_cast<CFCFileTypeNode*>(child))
                types.push_back(jsonOf(*type));
        return {{"types", std::move(types)}};
    }

private:
    KeepingFactory m_factory;
    CFCDataTypeNode* const m_list = dynamic_cast<CFCDataTypeNode*>(m_factory.Create(eShapeType_DataTypeGroup));
};

// MIME types

class MimeTypes final : public Catalog {
public:
    bool read(TuString const& file) override {
        CFCMimeTypeReader reader;
        reader.SetNodeFactory(&m_factory);
        return reader.Parse(file, m_list);
    }

    bool isEmpty() const override { return m_list->GetChild() == nullptr; }

    std::string summary() const override { return countsOf({{childrenOf(*m_list).size(), "MIME type"}}, "MIME types"); }

    std::string text() const override {
        std::vector<std::vector<std::string>> rows;
        for (IFCNode* const child : childrenOf(*m_list))
            if (auto* const type = dynamic_cast<CFCMimeTypeNode*>(child))
                rows.push_back({shortLine(utf8(type->GetContentType())), shortLine(utf8(child->GetNodeDescription()))});
        return tableOf(rows);
    }

    Json json() const override {
        Json types = Json::array();
        for (IFCNode* const child : childrenOf(*m_list))
            if (auto* const type = dynamic_cast<CFCMimeTypeNode*>(child))
                types.push_back({{"contentType", utf8(type->GetContentType())},
                                 {"description", utf8(child->GetNodeDescription())}});
        return {{"types", std::move(types)}};
    }

private:
    KeepingFactory m_factory;
    CFCMimeTypeNode* const m_list = dynamic_cast<CFCMimeTypeNode*>(m_factory.Create(eShapeType_MimeTypeRoot));
};

// Hints

class Hints final : public Catalog {
public:
    bool read(TuString const& file) override { return CFCHintsReader().Parse(file); }

    bool isEmpty() const override { return CFCHintsReader::BlockHints().empty(); }

    std::string summary() const override { return countsOf({{CFCHintsReader::BlockHints().size(), "kind"}}, "hints"); }

    std::string text() const override {
        std::string text;
        for (auto const& [type, hint] : CFCHintsReader::BlockHints()) {
            text += fmt::format("{} ({})\n", kindName(type), type);
            for (auto const& [use, words] : {std::pair("block", &hint), std::pair("action", &actionOf(type))})
                if (!words->IsEmpty())
                    text += fmt::format("    {}: {}\n", use, oneLine(utf8(*words)));
        }
        return text;
    }

    Json json() const override {
        Json hints = Json::array();
        for (auto const& [type, hint] : CFCHintsReader::BlockHints())
            hints.push_back(
                {{"kind", kindName(type)}, {"code", type}, {"block", utf8(hint)}, {"action", utf8(actionOf(type))}});
        return {{"hints", std::move(hints)}};
    }

private:
    static TuString const& actionOf(int type) { return CFCHintsReader::ActionHints()[type]; }
};

// API help

class APIHelp final : public Catalog {
public:
    bool read(TuString const& file) override {
        CFCAPIHelpReader reader;
        reader.SetNodeFactory(&m_factory);
        return reader.Parse(file, m_list);
    }

    bool isEmpty() const override { return m_list->GetChild() == nullptr; }

    std::string summary() const override {
        std::size_t processes = 0;
        std::size_t modules = 0;
        std::size_t parts = 0;
        forEachBelow(*m_list, [&](IFCNode& node, std::size_t) {
            int const type = node.GetNodeType();
            ++(type == eShapeType_FileNode ? processes : type == eShapeType_HelpModule ? modules : parts);
        });
        return "\"" + nameOf(*m_list) + "\", " +
               countsOf({{processes, "process"}, {modules, "module"}, {parts, "sub-module"}}, "modules");
    }

    std::string text() const override {
        std::string text;
        forEachBelow(*m_list, [&](IFCNode& node, std::size_t level) {
            text += marginOf(level) + nameOf(node) + ": " + kindOf(node);
            if (std::string const file = utf8(node.GetItemFilePath()); !file.empty())
                text += ", file " + oneLine(file);
            text += "\n" + paragraphOf(helpOf(node), marginOf(level) + "    ");
        });
        return text;
    }

    Json json() const override {
        return {{"name", utf8(m_list->GetNodeCaption())}, {"modules", childrenJson(*m_list)}};
    }

private:
    static std::string kindOf(IFCNode& node) {
        switch (node.GetNodeType()) {
        case eShapeType_FileNode:
            return "process";
        case eShapeType_HelpModule:
            return "module";
        default:
            return "sub-module";
        }
    }

    // Only sub-modules have one.
    static std::string helpOf(IFCNode& node) {
        auto* const help = dynamic_cast<CFCAPIHelpNode*>(&node);
        return help == nullptr ? std::string() : utf8(help->GetNodeText());
    }

    // The lines of a text below each other, without those that are blank at its ends and without the blanks that all
    // have in front.
    static std::string paragraphOf(std::string const& text, std::string const& margin) {
        std::vector<std::string> lines;
        for (std::size_t at = 0; at <= text.size();) {
            std::size_t const end = std::min(text.find('\n', at), text.size());
            std::string line = text.substr(at, end - at);
            line.erase(line.find_last_not_of(" \t\r") + 1);
            lines.push_back(line);
            at = end + 1;
        }
        while (!lines.empty() && lines.back().empty())
            lines.pop_back();
        lines.erase(lines.begin(),
                    std::find_if(lines.begin(), lines.end(), [](std::string const& line) { return !line.empty(); }));
        std::size_t indent = std::string::npos;
        for (std::size_t index = lines.size() > 1 && lines.front().find_first_not_of(" \t") == 0 ? 1 : 0;
             index < lines.size(); ++index)
            if (!lines[index].empty())
                indent = std::min(indent, lines[index].find_first_not_of(" \t"));
        std::string result;
        for (std::string const& line : lines) {
            std::size_t const own = std::min(line.find_first_not_of(" \t"), indent);
            result += line.empty() ? "\n" : margin + oneLine(line.substr(own)) + "\n";
        }
        return result;
    }

    static Json childrenJson(IFCNode& node) {
        Json out = Json::array();
        for (IFCNode* const child : childrenOf(node)) {
            Json entry = {{"name", utf8(child->GetNodeCaption())},
                          {"kind", kindOf(*child)},
                          {"file", utf8(child->GetItemFilePath())}};
            if (dynamic_cast<CFCAPIHelpNode*>(child) != nullptr)
                entry["text"] = helpOf(*child);
            entry["modules"] = childrenJson(*child);
            out.push_back(std::move(entry));
        }
        return out;
    }

    KeepingFactory m_factory;
    CFCProcessList* const m_list = dynamic_cast<CFCProcessList*>(m_factory.Create(eShapeType_ProcessList));
};

// Manifest

class Manifest final : public Catalog {
public:
    bool read(TuString const& file) override {
        CFCManifestReader reader;
        reader.SetNodeFactory(&m_factory);
        return reader.Parse(file, &m_package);
    }

    bool isEmpty() const override { return m_package == nullptr; }

    std::string summary() const override { return isEmpty() ? "no package" : "1 package"; }

    std::string text() const override {
        std::vector<std::vector<std::string>> rows;
        for (Field const& field : kFields)
            if (m_package != nullptr)
                rows.push_back({field.title, oneLine(utf8(m_package->*field.text))});
        return tableOf(rows);
    }

    Json json() const override {
        Json package;
        for (Field const& field : kFields)
            if (m_package != nullptr)
                package[field.name] = utf8(m_package->*field.text);
        return {{"package", std::move(package)}};
    }

    std::vector<std::string> leftOut() const override {
        std::size_t const made = m_factory.tops().size();
        if (made < 2)
            return {};
        return {counted(made - 1, "package") + " in front of the last one or inside it left out"};
    }

private:
    struct Field {
        char const* title;
        char const* name;
        TuString CFCPackageNode::*text;
    };
    static constexpr Field kFields[] = {{"version", "version", &CFCPackageNode::version},
                                        {"build", "build", &CFCPackageNode::build},
                                        {"release date", "releaseDate", &CFCPackageNode::releaseDate},
                                        {"release number", "releaseNumber", &CFCPackageNode::releaseNumber},
                                        {"path", "path", &CFCPackageNode::path}};

    KeepingFactory m_factory;
    CFCPackageNode* m_package = nullptr;
};

// Favourites

class Favourites final : public Catalog {
public:
    bool read(TuString const& file) override {
        CFCFavouriteReader reader;
        reader.SetNodeFactory(&m_factory);
        IFCNode* node = m_process;
        return reader.Parse(file, &node);
    }

    bool isEmpty() const override {
        // The two folders of a process are there without any file.
        std::size_t count = 0;
        forEachBelow(*m_process, [&](IFCNode&, std::size_t) { ++count; });
        return count == 2 && leftOut().empty();
    }

    std::string summary() const override {
        std::size_t documents = 0;
        std::size_t folders = 0;
        forEachBelow(*m_process, [&](IFCNode& node, std::size_t) {
            int const type = node.GetNodeType();
            documents += type == eShapeType_Document ? 1U : 0U;
            folders += type == eShapeType_Folder || type == eShapeType_CustomFolder ? 1U : 0U;
        });
        return countsOf({{folders, "folder"}, {documents, "document"}}, "favourites");
    }

    std::string text() const override {
        std::string text;
        forEachBelow(*m_process, [&](IFCNode& node, std::size_t level) {
            text += marginOf(level) + nameOf(node) + ": " + kindOf(node);
            if (auto* const document = dynamic_cast<CFCDocumentNode*>(&node))
                text += fmt::format(", type {}", document->GetDocType());
            text += "\n";
        });
        return text;
    }

    Json json() const override {
        Json homeless = Json::array();
        for (CFCDocumentNode* const document : homelessDocuments())
            homeless.push_back(jsonOf(*document));
        return {{"folders", childrenJson(*m_process)}, {"withoutFolder", std::move(homeless)}};
    }

    std::vector<std::string> leftOut() const override {
        std::vector<std::string> texts;
        for (CFCDocumentNode* const document : homelessDocuments())
            texts.push_back(nameOf(*document) + ": there is no folder for the document");
        return texts;
    }

private:
    std::vector<CFCDocumentNode*> homelessDocuments() const {
        std::vector<CFCDocumentNode*> documents;
        for (IFCNode* const node : m_factory.tops())
            if (auto* const document = dynamic_cast<CFCDocumentNode*>(node))
                documents.push_back(document);
        return documents;
    }

    static std::string kindOf(IFCNode& node) {
        switch (node.GetNodeType()) {
        case eShapeType_Favourites:
            return "favourites";
        case eShapeType_History:
            return "history";
        case eShapeType_CustomFolder:
            return "custom folder";
        case eShapeType_Document:
            return "document";
        default:
            return "folder";
        }
    }

    static Json jsonOf(IFCNode& node) {
        Json out = {{"name", utf8(node.GetNodeCaption())}, {"kind", kindOf(node)}};
        if (auto* const document = dynamic_cast<CFCDocumentNode*>(&node)) {
            out["opened"] = document->IsOpened();
            out["type"] = document->GetDocType();
        } else {
            out["entries"] = childrenJson(node);
        }
        return out;
    }

    static Json childrenJson(IFCNode& node) {
        Json out = Json::array();
        for (IFCNode* const child : childrenOf(node))
            out.push_back(jsonOf(*child));
        return out;
    }

    KeepingFactory m_factory;
    IFCNode* const m_process = m_factory.Create(eShapeType_Process);
};

template <typename Kind>
std::unique_ptr<Catalog> make() {
    return std::make_unique<Kind>();
}

} // namespace

KeepingFactory::~KeepingFactory() {
    for (IFCNode* const node : tops())
        CFCNodeHelper::DestroyTree(node);
}

IFCNode* KeepingFactory::Create(int typeCode) {
    IFCNode* const node = CFCNodeFactory::Create(typeCode);
    if (node != nullptr)
        m_handles.push_back(node->GetNodeHandle());
    return node;
}

std::vector<IFCNode*> KeepingFactory::tops() const {
    std::vector<IFCNode*> nodes;
    for (int const handle : m_handles)
        if (IFCNode* const node = CFCNodeManager::GetNode(handle); node != nullptr && node->GetParentNode() == nullptr)
            nodes.push_back(node);
    return nodes;
}

std::vector<CatalogKind> const& catalogKinds() {
    using Environment = CFCEnvironment;
    static std::vector<CatalogKind> const kinds{
        {.name = "types",
         .content = "data types",
         .help = "The data types of variables, with their groups and their code",
         .example = "--base /opt/processes",
         .commonPath = Environment::GetDataTypeFilePath,
         .takesUser = true, // for the file types among them
         .roots = {"DataTypes"},
         .make = make<DataTypes>},
        {.name = "files",
         .content = "file types",
         .help = "The file types: the common ones, and those of the user laid over them",
         .example = "--base /opt/processes --user ~/processes",
         .commonPath = Environment::GetFileTypesPath,
         .takesUser = true,
         .userPath = Environment::GetUserFileTypesPath,
         .roots = {"FILETYPES"},
         .make = make<FileTypes>},
        {.name = "mime",
         .content = "MIME types",
         .help = "The MIME types: the common ones, and behind them those of the user",
         .example = "MimeTypes.xml",
         .commonPath = Environment::GetMimeTypesPath,
         .takesUser = true,
         .userPath = Environment::GetUserMimeTypesPath,
         .roots = {"MIMETYPES", "MimeTypes"},
         .make = make<MimeTypes>},
        {.name = "hints",
         .content = "hints",
         .help = "The hints on each kind of block, and on what it does",
         .example = "--base /opt/processes",
         .commonPath = Environment::GetHintsFilePath,
         .roots = {"HINTS", "Hints"},
         .make = make<Hints>},
        {.name = "help",
         .content = "help texts",
         .help = "The modules that scripts can use, with their help texts",
         .example = "APIHelp.xml --json",
         .commonPath = Environment::GetAPIHelpFilePath,
         .roots = {"PROCESS_LST", "Processes"},
         .make = make<APIHelp>},
        {.name = "manifest",
         .content = "package",
         .help = "What the manifest says of its package",
         .example = "Manifest.mf",
         .commonPath = Environment::GetManifestFilePath,
         .roots = {},
         .make = make<Manifest>},
        {.name = "favourites",
         .content = "favourites",
         .help = "A user's favourites: folders, and the documents in them that are opened",
         .example = "favourites.xml",
         .roots = {"Process"},
         .make = make<Favourites>},
    };
    return kinds;
}

} // namespace flowmere::host
