// The catalogs of data types, file types and MIME types: read or refused, and what was read can be written.
#include "FuzzFile.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/persistence/FCDataTypeListReader.h"
#include "flowmere/persistence/FCDataTypeListWriter.h"
#include "flowmere/persistence/FCFileTypeListReader.h"
#include "flowmere/persistence/FCFileTypeListWriter.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    TuString const input = flowmere::fuzz::inputFile(data, size, ".xml");
    TuString const output = input + L".out";
    CFCNodeFactory factory;
    {
        auto* const list = new CFCDataTypeList;
        list->SetNodeType(81);
        CFCDataTypeListReader reader;
        reader.SetNodeFactory(&factory);
        if (reader.Parse(input, list)) {
            CFCDataTypeListWriter writer;
            writer.WriteFile(output, list, true);
        }
        CFCNodeHelper::DestroyTree(list);
    }
    {
        auto* const list = new CFCDataTypeList;
        list->SetNodeType(81);
        CFCFileTypeListReader reader;
        reader.SetNodeFactory(&factory);
        if (reader.Parse(input, list)) {
            CFCFileTypeListWriter writer;
            writer.WriteFile(output, list, true);
        }
        CFCNodeHelper::DestroyTree(list);
    }
    return 0;
}
