#include "host/drawing/Layers.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace flowmere::host::drawing {

namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

constexpr double kBeside = 50;     // between neighbours of a layer
constexpr double kBelow = 50;      // between layers, and more for lines that turn there
constexpr double kForLine = 8;     // so much more for each of them
constexpr double kForLines = 80;   // and not more than this
constexpr double kForCaption = 34; // for captions of lines
constexpr double kLane = 24;       // of a line that passes a layer
constexpr double kPage = 1100;     // a flow that is no higher stays in one column
constexpr double kColumns = 110;   // between columns
constexpr double kParts = 90;      // between parts of the flow that do not hang together
constexpr double kAspect = 1.4;    // of what is wrapped into columns or rows

// A line over more layers than this goes its own way, without a lane.
constexpr int kLongestLane = 12;

// One part of the flow that hangs together.
class Layering {
public:
    Layering(std::vector<std::size_t> const& members, std::vector<Size> const& sizes, std::vector<Way> const& ways)
        : m_count(members.size()) {
        m_nodes.resize(m_count);
        for (std::size_t at = 0; at < m_count; ++at)
            m_nodes[at].size = sizes[members[at]];
        m_ways = ways;
        findLayers();
        addLanes();
        orderLayers();
        placeAcross();
        placeDown();
    }

    // In the order of the members.
    std::vector<Rect> rects() const {
        std::vector<Rect> result;
        for (std::size_t at = 0; at < m_count; ++at)
            result.push_back(Rect::around(m_nodes[at].centre, m_nodes[at].size));
        return result;
    }

private:
    struct Node {
        Size size;
        Point centre;
        int layer = 0;
        std::size_t position = 0;
        double wanted = 0;
        std::vector<std::size_t> up;
        std::vector<std::size_t> down;
    };

    // Ways that lead back are left out of what follows.
    std::vector<bool> waysBack() const {
        std::vector<std::vector<std::size_t>> out(m_count);
        std::vector<bool> hasWayIn(m_count);
        for (std::size_t way = 0; way < m_ways.size(); ++way) {
            out[m_ways[way].start].push_back(way);
            hasWayIn[m_ways[way].end] = true;
        }
        std::vector<std::size_t> roots;
        for (int pass = 0; pass < 2; ++pass)
            for (std::size_t node = 0; node < m_count; ++node)
                if (hasWayIn[node] == (pass == 1))
                    roots.push_back(node);

        enum class Visit : unsigned char { New, Open, Done };
        std::vector<Visit> visits(m_count, Visit::New);
        std::vector<bool> isBack(m_ways.size());
        std::vector<std::pair<std::size_t, std::size_t>> open; // node, and the next of its ways
        for (std::size_t const root : roots) {
            if (visits[root] != Visit::New)
                continue;
            visits[root] = Visit::Open;
            open.emplace_back(root, 0);
            while (!open.empty()) {
                auto& [node, next] = open.back();
                if (next == out[node].size()) {
                    visits[node] = Visit::Done;
                    open.pop_back();
                    continue;
                }
                std::size_t const way = out[node][next++];
                std::size_t const end = m_ways[way].end;
                if (visits[end] == Visit::Open) {
                    isBack[way] = true;
                } else if (visits[end] == Visit::New) {
                    visits[end] = Visit::Open;
                    open.emplace_back(end, 0);
                }
            }
        }
        return isBack;
    }

    // Each block comes below all that lead to it.
    void findLayers() {
        std::vector<bool> const isBack = waysBack();
        std::vector<Way> forward;
        for (std::size_t way = 0; way < m_ways.size(); ++way)
            if (!isBack[way])
                forward.push_back(m_ways[way]);
        m_ways = std::move(forward);

        std::vector<std::vector<std::size_t>> out(m_count);
        std::vector<std::size_t> waysIn(m_count);
        for (Way const& way : m_ways) {
            out[way.start].push_back(way.end);
            ++waysIn[way.end];
        }
        std::vector<std::size_t> ready;
        for (std::size_t node = 0; node < m_count; ++node)
            if (waysIn[node] == 0)
                ready.push_back(node);
        std::vector<std::size_t> const sources = ready;
        for (std::size_t next = 0; next < ready.size(); ++next)
            for (std::size_t const end : out[ready[next]]) {
                m_nodes[end].layer = std::max(m_nodes[end].layer, m_nodes[ready[next]].layer + 1);
                if (--waysIn[end] == 0)
                    ready.push_back(end);
            }
        // What begins elsewhere stands right above where it leads.
        for (std::size_t const source : sources) {
            int nearest = std::numeric_limits<int>::max();
            for (std::size_t const end : out[source])
                nearest = std::min(nearest, m_nodes[end].layer - 1);
            if (!out[source].empty())
                m_nodes[source].layer = nearest;
        }
    }

