#include "host/catalogs/Catalogs.h"

#include "host/catalogs/Kinds.h"

namespace flowmere::host {

KeepingFactory::~KeepingFactory() {
    for (IFCNode* const node : tops())
        CFCNodeHelper::DestroyTree(node);
}

IFCNode* KeepingFactory::Create(int typeCode) {
    IFCNode* const node = CFCNodeFactory::Create(typeCode);
    if (node != nullptr)
        m_handles.push_back(node->GetNodeHandle());
    return node;
}

std::vector<IFCNode*> KeepingFactory::tops() const {
    std::vector<IFCNode*> nodes;
    for (int const handle : m_handles)
        if (IFCNode* const node = CFCNodeManager::GetNode(handle); node != nullptr && node->GetParentNode() == nullptr)
            nodes.push_back(node);
    return nodes;
}

std::vector<CatalogKind> const& catalogKinds() {
    using Environment = CFCEnvironment;
    static std::vector<CatalogKind> const kinds{
        {.name = "types",
         .content = "data types",
         .help = "The data types of variables, with their groups and their code",
         .example = "--base /opt/processes",
         .commonPath = Environment::GetDataTypeFilePath,
         .takesUser = true, // for the file types among them
         .roots = {"DataTypes"},
         .make = catalogs::makeDataTypes},
        {.name = "files",
         .content = "file types",
         .help = "The file types: the common ones, and those of the user laid over them",
         .example = "--base /opt/processes --user ~/processes",
         .commonPath = Environment::GetFileTypesPath,
         .takesUser = true,
         .userPath = Environment::GetUserFileTypesPath,
         .roots = {"FILETYPES"},
         .make = catalogs::makeFileTypes},
        {.name = "mime",
         .content = "MIME types",
         .help = "The MIME types: the common ones, and behind them those of the user",
         .example = "MimeTypes.xml",
         .commonPath = Environment::GetMimeTypesPath,
         .takesUser = true,
         .userPath = Environment::GetUserMimeTypesPath,
         .roots = {"MIMETYPES", "MimeTypes"},
         .make = catalogs::makeMimeTypes},
        {.name = "hints",
         .content = "hints",
         .help = "The hints on each kind of block, and on what it does",
         .example = "--base /opt/processes",
         .commonPath = Environment::GetHintsFilePath,
         .roots = {"HINTS", "Hints"},
         .make = catalogs::makeHints},
        {.name = "help",
         .content = "help texts",
         .help = "The modules that scripts can use, with their help texts",
         .example = "APIHelp.xml --json",
         .commonPath = Environment::GetAPIHelpFilePath,
         .roots = {"PROCESS_LST", "Processes"},
         .make = catalogs::makeAPIHelp},
        {.name = "manifest",
         .content = "package",
         .help = "What the manifest says of its package",
         .example = "Manifest.mf",
         .commonPath = Environment::GetManifestFilePath,
         .roots = {},
         .make = catalogs::makeManifest},
        {.name = "favourites",
         .content = "favourites",
         .help = "A user's favourites: folders, and the documents in them that are opened",
         .example = "favourites.xml",
         .roots = {"Process"},
         .make = catalogs::makeFavourites},
    };
    return kinds;
}

} // namespace flowmere::host
