#include "host/drawing/Layout.h"

#include "host/drawing/Looks.h"
#include "host/drawing/Placement.h"
#include "host/drawing/Router.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace flowmere::host::drawing {

namespace {

constexpr double kPadding = 26; // between a frame and what is inside
constexpr double kPageMargin = 24;
constexpr double kLabelWidth = 130;
constexpr double kLabelHeight = 64;
constexpr double kLabelGap = 4;
constexpr double kDocking = 30; // a route that ends farther from its grip is out of date
constexpr double kOff = 3;      // what truncation to whole units takes
constexpr double kWidestTitle = 360;

class Layouter {
public:
    Layouter(Diagram const& diagram, bool hasLegend, TextMeasure& measure)
        : m_diagram(diagram), m_hasLegend(hasLegend), m_measure(measure) {
        m_layout.boxes.resize(diagram.blocks.size());
        m_layout.lines.resize(diagram.connectors.size());
        m_contents.resize(diagram.blocks.size());
        m_connectors.resize(diagram.blocks.size());
        m_placeIn.resize(diagram.blocks.size());
        for (std::size_t at = 0; at < diagram.connectors.size(); ++at)
            m_connectors[diagram.connectors[at].container].push_back(at);
        for (Block const& block : diagram.blocks)
            for (std::size_t place = 0; place < block.children.size(); ++place)
                m_placeIn[block.children[place]] = place;
    }

    Layout run() {
        // Each container after those inside it, so that their sizes are known.
        for (std::size_t block = m_diagram.blocks.size(); block-- > 0;)
            if (m_diagram.blocks[block].isOpen)
                layOutInside(block);
        moveToPage();
        for (std::size_t block = 1; block < m_diagram.blocks.size(); ++block)
            if (!m_diagram.blocks[block].isOpen)
                fitInside(block);
        addTitle();
        if (m_hasLegend)
            addLegend();
        m_layout.bounds = m_layout.bounds.inflated(kPageMargin);
        return std::move(m_layout);
    }

private:
    // What is inside a container, from the origin on.
    struct Content {
        Size size;
        Size titleRoom; // of the text of the title
        std::vector<Label> labels;
    };

    Block const& block(std::size_t number) const { return m_diagram.blocks[number]; }

    Size sizeOf(std::size_t number) {
        Block const& entry = block(number);
        if (entry.isOpen) {
            Content const& content = m_contents[number];
            Size const frame{std::max(content.size.width + 2 * kPadding, content.titleRoom.width + 50),
                             content.size.height + 2 * kPadding + titleHeight(number)};
            return {std::max(frame.width, entry.place.width()), std::max(frame.height, entry.place.height())};
        }
        if (isPlace(entry.place))
            return {entry.place.width(), entry.place.height()};
        // As much as the caption needs, as far as that is sensible.
        Size size = usualSize(entry);
        for (int tries = 0; tries < 7; ++tries) {
            Rect const rect{0, 0, size.width, size.height};
            std::vector<Rect> const rooms = captionRooms(entry, rect);
            Caption const caption = fitCaption(m_measure, entry.caption, entry.font, rooms);
            if (entry.caption.empty() || (!caption.text.empty() && !caption.isCut && caption.size >= entry.font.size &&
                                          caption.wrap == Wrap::Words))
                break;
            if (entry.shape == Shape::Bar)
                break;
            size.width = std::min(size.width * 1.12, 320.0);
            size.height = std::min(size.height * 1.22, 240.0);
        }
        return {std::round(size.width), std::round(size.height)};
    }

    double titleHeight(std::size_t number) const {
        double const height = m_contents[number].titleRoom.height;
        return std::max(height, kSignSize) + 2 * kTitleMargin;
    }

