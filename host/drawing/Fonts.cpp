#include "host/drawing/Fonts.h"

#include "host/Command.h"

namespace flowmere::host::drawing {

namespace {

// A point is a 72nd of an inch, the unit of a picture a 100th.
constexpr double kUnitsPerInch = 100;

int pangoUnits(double value) {
    return static_cast<int>(value * PANGO_SCALE);
}

} // namespace

Fonts::Fonts() : m_map(pango_cairo_font_map_new()) {
    PangoFontFamily** families = nullptr;
    int count = 0;
    pango_font_map_list_families(m_map.get(), &families, &count);
    g_free(families);
    if (count == 0)
        throw Failure("", "", "there is no font on this machine to draw with");
    pango_cairo_font_map_set_resolution(PANGO_CAIRO_FONT_MAP(m_map.get()), kUnitsPerInch);
    m_context.reset(pango_font_map_create_context(m_map.get()));
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

Size Fonts::measure(std::string const& text, Font const& font, double size, double width, Wrap wrap) {
    set(text, font, size, width, wrap);
    pango_layout_set_alignment(m_layout.get(), PANGO_ALIGN_LEFT);
    PangoRectangle logical;
    pango_layout_get_extents(m_layout.get(), nullptr, &logical);
    return {static_cast<double>(logical.width) / PANGO_SCALE, static_cast<double>(logical.height) / PANGO_SCALE};
}

void Fonts::draw(cairo_t* cairo, Caption const& caption, Font const& font, Color const& color) {
    if (caption.text.empty())
        return;
    set(caption.text, font, caption.size, caption.area.width(), caption.wrap);
    PangoLayout* const layout = m_layout.get();
    pango_layout_set_alignment(layout, font.across == Align::Middle ? PANGO_ALIGN_CENTER
                                       : font.across == Align::End  ? PANGO_ALIGN_RIGHT
                                                                    : PANGO_ALIGN_LEFT);
    if (caption.isCut) {
        pango_layout_set_height(layout, pangoUnits(caption.area.height()));
        pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
    }
    PangoAttrList* const marks = pango_attr_list_new();
    if (font.isUnderlined)
        pango_attr_list_insert(marks, pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
    if (font.isStruckOut)
        pango_attr_list_insert(marks, pango_attr_strikethrough_new(TRUE));
    pango_layout_set_attributes(layout, marks);
    pango_attr_list_unref(marks);

    int height = 0;
    pango_layout_get_size(layout, nullptr, &height);
    double const left = caption.area.height() - static_cast<double>(height) / PANGO_SCALE;
    double const down = font.down == Align::Middle ? left / 2 : font.down == Align::End ? left : 0;
    cairo_set_source_rgb(cairo, color.red, color.green, color.blue);
    cairo_move_to(cairo, caption.area.left, caption.area.top + down);
    pango_cairo_show_layout(cairo, layout);
    pango_layout_set_attributes(layout, nullptr);
}

} // namespace flowmere::host::drawing
