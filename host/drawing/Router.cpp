#include "host/drawing/Router.h"

#include <array>
#include <cstdint>
#include <limits>
#include <queue>
#include <tuple>
#include <utility>

namespace flowmere::host::drawing {

namespace {

constexpr double kLead = 20;      // so far a line goes straight on from its grip
constexpr double kMargin = 7;     // nearer to a block looks as if it belonged to it
constexpr double kTrack = 9;      // between lines side by side
constexpr double kBend = 25;      // a bend less is worth such a detour
constexpr double kNear = 45;      // and so is each block that is passed too near
constexpr double kTouching = 400; // or whose border is touched
constexpr double kCross = 10;     // or line that is crossed
constexpr double kAlong = 120;    // or line that is covered, apart from how long
constexpr double kSame = 0.01;    // coordinates so near to each other are one
constexpr double kOutside = 24;
constexpr double kAslant = 2.5; // what truncation takes off at both ends of a piece
constexpr double kStep = 4;     // a step aside of less looks like a mistake
constexpr double kRound = 8;    // so far in a line follows the corner of its block

constexpr std::size_t kMostAround = 250; // blocks that a search takes into account
constexpr std::size_t kMostSteps = 60000;

double meanSize(std::vector<Rect> const& rects) {
    double sum = 0;
    for (Rect const& rect : rects)
        sum += (rect.width() + rect.height()) / 2;
    return rects.empty() ? 100 : std::max(40.0, sum / static_cast<double>(rects.size()));
}

Rect boundsOf(std::vector<Rect> const& rects) {
    Rect bounds = rects.empty() ? Rect{} : rects.front();
    for (Rect const& rect : rects)
        bounds = bounds.united(rect);
    return bounds;
}

bool isSame(double one, double other) {
    return std::abs(one - other) < kSame;
}

double lengthOf(std::vector<Point> const& line) {
    double length = 0;
    for (std::size_t at = 1; at < line.size(); ++at)
        length += std::abs(line[at].x - line[at - 1].x) + std::abs(line[at].y - line[at - 1].y);
    return length;
}

// Makes the first piece begin at the outline instead of the grip.
void beginAt(std::vector<Point>& line, Point const& point) {
    Point const grip = line.front();
    if (isSame(grip.x, point.x) && isSame(grip.y, point.y))
        return;
    bool const isUpright = isSame(grip.x, line[1].x);
    double const aside = isUpright ? point.x - grip.x : point.y - grip.y;
    auto const isRoom = [&] {
        double const next = isUpright ? line[2].x - line[1].x : line[2].y - line[1].y;
        return next * aside < 0 || std::abs(next) > std::abs(aside) + kStep;
    };
    if (std::abs(aside) <= kRound && line.size() == 2 && std::abs(aside) >= kSame) {
        // A step halfway.
        Point const middle{(grip.x + line[1].x) / 2, (grip.y + line[1].y) / 2};
        Point const first = isUpright ? Point{point.x, middle.y} : Point{middle.x, point.y};
        line = {point, first, middle, line[1]};
    } else if (std::abs(aside) <= kRound && line.size() > 2 && isRoom()) {
        line.front() = point;
        (isUpright ? line[1].x : line[1].y) += aside;
    } else if (std::abs(aside) < kSame) {
        line.front() = point;
    } else {
        line.front() = isUpright ? Point{grip.x, point.y} : Point{point.x, grip.y};
        line.insert(line.begin(), point);
    }
}

std::size_t keyOf(Router::End const& end) {
    return end.block * 16 + static_cast<std::size_t>(end.grip);
}

} // namespace

std::vector<Direction> directionsOf(int grip) {
    switch (grip) {
    case 1:
        return {Direction::Up, Direction::Left};
    case 2:
        return {Direction::Up};
    case 3:
        return {Direction::Right, Direction::Up};
    case 4:
        return {Direction::Right};
    case 5:
        return {Direction::Down, Direction::Right};
    case 6:
        return {Direction::Down};
    case 7:
        return {Direction::Left, Direction::Down};
    default:
        return {Direction::Left};
    }
}

std::vector<Point> simplified(std::vector<Point> const& line) {
    std::vector<Point> result;
    for (Point const& point : line) {
        if (!result.empty() && isSame(result.back().x, point.x) && isSame(result.back().y, point.y))
            continue;
        while (result.size() > 1) {
            Point const& last = result.back();
            Point const& before = result[result.size() - 2];
            bool const isUpright = isSame(before.x, last.x) && isSame(last.x, point.x);
            bool const isLevel = isSame(before.y, last.y) && isSame(last.y, point.y);
            if (!isUpright && !isLevel)
                break;
            double const turn =
                isUpright ? (last.y - before.y) * (point.y - last.y) : (last.x - before.x) * (point.x - last.x);
            if (turn < 0)
                return {};
            result.pop_back();
        }
        result.push_back(point);
    }
    return result;
}

std::vector<Point> orthogonal(std::vector<Point> const& line) {
    std::vector<Point> result;
    for (Point const& point : line) {
        if (!result.empty() && !isSame(result.back().x, point.x) && !isSame(result.back().y, point.y)) {
            Point const last = result.back();
            Point const middle{(last.x + point.x) / 2, (last.y + point.y) / 2};
            if (std::abs(last.x - point.x) <= kAslant)
                result.insert(result.end(), {{last.x, middle.y}, {point.x, middle.y}});
            else if (std::abs(last.y - point.y) <= kAslant)
                result.insert(result.end(), {{middle.x, last.y}, {middle.x, point.y}});
            else
                return {};
        }
        result.push_back(point);
    }
    return result;
}

std::vector<Point> fitted(std::vector<Point> line, Point const& start, Point const& end, bool isStartHeld,
                          bool isEndHeld) {
    if (line.size() < 2)
        return line;
    // A straight line between two outlines that give way alike stays straight.
    if (line.size() == 2 && (isSame(line[0].x, line[1].x) ? isSame(start.x, end.x)
                                                          : isSame(line[0].y, line[1].y) && isSame(start.y, end.y)))
        return {start, end};
    beginAt(line, start);
    std::reverse(line.begin(), line.end());
    beginAt(line, end);
    std::reverse(line.begin(), line.end());
    for (std::size_t at = 1; at + 2 < line.size();) {
        Point const before = line[at - 1];
        Point const a = line[at];
        Point const b = line[at + 1];
        Point const behind = line[at + 2];
        bool const goesOn = (a.x - before.x) * (behind.x - b.x) + (a.y - before.y) * (behind.y - b.y) > 0;
        bool const isInFront = at > 1 || !isStartHeld;
        bool const isBehind = at + 3 < line.size() || !isEndHeld;
        if (!goesOn || std::abs(a.x - b.x) + std::abs(a.y - b.y) > kStep || !(isInFront || isBehind)) {
            ++at;
            continue;
        }
        // The piece that moves is one between others, if there is such a one.
        bool const movesFront = at > 1 || (isInFront && !(isBehind && at + 3 < line.size()));
        if (movesFront)
            line[at - 1] = {before.x + b.x - a.x, before.y + b.y - a.y};
        else
            line[at + 2] = {behind.x + a.x - b.x, behind.y + a.y - b.y};
        line.erase(line.begin() + static_cast<std::ptrdiff_t>(at), line.begin() + static_cast<std::ptrdiff_t>(at) + 2);
    }
    return line;
}

struct Router::Job {
    struct Candidate {
        double length;
        std::vector<Point> line;
    };

