#include "host/drawing/Painter.h"

#include "host/basics/Command.h"
#include "host/basics/Text.h"
#include "host/drawing/Looks.h"
#include "host/drawing/Png.h"
#include "host/drawing/Router.h"
#include "host/drawing/Signs.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <fmt/format.h>

#include <array>
#include <cmath>
#include <iterator>
#include <numbers>
#include <string_view>

namespace flowmere::host::drawing {

namespace {

constexpr double kPointsPerUnit = 0.72;
constexpr double kPixelsPerUnit = 1.44; // 144 to the inch
constexpr double kScreenPixels = 0.96;  // 96 to the inch, for pictures that would be larger than
constexpr double kLargePicture = 12e6;  // so many pixels
constexpr double kMostPixelsAside = 32000;
constexpr double kMostPixels = 24e6;
constexpr double kMostPoints = 14400; // of a PDF page

constexpr Color kInk{0.25, 0.28, 0.32};
constexpr Color kStop{0.85, 0.13, 0.13};
constexpr double kLineWidth = 1.7;
constexpr double kTurnRadius = 6;
constexpr double kArrowLength = 11;
constexpr double kArrowWidth = 9;
constexpr double kFrameRadius = 6;

struct SurfaceDeleter {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct CairoDeleter {
    void operator()(cairo_t* cairo) const { cairo_destroy(cairo); }
};
using Surface = std::unique_ptr<cairo_surface_t, SurfaceDeleter>;
using Cairo = std::unique_ptr<cairo_t, CairoDeleter>;

void check(cairo_status_t status) {
    if (status != CAIRO_STATUS_SUCCESS)
        throw Failure("", "", std::string("the picture cannot be made: ") + cairo_status_to_string(status));
}

cairo_status_t append(void* text, unsigned char const* bytes, unsigned int count) {
    static_cast<std::string*>(text)->append(reinterpret_cast<char const*>(bytes), count);
    return CAIRO_STATUS_SUCCESS;
}

void addRound(cairo_t* cairo, Rect const& rect, double radius) {
    constexpr double kQuarter = std::numbers::pi / 2;
    double const r = std::min({radius, rect.width() / 2, rect.height() / 2});
    cairo_new_sub_path(cairo);
    cairo_arc(cairo, rect.right - r, rect.top + r, r, -kQuarter, 0);
    cairo_arc(cairo, rect.right - r, rect.bottom - r, r, 0, kQuarter);
    cairo_arc(cairo, rect.left + r, rect.bottom - r, r, kQuarter, 2 * kQuarter);
    cairo_arc(cairo, rect.left + r, rect.top + r, r, 2 * kQuarter, 3 * kQuarter);
    cairo_close_path(cairo);
}

void addRect(cairo_t* cairo, Rect const& rect) {
    cairo_rectangle(cairo, rect.left, rect.top, rect.width(), rect.height());
}

void addDiamond(cairo_t* cairo, Rect const& rect) {
    Point const centre = rect.centre();
    cairo_move_to(cairo, centre.x, rect.top);
    cairo_line_to(cairo, rect.right, centre.y);
    cairo_line_to(cairo, centre.x, rect.bottom);
    cairo_line_to(cairo, rect.left, centre.y);
    cairo_close_path(cairo);
}

void addOutline(cairo_t* cairo, Shape shape, Rect const& rect) {
    Point const centre = rect.centre();
    switch (shape) {
    case Shape::Rectangle:
    case Shape::Sides:
        addRect(cairo, rect);
        break;
    case Shape::Bar:
        addRound(cairo, barOf(rect), 3);
        break;
    case Shape::RoundRectangle:
        addRound(cairo, rect, std::min(12.0, std::min(rect.width(), rect.height()) / 4));
        break;
    case Shape::Stadium:
        addRound(cairo, rect, std::min(rect.width(), rect.height()) / 2);
        break;
    case Shape::Oval:
        cairo_save(cairo);
        cairo_translate(cairo, centre.x, centre.y);
        cairo_scale(cairo, rect.width() / 2, rect.height() / 2);
        cairo_new_sub_path(cairo);
        cairo_arc(cairo, 0, 0, 1, 0, 2 * std::numbers::pi);
        cairo_close_path(cairo);
        cairo_restore(cairo);
        break;
    case Shape::Diamond:
    case Shape::DoubleDiamond:
        addDiamond(cairo, rect);
        break;
    case Shape::Hexagon: {
        double const slope = rect.width() * 0.12;
        cairo_move_to(cairo, rect.left, centre.y);
        cairo_line_to(cairo, rect.left + slope, rect.top);
        cairo_line_to(cairo, rect.right - slope, rect.top);
        cairo_line_to(cairo, rect.right, centre.y);
        cairo_line_to(cairo, rect.right - slope, rect.bottom);
        cairo_line_to(cairo, rect.left + slope, rect.bottom);
        cairo_close_path(cairo);
        break;
    }
    case Shape::Page: {
        double const wave = std::min(8.0, rect.height() / 5);
        double const width = rect.width();
        cairo_move_to(cairo, rect.left, rect.top);
        cairo_line_to(cairo, rect.right, rect.top);
        cairo_line_to(cairo, rect.right, rect.bottom - wave);
        cairo_curve_to(cairo, rect.right - width * 0.3, rect.bottom - 2.5 * wave, rect.left + width * 0.3,
                       rect.bottom + wave, rect.left, rect.bottom - wave);
        cairo_close_path(cairo);
        break;
    }
    }
}

void setDashes(cairo_t* cairo, LineStyle style, double width) {
    double const unit = std::max(width, 1.2);
    std::vector<double> dashes;
    switch (style) {
    case LineStyle::Solid:
    case LineStyle::None:
        break;
    case LineStyle::Dash:
        dashes = {5 * unit, 3 * unit};
        break;
    case LineStyle::Dot:
        dashes = {1.2 * unit, 2 * unit};
        break;
    case LineStyle::DashDot:
        dashes = {5 * unit, 2.5 * unit, 1.2 * unit, 2.5 * unit};
        break;
    case LineStyle::DashDotDot:
        dashes = {5 * unit, 2.5 * unit, 1.2 * unit, 2.5 * unit, 1.2 * unit, 2.5 * unit};
        break;
    }
    cairo_set_dash(cairo, dashes.data(), static_cast<int>(dashes.size()), 0);
}

class Painter {
public:
    Painter(Diagram const& diagram, Layout const& layout, bool states, Fonts& fonts, cairo_t* cairo)
        : m_diagram(diagram), m_layout(layout), m_states(states), m_fonts(fonts), m_cairo(cairo) {}

