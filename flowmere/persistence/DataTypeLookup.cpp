#include "flowmere/algorithms/FCNodeHelper.h"

#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/foundation/Fold.h"
#include "flowmere/foundation/Immortal.h"
#include "flowmere/foundation/Paths.h"
#include "flowmere/foundation/TuFileUtl.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/persistence/CatalogAbsence.h"
#include "flowmere/persistence/FCDataTypeListReader.h"

#include <cstdint>
#include <filesystem>
#include <system_error>

// The catalog file is known here and nowhere below, so the operations that read it are defined beside its reader.

CFCDataTypeNode* CFCNodeHelper::m_pRootNode = nullptr;

namespace {

// A catalog file as it was when nothing could be read from it. Each variable of a document asks for its type, and a
// broken file is parsed again only once it has changed.
struct FileState {
    explicit FileState(TuString const& file) : path(file) {
        std::filesystem::path const place = flowmere::filesystemPath(file.View());
        std::error_code error;
        written = std::filesystem::last_write_time(place, error);
        size = std::filesystem::file_size(place, error);
    }
    FileState() = default;
    bool operator==(FileState const& other) const {
        return (path == other.path) != 0 && written == other.written && size == other.size;
    }

    TuString path;
    std::filesystem::file_time_type written;
    std::uintmax_t size = 0;
};

flowmere::Immortal<FileState> brokenFile;

// What CatalogAbsence remembers.
struct Absence {
    int scopes = 0;
    bool isNoted = false;
    TuString basePath;
};

flowmere::Immortal<Absence> absence;

// First entry of the catalog file; null while there is nothing to read. The list node stays as its parent.
CFCDataTypeNode* readCatalog() {
    TuString const path(CFCEnvironment::GetDataTypeFilePath());
    if (!TuFileUtl::IsFileName(path)) {
        flowmere::CatalogAbsence::note();
        return nullptr;
    }
    FileState const state(path);
    if (state == *brokenFile) {
        return nullptr;
    }
    CFCNodeFactory factory;
    IFCNode* const list = factory.Create(eShapeType_DataTypeGroup);
    CFCDataTypeListReader reader;
    reader.SetNodeFactory(&factory);
    reader.Parse(path, dynamic_cast<CFCDataTypeNode*>(list));
    auto* const first = list != nullptr ? dynamic_cast<CFCDataTypeNode*>(list->GetChild()) : nullptr;
    if (first == nullptr) {
        CFCNodeHelper::DestroyTree(list);
        *brokenFile = state;
    }
    return first;
}

} // namespace

flowmere::CatalogAbsence::CatalogAbsence() {
    ++absence->scopes;
}

flowmere::CatalogAbsence::~CatalogAbsence() {
    if (--absence->scopes == 0) {
        absence->isNoted = false;
    }
}

bool flowmere::CatalogAbsence::isKnown() {
    return absence->isNoted && absence->basePath == CFCEnvironment::m_strBasePath;
}

void flowmere::CatalogAbsence::note() {
    if (absence->scopes > 0) {
        absence->isNoted = true;
        absence->basePath = CFCEnvironment::m_strBasePath;
    }
}

IFCNode* CFCNodeHelper::GetDataTypeNode(wchar_t const* name) {
    if (m_pRootNode == nullptr && flowmere::CatalogAbsence::isKnown()) {
        return nullptr;
    }
    TuString const key(name);
    if (m_pRootNode == nullptr) {
        m_pRootNode = readCatalog();
        if (m_pRootNode == nullptr) {
            return nullptr;
        }
    }
    return FindDataTypeNode(key, m_pRootNode, true);
}

void CFCNodeHelper::SetDataTypeNode(CFCVariableData* variable, wchar_t const* typeName) {
    CFCDataTypeNode* const description = variable != nullptr ? variable->GetDataTypeNode() : nullptr;
    if (description == nullptr) {
        return;
    }
    TuString const type(typeName);
    TuString caption(type);
    IFCNode* const found = GetDataTypeNode(type);
    // A host may have hung nodes of other classes into the catalog: they bind nothing.
    if (found != nullptr && found->GetNodeType() == eShapeType_FileType) {
        if (auto* const fileType = dynamic_cast<CFCFileTypeNode*>(found)) {
            variable->SetFileType(true);
            CFCDataTypeNode::Copy(dynamic_cast<CFCDataTypeNode*>(found->GetParentNode()), description);
            CFCFileTypeNode::Copy(fileType, variable->GetFileTypeNode());
            description->SetNodeType(eShapeType_FileType);
        }
    } else if (CFCDataTypeNode::Copy(dynamic_cast<CFCDataTypeNode*>(found), description)) {
        caption = found->GetNodeCaption();
    }

    constexpr std::wstring_view kArray = L"Array";
    constexpr int kArrayLength = 5;
    if (caption.GetLength() >= kArrayLength &&
        flowmere::equalNoCase(caption.View().substr(caption.View().size() - kArray.size()), kArray)) {
        caption = caption.Left(caption.GetLength() - kArrayLength);
        caption.TrimLeft();
        caption.TrimRight();
    }
    description->SetType(type);
    description->SetNodeCaption(caption);
}
