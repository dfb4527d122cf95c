#include "Study.h"

#include "host/basics/Command.h"
#include "host/document/Document.h"
#include "host/drawing/Drawing.h"
#include "host/drawing/Layout.h"
#include "host/drawing/Looks.h"
#include "host/drawing/Placement.h"
#include "host/drawing/Router.h"
#include "host/drawing/SpaceIndex.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <fstream>
#include <random>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace flowmere::test {
namespace {

using namespace flowmere::host;
using namespace flowmere::host::drawing;
namespace fs = std::filesystem;

// Every letter is 0.6 of a size wide, and every line 1.4 high: what a layout does then hangs on no font.
class PlainMeasure : public TextMeasure {
public:
    Size measure(std::string const& text, Font const& /*font*/, double size, double width, Wrap wrap) override {
        double const letter = 0.6 * size;
        Size taken;
        std::size_t lines = 1;
        double line = 0;
        std::string word;
        auto const endWord = [&] {
            double wide = static_cast<double>(word.size()) * letter;
            if (width > 0 && line > 0 && line + letter + wide > width) {
                ++lines;
                line = 0;
            }
            while (wrap == Wrap::Anywhere && width > letter && wide > width) {
                ++lines;
                taken.width = std::max(taken.width, width);
                wide -= std::floor(width / letter) * letter;
            }
            line += (line > 0 ? letter : 0) + wide;
            taken.width = std::max(taken.width, line);
            word.clear();
        };
        for (char const character : text) {
            if (character == ' ')
                endWord();
            else if ((static_cast<unsigned char>(character) & 0xC0U) != 0x80U)
                word += character;
        }
        endWord();
        taken.height = static_cast<double>(lines) * 1.4 * size;
        return taken;
    }
};

// Diagrams made by hand.
class Sketch {
public:
    Sketch() {
        m_diagram.blocks.emplace_back();
        m_diagram.blocks.front().isOpen = true;
    }
    std::size_t add(Rect const& place, std::size_t parent = 0, Shape shape = Shape::Rectangle) {
        Block block;
        block.caption = "Block " + std::to_string(m_diagram.blocks.size());
        block.path = block.caption;
        block.place = place;
        block.shape = shape;
        block.parent = parent;
        m_diagram.blocks[parent].isOpen = true;
        m_diagram.blocks[parent].children.push_back(m_diagram.blocks.size());
        m_diagram.blocks.push_back(block);
        return m_diagram.blocks.size() - 1;
    }
    Connector& join(std::size_t start, std::size_t end, int startGrip = 6, int endGrip = 2) {
        Connector connector;
        connector.container = m_diagram.blocks[start].parent;
        connector.start = start;
        connector.end = end;
        connector.startGrip = startGrip;
        connector.endGrip = endGrip;
        m_diagram.connectors.push_back(connector);
        return m_diagram.connectors.back();
    }
    Diagram& diagram() { return m_diagram; }
    Layout layOut(bool hasLegend = false) {
        PlainMeasure measure;
        return drawing::layOut(m_diagram, hasLegend, measure);
    }

private:
    Diagram m_diagram;
};

// What every picture keeps to, whatever the document.
void expectGoodLayout(Diagram const& diagram, Layout const& layout, std::size_t mostHits = 0) {
    for (std::size_t block = 0; block < diagram.blocks.size(); ++block) {
        std::vector<std::size_t> const& children = diagram.blocks[block].children;
        SpaceIndex index(150);
        for (std::size_t const child : children) {
            Rect const& rect = layout.boxes[child].rect;
            EXPECT_FALSE(rect.isEmpty()) << child;
            EXPECT_FALSE(index.overlaps(rect, 0.01)) << "block " << child << " stands over another one";
            index.add(rect);
            EXPECT_TRUE(layout.bounds.contains(rect)) << child;
            EXPECT_TRUE(block == 0 || layout.boxes[block].rect.contains(rect)) << child << " reaches out of " << block;
        }
        Box const& box = layout.boxes[block];
        EXPECT_TRUE(block == 0 || box.caption.text.empty() || box.rect.contains(box.caption.area, 0.01))
            << "the caption of " << block << " leaves its block";
    }
    std::size_t hits = 0;
    for (std::size_t number = 0; number < diagram.connectors.size(); ++number) {
        Connector const& connector = diagram.connectors[number];
        Line const& line = layout.lines[number];
        ASSERT_GE(line.points.size(), 2U) << number;
        Point const start = gripPoint(layout.boxes[connector.start].rect, line.startGrip);
        Point const end = gripPoint(layout.boxes[connector.end].rect, line.endGrip);
        EXPECT_NEAR(line.points.front().x, start.x, 1e-6) << number;
        EXPECT_NEAR(line.points.front().y, start.y, 1e-6) << number;
        EXPECT_NEAR(line.points.back().x, end.x, 1e-6) << number;
        EXPECT_NEAR(line.points.back().y, end.y, 1e-6) << number;
        for (std::size_t at = 1; at < line.points.size(); ++at) {
            Point const& a = line.points[at - 1];
            Point const& b = line.points[at];
            EXPECT_TRUE(std::abs(a.x - b.x) < 0.02 || std::abs(a.y - b.y) < 0.02) << number << " runs aslant";
            EXPECT_TRUE(layout.bounds.contains(Rect::of(a, b)));
            for (std::size_t const child : diagram.blocks[connector.container].children)
                hits += layout.boxes[child].rect.overlaps(Rect::of(a, b).inflated(0.01), 1) ? 1 : 0;
        }
    }
    EXPECT_LE(hits, mostHits) << "lines run through blocks";
    for (Label const& label : layout.labels)
        for (std::size_t block = 1; block < diagram.blocks.size(); ++block)
            EXPECT_FALSE(!diagram.blocks[block].isOpen && block != label.block &&
                         layout.boxes[block].rect.overlaps(label.caption.area, 0.01))
                << "\"" << label.caption.text << "\" covers " << block;
}

TEST(SpaceIndex, FindsWhatTouchesAnArea) {
    for (bool const isDense : {false, true}) {
        SpaceIndex index = isDense ? SpaceIndex(50, Rect{0, 0, 1000, 1000}, 100) : SpaceIndex(50);
        std::mt19937 random(5);
        std::uniform_real_distribution<double> place(-200, 1200);
        std::uniform_real_distribution<double> size(0, 300);
        std::vector<Rect> rects;
        for (int at = 0; at < 200; ++at) {
            double const left = place(random);
            double const top = place(random);
            rects.push_back({left, top, left + size(random), top + size(random)});
            index.add(rects.back());
        }
        for (int tries = 0; tries < 200; ++tries) {
            double const left = place(random);
            double const top = place(random);
            Rect const area{left, top, left + size(random), top + size(random)};
            std::set<std::size_t> expected;
            for (std::size_t at = 0; at < rects.size(); ++at)
                if (rects[at].left <= area.right && area.left <= rects[at].right && rects[at].top <= area.bottom &&
                    area.top <= rects[at].bottom)
                    expected.insert(at);
            std::multiset<std::size_t> found;
            index.visit(area, [&](std::size_t number) {
                found.insert(number);
                return true;
            });
            EXPECT_EQ(std::multiset<std::size_t>(expected.begin(), expected.end()), found);
        }
    }
}

TEST(DrawGeometry, GripsStandClockwiseFromTheTopLeftCorner) {
    Rect const rect{10, 20, 110, 80};
    EXPECT_EQ((Point{10, 20}), gripPoint(rect, 1));
    EXPECT_EQ((Point{60, 20}), gripPoint(rect, 2));
    EXPECT_EQ((Point{110, 20}), gripPoint(rect, 3));
    EXPECT_EQ((Point{110, 50}), gripPoint(rect, 4));
    EXPECT_EQ((Point{110, 80}), gripPoint(rect, 5));
    EXPECT_EQ((Point{60, 80}), gripPoint(rect, 6));
    EXPECT_EQ((Point{10, 80}), gripPoint(rect, 7));
    EXPECT_EQ((Point{10, 50}), gripPoint(rect, 8));
    EXPECT_FALSE(isGrip(0));
    EXPECT_FALSE(isGrip(9));
}

TEST(DrawGeometry, ColoursHaveRedInTheirLowestByte) {
    EXPECT_EQ((Color{1, 0, 0}), colorOf(0x0000FF));
    EXPECT_EQ((Color{0, 1, 0}), colorOf(0x00FF00));
    EXPECT_EQ((Color{0, 0, 1}), colorOf(0xFF0000));
    EXPECT_NEAR(21, contrastOf(kBlack, kWhite), 0.01);
    EXPECT_NEAR(1, contrastOf(kWhite, kWhite), 0.01);
}

TEST(DrawGeometry, LinesLoseThePointsOnTheirWayAndMayNotTurnBack) {
    EXPECT_EQ((std::vector<Point>{{0, 0}, {0, 20}, {5, 20}}), simplified({{0, 0}, {0, 10}, {0, 10}, {0, 20}, {5, 20}}));
    EXPECT_TRUE(simplified({{0, 0}, {0, 10}, {0, 5}}).empty());
}

TEST(DrawGeometry, LinesEndAtTheOutline) {
    Rect const rect{0, 0, 100, 60};
    Block block;
    block.shape = Shape::Diamond;
    EXPECT_EQ((Point{50, 0}), dockOf(block, rect, 2));
    EXPECT_EQ((Point{25, 15}), dockOf(block, rect, 1));
    block.shape = Shape::Bar;
    EXPECT_EQ((Point{50, barOf(rect).top}), dockOf(block, rect, 2));
    EXPECT_EQ((Point{0, barOf(rect).bottom}), dockOf(block, rect, 7));
    block.shape = Shape::Oval;
    Point const point = dockOf(block, rect, 3);
    EXPECT_NEAR(1, std::pow((point.x - 50) / 50, 2) + std::pow((point.y - 30) / 30, 2), 1e-9);
    block.shape = Shape::Rectangle;
    for (int grip = 1; grip <= 8; ++grip)
        EXPECT_EQ(gripPoint(rect, grip), dockOf(block, rect, grip));
}

TEST(DrawGeometry, RoomsOfCaptionsLieInsideTheOutline) {
    Rect const rect{0, 0, 200, 75};
    for (Shape const shape : {Shape::Rectangle, Shape::RoundRectangle, Shape::Oval, Shape::Stadium, Shape::Diamond,
                              Shape::DoubleDiamond, Shape::Hexagon, Shape::Page, Shape::Bar, Shape::Sides})
        for (Sign const sign : {Sign::None, Sign::User, Sign::Inner}) {
            Block block;
            block.shape = shape;
            block.sign = sign;
            std::vector<Rect> const rooms = captionRooms(block, rect);
            ASSERT_FALSE(rooms.empty());
            for (Rect const& room : rooms) {
                EXPECT_TRUE(rect.contains(room)) << static_cast<int>(shape);
                EXPECT_FALSE(room.isEmpty()) << static_cast<int>(shape);
                Point const corner{(room.right - 100) / 100, (room.bottom - 37.5) / 37.5};
                EXPECT_TRUE(shape != Shape::Oval || corner.x * corner.x + corner.y * corner.y <= 1);
                EXPECT_TRUE(shape != Shape::Diamond || corner.x + corner.y <= 1);
            }
        }
}

TEST(DrawCaptions, AreShrunkBeforeWordsAreBrokenAndCutLast) {
    PlainMeasure measure;
    Font const font;
    std::vector<Rect> const room{{0, 0, 100, 30}};
    Caption const fits = fitCaption(measure, "Two words", font, room);
    EXPECT_EQ(10, fits.size);
    EXPECT_FALSE(fits.isCut);
    Caption const shrunk = fitCaption(measure, "Seventeen letters in several words", font, room);
    EXPECT_LT(shrunk.size, 10);
    EXPECT_GE(shrunk.size, 6);
    EXPECT_EQ(Wrap::Words, shrunk.wrap);
    EXPECT_FALSE(shrunk.isCut);
    Caption const broken = fitCaption(measure, std::string(30, 'w'), font, room);
    EXPECT_EQ(Wrap::Anywhere, broken.wrap);
    EXPECT_FALSE(broken.isCut);
    Caption const cut = fitCaption(measure, std::string(300, 'w'), font, room);
    EXPECT_TRUE(cut.isCut);
    EXPECT_EQ(6, cut.size);
    EXPECT_EQ(room.front(), cut.area);
    EXPECT_TRUE(fitCaption(measure, "Text", font, std::vector<Rect>{{0, 0, 100, 2}}).text.empty());
    EXPECT_TRUE(fitCaption(measure, "  ", font, room).text.empty());
}

TEST(DrawCaptions, MayBreakWithinNames) {
    std::string const gap = "\xE2\x80\x8B";
    EXPECT_EQ("Camel" + gap + "Case", breakable(" CamelCase\r\n"));
    EXPECT_EQ("snake_" + gap + "case", breakable("snake_case"));
    EXPECT_EQ("12.5", breakable("12.5"));
    EXPECT_EQ("a b", breakable("a\tb"));
    EXPECT_EQ("a\nb", breakable("a\nb"));
    EXPECT_LT(breakable(std::string(100000, 'x')).size(), 2100U);
}

TEST(DrawPlaces, AreThoseOfTheModel) {
    Sketch sketch;
    std::size_t const a = sketch.add({100, 100, 300, 175});
    std::size_t const b = sketch.add({400, 260, 600, 335});
    sketch.join(a, b, 4, 2);
    Layout const layout = sketch.layOut();
    expectGoodLayout(sketch.diagram(), layout);
    Rect const first = layout.boxes[a].rect;
    EXPECT_EQ(first.moved(300, 160), layout.boxes[b].rect);
    EXPECT_FALSE(layout.boxes[0].isArranged);
    EXPECT_EQ(0U, layout.moved);
    EXPECT_EQ(3U, layout.lines[0].points.size()) << "one turn is enough";
}

TEST(DrawPlaces, OfBlocksOverOthersMoveDown) {
    Sketch sketch;
    std::size_t const a = sketch.add({100, 100, 300, 175});
    std::size_t const b = sketch.add({120, 150, 320, 225});
    sketch.add({100, 300, 300, 375});
    sketch.add({100, 500, 300, 575});
    sketch.add({500, 100, 700, 175});
    Layout const layout = sketch.layOut();
    expectGoodLayout(sketch.diagram(), layout);
    EXPECT_FALSE(layout.boxes[0].isArranged);
    EXPECT_GE(layout.moved, 1U);
    EXPECT_GT(layout.boxes[b].rect.top, layout.boxes[a].rect.bottom);
    EXPECT_EQ(layout.boxes[a].rect.left + 20, layout.boxes[b].rect.left);
}

TEST(DrawPlaces, AreFoundForTheFewThatHaveNone) {
    Sketch sketch;
    std::size_t const a = sketch.add({100, 100, 300, 175});
    sketch.add({400, 100, 600, 175});
    sketch.add({700, 100, 900, 175});
    std::size_t const lost = sketch.add({});
    std::size_t const alone = sketch.add({});
    sketch.join(a, lost);
    Layout const layout = sketch.layOut();
    expectGoodLayout(sketch.diagram(), layout);
    EXPECT_EQ(2U, layout.moved);
    EXPECT_GT(layout.boxes[lost].rect.top, layout.boxes[a].rect.bottom);
    EXPECT_NEAR(layout.boxes[a].rect.centre().x, layout.boxes[lost].rect.centre().x, 1e-6);
    EXPECT_GT(layout.boxes[alone].rect.top, layout.boxes[a].rect.bottom);
}

TEST(DrawPlaces, AreMadeUpInLayersWhereTheModelHasNone) {
    Sketch sketch;
    std::size_t const first = sketch.add({});
    std::size_t const left = sketch.add({});
    std::size_t const right = sketch.add({});
    std::size_t const last = sketch.add({});
    sketch.join(first, left);
    sketch.join(first, right);
    sketch.join(left, last);
    sketch.join(right, last);
    sketch.join(last, first, 8, 8);
    Layout const layout = sketch.layOut();
    expectGoodLayout(sketch.diagram(), layout);
    EXPECT_TRUE(layout.boxes[0].isArranged);
    EXPECT_LT(layout.boxes[first].rect.bottom, layout.boxes[left].rect.top);
    EXPECT_EQ(layout.boxes[left].rect.top, layout.boxes[right].rect.top);
    EXPECT_LT(layout.boxes[right].rect.bottom, layout.boxes[last].rect.top);
    EXPECT_NEAR(layout.boxes[first].rect.centre().x, layout.boxes[last].rect.centre().x, 1);
}

TEST(DrawPlaces, AreMadeUpWhereAllAreTheSame) {
    Sketch sketch;
    for (int at = 0; at < 6; ++at)
        sketch.add({100, 1200, 200, 1300});
    for (std::size_t at = 1; at < 6; ++at)
        sketch.join(at, at + 1);
    Layout const layout = sketch.layOut();
    expectGoodLayout(sketch.diagram(), layout);
    EXPECT_TRUE(layout.boxes[0].isArranged);
    EXPECT_EQ(100, layout.boxes[1].rect.width()) << "the size is the model's";
}

TEST(DrawPlaces, ThatNoPageHoldsCountForNone) {
    Sketch sketch;
    sketch.add({-2147483648.0, 0, -2147483000.0, 75});
    sketch.add({2147480000.0, 0, 2147483647.0, 75});
    Layout const layout = sketch.layOut();
    expectGoodLayout(sketch.diagram(), layout);
    EXPECT_LT(layout.bounds.width(), 20000);
}

TEST(DrawPlaces, OfALongFlowGoOnInFurtherColumns) {
    Sketch sketch;
    for (std::size_t at = 1; at <= 200; ++at) {
        sketch.add({});
        if (at > 1)
            sketch.join(at - 1, at);
    }
    Layout const layout = sketch.layOut();
    expectGoodLayout(sketch.diagram(), layout);
    EXPECT_LT(layout.bounds.height(), layout.bounds.width() * 2);
    EXPECT_LT(layout.bounds.width(), layout.bounds.height() * 2.5);
}

TEST(DrawStretch, MakesRoomInTheMiddleAndNeverGoesBack) {
    Stretch const stretch({{100, 200, 500}, {120, 180, 300}, {400, 500, 100}});
    EXPECT_EQ(0, stretch(0));
    EXPECT_EQ(100, stretch(100));
    EXPECT_EQ(350, stretch(150));
    EXPECT_EQ(600, stretch(200)) << "what is made room for once serves both";
    EXPECT_EQ(900, stretch(500));
    double before = stretch(-10);
    for (double at = -9; at < 700; ++at) {
        EXPECT_GE(stretch(at), before + 1 - 1e-9);
        before = stretch(at);
    }
    EXPECT_EQ(7, Stretch()(7));
}

TEST(DrawFrames, HoldWhatIsInsideAndPushTheOthersAway) {
    Sketch sketch;
    std::size_t const above = sketch.add({100, 100, 300, 175});
    std::size_t const frame = sketch.add({100, 225, 300, 300});
    std::size_t const below = sketch.add({100, 350, 300, 425});
    std::size_t const beside = sketch.add({350, 235, 550, 290});
    std::size_t const inner = sketch.add({1000, 100, 1200, 175}, frame);
    std::size_t const other = sketch.add({1000, 300, 1200, 375}, frame);
    std::size_t const deep = sketch.add({0, 0, 400, 300}, other);
    sketch.join(above, frame);
    sketch.join(frame, below);
    sketch.join(frame, beside, 4, 8);
    sketch.join(below, above, 8, 8);
    sketch.join(inner, other);
    Layout const layout = sketch.layOut();
    expectGoodLayout(sketch.diagram(), layout);
    EXPECT_TRUE(layout.boxes[other].rect.contains(layout.boxes[deep].rect));
    EXPECT_GT(layout.boxes[other].rect.height(), 300);
    EXPECT_NEAR(layout.boxes[above].rect.centre().x, layout.boxes[frame].rect.centre().x, 1e-6);
    EXPECT_NEAR(layout.boxes[beside].rect.centre().y, layout.boxes[frame].rect.centre().y, 1e-6);
    EXPECT_LT(layout.boxes[frame].caption.area.bottom, layout.boxes[inner].rect.top);
    EXPECT_EQ(75, layout.boxes[below].rect.height()) << "only what is open grows";
}

TEST(DrawLines, GoAroundBlocksBetween) {
    Sketch sketch;
    std::size_t const top = sketch.add({100, 100, 300, 175});
    sketch.add({100, 225, 300, 300});
    sketch.add({100, 350, 300, 425});
    std::size_t const bottom = sketch.add({100, 475, 300, 550});
    sketch.join(top, bottom);
    sketch.join(bottom, top, 4, 4);
    sketch.join(bottom, top, 8, 8);
    expectGoodLayout(sketch.diagram(), sketch.layOut());
}

TEST(DrawLines, LeaveAndReachEveryGrip) {
    for (int start = 1; start <= 8; ++start)
        for (int end = 1; end <= 8; ++end) {
            Sketch sketch;
            std::size_t const a = sketch.add({100, 100, 300, 175});
            std::size_t const b = sketch.add({400, 260, 600, 335});
            sketch.join(a, b, start, end);
            sketch.join(b, a, start, end);
            sketch.join(a, a, start, end);
            SCOPED_TRACE(std::to_string(start) + " to " + std::to_string(end));
            expectGoodLayout(sketch.diagram(), sketch.layOut());
        }
}

TEST(DrawLines, ChooseGripsWhereTheModelHasNone) {
    Sketch sketch;
    std::size_t const a = sketch.add({100, 100, 300, 175});
    std::size_t const b = sketch.add({100, 300, 300, 375});
    std::size_t const c = sketch.add({500, 100, 700, 175});
    sketch.join(a, b, 0, 9);
    sketch.join(a, c, 9, 9);
    sketch.join(b, b, 0, 0);
    Layout const layout = sketch.layOut();
    expectGoodLayout(sketch.diagram(), layout);
    EXPECT_EQ(6, layout.lines[0].startGrip);
    EXPECT_EQ(2, layout.lines[0].endGrip);
    EXPECT_EQ(4, layout.lines[1].startGrip);
    EXPECT_EQ(8, layout.lines[1].endGrip);
}

TEST(DrawLines, OfDifferentGripsDoNotRunOverEachOther) {
    Sketch sketch;
    for (int at = 0; at < 5; ++at)
        sketch.add({100, 100 + 140.0 * at, 300, 175 + 140.0 * at});
    sketch.join(5, 1, 4, 4);
    sketch.join(4, 2, 4, 4);
    sketch.join(3, 5, 4, 4);
    Layout const layout = sketch.layOut();
    expectGoodLayout(sketch.diagram(), layout);
    std::set<double> lanes;
    for (Line const& line : layout.lines) {
        ASSERT_EQ(4U, line.points.size());
        lanes.insert(line.points[1].x);
    }
    EXPECT_EQ(3U, lanes.size());
}

TEST(DrawLines, KeepTheRouteOfTheModel) {
    Sketch sketch;
    std::size_t const a = sketch.add({100, 100, 300, 175});
    std::size_t const b = sketch.add({100, 400, 300, 475});
    // The last piece is left out of files.
    sketch.join(a, b, 4, 4).route = {{300, 137}, {380, 137}, {380, 437}};
    // And a point may be off by what truncation takes.
    sketch.join(b, a, 8, 8).route = {{100, 437}, {50, 437}, {50, 138}, {101, 138}};
    Layout const layout = sketch.layOut();
    expectGoodLayout(sketch.diagram(), layout);
    double const left = layout.boxes[a].rect.left;
    ASSERT_EQ(4U, layout.lines[0].points.size());
    EXPECT_NEAR(left + 280, layout.lines[0].points[1].x, 1e-6);
    EXPECT_NEAR(left + 280, layout.lines[0].points[2].x, 1e-6);
    ASSERT_EQ(4U, layout.lines[1].points.size());
    EXPECT_NEAR(left - 50, layout.lines[1].points[1].x, 1e-6);
}

TEST(DrawLines, TakeSmallStepsOutInRightAngles) {
    using Points = std::vector<Point>;
    // Between the corner of a bar and the middle of a block: the end in the middle gives way.
    EXPECT_EQ((Points{{99, 10}, {99, 50}}),
              fitted({{99, 10}, {99, 30}, {100, 30}, {100, 50}}, {99, 10}, {100, 50}, true, false));
    EXPECT_EQ((Points{{100, 10}, {100, 50}}),
              fitted({{99, 10}, {99, 30}, {100, 30}, {100, 50}}, {99, 10}, {100, 50}, false, true));
    // Two corners hold.
    EXPECT_EQ(4U, fitted({{99, 10}, {99, 30}, {100, 30}, {100, 50}}, {99, 10}, {100, 50}, true, true).size());
    // A piece in between moves, and no end does.
    EXPECT_EQ((Points{{0, 0}, {0, 40}, {52, 40}, {52, 90}}),
              fitted({{0, 0}, {0, 40}, {50, 40}, {50, 60}, {52, 60}, {52, 90}}, {0, 0}, {52, 90}, false, false));
    // Between two rounded corners on one height, or above each other, nothing steps.
    EXPECT_EQ((Points{{207, 152}, {144, 152}}), fitted({{204, 154}, {147, 154}}, {207, 152}, {144, 152}, true, true));
    EXPECT_EQ((Points{{18, 97}, {18, 203}}), fitted({{20, 100}, {20, 200}}, {18, 97}, {18, 203}, true, true));
    // A step that can be seen as one stays.
    EXPECT_EQ(4U, fitted({{90, 10}, {90, 30}, {100, 30}, {100, 50}}, {90, 10}, {100, 50}, false, false).size());
}

TEST(DrawLines, ReachTheOutlineBehindACornerInRightAngles) {
    using Points = std::vector<Point>;
    // A diamond: around its corner.
    EXPECT_EQ((Points{{50, 125}, {0, 125}, {0, 0}, {90, 0}}),
              fitted({{0, 100}, {0, 0}, {90, 0}}, {50, 125}, {90, 0}, true, true));
    // A rounded corner: a little farther in.
    EXPECT_EQ((Points{{3, 103}, {3, 0}, {90, 0}}), fitted({{0, 100}, {0, 0}, {90, 0}}, {3, 103}, {90, 0}, true, true));
    EXPECT_EQ((Points{{3, 103}, {3, 0}}), fitted({{0, 100}, {0, 0}}, {3, 103}, {0, 0}, true, false));
    // A bar within its rectangle: straight on.
    EXPECT_EQ((Points{{0, 110}, {0, 0}, {90, 0}}), fitted({{0, 100}, {0, 0}, {90, 0}}, {0, 110}, {90, 0}, true, true));
}

TEST(DrawLines, DoNotKeepARouteThatRunsAslant) {
    Sketch sketch;
    std::size_t const a = sketch.add({100, 100, 300, 175});
    std::size_t const b = sketch.add({120, 400, 320, 475});
    sketch.join(a, b).route = {{210, 175}, {210, 400}};
    sketch.join(a, b, 8, 8).route = {{100, 137}, {20, 200}, {20, 437}, {120, 437}};
    sketch.join(a, b, 4, 4).route = {{300, 137}, {400, 137}, {401, 437}, {320, 437}};
    Layout const layout = sketch.layOut();
    expectGoodLayout(sketch.diagram(), layout);
    double const left = layout.boxes[a].rect.left;
    EXPECT_NEAR(left + 300, layout.lines[2].points[1].x, 1e-6)
        << "what truncation took off is no reason for another way";
}

TEST(DrawLines, FindAnotherWayWhenTheRouteOfTheModelIsOutOfDate) {
    Sketch sketch;
    std::size_t const a = sketch.add({100, 100, 300, 175});
    std::size_t const b = sketch.add({100, 400, 300, 475});
    sketch.join(a, b).route = {{900, 900}, {950, 900}, {950, 1000}};
    Layout const layout = sketch.layOut();
    expectGoodLayout(sketch.diagram(), layout);
    EXPECT_EQ(2U, layout.lines[0].points.size());
}

TEST(DrawLabels, StandBesideTheirLinesAndCoverNothing) {
    Sketch sketch;
    std::size_t const decision = sketch.add({100, 100, 300, 175}, 0, Shape::Diamond);
    std::size_t const yes = sketch.add({100, 260, 300, 335});
    std::size_t const no = sketch.add({420, 100, 620, 175});
    sketch.join(decision, yes).caption = "yes";
    sketch.join(decision, no, 4, 8).caption = "a longer caption that takes several lines";
    sketch.join(no, yes, 6, 4).caption = "again";
    Layout const layout = sketch.layOut();
    expectGoodLayout(sketch.diagram(), layout);
    ASSERT_EQ(3U, layout.labels.size());
    EXPECT_EQ(0U, layout.unlabelled);
    for (std::size_t one = 0; one < 3; ++one)
        for (std::size_t other = one + 1; other < 3; ++other)
            EXPECT_FALSE(layout.labels[one].caption.area.overlaps(layout.labels[other].caption.area));
}

TEST(DrawLabels, AreNearerToTheirLineThanToAnother) {
    // Two arrows side by side, with as little room between the blocks as a label in one line does not fit into.
    Sketch sketch;
    std::size_t const left = sketch.add({100, 100, 300, 150});
    std::size_t const right = sketch.add({415, 100, 615, 150});
    sketch.join(right, left, 8, 4).caption = "More to be told";
    sketch.join(left, right, 5, 7);
    Layout const layout = sketch.layOut();
    expectGoodLayout(sketch.diagram(), layout);
    ASSERT_EQ(1U, layout.labels.size());
    Rect const area = layout.labels[0].caption.area;
    auto const distanceTo = [&](std::size_t line) {
        double nearest = 1e9;
        std::vector<Point> const& points = layout.lines[line].points;
        for (std::size_t at = 1; at < points.size(); ++at) {
            Rect const piece = Rect::of(points[at - 1], points[at]);
            nearest = std::min(nearest, std::max({piece.left - area.right, area.left - piece.right,
                                                  piece.top - area.bottom, area.top - piece.bottom, 0.0}));
        }
        return nearest;
    };
    EXPECT_LT(distanceTo(0), 6);
    EXPECT_LT(distanceTo(0), distanceTo(1));
}

TEST(DrawLabels, OfThinBarsStandBesideThem) {
    Sketch sketch;
    std::size_t const bar = sketch.add({100, 100, 400, 112}, 0, Shape::Bar);
    sketch.diagram().blocks[bar].caption = "Everything at once";
    std::size_t const below = sketch.add({100, 200, 300, 275});
    sketch.join(bar, below);
    Layout const layout = sketch.layOut();
    expectGoodLayout(sketch.diagram(), layout);
    ASSERT_EQ(1U, layout.labels.size());
    EXPECT_EQ(bar, layout.labels[0].block);
    EXPECT_FALSE(layout.labels[0].caption.area.overlaps(layout.boxes[bar].rect));
    EXPECT_TRUE(layout.boxes[bar].caption.text.empty());
}

TEST(DrawLegend, NamesTheStatesThatOccur) {
    Sketch sketch;
    sketch.add({100, 100, 300, 175});
    sketch.add({100, 200, 300, 275});
    sketch.add({100, 300, 300, 375});
    sketch.diagram().blocks[1].state = 4;
    sketch.diagram().blocks[2].state = 6;
    sketch.diagram().blocks[3].state = 4;
    sketch.diagram().blocks[3].isBreak = true;
    Layout const layout = sketch.layOut(true);
    expectGoodLayout(sketch.diagram(), layout);
    ASSERT_EQ(3U, layout.legend.size());
    EXPECT_EQ("Executed (2)", layout.legend[0].caption.text);
    EXPECT_EQ("Failed (1)", layout.legend[1].caption.text);
    EXPECT_EQ("break (1)", layout.legend[2].caption.text);
    for (LegendEntry const& entry : layout.legend) {
        EXPECT_GT(entry.swatch.top, layout.boxes[3].rect.bottom);
        EXPECT_TRUE(layout.bounds.contains(entry.caption.area));
    }
    EXPECT_TRUE(sketch.layOut(false).legend.empty());
}

// Two hundred blocks of all shapes, with and without places, three deep, with lines from anywhere to anywhere.
TEST(DrawLayout, HoldsForRandomDiagrams) {
    for (unsigned int seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        auto const upTo = [&](std::size_t most) {
            return static_cast<std::size_t>(random() % (most + 1));
        };
        Sketch sketch;
        std::vector<std::size_t> containers{0};
        for (int at = 0; at < 200; ++at) {
            std::size_t const parent = containers[upTo(containers.size() - 1)];
            std::size_t const place = sketch.diagram().blocks[parent].children.size();
            double const left = 100 + 280.0 * static_cast<double>(place % 6);
            double const top = 100 + 150.0 * static_cast<double>(place / 6);
            Rect rect{left, top, left + 140 + static_cast<double>(upTo(60)), top + 50 + static_cast<double>(upTo(40))};
            if (seed % 3 == 0 || upTo(40) == 0)
                rect = {};
            auto const shape = static_cast<Shape>(upTo(static_cast<std::size_t>(Shape::Sides)));
            std::size_t const block = sketch.add(rect, parent, shape);
            if (upTo(12) == 0)
                containers.push_back(block);
        }
        for (Block const& block : std::vector<Block>(sketch.diagram().blocks)) {
            std::vector<std::size_t> const& children = block.children;
            for (std::size_t at = 1; at < children.size(); ++at) {
                sketch.join(children[at - 1], children[at], static_cast<int>(upTo(9)), static_cast<int>(upTo(9)));
                if (upTo(3) == 0)
                    sketch
                        .join(children[upTo(at)], children[upTo(at)], static_cast<int>(1 + upTo(7)),
                              static_cast<int>(1 + upTo(7)))
                        .caption = "Caption";
            }
        }
        Layout const layout = sketch.layOut();
        // Grips may be walled in; hardly any line may pass a block for that.
        expectGoodLayout(sketch.diagram(), layout, sketch.diagram().connectors.size() / 50);
    }
}

TEST(DrawLayout, IsEmptyForAnEmptyDiagram) {
    Sketch sketch;
    sketch.diagram().title = "Nothing";
    Layout const layout = sketch.layOut(true);
    EXPECT_GT(layout.bounds.width(), 0);
    EXPECT_GT(layout.bounds.height(), 0);
    EXPECT_EQ("Nothing", layout.title.text);
}

// The program

std::string placed(std::string const& id, int x, int y, std::string const& shape = "Rectangle",
                   std::string const& state = "ESNone", std::string const& flags = "") {
    return "<BLOCK Name=\"" + escaped(id) + "\" BlockString=\"" + escaped(id) + "\" Run=\"true\" ExecutionStatus=\"" +
           state + "\">\n<DIMENSION Point_X=\"" + std::to_string(x) + "\" Point_Y=\"" + std::to_string(13 - y) +
           "\" Width=\"2\" Hight=\"0.75\" Shape=\"" + shape + "\"/>\n<FLAGS Reference=\"0\" " + flags +
           "/>\n</BLOCK>\n";
}

// A start, a decision that leads back, a sub-process with two blocks, and an end.
std::string smallDocument() {
    std::string sub = subProcess("Sub", placed("In", 1, 2) + placed("Out", 1, 4) + connector("In", "Out"));
    sub.insert(sub.find("<SCRIPT"),
               "<DIMENSION Point_X=\"1\" Point_Y=\"8\" Width=\"2\" Hight=\"0.75\" Shape=\"Rectangle\"/>\n");
    return process(placed("Start", 1, 2, "Oval", "Executed") +
                   placed("Ask", 1, 4, "Decision", "Failed", "Break=\"true\"") + sub +
                   placed("End & <done>", 1, 8, "Oval") + connector("Start", "Ask") + connector("Ask", "Start", 8, 8) +
                   connector("Ask", "Sub") + connector("Sub", "End &amp; &lt;done&gt;"));
}

std::vector<std::string> found(std::string const& text, std::string const& pattern) {
    std::regex const regex(pattern);
    std::vector<std::string> result;
    for (std::sregex_iterator at(text.begin(), text.end(), regex), end; at != end; ++at)
        result.push_back((*at)[1]);
    return result;
}

class DrawProgram : public ::testing::Test {
protected:
    ProgramRun draw(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"draw", "p.xml"});
        ProgramSetting setting;
        setting.folder = m_study.path();
        return runProgram(arguments, setting);
    }
    std::string file(std::string const& name) const { return readFile(m_study.path() / name); }

    Study m_study;
};