    void layOutInside(std::size_t container) {
        Block const& entry = block(container);
        Content& content = m_contents[container];
        std::vector<Item> items;
        for (std::size_t const child : entry.children) {
            items.push_back({block(child).place, sizeOf(child)});
        }
        std::vector<Way> ways;
        for (std::size_t const number : m_connectors[container]) {
            Connector const& connector = m_diagram.connectors[number];
            ways.push_back({m_placeIn[connector.start], m_placeIn[connector.end], !connector.caption.empty()});
        }
        Placement const placement = placeBlocks(items, ways);
        m_layout.boxes[container].isArranged = placement.isArranged;
        m_layout.moved += placement.isArranged ? 0 : placement.moved;

        Router router(placement.rects);
        routeAll(container, placement, items, router);
        placeLabels(container, placement.rects, router, content.labels);
        findBounds(container, placement.rects, content);

        if (container > 0) {
            std::string const text = breakable(entry.caption);
            double const wide = std::max(content.size.width, 100.0);
            Size room = m_measure.measure(text, entry.font, entry.font.size, 0, Wrap::Words);
            if (room.width > wide)
                room = m_measure.measure(text, entry.font, entry.font.size, std::max(wide, kWidestTitle / 2),
                                         Wrap::Anywhere);
            content.titleRoom = {std::min(room.width, std::max(wide, kWidestTitle)) + 1, std::min(room.height, 60.0)};
            if (text.empty())
                content.titleRoom = {};
        }
    }

    static int dockingGrip(Rect const& from, Rect const& to) {
        Point const a = from.centre();
        Point const b = to.centre();
        if (to.top >= from.bottom)
            return 6;
        if (to.left >= from.right)
            return 4;
        if (to.right <= from.left)
            return 8;
        if (to.bottom <= from.top)
            return b.x > a.x ? 4 : 8;
        return 6;
    }

    // The grip of the other end that goes with it.
    static int answeringGrip(int grip, Rect const& from, Rect const& to) {
        if (to.bottom <= from.top)
            return grip == 6 ? 2 : grip;
        return grip == 6 ? 2 : grip == 4 ? 8 : grip == 8 ? 4 : 6;
    }

    void routeAll(std::size_t container, Placement const& placement, std::vector<Item> const& items, Router& router) {
        std::vector<std::size_t> own;
        std::vector<std::pair<double, std::size_t>> others;
        for (std::size_t const number : m_connectors[container]) {
            Connector const& connector = m_diagram.connectors[number];
            Line& line = m_layout.lines[number];
            Rect const& from = placement.rects[m_placeIn[connector.start]];
            Rect const& to = placement.rects[m_placeIn[connector.end]];
            line.startGrip = connector.startGrip;
            line.endGrip = connector.endGrip;
            if (!isGrip(line.startGrip))
                line.startGrip = dockingGrip(from, to);
            if (!isGrip(line.endGrip))
                line.endGrip = connector.start == connector.end ? 4 : answeringGrip(line.startGrip, from, to);
            if (!keepRoute(number, placement, items, router)) {
                Point const begin = gripPoint(from, line.startGrip);
                Point const end = gripPoint(to, line.endGrip);
                others.emplace_back(std::abs(begin.x - end.x) + std::abs(begin.y - end.y), number);
            }
        }
        // Short lines have fewer ways to go.
        std::sort(others.begin(), others.end());
        for (auto const& [distance, number] : others) {
            Connector const& connector = m_diagram.connectors[number];
            Line& line = m_layout.lines[number];
            line.points =
                router.route({m_placeIn[connector.start], line.startGrip}, {m_placeIn[connector.end], line.endGrip});
        }
    }

