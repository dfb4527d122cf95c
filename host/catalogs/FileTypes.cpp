#include "host/catalogs/FileTypeWords.h"
#include "host/catalogs/Kinds.h"
#include "host/catalogs/Words.h"

#include <utility>

namespace flowmere::host::catalogs {

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

namespace {

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

} // namespace

std::unique_ptr<Catalog> makeFileTypes() {
    return std::make_unique<FileTypes>();
}

} // namespace flowmere::host::catalogs
