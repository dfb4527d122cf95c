#pragma once

// Where everything of a picture stands. Nothing is painted here, and no font is known.

#include "host/drawing/Captions.h"
#include "host/drawing/Diagram.h"

#include <cstddef>
#include <string>
#include <vector>

namespace flowmere::host::drawing {

// A block in its place; the box of the root holds the whole diagram.
struct Box {
    Rect rect;
    Caption caption;         // of an open block, its title
    bool isArranged = false; // the blocks inside were arranged in layers
};

// The line of a connector, from the grip of its start to the grip of its end. Empty for one that is not drawn.
struct Line {
    std::vector<Point> points;
    int startGrip = 0;
    int endGrip = 0;
};

// A text that stands beside its line, or beside its block.
struct Label {
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    std::size_t connector = kNone;
    std::size_t block = kNone;
    Caption caption;
};

struct LegendEntry {
    static constexpr int kBreak = -1;

    int state = 0; // kBreak for the mark of blocks that a run stops in front of
    std::size_t count = 0;
    Rect swatch;
    Caption caption;
};

struct Layout {
    std::vector<Box> boxes;  // by the number of the block
    std::vector<Line> lines; // by the number of the connector
    std::vector<Label> labels;
    Caption title;
    std::vector<LegendEntry> legend; // empty when it is not asked for
    Rect bounds;                     // of everything, with a margin
    std::size_t moved = 0;           // blocks that stood over others, or nowhere
    std::size_t unlabelled = 0;      // lines whose caption found no room
};

// The fonts of what is not the model's.
Font labelFont();
Font titleFont();

Layout layOut(Diagram const& diagram, bool hasLegend, TextMeasure& measure);

} // namespace flowmere::host::drawing
