// Workflow folders: whatever their files hold, they are read or refused, what was read can be written, and what was
// written can be read. An input is the files of a folder one behind the other, each behind a line "=== NAME"; the
// folder "S" is that of a sub-process.
#include "FuzzFile.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/foundation/Encoding.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/workflow/FCProcessDefinitionReader.h"
#include "flowmere/workflow/FCProcessDefinitionWriter.h"
#include "flowmere/workflow/FCWorkFlowWriter.h"

#include <array>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

namespace {

constexpr std::array<std::string_view, 6> kFiles{"processdefinition.xml",   "gpd.xml",   "process.var",
                                                 "S/processdefinition.xml", "S/gpd.xml", "S/process.var"};
constexpr std::string_view kMark = "=== ";

struct TreeEnd {
    void operator()(IFCNode* node) const { CFCNodeHelper::DestroyTree(node); }
};
using Tree = std::unique_ptr<IFCNode, TreeEnd>;

struct Folders {
    std::filesystem::path top =
        std::filesystem::temp_directory_path() / ("flowmere_fuzz_" + std::to_string(getpid()) + "_folder");
    std::filesystem::path in = top / "in";
    std::filesystem::path out = top / "out";
    ~Folders() {
        std::error_code ignored;
        std::filesystem::remove_all(top, ignored);
    }
};

void writeFiles(std::filesystem::path const& folder, std::string_view input) {
    while (!input.empty()) {
        std::size_t const mark = input.find(kMark);
        if (mark == std::string_view::npos)
            return;
        std::size_t const line = input.find('\n', mark);
        if (line == std::string_view::npos)
            return;
        std::string_view const name = input.substr(mark + kMark.size(), line - mark - kMark.size());
        std::size_t const next = input.find(kMark, line);
        std::string_view const text = input.substr(line + 1, next == std::string_view::npos ? next : next - line - 1);
        for (std::string_view const file : kFiles) {
            if (name == file)
                std::ofstream(folder / file, std::ios::binary | std::ios::trunc) << text;
        }
        input = next == std::string_view::npos ? std::string_view() : input.substr(next);
    }
}

TuString definitionOf(std::filesystem::path const& folder) {
    return TuString((folder / kFiles[0]).string().c_str());
}

// Whether a well-formed definition was there.
bool read(std::filesystem::path const& folder, Tree& tree) {
    CFCNodeFactory factory;
    CFCProcessDefinitionReader reader;
    reader.SetNodeFactory(&factory);
    IFCNode* node = nullptr;
    bool const result = reader.Parse(definitionOf(folder), &node, 16);
    for (CFCWorkflowFinding const& finding : reader.GetFindings()) {
        if (finding.node != nullptr && finding.node->GetRootNode() != node)
            std::abort(); // it stands in no tree that lives
    }
    tree.reset(node);
    return result || node != nullptr;
}

void readFileNode(std::filesystem::path const& folder) {
    CFCNodeFactory factory;
    CFCProcessDefinitionReader reader;
    reader.SetNodeFactory(&factory);
    Tree const tree(factory.Create(160));
    reader.LoadFileNode(definitionOf(folder), tree.get());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Folders const folders;
    std::filesystem::create_directories(folders.in / "S");
    std::filesystem::create_directories(folders.out / "S");
    writeFiles(folders.in, {reinterpret_cast<char const*>(data), size});
    readFileNode(folders.in);
    Tree tree;
    if (!read(folders.in, tree))
        return 0;
    CFCProcessDefinitionWriter writer;
    if (!writer.WriteFile(definitionOf(folders.out), tree.get(), true))
        std::abort();
    CFCWorkFlowWriter summary;
    summary.WriteFile(TuString((folders.out / "workflow.xml").string().c_str()), tree.get(), tree.get());
    Tree again;
    if (!read(folders.out, again))
        std::abort();
    return 0;
}
