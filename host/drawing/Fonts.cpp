#include "host/drawing/Fonts.h"

#include "host/basics/Command.h"

#include <algorithm>
#include <utility>

#ifdef __has_feature
#if __has_feature(address_sanitizer)
#define FLOWMERE_LEAKS_ARE_SOUGHT
#endif
#endif
#ifdef __SANITIZE_ADDRESS__
#define FLOWMERE_LEAKS_ARE_SOUGHT
#endif

#ifdef FLOWMERE_LEAKS_ARE_SOUGHT
// The leak checker asks for these. What the thread of the font library still holds when the program ends is no leak,
// and not worth a line on standard error.
extern "C" char const* __lsan_default_options();
extern "C" char const* __lsan_default_options() {
    return "print_suppressions=0";
}
extern "C" char const* __lsan_default_suppressions();
extern "C" char const* __lsan_default_suppressions() {
    return "leak:libfontconfig\n";
}
#endif

namespace flowmere::host::drawing {

namespace {

// A point is a 72nd of an inch, the unit of a picture a 100th.
constexpr double kUnitsPerInch = 100;

// Widths grow with the size of the font, since nothing is rounded to pixels.
constexpr double kMeasured = 100;
// Of what the widths of words sum up to, and what their line takes.
constexpr double kTolerance = 1;
constexpr std::string_view kBreak = "\xE2\x80\x8B";

// Texts whose words stand beside each other as they are: those in Latin letters.
bool isPlain(std::string_view text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        auto const byte = static_cast<unsigned char>(text[at]);
        if (byte < 0x80 || (byte >= 0xC2 && byte <= 0xC9)) {
            at += byte < 0x80 ? 0 : 1;
        } else if (text.substr(at, kBreak.size()) == kBreak) {
            at += kBreak.size() - 1;
        } else {
            return false;
        }
    }
    return true;
}

// One for the process: what it has found out of the fonts stays with it, and is not all given back at its end.
PangoFontMap* fontMap() {
    static PangoFontMap* const map = [] {
        PangoFontMap* const made = pango_cairo_font_map_new();
        pango_cairo_font_map_set_resolution(PANGO_CAIRO_FONT_MAP(made), kUnitsPerInch);
        return made;
    }();
    return map;
}

int pangoUnits(double value) {
    return static_cast<int>(value * PANGO_SCALE);
}

} // namespace

Fonts::Fonts() {
    PangoFontMap* const map = fontMap();
    m_context.reset(pango_font_map_create_context(map));
    PangoFontDescription* const any = pango_font_description_from_string("sans 10");
    std::unique_ptr<PangoFont, Unref> const font(pango_font_map_load_font(map, m_context.get(), any));
    pango_font_description_free(any);
    if (font == nullptr)
        throw Failure("", "", "there is no font on this machine to draw with");
    // Texts take the same room in every format and at every scale.
    cairo_font_options_t* const options = cairo_font_options_create();
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    pango_cairo_context_set_font_options(m_context.get(), options);
    cairo_font_options_destroy(options);
    pango_context_set_round_glyph_positions(m_context.get(), FALSE);
    m_layout.reset(pango_layout_new(m_context.get()));
}

Fonts::~Fonts() = default;