TEST_F(DrawProgram, WritesEachFormat) {
    m_study.document(smallDocument());
    ProgramRun const svg = draw({"-o", "p.svg"});
    EXPECT_EQ(0, svg.exitCode) << svg.err;
    EXPECT_EQ("", svg.err);
    EXPECT_TRUE(std::regex_match(
        svg.out, std::regex(R"(p\.svg: 6 blocks, 5 connectors, [0-9]+\.[0-9] x [0-9]+\.[0-9] inches\n)")))
        << svg.out;
    EXPECT_TRUE(file("p.svg").starts_with("<?xml"));
    EXPECT_TRUE(file("p.svg").ends_with("</svg>\n"));
    EXPECT_EQ(0, draw({"-o", "p.png"}).exitCode);
    EXPECT_TRUE(file("p.png").starts_with("\x89PNG\r\n"));
    EXPECT_EQ(0, draw({"--out", "P.PDF"}).exitCode);
    EXPECT_TRUE(file("P.PDF").starts_with("%PDF-"));
}

TEST_F(DrawProgram, GivesEqualBytesForEqualDocuments) {
    m_study.document(smallDocument());
    for (std::string const ending : {"svg", "png", "pdf"}) {
        draw({"-o", "one." + ending, "--state"});
        draw({"-o", "two." + ending, "--state"});
        EXPECT_FALSE(file("one." + ending).empty());
        EXPECT_TRUE(file("one." + ending) == file("two." + ending)) << ending;
    }
}