    void addLanes() {
        std::size_t lanes = 4 * m_count + 100;
        for (Way const& way : m_ways) {
            int const from = m_nodes[way.start].layer;
            int const to = m_nodes[way.end].layer;
            std::size_t above = way.start;
            if (to - from > 1) {
                auto const wanted = static_cast<std::size_t>(to - from - 1);
                if (to - from > kLongestLane || wanted > lanes)
                    continue;
                lanes -= wanted;
                for (int layer = from + 1; layer < to; ++layer) {
                    std::size_t const lane = m_nodes.size();
                    m_nodes.emplace_back();
                    m_nodes.back().size = {kLane, 0};
                    m_nodes.back().layer = layer;
                    join(above, lane);
                    above = lane;
                }
            }
            join(above, way.end);
        }
    }

    void join(std::size_t above, std::size_t below) {
        m_nodes[above].down.push_back(below);
        m_nodes[below].up.push_back(above);
    }

    void orderLayers() {
        int last = 0;
        for (Node const& node : m_nodes)
            last = std::max(last, node.layer);
        m_layers.resize(static_cast<std::size_t>(last) + 1);
        std::vector<bool> isSeen(m_nodes.size());
        std::vector<std::size_t> open;
        for (int pass = 0; pass < 2; ++pass)
            for (std::size_t root = 0; root < m_nodes.size(); ++root) {
                if (isSeen[root] || (pass == 0 && !m_nodes[root].up.empty()))
                    continue;
                isSeen[root] = true;
                open.push_back(root);
                while (!open.empty()) {
                    std::size_t const node = open.back();
                    open.pop_back();
                    m_layers[static_cast<std::size_t>(m_nodes[node].layer)].push_back(node);
                    for (auto below = m_nodes[node].down.rbegin(); below != m_nodes[node].down.rend(); ++below)
                        if (!isSeen[*below]) {
                            isSeen[*below] = true;
                            open.push_back(*below);
                        }
                }
            }
        number();
        int const sweeps = m_nodes.size() < 5000 ? 8 : 4;
        for (int sweep = 0; sweep < sweeps; ++sweep) {
            bool const isDown = sweep % 2 == 0;
            for (std::size_t step = 1; step < m_layers.size(); ++step)
                sortLayer(isDown ? step : m_layers.size() - 1 - step, isDown);
        }
    }

    void number() {
        for (std::vector<std::size_t> const& layer : m_layers)
            for (std::size_t position = 0; position < layer.size(); ++position)
                m_nodes[layer[position]].position = position;
    }

    // By where the neighbours stand in the layer above, or below.
    void sortLayer(std::size_t index, bool byAbove) {
        std::vector<std::size_t>& layer = m_layers[index];
        for (std::size_t const node : layer) {
            Node& entry = m_nodes[node];
            std::vector<std::size_t> const& neighbours = byAbove ? entry.up : entry.down;
            entry.wanted = static_cast<double>(entry.position);
            if (neighbours.empty())
                continue;
            entry.wanted = 0;
            for (std::size_t const neighbour : neighbours)
                entry.wanted += static_cast<double>(m_nodes[neighbour].position);
            entry.wanted /= static_cast<double>(neighbours.size());
        }
        std::stable_sort(layer.begin(), layer.end(), [&](std::size_t one, std::size_t other) {
            return m_nodes[one].wanted < m_nodes[other].wanted;
        });
        for (std::size_t position = 0; position < layer.size(); ++position)
            m_nodes[layer[position]].position = position;
    }

    void placeAcross() {
        for (std::vector<std::size_t> const& layer : m_layers) {
            double at = 0;
            for (std::size_t const node : layer) {
                m_nodes[node].centre.x = at + m_nodes[node].size.width / 2;
                at += m_nodes[node].size.width + kBeside;
            }
        }
        int const sweeps = m_nodes.size() < 5000 ? 12 : 6;
        for (int sweep = 0; sweep < sweeps; ++sweep) {
            bool const isDown = sweep % 2 == 0;
            for (std::size_t step = 0; step < m_layers.size(); ++step)
                alignLayer(m_layers[isDown ? step : m_layers.size() - 1 - step], isDown);
        }
    }

