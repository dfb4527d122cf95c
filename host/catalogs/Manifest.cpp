#include "host/catalogs/Kinds.h"
#include "host/catalogs/Words.h"

#include <utility>

namespace flowmere::host::catalogs {

namespace {

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

} // namespace

std::unique_ptr<Catalog> makeManifest() {
    return std::make_unique<Manifest>();
}

} // namespace flowmere::host::catalogs