    void paintAll() {
        setColor(kWhite);
        cairo_paint(m_cairo);
        m_fonts.draw(m_cairo, m_layout.title, titleFont(), titleFont().color);
        std::vector<std::vector<std::size_t>> lines(m_diagram.blocks.size());
        for (std::size_t number = 0; number < m_diagram.connectors.size(); ++number)
            lines[m_diagram.connectors[number].container].push_back(number);
        // Lines lie under the blocks that they lead past, and over the frame that they are in.
        for (std::size_t number = 0; number < m_diagram.blocks.size(); ++number) {
            if (number > 0)
                paintBlock(number);
            for (std::size_t const line : lines[number])
                paintLine(line);
        }
        for (Label const& label : m_layout.labels)
            paintLabel(label);
        for (LegendEntry const& entry : m_layout.legend)
            paintLegend(entry);
    }

private:
    void setColor(Color const& color) { cairo_set_source_rgb(m_cairo, color.red, color.green, color.blue); }

    Color fillOf(Block const& block) const { return m_states ? stateColor(block.state) : block.fill; }

    bool isFilled(Block const& block) const { return m_states || block.isFilled; }

    // The colour of the model, or one that can be read where the model's cannot.
    Color textColor(Block const& block, Color const& under) const {
        double const least = m_states ? 3 : 1.7;
        if (contrastOf(block.font.color, under) >= least)
            return block.font.color;
        return contrastOf(kBlack, under) >= contrastOf(kWhite, under) ? kBlack : kWhite;
    }

