// The members of CFCNodeHelper that read process lists and write block templates.
#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/algorithms/TreeWalk.h"
#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/model/FCBlockData.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/persistence/FCProcessListReader.h"
#include "flowmere/persistence/FCWriter.h"

#include <memory>

namespace {

struct TreeEnd {
    void operator()(IFCNode* node) const { CFCNodeHelper::DestroyTree(node); }
};

using NewList = std::unique_ptr<CFCProcessList, TreeEnd>;

NewList newList() {
    NewList list(new CFCProcessList);
    list->SetNodeType(eShapeType_ProcessList);
    return list;
}

} // namespace

CFCProcessList* CFCNodeHelper::LoadProcessList(wchar_t const* file, CFCProcessList* list, wchar_t const* base) {
    try {
        if (list == nullptr) {
            list = newList().release();
        }
        CFCNodeFactory factory;
        CFCProcessListReader reader;
        reader.SetNodeFactory(&factory);
        reader.Parse(file, list, base);
    } catch (...) {
    }
    return list;
}

CFCProcessList* CFCNodeHelper::LoadUserProcessList(bool bpm) {
    try {
        TuString const own(CFCEnvironment::GetUserProcessListPath(bpm));
        TuString const common(bpm ? CFCEnvironment::GetBPMProcessListFilePath()
                                  : CFCEnvironment::GetProcessListFilePath());
        if (own == common) {
            return nullptr;
        }
        TuString const user(CFCEnvironment::GetUserPath());
        int const word = user.Find(L"BrindleExec");
        if (word < 0) {
            return nullptr;
        }
        // Without the separator in front of the word.
        TuString const base(word > 1 ? user.Left(word - 1) : TuString());
        NewList list = newList();
        CFCNodeFactory factory;
        CFCProcessListReader reader;
        reader.SetNodeFactory(&factory);
        reader.Parse(own, list.get(), base);
        for (IFCNode* top = list.get(); top != nullptr; top = top->GetNext()) {
            UpdateAllToNewPath(top->GetChild());
            top->SetNewPath(true);
        }
        return list.release();
    } catch (...) {
        return nullptr;
    }
}

void CFCNodeHelper::SaveSingleNode(IFCNode* node) {
    CFCBlockData* const block = node != nullptr ? node->GetFCBlockData() : nullptr;
    if (block == nullptr) {
        return;
    }
    try {
        TuString const folder(block->GetScriptDir());
        if (folder.IsEmpty()) {
            return;
        }
        TuString const path =
            TuString(CFCEnvironment::GetResourcePath()) + L"\\" + folder + L"\\" + block->GetBlockID() + L".xml";
        CFCWriter writer;
        writer.WriteFile(path, node, false);
    } catch (...) {
    }
}

void CFCNodeHelper::SaveNodes(IFCNode* node) {
    flowmere::CircleGuard<IFCNode> guard;
    for (; node != nullptr && !guard.closes(node); node = node->GetNext()) {
        SaveSingleNode(node);
    }
}

void CFCNodeHelper::SaveRootNode(IFCNode* list) {
    if (list != nullptr) {
        SaveNodes(list->GetChild());
    }
}