TEST_F(DrawProgram, DrawsSubProcessesOpenDownToADepth) {
    m_study.document(smallDocument());
    std::string const pattern = "class=\"block\" data-path=\"([^\"]*)\"";
    draw({"-o", "p.svg"});
    EXPECT_EQ((std::vector<std::string>{"Start", "Ask", "Sub", "Sub.In", "Sub.Out", "End &amp; &lt;done&gt;"}),
              found(file("p.svg"), pattern));
    draw({"-o", "p.svg", "--depth", "0"});
    EXPECT_EQ((std::vector<std::string>{"Start", "Ask", "Sub", "End &amp; &lt;done&gt;"}),
              found(file("p.svg"), pattern));
    EXPECT_EQ(3U + 1U, found(file("p.svg"), "class=\"(connector)\"").size());
}

TEST_F(DrawProgram, PlacesBlocksAsTheDocumentHasThem) {
    m_study.document(smallDocument());
    draw({"-o", "p.svg", "--depth", "0"});
    std::vector<std::string> const lefts = found(file("p.svg"), "class=\"block\"[^>]* x=\"([^\"]*)\"");
    std::vector<std::string> const tops = found(file("p.svg"), "class=\"block\"[^>]* y=\"([^\"]*)\"");
    ASSERT_EQ(4U, tops.size());
    // Two inches are 144 points; the sub-process stands lower than its lower edge says by its height.
    for (std::size_t at = 1; at < 4; ++at) {
        EXPECT_EQ(lefts[0], lefts[at]);
        EXPECT_GT(std::stod(tops[at]), std::stod(tops[at - 1]));
    }
    EXPECT_NEAR(144, std::stod(tops[1]) - std::stod(tops[0]), 0.02);
}