void Fonts::set(std::string const& text, Font const& font, double size, double width, Wrap wrap) {
    PangoLayout* const layout = m_layout.get();
    if (font.family != m_family || font.isBold != m_isBold || font.isItalic != m_isItalic || size != m_size) {
        PangoFontDescription* const description = pango_font_description_new();
        pango_font_description_set_family(description, font.family.c_str());
        pango_font_description_set_weight(description, font.isBold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
        pango_font_description_set_style(description, font.isItalic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
        pango_font_description_set_size(description, pangoUnits(size));
        pango_layout_set_font_description(layout, description);
        pango_font_description_free(description);
        m_family = font.family;
        m_isBold = font.isBold;
        m_isItalic = font.isItalic;
        m_size = size;
    }
    pango_layout_set_width(layout, width > 0 ? pangoUnits(width) : -1);
    pango_layout_set_wrap(layout, wrap == Wrap::Words ? PANGO_WRAP_WORD : PANGO_WRAP_WORD_CHAR);
    pango_layout_set_height(layout, -1);
    pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_NONE);
    pango_layout_set_text(layout, text.c_str(), static_cast<int>(text.size()));
}

Fonts::Widths& Fonts::widthsOf(Font const& font) {
    for (Widths& widths : m_widths)
        if (widths.family == font.family && widths.isBold == font.isBold && widths.isItalic == font.isItalic)
            return widths;
    Widths widths;
    widths.family = font.family;
    widths.isBold = font.isBold;
    widths.isItalic = font.isItalic;
    widths.lineHeight = measureWhole("Xg", font, kMeasured, 0, Wrap::Words).height;
    m_widths.push_back(std::move(widths));
    return m_widths.back();
}

double Fonts::widthOf(Widths& widths, Font const& font, std::string_view word) {
    std::string key(word);
    auto const known = widths.words.find(key);
    if (known != widths.words.end())
        return known->second;
    double const width = measureWhole(key, font, kMeasured, 0, Wrap::Words).width;
    widths.words.emplace(std::move(key), width);
    return width;
}

// Diagrams say the same words again and again: each is measured once.
Fonts::Lines Fonts::breakLines(std::string const& text, Font const& font, double size, double width) {
    Widths& widths = widthsOf(font);
    double const scale = size / kMeasured;
    double const limit = width > 0 ? width / scale : 1e9;
    double const blank = widthOf(widths, font, " ");
    Lines lines;
    double line = 0;
    std::size_t count = 1;
    double pending = 0; // blanks that count once a word comes behind them
    auto const endLine = [&] {
        lines.size.width = std::max(lines.size.width, line * scale);
        line = 0;
        pending = 0;
    };
    std::string_view rest = text;
    while (!rest.empty()) {
        if (rest.front() == '\n') {
            endLine();
            lines.text += '\n';
            ++count;
            rest.remove_prefix(1);
            continue;
        }
        if (rest.front() == ' ') {
            pending += blank;
            rest.remove_prefix(1);
            continue;
        }
        if (rest.starts_with(kBreak)) {
            rest.remove_prefix(kBreak.size());
            continue;
        }
        std::size_t const end = std::min({rest.find('\n'), rest.find(' '), rest.find(kBreak), rest.size()});
        std::string_view const word = rest.substr(0, end);
        double const wide = widthOf(widths, font, word);
        if (line > 0 && line + pending + wide > limit) {
            endLine();
            lines.text += '\n';
            ++count;
        } else if (pending > 0) {
            for (double left = pending; left > blank / 2; left -= blank)
                lines.text += ' ';
            line += pending;
        }
        pending = 0;
        lines.text += word;
        line += wide;
        rest.remove_prefix(end);
    }
    endLine();
    lines.size.height = static_cast<double>(count) * widths.lineHeight * scale;
    return lines;
}

Size Fonts::measure(std::string const& text, Font const& font, double size, double width, Wrap wrap) {
    if (wrap == Wrap::Words && isPlain(text)) {
        Size const taken = breakLines(text, font, size, width - kTolerance).size;
        return {taken.width + kTolerance, taken.height};
    }
    return measureWhole(text, font, size, width, wrap);
}

Size Fonts::measureWhole(std::string const& text, Font const& font, double size, double width, Wrap wrap) {
    set(text, font, size, width, wrap);
    pango_layout_set_alignment(m_layout.get(), PANGO_ALIGN_LEFT);
    PangoRectangle logical;
    pango_layout_get_extents(m_layout.get(), nullptr, &logical);
    return {static_cast<double>(logical.width) / PANGO_SCALE, static_cast<double>(logical.height) / PANGO_SCALE};
}

void Fonts::draw(cairo_t* cairo, Caption const& caption, Font const& font, Color const& color) {
    if (caption.text.empty())
        return;
    bool const isBroken = caption.wrap == Wrap::Words && !caption.isCut && isPlain(caption.text);
    set(isBroken ? breakLines(caption.text, font, caption.size, caption.area.width() - kTolerance).text : caption.text,
        font, caption.size, caption.area.width() + (isBroken ? kTolerance : 0), caption.wrap);
    PangoLayout* const layout = m_layout.get();
    pango_layout_set_alignment(layout, font.across == Align::Middle ? PANGO_ALIGN_CENTER
                                       : font.across == Align::End  ? PANGO_ALIGN_RIGHT
                                                                    : PANGO_ALIGN_LEFT);
    if (caption.isCut) {
        pango_layout_set_height(layout, pangoUnits(caption.area.height()));
        pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
    }
    bool const isMarked = font.isUnderlined || font.isStruckOut;
    if (isMarked) {
        PangoAttrList* const marks = pango_attr_list_new();
        if (font.isUnderlined)
            pango_attr_list_insert(marks, pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
        if (font.isStruckOut)
            pango_attr_list_insert(marks, pango_attr_strikethrough_new(TRUE));
        pango_layout_set_attributes(layout, marks);
        pango_attr_list_unref(marks);
    }

    int height = 0;
    pango_layout_get_size(layout, nullptr, &height);
    double const left = caption.area.height() - static_cast<double>(height) / PANGO_SCALE;
    double const down = font.down == Align::Middle ? left / 2 : font.down == Align::End ? left : 0;
    cairo_set_source_rgb(cairo, color.red, color.green, color.blue);
    cairo_move_to(cairo, caption.area.left, caption.area.top + down);
    pango_cairo_show_layout(cairo, layout);
    if (isMarked)
        pango_layout_set_attributes(layout, nullptr);
}

} // namespace flowmere::host::drawing
