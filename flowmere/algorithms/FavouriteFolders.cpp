#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCCatalogNodes.h"

// The search starts at the favourites themselves, so their own caption finds them.
IFCNode* CFCFavouriteNode::GetFolderNode(wchar_t const* name) {
    return CFCNodeHelper::FindNodeByCaption(name, this);
}
