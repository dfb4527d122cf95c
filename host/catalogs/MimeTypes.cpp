#include "host/catalogs/Kinds.h"
#include "host/catalogs/Words.h"

#include <utility>

namespace flowmere::host::catalogs {

namespace {

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

} // namespace

std::unique_ptr<Catalog> makeMimeTypes() {
    return std::make_unique<MimeTypes>();
}

} // namespace flowmere::host::catalogs