    // Each block goes as near as it can to the middle of its neighbours, without changing the order.
    void alignLayer(std::vector<std::size_t> const& layer, bool byAbove) {
        struct Group {
            double sum;
            double weight;
            std::size_t count;
            double place() const { return sum / weight; }
        };
        std::vector<Group> groups;
        std::vector<double> offsets;
        double offset = 0;
        for (std::size_t at = 0; at < layer.size(); ++at) {
            Node const& node = m_nodes[layer[at]];
            if (at > 0)
                offset += (m_nodes[layer[at - 1]].size.width + node.size.width) / 2 + kBeside;
            offsets.push_back(offset);
            std::vector<std::size_t> const& neighbours = byAbove ? node.up : node.down;
            double wanted = node.centre.x;
            double weight = 0.05;
            if (!neighbours.empty()) {
                wanted = 0;
                for (std::size_t const neighbour : neighbours)
                    wanted += m_nodes[neighbour].centre.x;
                wanted /= static_cast<double>(neighbours.size());
                weight = node.size.height == 0 ? 2 : 1;
            }
            groups.push_back({(wanted - offset) * weight, weight, 1});
            while (groups.size() > 1 && groups[groups.size() - 2].place() > groups.back().place()) {
                Group const last = groups.back();
                groups.pop_back();
                groups.back().sum += last.sum;
                groups.back().weight += last.weight;
                groups.back().count += last.count;
            }
        }
        std::size_t at = 0;
        for (Group const& group : groups)
            for (std::size_t left = group.count; left > 0; --left, ++at)
                m_nodes[layer[at]].centre.x = group.place() + offsets[at];
    }

    struct Band {
        double height = 0;
        double below = 0; // the gap to the next one
        double left = 0;
        double right = 0;
        std::size_t lines = 0; // that go on downwards
    };

    std::vector<Band> bands() const {
        std::vector<Band> result(m_layers.size());
        std::vector<bool> hasCaption(m_layers.size());
        for (Way const& way : m_ways)
            if (way.hasCaption)
                hasCaption[static_cast<std::size_t>(m_nodes[way.start].layer)] = true;
        for (std::size_t index = 0; index < m_layers.size(); ++index) {
            Band& band = result[index];
            band.left = std::numeric_limits<double>::max();
            band.right = std::numeric_limits<double>::lowest();
            std::size_t turns = 0;
            for (std::size_t const node : m_layers[index]) {
                Node const& entry = m_nodes[node];
                band.height = std::max(band.height, entry.size.height);
                band.left = std::min(band.left, entry.centre.x - entry.size.width / 2);
                band.right = std::max(band.right, entry.centre.x + entry.size.width / 2);
                band.lines += entry.down.size();
                for (std::size_t const below : entry.down)
                    turns += std::abs(m_nodes[below].centre.x - entry.centre.x) > 1 ? 1 : 0;
            }
            band.below = kBelow + std::min(kForLines, kForLine * static_cast<double>(turns > 1 ? turns - 1 : 0)) +
                         (hasCaption[index] ? kForCaption : 0);
        }
        return result;
    }

    void placeDown() {
        std::vector<Band> const all = bands();
        double height = 0;
        double width = 0;
        for (Band const& band : all) {
            height += band.height + band.below;
            width = std::max(width, band.right - band.left);
        }
        double columns = 1;
        if (height > kPage)
            columns = std::max(1.0, std::round(std::sqrt(kAspect * height / (width + kColumns))));
        double const goal = height / columns;

        double across = 0;
        for (std::size_t first = 0; first < all.size();) {
            std::size_t const end = columns > 1 ? columnEnd(all, first, goal) : all.size();
            double left = std::numeric_limits<double>::max();
            double right = std::numeric_limits<double>::lowest();
            for (std::size_t index = first; index < end; ++index) {
                left = std::min(left, all[index].left);
                right = std::max(right, all[index].right);
            }
            double down = 0;
            for (std::size_t index = first; index < end; ++index) {
                for (std::size_t const node : m_layers[index]) {
                    m_nodes[node].centre.x += across - left;
                    m_nodes[node].centre.y = down + all[index].height / 2;
                }
                down += all[index].height + all[index].below;
            }
            across += right - left + kColumns;
            first = end;
        }
    }

