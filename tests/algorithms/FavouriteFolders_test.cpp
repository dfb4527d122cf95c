#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCFolderNodes.h"

#include "TestSupport.h"

TEST(FavouriteFolders, FolderIsFoundByItsCaptionAtAnyDepth) {
    CFCFavouriteNode favourites;
    CFCSubGroupNode outer;
    CFCSubGroupNode inner;
    outer.SetNodeCaption(L"Outer");
    inner.SetNodeCaption(L"Inner");
    favourites.AppendChild(&outer, false);
    outer.AppendChild(&inner, false);
    EXPECT_EQ(favourites.GetFolderNode(L"Outer"), &outer);
    EXPECT_EQ(favourites.GetFolderNode(L"Inner"), &inner);
}

TEST(FavouriteFolders, OwnCaptionFindsTheFavouritesThemselves) {
    CFCFavouriteNode favourites;
    CFCSubGroupNode folder;
    folder.SetNodeCaption(L"FAVOURITES");
    favourites.AppendChild(&folder, false);
    EXPECT_EQ(favourites.GetFolderNode(L"FAVOURITES"), &favourites);
    EXPECT_EQ(favourites.GetFolderNode(favourites.GetNodeCaption()), &favourites);
}

TEST(FavouriteFolders, MissIsNull) {
    CFCFavouriteNode favourites;
    EXPECT_EQ(favourites.GetFolderNode(L"Favourites"), nullptr);
    EXPECT_EQ(favourites.GetFolderNode(L"other"), nullptr);
}
