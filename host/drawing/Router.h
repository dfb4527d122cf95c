#pragma once

// Finds ways for the lines between blocks: from grip to grip, in right angles, around the blocks, and beside each
// other.

#include "host/drawing/SpaceIndex.h"

#include <cstddef>
#include <vector>

namespace flowmere::host::drawing {

class Router {
public:
    struct End {
        std::size_t block = 0;
        int grip = 0; // 1 to 8

        bool operator==(End const&) const = default;
    };

    // The blocks that lines go around.
    explicit Router(std::vector<Rect> const& blocks);

    // A line from the one grip to the other, and keeps it: later lines run beside it. Where there is no free way, it
    // passes as few blocks as possible.
    std::vector<Point> route(End const& start, End const& end);
    // Keeps a line that is given.
    void keep(std::vector<Point> const& line, End const& start, End const& end);

    SpaceIndex const& blocks() const { return m_blocks; }
    // The pieces of all lines so far, as rectangles without width.
    SpaceIndex const& pieces() const { return m_pieces; }

private:
    struct Piece {
        std::size_t start; // of its line: numbers of block and grip
        std::size_t end;
    };
    // What a way would cost.
    struct Cost {
        double length = 0; // and bends
        int hits = 0;      // blocks in the way
        double rest = 0;   // lines that it would run over, blocks that it would come too near to
        double sum() const { return length + 5000.0 * hits + rest; }
        bool isClean() const { return hits == 0 && rest < 40; }
    };
    struct Job;

    double freeLength(Point const& from, Direction direction, std::size_t block) const;
    void setLeads(Job& job) const;
    double blockedUntil(bool isUpright, double at, double from, double to, bool isForward) const;
    void addChannels(Job& job, bool isUpright) const;
    void addTracks(Job& job, bool isUpright, double at, bool isWide) const;
    void addWay(Job& job, std::vector<Point> const& middle) const;
    bool judge(Job& job) const;
    Cost costOf(std::vector<Point> const& line, Job const& job, double limit) const;
    double overlapAt(Rect const& piece, Job const& job) const;
    bool search(Job& job);

    Rect m_bounds;
    SpaceIndex m_blocks;
    SpaceIndex m_pieces;
    std::vector<Piece> m_ends;
    std::size_t m_searchSteps; // what is left of the effort for lines that no simple way fits
};

// The directions in which a line may leave a grip: one for those in the middle of a side, two for corners.
std::vector<Direction> directionsOf(int grip);

// Leaves out points on the way between their neighbours. Empty when the line turns back on itself.
std::vector<Point> simplified(std::vector<Point> const& line);

// Pieces that run aslant by no more than a truncated number takes off get a step in their middle. Empty when one runs
// farther aslant.
std::vector<Point> orthogonal(std::vector<Point> const& line);

// Leads a line in right angles from its grips to the outlines of its blocks, and takes out small steps aside. An end
// that is not held may give way for that, along the side of its block.
std::vector<Point> fitted(std::vector<Point> line, Point const& start, Point const& end, bool isStartHeld,
                          bool isEndHeld);

} // namespace flowmere::host::drawing
