#include "host/catalogs/Kinds.h"
#include "host/catalogs/Words.h"
#include "host/document/Tree.h"

#include <fmt/format.h>

#include <utility>

namespace flowmere::host::catalogs {

namespace {

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

} // namespace

std::unique_ptr<Catalog> makeHints() {
    return std::make_unique<Hints>();
}

} // namespace flowmere::host::catalogs
