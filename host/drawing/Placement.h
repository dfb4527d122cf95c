#pragma once

// Where the blocks of one container stand, from where the model has them.

#include "host/drawing/Layers.h"

#include <vector>

namespace flowmere::host::drawing {

// What happens to one coordinate where room is made: it never goes back, and nothing comes nearer to anything. Room is
// made in the middle of what grows, so that what stood beside its middle still does.
class Stretch {
public:
    // What reaches from the one to the other has to become so long.
    struct Growth {
        double from;
        double to;
        double wanted;
    };

    Stretch() = default;
    // What is made room for once serves all that lie around it.
    explicit Stretch(std::vector<Growth> const& growths);
    double operator()(double value) const;

private:
    struct Insertion {
        double at;
        double before; // all room made in front of it
        double extra;
    };
    std::vector<Insertion> m_insertions;
};

// A block to be placed: its place in the model, empty for none, and the size that it is drawn with.
struct Item {
    Rect place;
    Size size;
};

// Whether somebody can have drawn a block there: less is no place.
bool isPlace(Rect const& rect);

struct Placement {
    std::vector<Rect> rects;
    // Where a point of the model went, for routes.
    Stretch across;
    Stretch down;
    std::vector<bool> isMoved; // relative to the others, so that routes of the model do not lead there
    bool isArranged = false;   // in layers, without regard to the model
    std::size_t moved = 0;     // blocks that the model had over others, or nowhere
};

// Keeps the places of the model, makes room for blocks that are drawn larger, moves blocks that stand over others, and
// puts those without a place near the blocks that they hang together with. Where the model has no place for most of
// them, or the same for most, all are arranged in layers.
Placement placeBlocks(std::vector<Item> const& items, std::vector<Way> const& ways);

} // namespace flowmere::host::drawing