    // The route of the model, when it still leads from the one block to the other.
    bool keepRoute(std::size_t number, Placement const& placement, std::vector<Item> const& items, Router& router) {
        Connector const& connector = m_diagram.connectors[number];
        Line& line = m_layout.lines[number];
        std::size_t const start = m_placeIn[connector.start];
        std::size_t const end = m_placeIn[connector.end];
        if (connector.route.empty() || placement.isMoved[start] || placement.isMoved[end])
            return false;
        std::vector<Point> points;
        for (Point const& point : connector.route)
            points.push_back({placement.across(point.x), placement.down(point.y)});
        Point const begin = gripPoint(placement.rects[start], line.startGrip);
        Point const goal = gripPoint(placement.rects[end], line.endGrip);
        auto const isNear = [](Point const& one, Point const& other) {
            return std::abs(one.x - other.x) <= kDocking && std::abs(one.y - other.y) <= kDocking;
        };
        if (!isNear(points.front(), begin))
            return false;
        dock(points, begin);
        std::reverse(points.begin(), points.end());
        if (points.size() > 1 && isNear(points.front(), goal)) {
            dock(points, goal);
        } else {
            // The last piece is left out of a file when it goes straight on.
            Point& last = points.front();
            bool const isUpright = points.size() > 1 && last.x == points[1].x;
            bool const isLevel = points.size() > 1 && last.y == points[1].y;
            if (isUpright && std::abs(last.y - goal.y) <= kOff)
                last.y = goal.y;
            else if (isLevel && std::abs(last.x - goal.x) <= kOff)
                last.x = goal.x;
            else if (last.x != goal.x && last.y != goal.y)
                points.insert(points.begin(), isVertical(directionsOf(line.endGrip).front()) ? Point{goal.x, last.y}
                                                                                             : Point{last.x, goal.y});
            points.insert(points.begin(), goal);
        }
        std::reverse(points.begin(), points.end());
        // One that runs aslant by more than a little belongs to blocks that stood elsewhere.
        points = simplified(orthogonal(points));
        if (points.size() < 2)
            return false;
        // What was drawn around a closed block may lead through it when it is open.
        for (std::size_t at = 1; at < points.size(); ++at) {
            Rect const piece = Rect::of(points[at - 1], points[at]);
            bool isFree = true;
            router.blocks().visit(piece, [&](std::size_t other) {
                Rect const& rect = placement.rects[other];
                bool const hasGrown =
                    rect.width() > items[other].place.width() + 1 || rect.height() > items[other].place.height() + 1;
                isFree = !hasGrown || !rect.overlaps(piece.inflated(0.5), 1);
                return isFree;
            });
            if (!isFree)
                return false;
        }
        line.points = points;
        router.keep(points, {start, line.startGrip}, {end, line.endGrip});
        return true;
    }

    // Makes a route begin at the grip, and keeps its first piece straight.
    static void dock(std::vector<Point>& points, Point const& grip) {
        Point const old = points.front();
        points.front() = grip;
        if (points.size() < 3)
            return;
        if (points[1].x == old.x && points[1].y != old.y)
            points[1].x = grip.x;
        else if (points[1].y == old.y)
            points[1].y = grip.y;
    }

    // Labels of lines, and captions that do not fit into their bars.
    void placeLabels(std::size_t container, std::vector<Rect> const& rects, Router const& router,
                     std::vector<Label>& labels) {
        SpaceIndex taken(80);
        auto const isOnBlock = [&](Rect const& area, std::size_t own) {
            bool found = false;
            router.blocks().visit(area, [&](std::size_t number) {
                found = number != own && router.blocks()[number].overlaps(area);
                return !found;
            });
            return found;
        };
        constexpr double kNoPlace = std::numeric_limits<double>::max();
        // The best place for a label, and what is wrong with it: 0 when it says clearly what it belongs to. `line` is
        // the label's own, and empty for that of a block.
        struct Place {
            double cost;
            Rect area;
        };
        auto const find = [&](std::vector<Rect> const& places, std::size_t own, std::vector<Point> const& line) {
            Place best{kNoPlace, {}};
            for (std::size_t at = 0; at < places.size() && best.cost > 0; ++at) {
                Rect const& place = places[at];
                if (isOnBlock(place.inflated(1), own) || taken.overlaps(place))
                    continue;
                double cost = 0;
                router.pieces().visit(place.inflated(1), [&](std::size_t) {
                    cost += 40;
                    return true;
                });
                double const away = distance(place, line);
                if (cost == 0 && away > kLabelGap + 1)
                    cost = 10;
                // Beside another line it would be taken for the label of that one.
                if (cost < 30 && away > 1)
                    router.pieces().visit(place.inflated(away - 1), [&](std::size_t) {
                        cost = 30;
                        return false;
                    });
                if (cost > 0)
                    cost += static_cast<double>(at);
                if (cost < best.cost)
                    best = {cost, place};
            }
            return best;
        };
        auto const put = [&](Label label, Rect const& area) {
            label.caption.area = area;
            taken.add(area);
            labels.push_back(std::move(label));
        };
        for (std::size_t const child : block(container).children) {
            if (block(child).shape != Shape::Bar || block(child).isOpen)
                continue;
            Rect const& rect = rects[m_placeIn[child]];
            std::vector<Rect> const rooms = captionRooms(block(child), rect);
            Caption const inside = fitCaption(m_measure, block(child).caption, block(child).font, rooms);
            if (block(child).caption.empty() || (!inside.text.empty() && !inside.isCut))
                continue;
            auto [caption, size] = labelOf(block(child).caption);
            Label label;
            label.block = child;
            label.caption = std::move(caption);
            if (Place const place = find(placesAround(barOf(rect), size), m_placeIn[child], {}); place.cost < kNoPlace)
                put(std::move(label), place.area);
        }
        for (std::size_t const number : m_connectors[container]) {
            std::string const& text = m_diagram.connectors[number].caption;
            if (text.empty())
                continue;
            std::vector<Point> const& line = m_layout.lines[number].points;
            Label label;
            label.connector = number;
            Place best{kNoPlace, {}};
            // A label in two lines finds a place between blocks where one that is long does not.
            for (double const width : {kLabelWidth, kLabelWidth * 2 / 3}) {
                auto [caption, size] = labelOf(text, width);
                if (caption.text.empty() || (best.cost < kNoPlace && (caption.isCut || caption.wrap != Wrap::Words)))
                    break;
                if (Place const place = find(placesAlong(line, size), Label::kNone, line); place.cost < best.cost) {
                    best = place;
                    label.caption = std::move(caption);
                }
                if (best.cost == 0)
                    break;
            }
            if (best.cost < kNoPlace)
                put(std::move(label), best.area);
            else if (!breakable(text).empty())
                ++m_layout.unlabelled;
        }
    }

