// Whatever a file holds: it is read or refused, what was read can be written, and what was written can be read.
#include "FuzzFile.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/persistence/FCReader.h"
#include "flowmere/persistence/FCWriter.h"

#include <cstdlib>

namespace {

IFCNode* read(wchar_t const* path) {
    CFCNodeFactory factory;
    CFCReader reader;
    reader.SetNodeFactory(&factory);
    IFCNode* node = nullptr;
    return reader.Parse(path, &node, 2) ? node : nullptr;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    TuString const input = flowmere::fuzz::inputFile(data, size, ".xml");
    IFCNode* const node = read(input);
    if (node == nullptr)
        return 0;
    TuString const output = input + L".out";
    CFCWriter writer;
    if (!writer.WriteFile(output, node, true))
        std::abort();
    CFCNodeHelper::DestroyTree(node);
    IFCNode* const again = read(output);
    if (again == nullptr)
        std::abort();
    CFCNodeHelper::DestroyTree(again);
    return 0;
}
