#pragma once

// Fits texts into rooms.

#include "host/drawing/Diagram.h"

#include <span>
#include <string>

namespace flowmere::host::drawing {

enum class Wrap {
    Words,    // lines end between words
    Anywhere, // and within a word that is wider than the room
};

// How much room a text takes. The painter's one asks the fonts of the machine.
class TextMeasure {
public:
    TextMeasure() = default;
    virtual ~TextMeasure();
    TextMeasure(TextMeasure const&) = delete;
    TextMeasure& operator=(TextMeasure const&) = delete;

    // In units of the picture, for the font at `size` points, with lines of at most `width`; a word that does not fit
    // makes the result wider than that. A width of 0 or less breaks no line.
    virtual Size measure(std::string const& text, Font const& font, double size, double width, Wrap wrap) = 0;
};

// A text in its place.
struct Caption {
    std::string text; // empty when there is nothing to write, or no room at all
    Rect area;
    double size = 0; // in points
    Wrap wrap = Wrap::Words;
    bool isCut = false; // it ends in dots where the area ends
};

// Fits the text into one of the rooms, the first that takes it: at the size of the font, else smaller, else with words
// broken, and only then cut.
Caption fitCaption(TextMeasure& measure, std::string const& text, Font const& font, std::span<Rect const> rooms);

// The text made ready for breaking into lines: without control characters and blanks at its ends, with invisible places
// to break behind dots, underscores and the like, and before the capitals within a name.
std::string breakable(std::string const& text);

} // namespace flowmere::host::drawing