TEST_F(DrawProgram, ShowsStatesWithALegend) {
    m_study.document(smallDocument());
    draw({"-o", "p.svg", "--state"});
    EXPECT_EQ((std::vector<std::string>{"Executed", "Failed", "not run", "not run", "not run", "not run"}),
              found(file("p.svg"), "data-state=\"([^\"]*)\""));
    std::string const plain = file("p.svg");
    draw({"-o", "p.svg"});
    EXPECT_TRUE(found(file("p.svg"), "data-state=\"([^\"]*)\"").empty());
    EXPECT_NE(plain, file("p.svg"));
}

TEST_F(DrawProgram, KeepsWholeCaptionsInTitles) {
    std::string const caption(500, 'x');
    std::string text = process(placed("Long", 1, 2));
    text.replace(text.find("BlockString=\"Long\""), 18, "BlockString=\"" + caption + " &lt;&amp;\"");
    m_study.document(text);
    EXPECT_EQ(0, draw({"-o", "p.svg"}).exitCode);
    EXPECT_NE(std::string::npos, file("p.svg").find("<title>" + caption + " &lt;&amp;: block\nLong</title>"));
}

TEST_F(DrawProgram, TellsWhatItMadeUp) {
    m_study.document(process(block("A") + block("B") + connector("A", "B")));
    ProgramRun const run = draw({"-o", "p.svg"});
    EXPECT_EQ(0, run.exitCode);
    EXPECT_EQ("flowmere: p.xml: the document has no places for the blocks of the process, so they are arranged by the "
              "flow\n",
              run.err);
    ProgramRun const json = draw({"-o", "p.svg", "--json"});
    EXPECT_EQ("", json.err);
    auto const facts = nlohmann::json::parse(json.out);
    EXPECT_EQ("p.svg", facts.at("picture"));
    EXPECT_EQ(2, facts.at("blocks"));
    EXPECT_EQ(1, facts.at("connectors"));
    EXPECT_EQ(1U, facts.at("notes").size());
    EXPECT_EQ(file("p.svg").size(), facts.at("bytes").get<std::size_t>());
}