    End start;
    End end;
    Point from;
    Point to;
    // Of the directions that are looked at.
    Direction leaving{};
    Direction arriving{}; // as seen from the block
    Point first;          // where the line may turn for the first time
    Point last;           // and for the last
    std::vector<Candidate> candidates;
    std::vector<Point> best;
    Cost bestCost{std::numeric_limits<double>::max(), 0, 0};
    Direction bestLeaving{};
    Direction bestArriving{};
};

Router::Router(std::vector<Rect> const& blocks)
    : m_bounds(boundsOf(blocks)), m_blocks(meanSize(blocks), m_bounds, blocks.size()),
      m_pieces(meanSize(blocks), m_bounds, blocks.size()), m_searchSteps(400000 + 40 * blocks.size()) {
    for (Rect const& block : blocks)
        m_blocks.add(block);
}

void Router::keep(std::vector<Point> const& line, End const& start, End const& end) {
    for (std::size_t at = 1; at < line.size(); ++at) {
        if (!isSame(line[at].x, line[at - 1].x) && !isSame(line[at].y, line[at - 1].y))
            continue;
        m_pieces.add(Rect::of(line[at - 1], line[at]));
        m_ends.push_back({keyOf(start), keyOf(end)});
    }
}

// How far one can go, up to a little more than a lead needs.
double Router::freeLength(Point const& from, Direction direction, std::size_t block) const {
    double length = 2 * kLead;
    Rect const area = Rect::of(from, moved(from, direction, length));
    m_blocks.visit(area, [&](std::size_t number) {
        Rect const& other = m_blocks[number];
        bool const isBeside = isVertical(direction) ? other.right <= from.x + kSame || other.left >= from.x - kSame
                                                    : other.bottom <= from.y + kSame || other.top >= from.y - kSame;
        if (number == block || isBeside)
            return true;
        double const gap = direction == Direction::Up      ? from.y - other.bottom
                           : direction == Direction::Down  ? other.top - from.y
                           : direction == Direction::Right ? other.left - from.x
                                                           : from.x - other.right;
        length = std::min(length, std::max(gap, 0.0));
        return true;
    });
    return length;
}

// Where the blocks end that stand in the way of a straight piece; `at` itself when none does.
double Router::blockedUntil(bool isUpright, double at, double from, double to, bool isForward) const {
    double result = at;
    double const low = std::min(from, to);
    double const high = std::max(from, to);
    Rect const area =
        isUpright ? Rect{at - kMargin, low, at + kMargin, high} : Rect{low, at - kMargin, high, at + kMargin};
    m_blocks.visit(area, [&](std::size_t number) {
        Rect const& block = m_blocks[number];
        double const near = isUpright ? block.left : block.top;
        double const far = isUpright ? block.right : block.bottom;
        double const begin = isUpright ? block.top : block.left;
        double const end = isUpright ? block.bottom : block.right;
        if (near >= at + kMargin - kSame || far <= at - kMargin + kSame || begin >= high || end <= low)
            return true;
        result = isForward ? std::max(result, far + kMargin + 5) : std::min(result, near - kMargin - 5);
        return true;
    });
    return result;
}

// Where the line may turn first and last. Ends that face each other share the room between them.
void Router::setLeads(Job& job) const {
    double first = freeLength(job.from, job.leaving, job.start.block) / 2;
    double last = freeLength(job.to, job.arriving, job.end.block) / 2;
    if (job.leaving == opposite(job.arriving)) {
        double const between = job.leaving == Direction::Down    ? job.to.y - job.from.y
                               : job.leaving == Direction::Up    ? job.from.y - job.to.y
                               : job.leaving == Direction::Right ? job.to.x - job.from.x
                                                                 : job.from.x - job.to.x;
        if (between > 0) {
            first = std::min(first, between / 2);
            last = std::min(last, between / 2);
        }
    }
    job.first = moved(job.from, job.leaving, std::min(kLead, first));
    job.last = moved(job.to, job.arriving, std::min(kLead, last));
}

void Router::addWay(Job& job, std::vector<Point> const& middle) const {
    std::vector<Point> line{job.from, job.first};
    line.insert(line.end(), middle.begin(), middle.end());
    line.push_back(job.last);
    line.push_back(job.to);
    line = simplified(line);
    if (line.size() < 2)
        return;
    double const length = lengthOf(line) + kBend * static_cast<double>(line.size() - 2);
    job.candidates.push_back({length, std::move(line)});
}

// A piece at this coordinate, and beside it.
void Router::addTracks(Job& job, bool isUpright, double at, bool isWide) const {
    int const tracks = isWide ? 9 : 3;
    for (int track = 0; track < tracks; ++track) {
        double const place = at + kTrack * ((track + 1) / 2) * (track % 2 == 0 ? 1 : -1);
        if (isUpright)
            addWay(job, {{place, job.first.y}, {place, job.last.y}});
        else
            addWay(job, {{job.first.x, place}, {job.last.x, place}});
    }
}

// Ways with one long piece, at the places next to where it would be best that are free from end to end.
void Router::addChannels(Job& job, bool isUpright) const {
    constexpr int kMostTries = 24;
    double const begin = isUpright ? job.first.y : job.first.x;
    double const end = isUpright ? job.last.y : job.last.x;
    double const one = isUpright ? job.first.x : job.first.y;
    double const other = isUpright ? job.last.x : job.last.y;
    std::array const seeds{(one + other) / 2, one, other};
    std::vector<double> found;
    for (double const seed : seeds)
        for (bool const isForward : {false, true}) {
            double at = seed;
            for (int tries = 0; tries < kMostTries; ++tries) {
                double const next = blockedUntil(isUpright, at, begin, end, isForward);
                if (next == at) {
                    found.push_back(at);
                    break;
                }
                at = next;
            }
        }
    found.push_back((isUpright ? m_bounds.left : m_bounds.top) - kOutside);
    found.push_back((isUpright ? m_bounds.right : m_bounds.bottom) + kOutside);
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    for (double const at : found)
        addTracks(job, isUpright, at, true);
}

// What it costs to run over other lines.
double Router::overlapAt(Rect const& piece, Job const& job) const {
    double cost = 0;
    bool const isUpright = piece.width() < kSame;
    std::size_t const start = keyOf(job.start);
    std::size_t const end = keyOf(job.end);
    m_pieces.visit(piece.inflated(kTrack / 2), [&](std::size_t number) {
        Rect const& other = m_pieces[number];
        bool const isOtherUpright = other.width() < kSame;
        if (isUpright != isOtherUpright) {
            Rect const& level = isUpright ? other : piece;
            Rect const& upright = isUpright ? piece : other;
            if (upright.left > level.left + kSame && upright.left < level.right - kSame &&
                level.top > upright.top + kSame && level.top < upright.bottom - kSame)
                cost += kCross;
            return true;
        }
        // Lines from one grip, or to one grip, may share their way.
        if (m_ends[number].start == start || m_ends[number].end == end)
            return true;
        double const shared = isUpright ? std::min(piece.bottom, other.bottom) - std::max(piece.top, other.top)
                                        : std::min(piece.right, other.right) - std::max(piece.left, other.left);
        if (shared > 1)
            cost += kAlong + shared / 2;
        return true;
    });
    return cost;
}

// Stops once it costs more than the limit.
Router::Cost Router::costOf(std::vector<Point> const& line, Job const& job, double limit) const {
    Cost cost;
    cost.length = lengthOf(line) + kBend * static_cast<double>(line.size() - 2);
    for (std::size_t at = 1; at < line.size() && cost.sum() < limit; ++at) {
        Rect const piece = Rect::of(line[at - 1], line[at]);
        bool const isFirst = at == 1;
        bool const isLast = at + 1 == line.size();
        m_blocks.visit(piece.inflated(kMargin - 1), [&](std::size_t number) {
            Rect const& block = m_blocks[number];
            bool const isOwn = (isFirst && number == job.start.block) || (isLast && number == job.end.block);
            bool const isInside = piece.left < block.right - 0.5 && piece.right > block.left + 0.5 &&
                                  piece.top < block.bottom - 0.5 && piece.bottom > block.top + 0.5;
            bool const isAtEdge = piece.inflated(1).overlaps(block);
            if (isInside)
                ++cost.hits;
            else if (!isOwn)
                cost.rest += isAtEdge ? kTouching : kNear;
            return cost.sum() < limit;
        });
        if (cost.sum() < limit)
            cost.rest += overlapAt(piece, job);
    }
    return cost;
}

// Looks at the candidates, the shortest first, until none that is left can be better. True for a way without fault.
bool Router::judge(Job& job) const {
    std::stable_sort(job.candidates.begin(), job.candidates.end(),
                     [](Job::Candidate const& one, Job::Candidate const& other) { return one.length < other.length; });
    for (Job::Candidate& candidate : job.candidates) {
        if (candidate.length >= job.bestCost.sum())
            break;
        Cost const cost = costOf(candidate.line, job, job.bestCost.sum());
        if (cost.sum() < job.bestCost.sum()) {
            job.bestCost = cost;
            job.best = std::move(candidate.line);
            job.bestLeaving = job.leaving;
            job.bestArriving = job.arriving;
        }
    }
    job.candidates.clear();
    return job.bestCost.isClean();
}

std::vector<Point> Router::route(End const& start, End const& end) {
    Job job;
    job.start = start;
    job.end = end;
    job.from = gripPoint(m_blocks[start.block], start.grip);
    job.to = gripPoint(m_blocks[end.block], end.grip);

    if (start == end) {
        // Out, once around, and back the way it came.
        Direction const out = directionsOf(start.grip).front();
        auto const aside = static_cast<Direction>((static_cast<int>(out) + 1) % 4);
        double const lead = std::min(kLead, freeLength(job.from, out, start.block) / 3);
        Point const near = moved(job.from, out, lead);
        Point const far = moved(near, out, lead);
        job.best = {job.from, far, moved(far, aside, kLead), moved(near, aside, kLead), near, job.to};
        keep(job.best, start, end);
        return job.best;
    }

    // Simple ways first, then those that look for free channels.
    for (bool const isThorough : {false, true}) {
        for (Direction const leaving : directionsOf(start.grip))
            for (Direction const arriving : directionsOf(end.grip)) {
                job.leaving = leaving;
                job.arriving = arriving;
                setLeads(job);
                if (!isThorough) {
                    std::vector<Point> straight = simplified({job.from, job.to});
                    bool const isAligned =
                        isVertical(leaving) ? isSame(job.from.x, job.to.x) : isSame(job.from.y, job.to.y);
                    bool const isFacing = leaving == opposite(arriving) && isAligned &&
                                          Rect::of(job.from, moved(job.from, leaving, 1e9))
                                              .inflated(kSame)
                                              .overlaps(Rect::of(job.to, job.to).inflated(kSame));
                    if (isFacing)
                        job.candidates.push_back({lengthOf(straight), straight});
                    if (isSame(job.first.x, job.last.x) || isSame(job.first.y, job.last.y))
                        addWay(job, {});
                    addTracks(job, true, (job.first.x + job.last.x) / 2, false);
                    addTracks(job, false, (job.first.y + job.last.y) / 2, false);
                    addWay(job, {{job.first.x, job.last.y}});
                    addWay(job, {{job.last.x, job.first.y}});
                    addTracks(job, true, job.first.x, false);
                    addTracks(job, true, job.last.x, false);
                    addTracks(job, false, job.first.y, false);
                    addTracks(job, false, job.last.y, false);
                } else {
                    addChannels(job, true);
                    addChannels(job, false);
                }
                judge(job);
            }
        if (job.bestCost.isClean())
            break;
    }
    if (job.bestCost.hits > 0 || job.best.empty())
        search(job);
    if (job.best.empty())
        job.best = {job.from, {job.to.x, job.from.y}, job.to};
    keep(job.best, start, end);
    return job.best;
}

// Looks through all ways along the edges of the blocks around.
bool Router::search(Job& job) {
    job.leaving = job.best.empty() ? directionsOf(job.start.grip).front() : job.bestLeaving;
    job.arriving = job.best.empty() ? directionsOf(job.end.grip).front() : job.bestArriving;
    setLeads(job);
    Rect const window =
        Rect::of(job.first, job.last).united(m_blocks[job.start.block]).united(m_blocks[job.end.block]).inflated(150);
    std::vector<Rect> around;
    m_blocks.visit(window, [&](std::size_t number) {
        around.push_back(m_blocks[number]);
        return around.size() <= kMostAround;
    });
    if (around.size() > kMostAround)
        return false;

    std::vector<double> xs{job.first.x, job.last.x};
    std::vector<double> ys{job.first.y, job.last.y};
    for (Rect const& rect : around)
        for (double const away : {kMargin + 5, kMargin + 5 + kTrack}) {
            xs.insert(xs.end(), {rect.left - away, rect.right + away});
            ys.insert(ys.end(), {rect.top - away, rect.bottom + away});
        }
    for (std::vector<double>* const values : {&xs, &ys}) {
        std::sort(values->begin(), values->end());
        values->erase(std::unique(values->begin(), values->end(), isSame), values->end());
    }
    std::size_t const columns = xs.size();
    std::size_t const rows = ys.size();
    auto const placeOf = [](std::vector<double> const& values, double value) {
        return static_cast<std::size_t>(std::lower_bound(values.begin(), values.end(), value - kSame) - values.begin());
    };
    // Which steps to the right and which steps down meet a block.
    std::vector<bool> isLevelBlocked(columns * rows);
    std::vector<bool> isUprightBlocked(columns * rows);
    for (Rect const& rect : around) {
        std::size_t const left = placeOf(xs, rect.left);
        std::size_t const right = std::min(placeOf(xs, rect.right), columns - 1);
        std::size_t const top = placeOf(ys, rect.top);
        std::size_t const bottom = std::min(placeOf(ys, rect.bottom), rows - 1);
        for (std::size_t row = top > 0 ? top - 1 : 0; row <= bottom; ++row)
            for (std::size_t column = left > 0 ? left - 1 : 0; column <= right; ++column) {
                bool const isInRow = ys[row] > rect.top + kSame && ys[row] < rect.bottom - kSame;
                bool const isInColumn = xs[column] > rect.left + kSame && xs[column] < rect.right - kSame;
                if (isInRow && column + 1 < columns && xs[column + 1] > rect.left + kSame &&
                    xs[column] < rect.right - kSame)
                    isLevelBlocked[row * columns + column] = true;
                if (isInColumn && row + 1 < rows && ys[row + 1] > rect.top + kSame && ys[row] < rect.bottom - kSame)
                    isUprightBlocked[row * columns + column] = true;
            }
    }

    struct Open {
        double estimate;
        std::size_t state; // place and direction
        bool operator>(Open const& other) const {
            return std::tie(estimate, state) > std::tie(other.estimate, other.state);
        }
    };
    std::size_t const goal = placeOf(ys, job.last.y) * columns + placeOf(xs, job.last.x);
    std::size_t const begin = placeOf(ys, job.first.y) * columns + placeOf(xs, job.first.x);
    auto const pointAt = [&](std::size_t place) {
        return Point{xs[place % columns], ys[place / columns]};
    };
    auto const rest = [&](std::size_t place) {
        Point const point = pointAt(place);
        return std::abs(point.x - job.last.x) + std::abs(point.y - job.last.y);
    };
    constexpr auto kUnknown = std::numeric_limits<double>::max();
    std::vector<double> costs(columns * rows * 4, kUnknown);
    std::vector<std::size_t> before(columns * rows * 4, static_cast<std::size_t>(-1));
    std::priority_queue<Open, std::vector<Open>, std::greater<>> open;
    std::size_t const first = begin * 4 + static_cast<std::size_t>(job.leaving);
    costs[first] = 0;
    open.push({rest(begin), first});
    std::size_t found = static_cast<std::size_t>(-1);
    std::size_t steps = std::min(kMostSteps, m_searchSteps);
    while (!open.empty() && steps > 0) {
        Open const next = open.top();
        open.pop();
        std::size_t const place = next.state / 4;
        auto const heading = static_cast<Direction>(next.state % 4);
        if (next.estimate > costs[next.state] + rest(place) + kSame)
            continue;
        if (place == goal && heading != job.arriving) {
            found = next.state;
            break;
        }
        --steps;
        --m_searchSteps;
        std::size_t const column = place % columns;
        std::size_t const row = place / columns;
        for (int turn = 0; turn < 4; ++turn) {
            auto const direction = static_cast<Direction>(turn);
            if (direction == opposite(heading))
                continue;
            std::size_t to = place;
            bool isBlocked = true;
            if (direction == Direction::Right && column + 1 < columns) {
                to = place + 1;
                isBlocked = isLevelBlocked[place];
            } else if (direction == Direction::Left && column > 0) {
                to = place - 1;
                isBlocked = isLevelBlocked[to];
            } else if (direction == Direction::Down && row + 1 < rows) {
                to = place + columns;
                isBlocked = isUprightBlocked[place];
            } else if (direction == Direction::Up && row > 0) {
                to = place - columns;
                isBlocked = isUprightBlocked[to];
            }
            if (isBlocked)
                continue;
            Point const one = pointAt(place);
            Point const other = pointAt(to);
            double cost = costs[next.state] + std::abs(one.x - other.x) + std::abs(one.y - other.y) +
                          (direction == heading ? 0 : kBend);
            cost += overlapAt(Rect::of(one, other), job);
            if (to == goal && direction != opposite(job.arriving))
                cost += kBend;
            std::size_t const state = to * 4 + static_cast<std::size_t>(direction);
            if (cost < costs[state] - kSame) {
                costs[state] = cost;
                before[state] = next.state;
                open.push({cost + rest(to), state});
            }
        }
    }
    if (found == static_cast<std::size_t>(-1))
        return false;
    std::vector<Point> middle;
    for (std::size_t state = found; state != static_cast<std::size_t>(-1); state = before[state])
        middle.push_back(pointAt(state / 4));
    std::reverse(middle.begin(), middle.end());
    job.candidates.clear();
    addWay(job, middle);
    judge(job);
    return true;
}

} // namespace flowmere::host::drawing
