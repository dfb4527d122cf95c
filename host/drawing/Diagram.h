#pragma once

// What there is to draw of a document, apart from the model that it was read into.

#include "host/drawing/Geometry.h"

#include <cstddef>
#include <string>
#include <vector>

namespace flowmere::host {
class Document;
}

namespace flowmere::host::drawing {

struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;

    bool operator==(Color const&) const = default;
};

// A colour of the model, which has red in its lowest byte.
Color colorOf(unsigned int value);
Color blended(Color const& color, Color const& other, double shareOfOther);
// 1 for two colours that look the same, 21 for black and white.
double contrastOf(Color const& one, Color const& other);

inline constexpr Color kBlack{0, 0, 0};
inline constexpr Color kWhite{1, 1, 1};

// The outline of a block.
enum class Shape { Rectangle, RoundRectangle, Oval, Stadium, Diamond, DoubleDiamond, Hexagon, Page, Bar, Sides };

// The small sign in the corner of a block, or at its foot, that tells what it does.
enum class Sign { None, User, Gear, Script, Mail, Service, Window, Start, End, Inner, Loop, Branch, Parallel };

enum class LineStyle { Solid, Dash, Dot, DashDot, DashDotDot, None };

enum class Align { Begin, Middle, End };

struct Font {
    std::string family;
    double size = 10; // in points
    bool isBold = false;
    bool isItalic = false;
    bool isUnderlined = false;
    bool isStruckOut = false;
    Color color;
    Align across = Align::Middle;
    Align down = Align::Middle;
};

// How far a block has come, by the numbers of the model.
inline constexpr int kStates = 10;

struct Block {
    std::string path;
    std::string caption;
    std::string kind; // its name
    std::string description;
    Shape shape = Shape::Rectangle;
    Sign sign = Sign::None;
    Rect place; // as the model has it; empty where it has none
    Color fill = kWhite;
    bool isFilled = true;
    Color border = kBlack;
    bool hasBorder = true;
    double thickness = 2;
    LineStyle style = LineStyle::Solid;
    Font font;
    int state = 0;
    bool isBreak = false;
    std::size_t parent = 0;
    bool isOpen = false;               // drawn with what is inside; the root always is
    std::vector<std::size_t> children; // in the order of the file; empty for a block that is drawn closed
};

struct Connector {
    std::size_t container = 0;
    std::size_t start = 0;
    std::size_t end = 0;
    int startGrip = 0; // 1 to 8, any other number leaves the choice to the layout
    int endGrip = 0;
    std::string caption;
    std::vector<Point> route; // the model's own points from start to end, in the coordinates of the places
};

struct Diagram {
    std::string title;
    std::vector<Block> blocks; // the root first, each container before what is in it
    std::vector<Connector> connectors;
};

// Sub-processes are open so many levels down. What is inside a closed one is left out.
Diagram diagramOf(Document const& document, int depth);

// "Executed"; what the user reads for the state of a block that has none is "not run".
std::string stateName(int state);
Color stateColor(int state);

} // namespace flowmere::host::drawing