TEST_F(DrawProgram, ScalesPicturesThatPngCannotHold) {
    std::string blocks;
    for (int at = 0; at < 4; ++at)
        blocks += placed("B" + std::to_string(at), at * 300, at % 2 == 0 ? 1 : 300);
    m_study.document(process(blocks));
    ProgramRun const run = draw({"-o", "p.png"});
    EXPECT_EQ(0, run.exitCode) << run.err;
    EXPECT_TRUE(std::regex_match(
        run.err, std::regex(R"(flowmere: p\.xml: the picture is scaled to [0-9.]+ % to fit into a PNG; .*\n)")))
        << run.err;
    std::string const png = file("p.png");
    auto const number = [&](std::size_t at) {
        std::uint32_t value = 0;
        for (std::size_t byte = at; byte < at + 4; ++byte)
            value = value << 8U | static_cast<unsigned char>(png.at(byte));
        return value;
    };
    EXPECT_LE(number(16), 32767U);
    EXPECT_LE(number(20), 32767U);
    EXPECT_EQ("", draw({"-o", "p.svg"}).err);
    EXPECT_NE(std::string::npos, draw({"-o", "p.pdf"}).err.find("to fit into a PDF"));
}

TEST_F(DrawProgram, DrawsAnEmptyDocument) {
    m_study.document(process(""));
    EXPECT_EQ(0, draw({"-o", "p.svg"}).exitCode);
    EXPECT_EQ(0, draw({"-o", "p.png", "--state"}).exitCode);
}

