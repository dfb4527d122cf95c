#pragma once

#include "flowmere/foundation/Fold.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/TreeEpoch.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>

namespace flowmere {

// Answers CFCNodeHelper::FindNodeByCaption for the time of one load, with the very node that the walk would find first,
// while the load adds nodes and gives them their captions.
//
// It walks as long as that is cheap. Then it notes all nodes below the top in the order of the walk, each with the
// place where it is entered and the one where it is left, and for each caption its nodes in that order: the first one
// between the two places of the start is the answer. A new first child stands right behind the entry of its parent.
//
// Changes that it is not told of (a factory or a reader of a host may make them) show in the epoch of the trees; it is
// then forgotten and made anew once the walks have cost as much. A tree that it cannot know for sure is walked: one
// that holds classes of a host, whose texts and links may be anything, or one whose links do not fit.
class CaptionIndex {
public:
    // Nodes visited by walks before an index is made.
    static constexpr std::size_t kWalkedNodes = 1000;

    // Covers the nodes from top down; searches that begin elsewhere are walked. Null covers nothing.
    explicit CaptionIndex(IFCNode* top, std::size_t walkedNodes = kWalkedNodes)
        : m_top(top), m_budget(walkedNodes), m_leastBudget(walkedNodes) {}
    CaptionIndex(CaptionIndex const&) = delete;
    CaptionIndex& operator=(CaptionIndex const&) = delete;

    // The first node of that caption from start on, start included, in the order of the walk; an empty caption finds
    // nothing, nor does a null start.
    IFCNode* find(wchar_t const* caption, IFCNode* start);
    // Appends the child to the parent, neither of them null.
    void append(IFCNode* parent, IFCNode* child);
    // Makes a change that touches no link and no caption but that of this node.
    template <typename Change>
    void change(IFCNode* node, Change const& change) {
        bool const isExact = isCurrent();
        change();
        if (isExact) {
            captionChanged(node);
        }
    }

    // Whether the next search is answered without a walk, when it begins inside; for tests.
    bool isCurrent() const { return m_isBuilt && m_epoch == treeEpoch; }

private:
    // A place in the order of the walk. Labels rise along the chain and move apart when there is no room between two.
    struct Mark {
        std::uint64_t label = 0;
        Mark* before = nullptr;
        Mark* behind = nullptr;
    };
    struct Place;
    struct Earlier {
        bool operator()(Place const* left, Place const* right) const { return left->entry.label < right->entry.label; }
    };
    using Places = std::set<Place*, Earlier>;
    struct Place {
        IFCNode* node = nullptr;
        Mark entry;
        Mark exit;
        Places* sameCaption = nullptr; // those of the node's caption; null for an empty one
    };

    static void insertBehind(Mark& mark, Mark& added);
    static void makeRoomBehind(Mark& mark);
    bool build();
    bool noteTree();
    void forget();
    Place* placeOf(IFCNode* node);
    Place* newPlace(IFCNode* node);
    void noteCaption(Place& place);
    void captionChanged(IFCNode* node);
    IFCNode* walk(std::wstring_view caption, IFCNode* start);

    IFCNode* m_top;
    std::size_t m_budget;
    std::size_t m_leastBudget;
    std::size_t m_walked = 0;
    bool m_isBuilt = false;
    bool m_isUnsure = false; // the tree is not one to know
    unsigned long long m_epoch = 0;
    std::deque<Place> m_places;
    std::unordered_map<IFCNode*, Place*> m_placeOf;
    std::unordered_map<std::wstring, Places, ExactHash, ExactEqual> m_byCaption;
};

} // namespace flowmere