    void stroke(Block const& block) {
        bool const isDrawn = block.hasBorder && block.style != LineStyle::None;
        if (!isDrawn && !m_states) {
            cairo_new_path(m_cairo);
            return;
        }
        double const width = isDrawn ? block.thickness : 1;
        setColor(isDrawn ? block.border : blended(fillOf(block), kBlack, 0.4));
        cairo_set_line_width(m_cairo, width);
        setDashes(m_cairo, block.style, width);
        cairo_stroke(m_cairo);
        cairo_set_dash(m_cairo, nullptr, 0, 0);
    }

    void paintBlock(std::size_t number) {
        Block const& block = m_diagram.blocks[number];
        Box const& box = m_layout.boxes[number];
        if (block.isOpen)
            paintFrame(block, box);
        else
            paintClosed(block, box);
        if (block.isBreak) {
            Rect const rect = block.shape == Shape::Bar && !block.isOpen ? barOf(box.rect) : box.rect;
            paintStop({rect.left + 2, rect.top + 2});
        }
    }

    void paintStop(Point const& at) {
        cairo_new_path(m_cairo);
        cairo_arc(m_cairo, at.x, at.y, 6, 0, 2 * std::numbers::pi);
        setColor(kStop);
        cairo_fill_preserve(m_cairo);
        setColor(kWhite);
        cairo_set_line_width(m_cairo, 1.5);
        cairo_stroke(m_cairo);
    }

    void paintClosed(Block const& block, Box const& box) {
        Color const fill = fillOf(block);
        cairo_new_path(m_cairo);
        addOutline(m_cairo, block.shape, box.rect);
        if (isFilled(block)) {
            setColor(fill);
            cairo_fill_preserve(m_cairo);
        }
        stroke(block);
        if (block.shape == Shape::Sides) {
            for (double const x : {box.rect.left + 8, box.rect.right - 8}) {
                cairo_move_to(m_cairo, x, box.rect.top);
                cairo_line_to(m_cairo, x, box.rect.bottom);
            }
            stroke(block);
        } else if (block.shape == Shape::DoubleDiamond) {
            Rect const& rect = box.rect;
            addDiamond(m_cairo, Rect::around(rect.centre(), {rect.width() * 0.9 - 2, rect.height() * 0.9 - 2}));
            stroke(block);
        }
        // Captions beside a bar stand on the page.
        bool const isOutside = block.shape == Shape::Bar && barOf(box.rect) != box.rect;
        Color const under = isFilled(block) && !isOutside ? fill : kWhite;
        Color const ink = textColor(block, under);
        paintSign(m_cairo, block.sign, signRect(block, box.rect), blended(ink, under, 0.25));
        m_fonts.draw(m_cairo, box.caption, block.font, ink);
    }

    void paintFrame(Block const& block, Box const& box) {
        Rect const& rect = box.rect;
        Color const fill = fillOf(block);
        double const titleEnd = std::min(box.caption.area.bottom + kTitleMargin, rect.bottom);
        if (isFilled(block)) {
            cairo_save(m_cairo);
            cairo_new_path(m_cairo);
            addRound(m_cairo, rect, kFrameRadius);
            cairo_clip_preserve(m_cairo);
            setColor(blended(fill, kWhite, 0.82));
            cairo_fill(m_cairo);
            addRect(m_cairo, {rect.left, rect.top, rect.right, titleEnd});
            setColor(fill);
            cairo_fill(m_cairo);
            cairo_restore(m_cairo);
        }
        Color const under = isFilled(block) ? fill : kWhite;
        Color const ink = textColor(block, under);
        cairo_new_path(m_cairo);
        addRound(m_cairo, rect, kFrameRadius);
        cairo_move_to(m_cairo, rect.left, titleEnd);
        cairo_line_to(m_cairo, rect.right, titleEnd);
        stroke(block);
        double const middle = (rect.top + titleEnd) / 2;
        paintSign(m_cairo, block.sign == Sign::None ? Sign::Inner : block.sign,
                  Rect::around({rect.left + 7 + kSignSize / 2, middle}, {kSignSize - 2, kSignSize - 2}),
                  blended(ink, under, 0.25), true);
        Font font = block.font;
        font.across = Align::Begin;
        font.down = Align::Middle;
        m_fonts.draw(m_cairo, box.caption, font, ink);
    }

