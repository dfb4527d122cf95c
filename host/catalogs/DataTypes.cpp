#include "host/catalogs/FileTypeWords.h"
#include "host/catalogs/Kinds.h"
#include "host/catalogs/Words.h"
#include "host/files/InputFile.h"
#include "host/files/XmlFault.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace flowmere::host::catalogs {

namespace {

struct CodeText {
    char const* name;
    TuString NodeCode::*text;
};

constexpr std::array<CodeText, 3> kGetCodes{
    {{"JS", &NodeCode::getCodeJS}, {"Jython", &NodeCode::getCodeJython}, {"Python", &NodeCode::getCodePython}}};
constexpr std::array<CodeText, 3> kSetCodes{
    {{"JS", &NodeCode::setCodeJS}, {"Jython", &NodeCode::setCodeJython}, {"Python", &NodeCode::setCodePython}}};

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
        if (!asksForFiles)
            return texts;
        for (TuString const& path :
             {TuString(CFCEnvironment::GetFileTypesPath()), TuString(CFCEnvironment::GetUserFileTypesPath())}) {
            std::string const fault = faultOf(path);
            std::string const text = "the file types are left out: " + fault;
            if (!fault.empty() && (texts.empty() || texts.back() != text))
                texts.push_back(text);
        }
        return texts;
    }

private:
    // What is wrong with a file that is there, with its name; empty when nothing is.
    static std::string faultOf(TuString const& path) {
        std::string name = utf8(path);
        std::replace(name.begin(), name.end(), '\\', '/');
        std::error_code error;
        if (name.empty() || !std::filesystem::exists(std::filesystem::symlink_status(name, error)))
            return {};
        std::string const near = std::filesystem::proximate(name, error).string();
        std::string const shown = error || near.empty() || near.starts_with("..") ? name : near;
        if (std::string const fault = inputFault(name); !fault.empty())
            return withoutProgram(Failure(shown, "", fault));
        CTXMLBaseReader reader;
        return reader.Initialize(path) ? std::string() : withoutProgram(xmlFailure(shown, reader));
    }

    static std::string withoutProgram(Failure const& failure) {
        return std::string(failure.what()).substr(std::string_view("flowmere: ").size());
    }

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

} // namespace

std::unique_ptr<Catalog> makeDataTypes() {
    return std::make_unique<DataTypes>();
}

} // namespace flowmere::host::catalogs