    // From an area to the nearest piece of a line; 0 without a line.
    static double distance(Rect const& area, std::vector<Point> const& line) {
        double nearest = line.size() < 2 ? 0 : std::numeric_limits<double>::max();
        for (std::size_t at = 1; at < line.size(); ++at) {
            Rect const piece = Rect::of(line[at - 1], line[at]);
            nearest = std::min(nearest, std::max({piece.left - area.right, area.left - piece.right,
                                                  piece.top - area.bottom, area.top - piece.bottom, 0.0}));
        }
        return nearest;
    }

    std::pair<Caption, Size> labelOf(std::string const& text, double widest = kLabelWidth) {
        Font const font = labelFont();
        Caption caption;
        caption.text = breakable(text);
        caption.size = font.size;
        Size size = m_measure.measure(caption.text, font, font.size, 0, Wrap::Words);
        if (size.width > widest) {
            size = m_measure.measure(caption.text, font, font.size, widest, Wrap::Words);
            if (size.width > widest) {
                caption.wrap = Wrap::Anywhere;
                size = m_measure.measure(caption.text, font, font.size, widest, Wrap::Anywhere);
            }
        }
        if (size.height > kLabelHeight) {
            caption.isCut = true;
            size.height = kLabelHeight;
        }
        // A little more than was measured, so that no rounding breaks a line.
        return {std::move(caption), {size.width + 1, size.height}};
    }

    static std::vector<Rect> placesAround(Rect const& rect, Size const& size) {
        Point const centre = rect.centre();
        double const w = size.width;
        double const h = size.height;
        std::vector<Rect> places;
        for (double const away : {kLabelGap, 14.0, 28.0}) {
            places.push_back(Rect{0, 0, w, h}.moved(rect.right + away, centre.y - h / 2));
            places.push_back(Rect{0, 0, w, h}.moved(rect.left - away - w, centre.y - h / 2));
            for (double const x : {rect.right - w, rect.left, centre.x + kLabelGap, centre.x - kLabelGap - w}) {
                places.push_back(Rect{0, 0, w, h}.moved(x, rect.top - away - h));
                places.push_back(Rect{0, 0, w, h}.moved(x, rect.bottom + away));
            }
        }
        return places;
    }

