// Process lists: read or refused; what was read can be written, and what was written can be read. Lists can be merged
// with themselves, and take each of their own processes anew.
#include "FuzzFile.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/persistence/FCProcessListReader.h"
#include "flowmere/persistence/FCProcessListWriter.h"

#include <cstdlib>
#include <memory>
#include <vector>

namespace {

constexpr std::size_t kEntered = 32;

struct TreeEnd {
    void operator()(IFCNode* node) const { CFCNodeHelper::DestroyTree(node); }
};
using List = std::unique_ptr<CFCProcessList, TreeEnd>;

// Null for a file that is no list.
List read(wchar_t const* path) {
    CFCNodeFactory factory;
    CFCProcessListReader reader;
    reader.SetNodeFactory(&factory);
    List list(new CFCProcessList);
    return reader.Parse(path, list.get(), L"folder") ? std::move(list) : nullptr;
}

void collect(IFCNode* node, std::vector<IFCNode*>& nodes) {
    for (IFCNode* child = node->GetChild(); child != nullptr && nodes.size() < kEntered; child = child->GetNext()) {
        nodes.push_back(child);
        collect(child, nodes);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    TuString const input = flowmere::fuzz::inputFile(data, size, "BPMProcess.lst");
    List const list = read(input);
    if (list == nullptr)
        return 0;
    TuString const output = input + L".out";
    CFCProcessListWriter writer;
    writer.WriteFile(output, list.get(), false, true);
    List const written = read(output);
    if (written == nullptr)
        std::abort();
    CFCNodeHelper::Consolidate(written.get(), list->GetChild());
    CFCNodeHelper::Consolidate2(written.get(), list->GetChild());
    std::vector<IFCNode*> nodes;
    collect(list.get(), nodes);
    writer.m_pListRoot = written.get();
    for (IFCNode* const node : nodes)
        writer.UpdateNewProcess(node);
    writer.WriteFile(output, written.get(), false, false);
    if (read(output) == nullptr)
        std::abort();
    return 0;
}
