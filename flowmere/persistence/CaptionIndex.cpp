#include "flowmere/persistence/CaptionIndex.h"

#include "flowmere/algorithms/TreeWalk.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCProcessNode.h"

#include <algorithm>
#include <iterator>
#include <typeindex>
#include <typeinfo>
#include <unordered_set>
#include <vector>

namespace flowmere {

namespace {

constexpr int kLabelBits = 62;

// The classes whose caption and links are those that CFCNode stores, and that can be children.
bool isKnownClass(IFCNode& node) {
    static std::unordered_set<std::type_index> const known{
        typeid(CFCAPIHelpNode),   typeid(CFCBPMProcessNode), typeid(CFCBPMTaskNode),  typeid(CFCBlockNode),
        typeid(CFCCodeNode),      typeid(CFCDataTypeList),   typeid(CFCDataTypeNode), typeid(CFCDocumentNode),
        typeid(CFCFavouriteNode), typeid(CFCFileNode),       typeid(CFCFileTypeNode), typeid(CFCMimeTypeNode),
        typeid(CFCPackageNode),   typeid(CFCProcessList),    typeid(CFCProcessNode),  typeid(CFCSubGroupNode),
        typeid(CFCSubProcessNode)};
    return known.contains(typeid(node));
}

} // namespace

IFCNode* CaptionIndex::find(wchar_t const* caption, IFCNode* start) {
    TuString const key(caption);
    if (key.IsEmpty() || start == nullptr) {
        return nullptr;
    }
    if (m_isBuilt && !isCurrent()) {
        forget();
    }
    if (!m_isBuilt && (m_isUnsure || m_walked < m_budget || !build())) {
        return walk(key.View(), start);
    }
    Place* const from = placeOf(start);
    if (from == nullptr) {
        return walk(key.View(), start);
    }
    auto const places = m_byCaption.find(key.View());
    if (places == m_byCaption.end()) {
        return nullptr;
    }
    auto const first = places->second.lower_bound(from);
    bool const isInside = first != places->second.end() && (*first)->entry.label < from->exit.label;
    return isInside ? (*first)->node : nullptr;
}

void CaptionIndex::append(IFCNode* parent, IFCNode* child) {
    Place* const place = isCurrent() ? placeOf(parent) : nullptr;
    IFCNode* const head = place != nullptr ? parent->GetChild() : nullptr;
    parent->AppendChild(child, false);
    if (place == nullptr) {
        return;
    }
    // Only a new node without company goes where it is expected.
    if (!isKnownClass(*child) || parent->GetChild() != child || child->GetNext() != head ||
        child->GetParentNode() != parent || child->GetChild() != nullptr || placeOf(child) != nullptr) {
        forget();
        return;
    }
    Place* const added = newPlace(child);
    insertBehind(place->entry, added->entry);
    insertBehind(added->entry, added->exit);
    noteCaption(*added);
    m_epoch = treeEpoch;
}

IFCNode* CaptionIndex::walk(std::wstring_view caption, IFCNode* start) {
    return walkDown(start, [this, caption](IFCNode* node) {
        ++m_walked;
        return viewOf(node->GetNodeCaption()) == caption ? Step::Found : Step::Descend;
    });
}

bool CaptionIndex::build() {
    // A top without a child may change unseen, and takes no time to walk.
    if (m_top == nullptr || m_top->GetChild() == nullptr) {
        return false;
    }
    m_isBuilt = noteTree();
    if (!m_isBuilt) {
        forget();
        m_isUnsure = true;
        return false;
    }
    m_epoch = treeEpoch;
    return true;
}

bool CaptionIndex::noteTree() {
    std::vector<Place*> above;
    Mark* last = nullptr;
    auto const follow = [&last](Mark& mark) {
        mark.before = last;
        if (last != nullptr) {
            last->behind = &mark;
        }
        last = &mark;
    };
    IFCNode* node = m_top;
    while (true) {
        bool const isLinked = above.empty() || node->GetParentNode() == above.back()->node;
        if (!isKnownClass(*node) || !isLinked || placeOf(node) != nullptr) {
            return false;
        }
        Place* place = newPlace(node);
        follow(place->entry);
        if (IFCNode* const child = node->GetChild()) {
            above.push_back(place);
            node = child;
            continue;
        }
        follow(place->exit);
        IFCNode* next = nullptr;
        while (!above.empty() && (next = place->node->GetNext()) == nullptr) {
            place = above.back();
            above.pop_back();
            follow(place->exit);
        }
        if (next == nullptr) {
            break;
        }
        node = next;
    }
    std::uint64_t const step = (std::uint64_t{1} << kLabelBits) / (2 * m_places.size() + 1);
    std::uint64_t label = 0;
    for (Mark* mark = &m_places.front().entry; mark != nullptr; mark = mark->behind) {
        mark->label = label += step;
    }
    for (Place& place : m_places) {
        noteCaption(place);
    }
    return true;
}

void CaptionIndex::forget() {
    m_budget = std::max(m_leastBudget, m_places.size());
    m_walked = 0;
    m_isBuilt = false;
    m_byCaption.clear();
    m_placeOf.clear();
    m_places.clear();
}

CaptionIndex::Place* CaptionIndex::placeOf(IFCNode* node) {
    auto const found = m_placeOf.find(node);
    return found != m_placeOf.end() ? found->second : nullptr;
}

CaptionIndex::Place* CaptionIndex::newPlace(IFCNode* node) {
    Place& place = m_places.emplace_back();
    place.node = node;
    m_placeOf.emplace(node, &place);
    return &place;
}

void CaptionIndex::noteCaption(Place& place) {
    std::wstring_view const caption = viewOf(place.node->GetNodeCaption());
    Places* const places = caption.empty() ? nullptr : &m_byCaption[std::wstring(caption)];
    if (places == place.sameCaption) {
        return;
    }
    if (place.sameCaption != nullptr) {
        place.sameCaption->erase(&place);
    }
    if (places != nullptr) {
        // Nodes of one caption mostly come in the order of the walk, or against it.
        places->insert(places->empty() || Earlier()(&place, *places->begin()) ? places->begin() : places->end(),
                       &place);
    }
    place.sameCaption = places;
}

void CaptionIndex::captionChanged(IFCNode* node) {
    if (Place* const place = placeOf(node)) {
        noteCaption(*place);
        m_epoch = treeEpoch;
    }
}

void CaptionIndex::insertBehind(Mark& mark, Mark& added) {
    // Every mark but the exit of the top has one behind it.
    if (mark.behind->label - mark.label < 2) {
        makeRoomBehind(mark);
    }
    added.label = mark.label + (mark.behind->label - mark.label) / 2;
    added.before = &mark;
    added.behind = mark.behind;
    mark.behind->before = &added;
    mark.behind = &added;
}

// Spreads the marks of the smallest range of labels around this one that is thinly enough settled. The larger the
// range, the thinner it has to be, so that it takes long to fill up again.
void CaptionIndex::makeRoomBehind(Mark& mark) {
    constexpr double kGrowth = 2 / 1.3;
    Mark* first = &mark;
    Mark* last = &mark;
    std::uint64_t count = 1;
    double most = 1;
    for (int bits = 1; bits <= kLabelBits; ++bits) {
        std::uint64_t const size = std::uint64_t{1} << bits;
        std::uint64_t const base = mark.label & ~(size - 1);
        most *= kGrowth;
        for (; first->before != nullptr && first->before->label >= base; ++count) {
            first = first->before;
        }
        for (; last->behind != nullptr && last->behind->label - base < size; ++count) {
            last = last->behind;
        }
        std::uint64_t const step = size / count;
        if (step < 2 || (static_cast<double>(count) > most && bits < kLabelBits)) {
            continue;
        }
        std::uint64_t label = base;
        for (Mark* moved = first; moved != last->behind; moved = moved->behind) {
            moved->label = label;
            label += step;
        }
        return;
    }
}

} // namespace flowmere