TEST_F(DrawProgram, HelpHasAnExample) {
    ProgramRun const run = draw({"--help"});
    EXPECT_EQ(0, run.exitCode);
    EXPECT_NE(std::string::npos, run.out.find("flowmere draw beam.xml -o beam.svg"));
}

// One line, exit code 2, and the old file as it was.
TEST_F(DrawProgram, RefusesWhatItCannotDo) {
    m_study.document(smallDocument());
    m_study.folder().write("old.svg", "old");
    fs::create_directory(m_study.path() / "folder.svg");
    struct Case {
        std::vector<std::string> arguments;
        std::string cause;
    };
    std::vector<Case> const cases{
        {{"-o", "p.gif"}, "p.gif: is no picture: its name must end in .svg, .png or .pdf"},
        {{"-o", "svg"}, "svg: is no picture"},
        {{"-o", ""}, "is no picture"},
        {{"-o", "folder.svg"}, "folder.svg: "},
        {{"-o", "missing/p.svg"}, "missing/p.svg: "},
        {{"-o", "/dev/full"}, "/dev/full: is no picture"},
        {{}, "--out is required"},
        {{"-o", "old.svg", "--depth", "-1"}, "--depth"},
        {{"-o", "old.svg", "--depth", "x"}, "--depth"},
    };
    for (Case const& entry : cases) {
        ProgramRun const run = draw(entry.arguments);
        EXPECT_EQ(2, run.exitCode) << entry.cause;
        EXPECT_EQ("", run.out);
        EXPECT_TRUE(run.err.starts_with("flowmere: ")) << run.err;
        EXPECT_NE(std::string::npos, run.err.find(entry.cause)) << run.err;
        EXPECT_EQ(1, std::count(run.err.begin(), run.err.end(), '\n')) << run.err;
    }
    EXPECT_EQ("old", file("old.svg"));

    m_study.document("<Process><BLOCK");
    ProgramRun const broken = draw({"-o", "old.svg"});
    EXPECT_EQ(2, broken.exitCode);
    EXPECT_EQ("old", file("old.svg"));
    fs::remove(m_study.path() / "p.xml");
    EXPECT_EQ(2, draw({"-o", "old.svg"}).exitCode);
    EXPECT_EQ("old", file("old.svg"));
}

