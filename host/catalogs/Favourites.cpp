#include "host/catalogs/Kinds.h"
#include "host/catalogs/Words.h"

#include <fmt/format.h>

#include <utility>

namespace flowmere::host::catalogs {

namespace {

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

} // namespace

std::unique_ptr<Catalog> makeFavourites() {
    return std::make_unique<Favourites>();
}

} // namespace flowmere::host::catalogs
