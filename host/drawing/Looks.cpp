#include "host/drawing/Looks.h"

#include <cmath>
#include <initializer_list>

namespace flowmere::host::drawing {

namespace {

constexpr double kThinBar = 40;
constexpr double kBar = 14;

bool isFootSign(Sign sign) {
    return sign == Sign::Inner || sign == Sign::Loop || sign == Sign::Branch || sign == Sign::Parallel;
}

Rect share(Rect const& rect, double across, double down) {
    return Rect::around(rect.centre(), {rect.width() * across, rect.height() * down});
}

} // namespace

Rect barOf(Rect const& rect) {
    if (std::min(rect.width(), rect.height()) <= kThinBar)
        return rect;
    if (rect.width() >= rect.height())
        return Rect::around(rect.centre(), {rect.width(), kBar});
    return Rect::around(rect.centre(), {kBar, rect.height()});
}

Rect signRect(Block const& block, Rect const& rect) {
    if (block.sign == Sign::None || rect.height() < 34 || rect.width() < 60)
        return {};
    if (isFootSign(block.sign)) {
        Point const centre{rect.centre().x, rect.bottom - 4 - kSignSize / 2};
        return Rect::around(centre, {kSignSize, kSignSize});
    }
    switch (block.shape) {
    case Shape::Bar:
        return {};
    case Shape::Stadium:
        return Rect::around({rect.left + std::min(rect.height(), rect.width()) / 2, rect.centre().y},
                            {kSignSize, kSignSize});
    case Shape::Diamond:
    case Shape::DoubleDiamond:
    case Shape::Oval:
        return Rect::around({rect.centre().x, rect.top + rect.height() * 0.2}, {kSignSize - 4, kSignSize - 4});
    case Shape::Hexagon:
        return Rect::around({rect.left + rect.width() * 0.12 + 9, rect.top + 14}, {kSignSize, kSignSize});
    default:
        return {rect.left + 6, rect.top + 6, rect.left + 6 + kSignSize, rect.top + 6 + kSignSize};
    }
}

std::vector<Rect> captionRooms(Block const& block, Rect const& rect) {
    double const border = block.hasBorder && block.style != LineStyle::None ? block.thickness / 2 : 0;
    Rect const inner{rect.left + border + 5, rect.top + border + 2, rect.right - border - 5, rect.bottom - border - 2};
    Rect const sign = signRect(block, rect);
    bool const hasSign = !sign.isEmpty();
    bool const isAtFoot = hasSign && isFootSign(block.sign);
    switch (block.shape) {
    case Shape::Oval:
        return {share(rect, 0.86, 0.46), share(rect, 0.78, 0.58), share(rect, 0.68, 0.7), share(rect, 0.58, 0.78)};
    case Shape::Diamond:
    case Shape::DoubleDiamond: {
        Rect const area = block.shape == Shape::DoubleDiamond ? rect.inflated(-5) : rect;
        return {share(area, 0.66, 0.3), share(area, 0.58, 0.38), share(area, 0.5, 0.46), share(area, 0.4, 0.56)};
    }
    case Shape::Stadium: {
        double const round = std::min(inner.width(), inner.height()) / 2;
        if (!hasSign)
            return {{inner.left + round * 0.5, inner.top + round * 0.3, inner.right - round * 0.5,
                     inner.bottom - round * 0.3}};
        return {{sign.right + 3, inner.top, inner.right - round * 0.4, inner.bottom}};
    }
    case Shape::Hexagon: {
        double const slope = rect.width() * 0.12;
        double const beside = hasSign && !isAtFoot ? sign.right + 3 - rect.left : inner.left - rect.left + slope * 0.5;
        return {{rect.left + beside, inner.top, rect.right - beside, isAtFoot ? sign.top - 1 : inner.bottom},
                {inner.left + slope * 0.6, hasSign && !isAtFoot ? sign.bottom + 1 : inner.top,
                 inner.right - slope * 0.6, isAtFoot ? sign.top - 1 : inner.bottom}};
    }
    case Shape::Sides:
        return {{inner.left + 8, inner.top, inner.right - 8, isAtFoot ? sign.top - 1 : inner.bottom}};
    case Shape::Page:
        return {{inner.left, inner.top, inner.right, inner.bottom - 8}};
    case Shape::Bar: {
        Rect const bar = barOf(rect);
        if (bar == rect)
            return {inner};
        Point const centre = rect.centre();
        if (rect.width() >= rect.height())
            return {{centre.x + 6, rect.top + 2, rect.right, bar.top - 2},
                    {centre.x + 6, bar.bottom + 2, rect.right, rect.bottom - 2}};
        return {{bar.right + 4, rect.top, rect.right, centre.y - 6},
                {bar.right + 4, centre.y + 6, rect.right, rect.bottom}};
    }
    case Shape::Rectangle:
    case Shape::RoundRectangle:
        break;
    }
    if (isAtFoot)
        return {{inner.left, inner.top, inner.right, sign.top - 1}};
    if (hasSign)
        return {{inner.left + kSignSize + 4, inner.top, inner.right - kSignSize - 4, inner.bottom},
                {inner.left, sign.bottom + 1, inner.right, inner.bottom},
                {sign.right + 3, inner.top, inner.right, inner.bottom}};
    return {inner};
}

Point dockOf(Block const& block, Rect const& rect, int grip) {
    Point const point = gripPoint(rect, grip);
    Point const centre = rect.centre();
    bool const isCorner = grip % 2 == 1;
    auto const towards = [&](double share) {
        return Point{point.x + (centre.x - point.x) * share, point.y + (centre.y - point.y) * share};
    };
    if (block.isOpen)
        return point;
    switch (block.shape) {
    case Shape::Bar: {
        Rect const bar = barOf(rect);
        if (rect.width() >= rect.height())
            return {point.x, std::min(std::max(point.y, bar.top), bar.bottom)};
        return {std::min(std::max(point.x, bar.left), bar.right), point.y};
    }
    case Shape::Diamond:
    case Shape::DoubleDiamond:
        return isCorner ? towards(0.5) : point;
    case Shape::Oval:
        return isCorner ? towards(1 - std::sqrt(0.5)) : point;
    case Shape::Hexagon:
        return isCorner ? Point{point.x + (centre.x > point.x ? 0.06 : -0.06) * rect.width(),
                                point.y + (centre.y - point.y) * 0.5}
                        : point;
    case Shape::Stadium:
    case Shape::RoundRectangle: {
        double const least = std::min(rect.width(), rect.height());
        double const round =
            (block.shape == Shape::Stadium ? least / 2 : std::min(12.0, least / 4)) * (1 - std::sqrt(0.5));
        return isCorner ? Point{point.x + (centre.x > point.x ? round : -round),
                                point.y + (centre.y > point.y ? round : -round)}
                        : point;
    }
    default:
        return point;
    }
}

Size usualSize(Block const& block) {
    switch (block.shape) {
    case Shape::Diamond:
    case Shape::DoubleDiamond:
        return {180, 90};
    case Shape::Oval:
        return {140, 55};
    case Shape::Stadium:
        return {130, 44};
    case Shape::Bar:
        return {180, 26};
    default:
        return {180, 64};
    }
}

} // namespace flowmere::host::drawing
