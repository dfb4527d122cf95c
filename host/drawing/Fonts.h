#pragma once

// The fonts of the machine, by Pango.

#include "host/drawing/Captions.h"

#include <pango/pangocairo.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace flowmere::host::drawing {

class Fonts : public TextMeasure {
public:
    // Throws Failure, exit code 2, when there are none.
    Fonts();
    ~Fonts() override;

    Size measure(std::string const& text, Font const& font, double size, double width, Wrap wrap) override;
    // Into the area of the caption, aligned as the font says.
    void draw(cairo_t* cairo, Caption const& caption, Font const& font, Color const& color);

private:
    // One font at the size that widths are measured at.
    struct Widths {
        std::string family;
        bool isBold = false;
        bool isItalic = false;
        double lineHeight = 0;
        std::unordered_map<std::string, double> words;
    };
    struct Lines {
        std::string text; // with an end behind each line
        Size size;
    };

    Size measureWhole(std::string const& text, Font const& font, double size, double width, Wrap wrap);
    Widths& widthsOf(Font const& font);
    double widthOf(Widths& widths, Font const& font, std::string_view word);
    Lines breakLines(std::string const& text, Font const& font, double size, double width);
    void set(std::string const& text, Font const& font, double size, double width, Wrap wrap);

    struct Unref {
        void operator()(void* object) const { g_object_unref(object); }
    };

    std::unique_ptr<PangoContext, Unref> m_context;
    std::unique_ptr<PangoLayout, Unref> m_layout; // used for one text after the other
    std::vector<Widths> m_widths;
    // What the layout is set to.
    std::string m_family;
    bool m_isBold = false;
    bool m_isItalic = false;
    double m_size = 0;
};

} // namespace flowmere::host::drawing