    // Beside the pieces of the line, from its start on; then around its middle.
    static std::vector<Rect> placesAlong(std::vector<Point> const& points, Size const& size) {
        std::vector<Rect> places;
        double const w = size.width;
        double const h = size.height;
        constexpr std::array kShares{0.0, 0.5, 0.25, 0.75, 1.0};
        for (double const share : kShares)
            for (std::size_t at = 1; at < points.size(); ++at) {
                Point const& a = points[at - 1];
                Point const& b = points[at];
                bool const isUpright = std::abs(a.x - b.x) < std::abs(a.y - b.y);
                double const length = isUpright ? std::abs(a.y - b.y) : std::abs(a.x - b.x);
                double const need = isUpright ? h : w;
                // As far along as leaves the whole label beside the piece, where it is long enough.
                double const slack = std::max(0.0, length - need - 2 * kLabelGap);
                double const along = length < need ? length / 2 : kLabelGap + need / 2 + slack * share;
                double const x = a.x + (b.x - a.x) / std::max(length, 1.0) * along;
                double const y = a.y + (b.y - a.y) / std::max(length, 1.0) * along;
                if (isUpright) {
                    places.push_back(Rect{0, 0, w, h}.moved(x + kLabelGap, y - h / 2));
                    places.push_back(Rect{0, 0, w, h}.moved(x - kLabelGap - w, y - h / 2));
                } else {
                    places.push_back(Rect{0, 0, w, h}.moved(x - w / 2, y - kLabelGap - h));
                    places.push_back(Rect{0, 0, w, h}.moved(x - w / 2, y + kLabelGap));
                }
            }
        if (points.empty())
            return places;
        Point const middle = points[points.size() / 2];
        for (double away = 20; away <= 240; away += 20)
            for (int turn = 0; turn < 12; ++turn) {
                double const angle = 0.5236 * turn;
                places.push_back(
                    Rect::around({middle.x + away * 1.5 * std::cos(angle), middle.y + away * std::sin(angle)}, size));
            }
        return places;
    }

    // Moves what is inside a container to the origin.
    void findBounds(std::size_t container, std::vector<Rect> const& rects, Content& content) {
        Rect bounds = rects.empty() ? Rect{} : rects.front();
        for (Rect const& rect : rects)
            bounds = bounds.united(rect);
        for (std::size_t const number : m_connectors[container])
            for (Point const& point : m_layout.lines[number].points)
                bounds = bounds.united(point);
        for (Label const& label : content.labels)
            bounds = bounds.united(label.caption.area);
        content.size = {bounds.width(), bounds.height()};
        for (std::size_t place = 0; place < rects.size(); ++place)
            m_layout.boxes[block(container).children[place]].rect = rects[place].moved(-bounds.left, -bounds.top);
        for (std::size_t const number : m_connectors[container])
            for (Point& point : m_layout.lines[number].points)
                point = {point.x - bounds.left, point.y - bounds.top};
        for (Label& label : content.labels)
            label.caption.area = label.caption.area.moved(-bounds.left, -bounds.top);
    }

    void moveToPage() {
        std::vector<Point> origins(m_diagram.blocks.size());
        for (std::size_t number = 0; number < m_diagram.blocks.size(); ++number) {
            Box& box = m_layout.boxes[number];
            if (number == 0)
                box.rect = {0, 0, m_contents[0].size.width, m_contents[0].size.height};
            else
                box.rect = box.rect.moved(origins[block(number).parent].x, origins[block(number).parent].y);
            if (!block(number).isOpen)
                continue;
            Content& content = m_contents[number];
            Point& origin = origins[number];
            if (number > 0) {
                double const title = titleHeight(number);
                origin = {box.rect.centre().x - content.size.width / 2,
                          (box.rect.top + title + box.rect.bottom - content.size.height) / 2};
                Rect const room{box.rect.left + kSignSize + 14, box.rect.top + kTitleMargin,
                                box.rect.right - kSignSize - 14, box.rect.top + title - kTitleMargin};
                box.caption = fitCaption(m_measure, block(number).caption, block(number).font, std::array{room});
            }
            for (std::size_t const connector : m_connectors[number])
                for (Point& point : m_layout.lines[connector].points)
                    point = {point.x + origin.x, point.y + origin.y};
            for (Label& label : content.labels) {
                label.caption.area = label.caption.area.moved(origin.x, origin.y);
                m_layout.labels.push_back(std::move(label));
            }
            content.labels.clear();
        }
        m_layout.bounds = m_layout.boxes[0].rect;
    }

