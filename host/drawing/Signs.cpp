#include "host/drawing/Signs.h"

#include <numbers>

namespace flowmere::host::drawing {

namespace {

constexpr double kTurn = 2 * std::numbers::pi;

void paintUser(cairo_t* cairo) {
    cairo_arc(cairo, 8, 5, 3.2, 0, kTurn);
    cairo_fill(cairo);
    cairo_move_to(cairo, 1.8, 15);
    cairo_curve_to(cairo, 1.8, 7.5, 14.2, 7.5, 14.2, 15);
    cairo_close_path(cairo);
    cairo_fill(cairo);
}

void paintGear(cairo_t* cairo) {
    constexpr int kTeeth = 8;
    for (int tooth = 0; tooth < kTeeth; ++tooth) {
        double const middle = kTurn * tooth / kTeeth;
        for (auto const& [turn, reach] : {std::pair{-0.28, 5.0}, {-0.17, 7.4}, {0.17, 7.4}, {0.28, 5.0}})
            cairo_line_to(cairo, 8 + reach * std::cos(middle + turn), 8 + reach * std::sin(middle + turn));
    }
    cairo_close_path(cairo);
    cairo_new_sub_path(cairo);
    cairo_arc_negative(cairo, 8, 8, 2.3, kTurn, 0);
    cairo_set_fill_rule(cairo, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_fill(cairo);
    cairo_set_fill_rule(cairo, CAIRO_FILL_RULE_WINDING);
}

void paintScript(cairo_t* cairo) {
    cairo_rectangle(cairo, 2.5, 1.5, 11, 13);
    for (double const y : {5.0, 8.0, 11.0}) {
        cairo_move_to(cairo, 5, y);
        cairo_line_to(cairo, 11, y);
    }
    cairo_stroke(cairo);
}

void paintMail(cairo_t* cairo) {
    cairo_rectangle(cairo, 1, 3, 14, 10);
    cairo_move_to(cairo, 1, 3.5);
    cairo_line_to(cairo, 8, 9);
    cairo_line_to(cairo, 15, 3.5);
    cairo_stroke(cairo);
}

void paintService(cairo_t* cairo) {
    cairo_move_to(cairo, 3.5, 12);
    cairo_line_to(cairo, 8, 4);
    cairo_line_to(cairo, 12.5, 12);
    cairo_close_path(cairo);
    cairo_stroke(cairo);
    for (auto const& [x, y] : {std::pair{3.5, 12.0}, {8.0, 4.0}, {12.5, 12.0}}) {
        cairo_new_sub_path(cairo);
        cairo_arc(cairo, x, y, 2.6, 0, kTurn);
    }
    cairo_fill(cairo);
}

void paintWindow(cairo_t* cairo) {
    cairo_rectangle(cairo, 1.5, 2.5, 13, 11);
    cairo_stroke(cairo);
    cairo_rectangle(cairo, 1.5, 2.5, 13, 3.2);
    cairo_fill(cairo);
}

void paintStart(cairo_t* cairo) {
    cairo_move_to(cairo, 4, 2.5);
    cairo_line_to(cairo, 13.5, 8);
    cairo_line_to(cairo, 4, 13.5);
    cairo_close_path(cairo);
    cairo_fill(cairo);
}

void paintEnd(cairo_t* cairo) {
    cairo_rectangle(cairo, 3.5, 3.5, 9, 9);
    cairo_fill(cairo);
}

void paintInner(cairo_t* cairo, bool isOpen) {
    cairo_rectangle(cairo, 1.5, 1.5, 13, 13);
    cairo_move_to(cairo, 4.5, 8);
    cairo_line_to(cairo, 11.5, 8);
    if (!isOpen) {
        cairo_move_to(cairo, 8, 4.5);
        cairo_line_to(cairo, 8, 11.5);
    }
    cairo_stroke(cairo);
}

void paintLoop(cairo_t* cairo) {
    cairo_arc(cairo, 8, 8, 5.5, 0.12 * kTurn, 0.95 * kTurn);
    cairo_stroke(cairo);
    cairo_move_to(cairo, 9.6, 6.2);
    cairo_line_to(cairo, 15.2, 7.6);
    cairo_line_to(cairo, 14.6, 2.4);
    cairo_close_path(cairo);
    cairo_fill(cairo);
}

void paintBranch(cairo_t* cairo) {
    cairo_move_to(cairo, 8, 1);
    cairo_line_to(cairo, 15, 8);
    cairo_line_to(cairo, 8, 15);
    cairo_line_to(cairo, 1, 8);
    cairo_close_path(cairo);
    cairo_stroke(cairo);
    cairo_arc(cairo, 8, 8, 1.8, 0, kTurn);
    cairo_fill(cairo);
}

void paintParallel(cairo_t* cairo) {
    for (double const x : {3.0, 7.0, 11.0})
        cairo_rectangle(cairo, x, 2, 2.2, 12);
    cairo_fill(cairo);
}

} // namespace

void paintSign(cairo_t* cairo, Sign sign, Rect const& square, Color const& ink, bool isOpen) {
    if (sign == Sign::None || square.isEmpty())
        return;
    cairo_save(cairo);
    cairo_translate(cairo, square.left, square.top);
    cairo_scale(cairo, square.width() / 16, square.height() / 16);
    cairo_set_source_rgb(cairo, ink.red, ink.green, ink.blue);
    cairo_set_line_width(cairo, 1.5);
    cairo_new_path(cairo);
    switch (sign) {
    case Sign::None:
        break;
    case Sign::User:
        paintUser(cairo);
        break;
    case Sign::Gear:
        paintGear(cairo);
        break;
    case Sign::Script:
        paintScript(cairo);
        break;
    case Sign::Mail:
        paintMail(cairo);
        break;
    case Sign::Service:
        paintService(cairo);
        break;
    case Sign::Window:
        paintWindow(cairo);
        break;
    case Sign::Start:
        paintStart(cairo);
        break;
    case Sign::End:
        paintEnd(cairo);
        break;
    case Sign::Inner:
        paintInner(cairo, isOpen);
        break;
    case Sign::Loop:
        paintLoop(cairo);
        break;
    case Sign::Branch:
        paintBranch(cairo);
        break;
    case Sign::Parallel:
        paintParallel(cairo);
        break;
    }
    cairo_restore(cairo);
}

} // namespace flowmere::host::drawing
