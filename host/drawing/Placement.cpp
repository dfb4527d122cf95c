#include "host/drawing/Placement.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <map>
#include <numeric>
#include <set>

namespace flowmere::host::drawing {

namespace {

// Less is no place that anybody has drawn a block in, but for bars, which may be thin.
constexpr double kSmallestWidth = 4;
constexpr double kSmallestSide = 12;
// A diagram of 10,000 inches is no diagram.
constexpr double kWidest = 1e6;
// Borders may touch, and share a line.
constexpr double kTouch = 1;
// Between a block and one that was moved away from it.
constexpr double kGap = 40;
// Middles so near to each other are meant to be one: files truncate to whole units.
constexpr double kSnap = 1.5;

std::vector<std::size_t> numbers(std::size_t count) {
    std::vector<std::size_t> result(count);
    std::iota(result.begin(), result.end(), std::size_t{0});
    return result;
}

// How many of the blocks with a place share room with another one.
std::size_t countOverlapping(std::vector<Rect> const& places) {
    struct Event {
        double at;
        bool isEnd;
        std::size_t place;
    };
    std::vector<Event> events;
    for (std::size_t at = 0; at < places.size(); ++at)
        if (isPlace(places[at])) {
            events.push_back({places[at].left, false, at});
            events.push_back({places[at].right - kTouch, true, at});
        }
    std::sort(events.begin(), events.end(), [](Event const& one, Event const& other) {
        if (one.at != other.at)
            return one.at < other.at;
        return one.isEnd != other.isEnd ? one.isEnd : one.place < other.place;
    });
    // The places that the sweep is in, by their upper edges: none over another, so the neighbours tell all.
    std::multimap<double, std::size_t> open;
    std::vector<std::multimap<double, std::size_t>::iterator> entries(places.size(), open.end());
    std::vector<bool> isOverlapping(places.size());
    for (Event const& event : events) {
        if (event.isEnd) {
            if (entries[event.place] != open.end())
                open.erase(entries[event.place]);
            entries[event.place] = open.end();
            continue;
        }
        Rect const& place = places[event.place];
        auto const below = open.lower_bound(place.top);
        std::size_t other = event.place;
        if (below != open.end() && places[below->second].top < place.bottom - kTouch)
            other = below->second;
        if (below != open.begin() && places[std::prev(below)->second].bottom - kTouch > place.top)
            other = std::prev(below)->second;
        if (other == event.place)
            entries[event.place] = open.emplace(place.top, event.place);
        else
            isOverlapping[event.place] = isOverlapping[other] = true;
    }
    return static_cast<std::size_t>(std::count(isOverlapping.begin(), isOverlapping.end(), true));
}

bool isTooWide(std::vector<Rect> const& places) {
    Rect bounds{std::numeric_limits<double>::max(), std::numeric_limits<double>::max(),
                std::numeric_limits<double>::lowest(), std::numeric_limits<double>::lowest()};
    for (Rect const& place : places)
        if (isPlace(place))
            bounds = bounds.united(place);
    return bounds.width() > kWidest || bounds.height() > kWidest;
}

// Below the block that leads there, or above the one that it leads to, or else below all.
void findPlaces(std::vector<Rect>& places, std::vector<Item> const& items, std::vector<Way> const& ways) {
    std::vector<std::vector<std::size_t>> next(items.size());
    for (Way const& way : ways) {
        next[way.start].push_back(way.end);
        next[way.end].push_back(way.start);
    }
    std::vector<std::set<std::size_t>> above(items.size());
    std::vector<std::size_t> known;
    Rect bounds{};
    bool isFirst = true;
    for (std::size_t at = 0; at < items.size(); ++at)
        if (isPlace(places[at])) {
            known.push_back(at);
            bounds = isFirst ? places[at] : bounds.united(places[at]);
            isFirst = false;
        }
    for (Way const& way : ways)
        if (!isPlace(places[way.end]))
            above[way.end].insert(way.start);
    auto const follow = [&](std::size_t first) {
        for (std::size_t step = first; step < known.size(); ++step)
            for (std::size_t const neighbour : next[known[step]]) {
                if (isPlace(places[neighbour]))
                    continue;
                Rect const from = places[known[step]];
                Size const size = items[neighbour].size;
                bool const isBelow = above[neighbour].contains(known[step]);
                double const y = isBelow ? from.bottom + kGap + size.height / 2 : from.top - kGap - size.height / 2;
                places[neighbour] = Rect::around({from.centre().x, y}, size);
                known.push_back(neighbour);
            }
    };
    follow(0);
    double x = bounds.left;
    double const y = std::accumulate(known.begin(), known.end(), bounds.bottom, [&](double lowest, std::size_t at) {
        return std::max(lowest, places[at].bottom);
    });
    for (std::size_t at = 0; at < items.size(); ++at)
        if (!isPlace(places[at])) {
            Size const size = items[at].size;
            places[at] = {x, y + kGap, x + size.width, y + kGap + size.height};
            std::size_t const first = known.size();
            known.push_back(at);
            follow(first);
            x += size.width + kGap;
        }
}

// From top to bottom, each block as far down as those above it need.
void moveApart(std::vector<Rect>& places, std::vector<bool>& isMoved) {
    std::vector<std::size_t> order = numbers(places.size());
    std::stable_sort(order.begin(), order.end(), [&](std::size_t one, std::size_t other) {
        return places[one].top != places[other].top ? places[one].top < places[other].top
                                                    : places[one].left < places[other].left;
    });
    // How far down the plane is taken: from each x on, up to the next one. Below what was moved stays a gap.
    struct Taken {
        double until;
        bool isMoved;
    };
    constexpr double kFar = std::numeric_limits<double>::lowest();
    std::map<double, Taken> skyline{{kFar, {kFar, false}}};
    auto const cut = [&](double x) {
        auto const next = skyline.upper_bound(x);
        return std::prev(next)->first == x ? std::prev(next) : skyline.emplace_hint(next, x, std::prev(next)->second);
    };
    for (std::size_t const at : order) {
        Rect& place = places[at];
        auto const first = cut(place.left + kTouch / 2);
        auto const end = cut(std::max(place.right - kTouch / 2, place.left + kTouch));
        double lowest = kFar;
        bool isMet = isMoved[at];
        for (auto part = first; part != end; ++part) {
            Taken const& taken = part->second;
            lowest = std::max(lowest, taken.until);
            isMet = isMet || taken.until + (taken.isMoved ? kGap / 2 : -kTouch) > place.top;
        }
        if (isMet && lowest + kGap > place.top) {
            place = place.moved(0, lowest + kGap - place.top);
            isMoved[at] = true;
        }
        skyline.erase(std::next(first), end);
        first->second = {std::max(lowest, place.bottom), isMoved[at]};
    }
}

// Brings middles that are a unit apart to the same value, so that lines between them are straight.
void snap(std::vector<Rect>& rects, bool isAcross) {
    auto const middle = [&](std::size_t at) {
        return isAcross ? rects[at].centre().x : rects[at].centre().y;
    };
    std::vector<std::size_t> order = numbers(rects.size());
    std::sort(order.begin(), order.end(), [&](std::size_t one, std::size_t other) {
        return middle(one) != middle(other) ? middle(one) < middle(other) : one < other;
    });
    double base = 0;
    for (std::size_t step = 0; step < order.size(); ++step) {
        double const at = middle(order[step]);
        if (step == 0 || at - base > kSnap)
            base = at;
        Rect& rect = rects[order[step]];
        Point const centre = rect.centre();
        rect = Rect::around(isAcross ? Point{base, centre.y} : Point{centre.x, base}, {rect.width(), rect.height()});
    }
}

} // namespace

bool isPlace(Rect const& rect) {
    return rect.width() >= kSmallestWidth && rect.height() >= kSmallestWidth &&
           std::max(rect.width(), rect.height()) >= kSmallestSide;
}

Stretch::Stretch(std::vector<Growth> const& growths) {
    auto const middle = [](Growth const& growth) {
        return (growth.from + growth.to) / 2;
    };
    std::vector<Growth> wanted;
    for (Growth const& growth : growths)
        if (growth.wanted > growth.to - growth.from)
            wanted.push_back(growth);
    std::vector<double> places;
    for (Growth const& growth : wanted)
        places.push_back(middle(growth));
    std::sort(places.begin(), places.end());
    places.erase(std::unique(places.begin(), places.end()), places.end());
    // The largest first: others may find that there is room enough.
    std::stable_sort(wanted.begin(), wanted.end(), [](Growth const& one, Growth const& other) {
        return one.wanted - (one.to - one.from) > other.wanted - (other.to - other.from);
    });

    // Sums over the places up to each, in a tree of partial sums.
    std::vector<double> tree(places.size() + 1);
    auto const before = [&](std::vector<double>::const_iterator end) {
        double sum = 0;
        for (auto at = static_cast<std::size_t>(end - places.cbegin()); at > 0; at &= at - 1)
            sum += tree[at];
        return sum;
    };
    std::vector<double> extras(places.size());
    for (Growth const& growth : wanted) {
        double const made = before(std::lower_bound(places.cbegin(), places.cend(), growth.to)) -
                            before(std::upper_bound(places.cbegin(), places.cend(), growth.from));
        double const missing = growth.wanted - (growth.to - growth.from) - made;
        if (missing <= 0)
            continue;
        auto const place = static_cast<std::size_t>(std::lower_bound(places.cbegin(), places.cend(), middle(growth)) -
                                                    places.cbegin());
        extras[place] += missing;
        for (std::size_t at = place + 1; at < tree.size(); at += at & (~at + 1))
            tree[at] += missing;
    }
    double sum = 0;
    for (std::size_t place = 0; place < places.size(); ++place) {
        if (extras[place] == 0)
            continue;
        m_insertions.push_back({places[place], sum, extras[place]});
        sum += extras[place];
    }
}

double Stretch::operator()(double value) const {
    auto const next = std::lower_bound(m_insertions.begin(), m_insertions.end(), value,
                                       [](Insertion const& insertion, double at) { return insertion.at < at; });
    // What stands in the very middle stays there.
    if (next != m_insertions.end() && next->at == value)
        return value + next->before + next->extra / 2;
    if (next == m_insertions.begin())
        return value;
    Insertion const& last = *std::prev(next);
    return value + last.before + last.extra;
}

Placement placeBlocks(std::vector<Item> const& items, std::vector<Way> const& ways) {
    Placement result;
    result.isMoved.resize(items.size());
    std::vector<Rect> places;
    std::size_t missing = 0;
    for (Item const& item : items) {
        places.push_back(item.place);
        if (!isPlace(item.place)) {
            ++missing;
            result.isMoved[places.size() - 1] = true;
        }
    }
    std::size_t const overlapping = countOverlapping(places);
    if ((missing + overlapping) * 2 > items.size() || isTooWide(places)) {
        std::vector<Size> sizes;
        for (Item const& item : items)
            sizes.push_back(item.size);
        result.rects = arrangeInLayers(sizes, ways);
        result.isMoved.assign(items.size(), true);
        result.isArranged = true;
        return result;
    }
    if (missing > 0)
        findPlaces(places, items, ways);
    if (missing + overlapping > 0)
        moveApart(places, result.isMoved);
    result.moved = static_cast<std::size_t>(std::count(result.isMoved.begin(), result.isMoved.end(), true));

    std::vector<Stretch::Growth> across;
    std::vector<Stretch::Growth> down;
    for (std::size_t at = 0; at < items.size(); ++at) {
        across.push_back({places[at].left, places[at].right, items[at].size.width});
        down.push_back({places[at].top, places[at].bottom, items[at].size.height});
    }
    result.across = Stretch(across);
    result.down = Stretch(down);
    for (std::size_t at = 0; at < items.size(); ++at) {
        Rect const& place = places[at];
        Point const centre{(result.across(place.left) + result.across(place.right)) / 2,
                           (result.down(place.top) + result.down(place.bottom)) / 2};
        result.rects.push_back(Rect::around(centre, items[at].size));
    }
    snap(result.rects, true);
    snap(result.rects, false);
    return result;
}

} // namespace flowmere::host::drawing