TEST_F(DrawProgram, LeavesTheOldPictureWhereItsFolderIsReadOnly) {
    if (::geteuid() == 0)
        GTEST_SKIP() << "root may write everywhere";
    m_study.document(smallDocument());
    fs::create_directory(m_study.path() / "locked");
    m_study.folder().write("locked/old.svg", "old");
    fs::permissions(m_study.path() / "locked", fs::perms::owner_read | fs::perms::owner_exec);
    ProgramRun const run = draw({"-o", "locked/old.svg"});
    fs::permissions(m_study.path() / "locked", fs::perms::owner_all);
    EXPECT_EQ(2, run.exitCode);
    EXPECT_EQ(1, std::count(run.err.begin(), run.err.end(), '\n')) << run.err;
    EXPECT_EQ("old", file("locked/old.svg"));
}

TEST_F(DrawProgram, SaysSoWhenThereIsNoFont) {
    m_study.document(smallDocument());
    m_study.folder().write("fonts.conf", "<?xml version=\"1.0\"?><fontconfig></fontconfig>");
    ProgramSetting setting;
    setting.folder = m_study.path();
    setting.extra = {"FONTCONFIG_FILE=" + (m_study.path() / "fonts.conf").string()};
    ProgramRun const run = runProgram({"draw", "p.xml", "-o", "p.svg"}, setting);
    EXPECT_EQ(2, run.exitCode);
    EXPECT_EQ("flowmere: there is no font on this machine to draw with\n", run.err);
    EXPECT_FALSE(fs::exists(m_study.path() / "p.svg"));
}