    void fitInside(std::size_t number) {
        Block const& entry = block(number);
        Box& box = m_layout.boxes[number];
        std::vector<Rect> const rooms = captionRooms(entry, box.rect);
        box.caption = fitCaption(m_measure, entry.caption, entry.font, rooms);
        if (entry.shape == Shape::Bar && box.caption.isCut)
            box.caption.text.clear(); // it stands beside the bar
    }

    void addTitle() {
        Font const font = titleFont();
        std::string const text = breakable(m_diagram.title);
        if (text.empty())
            return;
        double const width = std::max(m_layout.bounds.width(), 300.0);
        Size const size = m_measure.measure(text, font, font.size, width, Wrap::Anywhere);
        double const height = std::min(size.height, 80.0);
        Rect const room{m_layout.bounds.left, m_layout.bounds.top - 18 - height, m_layout.bounds.left + width,
                        m_layout.bounds.top - 18};
        m_layout.title = fitCaption(m_measure, m_diagram.title, font, std::array{room});
        m_layout.bounds =
            m_layout.bounds.united(Rect{room.left, room.top, room.left + std::min(width, size.width + 1), room.bottom});
    }

    void addLegend() {
        constexpr double kSwatch = 18;
        constexpr double kGap = 22;
        std::array<std::size_t, kStates> counts{};
        for (std::size_t number = 1; number < m_diagram.blocks.size(); ++number)
            if (int const state = block(number).state; state >= 0 && state < kStates)
                ++counts[static_cast<std::size_t>(state)];
        double const width = std::max(m_layout.bounds.width(), 360.0);
        double const left = m_layout.bounds.left;
        Font const font = labelFont();
        Point at{left, m_layout.bounds.bottom + 22};
        Rect bounds = m_layout.bounds;
        auto const breaks = static_cast<std::size_t>(std::count_if(m_diagram.blocks.begin(), m_diagram.blocks.end(),
                                                                   [](Block const& entry) { return entry.isBreak; }));
        for (int state = 0; state <= kStates; ++state) {
            bool const isBreak = state == kStates;
            std::size_t const count = isBreak ? breaks : counts[static_cast<std::size_t>(state)];
            if (count == 0)
                continue;
            LegendEntry entry;
            entry.state = isBreak ? LegendEntry::kBreak : state;
            entry.count = count;
            entry.caption.text = fmt::format("{} ({})", isBreak ? "break" : stateName(state), count);
            entry.caption.size = font.size;
            Size const size = m_measure.measure(entry.caption.text, font, font.size, 0, Wrap::Words);
            double const whole = kSwatch * 1.5 + 6 + size.width + 1;
            if (at.x > left && at.x + whole > left + width)
                at = {left, at.y + kSwatch + 8};
            entry.swatch = {at.x, at.y, at.x + kSwatch * 1.5, at.y + kSwatch};
            entry.caption.area = Rect{0, 0, size.width + 1, size.height}.moved(
                entry.swatch.right + 6, entry.swatch.centre().y - size.height / 2);
            bounds = bounds.united(entry.swatch).united(entry.caption.area);
            at.x += whole + kGap;
            m_layout.legend.push_back(std::move(entry));
        }
        m_layout.bounds = bounds;
    }

    Diagram const& m_diagram;
    bool m_hasLegend;
    TextMeasure& m_measure;
    Layout m_layout;
    std::vector<Content> m_contents;                    // by block
    std::vector<std::vector<std::size_t>> m_connectors; // by container
    std::vector<std::size_t> m_placeIn;                 // of each block among the children of its parent
};

} // namespace

Font labelFont() {
    Font font;
    font.family = "sans";
    font.size = 9;
    font.color = {0.2, 0.2, 0.2};
    font.across = Align::Begin;
    return font;
}

Font titleFont() {
    Font font;
    font.family = "sans";
    font.size = 14;
    font.isBold = true;
    font.color = {0.15, 0.15, 0.15};
    font.across = Align::Begin;
    return font;
}

Layout layOut(Diagram const& diagram, bool hasLegend, TextMeasure& measure) {
    return Layouter(diagram, hasLegend, measure).run();
}

} // namespace flowmere::host::drawing
