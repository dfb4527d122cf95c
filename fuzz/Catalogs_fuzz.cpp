// The catalogs of data types, file types and MIME types, hints, API help, manifests and favourites: read or refused,
// and what was read can be written.
#include "FuzzFile.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCNodeManager.h"
#include "flowmere/persistence/FCAPIHelpReader.h"
#include "flowmere/persistence/FCDataTypeListReader.h"
#include "flowmere/persistence/FCDataTypeListWriter.h"
#include "flowmere/persistence/FCFavouriteReader.h"
#include "flowmere/persistence/FCFavouriteWriter.h"
#include "flowmere/persistence/FCFileTypeListReader.h"
#include "flowmere/persistence/FCFileTypeListWriter.h"
#include "flowmere/persistence/FCHintsReader.h"
#include "flowmere/persistence/FCManifestReader.h"
#include "flowmere/persistence/FCManifestWriter.h"
#include "flowmere/persistence/FCMimeTypeReader.h"

#include <vector>

namespace {

// Some readers leave nodes behind that nobody owns; they end with the factory.
class KeepingFactory : public CFCNodeFactory {
public:
    ~KeepingFactory() override {
        for (int const handle : m_handles)
            if (IFCNode* const node = CFCNodeManager::GetNode(handle); node != nullptr && !node->GetParentNode())
                CFCNodeHelper::DestroyTree(node);
    }
    IFCNode* Create(int typeCode) override {
        IFCNode* const node = CFCNodeFactory::Create(typeCode);
        if (node != nullptr)
            m_handles.push_back(node->GetNodeHandle());
        return node;
    }

private:
    std::vector<int> m_handles;
};

void readMimeTypes(TuString const& input) {
    KeepingFactory factory;
    CFCMimeTypeReader reader;
    reader.SetNodeFactory(&factory);
    reader.Parse(input, dynamic_cast<CFCMimeTypeNode*>(factory.Create(86)));
}

// Whether the file is well formed: the readers that follow would say so each time.
bool readHints(TuString const& input) {
    CFCHintsReader::BlockHints().clear();
    CFCHintsReader::ActionHints().clear();
    return CFCHintsReader().Parse(input);
}

void readHelp(TuString const& input) {
    KeepingFactory factory;
    CFCAPIHelpReader reader;
    reader.SetNodeFactory(&factory);
    reader.Parse(input, dynamic_cast<CFCProcessList*>(factory.Create(69)));
}

void readManifest(TuString const& input, TuString const& output) {
    KeepingFactory factory;
    CFCManifestReader reader;
    reader.SetNodeFactory(&factory);
    CFCPackageNode* package = nullptr;
    if (reader.Parse(input, &package) && package != nullptr)
        CFCManifestWriter().WriteFile(output, package, true);
}

void readFavourites(TuString const& input, TuString const& output) {
    KeepingFactory factory;
    CFCFavouriteReader reader;
    reader.SetNodeFactory(&factory);
    IFCNode* process = factory.Create(56);
    if (reader.Parse(input, &process) && CFCFavouriteWriter().WriteFile(output, process, true))
        reader.Parse(output, &process);
}

} // namespace

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
    readMimeTypes(input);
    if (readHints(input)) {
        readHelp(input);
        readManifest(input, output);
        readFavourites(input, output);
    }
    return 0;
}
