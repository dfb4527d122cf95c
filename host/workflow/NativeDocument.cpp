#include "host/workflow/NativeDocument.h"

#include "host/basics/Command.h"
#include "host/basics/Text.h"
#include "host/basics/WorkFolder.h"
#include "host/document/Document.h"
#include "host/document/ReadBack.h"

#include <fmt/format.h>

#include <filesystem>
#include <memory>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

// Writes the tree as a document and opens that, for it to be saved. What a document does not keep is noted.
std::unique_ptr<Document> documentOf(NativeTree& tree, WorkFolder const& work, std::string const& out) {
    fs::path const file = work.path() / "document.xml";
    CFCWriter writer;
    if (!writer.WriteFile(libraryPath(file), tree.process.get(), true))
        throw Failure(out, "", "cannot be written: the document could not be built");
    try {
        auto document = std::make_unique<Document>(file.string());
        ReadBack const readBack = compareReadBack(*tree.process, document->process());
        if (readBack.loss)
            tree.notes.push_back({Note::Kind::Lost, readBack.loss->place,
                                  fmt::format("{}: a document does not keep it",
                                              readBack.loss->what.empty() ? "all of it" : readBack.loss->what)});
        for (std::string const& variable : readBack.respaced)
            tree.notes.push_back(
                {Note::Kind::Lost, variable, "white space of its value: a document does not keep all"});
        return document;
    } catch (Failure const& failure) {
        throw Failure(out, "",
                      std::string("cannot be written: there is no room in ") + work.path().parent_path().string() +
                          ", or a text holds what XML cannot");
    }
}

} // namespace

// Catalogs lie beside the document that is to be.
void beginDocument(std::string const& out) {
    TuString const folder = libraryPath(fs::absolute(out).lexically_normal().parent_path());
    CFCEnvironment::SetBasePath(folder);
    CFCEnvironment::SetProjectPath(folder);
    CFCEnvironment::SetUserPath(folder);
    CFCEnvironment::SetMacroBasePath(folder);
}

void saveDocument(NativeTree& tree, std::string const& out) {
    WorkFolder const work(out);
    documentOf(tree, work, out)->save(out);
}

} // namespace flowmere::host