    void paintLine(std::size_t number) {
        Connector const& connector = m_diagram.connectors[number];
        Line const& line = m_layout.lines[number];
        if (line.points.size() < 2)
            return;
        // The outline of some kinds lies inside the rectangle that has the grips.
        auto const dock = [&](std::size_t block, int grip) {
            return dockOf(m_diagram.blocks[block], m_layout.boxes[block].rect, grip);
        };
        auto const isCorner = [](int grip) {
            return grip % 2 == 1;
        };
        std::vector<Point> points =
            fitted(line.points, dock(connector.start, line.startGrip), dock(connector.end, line.endGrip),
                   isCorner(line.startGrip), isCorner(line.endGrip));

        Point const tip = points.back();
        Point const before = points[points.size() - 2];
        double const last = std::hypot(tip.x - before.x, tip.y - before.y);
        if (last < 0.01)
            return;
        double const length = std::min(kArrowLength, std::max(last, 4.0));
        Point const along{(tip.x - before.x) / last, (tip.y - before.y) / last};
        Point const base{tip.x - along.x * length, tip.y - along.y * length};
        points.back() = last > length ? Point{base.x + along.x, base.y + along.y} : before;

        setColor(kInk);
        cairo_set_line_width(m_cairo, kLineWidth);
        cairo_new_path(m_cairo);
        addPath(points);
        cairo_stroke(m_cairo);
        double const half = kArrowWidth / 2 * length / kArrowLength;
        cairo_move_to(m_cairo, tip.x, tip.y);
        cairo_line_to(m_cairo, base.x - along.y * half, base.y + along.x * half);
        cairo_line_to(m_cairo, base.x + along.y * half, base.y - along.x * half);
        cairo_close_path(m_cairo);
        cairo_fill(m_cairo);
    }

    // With its corners rounded a little.
    void addPath(std::vector<Point> const& points) {
        cairo_move_to(m_cairo, points.front().x, points.front().y);
        for (std::size_t at = 1; at + 1 < points.size(); ++at) {
            Point const& corner = points[at];
            auto const towards = [&](Point const& other) {
                double const length = std::hypot(other.x - corner.x, other.y - corner.y);
                double const reach = std::min(kTurnRadius, length / 2);
                return length < 0.01 ? corner
                                     : Point{corner.x + (other.x - corner.x) / length * reach,
                                             corner.y + (other.y - corner.y) / length * reach};
            };
            Point const from = towards(points[at - 1]);
            Point const to = towards(points[at + 1]);
            auto const pull = [&](Point const& end) {
                return Point{end.x + (corner.x - end.x) * 0.55, end.y + (corner.y - end.y) * 0.55};
            };
            cairo_line_to(m_cairo, from.x, from.y);
            cairo_curve_to(m_cairo, pull(from).x, pull(from).y, pull(to).x, pull(to).y, to.x, to.y);
        }
        cairo_line_to(m_cairo, points.back().x, points.back().y);
    }

    void paintLabel(Label const& label) {
        Font font = labelFont();
        if (label.block != Label::kNone)
            font.across = Align::Middle;
        m_fonts.draw(m_cairo, label.caption, font, font.color);
    }