    // Near the height that is wanted, where the fewest lines go on.
    static std::size_t columnEnd(std::vector<Band> const& all, std::size_t first, double goal) {
        std::size_t best = all.size();
        std::size_t fewest = std::numeric_limits<std::size_t>::max();
        double height = 0;
        for (std::size_t index = first; index < all.size(); ++index) {
            height += all[index].height;
            if (height > goal * 1.1 && best != all.size())
                return best;
            bool const isNear = height > goal * 0.85;
            if (isNear && index + 1 < all.size() &&
                (all[index].lines < fewest || (all[index].lines == fewest && height <= goal))) {
                fewest = all[index].lines;
                best = index + 1;
            }
            height += all[index].below;
        }
        // What is left is no more than a column.
        return height > goal * 1.15 ? best : all.size();
    }

    std::size_t m_count;
    std::vector<Node> m_nodes; // the blocks, and behind them the lanes
    std::vector<Way> m_ways;
    std::vector<std::vector<std::size_t>> m_layers;
};

std::size_t rootOf(std::vector<std::size_t>& above, std::size_t node) {
    while (above[node] != node) {
        above[node] = above[above[node]];
        node = above[node];
    }
    return node;
}

struct Part {
    std::vector<std::size_t> members;
    std::vector<Rect> rects;
    Size size;
};

// Rows of about the same width, in the order given.
void placeInRows(std::vector<Part>& parts, double gap) {
    double area = 0;
    double widest = 0;
    for (Part const& part : parts) {
        area += (part.size.width + gap) * (part.size.height + gap);
        widest = std::max(widest, part.size.width);
    }
    double const limit = std::max(widest, std::sqrt(area * kAspect));
    Point at;
    double height = 0;
    for (Part& part : parts) {
        if (at.x > 0 && at.x + part.size.width > limit) {
            at = {0, at.y + height + gap};
            height = 0;
        }
        for (Rect& rect : part.rects)
            rect = rect.moved(at.x, at.y);
        at.x += part.size.width + gap;
        height = std::max(height, part.size.height);
    }
}

void normalise(Part& part) {
    Rect bounds = part.rects.front();
    for (Rect const& rect : part.rects)
        bounds = bounds.united(rect);
    for (Rect& rect : part.rects)
        rect = rect.moved(-bounds.left, -bounds.top);
    part.size = {bounds.width(), bounds.height()};
}

} // namespace

std::vector<Rect> arrangeInLayers(std::vector<Size> const& sizes, std::vector<Way> const& ways) {
    std::vector<std::size_t> above(sizes.size());
    std::iota(above.begin(), above.end(), std::size_t{0});
    std::vector<bool> isJoined(sizes.size());
    for (Way const& way : ways) {
        if (way.start == way.end)
            continue;
        isJoined[way.start] = isJoined[way.end] = true;
        std::size_t const one = rootOf(above, way.start);
        std::size_t const other = rootOf(above, way.end);
        above[std::max(one, other)] = std::min(one, other);
    }

    // Blocks without ways stand together, behind the flows.
    std::vector<Part> parts;
    Part loose;
    std::vector<std::size_t> partOf(sizes.size(), kNone);
    std::vector<std::size_t> placeIn(sizes.size());
    for (std::size_t node = 0; node < sizes.size(); ++node) {
        if (!isJoined[node]) {
            loose.members.push_back(node);
            continue;
        }
        std::size_t const root = rootOf(above, node);
        if (partOf[root] == kNone) {
            partOf[root] = parts.size();
            parts.emplace_back();
        }
        partOf[node] = partOf[root];
        placeIn[node] = parts[partOf[node]].members.size();
        parts[partOf[node]].members.push_back(node);
    }
    std::vector<std::vector<Way>> waysIn(parts.size());
    for (Way const& way : ways)
        if (way.start != way.end)
            waysIn[partOf[way.start]].push_back({placeIn[way.start], placeIn[way.end], way.hasCaption});
    for (std::size_t index = 0; index < parts.size(); ++index) {
        parts[index].rects = Layering(parts[index].members, sizes, waysIn[index]).rects();
        normalise(parts[index]);
    }
    if (!loose.members.empty()) {
        std::vector<Part> singles;
        for (std::size_t const node : loose.members)
            singles.push_back({{node}, {Rect{0, 0, sizes[node].width, sizes[node].height}}, sizes[node]});
        placeInRows(singles, kBeside);
        for (Part const& single : singles)
            loose.rects.push_back(single.rects.front());
        normalise(loose);
        parts.push_back(std::move(loose));
    }
    placeInRows(parts, kParts);

    std::vector<Rect> result(sizes.size());
    for (Part const& part : parts)
        for (std::size_t at = 0; at < part.members.size(); ++at)
            result[part.members[at]] = part.rects[at];
    return result;
}

} // namespace flowmere::host::drawing