// The picture as a function, as other parts of the program use it.
TEST(DrawPicture, GivesBytesAndNotes) {
    Study const study;
    study.document(process(block("A") + block("B") + connector("A", "B")));
    Document const document((study.path() / "p.xml").string());
    std::vector<std::string> notes{"before"};
    std::string const svg = drawPicture(document, {0, true}, PictureFormat::Svg, &notes);
    EXPECT_NE(std::string::npos, svg.find("data-path=\"A\""));
    EXPECT_EQ(2U, notes.size());
    EXPECT_EQ(svg, drawPicture(document, {0, true}, PictureFormat::Svg)) << "a second picture is as the first";
}

// Routes in a document reach the picture.
TEST(DrawPicture, KeepsRoutesOfTheDocument) {
    Study const study;
    std::string way = connector("A", "B", 4, 4);
    way.replace(way.find("/>"), 2,
                "><POINT Location_X=\"3\" Location_Y=\"11.37\"/><POINT Location_X=\"4.5\" Location_Y=\"11.37\"/>"
                "<POINT Location_X=\"4.5\" Location_Y=\"8.375\"/></CONNECTOR>");
    study.document(process(placed("A", 1, 2) + placed("B", 1, 5) + way));
    Document const document((study.path() / "p.xml").string());
    Diagram const diagram = diagramOf(document, 1);
    ASSERT_EQ(1U, diagram.connectors.size());
    EXPECT_EQ((std::vector<Point>{{300, 163}, {450, 163}, {450, 463}}), diagram.connectors[0].route);
    PlainMeasure measure;
    Layout const layout = layOut(diagram, false, measure);
    expectGoodLayout(diagram, layout);
    ASSERT_EQ(4U, layout.lines[0].points.size());
    EXPECT_NEAR(layout.boxes[1].rect.right + 150, layout.lines[0].points[1].x, 1e-6);
}

} // namespace
} // namespace flowmere::test