    void paintLegend(LegendEntry const& entry) {
        if (entry.state == LegendEntry::kBreak) {
            paintStop(entry.swatch.centre());
        } else {
            cairo_new_path(m_cairo);
            addRect(m_cairo, entry.swatch);
            setColor(stateColor(entry.state));
            cairo_fill_preserve(m_cairo);
            setColor(kInk);
            cairo_set_line_width(m_cairo, 1);
            cairo_stroke(m_cairo);
        }
        m_fonts.draw(m_cairo, entry.caption, labelFont(), labelFont().color);
    }

    Diagram const& m_diagram;
    Layout const& m_layout;
    bool m_states;
    Fonts& m_fonts;
    cairo_t* m_cairo;
};

std::string escaped(std::string const& text) {
    std::string result;
    for (char const character : oneLine(text)) {
        if (character == '&')
            result += "&amp;";
        else if (character == '<')
            result += "&lt;";
        else if (character == '>')
            result += "&gt;";
        else if (character == '"')
            result += "&quot;";
        else
            result += character;
    }
    return result;
}

// What a viewer shows under the pointer, and what programs find the blocks by: the texts in full, over everything that
// is painted.
std::string hotSpots(Diagram const& diagram, Layout const& layout, bool states) {
    std::string out;
    auto const x = [&](double value) {
        return (value - layout.bounds.left) * kPointsPerUnit;
    };
    auto const y = [&](double value) {
        return (value - layout.bounds.top) * kPointsPerUnit;
    };
    auto const put = std::back_inserter(out);
    out += "<g fill=\"#fff\" fill-opacity=\"0\" stroke=\"#fff\" stroke-opacity=\"0\">\n";
    std::vector<std::vector<std::size_t>> lines(diagram.blocks.size());
    for (std::size_t number = 0; number < diagram.connectors.size(); ++number)
        lines[diagram.connectors[number].container].push_back(number);
    for (std::size_t number = 0; number < diagram.blocks.size(); ++number) {
        Block const& block = diagram.blocks[number];
        if (number > 0) {
            Rect const& rect = layout.boxes[number].rect;
            fmt::format_to(put, "<rect class=\"block\" data-path=\"{}\"", escaped(block.path));
            if (states)
                fmt::format_to(put, " data-state=\"{}\"", escaped(stateName(block.state)));
            fmt::format_to(put, " x=\"{:.2f}\" y=\"{:.2f}\" width=\"{:.2f}\" height=\"{:.2f}\"><title>{}: {}\n{}",
                           x(rect.left), y(rect.top), rect.width() * kPointsPerUnit, rect.height() * kPointsPerUnit,
                           escaped(block.caption), escaped(block.kind), escaped(block.path));
            if (states)
                fmt::format_to(put, "\n{}", escaped(stateName(block.state)));
            if (!block.description.empty() && block.description != block.caption)
                fmt::format_to(put, "\n{}", escaped(block.description));
            out += "</title></rect>\n";
        }
        for (std::size_t const line : lines[number]) {
            if (layout.lines[line].points.empty())
                continue;
            Connector const& connector = diagram.connectors[line];
            out += "<path class=\"connector\" fill=\"none\" stroke-width=\"6\" d=\"";
            char command = 'M';
            for (Point const& point : layout.lines[line].points) {
                fmt::format_to(put, "{}{:.2f} {:.2f}", command, x(point.x), y(point.y));
                command = 'L';
            }
            fmt::format_to(put, "\"><title>{} \xE2\x86\x92 {}", escaped(diagram.blocks[connector.start].path),
                           escaped(diagram.blocks[connector.end].path));
            if (!connector.caption.empty())
                fmt::format_to(put, "\n{}", escaped(connector.caption));
            out += "</title></path>\n";
        }
    }
    out += "</g>\n";
    return out;
}

std::string scaleNote(std::string_view format, double scale) {
    return fmt::format("the picture is scaled to {:.3g} % to fit into a {}; an SVG shows it in full", scale * 100,
                       format);
}

} // namespace

std::string paint(Diagram const& diagram, Layout const& layout, bool states, PictureFormat format, Fonts& fonts,
                  std::vector<std::string>& notes) {
    double const wide = layout.bounds.width();
    double const high = layout.bounds.height();
    double scale = kPointsPerUnit;
    std::string bytes;
    Surface surface;
    switch (format) {
    case PictureFormat::Svg:
        surface.reset(cairo_svg_surface_create_for_stream(append, &bytes, wide * scale, high * scale));
        break;
    case PictureFormat::Pdf: {
        double const fit = std::min(1.0, kMostPoints / (std::max(wide, high) * scale));
        if (fit < 1)
            notes.push_back(scaleNote("PDF", fit));
        scale *= fit;
        surface.reset(cairo_pdf_surface_create_for_stream(append, &bytes, wide * scale, high * scale));
        check(cairo_surface_status(surface.get()));
        cairo_pdf_surface_set_metadata(surface.get(), CAIRO_PDF_METADATA_TITLE, oneLine(diagram.title).c_str());
        // Without the time of day, equal documents give equal files.
        cairo_pdf_surface_set_metadata(surface.get(), CAIRO_PDF_METADATA_CREATE_DATE, "");
        break;
    }
    case PictureFormat::Png: {
        scale = wide * high * kPixelsPerUnit * kPixelsPerUnit > kLargePicture ? kScreenPixels : kPixelsPerUnit;
        double const aside = kMostPixelsAside / (std::max(wide, high) * scale);
        double const inAll = std::sqrt(kMostPixels / (wide * high * scale * scale));
        double const fit = std::min({1.0, aside, inAll});
        if (fit < 1)
            notes.push_back(scaleNote("PNG", fit));
        scale *= fit;
        surface.reset(cairo_image_surface_create(CAIRO_FORMAT_RGB24,
                                                 std::max(1, static_cast<int>(std::ceil(wide * scale))),
                                                 std::max(1, static_cast<int>(std::ceil(high * scale)))));
        break;
    }
    }
    check(cairo_surface_status(surface.get()));
    {
        Cairo const cairo(cairo_create(surface.get()));
        cairo_scale(cairo.get(), scale, scale);
        cairo_translate(cairo.get(), -layout.bounds.left, -layout.bounds.top);
        cairo_set_line_join(cairo.get(), CAIRO_LINE_JOIN_MITER);
        Painter(diagram, layout, states, fonts, cairo.get()).paintAll();
        check(cairo_status(cairo.get()));
    }
    if (format == PictureFormat::Png) {
        cairo_surface_flush(surface.get());
        bytes = png(cairo_image_surface_get_data(surface.get()), cairo_image_surface_get_width(surface.get()),
                    cairo_image_surface_get_height(surface.get()),
                    static_cast<std::size_t>(cairo_image_surface_get_stride(surface.get())));
    }
    cairo_surface_finish(surface.get());
    check(cairo_surface_status(surface.get()));
    if (format == PictureFormat::Svg) {
        // Cairo numbers its surfaces, so that the second picture of a process would differ from the first.
        constexpr std::string_view kNumbered = "<g id=\"surface";
        if (std::size_t const start = bytes.find(kNumbered); start != std::string::npos)
            bytes.replace(start, bytes.find('>', start) - start, "<g id=\"picture\"");
        constexpr std::string_view kEnd = "</svg>";
        if (std::size_t const end = bytes.rfind(kEnd); end != std::string::npos)
            bytes.insert(end, hotSpots(diagram, layout, states));
        if (std::size_t const start = bytes.find("<svg"); start != std::string::npos)
            bytes.insert(bytes.find('>', start) + 1, "\n<title>" + escaped(diagram.title) + "</title>");
    }
    return bytes;
}

} // namespace flowmere::host::drawing
